// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/calendareventwriter.h"
#include "storages/calendar/calendarrecovery.h"

#include <KCalendarCore/Incidence>

#include <QMap>
#include <QStringList>

class CalendarLocalChanges;

/**
 * Writes the items of one reply to the device's calendar and saves them.
 *
 * The store is written before the mapping database, so the server's answer can come again after an
 * interruption: an added item that is known already is taken for a change, unless the user has changed it
 * since, and a changed one whose event is gone is added anew. An item that cannot be understood (its start is
 * no time, its series no rule) is left out with a log line, as it must not stop the calendar
 * for good; a store that fails makes the batch fail, and all of it comes again. A value for one reply; main
 * thread only.
 */
class CalendarItemBatch
{
public:
    CalendarItemBatch(const CalendarStoreContext &context, CalendarLocalChanges &localChanges);

    /**
     * Items that were stored stay in their lists, with their local identifiers and stamps; others leave them.
     * Server identifiers whose rows have to go before the lists are recorded are appended to replaced.
     */
    bool updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated,
        const QStringList &deleted, QStringList &replaced);

private:
    using State = CalendarRecovery::State;

    bool collectFolders(const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated,
        const QStringList &deleted);
    bool enterFolder(const QString &collectionId);
    /** Whether any item is one that the store may have already. */
    bool concernsStored(const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated,
        const QStringList &deleted) const;
    bool loadFolders(const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated,
        const QStringList &deleted);
    QString folderOf(const EasCalendarItem &item) const;
    bool sortItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &replaced);
    bool takeRepeated(QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &replaced);
    bool takePurged(QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, QStringList &replaced);
    std::optional<CalendarRecovery::State> stateOf(const EasCalendarItem &item);
    bool handleAddedCalendarItems(QList<EasCalendarItem> &items) const;
    bool handleUpdatedCalendarItems(QList<EasCalendarItem> &items) const;
    bool handleDeletedCalendarItems(const QStringList &serverIds);
    bool deleteEvent(const QString &serverId, const QString &localId);
    bool save();
    bool completeAttachments(const QList<EasCalendarItem> &items) const;

    const CalendarStoreContext &mContext;
    CalendarLocalChanges &mLocalChanges;
    CalendarRecovery mRecovery;
    CalendarEventWriter mWriter;
    /** Collections of the reply and their notebooks. */
    QMap<QString, QString> mFolders;
    KCalendarCore::Incidence::List mDeleted;
};
