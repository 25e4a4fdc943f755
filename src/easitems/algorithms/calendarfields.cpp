// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/calendarfields.h"

#include "easitems/algorithms/sharedfields.h"

using namespace Wbxml;

namespace {

constexpr char NoUint[] = "Cannot convert to uint: ";
constexpr char NoBool[] = "Cannot convert to bool: ";

bool takeTimezone(EasCalendarItem &item, const QString &text, const QByteArray &)
{
    item.setTimezone(text.toUtf8());
    return true;
}

bool takeDeleted(EasCalendarItem &item, const QString &text, const QByteArray &)
{
    bool converted = false;
    const uint deleted = text.toUInt(&converted, 10);
    if (converted) {
        item.setExceptionDeleted(deleted);
    }
    return converted;
}

} // namespace

namespace CalendarFields {

const FieldTable<EasCalendarItem> &itemFields()
{
    using Event = EasCalendarItem;
    using Kind = Fields<Event>;
    static const FieldTable<Event> table {
        Kind::unsignedNumber<&Event::allDayEvent, &Event::setAllDayEvent>(Calendar::AllDayEvent, NoUint),
        Kind::unsignedNumber<&Event::busyStatus, &Event::setBusyStatus>(Calendar::BusyStatus, NoUint),
        Kind::text<&Event::dtStamp, &Event::setDtStamp>(Calendar::DtStamp),
        Kind::text<&Event::endTime, &Event::setEndTime>(Calendar::EndTime),
        Kind::text<&Event::location, &Event::setLocation>(Calendar::Location),
        Kind::signedNumber<&Event::reminder, &Event::setReminder>(Calendar::Reminder, NoUint),
        Kind::unsignedNumber<&Event::sensitivity, &Event::setSensitivity>(Calendar::Sensitivity, NoUint),
        Kind::text<&Event::subject, &Event::setSubject>(Calendar::Subject),
        Kind::text<&Event::startTime, &Event::setStartTime>(Calendar::StartTime),
        Kind::text<&Event::uid, &Event::setUid>(Calendar::UID),
        Kind::unsignedNumber<&Event::meetingStatus, &Event::setMeetingStatus>(
            Calendar::MeetingStatus, NoUint),
        Kind::text<&Event::appointmentReplyTime, &Event::setAppointmentReplyTime>(
            Calendar::AppointmentReplyTime),
        Kind::unsignedNumber<&Event::responseType, &Event::setResponseType>(Calendar::ResponseType, NoUint),
        Kind::text<&Event::onlineMeetingConfLink, &Event::setOnlineMeetingConfLink>(
            Calendar::OnlineMeetingConfLink),
        Kind::text<&Event::onlineMeetingExternalLink, &Event::setOnlineMeetingExternalLink>(
            Calendar::OnlineMeetingExternalLink),
        Kind::unsignedNumber<&Event::nativeBodyType, &Event::setNativeBodyType>(
            AirSyncBase::NativeBodyType, NoUint),
    };
    return table;
}

const FieldTable<EasCalendarItem> &seriesFields()
{
    using Event = EasCalendarItem;
    using Kind = Fields<Event>;
    static const FieldTable<Event> table {
        Field<Event> { Calendar::Timezone, takeTimezone },
        Kind::text<&Event::organizerName, &Event::setOrganizerName>(Calendar::OrganizerName),
        Kind::text<&Event::organizerEmail, &Event::setOrganizerEmail>(Calendar::OrganizerEmail),
        Kind::flag<&Event::responseRequested, &Event::setResponseRequested>(
            Calendar::ResponseRequested, NoBool),
        Kind::flag<&Event::disallowNewTimeProposal, &Event::setDisallowNewTimeProposal>(
            Calendar::DisallowNewTimeProposal, NoBool),
        Kind::text<&Event::proposedStartTime, &Event::setProposedStartTime>(
            MeetingResponse::ProposedStartTime),
        Kind::text<&Event::proposedEndTime, &Event::setProposedEndTime>(MeetingResponse::ProposedEndTime),
    };
    return table;
}

const FieldTable<EasCalendarItem> &exceptionFields()
{
    using Event = EasCalendarItem;
    using Kind = Fields<Event>;
    static const FieldTable<Event> table {
        Kind::text<&Event::exceptionStartTime, &Event::setExceptionStartTime>(Calendar::ExceptionStartTime),
        Kind::text<&Event::exceptionStartTime, &Event::setExceptionStartTime>(AirSyncBase::InstanceId)
            .receivedOnly(),
        Field<Event> { Calendar::Deleted, takeDeleted, NoUint },
    };
    return table;
}

const FieldTable<EasBodyContainer> &bodyFields()
{
    static const FieldTable<EasBodyContainer> table = SharedFields::bodyFields({ NoUint, NoUint, NoBool });
    return table;
}

const FieldTable<EasRecurrenceContainer> &recurrenceFields()
{
    using Recurrence = EasRecurrenceContainer;
    using Kind = Fields<Recurrence>;
    static const FieldTable<Recurrence> table {
        Kind::unsignedNumber<&Recurrence::type, &Recurrence::setType>(Calendar::Type, NoUint),
        Kind::signedNumber<&Recurrence::occurrences, &Recurrence::setOccurrences, 0>(
            Calendar::Occurrences, NoUint),
        Kind::signedNumber<&Recurrence::interval, &Recurrence::setInterval>(Calendar::Interval, NoUint),
        Kind::signedNumber<&Recurrence::weekOfMonth, &Recurrence::setWeekOfMonth, 0>(
            Calendar::WeekOfMonth, NoUint),
        Kind::signedNumber<&Recurrence::dayOfWeek, &Recurrence::setDayOfWeek, 0>(Calendar::DayOfWeek, NoUint),
        Kind::signedNumber<&Recurrence::monthOfYear, &Recurrence::setMonthOfYear, 0>(
            Calendar::MonthOfYear, NoUint),
        Kind::signedNumber<&Recurrence::dayOfMonth, &Recurrence::setDayOfMonth, 0>(
            Calendar::DayOfMonth, NoUint),
        Kind::text<&Recurrence::until, &Recurrence::setUntil>(Calendar::Until),
        Kind::unsignedNumber<&Recurrence::calendarType, &Recurrence::setCalendarType>(
            Calendar::CalendarType, NoUint)
            .from(ExchangeActiveSync::ProtocolVersion140),
        Kind::signedNumber<&Recurrence::leapMonth, &Recurrence::setLeapMonth>(Calendar::IsLeapMonth, NoUint)
            .from(ExchangeActiveSync::ProtocolVersion140),
        Kind::unsignedNumber<&Recurrence::firstDayOfWeek, &Recurrence::setFirstDayOfWeek>(
            Calendar::FirstDayOfWeek, NoUint)
            .from(ExchangeActiveSync::ProtocolVersion141),
    };
    return table;
}

const FieldTable<EasAttendeeContainer> &attendeeFields()
{
    using Attendee = EasAttendeeContainer;
    using Kind = Fields<Attendee>;
    static const FieldTable<Attendee> table {
        Kind::text<&Attendee::email, &Attendee::setEmail>(Calendar::Email),
        Kind::text<&Attendee::name, &Attendee::setName>(Calendar::Name),
        Kind::unsignedNumber<&Attendee::attendeeStatus, &Attendee::setAttendeeStatus>(
            Calendar::AttendeeStatus, NoUint),
        Kind::unsignedNumber<&Attendee::attendeeType, &Attendee::setAttendeeType>(
            Calendar::AttendeeType, NoUint),
    };
    return table;
}

const FieldTable<EasAttachmentContainer> &attachmentFields()
{
    using Attachment = EasAttachmentContainer;
    using Kind = Fields<Attachment>;
    static const FieldTable<Attachment> table {
        Kind::text<&Attachment::displayName, &Attachment::setDisplayName>(AirSyncBase::DisplayName),
        Kind::text<&Attachment::fileReference, &Attachment::setFileReference>(AirSyncBase::FileReference),
        Kind::unsignedNumber<&Attachment::method, &Attachment::setMethod>(AirSyncBase::Method, NoUint),
        Kind::signedNumber<&Attachment::estimatedDataSize, &Attachment::setEstimatedDataSize>(
            AirSyncBase::EstimatedDataSize, NoUint),
        Kind::text<&Attachment::contentId, &Attachment::setContentId>(AirSyncBase::ContentId),
        Kind::text<&Attachment::contentLocation, &Attachment::setContentLocation>(
            AirSyncBase::ContentLocation),
        Kind::text<&Attachment::clientId, &Attachment::setClientId>(AirSyncBase::ClientId),
        Kind::mark<&Attachment::isInline, &Attachment::setIsInline>(AirSyncBase::IsInline, NoBool),
    };
    return table;
}

} // namespace CalendarFields
