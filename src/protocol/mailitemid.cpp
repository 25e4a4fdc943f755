// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/mailitemid.h"

#include <algorithm>

namespace {

constexpr QChar separator = QLatin1Char('|');

bool isNumber(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    });
}

} // namespace

namespace MailItemId {

QString fromServer(const QString &collectionId, const QString &serverId)
{
    // An id that holds the separator would be taken apart on its way back if it did not get one of its own.
    if (collectionId.isEmpty() || (!isNumber(serverId) && !serverId.contains(separator)))
        return serverId;
    return collectionId + separator + serverId;
}

QString toServer(const QString &collectionId, const QString &itemId)
{
    const QString prefix = collectionId + separator;
    return !collectionId.isEmpty() && itemId.startsWith(prefix) ? itemId.mid(prefix.size()) : itemId;
}

} // namespace MailItemId
