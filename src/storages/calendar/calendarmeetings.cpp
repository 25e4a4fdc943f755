// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarmeetings.h"

#include "application/base/clock.h"
#include "protocol/base/protocoltime.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarstorecontext.h"

#include <KCalendarCore/ICalFormat>

using KCalendarCore::Event;

namespace {

CalendarOccurrence occurrenceAt(const Event::Ptr &series, const QDateTime &moment)
{
    return CalendarOccurrence(series, moment.toTimeZone(Clock::instance().timeZone()));
}

} // namespace

CalendarMeetings::CalendarMeetings(const CalendarStoreContext &context)
    : mContext(context)
{
}

Event::Ptr CalendarMeetings::series(const QString &localId) const
{
    return mContext.storage->loadSeries(localId) ? mContext.calendar->event(localId) : Event::Ptr();
}

Event::Ptr CalendarMeetings::exceptionThatStarts(const Event::Ptr &series, const QDateTime &start) const
{
    const KCalendarCore::Incidence::List exceptions = mContext.calendar->instances(series);
    for (const KCalendarCore::Incidence::Ptr &exception : exceptions) {
        if (exception->dtStart() == start)
            return exception.dynamicCast<Event>();
    }
    return {};
}

QString CalendarMeetings::iCal(const QString &localId, const QDateTime &occurrence) const
{
    Event::Ptr event = series(localId);
    if (event && occurrence.isValid()) {
        const Event::Ptr exception =
            mContext.calendar->event(localId, occurrenceAt(event, occurrence).recurrenceId());
        if (exception)
            event = exception;
    }
    return event ? KCalendarCore::ICalFormat().toICalString(event) : QString();
}

QString CalendarMeetings::instanceId(const QString &localId, const QDateTime &start) const
{
    const Event::Ptr event = series(localId);
    if (!event)
        return {};
    const CalendarOccurrence occurrence = occurrenceAt(event, start);
    const Event::Ptr moved =
        occurrence.isOfRules() ? Event::Ptr() : exceptionThatStarts(event, occurrence.recurrenceId());
    const QString wire = moved
        ? CalendarOccurrence(event, moved->recurrenceId()).wire(mContext.protocolVersion())
        : occurrence.wire(mContext.protocolVersion());
    return ProtocolTime::toWire(ExchangeActiveSync::dateTimeFromString(wire, nullptr));
}
