// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventreader.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "common/exchangeactivesync.h"
#include "easitems/eastimezone.h"
#include "storages/calendar/calendarattendees.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarrecurrence.h"
#include "storages/calendar/calendarstorecontext.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;
using namespace ExchangeActiveSync;

namespace {

/** A value of the server, and what the device makes of it. */
struct DeviceValue
{
    int serverValue;
    int deviceValue;
};

const DeviceValue busyStatuses[] = {
    { EasCalendarItemCommon::BusyStatusFree, Incidence::StatusNone },
    { EasCalendarItemCommon::BusyStatusTentative, Incidence::StatusTentative },
    { EasCalendarItemCommon::BusyStatusBusy, Incidence::StatusConfirmed },
    { EasCalendarItemCommon::BusyStatusOutOfOffice, Incidence::StatusConfirmed },
};

const DeviceValue sensitivities[] = {
    { EasCalendarItemCommon::SensitivityNormal, Incidence::SecrecyPublic },
    { EasCalendarItemCommon::SensitivityPersonal, Incidence::SecrecyPublic },
    { EasCalendarItemCommon::SensitivityPrivate, Incidence::SecrecyPrivate },
    { EasCalendarItemCommon::SensitivityConfidential, Incidence::SecrecyConfidential },
};

/** The stored value if the device still has what it stands for, otherwise the first one that does. */
template <std::size_t Count>
int agreedValue(
    const DeviceValue (&table)[Count], const Event::Ptr &event, const QString &property, int deviceValue)
{
    const int stored = CalendarEventProperties::number(*event, property);
    int fromDevice = -1;
    bool storedIsKnown = false;
    for (const DeviceValue &row : table) {
        storedIsKnown = storedIsKnown || row.serverValue == stored;
        if (row.deviceValue != deviceValue)
            continue;
        if (row.serverValue == stored)
            return stored;
        if (fromDevice == -1)
            fromDevice = row.serverValue;
    }
    // What the device has no word for cannot disagree with it.
    if (stored != -1 && !storedIsKnown)
        return stored;
    if (stored != -1)
        CalendarEventProperties::setNumber(*event, property, -1);
    return fromDevice;
}

/** A field of items that has no counterpart in events, and the property that holds it. */
template <typename Value> struct NumberField
{
    const QString &property;
    void (EasCalendarItem::*set)(Value);
};

template <typename Value>
void applyNumber(const Event &event, const NumberField<Value> &field, EasCalendarItem &item)
{
    const int value = CalendarEventProperties::number(event, field.property);
    if (value != -1)
        (item.*field.set)(Value(value));
}

struct TextField
{
    const QString &property;
    void (EasCalendarItem::*set)(const QString &);
};

void applyText(const Event &event, const TextField &field, EasCalendarItem &item)
{
    const QString value = CalendarEventProperties::text(event, field.property);
    if (!value.isEmpty())
        (item.*field.set)(value);
}

/** What stands in properties alone, and is there in events and exceptions alike. */
void applyMeeting(const Event &event, EasCalendarItem &item)
{
    applyNumber<EasCalendarItemCommon::MeetingStatus>(
        event, { CalendarMeetingStatusParamName, &EasCalendarItem::setMeetingStatus }, item);
    applyNumber<EasCalendarItemCommon::ResponseType>(
        event, { CalendarResponseTypeParamName, &EasCalendarItem::setResponseType }, item);
    applyText(
        event, { CalendarAppointmentReplyTimeParamName, &EasCalendarItem::setAppointmentReplyTime }, item);
    applyText(event, { CalendarMeetingConfLinkParamName, &EasCalendarItem::setOnlineMeetingConfLink }, item);
    applyText(
        event, { CalendarMeetingExtLinkParamName, &EasCalendarItem::setOnlineMeetingExternalLink }, item);
}

void applyDisallowCounter(const Event &event, EasCalendarItem &item)
{
    const QString value = CalendarEventProperties::text(event, CalendarDisallowCounterParamName);
    if (value == CalendarBoolValueTrue)
        item.setDisallowNewTimeProposal(EasItemsCommon::TTrue);
    else if (value == CalendarBoolValueFalse)
        item.setDisallowNewTimeProposal(EasItemsCommon::TFalse);
}

void applyAttendees(const Event &event, EasCalendarItem &item)
{
    QList<EasAttendeeContainer> attendees;
    const KCalendarCore::Attendee::List stored = event.attendees();
    for (const KCalendarCore::Attendee &attendee : stored) {
        if (!CalendarAttendees::isOrganizer(event, attendee))
            attendees.append(CalendarAttendees::toContainer(event, attendee));
    }
    item.setAttendees(attendees);
}

void applyReminder(const Event &event, EasCalendarItem &item)
{
    const KCalendarCore::Alarm::List alarms = event.alarms();
    if (alarms.isEmpty())
        return;
    const KCalendarCore::Alarm::Ptr alarm = alarms.constFirst();
    const int offset = alarm->hasStartOffset() ? alarm->startOffset().asSeconds()
                                               : int(event.dtStart().secsTo(alarm->time()));
    item.setReminder(qMax(0, -(offset / 60)));
}

/** What an exception has in common with an event of its own. */
void applyOwnFields(const Event::Ptr &event, EasCalendarItem &item)
{
    item.setSubject(event->summary());
    item.setLocation(event->location());
    item.setCategories(event->categories());
    item.setSensitivity(CalendarEventReader::convertSensitivity(event));
    item.setBusyStatus(CalendarEventReader::convertBusyStatus(event));
    item.setAllDayEvent(
        event->allDay() ? EasCalendarItemCommon::IsAllDayEvent : EasCalendarItemCommon::NotAllDayEvent);
    applyReminder(*event, item);
    item.setDtStamp(dateTimeToString(event->lastModified()));
    const QString uid = CalendarEventProperties::text(*event, CalendarUidParamName);
    item.setUid(uid.isEmpty() ? event->uid() : uid);
    applyMeeting(*event, item);
    CalendarEventReader::applyBody(event, item);
    applyAttendees(*event, item);
}

} // namespace

