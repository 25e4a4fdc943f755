// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/contacts/contactdetailuris.h"

#include <QtContacts/QContact>

#include <QStringList>

/** How the engine marks details that the server keeps in a field of their own: by the detail's URI. */
namespace PlainDetail {

/** The plain detail of a kind, which has no URI; an empty one if there is none. */
template <class Detail> Detail plain(const QtContacts::QContact &contact)
{
    const QList<Detail> details = contact.details<Detail>();
    for (const Detail &detail : details) {
        if (detail.detailUri().isEmpty())
            return detail;
    }
    return Detail();
}

/** The URIs of the server's three mail addresses; the first has none. */
inline const QStringList &emailUris()
{
    static const QStringList uris { QString(), QLatin1String(ContactDetailUris::secondEmail),
        QLatin1String(ContactDetailUris::thirdEmail) };
    return uris;
}

} // namespace PlainDetail
