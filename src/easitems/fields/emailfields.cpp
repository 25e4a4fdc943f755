// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/fields/emailfields.h"

#include "easitems/fields/sharedfields.h"

using namespace Wbxml;

namespace {

constexpr auto Version140 = ExchangeActiveSync::ProtocolVersion140;
constexpr auto Version141 = ExchangeActiveSync::ProtocolVersion141;

constexpr char NoUint[] = "Cannot convert to uint:";
constexpr char NoInt[] = "Cannot convert to int:";
constexpr char NoBool[] = "Cannot convert to bool:";
// The fields of the younger code pages and of bodies log one blank more.
constexpr char NoUintOfPage[] = "Cannot convert to uint: ";
constexpr char NoIntOfPage[] = "Cannot convert to int: ";
constexpr char NoBoolOfPage[] = "Cannot convert to bool: ";

bool flagIsSent(const EasFlagContainer &flag)
{
    return !flag.isEmptyContainer();
}

bool meetingRequestIsSent(const EasMeetingRequestContainer &request)
{
    return request.elementValid();
}

/** An element that is there and numeric marks a draft, whatever the number. */
bool takeIsDraft(EasEmailItem &item, const QString &text, const QByteArray &)
{
    bool converted = false;
    text.toUInt(&converted, 10);
    if (converted) {
        item.setIsDraft(true);
    }
    return converted;
}

void giveLastVerb(
    const EasEmailItem &item, Token tag, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion)
{
    constexpr uint Verbs = EasEmailItem::ForwardVerb + 1;
    const uint verb = uint(item.lastVerbExecuted());
    if (verb < Verbs) {
        encoder.appendIntElement(tag, verb);
    }
}

/** Servers send the identifier as Base64 text or as opaque bytes; both go back as Base64 text. */
void giveGlobalObjId(const EasMeetingRequestContainer &request, Token tag, WbxmlEncoder &encoder,
    ExchangeActiveSync::ProtocolVersion)
{
    const QByteArray id = request.globalObjId();
    if (id.isEmpty()) {
        return;
    }
    const bool isBase64 = bool(QByteArray::fromBase64Encoding(id, QByteArray::AbortOnBase64DecodingErrors));
    encoder.appendTextElement(tag, QString::fromLatin1(isBase64 ? id : id.toBase64()));
}

bool takeDisallowNewTimeProposal(EasMeetingRequestContainer &request, const QString &text, const QByteArray &)
{
    bool converted = false;
    const uint number = text.toUInt(&converted, 10);
    if (converted) {
        request.setDisallowNewTimeProposal(number != 0 ? 1 : 0);
    }
    return converted;
}

} // namespace

