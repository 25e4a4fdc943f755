// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaritembatch.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendareventfields.h"
#include "storages/calendar/calendarlocalchanges.h"
#include "storages/calendar/calendarstorecontext.h"

#include <algorithm>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

CalendarItemBatch::CalendarItemBatch(const CalendarStoreContext &context, CalendarLocalChanges &localChanges)
    : mContext(context)
    , mLocalChanges(localChanges)
    , mRecovery(context)
    , mWriter(context, &mDeleted)
{
}

bool CalendarItemBatch::updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated,
    const QStringList &deleted, QStringList &replaced)
{
    QStringList named(deleted);
    for (const EasCalendarItem &item : added + updated)
        named.append(item.serverId());
    // Without the mapping what is known would look new, and come a second time.
    if (!mRecovery.readMapping(named) || !collectFolders(added, updated, deleted)
        || !loadFolders(added, updated, deleted))
        return false;
    if (!sortItems(added, updated, replaced))
        return false;
    if (!handleAddedCalendarItems(added)) {
        qCCritical(eas()) << "Failed adding calendar items";
        return false;
    }
    if (!handleUpdatedCalendarItems(updated)) {
        qCCritical(eas()) << "Failed updating calendar items";
        return false;
    }
    if (!handleDeletedCalendarItems(deleted)) {
        qCCritical(eas()) << "Failed deleting calendar items";
        return false;
    }
    qCInfo(eas()) << "Finished handling items updates";
    const bool saved = save();
    qCInfo(eas()) << "Updates:" << added.size() << "/" << updated.size() << "/" << deleted.size()
                  << "Save:" << mDeleted.size() << ", result:" << saved;
    if (!saved)
        return false;
    // An attachment without its row could never be deleted by the user.
    if (!completeAttachments(added + updated)) {
        qCCritical(eas()) << "failed to record attachments";
        return false;
    }
    mLocalChanges.forgetUploads(added + updated);
    // Without it, the server's changes would come back as the user's.
    if (!mLocalChanges.updateItemsTimestamps(mFolders.keys(), added, updated)) {
        qCCritical(eas()) << "failed to update timestamps";
        return false;
    }
    return true;
}

bool CalendarItemBatch::collectFolders(
    const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated, const QStringList &deleted)
{
    for (const EasCalendarItem &item : added + updated) {
        if (item.collectionId().isEmpty())
            qCWarning(eas()) << "Empty collection Id for item" << item.serverId();
        else if (!enterFolder(item.collectionId()))
            return false;
    }
    if (!deleted.isEmpty()) {
        const Lookup<QMap<QString, QString>> collections =
            EasDatabase::instance()->serverCalendarIdToCollectionIds(mContext.accountId(), deleted);
        if (!collections)
            return false;
        for (const QString &serverId : deleted) {
            const QString collectionId = collections->value(serverId);
            if (!collectionId.isEmpty() && !enterFolder(collectionId))
                return false;
        }
    }
    if (mFolders.isEmpty())
        qCWarning(eas()) << "Empty collection list";
    return true;
}

bool CalendarItemBatch::enterFolder(const QString &collectionId)
{
    if (mFolders.contains(collectionId))
        return true;
    const Lookup<QMap<QString, QString>> folders =
        EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!folders)
        return false;
    const QString folder = folders->value(collectionId);
    // The store would leave its events out, and say that all is well.
    if (folder.isEmpty() || !mContext.storage->notebook(folder)) {
        qCCritical(eas()) << "No notebook for collection" << collectionId;
        return false;
    }
    mFolders.insert(collectionId, folder);
    return true;
}

bool CalendarItemBatch::concernsStored(const QList<EasCalendarItem> &added,
    const QList<EasCalendarItem> &updated, const QStringList &deleted) const
{
    const auto isKnown = [this](const QString &serverId) {
        return mRecovery.mapping().contains(serverId);
    };
    const QList<EasCalendarItem> items = added + updated;
    return std::any_of(deleted.cbegin(), deleted.cend(), isKnown)
        || std::any_of(items.cbegin(), items.cend(),
            [&isKnown](const EasCalendarItem &item) { return isKnown(item.serverId()); });
}

bool CalendarItemBatch::loadFolders(
    const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated, const QStringList &deleted)
{
    // Loading passes over what is in memory, which may be older than the store.
    mContext.calendar->close();
    // A first sync brings a large calendar in many replies; reading it for each would take most of the time.
    if (!concernsStored(added, updated, deleted))
        return true;
    for (auto folder = mFolders.cbegin(); folder != mFolders.cend(); ++folder) {
        if (!mRecovery.load(folder.value(), folder.key()))
            return false;
    }
    return true;
}

QString CalendarItemBatch::folderOf(const EasCalendarItem &item) const
{
    return mFolders.value(item.collectionId());
}

bool CalendarItemBatch::sortItems(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &replaced)
{
    if (!takePurged(added, updated, replaced) || !takeRepeated(added, updated, replaced))
        return false;
    for (EasCalendarItem &item : updated)
        CalendarEventFields::completeWholeItem(item, mContext.protocolVersion());
    return true;
}

std::optional<CalendarRecovery::State> CalendarItemBatch::stateOf(const EasCalendarItem &item)
{
    return mRecovery.stateOf(item.serverId(), folderOf(item));
}

