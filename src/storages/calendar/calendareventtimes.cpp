// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventtimes.h"

#include "application/base/logging.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarmidnight.h"
#include "storages/calendar/calendartimes.h"

#include <limits>

using namespace ExchangeActiveSync;
using KCalendarCore::Alarm;
using KCalendarCore::Event;

namespace {

using Field = CalendarEventField;
using Item = EasCalendarItem;
using Writing = const CalendarFieldWriting &;
using Reading = const CalendarFieldReading &;

constexpr int SecondsPerMinute = 60;

void setEnd(Event &event, const QDateTime &end)
{
    // An all-day event without a length still has its day.
    event.setDtEnd(event.allDay() ? qMax(event.dtStart(), end) : end);
}

bool writeStart(Writing w)
{
    const QDateTime start = CalendarTimes::start(w.item.startTime(), w.zone, w.event->allDay());
    if (!start.isValid()) {
        qCCritical(eas()) << "Wrong start time:" << w.item.startTime();
        return false;
    }
    w.event->setDtStart(start);
    if (w.event->allDay())
        CalendarMidnight(dateTimeFromString(w.item.startTime(), &w.zone), w.item.timezone()).keep(*w.event);
    else
        CalendarMidnight::clear(*w.event);
    return true;
}

bool writeEnd(Writing w)
{
    const QDateTime end = CalendarTimes::end(w.item.endTime(), w.zone, w.event->allDay());
    if (!end.isValid()) {
        qCCritical(eas()) << "Wrong end time:" << w.item.endTime();
        return false;
    }
    setEnd(*w.event, end);
    return true;
}

void inheritEnd(const Event &series, Event &exception)
{
    // The length in days of an all-day event is not that in hours where the clocks change.
    const QDateTime start = exception.dtStart();
    setEnd(exception,
        exception.allDay() ? start.addDays(series.dtStart().daysTo(series.dtEnd()))
                           : start.addSecs(series.dtStart().secsTo(series.dtEnd())));
}

/** A time that the device only keeps; one that cannot be read is left out. */
Field keptTime(
    Field::Parameter parameter, QString (Item::*get)() const, const QString &name, const char *failure)
{
    return Field(parameter).written([get, &name, failure](Writing w) {
        const QString text = (w.item.*get)();
        const QDateTime time = dateTimeFromString(text, nullptr);
        if (!time.isValid() && !text.isEmpty())
            qCWarning(eas()) << failure << text;
        CalendarEventProperties::setText(*w.event, name, dateTimeToString(time));
        return true;
    });
}

/** An alarm so many minutes before the start; none below 0. */
bool applyReminder(Writing w)
{
    w.event->clearAlarms();
    if (w.item.reminder() < 0)
        return true;
    // A server can ask for more minutes than a number of seconds holds.
    const int seconds =
        int(qMin<qint64>(qint64(w.item.reminder()) * SecondsPerMinute, std::numeric_limits<int>::max()));
    const Alarm::Ptr alarm = w.event->newAlarm();
    alarm->setEnabled(true);
    alarm->setType(Alarm::Display);
    alarm->setStartOffset(KCalendarCore::Duration(-seconds, KCalendarCore::Duration::Seconds));
    return true;
}

void readReminder(Reading r)
{
    const Alarm::List alarms = r.event.alarms();
    if (alarms.isEmpty())
        return;
    const Alarm::Ptr alarm = alarms.constFirst();
    const int offset = alarm->hasStartOffset() ? alarm->startOffset().asSeconds()
                                               : int(r.event.dtStart().secsTo(alarm->time()));
    r.item.setReminder(qMax(0, -(offset / SecondsPerMinute)));
}

void inheritReminder(const Event &series, Event &exception)
{
    exception.clearAlarms();
    const Alarm::List alarms = series.alarms();
    for (const Alarm::Ptr &alarm : alarms) {
        const Alarm::Ptr copy(new Alarm(*alarm));
        copy->setParent(&exception);
        exception.addAlarm(copy);
    }
}

} // namespace

CalendarEventField CalendarEventTimes::allDay()
{
    return Field(Item::AllDayEventParameter)
        .written([](Writing w) {
            w.event->setAllDay(w.item.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent);
            return true;
        })
        .checked()
        .readBy([](Reading r) {
            r.item.setAllDayEvent(r.event.allDay() ? EasCalendarItemCommon::IsAllDayEvent
                                                   : EasCalendarItemCommon::NotAllDayEvent);
        })
        .inherited([](const Event &series, Event &exception) { exception.setAllDay(series.allDay()); })
        .cleared([](Item &item) { item.setAllDayEvent(EasCalendarItemCommon::NotAllDayEvent); });
}

CalendarEventField CalendarEventTimes::start()
{
    return Field(Item::StartTimeParameter)
        .written(writeStart)
        .checked()
        .readBy(
            [](Reading r) { r.item.setStartTime(CalendarTimes::startText(r.event, r.series, r.version)); })
        .inherited([](const Event &, Event &exception) { exception.setDtStart(exception.recurrenceId()); });
}

CalendarEventField CalendarEventTimes::end()
{
    return Field(Item::EndTimeParameter)
        .written(writeEnd)
        .checked()
        .readBy([](Reading r) { r.item.setEndTime(CalendarTimes::endText(r.event, r.series, r.version)); })
        .inherited(inheritEnd);
}

CalendarEventField CalendarEventTimes::proposedStart()
{
    return keptTime(Item::ProposedStartTimeParameter, &Item::proposedStartTime,
        CalendarProposedStartTimeParamName, "Wrong proposed start time:");
}

CalendarEventField CalendarEventTimes::proposedEnd()
{
    return keptTime(Item::ProposedEndTimeParameter, &Item::proposedEndTime, CalendarProposedEndTimeParamName,
        "Wrong proposed end time:");
}

CalendarEventField CalendarEventTimes::reminder()
{
    return Field(Item::ReminderParameter)
        .written(applyReminder)
        .readBy(readReminder)
        .inherited(inheritReminder)
        .cleared([](Item &item) { item.setReminder(-1); });
}
