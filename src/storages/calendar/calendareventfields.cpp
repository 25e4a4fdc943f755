// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventfields.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/containers/easattendeecontainer.h"
#include "easitems/containers/easbodycontainer.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendarattendees.h"
#include "storages/calendar/calendareventproperties.h"

#include <optional>

using KCalendarCore::Alarm;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

constexpr int SecondsPerMinute = 60;

std::optional<Incidence::Status> statusOf(int busyStatus)
{
    switch (busyStatus) {
    case EasCalendarItemCommon::BusyStatusFree:
        return Incidence::StatusNone;
    case EasCalendarItemCommon::BusyStatusTentative:
        return Incidence::StatusTentative;
    case EasCalendarItemCommon::BusyStatusBusy:
    case EasCalendarItemCommon::BusyStatusOutOfOffice:
        return Incidence::StatusConfirmed;
    default:
        return std::nullopt;
    }
}

QString toICalString(bool value)
{
    return value ? ExchangeActiveSync::CalendarBoolValueTrue : ExchangeActiveSync::CalendarBoolValueFalse;
}

} // namespace

void CalendarEventFields::applyReminder(const Event::Ptr &event, int minutes)
{
    event->clearAlarms();
    if (minutes < 0)
        return;
    // A server can ask for more minutes than a number of seconds holds.
    const int seconds =
        int(qMin<qint64>(qint64(minutes) * SecondsPerMinute, std::numeric_limits<int>::max()));
    const Alarm::Ptr alarm = event->newAlarm();
    alarm->setEnabled(true);
    alarm->setType(Alarm::Display);
    alarm->setStartOffset(KCalendarCore::Duration(-seconds, KCalendarCore::Duration::Seconds));
}

void CalendarEventFields::convertBody(const Event::Ptr &event, const EasBodyContainer &body)
{
    switch (body.type()) {
    case EasBodyContainer::PlainTextBodyType:
        event->setDescription(body.data(), false);
        break;
    case EasBodyContainer::HTMLBodyType:
        event->setDescription(body.data(), true);
        break;
    default:
        event->setDescription(body.data());
    }
}

void CalendarEventFields::setBusyStatus(Event &event, EasCalendarItemCommon::BusyStatus busyStatus)
{
    CalendarEventProperties::setNumber(event, ExchangeActiveSync::CalendarBusyStatusParamName, busyStatus);
    if (const auto status = statusOf(busyStatus))
        event.setStatus(*status);
}

void CalendarEventFields::setSensitivity(Event &event, EasCalendarItemCommon::Sensitivity sensitivity)
{
    CalendarEventProperties::setNumber(event, ExchangeActiveSync::CalendarSensitivityParamName, sensitivity);
    if (sensitivity == EasCalendarItemCommon::SensitivityPrivate)
        event.setSecrecy(Incidence::SecrecyPrivate);
    else if (sensitivity == EasCalendarItemCommon::SensitivityConfidential)
        event.setSecrecy(Incidence::SecrecyConfidential);
    else
        event.setSecrecy(Incidence::SecrecyPublic);
}

void CalendarEventFields::setMeetingStatus(Event &event, EasCalendarItemCommon::MeetingStatus meetingStatus)
{
    CalendarEventProperties::setNumber(
        event, ExchangeActiveSync::CalendarMeetingStatusParamName, meetingStatus);
    constexpr int noMeeting = EasCalendarItemCommon::MeetingStatusNoMeeting;
    constexpr int noMeetingReceived = 2;
    if (meetingStatus == noMeeting || meetingStatus == noMeetingReceived) {
        // No meeting, so nothing is called off; but the event may still be tentative or take one's time.
        const int busy =
            CalendarEventProperties::number(event, ExchangeActiveSync::CalendarBusyStatusParamName);
        event.setStatus(statusOf(busy).value_or(Incidence::StatusNone));
    } else if (meetingStatus == EasCalendarItemCommon::MeetingStatusCancelled
        || meetingStatus == EasCalendarItemCommon::MeetingStatusCancelledAndReceived) {
        event.setStatus(Incidence::StatusCanceled);
    }
}

void CalendarEventFields::setDisallowNewTimeProposal(Event &event, EasItemsCommon::TBoolean disallow)
{
    CalendarEventProperties::setText(event, ExchangeActiveSync::CalendarDisallowCounterParamName,
        disallow == EasItemsCommon::TUndefined ? QString() : toICalString(disallow == EasItemsCommon::TTrue));
}

void CalendarEventFields::setAttendees(Event &event, const QList<EasAttendeeContainer> &attendees)
{
    event.clearAttendees();
    for (const EasAttendeeContainer &container : attendees) {
        const KCalendarCore::Attendee attendee = CalendarAttendees::toAttendee(event, container);
        if (attendee.isNull())
            qCWarning(eas()) << "Cannot add attendee:" << container.name() << container.email();
        else
            event.addAttendee(attendee);
    }
}

void CalendarEventFields::setAttachments(
    const Event::Ptr &event, const QList<EasAttachmentContainer> &attachments)
{
    QList<AttachmentEntity> entities;
    for (const EasAttachmentContainer &attachment : attachments)
        entities.append(AttachmentEntity(attachment));
    CalendarAttachmentService().handleRemoteAttachments(event, entities);
}
