// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarrecurrence.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendareventfield.h"
#include "storages/calendar/calendarreceivedrule.h"
#include "storages/calendar/calendartimes.h"

#include <KCalendarCore/Recurrence>

#include <memory>

using KCalendarCore::Event;
using KCalendarCore::RecurrenceRule;
using WDayPos = RecurrenceRule::WDayPos;

namespace {

constexpr int DaysInWeek = 7;
/** The last week of a month: in a rule, and on the wire. */
constexpr int LastWeekOfRule = -1;
constexpr int LastWeek = 5;
/** The protocol ends at 999. A rule looks its end up by counting, which must not take seconds. */
constexpr int LargestCount = 9999;

// From the server's recurrence to a rule.

/** Some servers leave out the day of a monthly series; it is that of its first occurrence. */
EasRecurrenceContainer completed(EasRecurrenceContainer recurrence, const QDate &start)
{
    if (recurrence.type() == EasRecurrenceContainer::MonthlyRecurrence && recurrence.dayOfMonth() == 0) {
        recurrence.setDayOfMonth(start.day());
        qCInfo(eas()) << "fixed dayOfMonth" << recurrence.dayOfMonth();
    }
    return recurrence;
}

RecurrenceRule::PeriodType period(EasRecurrenceContainer::RecurrenceType type)
{
    switch (type) {
    case EasRecurrenceContainer::DailyRecurrence:
        return RecurrenceRule::rDaily;
    case EasRecurrenceContainer::WeeklyRecurrence:
        return RecurrenceRule::rWeekly;
    case EasRecurrenceContainer::MonthlyRecurrence:
    case EasRecurrenceContainer::MonthlyNthDayRecurrence:
        return RecurrenceRule::rMonthly;
    case EasRecurrenceContainer::YearlyRecurrence:
    case EasRecurrenceContainer::YearlyNthDayRecurrence:
        return RecurrenceRule::rYearly;
    default:
        return RecurrenceRule::rNone;
    }
}

int rulePosition(const EasRecurrenceContainer &recurrence)
{
    return recurrence.weekOfMonth() == LastWeek ? LastWeekOfRule : recurrence.weekOfMonth();
}

bool required(bool present, const char *failure)
{
    if (!present)
        qCWarning(eas()) << failure;
    return present;
}

/** Sets the days on which a rule of this type falls. */
bool setDays(RecurrenceRule &rule, const EasRecurrenceContainer &recurrence)
{
    const auto weekDays = [&](int pos) {
        return CalendarRecurrence::convertDaysOfWeek(recurrence.dayOfWeek(), pos);
    };
    switch (recurrence.type()) {
    case EasRecurrenceContainer::DailyRecurrence:
        if (recurrence.dayOfWeek() != 0)
            rule.setByDays(weekDays(0));
        return true;
    case EasRecurrenceContainer::WeeklyRecurrence:
        rule.setByDays(weekDays(0));
        return required(recurrence.dayOfWeek() != 0, "No required day-of-week");
    case EasRecurrenceContainer::MonthlyRecurrence:
        rule.setByMonthDays({ recurrence.dayOfMonth() });
        return required(recurrence.dayOfMonth() != 0, "No required day-of-month");
    case EasRecurrenceContainer::MonthlyNthDayRecurrence:
        rule.setByDays(weekDays(rulePosition(recurrence)));
        return required(recurrence.dayOfWeek() != 0 && recurrence.weekOfMonth() != 0,
            "No required day-of-week or week-of-month");
    case EasRecurrenceContainer::YearlyRecurrence:
        rule.setByMonthDays({ recurrence.dayOfMonth() });
        rule.setByMonths({ recurrence.monthOfYear() });
        return required(recurrence.dayOfMonth() != 0 && recurrence.monthOfYear() != 0,
            "No required day-of-month or month-of-year");
    case EasRecurrenceContainer::YearlyNthDayRecurrence:
        rule.setByMonths({ recurrence.monthOfYear() });
        rule.setByDays(weekDays(rulePosition(recurrence)));
        return required(recurrence.weekOfMonth() != 0 && recurrence.monthOfYear() != 0,
            "No required month-of-year or week-of-month");
    default:
        qCWarning(eas()) << "Unexpected type:" << recurrence.type();
        return false;
    }
}

bool setEnd(
    RecurrenceRule &rule, const EasRecurrenceContainer &recurrence, const QTimeZone &timeZone, bool allDay)
{
    if (recurrence.occurrences() > LargestCount)
        qCWarning(eas()) << "Too many occurrences to count, taken for endless:" << recurrence.occurrences();
    else if (recurrence.occurrences() > 0)
        rule.setDuration(recurrence.occurrences());
    if (recurrence.until().isEmpty())
        return true;
    const QDateTime until = CalendarTimes::start(recurrence.until(), timeZone, allDay);
    if (!until.isValid()) {
        qCWarning(eas()) << "Wrong until time:" << recurrence.until();
        return false;
    }
    rule.setEndDt(until);
    return true;
}

// From a rule to the server's recurrence.

QString joined(const QList<int> &values)
{
    QStringList texts;
    for (const int value : values)
        texts.append(QString::number(value));
    return texts.join(QStringLiteral(", "));
}

QString joined(const QList<WDayPos> &days)
{
    QStringList texts;
    for (const WDayPos &day : days)
        texts.append(QStringLiteral("%1:%2").arg(day.pos()).arg(day.day()));
    return texts.join(QStringLiteral(", "));
}

/** The days of the week; a rule without any means the day of the start. */
bool readDaysOfWeek(
    const RecurrenceRule &rule, const QDate &start, EasRecurrenceContainer &recurrence, bool withPosition)
{
    int mask = 0;
    int pos = 0;
    const bool converted =
        CalendarRecurrence::convertDaysOfWeek(rule.byDays(), mask, withPosition ? &pos : nullptr);
    if (!converted || pos < LastWeekOfRule || pos > LastWeek) {
        qCCritical(eas()) << "Failed to convert days of week";
        return false;
    }
    if (mask == 0 && recurrence.type() != EasRecurrenceContainer::DailyRecurrence) {
        CalendarRecurrence::convertDateToDayOfWeek(start, mask);
        qCInfo(eas()) << "fixed dayOfWeek" << mask;
    }
    recurrence.setDayOfWeek(mask);
    if (withPosition)
        recurrence.setWeekOfMonth(pos == LastWeekOfRule ? LastWeek : pos);
    return true;
}

void readDayOfMonth(const QList<int> &monthDays, const QDate &start, EasRecurrenceContainer &recurrence)
{
    int dayOfMonth = monthDays.size() == 1 ? monthDays.first() : 0;
    if (dayOfMonth <= 0) { // the protocol counts no days from a month's end
        CalendarRecurrence::convertDateToDayOfMonth(start, dayOfMonth);
        qCInfo(eas()) << "fixed dayOfMonth" << dayOfMonth;
    }
    qCDebug(eas()) << "Setting dayOfMonth:" << dayOfMonth;
    recurrence.setDayOfMonth(dayOfMonth);
}

bool readMonthly(const RecurrenceRule &rule, const QDate &start, EasRecurrenceContainer &recurrence)
{
    qCDebug(eas()) << "ByDays:" << joined(rule.byDays());
    qCDebug(eas()) << "ByMonthDays:" << joined(rule.byMonthDays());
    if (!rule.byDays().isEmpty()) {
        recurrence.setType(EasRecurrenceContainer::MonthlyNthDayRecurrence);
        return readDaysOfWeek(rule, start, recurrence, true);
    }
    recurrence.setType(EasRecurrenceContainer::MonthlyRecurrence);
    readDayOfMonth(rule.byMonthDays(), start, recurrence);
    return true;
}

bool readYearlyByStart(const RecurrenceRule &rule, const QDate &start, EasRecurrenceContainer &recurrence)
{
    qCInfo(eas()) << "byMonthDays is empty, fixing values based on the startDate";
    if (!rule.byDays().isEmpty()) {
        qCCritical(eas()) << "failed to fix yearly recurrecnce values";
        return false;
    }
    recurrence.setType(EasRecurrenceContainer::YearlyRecurrence);
    recurrence.setMonthOfYear(start.month());
    recurrence.setDayOfMonth(start.day());
    return true;
}

bool readYearly(const RecurrenceRule &rule, const QDate &start, EasRecurrenceContainer &recurrence)
{
    if (rule.byMonths().size() != 1)
        return readYearlyByStart(rule, start, recurrence);
    const QList<int> monthDays = rule.byMonthDays();
    if (monthDays.size() > 1) {
        qCCritical(eas()) << "Unexpected month-days number:" << monthDays.size();
        return false;
    }
    recurrence.setMonthOfYear(rule.byMonths().first());
    if (monthDays.isEmpty()) {
        recurrence.setType(EasRecurrenceContainer::YearlyNthDayRecurrence);
        return readDaysOfWeek(rule, start, recurrence, true);
    }
    recurrence.setType(EasRecurrenceContainer::YearlyRecurrence);
    readDayOfMonth(monthDays, start, recurrence);
    return true;
}

bool readPeriod(const RecurrenceRule &rule, const QDate &start, EasRecurrenceContainer &recurrence)
{
    switch (rule.recurrenceType()) {
    case RecurrenceRule::rDaily:
        recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
        return readDaysOfWeek(rule, start, recurrence, false);
    case RecurrenceRule::rWeekly:
        recurrence.setType(EasRecurrenceContainer::WeeklyRecurrence);
        return readDaysOfWeek(rule, start, recurrence, false);
    case RecurrenceRule::rMonthly:
        return readMonthly(rule, start, recurrence);
    case RecurrenceRule::rYearly:
        return readYearly(rule, start, recurrence);
    default:
        qCWarning(eas()) << "Unknown type:" << int(rule.recurrenceType());
        return false;
    }
}

/** A rule with a count has an end as well, which is not its own but comes from counting. */
void readEnd(const RecurrenceRule &rule, bool untilEndOfDay, EasRecurrenceContainer &recurrence)
{
    recurrence.setOccurrences(qMax(0, rule.duration()));
    if (recurrence.occurrences() > 0)
        return;
    QDateTime until = rule.endDt();
    if (until.isValid() && untilEndOfDay)
        until = QDateTime(until.date().addDays(1), QTime(0, 0), Qt::UTC);
    recurrence.setUntil(ExchangeActiveSync::dateTimeToString(until));
}

} // namespace

