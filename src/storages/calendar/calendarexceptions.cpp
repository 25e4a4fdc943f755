// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarexceptions.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendareventfields.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimes.h"

#include <KCalendarCore/Recurrence>

#include <algorithm>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

using Parameter = EasCalendarItem::CalendarItemParameter;

/** The protocol counts no series beyond 999; the calendar's look-ups take minutes for ten times as many. */
constexpr int MostExceptionEvents = 1000;
constexpr int MostExceptions = 20000;

/** An exception and its series, from which it has what it does not bring itself. */
struct Inheritance
{
    const Event::Ptr &event;
    const EasCalendarItem &exception;
    const Event::Ptr &series;

    bool brings(Parameter parameter) const { return exception.parameterHasBeenChanged(parameter); }

    void property(Parameter parameter, const QString &name, const QString &value) const
    {
        CalendarEventProperties::setText(
            *event, name, brings(parameter) ? value : CalendarEventProperties::text(*series, name));
    }

    void number(Parameter parameter, const QString &name, int value) const
    {
        property(parameter, name, value == -1 ? QString() : QString::number(value));
    }
};

bool setTimes(const Inheritance &from, const QDateTime &recurrenceId, const QTimeZone &zone)
{
    const EasCalendarItem &exception = from.exception;
    const bool allDay = from.brings(EasCalendarItem::AllDayEventParameter)
        ? exception.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent
        : from.series->allDay();
    from.event->setAllDay(allDay);
    QDateTime start = recurrenceId;
    if (from.brings(EasCalendarItem::StartTimeParameter))
        start = CalendarTimes::start(exception.startTime(), zone, allDay);
    if (!start.isValid()) {
        qCCritical(eas()) << "Wrong start time:" << exception.startTime();
        return false;
    }
    // The length in days of an all-day event is not that in hours where the clocks change.
    QDateTime end = allDay ? start.addDays(from.series->dtStart().daysTo(from.series->dtEnd()))
                           : start.addSecs(from.series->dtStart().secsTo(from.series->dtEnd()));
    if (from.brings(EasCalendarItem::EndTimeParameter))
        end = CalendarTimes::end(exception.endTime(), zone, allDay);
    if (!end.isValid()) {
        qCCritical(eas()) << "Wrong end time:" << exception.endTime();
        return false;
    }
    from.event->setDtStart(start);
    from.event->setDtEnd(allDay ? qMax(start, end) : end);
    return true;
}

void setTexts(const Inheritance &from)
{
    const EasCalendarItem &exception = from.exception;
    from.event->setSummary(
        from.brings(EasCalendarItem::SubjectParameter) ? exception.subject() : from.series->summary());
    from.event->setLocation(
        from.brings(EasCalendarItem::LocationParameter) ? exception.location() : from.series->location());
    from.event->setCategories(from.brings(EasCalendarItem::CategoriesParameter) ? exception.categories()
                                                                                : from.series->categories());
    if (from.brings(EasCalendarItem::BodyParameter))
        CalendarEventFields::convertBody(from.event, exception.body());
    else
        from.event->setDescription(from.series->description(), from.series->descriptionIsRich());
}

void setPeople(const Inheritance &from)
{
    from.event->setSchedulingID(from.series->schedulingID(), from.series->uid());
    if (from.brings(EasCalendarItem::AttendeesParameter)) {
        CalendarEventFields::setAttendees(*from.event, from.exception.attendees());
        return;
    }
    from.event->clearAttendees();
    const KCalendarCore::Attendee::List attendees = from.series->attendees();
    for (const KCalendarCore::Attendee &attendee : attendees)
        from.event->addAttendee(attendee);
}

