// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>
#include <KCalendarCore/RecurrenceRule>

struct CalendarFieldWriting;
class EasCalendarItem;
class EasRecurrenceContainer;
class QTimeZone;

/**
 * Between the recurrence of a calendar item and the rule of an event.
 *
 * A server can name few kinds of recurrence; a rule made on the device that is none of them is turned into
 * the nearest one where there is one. Without state; all operations log what they refuse.
 */
class CalendarRecurrence
{
public:
    /** The item's recurrence becomes the rule of the event, or ends its series; false, logged, if it makes no
     * sense. */
    static bool write(const CalendarFieldWriting &writing);

    /** Replaces the rules of the event by this one; false if it makes no sense, and the event is unchanged.
     */
    static bool handleRecurrence(const KCalendarCore::Event::Ptr &event,
        const EasRecurrenceContainer &recurrence, const QTimeZone &timeZone);

    /**
     * Sets the item's recurrence from the event's rule. With allDayFix the end of an all-day series is the
     * end of its last day, and not the beginning.
     */
    static bool applyRecurrence(
        const KCalendarCore::Event::Ptr &event, EasCalendarItem &item, bool allDayFix);

    /** The days of a mask whose lowest bit is Sunday, each at this position in its month or year (0 none). */
    static QList<KCalendarCore::RecurrenceRule::WDayPos> convertDaysOfWeek(int mask, int pos);

    /** The mask and the common position of a list of days; pos may be null. False if positions differ. */
    static bool convertDaysOfWeek(
        const QList<KCalendarCore::RecurrenceRule::WDayPos> &days, int &mask, int *pos);

    static void convertDateToDayOfWeek(const QDate &date, int &dayOfWeek);
    static void convertDateToDayOfMonth(const QDate &date, int &dayOfMonth);
};
