// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

#include <QByteArray>
#include <QList>

/** Contacts as vCard 3.0. */
namespace ContactCards {

/** False, after an error that names them, if some contacts are not among the cards. */
bool write(const QList<QtContacts::QContact> &contacts, QByteArray *cards);

/** False, after an error, if the text is no vCard or one of its cards cannot be taken. */
bool read(const QByteArray &cards, QList<QtContacts::QContact> *contacts);

} // namespace ContactCards