bool CalendarRecurrence::write(const CalendarFieldWriting &writing)
{
    const Event::Ptr &event = writing.event;
    const EasRecurrenceContainer recurrence = writing.item.recurrence();
    if (recurrence.type() == EasRecurrenceContainer::UndefinedRecurrence) {
        event->clearRecurrence(); // no series any more
        CalendarReceivedRule(event).keep(recurrence);
        return true;
    }
    // The last day of an all-day series is a day of the item's zone; any other end is a moment.
    const QTimeZone zone = event->allDay() ? writing.zone : Clock::instance().timeZone();
    if (!handleRecurrence(event, completed(recurrence, event->dtStart().date()), zone)) {
        qCWarning(eas()) << "Failed handling recurrence";
        return false;
    }
    CalendarReceivedRule(event).keep(recurrence);
    return true;
}

bool CalendarRecurrence::handleRecurrence(
    const Event::Ptr &event, const EasRecurrenceContainer &recurrence, const QTimeZone &timeZone)
{
    if (recurrence.firstDayOfWeek() != EasRecurrenceContainer::UndefinedFirstDay)
        qCWarning(eas()) << "Unsupported 1st day-of-week:" << recurrence.firstDayOfWeek();
    const RecurrenceRule::PeriodType type = period(recurrence.type());
    if (type == RecurrenceRule::rNone) {
        qCWarning(eas()) << "Unknown recurrence type:" << recurrence.type();
        return false;
    }
    auto rule = std::make_unique<RecurrenceRule>();
    rule->setRecurrenceType(type);
    rule->setStartDt(event->dtStart());
    if (!setEnd(*rule, recurrence, timeZone, event->allDay()))
        return false;
    rule->setFrequency(qMax(1, recurrence.interval()));
    if (!setDays(*rule, recurrence))
        return false;

    KCalendarCore::Recurrence *recurrences = event->recurrence();
    const RecurrenceRule::List existing = recurrences->rRules();
    for (RecurrenceRule *old : existing)
        recurrences->deleteRRule(old);
    recurrences->addRRule(rule.release());
    return true;
}

