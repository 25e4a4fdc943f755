// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>
#include <QtContacts/QContactManager>

#include <QByteArray>

/** The details of a contact as bytes; those that the store makes up by itself are left out. */
namespace DetailCodec {

/**
 * Whether the details can be kept: LimitReachedError for a second one of a kind that is single,
 * InvalidDetailError for a value of an unknown type. Releases of the real store differ on a second name; with
 * CONTACTS_ONE_NAME in the environment it is refused.
 */
QtContacts::QContactManager::Error check(const QtContacts::QContact &contact);

/** Whether the store makes details of this type up. */
bool isMadeUp(QtContacts::QContactDetail::DetailType type);

QByteArray encode(const QtContacts::QContact &contact);
void decode(const QByteArray &bytes, QtContacts::QContact *contact);

} // namespace DetailCodec
