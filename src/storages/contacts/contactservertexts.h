// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"

#include <QtContacts/QContact>

/**
 * What the server says of a contact and the device has no detail for, or a coarser one: the name to sort by,
 * dates with their time of the day, the name beside a mail address, a note that the server cut short. An edit
 * of something else must not take it from the server.
 */
namespace ContactServerTexts {

void save(QtContacts::QContact &contact, const EasContactsItem &item);

/** Puts the texts back into an item that was read from the contact, as far as they still hold. */
void restore(const QtContacts::QContact &contact, EasContactsItem &item);

/** Whether an extended detail of this name is one of these. */
bool isKept(const QString &name);

} // namespace ContactServerTexts