bool CalendarRecurrence::applyRecurrence(const Event::Ptr &event, EasCalendarItem &item, bool allDayFix)
{
    if (!event->recurs()) {
        qCWarning(eas()) << "Event is not recurrent:" << event->uid();
        return false;
    }
    const RecurrenceRule *rule = event->recurrence()->defaultRRuleConst();
    if (rule == nullptr) {
        qCWarning(eas()) << "No recurrence rule";
        return false;
    }
    EasRecurrenceContainer recurrence;
    readEnd(*rule, event->allDay() && allDayFix, recurrence);
    if (rule->frequency() > 0)
        recurrence.setInterval(int(rule->frequency()));
    if (!readPeriod(*rule, event->dtStart().date(), recurrence))
        return false;
    CalendarReceivedRule(event).complete(recurrence);
    item.setRecurrence(recurrence);
    return true;
}

QList<WDayPos> CalendarRecurrence::convertDaysOfWeek(int mask, int pos)
{
    QList<WDayPos> days;
    for (short day = 1; day <= DaysInWeek; ++day) {
        if (mask & (1 << (day % DaysInWeek)))
            days.append(WDayPos(pos, day));
    }
    return days;
}

bool CalendarRecurrence::convertDaysOfWeek(const QList<WDayPos> &days, int &mask, int *pos)
{
    mask = 0;
    int common = 0;
    for (const WDayPos &day : days) {
        if (day.pos() != 0 && common != 0 && day.pos() != common) {
            qCWarning(eas()) << "failed to convert daysOfWeek" << joined(days);
            return false;
        }
        if (day.pos() != 0)
            common = day.pos();
        mask |= 1 << (day.day() % DaysInWeek);
    }
    if (pos != nullptr)
        *pos = common;
    return true;
}

void CalendarRecurrence::convertDateToDayOfWeek(const QDate &date, int &dayOfWeek)
{
    dayOfWeek = 1 << (date.dayOfWeek() % DaysInWeek);
}

void CalendarRecurrence::convertDateToDayOfMonth(const QDate &date, int &dayOfMonth)
{
    dayOfMonth = date.day();
}
