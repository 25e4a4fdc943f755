// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendarstorageimpl.h"

#include "application/easaccount.h"
#include "application/logging.h"
#include "easitems/eascalendaritem.h"
#include "easitems/easfolderitem.h"

namespace {

/** False, with a log line, if there is anything that would have to be kept. */
bool nothingToKeep(EasAccountId accountId, const char *what, int count)
{
    if (count == 0)
        return true;
    qCWarning(eas()) << "There is no calendar store:" << what << count << "refused, account" << accountId;
    return false;
}

} // namespace

CalendarStorageImpl::CalendarStorageImpl(EasAccount &account, QObject *parent)
    : CalendarStorage(parent)
    , mAccountId(account.id())
{
}

CalendarStorageImpl::~CalendarStorageImpl() = default;

bool CalendarStorageImpl::cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds)
{
    Q_UNUSED(accountIds)
    return true;
}

bool CalendarStorageImpl::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted)
{
    // The folders stay marked as not saved, so that a calendar store will still make them.
    Q_UNUSED(added)
    Q_UNUSED(changed)
    Q_UNUSED(deleted)
    return true;
}

bool CalendarStorageImpl::updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
    const QStringList &deleted, QStringList &replaced)
{
    Q_UNUSED(replaced)
    return nothingToKeep(mAccountId, "events", added.size() + changed.size() + deleted.size());
}

bool CalendarStorageImpl::touchItems(
    const QString &folderServerId, const QList<QPair<QString, QString>> &instances)
{
    Q_UNUSED(folderServerId)
    return nothingToKeep(mAccountId, "occurrences", instances.size());
}

bool CalendarStorageImpl::queryLocalUpdates(const QString &localFolderId, qint64 from, qint64 &newTime,
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, QStringList &deletedServerIds)
{
    Q_UNUSED(localFolderId)
    Q_UNUSED(added)
    Q_UNUSED(changed)
    Q_UNUSED(deletedServerIds)
    newTime = from;
    return true;
}

bool CalendarStorageImpl::syncTime(const QString &localFolderId, qint64 &time)
{
    Q_UNUSED(localFolderId)
    time = 0;
    return true;
}

bool CalendarStorageImpl::setSyncTime(const QString &localFolderId, qint64 time)
{
    Q_UNUSED(localFolderId)
    Q_UNUSED(time)
    return true;
}

bool CalendarStorageImpl::cleanUpFolder(const EasFolderItem &folder)
{
    Q_UNUSED(folder)
    return true;
}

bool CalendarStorageImpl::uploadedLocalChanges(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, const QStringList &deletedServerIds)
{
    return nothingToKeep(
        mAccountId, "uploaded events", added.size() + changed.size() + deletedServerIds.size());
}

QByteArray CalendarStorageImpl::iTIPRequestData(
    const EasMeetingRequestContainer &request, const QString &organizer, const QString &description)
{
    Q_UNUSED(request)
    Q_UNUSED(organizer)
    Q_UNUSED(description)
    return QByteArray();
}
