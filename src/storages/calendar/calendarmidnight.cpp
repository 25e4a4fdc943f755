// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarmidnight.h"

#include "application/base/clock.h"
#include "storages/calendar/calendareventproperties.h"

namespace {

const QString propertyName = QStringLiteral("X-FENNEL-EAS-MIDNIGHT");

/** The zone, the seconds and the block, which may be empty. */
constexpr int PartCount = 3;

} // namespace

CalendarMidnight::CalendarMidnight(const QDateTime &start, const QString &block)
    : mZone(start.timeZone())
    , mSecondsAfterMidnight(day(start).startOfDay(mZone).secsTo(start))
    , mBlock(block)
{
}

std::optional<CalendarMidnight> CalendarMidnight::of(const KCalendarCore::Event &event)
{
    const QStringList parts = CalendarEventProperties::text(event, propertyName).split(QLatin1Char(' '));
    if (!event.allDay() || parts.size() != PartCount)
        return std::nullopt;
    CalendarMidnight midnight;
    midnight.mZone = QTimeZone(parts.at(0).toLatin1());
    midnight.mSecondsAfterMidnight = parts.at(1).toLongLong();
    midnight.mBlock = parts.at(2);
    return midnight.mZone.isValid() ? std::make_optional(midnight) : std::nullopt;
}

void CalendarMidnight::clear(KCalendarCore::Event &event)
{
    CalendarEventProperties::setText(event, propertyName, QString());
}

void CalendarMidnight::keep(KCalendarCore::Event &event) const
{
    const QStringList parts { QString::fromLatin1(mZone.id()), QString::number(mSecondsAfterMidnight),
        mBlock };
    CalendarEventProperties::setText(event, propertyName, parts.join(QLatin1Char(' ')));
}

QDateTime CalendarMidnight::begin(const QDate &day) const
{
    return day.startOfDay(mZone).addSecs(mSecondsAfterMidnight);
}

QDate CalendarMidnight::day(const QDateTime &moment)
{
    constexpr int noon = 12;
    if (moment.timeZone() == QTimeZone::utc()) {
        const QDateTime here = moment.toTimeZone(Clock::instance().timeZone());
        if (here == here.date().startOfDay(here.timeZone()))
            return here.date();
    }
    return moment.time().hour() < noon ? moment.date() : moment.date().addDays(1);
}
