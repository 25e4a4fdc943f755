// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/calendarresulthandler.h"

#include "application/easaccount.h"
#include "application/easdatabase.h"
#include "application/logging.h"
#include "protocol/synccollection.h"
#include "protocol/synccommandadd.h"
#include "protocol/synccommandchange.h"
#include "protocol/synccommanddelete.h"
#include "storages/calendarstorage.h"

bool CalendarResultHandler::handle(SyncCollection &collection)
{
    const QSharedPointer<CalendarStorage> storage = account().calendarStorage();
    if (!storage)
        return fail("CalendarStorage is null");

    collectSent(collection);
    if (!collectUploaded(collection) || !storeUploaded(*storage) || !storeReceived(*storage, collection))
        return false;
    storeSyncTime(*storage, collection);
    return true;
}

void CalendarResultHandler::collectSent(const SyncCollection &collection)
{
    for (const QSharedPointer<SyncCommandBase> &command : collection.commands()) {
        switch (command->type()) {
        case SyncCommandBase::AddCommand:
            mSentAdded.append(command.staticCast<SyncCommandAdd>()->calendarItems());
            break;
        case SyncCommandBase::ChangeCommand:
            mSentChanged.append(command.staticCast<SyncCommandChange>()->calendarItems());
            break;
        case SyncCommandBase::DeleteCommand:
            mSentDeleted.append(command.staticCast<SyncCommandDelete>()->serverIds());
            break;
        default:
            qCWarning(eas()) << "unhandled SyncCommand with type" << command->type();
        }
    }
    qCInfo(eas()) << "handleCalendarResults: sending commands to server:"
                  << "A/M/R:" << mSentAdded.size() << "/" << mSentChanged.size() << "/"
                  << mSentDeleted.size();
}

bool CalendarResultHandler::collectUploaded(const SyncCollection &collection)
{
    using SyncItemStatus::Operation;
    const QMap<QString, QString> localIds = EasDatabase::instance()->serverToLocalCalendarIds(account().id());
    return collectUploadedAdds(collection)
        && acknowledged(Operation::CalendarChange, collection.id(), mSentChanged,
            collection.getChangeCmdResponses(), localIds, mUploadedChanged)
        && acknowledged(Operation::CalendarDelete, collection.id(), QList<QString>(mSentDeleted),
            collection.getDeleteCmdResponses(), localIds, mUploadedDeleted);
}

bool CalendarResultHandler::collectUploadedAdds(const SyncCollection &collection)
{
    for (const AirSyncResponseAddItem &response : collection.getAddCmdResponses()) {
        bool taken = false;
        if (!judge(SyncItemStatus::Operation::CalendarAdd, response.status(), response.serverId(),
                response.clientId(), taken))
            return false;
        for (EasCalendarItem item : qAsConst(mSentAdded)) {
            if (!taken || item.localId() != response.clientId())
                continue;
            qCInfo(eas()) << "event with client id" << response.clientId() << "saved"
                          << "on the server with server id" << response.serverId();
            item.setServerId(response.serverId());
            mUploadedAdded.append(item);
        }
    }
    return true;
}

bool CalendarResultHandler::storeUploaded(CalendarStorage &storage)
{
    for (const EasCalendarItem &item : qAsConst(mUploadedChanged))
        qCInfo(eas()) << "Event with server id" << item.serverId() << "updated successfully";
    for (const QString &serverId : qAsConst(mUploadedDeleted))
        qCInfo(eas()) << "Calendar event" << serverId << "was deleted";
    const QStringList deleted(mUploadedDeleted);
    if (!storage.uploadedLocalChanges(mUploadedAdded, mUploadedChanged, deleted))
        return fail("failed to handle uploaded local calendar changes");
    if (!EasDatabase::instance()->calendarItemsChanges(
            account().id(), mUploadedAdded, mUploadedChanged, deleted, {}))
        return fail("Failed to update calendar items in EAS DB for response");
    return true;
}

bool CalendarResultHandler::storeReceived(CalendarStorage &storage, SyncCollection &collection)
{
    QList<EasCalendarItem> added = collection.addedCalendarItems();
    QList<EasCalendarItem> changed = collection.changedCalendarItems();
    QStringList replaced;
    if (!storage.updateItems(added, changed, collection.deletedIds(), replaced))
        return fail("Failed to update calendar items");
    if (!EasDatabase::instance()->calendarItemsChanges(
            account().id(), added, changed, collection.deletedIds(), replaced))
        return fail("Failed to update calendar items in EAS DB");
    return true;
}

void CalendarResultHandler::storeSyncTime(CalendarStorage &storage, const SyncCollection &collection)
{
    const QString localFolder =
        EasDatabase::instance()->serverToLocalFolderIds(account().id()).value(collection.id());
    if (localFolder.isEmpty())
        qCWarning(eas()) << "failed to find local folder id for folder" << collection.id();
    else if (!storage.setSyncTime(localFolder, collection.queryTime()))
        qCWarning(eas()) << "failed to set sync date for calendar:" << localFolder;
}
