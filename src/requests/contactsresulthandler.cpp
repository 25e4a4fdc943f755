// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/contactsresulthandler.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/contactstorage.h"

bool ContactsResultHandler::handle(SyncCollection &collection)
{
    const QSharedPointer<ContactStorage> storage = account().contactStorage();
    if (!storage)
        return fail("ContactStorage is null");

    if (!readRows(collection.id()))
        return fail("Failed to read contacts from EAS DB");
    return collectUploaded(collection) && storeReceived(*storage, collection)
        && storeUploaded(*storage, collection) && finish(*storage, collection);
}

bool ContactsResultHandler::readRows(const QString &collectionId)
{
    // Of this folder alone: a server may use its identifiers in another one again.
    const auto serverIds = EasDatabase::instance()->localToServerContactIds(account().id(), collectionId);
    if (!serverIds)
        return false;
    mLocalIds.clear();
    for (auto it = serverIds->cbegin(); it != serverIds->cend(); ++it)
        mLocalIds.insert(it.value(), it.key());
    return true;
}

const ContactsResultHandler::Kind &ContactsResultHandler::kind() const
{
    using SyncItemStatus::Operation;
    static const Kind contacts { &SyncCommandAdd::contactsItems, Operation::ContactAdd,
        Operation::ContactChange, Operation::ContactDelete, "Contact with client id",
        "Contact with server id", "Contact" };
    return contacts;
}

bool ContactsResultHandler::collectUploaded(const SyncCollection &collection)
{
    collectSent(collection);
    return collectUploadedChanges(collection, mLocalIds) && collectUploadedAdds(collection)
        && collectUploadedDeletions(collection, mLocalIds);
}

bool ContactsResultHandler::storeReceived(ContactStorage &storage, const SyncCollection &collection)
{
    if (!failedLocalIds().isEmpty())
        storage.setFailedLocalChangesIds(failedLocalIds());
    QList<EasContactsItem> added = collection.addedContacts();
    QList<EasContactsItem> changed = collection.changedContacts();
    beginAnewFor(collection, unknownChanges(added, changed, mLocalIds));
    markUploads(added);
    if (!storage.updateItems(collection.id(), added, changed, collection.deletedIds()))
        return fail("Failed to update contacts items");
    if (!EasDatabase::instance()->contactsItemsChanges(
            account().id(), added, changed, collection.deletedIds(), collection.id()))
        return fail("Failed to update contacts items in EAS DB");
    for (const QList<EasContactsItem> &items : { added, changed }) {
        for (const EasContactsItem &item : items)
            mReceivedIds.insert(item.serverId());
    }
    return true;
}

void ContactsResultHandler::markUploads(QList<EasContactsItem> &received) const
{
    // Where the answer to an upload was lost and the upload is repeated, a server can send the contact as a
    // new one in the very reply that acknowledges it.
    QHash<QString, QString> uploads;
    for (const EasContactsItem &item : mUploadedAdded)
        uploads.insert(item.serverId(), item.localId());
    for (EasContactsItem &item : received)
        item.setLocalId(uploads.value(item.serverId()));
}

QList<EasContactsItem> ContactsResultHandler::withoutReceived(const QList<EasContactsItem> &uploaded) const
{
    QList<EasContactsItem> rows;
    for (const EasContactsItem &item : uploaded) {
        if (!mReceivedIds.contains(item.serverId()))
            rows.append(item);
    }
    return rows;
}

bool ContactsResultHandler::storeUploaded(ContactStorage &storage, const SyncCollection &collection)
{
    const auto localIds = [](const QList<EasContactsItem> &items) {
        QStringList ids;
        for (const EasContactsItem &item : items)
            ids.append(item.localId());
        return ids;
    };
    QStringList deletedLocalIds;
    for (const QString &serverId : qAsConst(mUploadedDeleted))
        deletedLocalIds.append(mLocalIds.value(serverId));
    if (!storage.uploadedLocalChanges(localIds(mUploadedAdded), localIds(mUploadedChanged), deletedLocalIds))
        return fail("Failed to update contacts items");
    // What the reply has brought has its row already, which says what the contact is now and not as it went
    // up.
    if (!EasDatabase::instance()->contactsItemsChanges(account().id(), withoutReceived(mUploadedAdded),
            withoutReceived(mUploadedChanged), QStringList(mUploadedDeleted), collection.id()))
        return fail("Failed to update contacts items in EAS DB for response");
    return true;
}

bool ContactsResultHandler::finish(ContactStorage &storage, const SyncCollection &collection)
{
    if (!collection.getChanges() || collection.moreAvailable())
        return true;
    return storage.allReceived(collection.id()) || fail("Failed to update contacts items");
}
