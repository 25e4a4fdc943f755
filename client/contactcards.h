// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

#include <QByteArray>
#include <QList>

/** Contacts as vCard 3.0. */
namespace ContactCards {

/** False, after an error that names them, if some contacts are not among the cards. */
bool write(const QList<QtContacts::QContact> &contacts, QByteArray *cards);

} // namespace ContactCards
