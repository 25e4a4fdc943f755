// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"

#include <QtContacts/QContact>

#include <QList>

/** The reading of a name: a second name of the contact, or two texts where the store takes one name alone. */
namespace ContactSecondName {

/** The contacts with their second names as texts. */
QList<QtContacts::QContact> asTexts(QList<QtContacts::QContact> contacts);

/** Reads the texts into an item that has no such name. */
void read(const QtContacts::QContact &contact, EasContactsItem &item);

/** Whether an extended detail of this name is one of the texts. */
bool isText(const QString &name);

} // namespace ContactSecondName
