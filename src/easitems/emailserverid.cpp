// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/emailserverid.h"

namespace {
// A control character, which the text of a well-formed reply cannot hold.
const QChar Separator(0x1F);
} // namespace

QString EmailServerId::qualified(const QString &collectionId, const QString &wireId)
{
    return wireId + Separator + collectionId;
}

QString EmailServerId::onWire(const QString &keptId)
{
    return keptId.section(Separator, 0, 0);
}
