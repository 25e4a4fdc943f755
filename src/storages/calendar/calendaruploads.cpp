// SPDX-License-Identifier: LGPL-2.1-or-later
// The second half of CalendarLocalChanges: what is written back to the store around an upload.
#include "storages/calendar/calendarlocalchanges.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** The occurrence of a series that a text of the protocol names: its exception, or the series itself if it is
 * excluded. */
Event::Ptr occurrence(const CalendarStoreContext &context, const QString &uid, const QString &start)
{
    const Event::Ptr series = context.calendar->event(uid);
    if (!series)
        return Event::Ptr();
    const Event::List exceptions = context.calendar->eventInstances(series);
    for (const Event::Ptr &exception : exceptions) {
        if (CalendarOccurrence(series, exception->recurrenceId()).wire(context.protocolVersion()) == start)
            return exception;
    }
    const QList<CalendarOccurrence> excluded = CalendarOccurrence::excludedFrom(series);
    for (const CalendarOccurrence &deletion : excluded) {
        if (deletion.wire(context.protocolVersion()) == start)
            return series;
    }
    return Event::Ptr();
}

void collectUids(const QList<EasCalendarItem> &items, QStringList &uids)
{
    for (const EasCalendarItem &item : items)
        uids.append(item.localId());
}

QSet<QString> uidsIn(const QString &folder, const QList<EasCalendarItem> &items)
{
    QSet<QString> uids;
    for (const EasCalendarItem &item : items) {
        if (item.collectionId() == folder)
            uids.insert(item.localId());
    }
    return uids;
}

void setStamps(QList<EasCalendarItem> &items, const QString &folder, const CalendarTimestamps &timestamps,
    const char *text)
{
    for (EasCalendarItem &item : items) {
        if (item.collectionId() != folder)
            continue;
        // An upload bears the stamp of what was uploaded: an edit since then is still to go up.
        if (item.localTimestamp() == EasCalendarItem::InvalidTimestamp)
            item.setLocalTimestamp(timestamps.eventTimestamp(item.localId()));
        qCDebug(eas()) << text << item.localId() << ", stamp:" << item.localTimestamp();
    }
}

} // namespace

bool CalendarLocalChanges::touchItems(
    const QString &serverFolderId, const QList<QPair<QString, QString>> &items)
{
    qCInfo(eas()) << "Getting local items for folder:" << serverFolderId;
    if (!isEnabled()) {
        qCInfo(eas()) << "Calendar sync disabled";
        return false;
    }
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    const Lookup<QMap<QString, QString>> notebooks =
        EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!notebooks)
        return false;
    const QString notebookUid = notebooks->value(serverFolderId);
    if (notebookUid.isEmpty()) {
        qCWarning(eas()) << "No notebook ID:" << serverFolderId;
        return false;
    }
    if (!load(notebookUid)) {
        qCWarning(eas()) << "Failed loading notebook:" << notebookUid;
        return false;
    }
    qCInfo(eas()) << "Touth time:" << Clock::instance().currentDateTimeUtc();
    for (const QPair<QString, QString> &item : items) {
        if (!touch(item.first, item.second))
            qCWarning(eas()) << "Event" << item.first << "not found in Calendar storage";
    }
    qCInfo(eas()) << "Finished touching items";
    const bool saved = mContext.storage->save();
    if (!saved)
        qCWarning(eas()) << "Failed to save";
    mContext.calendar->close();
    return saved;
}

bool CalendarLocalChanges::touch(const QString &uid, const QString &start)
{
    const Event::Ptr event = occurrence(mContext, uid, start);
    if (!event)
        return false;
    event->startUpdates();
    event->endUpdates();
    // Times of change count in seconds, and the upload that this follows may belong to the same one.
    const uint stored = EasDatabase::instance()->calendarItemUpdateTime(mContext.accountId(), uid);
    if (stored != EasDatabase::TimestampInvalid
        && CalendarTimestamps::timeToStamp(event->lastModified()) <= stored)
        event->setLastModified(QDateTime::fromSecsSinceEpoch(qint64(stored) + 1, Qt::UTC));
    return true;
}

bool CalendarLocalChanges::uploadedLocalChanges(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, const QStringList &deleted)
{
    qCInfo(eas()) << "Successfully uploaded calendar changes:"
                  << "Added:" << added.size() << "Updated:" << updated.size() << "Deleted:" << deleted.size();
    if (added.isEmpty() && updated.isEmpty() && deleted.isEmpty())
        return true;
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    const QStringList folders = foldersOf(added, updated);
    QStringList uids;
    collectUids(added, uids);
    collectUids(updated, uids);
    mContext.calendar->close();
    return updateItemsTimestamps(folders, added, updated) && settleUploads(uids, deleted);
}

QStringList CalendarLocalChanges::foldersOf(
    const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated) const
{
    QStringList folders;
    const QList<EasCalendarItem> items = added + updated;
    for (const EasCalendarItem &item : items) {
        if (item.collectionId().isEmpty())
            qCWarning(eas()) << "Empty collection Id for item" << item.localId();
        else if (!folders.contains(item.collectionId()))
            folders.append(item.collectionId());
    }
    return folders;
}

bool CalendarLocalChanges::settleUploads(const QStringList &uids, const QStringList &deletedServerIds)
{
    mAttachments.settle(uids);
    if (mDeletions.settle(uids) && !mContext.storage->save()) {
        qCWarning(eas()) << "Failed to save";
        return false;
    }
    // The server has heard of these deletions; what the store remembers of them would only be asked again.
    const QMap<QString, QString> localIds =
        EasDatabase::instance()->serverToLocalCalendarIds(mContext.accountId());
    QStringList goneUids;
    for (const QString &serverId : deletedServerIds)
        goneUids.append(localIds.value(serverId));
    Incidence::List deleted;
    if (!goneUids.isEmpty() && !mContext.storage->deletedIncidences(&deleted))
        qCWarning(eas()) << "Failed to query deleted items";
    Incidence::List gone;
    for (const Incidence::Ptr &incidence : qAsConst(deleted)) {
        if (goneUids.contains(incidence->uid()))
            gone.append(incidence);
    }
    CalendarAttachmentService::forget(gone);
    if (!mDeletions.purge() || (!gone.isEmpty() && !mContext.storage->purgeDeletedIncidences(gone)))
        qCWarning(eas()) << "cannot erase what was deleted";
    return true;
}

bool CalendarLocalChanges::updateItemsTimestamps(
    const QStringList &folders, QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated)
{
    const QMap<QString, QString> notebooks =
        EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    for (const QString &folder : folders) {
        CalendarTimestamps timestamps(mContext);
        const QSet<QString> uids = uidsIn(folder, added) + uidsIn(folder, updated);
        if (!timestamps.updateTimestampCache(notebooks.value(folder), uids)) {
            qCWarning(eas()) << "Cant load notebook incidences for collection" << folder;
            return false;
        }
        setStamps(added, folder, timestamps, "Updating stamp for added item:");
        setStamps(updated, folder, timestamps, "Updating stamp for updated item:");
    }
    return true;
}
