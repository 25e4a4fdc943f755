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

    mLocalIds = EasDatabase::instance()->serverToLocalContactIds(account().id());
    // The store learns of acknowledged deletions by local identifiers.
    if (EasDatabase::instance()->lookupFailed())
        return fail("Failed to read contacts from EAS DB");
    return collectUploaded(collection) && storeReceived(*storage, collection) && storeUploaded(*storage);
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
    if (!storage.updateItems(collection.id(), added, changed, collection.deletedIds()))
        return fail("Failed to update contacts items");
    if (!EasDatabase::instance()->contactsItemsChanges(
            account().id(), added, changed, collection.deletedIds()))
        return fail("Failed to update contacts items in EAS DB");
    return true;
}

bool ContactsResultHandler::storeUploaded(ContactStorage &storage)
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
    if (!EasDatabase::instance()->contactsItemsChanges(
            account().id(), mUploadedAdded, mUploadedChanged, QStringList(mUploadedDeleted)))
        return fail("Failed to update contacts items in EAS DB for response");
    return true;
}
