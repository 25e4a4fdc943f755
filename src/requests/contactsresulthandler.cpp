// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/contactsresulthandler.h"

#include "application/easaccount.h"
#include "application/easdatabase.h"
#include "application/logging.h"
#include "protocol/synccollection.h"
#include "protocol/synccommandadd.h"
#include "protocol/synccommandchange.h"
#include "protocol/synccommanddelete.h"
#include "storages/contactstorage.h"

bool ContactsResultHandler::handle(SyncCollection &collection)
{
    const QSharedPointer<ContactStorage> storage = account().contactStorage();
    if (!storage)
        return fail("ContactStorage is null");

    mLocalIds = EasDatabase::instance()->serverToLocalContactIds(account().id());
    collectSent(collection);
    return collectUploaded(collection) && storeReceived(*storage, collection) && storeUploaded(*storage);
}

void ContactsResultHandler::collectSent(const SyncCollection &collection)
{
    for (const QSharedPointer<SyncCommandBase> &command : collection.commands()) {
        switch (command->type()) {
        case SyncCommandBase::AddCommand:
            mSentAdded.append(command.staticCast<SyncCommandAdd>()->contactsItems());
            break;
        case SyncCommandBase::ChangeCommand:
            mSentChanged.append(command.staticCast<SyncCommandChange>()->contactsItems());
            break;
        case SyncCommandBase::DeleteCommand:
            mSentDeleted.append(command.staticCast<SyncCommandDelete>()->serverIds());
            break;
        default:
            qCWarning(eas()) << "unhandled SyncCommand with type" << command->type();
        }
    }
}

bool ContactsResultHandler::collectUploaded(const SyncCollection &collection)
{
    using SyncItemStatus::Operation;
    return acknowledged(Operation::ContactChange, collection.id(), mSentChanged,
               collection.getChangeCmdResponses(), mLocalIds, mUploadedChanged)
        && collectUploadedAdds(collection)
        && acknowledged(Operation::ContactDelete, collection.id(), QList<QString>(mSentDeleted),
            collection.getDeleteCmdResponses(), mLocalIds, mUploadedDeleted);
}

bool ContactsResultHandler::collectUploadedAdds(const SyncCollection &collection)
{
    for (const AirSyncResponseAddItem &response : collection.getAddCmdResponses()) {
        bool taken = false;
        if (!judge(SyncItemStatus::Operation::ContactAdd, response.status(), response.serverId(),
                response.clientId(), taken))
            return false;
        for (EasContactsItem item : qAsConst(mSentAdded)) {
            if (!taken || item.localId() != response.clientId())
                continue;
            qCInfo(eas()) << "Contact with client id" << response.clientId() << "saved"
                          << "on the server with server id" << response.serverId();
            item.setServerId(response.serverId());
            mUploadedAdded.append(item);
        }
    }
    return true;
}

bool ContactsResultHandler::storeReceived(ContactStorage &storage, SyncCollection &collection)
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
    for (const QString &serverId : qAsConst(mUploadedDeleted)) {
        qCInfo(eas()) << "Contact" << serverId << "was deleted";
        deletedLocalIds.append(mLocalIds.value(serverId));
    }
    for (const EasContactsItem &item : qAsConst(mUploadedChanged))
        qCInfo(eas()) << "Contact with server id" << item.serverId() << "updated successfully";

    if (!storage.uploadedLocalChanges(localIds(mUploadedAdded), localIds(mUploadedChanged), deletedLocalIds))
        return fail("Failed to update contacts items");
    if (!EasDatabase::instance()->contactsItemsChanges(
            account().id(), mUploadedAdded, mUploadedChanged, QStringList(mUploadedDeleted)))
        return fail("Failed to update contacts items in EAS DB for response");
    return true;
}
