// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/contactfixture.h"
#include "support/synctestbed.h"

/** A device and a simulated Exchange, seen by their contacts. */
class ContactScene
{
public:
    explicit ContactScene(const QString &version);

    SyncTestBed &bed() { return mBed; }
    ContactFixture &store() { return mStore; }

    /** A contact with each field that the device keeps. */
    static Simulator::Contact full(int number);
    /** A line for each field, sorted. */
    static QStringList lines(const Simulator::Contact &contact);

    QtContacts::QContactCollectionId collection(const QString &serverId = QString());
    QList<QtContacts::QContact> deviceContacts();
    QtContacts::QContact deviceContact(const QString &firstName);
    QStringList serverNames();
    /** The files of the account's pictures. */
    QStringList pictures() const;

    /** What stands on one side alone, contact by contact and field by field, of the folder Contacts. */
    QStringList differences();

    /** Whether one more sync sends and brings nothing; both sides are asked. */
    bool furtherSyncIsSilent();

private:
    /** As it would go to the server. */
    Simulator::Contact onWire(const QtContacts::QContact &contact);

    ContactFixture mStore;
    SyncTestBed mBed;
};
