// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

/** The details that the store adds to a contact when it is read: label, type, times and status flags. */
namespace MadeUpDetails {

struct Facts
{
    int changeFlags;
    /** Milliseconds since 1970. */
    qint64 created;
    qint64 modified;
};

void add(QtContacts::QContact *contact, const Facts &facts);

} // namespace MadeUpDetails
