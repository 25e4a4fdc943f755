// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QSet>
#include <QTimeZone>

class CalendarOccurrence;
struct CalendarStoreContext;
class EasCalendarItem;

/**
 * The exceptions of a series: occurrences that are left out, and occurrences that are events of their own.
 *
 * The item's list is the whole list; an exception of the store that it does not name goes. An exception whose
 * moment is no occurrence of the series, or that cannot be understood, is left out with a log line, as it
 * must not cost the user the series, and stands with the series as it came (CalendarReceivedRule). Nothing is
 * saved here. Main thread only.
 */
class CalendarExceptions
{
public:
    /** Exceptions that were deleted are appended to the list, to be purged after the save. */
    CalendarExceptions(const CalendarStoreContext &context, KCalendarCore::Incidence::List *deleted);

    /** Whether all exceptions can be understood, and are not too many; to be asked before anything is
     * changed. */
    static bool areAcceptable(
        const KCalendarCore::Event::Ptr &event, const EasCalendarItem &item, const QTimeZone &zone);

    /** Forgets which occurrences were left out. */
    static void clear(const KCalendarCore::Event::Ptr &event);

    /** Applies the list of the item to its series, which stands in this notebook of the calendar. */
    bool handleExceptions(const KCalendarCore::Event::Ptr &event, const EasCalendarItem &item,
        const QString &folder, const QTimeZone &zone) const;

    /** Of an event that is no series any more. */
    bool removeExceptions(const KCalendarCore::Event::Ptr &event) const;

private:
    bool deleteException(const KCalendarCore::Event::Ptr &event, const CalendarOccurrence &occurrence) const;
    bool addException(const KCalendarCore::Event::Ptr &event, const EasCalendarItem &exception,
        const QString &folder, const CalendarOccurrence &occurrence, const QTimeZone &zone) const;
    bool removeOthers(const KCalendarCore::Event::Ptr &event, const QSet<QDateTime> &named) const;
    bool remove(const KCalendarCore::Event::Ptr &exception) const;

    const CalendarStoreContext &mContext;
    KCalendarCore::Incidence::List *mDeleted;
};
