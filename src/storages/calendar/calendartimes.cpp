// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendartimes.h"

#include "common/exchangeactivesync.h"

namespace {

QDate nearestDay(const QDateTime &time)
{
    constexpr int noon = 12;
    return time.time().hour() < noon ? time.date() : time.date().addDays(1);
}

} // namespace

QDateTime CalendarTimes::start(const QString &text, const QTimeZone &zone, bool allDay)
{
    const QDateTime time = ExchangeActiveSync::dateTimeFromString(text, &zone);
    return time.isValid() && allDay ? nearestDay(time).startOfDay(zone) : time;
}

QDateTime CalendarTimes::end(const QString &text, const QTimeZone &zone, bool allDay)
{
    const QDateTime time = ExchangeActiveSync::dateTimeFromString(text, &zone);
    return time.isValid() && allDay ? nearestDay(time).addDays(-1).startOfDay(zone) : time;
}
