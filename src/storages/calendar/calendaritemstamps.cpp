// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaritemstamps.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"

namespace {

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

bool CalendarItemStamps::update(const CalendarStoreContext &context, const QStringList &serverFolderIds,
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated)
{
    const Lookup<QMap<QString, QString>> notebooks =
        EasDatabase::instance()->serverToLocalFolderIds(context.accountId());
    if (!notebooks)
        return false;
    for (const QString &folder : serverFolderIds) {
        CalendarTimestamps timestamps(context);
        const QSet<QString> uids = uidsIn(folder, added) + uidsIn(folder, updated);
        if (timestamps.updateTimestampCache(notebooks->value(folder), uids) != LocalQuery::Answered) {
            qCWarning(eas()) << "Cant load notebook incidences for collection" << folder;
            return false;
        }
        setStamps(added, folder, timestamps, "Updating stamp for added item:");
        setStamps(updated, folder, timestamps, "Updating stamp for updated item:");
    }
    return true;
}
