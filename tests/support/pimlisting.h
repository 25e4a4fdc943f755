// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "simulator/event.h"

#include <KCalendarCore/Event>
#include <QtContacts/QContact>

#include <QMap>

namespace Simulator {
class Mailbox;
}

/**
 * Events and contacts of a device and of a server in one form, to be compared: by their subject or first
 * name, what else both sides have to agree on. Two of one name are a duplicate and stand under two keys.
 */
namespace PimListing {

using Listing = QMap<QString, QString>;

/** Adds an item under its name, or under another one if that is taken. */
void enter(Listing &listing, const QString &name, const QString &value);

Listing serverEvents(const Simulator::Mailbox &mailbox);
Listing deviceEvents(EasAccountId accountId);
Listing serverContacts(const Simulator::Mailbox &mailbox);
Listing deviceContacts(EasAccountId accountId);

/** The contacts of all collections of the account. */
QList<QtContacts::QContact> contactsOf(QtContacts::QContactManager &manager, EasAccountId accountId);
/** Its collections that hold contacts of the server. */
QList<QtContacts::QContactCollectionId> collectionsOf(
    QtContacts::QContactManager &manager, EasAccountId accountId);
/** Its first collection that holds contacts of the server; null if there is none. */
QtContacts::QContactCollectionId collectionOf(QtContacts::QContactManager &manager, EasAccountId accountId);
/** The bytes of the picture's file. */
QByteArray pictureOf(const QtContacts::QContact &contact);
/** Paths of the account's pictures that belong to none of its contacts. */
QStringList orphanPictures(EasAccountId accountId);

} // namespace PimListing
