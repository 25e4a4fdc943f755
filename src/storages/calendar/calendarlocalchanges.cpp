// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarlocalchanges.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/calendaraccountconfiguration.h"
#include "storages/calendar/calendaritemstamps.h"
#include "storages/calendar/calendarlocalchecks.h"
#include "storages/calendar/calendarlocalquery.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarrecovery.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"
#include "storages/calendar/calendaruploadsettlement.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

QDateTime toTime(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QSet<QString> uidsOf(const Incidence::List &incidences)
{
    QSet<QString> uids;
    for (const Incidence::Ptr &incidence : incidences)
        uids.insert(incidence->uid());
    return uids;
}

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

} // namespace

CalendarLocalChanges::CalendarLocalChanges(const CalendarStoreContext &context)
    : mContext(context)
{
}

bool CalendarLocalChanges::isEnabled() const
{
    const auto configuration = mContext.account ? mContext.account->calendarConfiguration() : nullptr;
    return configuration && configuration->enabled();
}

bool CalendarLocalChanges::canBeAsked() const
{
    if (!isEnabled()) {
        qCInfo(eas()) << "Calendar sync disabled";
        return false;
    }
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    return true;
}

bool CalendarLocalChanges::load(const QString &notebookUid) const
{
    // What is in memory would not be read again, and another process may have changed it.
    mContext.calendar->close();
    return mContext.storage->loadNotebookIncidences(notebookUid);
}

bool CalendarLocalChanges::hasLocalUpdates(const QString &notebookUid, qint64 since)
{
    qCInfo(eas()) << "hasLocalUpdates(): checking notebook:" << notebookUid
                  << "for changes since:" << toTime(since);
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    Incidence::List inserted;
    if (!mContext.storage->insertedIncidences(&inserted, toTime(since), notebookUid))
        qCWarning(eas()) << "Failed to query new items";
    Incidence::List modified;
    if (!mContext.storage->modifiedIncidences(&modified, toTime(since), notebookUid))
        qCWarning(eas()) << "Failed to query updated items";
    // Each save of a sync asks this; the rest of the calendar does not matter to the answer.
    CalendarTimestamps timestamps(mContext);
    mContext.calendar->close();
    if (timestamps.updateTimestampCache(notebookUid, uidsOf(inserted) + uidsOf(modified))
        != LocalQuery::Answered) {
        qCWarning(eas()) << "Can't load notebook incidences for notebook" << notebookUid;
        return false;
    }
    const CalendarLocalChecks checks(timestamps);
    for (const Incidence::Ptr &incidence : qAsConst(inserted)) {
        if (checks.checkNewLocalItem(incidence)) {
            qCInfo(eas()) << "new local item:" << incidence->uid();
            return true;
        }
    }
    for (const Incidence::Ptr &incidence : qAsConst(modified)) {
        if (checks.checkUpdatedLocalItem(incidence)) {
            qCInfo(eas()) << "updated local item:" << incidence->uid();
            return true;
        }
    }
    return hasDeletions(notebookUid, since, checks);
}

bool CalendarLocalChanges::hasDeletions(
    const QString &notebookUid, qint64 since, const CalendarLocalChecks &checks) const
{
    // An event that a sync has brought is younger than the time of that sync, and the store's list leaves out
    // what was made after the time that it is asked for.
    Incidence::List deleted;
    for (const int delay : { 0, 1, 9 }) {
        Incidence::List found;
        if (!mContext.storage->deletedIncidences(&found, toTime(since + delay), notebookUid))
            qCWarning(eas()) << "Failed to query deleted items";
        deleted += found;
    }
    for (const Incidence::Ptr &incidence : qAsConst(deleted)) {
        if (checks.checkDeletedLocalItem(incidence)) {
            qCInfo(eas()) << "deleted local item:" << incidence->uid();
            return true;
        }
    }
    return false;
}

QStringList CalendarLocalChanges::handleLocalUpdates()
{
    qCInfo(eas()) << "Handle local updates";
    if (!mContext.account || !mContext.account->calendarConfiguration()) {
        qCWarning(eas()) << "No calendar config";
        return {};
    }
    if (!isEnabled()) {
        qCInfo(eas()) << "Calendar disabled";
        return {};
    }
    const EasDatabase *database = EasDatabase::instance();
    const auto own =
        database->folderItemsByFolderType(mContext.accountId(), EasFolderItem::DefaultCalendarFolder);
    const auto others =
        database->folderItemsByFolderType(mContext.accountId(), EasFolderItem::UserCreatedCalendarFolder);
    if (!own || !others)
        return {};
    QStringList changed;
    const QList<EasFolderItem> folders = *own + *others;
    for (const EasFolderItem &folder : folders) {
        qint64 time = 0;
        if (folder.localId().isEmpty()) {
            qCWarning(eas()) << "No notebook UID" << folder.serverId();
        } else if (!syncTime(folder.localId(), time)) {
            qCWarning(eas()) << "No sync time:" << folder.localId() << "for" << folder.serverId();
        } else if (hasLocalUpdates(folder.localId(), time)) {
            qCInfo(eas()) << "Found local updates in:" << folder.localId();
            changed.append(folder.localId());
        } else {
            qCInfo(eas()) << "No local updates in:" << folder.localId();
        }
    }
    if (changed.isEmpty())
        qCInfo(eas()) << "No local updates are valid to upsync.";
    return changed;
}