void setReminder(const Inheritance &from)
{
    if (from.brings(EasCalendarItem::ReminderParameter)) {
        CalendarEventFields::applyReminder(from.event, from.exception.reminder());
        return;
    }
    from.event->clearAlarms();
    const KCalendarCore::Alarm::List alarms = from.series->alarms();
    for (const KCalendarCore::Alarm::Ptr &alarm : alarms) {
        const KCalendarCore::Alarm::Ptr copy(new KCalendarCore::Alarm(*alarm));
        copy->setParent(from.event.data());
        from.event->addAlarm(copy);
    }
}

void setStatus(const Inheritance &from)
{
    using namespace ExchangeActiveSync;
    const EasCalendarItem &exception = from.exception;
    from.event->setStatus(from.series->status());
    from.event->setSecrecy(from.series->secrecy());
    from.number(EasCalendarItem::BusyStatusParameter, CalendarBusyStatusParamName, exception.busyStatus());
    if (from.brings(EasCalendarItem::BusyStatusParameter))
        CalendarEventFields::setBusyStatus(*from.event, exception.busyStatus());
    from.number(EasCalendarItem::SensitivityParameter, CalendarSensitivityParamName, exception.sensitivity());
    if (from.brings(EasCalendarItem::SensitivityParameter))
        CalendarEventFields::setSensitivity(*from.event, exception.sensitivity());
    from.number(
        EasCalendarItem::MeetingStatusParameter, CalendarMeetingStatusParamName, exception.meetingStatus());
    if (from.brings(EasCalendarItem::MeetingStatusParameter))
        CalendarEventFields::setMeetingStatus(*from.event, exception.meetingStatus());
    from.number(
        EasCalendarItem::ResponseTypeParameter, CalendarResponseTypeParamName, exception.responseType());
    from.property(EasCalendarItem::AppointmentReplyTimeParameter, CalendarAppointmentReplyTimeParamName,
        exception.appointmentReplyTime());
    from.property(EasCalendarItem::OnlineMeetingExternalLinkParameter, CalendarMeetingExtLinkParamName,
        exception.onlineMeetingExternalLink());
    from.property(EasCalendarItem::OnlineMeetingConfLinkParameter, CalendarMeetingConfLinkParamName,
        exception.onlineMeetingConfLink());
}

QDateTime recurrenceIdOf(const EasCalendarItem &exception, const QTimeZone &zone, bool allDay)
{
    return CalendarTimes::start(exception.exceptionStartTime(), zone, allDay);
}

} // namespace

CalendarExceptions::CalendarExceptions(
    const CalendarStoreContext &context, KCalendarCore::Incidence::List *deleted)
    : mContext(context)
    , mDeleted(deleted)
{
}

bool CalendarExceptions::areAcceptable(const EasCalendarItem &item, const QTimeZone &zone, bool allDay)
{
    const QList<EasCalendarItem> exceptions = item.exceptions();
    const auto events = std::count_if(exceptions.cbegin(), exceptions.cend(),
        [](const EasCalendarItem &exception) { return exception.exceptionDeleted() == 0; });
    if (events > MostExceptionEvents || exceptions.size() > MostExceptions) {
        qCWarning(eas()) << "Too many exceptions:" << item.serverId() << exceptions.size();
        return false;
    }
    for (const EasCalendarItem &exception : exceptions) {
        if (exception.exceptionStartTime().isEmpty()) {
            qCWarning(eas()) << "No exception start time:" << item.serverId();
            return false;
        }
        if (!recurrenceIdOf(exception, zone, allDay).isValid()) {
            qCWarning(eas()) << "Start time is invalid:" << exception.exceptionStartTime();
            return false;
        }
    }
    return true;
}

void CalendarExceptions::clear(const Event::Ptr &event)
{
    if (!event->recurs())
        return;
    event->recurrence()->setExDateTimes({});
    event->recurrence()->setExDates({});
}