CalendarEventReader::CalendarEventReader(const CalendarStoreContext &context)
    : mContext(context)
{
}

bool CalendarEventReader::convert(const Event::Ptr &event, EasCalendarItem &item, bool withExceptions) const
{
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    if (event->uid().isEmpty()) {
        qCWarning(eas()) << "No UID";
        return false;
    }
    const EasDatabase *database = EasDatabase::instance();
    const QString serverId = database->localToServerCalendarId(mContext.accountId(), event->uid());
    if (database->lookupFailed())
        return false;
    if (serverId.isEmpty())
        qCDebug(eas()) << "No server ID:" << event->uid();
    item.setServerId(serverId);
    item.setLocalId(event->uid());
    item.setLocalStorageAccountId(mContext.accountId());
    item.setOrganizerName(event->organizer().name());
    item.setOrganizerEmail(event->organizer().email());
    applyOwnFields(event, item);
    applyDisallowCounter(*event, item);
    applyNumber<EasItemsCommon::TBoolean>(
        *event, { CalendarResponseRequestedParamName, &EasCalendarItem::setResponseRequested }, item);
    applyTimes(*event, item);
    item.setTimezone(EasTimeZone::encode(*event));
    return !event->recurs() || applySeries(event, item, withExceptions);
}

bool CalendarEventReader::applySeries(
    const Event::Ptr &event, EasCalendarItem &item, bool withExceptions) const
{
    if (!event->recurrence()) {
        qCWarning(eas()) << "source event's recurrence is null";
        return false;
    }
    if (!CalendarRecurrence::applyRecurrence(event, item, false)) {
        qCWarning(eas()) << "Failed encoding recurrence";
        return false;
    }
    applyLastDay(*event, item);
    if (!withExceptions)
        return true;
    const Event::List exceptions = mContext.calendar->eventInstances(event);
    for (const Event::Ptr &exception : exceptions) {
        // Servers refuse a series for an exception that a change of its rule has left behind.
        if (!CalendarEventProperties::isOccurrence(*event, exception->recurrenceId())) {
            qCWarning(eas()) << "exception of no occurrence stays on the device:" << event->uid()
                             << exception->recurrenceId();
            continue;
        }
        if (!applyException(exception, false, item, false)) {
            qCWarning(eas()) << "failed to apply exception" << event->uid();
            return false;
        }
    }
    applyDeletions(event, item);
    return true;
}

void CalendarEventReader::applyLastDay(const Event &event, EasCalendarItem &item) const
{
    EasRecurrenceContainer recurrence = item.recurrence();
    if (!event.allDay() || recurrence.until().isEmpty())
        return;
    // The rule has a day without a zone; the series ends at its midnight where it is.
    const QDate last = event.recurrence()->defaultRRuleConst()->endDt().date();
    recurrence.setUntil(timeText(event, QDateTime(last, QTime(0, 0), event.dtStart().timeZone())));
    item.setRecurrence(recurrence);
}