namespace EmailFields {

const FieldTable<EasEmailItem> &itemFields()
{
    using Mail = EasEmailItem;
    using Kind = Fields<Mail>;
    static const FieldTable<Mail> table {
        Kind::text<&Mail::recipientsTo, &Mail::setRecipientsTo>(Email::To),
        Kind::text<&Mail::recipientsCc, &Mail::setRecipientsCc>(Email::Cc),
        Kind::text<&Mail::fromAddress, &Mail::setFromAddress>(Email::From),
        Kind::text<&Mail::subject, &Mail::setSubject>(Email::Subject),
        Kind::text<&Mail::replyTo, &Mail::setReplyTo>(Email::ReplyTo),
        Kind::text<&Mail::dateReceived, &Mail::setDateReceived>(Email::DateReceived),
        Kind::text<&Mail::displayTo, &Mail::setDisplayTo>(Email::DisplayTo),
        Kind::text<&Mail::threadTopic, &Mail::setThreadTopic>(Email::ThreadTopic),
        Kind::unsignedNumber<&Mail::importance, &Mail::setImportance>(Email::Importance, NoUint),
        Kind::flag<&Mail::read, &Mail::setRead>(Email::Read, NoBool),
        Kind::text<&Mail::messageClass, &Mail::setMessageClass>(Email::MessageClass),
        Kind::text<&Mail::contentClass, &Mail::setContentClass>(Email::ContentClass),
        Kind::text<&Mail::internetCPID, &Mail::setInternetCPID>(Email::InternetCPID),
        Kind::text<&Mail::sender, &Mail::setSender>(Email2::Sender).from(Version140),
        Kind::unsignedNumber<&Mail::lastVerbExecuted, &Mail::setLastVerbExecuted>(
            Email2::LastVerbExecuted, NoUint)
            .givenBy(giveLastVerb)
            .from(Version140),
        Kind::text<&Mail::lastVerbExecutedTime, &Mail::setLastVerbExecutedTime>(Email2::LastVerbExecutionTime)
            .from(Version140),
        Kind::mark<&Mail::receivedAsBcc, &Mail::setReceivedAsBcc>(Email2::ReceivedAsBcc, NoBoolOfPage),
        Kind::unsignedNumber<&Mail::nativeBodyType, &Mail::setNativeBodyType>(
            AirSyncBase::NativeBodyType, NoUintOfPage),
        Kind::container<&Mail::body, bodyFields, SharedFields::bodyIsSent>(AirSyncBase::Body),
        Kind::container<&Mail::flag, flagFields, flagIsSent>(Email::Flag),
        Kind::textsAlways<&Mail::categories, Email::Category>(Email::Categories).from(Version140),
        Kind::containers<&Mail::attachments, AirSyncBase::Attachment, SharedFields::attachmentFields>(
            AirSyncBase::Attachments),
        Kind::container<&Mail::meetingRequest, meetingRequestFields, meetingRequestIsSent>(
            Email::MeetingRequest),
        Kind::containers<&Mail::recurrences, Email::Recurrence, recurrenceFields>(Email::Recurrences),
        // What only comes in
        Kind::text<&Mail::callerId, &Mail::setCallerId>(Email2::UmCallerID).receivedOnly(),
        Kind::text<&Mail::userNotes, &Mail::setUserNotes>(Email2::UmUserNotes).receivedOnly(),
        Kind::bytes<&Mail::conversationId, &Mail::setConversationId>(Email2::ConversationId),
        Kind::bytes<&Mail::conversationIndex, &Mail::setConversationIndex>(Email2::ConversationIndex),
        Kind::text<&Mail::accountId, &Mail::setAccountId>(Email2::AccountId).receivedOnly(),
        Kind::flag<&Mail::isDraft, &Mail::setIsDraft>(Email2::IsDraft, NoUintOfPage)
            .takenBy(takeIsDraft)
            .receivedOnly(),
    };
    return table;
}

const FieldTable<EasBodyContainer> &bodyFields()
{
    static const FieldTable<EasBodyContainer> table =
        SharedFields::bodyFields({ NoUintOfPage, NoIntOfPage, NoBoolOfPage });
    return table;
}

const FieldTable<EasBodyPartContainer> &bodyPartFields()
{
    using Part = EasBodyPartContainer;
    using Kind = Fields<Part>;
    static const FieldTable<Part> table {
        Kind::unsignedNumber<&Part::status, &Part::setStatus>(AirSyncBase::Status, NoUintOfPage),
        Kind::unsignedNumber<&Part::type, &Part::setType>(AirSyncBase::Type, NoUintOfPage),
        Kind::signedNumber<&Part::estimatedDataSize, &Part::setEstimatedDataSize>(
            AirSyncBase::EstimatedDataSize, NoIntOfPage),
        Kind::flag<&Part::truncated, &Part::setTruncated>(AirSyncBase::Truncated, NoBoolOfPage),
        Kind::text<&Part::data, &Part::setData>(AirSyncBase::Data),
        Kind::text<&Part::preview, &Part::setPreview>(AirSyncBase::Preview),
    };
    return table;
}

const FieldTable<EasFlagContainer> &flagFields()
{
    using Flag = EasFlagContainer;
    using Kind = Fields<Flag>;
    static const FieldTable<Flag> table {
        Kind::unsignedNumber<&Flag::status, &Flag::setStatus>(Email::Status, NoUintOfPage),
        Kind::text<&Flag::flagType, &Flag::setFlagType>(Email::FlagType),
        Kind::text<&Flag::completeTime, &Flag::setCompleteTime>(Email::CompleteTime),
        // The task behind the flag is the device's own
        Kind::text<&Flag::subject, &Flag::setSubject>(Tasks::Subject).sentOnly(),
        Kind::text<&Flag::dateCompleted, &Flag::setDateCompleted>(Tasks::DateCompleted).sentOnly(),
        Kind::text<&Flag::startDate, &Flag::setStartDate>(Tasks::StartDate).sentOnly(),
        Kind::text<&Flag::dueDate, &Flag::setDueDate>(Tasks::DueDate).sentOnly(),
        Kind::text<&Flag::utcStartDate, &Flag::setUtcStartDate>(Tasks::UtcStartDate).sentOnly(),
        Kind::text<&Flag::utcDueDate, &Flag::setUtcDueDate>(Tasks::UtcDueDate).sentOnly(),
        Kind::unsignedNumber<&Flag::reminderSet, &Flag::setReminderSet, 0>(Tasks::ReminderSet, NoUint)
            .sentOnly(),
        Kind::text<&Flag::reminderTime, &Flag::setReminderTime>(Tasks::ReminderTime).sentOnly(),
        Kind::text<&Flag::ordinalDate, &Flag::setOrdinalDate>(Tasks::OrdinalDate).sentOnly(),
        Kind::text<&Flag::subOrdinalDate, &Flag::setSubOrdinalDate>(Tasks::SubOrdinalDate).sentOnly(),
    };
    return table;
}

const FieldTable<EasMeetingRequestContainer> &meetingRequestFields()
{
    using Request = EasMeetingRequestContainer;
    using Kind = Fields<Request>;
    static const FieldTable<Request> table {
        Kind::unsignedNumber<&Request::allDayEvent, &Request::setAllDayEvent>(Email::AllDayEvent, NoUint),
        Kind::text<&Request::startTime, &Request::setStartTime>(Email::StartTime),
        Kind::text<&Request::dtStamp, &Request::setDtStamp>(Email::DtStamp),
        Kind::text<&Request::endTime, &Request::setEndTime>(Email::EndTime),
        Kind::unsignedNumber<&Request::instanceType, &Request::setInstanceType>(Email::InstanceType, NoUint),
        Kind::text<&Request::location, &Request::setLocation>(Email::Location),
        Kind::text<&Request::organizer, &Request::setOrganizer>(Email::Organizer),
        Kind::signedNumber<&Request::reminder, &Request::setReminder>(Email::Reminder, NoInt),
        Kind::unsignedNumber<&Request::responseRequested, &Request::setResponseRequested>(
            Email::ResponseRequested, NoUint),
        Kind::unsignedNumber<&Request::sensitivity, &Request::setSensitivity>(Email::Sensitivity, NoUint),
        Kind::unsignedNumber<&Request::busyStatus, &Request::setBusyStatus>(Email::BusyStatus, NoUint),
        Kind::text<&Request::timeZone, &Request::setTimeZone>(Email::TimeZone),
        Kind::bytes<&Request::globalObjId, &Request::setGlobalObjId>(Email::GlobalObjId)
            .givenBy(giveGlobalObjId),
        Kind::unsignedNumber<&Request::disallowNewTimeProposal, &Request::setDisallowNewTimeProposal>(
            Email::DisallowNewTimeProposal, NoUint)
            .takenBy(takeDisallowNewTimeProposal),
        Kind::unsignedNumber<&Request::meetingMessageType, &Request::setMeetingMessageType>(
            Email2::MeetingMessageType, NoUintOfPage),
        // What only comes in
        Kind::text<&Request::recurrenceId, &Request::setRecurrenceId>(Email::RecurrenceId).receivedOnly(),
        Kind::bytes<&Request::calendarMessageId, &Request::setCalendarMessageId>(Calendar::UID),
        Kind::text<&Request::proposedStartTime, &Request::setProposedStartTime>(
            MeetingResponse::ProposedStartTime)
            .receivedOnly(),
        Kind::text<&Request::proposedEndTime, &Request::setProposedEndTime>(MeetingResponse::ProposedEndTime)
            .receivedOnly(),
    };
    return table;
}

const FieldTable<EasRecurrenceContainer> &recurrenceFields()
{
    using Recurrence = EasRecurrenceContainer;
    using Kind = Fields<Recurrence>;
    static const FieldTable<Recurrence> table {
        Kind::unsignedNumber<&Recurrence::type, &Recurrence::setType>(Email::Type, NoUint),
        Kind::signedNumber<&Recurrence::interval, &Recurrence::setInterval>(Email::Interval, NoInt),
        Kind::text<&Recurrence::until, &Recurrence::setUntil>(Email::Until),
        Kind::signedNumber<&Recurrence::occurrences, &Recurrence::setOccurrences, 0>(
            Email::Occurrences, NoInt),
        Kind::signedNumber<&Recurrence::weekOfMonth, &Recurrence::setWeekOfMonth, 0>(
            Email::WeekOfMonth, NoInt),
        Kind::signedNumber<&Recurrence::dayOfMonth, &Recurrence::setDayOfMonth, 0>(Email::DayOfMonth, NoInt),
        Kind::signedNumber<&Recurrence::dayOfWeek, &Recurrence::setDayOfWeek, 0>(Email::DayOfWeek, NoInt),
        Kind::signedNumber<&Recurrence::monthOfYear, &Recurrence::setMonthOfYear, 0>(
            Email::MonthOfYear, NoInt),
        Kind::text<&Recurrence::recurrenceId, &Recurrence::setRecurrenceId>(Email::RecurrenceId),
        Kind::unsignedNumber<&Recurrence::calendarType, &Recurrence::setCalendarType>(
            Email2::CalendarType, NoUintOfPage)
            .from(Version140),
        Kind::unsignedNumber<&Recurrence::leapMonth, &Recurrence::setLeapMonth>(Email2::IsLeapMonth, NoUint)
            .from(Version140),
        Kind::unsignedNumber<&Recurrence::firstDayOfWeek, &Recurrence::setFirstDayOfWeek>(
            Email2::FirstDayOfWeek, NoUintOfPage)
            .from(Version141),
    };
    return table;
}

} // namespace EmailFields
