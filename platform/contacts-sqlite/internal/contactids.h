// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContactCollectionId>
#include <QtContacts/QContactId>

/** Identifiers as the interface has them, and the row numbers behind them; 0 stands for no row. */
namespace ContactIds {

constexpr char managerName[] = "org.plover.contacts.sqlite";

/** Both exist always: the view of all contacts, and the device's own address book. */
constexpr quint64 aggregateCollection = 1;
constexpr quint64 localCollection = 2;

QtContacts::QContactId contact(quint64 number);
quint64 number(const QtContacts::QContactId &id);

QtContacts::QContactCollectionId collection(quint64 number);
quint64 number(const QtContacts::QContactCollectionId &id);

} // namespace ContactIds
