// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaroccurrence.h"

#include "storages/calendar/calendartimes.h"

#include <KCalendarCore/Recurrence>

#include <algorithm>

using KCalendarCore::Event;
using KCalendarCore::RecurrenceRule;

CalendarOccurrence::CalendarOccurrence(const Event::Ptr &series, const QDateTime &moment)
    : mSeries(series)
    , mMoment(series->allDay() && moment.isValid() ? CalendarTimes::clockTime(moment.date()) : moment)
{
}

CalendarOccurrence CalendarOccurrence::fromWire(
    const Event::Ptr &series, const QString &text, const QTimeZone &zone)
{
    return CalendarOccurrence(series, CalendarTimes::start(text, zone, series->allDay()));
}

QList<CalendarOccurrence> CalendarOccurrence::excludedFrom(const Event::Ptr &series)
{
    QList<CalendarOccurrence> occurrences;
    if (!series->recurs())
        return occurrences;
    QList<QDateTime> moments = series->recurrence()->exDateTimes();
    const KCalendarCore::DateList dates = series->recurrence()->exDates();
    for (const QDate &date : dates) {
        QDateTime start = series->dtStart();
        start.setDate(date);
        moments.append(start);
    }
    for (const QDateTime &moment : qAsConst(moments)) {
        const CalendarOccurrence occurrence(series, moment);
        if (occurrence.isOfRules())
            occurrences.append(occurrence);
    }
    return occurrences;
}

QString CalendarOccurrence::key() const
{
    return isDay() ? mMoment.date().toString(QStringLiteral("yyyyMMdd"))
                   : ExchangeActiveSync::dateTimeToString(mMoment);
}

QString CalendarOccurrence::wire(ExchangeActiveSync::ProtocolVersion version) const
{
    return isDay() ? CalendarTimes::dayText(*mSeries, mMoment.date(), version)
                   : ExchangeActiveSync::dateTimeToString(mMoment);
}

bool CalendarOccurrence::isAt(const QDateTime &moment) const
{
    return isDay() ? moment.date() == mMoment.date() : moment == mMoment;
}

bool CalendarOccurrence::isOfRules() const
{
    if (!mSeries->recurs())
        return false;
    if (isAt(mSeries->dtStart()))
        return true;
    const QList<QDateTime> single = mSeries->recurrence()->rDateTimes();
    const RecurrenceRule::List rules = mSeries->recurrence()->rRules();
    return std::any_of(single.begin(), single.end(), [this](const QDateTime &moment) { return isAt(moment); })
        || mSeries->recurrence()->rDates().contains(mMoment.date())
        || std::any_of(rules.begin(), rules.end(), [this](const RecurrenceRule *rule) {
               return isDay() ? rule->recursOn(mMoment.date(), mSeries->dtStart().timeZone())
                              : rule->recursAt(mMoment);
           });
}

bool CalendarOccurrence::isExcluded() const
{
    const QList<CalendarOccurrence> excluded = excludedFrom(mSeries);
    return std::find(excluded.begin(), excluded.end(), *this) != excluded.end();
}

void CalendarOccurrence::exclude() const
{
    if (isDay())
        mSeries->recurrence()->addExDate(mMoment.date());
    else
        mSeries->recurrence()->addExDateTime(mMoment);
}

bool CalendarOccurrence::operator==(const CalendarOccurrence &other) const
{
    return mSeries->uid() == other.mSeries->uid() && isAt(other.mMoment);
}
