// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"
#include "support/crashscene.h"
#include "support/pimlisting.h"

/**
 * Events and contacts in the middle of a fault.
 *
 * What has to be there at the end is taken from both sides before the sync with the fault: a name that the
 * server has edited as the server has it, every other one as the device has it.
 */
class CrashPim : public CrashScene
{
public:
    /** Names of files in which a death leaves something behind; for FaultShim. */
    static QStringList durableFiles();

    void clearDevice() const override;
    void fillMailbox() override;
    QString wrongState() const override;
    QString wrongStores() const override;

    /** Edits on both sides, of different items. */
    void changeBothSides();
    /** More new contacts on the device than one Sync carries, besides the other edits of both sides. */
    void addManyContacts();
    enum Besides { Alone, AndWhatIsNewHere };
    /** After a new start with the server, which brings back what the device has changed. */
    void wantServersEdits(Besides besides);

private:
    using Listing = PimListing::Listing;

    void fillCalendar();
    void fillContacts();
    void changeServerCalendar();
    void changeServerContacts();
    void changeDeviceCalendar() const;
    void changeDeviceContacts() const;
    QString serverEvent(const QString &subject) const;
    QString serverContact(const QString &firstName) const;
    /** Items of the default folder of a class and of the others. */
    QVector<Simulator::ItemEntry> itemsOf(int folderType, int userFolderType) const;
    QString wrongRows(
        const char *table, const QVector<Simulator::ItemEntry> &items, QStringList localIds) const;
    QString wrongAttachments() const;

    // Folders with items, which the server removes.
    QString mOldCalendar;
    QString mOldContacts;
    Listing mWantedEvents;
    Listing mWantedContacts;
    Listing mServerEvents; ///< after the edits of that side
    Listing mServerContacts;
};
