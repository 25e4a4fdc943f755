// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendarfreshuploads.h"
#include "storages/localquery.h"

#include <QList>
#include <QPair>
#include <QStringList>

class UploadBudget;
struct CalendarStoreContext;

/**
 * What the user changed in the device's calendar since the last sync, and what becomes of it once the server
 * has taken it.
 *
 * There is no journal: the store's lists of changes and the stamps in the mapping tell (CalendarTimestamps).
 * Each operation reads the store afresh, after which the calendar does not know events that were held before.
 * Belongs to the calendar storage.
 */
class CalendarLocalChanges
{
public:
    explicit CalendarLocalChanges(const CalendarStoreContext &context);

    /** Whether anything in the notebook has been changed since this time (seconds since the epoch). */
    bool hasLocalUpdates(const QString &notebookUid, qint64 since);
    /** Local ids of the account's calendar folders with changes. */
    QStringList handleLocalUpdates();
    /** The folder's server id, or its local one. All that the server does not know is found, whenever it
     * happened; the time is for the log. */
    LocalQuery queryLocalUpdates(const QString &folderId, qint64 after, qint64 &queryTime,
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &deleted,
        UploadBudget *budget = nullptr);
    /** Pairs of a uid and the start of an occurrence; they count as changed from now on. */
    bool touchItems(const QString &serverFolderId, const QList<QPair<QString, QString>> &items);
    bool uploadedLocalChanges(
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, const QStringList &deleted);

    /** Items of the server have been stored. */
    void forgetUploads(const QList<EasCalendarItem> &items);

    /** Gives items whose stamp is not known the one that the store has; they are of these folders. */
    bool updateItemsTimestamps(
        const QStringList &folders, QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated);

    /** Seconds since the epoch up to which the server knows the folder; 0 before the first sync. */
    bool syncTime(const QString &localFolderId, qint64 &time) const;
    bool setSyncTime(const QString &localFolderId, qint64 time);

private:
    bool isEnabled() const;
    /** Logged if not. */
    bool canBeAsked() const;
    /** Reads a notebook afresh. */
    bool load(const QString &notebookUid) const;
    bool hasDeletions(
        const QString &notebookUid, qint64 since, const class CalendarLocalChecks &checks) const;
    bool touch(const QString &uid, const QString &start);
    QStringList foldersOf(const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated) const;

    const CalendarStoreContext &mContext;
    CalendarFreshUploads mFreshUploads;
};
