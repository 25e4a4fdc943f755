// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarexceptions.h"

#include "application/base/logging.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendareventfields.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarreceivedrule.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"

#include <KCalendarCore/Recurrence>

#include <algorithm>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** The protocol counts no series beyond 999; the calendar's look-ups take minutes for ten times as many. */
constexpr int MostExceptionEvents = 1000;
constexpr int MostExceptions = 20000;

} // namespace

CalendarExceptions::CalendarExceptions(
    const CalendarStoreContext &context, KCalendarCore::Incidence::List *deleted)
    : mContext(context)
    , mDeleted(deleted)
{
}

bool CalendarExceptions::areAcceptable(
    const Event::Ptr &event, const EasCalendarItem &item, const QTimeZone &zone)
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
        if (!CalendarOccurrence::fromWire(event, exception.exceptionStartTime(), zone).isValid()) {
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
    if (!areAcceptable(event, item, zone))
        return false;
    QSet<QDateTime> named;
    QStringList deletedKeys;
    QList<EasCalendarItem> unplaced;
    const QList<EasCalendarItem> exceptions = item.exceptions();
    for (const EasCalendarItem &exception : exceptions) {
        const auto occurrence = CalendarOccurrence::fromWire(event, exception.exceptionStartTime(), zone);
        if (exception.exceptionDeleted() == 1) {
            if (!deleteException(event, occurrence)) {
                qCWarning(eas()) << "Failed to delete exception:" << exception.exceptionStartTime();
                return false;
            }
            deletedKeys.append(occurrence.key());
            if (!occurrence.isOfRules())
                unplaced.append(exception);
        } else if (addException(event, exception, folder, occurrence, zone)) {
            named.insert(occurrence.recurrenceId().toUTC());
        } else {
            qCWarning(eas()) << "Failed to add exception:" << exception.exceptionStartTime();
            unplaced.append(exception);
        }
    }
    CalendarReceivedRule(event).keepExceptions(unplaced);
    CalendarEventProperties::setKnownDeletions(*event, deletedKeys);
    return removeOthers(event, named);
}

bool CalendarExceptions::deleteException(const Event::Ptr &event, const CalendarOccurrence &occurrence) const
{
    const QDateTime recurrenceId = occurrence.recurrenceId();
    qCDebug(eas()) << "Deleting exception" << recurrenceId;
    if (!event->recurs()) {
        qCWarning(eas()) << "No recurrence:" << event->uid();
        return false;
    }
    if (event->allDay())
        qCDebug(eas()) << "Adding exception date:" << recurrenceId.date();
    else
        qCDebug(eas()) << "Adding exception time:" << recurrenceId;
    occurrence.exclude();
    const Event::Ptr exception = mContext.calendar->event(event->uid(), recurrenceId);
    return !exception || remove(exception);
}

bool CalendarExceptions::addException(const Event::Ptr &event, const EasCalendarItem &exception,
    const QString &folder, const CalendarOccurrence &occurrence, const QTimeZone &zone) const
{
    const QDateTime recurrenceId = occurrence.recurrenceId();
    Event::Ptr target = mContext.calendar->event(event->uid(), recurrenceId);
    const bool isNew = !target;
    if (isNew)
        target = mContext.calendar->dissociateSingleOccurrence(event, recurrenceId).dynamicCast<Event>();
    else
        qCDebug(eas()) << "Exception found, reusing it";
    if (!target) {
        qCWarning(eas()) << "Failed to dissociate exception:" << recurrenceId;
        return false;
    }
    target->startUpdates();
    target->setSchedulingID(event->schedulingID(), event->uid());
    const bool written = CalendarEventFields::writeException({ target, exception, zone }, *event);
    target->endUpdates();
    if (!written || (isNew && !mContext.calendar->addEvent(target, folder)))
        return false;
    CalendarTimestamps::markAsOwnWrite(*target);
    return true;
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
