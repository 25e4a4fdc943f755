// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/emailserverid.h"

#include <algorithm>
#include <iterator>

namespace {
// A control character, which no server has reason to put into an identifier.
const QChar Separator(0x1F);
} // namespace

bool WireEmailId::isValid() const
{
    return !mText.contains(Separator);
}

KeptEmailId KeptEmailId::plain(const WireEmailId &wireId)
{
    return KeptEmailId(wireId.text());
}

KeptEmailId KeptEmailId::qualified(const QString &collectionId, const WireEmailId &wireId)
{
    return KeptEmailId(wireId.text() + Separator + collectionId);
}

QStringList KeptEmailId::texts(const QList<KeptEmailId> &ids)
{
    QStringList texts;
    std::transform(
        ids.cbegin(), ids.cend(), std::back_inserter(texts), [](const KeptEmailId &id) { return id.text(); });
    return texts;
}

WireEmailId KeptEmailId::onWire() const
{
    return WireEmailId(mText.section(Separator, 0, 0));
}