bool CalendarExceptions::handleExceptions(
    const Event::Ptr &event, const EasCalendarItem &item, const QString &folder, const QTimeZone &zone) const
{
    if (!areAcceptable(item, zone, event->allDay()))
        return false;
    QSet<QDateTime> named;
    QStringList deletedKeys;
    const QList<EasCalendarItem> exceptions = item.exceptions();
    for (const EasCalendarItem &exception : exceptions) {
        const QDateTime recurrenceId = recurrenceIdOf(exception, zone, event->allDay());
        if (exception.exceptionDeleted() == 1) {
            if (!deleteException(event, recurrenceId, event->allDay())) {
                qCWarning(eas()) << "Failed to delete exception:" << exception.exceptionStartTime();
                return false;
            }
            deletedKeys.append(CalendarEventProperties::occurrenceKey(*event, recurrenceId));
        } else if (addException(event, exception, folder, recurrenceId, zone)) {
            named.insert(recurrenceId.toUTC());
        } else {
            qCWarning(eas()) << "Failed to add exception:" << exception.exceptionStartTime();
        }
    }
    CalendarEventProperties::setKnownDeletions(*event, deletedKeys);
    return removeOthers(event, named);
}

bool CalendarExceptions::deleteException(
    const Event::Ptr &event, const QDateTime &recurrenceId, bool allDay) const
{
    qCDebug(eas()) << "Deleting exception" << recurrenceId;
    if (!event->recurs()) {
        qCWarning(eas()) << "No recurrence:" << event->uid();
        return false;
    }
    if (allDay) {
        qCDebug(eas()) << "Adding exception date:" << recurrenceId.date();
        event->recurrence()->addExDate(recurrenceId.date());
    } else {
        qCDebug(eas()) << "Adding exception time:" << recurrenceId;
        event->recurrence()->addExDateTime(recurrenceId);
    }
    const Event::Ptr exception = mContext.calendar->event(event->uid(), recurrenceId);
    return !exception || remove(exception);
}

Event::Ptr CalendarExceptions::dissociated(
    const Event::Ptr &event, const QDateTime &recurrenceId, const QTimeZone &zone) const
{
    return mContext.calendar->dissociateSingleOccurrence(event, recurrenceId, zone).dynamicCast<Event>();
}

bool CalendarExceptions::addException(const Event::Ptr &event, const EasCalendarItem &exception,
    const QString &folder, const QDateTime &recurrenceId, const QTimeZone &zone) const
{
    Event::Ptr target = mContext.calendar->event(event->uid(), recurrenceId);
    const bool isNew = !target;
    if (isNew)
        target = dissociated(event, recurrenceId, event->dtStart().timeZone());
    else
        qCDebug(eas()) << "Exception found, reusing it";
    if (!target) {
        qCWarning(eas()) << "Failed to dissociate exception:" << recurrenceId;
        return false;
    }
    const Inheritance from { target, exception, event };
    target->startUpdates();
    const bool timesSet = setTimes(from, recurrenceId, zone);
    if (timesSet) {
        setTexts(from);
        setPeople(from);
        setReminder(from);
        setStatus(from);
        if (from.brings(EasCalendarItem::AttachmentsParameter))
            CalendarEventFields::setAttachments(target, exception.attachments());
    }
    target->endUpdates();
    return timesSet && (!isNew || mContext.calendar->addEvent(target, folder));
}

bool CalendarExceptions::removeOthers(const Event::Ptr &event, const QSet<QDateTime> &named) const
{
    const Event::List stored = mContext.calendar->eventInstances(event);
    for (const Event::Ptr &exception : stored) {
        if (!named.contains(exception->recurrenceId().toUTC()) && !remove(exception))
            return false;
    }
    return true;
}

bool CalendarExceptions::remove(const Event::Ptr &exception) const
{
    if (!mContext.calendar->deleteEvent(exception))
        return false;
    mDeleted->append(exception);
    return true;
}

bool CalendarExceptions::removeExceptions(const Event::Ptr &event) const
{
    CalendarEventProperties::setKnownDeletions(*event, {});
    return removeOthers(event, {});
}
