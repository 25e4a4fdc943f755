// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendaroccurrence.h"

#include <KCalendarCore/Event>

#include <QSet>
#include <QStringList>

struct CalendarStoreContext;

/**
 * What becomes of local changes on the device once the server has taken them. The items say all that went up,
 * so that nothing has to be remembered between the search for changes and the answer.
 *
 * A file that went up has a row in the mapping from now on, one that was deleted has none; as long as the
 * server has not answered, the rows are as they were, and a repeated search finds the same. A series notes
 * which deleted occurrences the server knows. An exception that was deleted leaves an exception date behind:
 * to the server its occurrence is gone, and without the date the device would show what the series has there.
 *
 * The items' events are loaded. Made for one reply; main thread only.
 */
class CalendarUploadSettlement
{
public:
    explicit CalendarUploadSettlement(const CalendarStoreContext &context);

    /** False, logged, if store or mapping fail; the same answer may be settled again. */
    bool settle(const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &updated,
        const QStringList &deletedServerIds);

private:
    bool readDeleted();
    bool settleAttachments(const EasCalendarItem &item) const;
    bool settleExceptionFiles(
        const KCalendarCore::Event::Ptr &series, const EasCalendarItem &sentException) const;
    /** A series that is new goes up without its exceptions where these go up one by one: they follow,
     * whatever another folder knew of them. True if the series has been changed. */
    bool forgetDeletions(const EasCalendarItem &item) const;
    /** True if the series has been changed. */
    bool settleDeletions(const EasCalendarItem &item);
    QList<CalendarOccurrence> sentDeletions(const KCalendarCore::Event::Ptr &series,
        const EasCalendarItem &item, KCalendarCore::Incidence::List &exceptions) const;
    /** What the store remembers of these deletions would only be asked again. */
    bool collectGone(const QStringList &deletedServerIds);
    bool purge();

    const CalendarStoreContext &mContext;
    KCalendarCore::Incidence::List mDeleted;
    KCalendarCore::Incidence::List mGoneEvents;
    KCalendarCore::Incidence::List mGoneExceptions;
};
