// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/davclient.h"
#include "support/vcard.h"

/** Another client of an address book. */
class CardDavClient : public DavClient
{
public:
    CardDavClient(const QString &host, int port, const QString &user, const QString &password);

    /** All contacts by their address; nothing if the server does not answer. */
    std::optional<QMap<QString, VCard>> contacts();
    bool put(const QString &address, const VCard &card);
};
