// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

/** How the engine marks details that the server keeps in a field of their own. */
namespace ContactDetails {

/** Holds the name of that field: the second and third address, the reading of a name, and such. */
constexpr int SlotField = 5001;

/** The detail of a kind that bears no mark; an empty one without it. */
template <class Detail> Detail plain(const QtContacts::QContact &contact)
{
    const QList<Detail> details = contact.details<Detail>();
    for (const Detail &detail : details) {
        if (!detail.hasValue(SlotField))
            return detail;
    }
    return Detail();
}

} // namespace ContactDetails
