// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendartimes.h"

#include "storages/calendar/calendarmidnight.h"

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

QDateTime CalendarTimes::clockTime(const QDate &day)
{
    return day.startOfDay(Qt::LocalTime);
}

QDateTime CalendarTimes::start(const QString &text, const QTimeZone &zone, bool allDay)
{
    const QDateTime time = dateTimeFromString(text, &zone);
    return time.isValid() && allDay ? clockTime(CalendarMidnight::day(time)) : time;
}

QDateTime CalendarTimes::end(const QString &text, const QTimeZone &zone, bool allDay)
{
    const QDateTime time = dateTimeFromString(text, &zone);
    return time.isValid() && allDay ? clockTime(CalendarMidnight::day(time).addDays(-1)) : time;
}

QTimeZone CalendarTimes::zone(const Event &event)
{
    const auto midnight = CalendarMidnight::of(event);
    return midnight ? midnight->zone() : event.dtStart().timeZone();
}

QString CalendarTimes::dayText(const Event &series, const QDate &day, ProtocolVersion version)
{
    if (version >= ProtocolVersion160)
        return dateTimeToString(QDateTime(day, QTime(0, 0), Qt::UTC));
    const auto midnight = CalendarMidnight::of(series);
    return dateTimeToString(midnight ? midnight->begin(day) : day.startOfDay(series.dtStart().timeZone()));
}

QString CalendarTimes::startText(const Event &event, const Event &series, ProtocolVersion version)
{
    return event.allDay() ? dayText(series, event.dtStart().date(), version)
                          : dateTimeToString(event.dtStart());
}

QString CalendarTimes::endText(const Event &event, const Event &series, ProtocolVersion version)
{
    return event.allDay() ? dayText(series, event.dtEnd().date().addDays(1), version)
                          : dateTimeToString(event.dtEnd());
}
