// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/fields/calendarfields.h"

#include "application/base/logging.h"
#include "easitems/fields/sharedfields.h"

#include <QFile>
#include <QUrl>

using namespace Wbxml;

namespace {

using Version = ExchangeActiveSync::ProtocolVersion;

constexpr auto Version140 = ExchangeActiveSync::ProtocolVersion140;
constexpr auto Version141 = ExchangeActiveSync::ProtocolVersion141;
constexpr auto Version160 = ExchangeActiveSync::ProtocolVersion160;

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

bool isException(const EasCalendarItem &item)
{
    return !item.exceptionStartTime().isEmpty();
}

/** From 16.0 on the days of an event that lasts whole days belong to no zone. */
void giveTimezone(const EasCalendarItem &item, Token tag, WbxmlEncoder &encoder, Version version)
{
    const bool hasNoZone =
        version >= Version160 && item.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent;
    if (!hasNoZone && !item.timezone().isEmpty()) {
        encoder.appendTextElement(tag, item.timezone());
    }
}

/** An event always has its times; an exception may leave them to its series. */
template <QString (EasCalendarItem::*Get)() const>
void giveTime(const EasCalendarItem &item, Token tag, WbxmlEncoder &encoder, Version)
{
    const QString time = (item.*Get)();
    if (!time.isEmpty()) {
        encoder.appendTextElement(tag, time);
    } else if (!isException(item)) {
        encoder.appendElement(tag);
    }
}

void giveLocation(const EasCalendarItem &item, Token tag, WbxmlEncoder &encoder, Version)
{
    if (item.location().isEmpty()) {
        return;
    }
    encoder.appendElement(tag, true);
    encoder.appendTextElement(AirSyncBase::DisplayName, item.location());
    encoder.setCurrentNodeToParent();
}

void giveRecurrence(const EasCalendarItem &item, Token tag, WbxmlEncoder &encoder, Version version)
{
    const EasRecurrenceContainer recurrence = item.recurrence();
    if (!isException(item) && recurrence.type() != EasRecurrenceContainer::UndefinedRecurrence) {
        CalendarFields::recurrenceFields().sendIn(tag, recurrence, encoder, version);
    }
}

void giveDeleted(const EasCalendarItem &item, Token tag, WbxmlEncoder &encoder, Version)
{
    if (item.exceptionDeleted() != 0) {
        encoder.appendIntElement(tag, item.exceptionDeleted());
    }
}

void giveAttendeeType(const EasAttendeeContainer &attendee, Token tag, WbxmlEncoder &encoder, Version version)
{
    auto type = attendee.attendeeType();
    if (type == EasAttendeeContainer::AttendeeTypeUnSet && version >= Version160) {
        type = EasAttendeeContainer::RequiredAttendeeType;
    }
    if (type != EasAttendeeContainer::AttendeeTypeUnSet) {
        encoder.appendIntElement(tag, uint(type));
    }
}

/** The bytes of an attachment's file; what is not there goes as an element without content. */
void giveContent(const EasAttachmentContainer &attachment, WbxmlEncoder &encoder)
{
    const QUrl url(attachment.contentLocation());
    QFile file(url.isLocalFile() ? url.toLocalFile() : attachment.contentLocation());
    QByteArray content;
    if (file.open(QIODevice::ReadOnly)) {
        content = file.readAll();
    } else {
        qCWarning(eas()) << "Error opening attachment content file" << file.fileName();
    }
    if (content.isEmpty()) {
        encoder.appendElement(AirSyncBase::Content);
    } else {
        encoder.appendByteArrayElement(AirSyncBase::Content, content);
    }
}

/** A file of the device goes up whole; one that the server knows is only named, to be deleted. */
void giveAttachments(const EasCalendarItem &item, Token tag, WbxmlEncoder &encoder, Version version)
{
    const QList<EasAttachmentContainer> attachments = item.attachments();
    if (attachments.isEmpty()) {
        return;
    }
    encoder.appendElement(tag, true);
    for (const EasAttachmentContainer &attachment : attachments) {
        const auto give = [&](Token element) {
            for (const auto &field : CalendarFields::attachmentFields().fields()) {
                if (field.tag.key() == element.key()) {
                    field.send(attachment, encoder, version);
                }
            }
        };
        if (attachment.fileReference().isEmpty() && !attachment.contentLocation().isEmpty()) {
            encoder.appendElement(AirSyncBase::Add, true);
            give(AirSyncBase::DisplayName);
            give(AirSyncBase::ClientId);
            give(AirSyncBase::ContentId);
            giveContent(attachment, encoder);
            // What the device does not know more of is a plain file.
            encoder.appendIntElement(AirSyncBase::Method,
                attachment.method() == EasAttachmentContainer::UnspecifiedMethod
                    ? uint(EasAttachmentContainer::NormalAttachmentMethod)
                    : uint(attachment.method()));
            encoder.setCurrentNodeToParent();
        } else if (!attachment.fileReference().isEmpty() && attachment.contentId().isEmpty()) {
            encoder.appendElement(AirSyncBase::Delete, true);
            give(AirSyncBase::FileReference);
            encoder.setCurrentNodeToParent();
        }
    }
    encoder.setCurrentNodeToParent();
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
        Kind::text<&Event::dtStamp, &Event::setDtStamp>(Calendar::DtStamp).below(Version160),
        Kind::text<&Event::endTime, &Event::setEndTime>(Calendar::EndTime).givenBy(giveTime<&Event::endTime>),
        Kind::text<&Event::location, &Event::setLocation>(Calendar::Location).below(Version160),
        Field<Event> { AirSyncBase::Location }.givenBy(giveLocation).from(Version160),
        Kind::signedNumber<&Event::reminder, &Event::setReminder>(Calendar::Reminder, NoUint),
        Kind::unsignedNumber<&Event::sensitivity, &Event::setSensitivity>(Calendar::Sensitivity, NoUint),
        Kind::text<&Event::subject, &Event::setSubject>(Calendar::Subject),
        Kind::text<&Event::startTime, &Event::setStartTime>(Calendar::StartTime)
            .givenBy(giveTime<&Event::startTime>),
        Kind::text<&Event::uid, &Event::setUid>(Calendar::UID).below(Version160),
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
        Kind::container<&Event::body, uploadedBodyFields, SharedFields::bodyIsSent>(AirSyncBase::Body),
        Kind::containers<&Event::attendees, Calendar::Attendee, attendeeFields>(Calendar::Attendees),
        Kind::texts<&Event::categories, Calendar::Category>(Calendar::Categories),
    };
    return table;
}