LocalQuery CalendarLocalChanges::queryLocalUpdates(const QString &folderId, qint64 after, qint64 &queryTime,
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &deleted,
    UploadBudget *budget)
{
    qCInfo(eas()) << "Getting local updates for folder:" << folderId << ", after:" << toTime(after);
    if (!canBeAsked())
        return LocalQuery::StoreSilent;
    const Lookup<QMap<QString, QString>> known =
        EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!known)
        return LocalQuery::MappingFailed;
    const QMap<QString, QString> &notebooks = *known;
    const QString notebookUid =
        notebooks.value(folderId, notebooks.key(folderId).isEmpty() ? QString() : folderId);
    if (notebookUid.isEmpty()) {
        qCWarning(eas()) << "No notebook ID:" << folderId;
        return LocalQuery::StoreSilent;
    }
    CalendarTimestamps timestamps(mContext);
    // What an interruption left would pass for something that the user made.
    LocalQuery answer = CalendarRecovery::removeStrays(mContext, notebookUid);
    if (answer == LocalQuery::Answered)
        answer = timestamps.updateTimestampCache(notebookUid);
    if (answer != LocalQuery::Answered) {
        qCWarning(eas()) << "Failed loading notebook:" << notebookUid;
        return answer;
    }
    CalendarLocalQuery query(
        mContext, timestamps, mFreshUploads, notebooks.key(notebookUid), notebookUid, budget);
    if (!query.ask())
        return LocalQuery::StoreSilent;
    queryTime = Clock::instance().currentDateTimeUtc().toSecsSinceEpoch();
    qCInfo(eas()) << "Query time:" << toTime(queryTime);
    answer = query.evaluate();
    added = query.added();
    updated = query.updated();
    deleted = query.deleted();
    return answer;
}

bool CalendarLocalChanges::syncTime(const QString &localFolderId, qint64 &time) const
{
    const mKCal::Notebook::Ptr notebook =
        mContext.isReady() ? mContext.storage->notebook(localFolderId) : mKCal::Notebook::Ptr();
    if (!notebook)
        return false;
    const QDateTime date = notebook->syncDate().toUTC();
    time = date.isValid() ? date.toSecsSinceEpoch() : 0;
    return true;
}

bool CalendarLocalChanges::setSyncTime(const QString &localFolderId, qint64 time)
{
    if (!isEnabled()) {
        qCWarning(eas()) << "Calendar sync disabled, refusing to setSyncTime";
        return false;
    }
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage, refusing to setSyncTime";
        return false;
    }
    if (localFolderId.isEmpty()) {
        qCWarning(eas()) << "No calendar ID, refusing to setSyncTime";
        return false;
    }
    const mKCal::Notebook::Ptr notebook = mContext.storage->notebook(localFolderId);
    if (!notebook) {
        qCWarning(eas()) << "notebook pointer is null for local id" << localFolderId
                         << ", refusing to setSyncTime";
        return false;
    }
    notebook->setSyncDate(toTime(time));
    if (!mContext.storage->updateNotebook(notebook)) {
        qCWarning(eas()) << " failed to update notebook" << localFolderId << "in setSyncTime";
        return false;
    }
    return true;
}

bool CalendarLocalChanges::touchItems(
    const QString &serverFolderId, const QList<QPair<QString, QString>> &items)
{
    qCInfo(eas()) << "Getting local items for folder:" << serverFolderId;
    if (!canBeAsked())
        return false;
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
    const Lookup<uint> stored = EasDatabase::instance()->calendarItemUpdateTime(mContext.accountId(), uid);
    if (!stored)
        return false;
    if (*stored != EasDatabase::TimestampInvalid
        && CalendarTimestamps::timeToStamp(event->lastModified()) <= *stored)
        event->setLastModified(QDateTime::fromSecsSinceEpoch(qint64(*stored) + 1, Qt::UTC));
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
    mContext.calendar->close();
    return updateItemsTimestamps(foldersOf(added, updated), added, updated)
        && CalendarUploadSettlement(mContext).settle(added, updated, deleted);
}

void CalendarLocalChanges::forgetUploads(const QList<EasCalendarItem> &items)
{
    for (const EasCalendarItem &item : items)
        mFreshUploads.forget(item.localId());
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

bool CalendarLocalChanges::updateItemsTimestamps(
    const QStringList &folders, QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated)
{
    return CalendarItemStamps::update(mContext, folders, added, updated);
}
