// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/contactfixture.h"
#include "support/synctestbed.h"

/** The contacts of an account on the device and of a mailbox, in a form in which they can be compared. */
class ContactSides
{
public:
    ContactSides(ContactFixture &store, Simulator::Mailbox &mailbox, EasAccountId accountId);

    /** A contact with each field that the device keeps. */
    static Simulator::Contact full(int number);
    /** A line for each field, sorted. */
    static QStringList lines(const Simulator::Contact &contact);

    /**
     * What stands on one side alone, contact by contact and field by field, of the folder Contacts. The
     * mapping is from server to local identifiers.
     */
    QStringList differences(
        const QMap<QString, QString> &mapping, const QtContacts::QContactCollectionId &collection);
    /** The files of the account's pictures. */
    QStringList pictures() const;

private:
    /** As it would go to the server. */
    Simulator::Contact onWire(const QtContacts::QContact &contact) const;

    ContactFixture &mStore;
    Simulator::Mailbox &mMailbox;
    const EasAccountId mAccountId;
};

/** A device and a simulated Exchange, seen by their contacts. */
class ContactScene
{
public:
    explicit ContactScene(const QString &version);

    SyncTestBed &bed() { return mBed; }
    ContactFixture &store() { return mStore; }

    static Simulator::Contact full(int number) { return ContactSides::full(number); }
    static QStringList lines(const Simulator::Contact &contact) { return ContactSides::lines(contact); }

    QtContacts::QContactCollectionId collection(const QString &serverId = QString());
    QList<QtContacts::QContact> deviceContacts();
    QtContacts::QContact deviceContact(const QString &firstName);
    QStringList serverNames();
    QStringList pictures() { return sides().pictures(); }
    QStringList differences();

    /** Whether one more sync sends and brings nothing; both sides are asked. */
    bool furtherSyncIsSilent();

private:
    ContactSides sides();

    ContactFixture mStore;
    SyncTestBed mBed;
};
