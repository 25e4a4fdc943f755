// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendartimes.h"

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

namespace {

QDate nearestDay(const QDateTime &time)
{
    constexpr int noon = 12;
    return time.time().hour() < noon ? time.date() : time.date().addDays(1);
}

} // namespace

QDateTime CalendarTimes::start(const QString &text, const QTimeZone &zone, bool allDay)
{
    const QDateTime time = dateTimeFromString(text, &zone);
    return time.isValid() && allDay ? nearestDay(time).startOfDay(zone) : time;
}

QDateTime CalendarTimes::end(const QString &text, const QTimeZone &zone, bool allDay)
{
    const QDateTime time = dateTimeFromString(text, &zone);
    return time.isValid() && allDay ? nearestDay(time).addDays(-1).startOfDay(zone) : time;
}

QString CalendarTimes::dayText(const Event &series, const QDate &day, ProtocolVersion version)
{
    if (version >= ProtocolVersion160)
        return dateTimeToString(QDateTime(day, QTime(0, 0), Qt::UTC));
    return dateTimeToString(day.startOfDay(series.dtStart().timeZone()));
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
