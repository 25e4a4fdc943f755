// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "storages/contacts/contactfolders.h"
#include "storages/contacts/contactitemplan.h"
#include "storages/contacts/contactstorecalls.h"
#include "storages/contacts/contactstrays.h"
#include "storages/contacts/contactwriter.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>

#include <optional>

struct ContactStoreContext;

/**
 * Carries out the plan of one reply: writes its contacts to the store. Made for one reply.
 *
 * The caller's lists leave as the rows that the mapping gets: those to be added and those that change, with
 * local identifiers and avatar URLs.
 */
class ContactItemBatch
{
public:
    explicit ContactItemBatch(const ContactStoreContext &context);

    bool updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
        QList<EasContactsItem> &changed, const QStringList &deleted);

private:
    using Contacts = QList<QtContacts::QContact>;

    /** Contacts that go. */
    struct Departures
    {
        QList<QtContacts::QContactId> ids;
        QList<QUrl> avatars;
        /** Server identifiers of those that bear their origin. */
        QStringList signedIds;
    };

    bool readState(
        const std::optional<QtContacts::QContactCollection> &collection, const QString &folderServerId);
    bool carryOut(const ContactItemPlan &plan, const QString &folderServerId,
        std::optional<QtContacts::QContactCollection> collection);
    bool prepareContacts(const ContactItemPlan &plan, Contacts *contacts);
    bool handleDeletedContacts(const ContactItemPlan &plan, Departures *departures) const;
    bool removeContacts(const QString &folderServerId, const QtContacts::QContactCollection &collection,
        const Departures &departures) const;
    void takeLocalIds(const Contacts &stored);

    const ContactStoreContext &mContext;
    const ContactFolders mFolders;
    const ContactStrays mStrays;
    const ContactStoreCalls mStore;
    ContactWriter mWriter;
    ContactFolderState mState;
    /** Of the plan, with what the store made of them. */
    QList<ContactItemPlan::Entry> mEntries;
};
