// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/calendarresulthandler.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "requests/syncstate.h"
#include "storages/calendarstorage.h"

#include <algorithm>

bool CalendarResultHandler::handle(SyncCollection &collection)
{
    const QSharedPointer<CalendarStorage> storage = account().calendarStorage();
    if (!storage)
        return fail("CalendarStorage is null");

    collectSent(collection);
    if (!readRows(collection))
        return fail("Failed to read events from EAS DB");
    return collectUploaded(collection) && storeUploaded(*storage) && storeReceived(*storage, collection)
        && storeSyncTime(*storage, collection);
}

bool CalendarResultHandler::readRows(const SyncCollection &collection)
{
    QStringList named(mSentDeleted);
    for (const QList<EasCalendarItem> &items : { mSentChanged, collection.changedCalendarItems() }) {
        for (const EasCalendarItem &item : items)
            named.append(item.serverId());
    }
    const auto localIds = EasDatabase::instance()->serverToLocalCalendarIds(account().id(), named);
    if (localIds)
        mLocalIds = *localIds;
    return bool(localIds);
}

const CalendarResultHandler::Kind &CalendarResultHandler::kind() const
{
    using SyncItemStatus::Operation;
    static const Kind calendar { &SyncCommandAdd::calendarItems, Operation::CalendarAdd,
        Operation::CalendarChange, Operation::CalendarDelete, "event with client id", "Event with server id",
        "Calendar event" };
    return calendar;
}

bool CalendarResultHandler::collectUploaded(const SyncCollection &collection)
{
    qCInfo(eas()) << "handleCalendarResults: sending commands to server:"
                  << "A/M/R:" << mSentAdded.size() << "/" << mSentChanged.size() << "/"
                  << mSentDeleted.size();
    if (!collectUploadedAdds(collection) || !collectUploadedChanges(collection, mLocalIds)
        || !collectUploadedDeletions(collection, mLocalIds))
        return false;
    keepRefusedOccurrences(collection);
    returnDeletedOccurrences(collection);
    return true;
}

void CalendarResultHandler::returnDeletedOccurrences(const SyncCollection &collection)
{
    // They went up in a command of their own, and the store has to learn of them with their series.
    for (const QSharedPointer<SyncCommandBase> &command : collection.commands()) {
        const auto deletion = command.objectCast<SyncCommandDelete>();
        const QList<QPair<QString, QString>> sent =
            deletion ? deletion->instanceIds() : QList<QPair<QString, QString>>();
        for (const QPair<QString, QString> &occurrence : sent) {
            for (EasCalendarItem &item : mUploadedChanged) {
                if (item.serverId() != occurrence.first)
                    continue;
                EasCalendarItem exception;
                exception.setExceptionStartTime(occurrence.second);
                exception.setExceptionDeleted(1);
                item.appendException(exception);
            }
        }
    }
}

void CalendarResultHandler::keepRefusedOccurrences(const SyncCollection &collection)
{
    // The deletion of one occurrence is answered under the name of its series, which has not arrived as a
    // whole then. An occurrence that is not there any more is as good as deleted.
    for (const AirSyncResponseDeleteItem &response : collection.getDeleteCmdResponses()) {
        const bool isDone =
            response.status() <= Eas::SyncStatusSuccess || response.status() == Eas::SyncStatusObjectNotFound;
        if (isDone || mSentDeleted.contains(response.serverId()))
            continue;
        const auto isSeries = [&response](const EasCalendarItem &item) {
            return item.serverId() == response.serverId();
        };
        mUploadedChanged.erase(std::remove_if(mUploadedChanged.begin(), mUploadedChanged.end(), isSeries),
            mUploadedChanged.end());
    }
}

bool CalendarResultHandler::storeUploaded(CalendarStorage &storage)
{
    const QStringList deleted(mUploadedDeleted);
    if (!storage.uploadedLocalChanges(mUploadedAdded, mUploadedChanged, deleted))
        return fail("failed to handle uploaded local calendar changes");
    if (!EasDatabase::instance()->calendarItemsChanges(
            account().id(), mUploadedAdded, mUploadedChanged, deleted, {}))
        return fail("Failed to update calendar items in EAS DB for response");
    return true;
}

bool CalendarResultHandler::storeReceived(CalendarStorage &storage, const SyncCollection &collection)
{
    QList<EasCalendarItem> added = collection.addedCalendarItems();
    QList<EasCalendarItem> changed = collection.changedCalendarItems();
    beginAnewFor(collection, unknownChanges(added, changed, mLocalIds));
    QStringList replaced;
    if (!storage.updateItems(added, changed, collection.deletedIds(), replaced))
        return fail("Failed to update calendar items");
    if (!EasDatabase::instance()->calendarItemsChanges(
            account().id(), added, changed, collection.deletedIds(), replaced))
        return fail("Failed to update calendar items in EAS DB");
    return true;
}

bool CalendarResultHandler::storeSyncTime(CalendarStorage &storage, const SyncCollection &collection)
{
    // What the server has refused is a change since the old time, and is found again. Nor is there a new
    // time if the changes could not be queried.
    UploadProgress &progress = state().uploads[collection.id()];
    progress.hasRefused = progress.hasRefused || !hasUploadedAll();
    if (progress.isWaiting || progress.hasRefused || collection.queryTime() == 0)
        return true;
    const auto localFolders = EasDatabase::instance()->serverToLocalFolderIds(account().id());
    if (!localFolders)
        return fail("Failed to read folders from EAS DB");
    // Under the old time what was told to the server is asked for once more, and nothing is lost.
    const QString localFolder = localFolders->value(collection.id());
    if (localFolder.isEmpty())
        qCWarning(eas()) << "failed to find local folder id for folder" << collection.id();
    else if (!storage.setSyncTime(localFolder, collection.queryTime()))
        qCWarning(eas()) << "failed to set sync date for calendar:" << localFolder;
    return true;
}
