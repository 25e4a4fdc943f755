// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/carddavclient.h"

CardDavClient::CardDavClient(const QString &host, int port, const QString &user, const QString &password)
    : DavClient(AddressBook, host, port, user, password)
{
}

std::optional<QMap<QString, VCard>> CardDavClient::contacts()
{
    const auto found = texts();
    if (!found)
        return std::nullopt;
    QMap<QString, VCard> cards;
    for (auto it = found->cbegin(); it != found->cend(); ++it)
        cards.insert(it.key(), VCard(it.value()));
    return cards;
}

bool CardDavClient::put(const QString &address, const VCard &card)
{
    return DavClient::put(address, card.toBytes());
}