const FieldTable<EasCalendarItem> &seriesFields()
{
    using Event = EasCalendarItem;
    using Kind = Fields<Event>;
    static const FieldTable<Event> table {
        Field<Event> { Calendar::Timezone, takeTimezone }.givenBy(giveTimezone),
        Kind::text<&Event::organizerName, &Event::setOrganizerName>(Calendar::OrganizerName)
            .below(Version160),
        Kind::text<&Event::organizerEmail, &Event::setOrganizerEmail>(Calendar::OrganizerEmail)
            .below(Version160),
        Kind::optionalFlag<&Event::responseRequested, &Event::setResponseRequested>(
            Calendar::ResponseRequested, NoBool)
            .from(Version140),
        Kind::optionalFlag<&Event::disallowNewTimeProposal, &Event::setDisallowNewTimeProposal>(
            Calendar::DisallowNewTimeProposal, NoBool),
        Kind::text<&Event::proposedStartTime, &Event::setProposedStartTime>(
            MeetingResponse::ProposedStartTime),
        Kind::text<&Event::proposedEndTime, &Event::setProposedEndTime>(MeetingResponse::ProposedEndTime),
        Field<Event> { Calendar::Recurrence }.givenBy(giveRecurrence),
        Kind::containers<&Event::exceptions, Calendar::Exception, uploadedExceptionFields>(
            Calendar::Exceptions)
            .below(Version160),
        Field<Event> { AirSyncBase::Attachments }.givenBy(giveAttachments).from(Version160),
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
        Field<Event> { Calendar::Deleted, takeDeleted, NoUint }.givenBy(giveDeleted),
    };
    return table;
}

const FieldTable<EasCalendarItem> &uploadedFields()
{
    static const auto table = FieldTable<EasCalendarItem>::ordered({ &itemFields(), &seriesFields() },
        { Calendar::Timezone, Calendar::AllDayEvent, AirSyncBase::Body, Calendar::BusyStatus,
            Calendar::OrganizerName, Calendar::OrganizerEmail, Calendar::DtStamp, Calendar::EndTime,
            AirSyncBase::Location, Calendar::Location, Calendar::Reminder, Calendar::Sensitivity,
            Calendar::Subject, Calendar::StartTime, Calendar::UID, Calendar::MeetingStatus,
            Calendar::ResponseRequested, Calendar::Attendees, Calendar::Categories, Calendar::Recurrence,
            Calendar::Exceptions, AirSyncBase::Attachments });
    return table;
}

const FieldTable<EasCalendarItem> &uploadedExceptionFields()
{
    static const auto table = FieldTable<EasCalendarItem>::ordered({ &itemFields(), &exceptionFields() },
        { Calendar::ExceptionStartTime, Calendar::Deleted, Calendar::Subject, Calendar::StartTime,
            Calendar::EndTime, AirSyncBase::Body, Calendar::Location, Calendar::Categories,
            Calendar::Sensitivity, Calendar::BusyStatus, Calendar::AllDayEvent, Calendar::DtStamp,
            Calendar::Reminder, Calendar::MeetingStatus, Calendar::Attendees });
    return table;
}

const FieldTable<EasBodyContainer> &uploadedBodyFields()
{
    static const auto table = FieldTable<EasBodyContainer>::ordered(
        { &bodyFields() }, { AirSyncBase::Type, AirSyncBase::Data, AirSyncBase::Preview });
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
            .from(Version140),
        Kind::signedNumber<&Recurrence::leapMonth, &Recurrence::setLeapMonth>(Calendar::IsLeapMonth, NoUint)
            .from(Version140),
        Kind::unsignedNumber<&Recurrence::firstDayOfWeek, &Recurrence::setFirstDayOfWeek>(
            Calendar::FirstDayOfWeek, NoUint)
            .from(Version141),
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
            Calendar::AttendeeStatus, NoUint)
            .below(Version160),
        Kind::unsignedNumber<&Attendee::attendeeType, &Attendee::setAttendeeType>(
            Calendar::AttendeeType, NoUint)
            .givenBy(giveAttendeeType),
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