bool CalendarItemBatch::takePurged(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &replaced)
{
    QList<EasCalendarItem> kept;
    for (const EasCalendarItem &item : qAsConst(updated)) {
        const std::optional<State> state = stateOf(item);
        if (!state)
            return false;
        if (state == State::Unknown && item.parameterHasBeenChanged(EasCalendarItem::StartTimeParameter)) {
            // It could not be understood when it came first.
            added.append(item);
        } else if (state == State::Purged) {
            qCInfo(eas()) << "Found previously purged item:" << item.serverId() << "-> "
                          << mRecovery.mapping().value(item.serverId()) << ", making addedItem.";
            replaced.append(item.serverId());
            added.append(item);
        } else if (state == State::Moved) {
            qCInfo(eas()) << "the user has moved the event to another calendar:" << item.serverId();
        } else {
            kept.append(item);
        }
    }
    updated = kept;
    return true;
}

bool CalendarItemBatch::takeRepeated(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &replaced)
{
    QMap<QString, EasCalendarItem> fresh;
    QStringList order;
    for (const EasCalendarItem &item : qAsConst(added)) {
        const QString serverId = item.serverId();
        const std::optional<State> state = replaced.contains(serverId) ? State::Unknown : stateOf(item);
        if (!state)
            return false;
        if (state == State::Edited || state == State::Moved) {
            qCInfo(eas()) << "the server repeats what was changed here since:" << serverId;
            continue;
        }
        if (state == State::Stored || state == State::Deleted) {
            updated.append(item);
            continue;
        }
        if (state == State::Purged)
            replaced.append(serverId);
        if (!fresh.contains(serverId))
            order.append(serverId);
        fresh.insert(serverId, item);
    }
    added.clear();
    for (const QString &serverId : qAsConst(order))
        added.append(fresh.value(serverId));
    return true;
}

bool CalendarItemBatch::handleAddedCalendarItems(QList<EasCalendarItem> &items) const
{
    QList<EasCalendarItem> stored;
    for (EasCalendarItem &item : items) {
        bool skipped = false;
        if (mWriter.storeEvent(item, folderOf(item), true, mRecovery.mapping(), skipped))
            stored.append(item);
        else
            qCWarning(eas()) << "Failed adding calendar item:" << item.serverId();
    }
    items = stored;
    return true;
}

bool CalendarItemBatch::handleUpdatedCalendarItems(QList<EasCalendarItem> &items) const
{
    QList<EasCalendarItem> stored;
    for (EasCalendarItem &item : items) {
        bool skipped = false;
        if (!mWriter.storeEvent(item, folderOf(item), false, mRecovery.mapping(), skipped))
            qCWarning(eas()) << "Failed updating calendar item:" << item.serverId();
        else if (!skipped)
            stored.append(item);
    }
    items = stored;
    return true;
}

bool CalendarItemBatch::handleDeletedCalendarItems(const QStringList &serverIds)
{
    for (const QString &serverId : serverIds) {
        const auto localId = mRecovery.mapping().constFind(serverId);
        if (localId == mRecovery.mapping().constEnd())
            qCInfo(eas()) << "No mapping:" << serverId << ". Ignoring this event.";
        else if (!deleteEvent(serverId, *localId))
            return false;
    }
    return true;
}

bool CalendarItemBatch::deleteEvent(const QString &serverId, const QString &localId)
{
    const Event::Ptr event = mContext.calendar->event(localId);
    // What the user has moved to another calendar is there an event of its own.
    if (!event || !mFolders.values().contains(mContext.calendar->notebook(localId))) {
        const Incidence::List deletedParts = mRecovery.deletedParts(localId);
        if (!deletedParts.isEmpty())
            qCInfo(eas()) << "Event was already locally deleted:" << localId;
        mDeleted += deletedParts;
        qCInfo(eas()) << "Event not found:" << serverId << "with local id:" << localId;
        return true;
    }
    mDeleted.append(event);
    const Event::List occurrences = mContext.calendar->eventInstances(event);
    for (const Event::Ptr &occurrence : occurrences)
        mDeleted.append(occurrence);
    if (!occurrences.isEmpty() && !mContext.calendar->deleteEventInstances(event)) {
        qCCritical(eas()) << "Failed deleting event occurrences:" << localId;
        return false;
    }
    if (!mContext.calendar->deleteEvent(event)) {
        qCCritical(eas()) << "Failed deleting event:" << localId;
        return false;
    }
    return true;
}

bool CalendarItemBatch::save()
{
    if (!mContext.storage->save()) {
        qCCritical(eas()) << "Failed to save";
        return false;
    }
    // What the server deleted must not be found as a deletion of the user's.
    if (!mDeleted.isEmpty() && !mContext.storage->purgeDeletedIncidences(mDeleted)) {
        qCCritical(eas()) << "failed to purge remotely deleted incidences from storage";
        return false;
    }
    return CalendarAttachmentService::forget(mDeleted);
}

bool CalendarItemBatch::completeAttachments(const QList<EasCalendarItem> &items) const
{
    for (const EasCalendarItem &item : items) {
        QList<EasAttachmentContainer> received = item.attachments();
        const QList<EasCalendarItem> exceptions = item.exceptions();
        for (const EasCalendarItem &exception : exceptions)
            received += exception.attachments();
        const Event::Ptr event = mContext.calendar->event(item.localId());
        if (received.isEmpty() || !event)
            continue;
        const Event::List parts = Event::List { event } + mContext.calendar->eventInstances(event);
        for (const Event::Ptr &part : parts) {
            if (!CalendarAttachmentService::completeRows(*part, received))
                return false;
        }
    }
    return true;
}