void CalendarEventReader::applyDeletions(const Event::Ptr &event, EasCalendarItem &item) const
{
    const QStringList known = CalendarEventProperties::knownDeletions(*event);
    const QList<QDateTime> deletions = CalendarEventProperties::deletedOccurrences(*event);
    for (const QDateTime &start : deletions) {
        const bool isKnown = known.contains(CalendarEventProperties::occurrenceKey(*event, start));
        // An exception event at an excluded moment is what the device shows.
        if ((isKnown && exceptionsGoAlone()) || mContext.calendar->event(event->uid(), start))
            continue;
        EasCalendarItem exception;
        exception.setServerId(item.serverId());
        exception.setLocalId(item.localId());
        exception.setItemChanged(!isKnown);
        exception.setExceptionDeleted(1);
        exception.setExceptionStartTime(occurrenceStart(*event, start));
        item.appendException(exception);
    }
}

bool CalendarEventReader::applyException(
    const Event::Ptr &event, bool deleted, EasCalendarItem &item, bool changed) const
{
    if (!event->recurrenceId().isValid()) {
        qCWarning(eas()) << "No recurrence ID:" << event->uid();
        return false;
    }
    const QString start = occurrenceStart(*event, event->recurrenceId());
    if (start.isEmpty()) {
        qCWarning(eas()) << "No recurrence string:" << event->uid();
        return false;
    }
    QList<EasCalendarItem> exceptions = item.exceptions();
    for (EasCalendarItem &known : exceptions) {
        if (known.exceptionStartTime() != start)
            continue;
        known.setItemChanged(true);
        item.setExceptions(exceptions);
        qCDebug(eas()) << "exception" << start << "already applied to the calendar item" << item.localId();
        return true;
    }
    EasCalendarItem exception;
    exception.setItemChanged(changed);
    exception.setExceptionDeleted(deleted ? 1 : 0);
    exception.setExceptionStartTime(start);
    exception.setServerId(item.serverId());
    exception.setLocalId(item.localId());
    applyOwnFields(event, exception);
    exception.setUid(item.uid());
    applyTimes(*event, exception);
    if (!exceptionsGoAlone()) // Otherwise they are its own.
        exception.setAttachments(item.attachments());
    item.appendException(exception);
    return true;
}

void CalendarEventReader::applyTimes(const Event &event, EasCalendarItem &item) const
{
    item.setStartTime(timeText(event, event.dtStart()));
    // The device's all-day events end on their last day, the server's at the beginning of the next.
    item.setEndTime(timeText(event, event.allDay() ? event.dtEnd().addDays(1) : event.dtEnd()));
}

QString CalendarEventReader::timeText(const Event &event, const QDateTime &time) const
{
    // From 16.0 on the days of all-day events are in no zone.
    if (event.allDay() && exceptionsGoAlone())
        return dateTimeToString(QDateTime(time.date(), QTime(0, 0), Qt::UTC));
    return dateTimeToString(time);
}

QString CalendarEventReader::occurrenceStart(const Event &series, const QDateTime &start) const
{
    return timeText(series, start);
}

bool CalendarEventReader::exceptionsGoAlone() const
{
    return mContext.account && mContext.account->protocolVersion() >= ProtocolVersion160;
}

EasCalendarItemCommon::BusyStatus CalendarEventReader::convertBusyStatus(const Event::Ptr &event)
{
    // A meeting that is off has that for its status, and its time is as it was.
    if (event->status() == Incidence::StatusCanceled)
        return EasCalendarItemCommon::BusyStatus(
            CalendarEventProperties::number(*event, CalendarBusyStatusParamName));
    return EasCalendarItemCommon::BusyStatus(
        agreedValue(busyStatuses, event, CalendarBusyStatusParamName, event->status()));
}

EasCalendarItemCommon::Sensitivity CalendarEventReader::convertSensitivity(const Event::Ptr &event)
{
    return EasCalendarItemCommon::Sensitivity(
        agreedValue(sensitivities, event, CalendarSensitivityParamName, event->secrecy()));
}

void CalendarEventReader::applyBody(const Event::Ptr &event, EasCalendarItem &item)
{
    item.setBodyContainerType(
        event->descriptionIsRich() ? EasBodyContainer::HTMLBodyType : EasBodyContainer::PlainTextBodyType);
    item.setBodyContainerData(event->description());
}
