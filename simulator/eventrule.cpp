// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventrule.h"

#include "simulator/datetext.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

/** A number in Recurrence: where it is kept, its bounds, and the types that have to and may have it. */
struct Row
{
    const char *tag;
    int EventRule::*member;
    int smallest;
    int largest;
    int needed; ///< bits of types
    int allowed;
    int firstVersion;
};

constexpr int bit(int type)
{
    return 1 << type;
}

const int anyType = bit(EventRule::Daily) | bit(EventRule::Weekly) | bit(EventRule::MonthlyByDay)
    | bit(EventRule::MonthlyByWeekDay) | bit(EventRule::YearlyByDay) | bit(EventRule::YearlyByWeekDay);
const int byWeekDay = bit(EventRule::MonthlyByWeekDay) | bit(EventRule::YearlyByWeekDay);
const int byDay = bit(EventRule::MonthlyByDay) | bit(EventRule::YearlyByDay);
const int yearly = bit(EventRule::YearlyByDay) | bit(EventRule::YearlyByWeekDay);
const int weekly = bit(EventRule::Weekly) | byWeekDay;

const Row rows[] = {
    { "Occurrences", &EventRule::occurrences, 1, 999, 0, anyType, Version120 },
    { "Interval", &EventRule::interval, 0, 999, 0, anyType, Version120 },
    { "WeekOfMonth", &EventRule::weekOfMonth, 1, 5, byWeekDay, byWeekDay, Version120 },
    { "DayOfWeek", &EventRule::dayOfWeek, 1, 127, weekly, weekly | bit(EventRule::Daily), Version120 },
    { "MonthOfYear", &EventRule::monthOfYear, 1, 12, yearly, yearly, Version120 },
    { "DayOfMonth", &EventRule::dayOfMonth, 1, 31, byDay, byDay, Version120 },
    { "CalendarType", &EventRule::calendarType, 0, 23, 0, anyType, Version140 },
    { "FirstDayOfWeek", &EventRule::firstDayOfWeek, 0, 6, 0, anyType, Version141 },
};

bool take(const Row &row, const WbxmlNode &node, EventRule &rule)
{
    const QString text = node.text(QLatin1String(row.tag));
    if (text.isEmpty())
        return (row.needed & bit(rule.type)) == 0;
    bool ok = false;
    const int value = text.toInt(&ok);
    rule.*row.member = value;
    return ok && value >= row.smallest && value <= row.largest && (row.allowed & bit(rule.type)) != 0;
}

int dayBit(const QDate &day)
{
    return 1 << (day.dayOfWeek() % 7);
}

bool isOnWeekDay(const QDate &day, int days, int week)
{
    const bool isLast = day.addDays(7).month() != day.month();
    return (days & dayBit(day)) != 0 && (week == 5 ? isLast : (day.day() + 6) / 7 == week);
}

/** Some days of the month are a set ("the last weekday"): then its position counts over all of them. */
bool isOnPosition(const QDate &day, int days, int week)
{
    const bool isOneDay = (days & (days - 1)) == 0;
    if (isOneDay)
        return isOnWeekDay(day, days, week);
    if ((days & dayBit(day)) == 0)
        return false;
    int position = 0;
    int count = 0;
    for (QDate other(day.year(), day.month(), 1); other.month() == day.month(); other = other.addDays(1)) {
        count += (days & dayBit(other)) != 0 ? 1 : 0;
        if (other == day)
            position = count;
    }
    return week == 5 ? position == count : position == week;
}

/** In a month that lacks the day it is the last one. */
bool isOnMonthDay(const QDate &day, int dayOfMonth)
{
    return day.day() == std::min(dayOfMonth, day.daysInMonth());
}

int monthsBetween(const QDate &first, const QDate &day)
{
    return (day.year() - first.year()) * 12 + day.month() - first.month();
}

int weeksBetween(const QDate &first, const QDate &day, int firstDayOfWeek)
{
    const auto weekStart = [firstDayOfWeek](const QDate &date) {
        return date.addDays(-((date.dayOfWeek() % 7 - std::max(0, firstDayOfWeek) + 7) % 7));
    };
    return int(weekStart(first).daysTo(weekStart(day)) / 7);
}

} // namespace

bool EventRule::operator==(const EventRule &other) const
{
    const bool sameNumbers = std::all_of(std::begin(rows), std::end(rows),
        [&](const Row &row) { return this->*row.member == other.*row.member; });
    return sameNumbers && type == other.type && until == other.until;
}

bool EventRule::meets(const QDate &day, const QDate &first) const
{
    if (day < first)
        return false;
    const int step = std::max(1, interval);
    switch (type) {
    case Daily:
        return first.daysTo(day) % step == 0 && (dayOfWeek == 0 || (dayOfWeek & dayBit(day)) != 0);
    case Weekly:
        return weeksBetween(first, day, firstDayOfWeek) % step == 0 && (dayOfWeek & dayBit(day)) != 0;
    case MonthlyByDay:
        return monthsBetween(first, day) % step == 0 && isOnMonthDay(day, dayOfMonth);
    case MonthlyByWeekDay:
        return monthsBetween(first, day) % step == 0 && isOnPosition(day, dayOfWeek, weekOfMonth);
    case YearlyByDay:
        return (day.year() - first.year()) % step == 0 && day.month() == monthOfYear
            && isOnMonthDay(day, dayOfMonth);
    case YearlyByWeekDay:
        return (day.year() - first.year()) % step == 0 && day.month() == monthOfYear
            && isOnPosition(day, dayOfWeek, weekOfMonth);
    default:
        return false;
    }
}

WbxmlNode EventRule::toNode(int version) const
{
    WbxmlNode node(QStringLiteral("Calendar:Recurrence"));
    node.append(QStringLiteral("Type"), type);
    for (const Row &row : rows) {
        const int value = this->*row.member;
        if (version >= row.firstVersion && value >= std::max(row.smallest, 1)
            && (row.allowed & bit(type)) != 0)
            node.append(QLatin1String(row.tag), value);
    }
    if (firstDayOfWeek == 0 && version >= Version141)
        node.append(QStringLiteral("FirstDayOfWeek"), 0);
    if (until.isValid())
        node.append(QStringLiteral("Until"), DateText::compact(until));
    return node;
}

std::optional<EventRule> EventRule::fromNode(const WbxmlNode &node, int version, const EventRule &before)
{
    bool ok = false;
    EventRule rule;
    for (const Row &row : rows) {
        const bool isOptional = row.member == &EventRule::firstDayOfWeek;
        if (version < row.firstVersion || isOptional)
            rule.*row.member = before.*row.member;
    }
    rule.type = node.text(QStringLiteral("Type")).toInt(&ok);
    if (!ok || rule.type < 0 || rule.type > YearlyByWeekDay || (anyType & bit(rule.type)) == 0)
        return std::nullopt;
    const bool allTaken =
        std::all_of(std::begin(rows), std::end(rows), [&](const Row &row) { return take(row, node, rule); });
    const QString until = node.text(QStringLiteral("Until"));
    rule.until = DateText::parse(until);
    if (!allTaken || rule.until.isValid() == until.isEmpty()
        || (rule.until.isValid() && rule.occurrences != 0))
        return std::nullopt;
    return rule;
}

} // namespace Simulator
