// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarlocalchanges.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/calendaraccountconfiguration.h"
#include "storages/calendar/calendarlocalchecks.h"
#include "storages/calendar/calendarlocalquery.h"
#include "storages/calendar/calendarorigin.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"

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

} // namespace

CalendarLocalChanges::CalendarLocalChanges(const CalendarStoreContext &context)
    : mContext(context)
    , mDeletions(context)
    , mAttachments(context)
{
}

bool CalendarLocalChanges::isEnabled() const
{
    const auto configuration = mContext.account ? mContext.account->calendarConfiguration() : nullptr;
    return configuration && configuration->enabled();
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
    if (!timestamps.updateTimestampCache(notebookUid, uidsOf(inserted) + uidsOf(modified))) {
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

bool CalendarLocalChanges::queryLocalUpdates(const QString &folderId, qint64 after, qint64 &queryTime,
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &deleted)
{
    qCInfo(eas()) << "Getting local updates for folder:" << folderId << ", after:" << toTime(after);
    if (!isEnabled()) {
        qCInfo(eas()) << "Calendar sync disabled";
        return false;
    }
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    const EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> notebooks = database->serverToLocalFolderIds(mContext.accountId());
    const QString notebookUid =
        notebooks.value(folderId, notebooks.key(folderId).isEmpty() ? QString() : folderId);
    if (notebookUid.isEmpty()) {
        qCWarning(eas()) << "No notebook ID:" << folderId;
        return false;
    }
    // What an interruption left would pass for something that the user made.
    CalendarTimestamps timestamps(mContext);
    if (!CalendarOrigin::removeStrays(mContext, notebookUid)
        || !timestamps.updateTimestampCache(notebookUid)) {
        qCWarning(eas()) << "Failed loading notebook:" << notebookUid;
        return false;
    }
    CalendarLocalQuery query(
        mContext, timestamps, mDeletions, mAttachments, notebooks.key(notebookUid), notebookUid);
    if (!query.ask(toTime(after)))
        return false;
    queryTime = Clock::instance().currentDateTimeUtc().toSecsSinceEpoch();
    qCInfo(eas()) << "Query time:" << toTime(queryTime);
    if (!query.evaluate())
        return false;
    added = query.added();
    updated = query.updated();
    deleted = query.deleted();
    return true;
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
