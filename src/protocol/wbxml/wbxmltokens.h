// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

/**
 * The element names of ActiveSync by code page, as published for the protocol versions 12.0 to 16.1.
 *
 * A token converts to its key (page times 256 plus token) where a number is wanted, so it can be a case
 * label, be compared with Wbxml::key() of a parser's event, or name a changed field.
 */
namespace Wbxml {

struct Token
{
    quint8 page;
    quint8 token;

    constexpr uint key() const { return page * 256U + token; }
    constexpr operator uint() const { return key(); } // NOLINT: case labels need the conversion
};

constexpr uint key(uint codePage, uint token)
{
    return codePage * 256U + token;
}

namespace AirSync {
inline constexpr Token Sync { 0x00, 0x05 };
inline constexpr Token Responses { 0x00, 0x06 };
inline constexpr Token Add { 0x00, 0x07 };
inline constexpr Token Change { 0x00, 0x08 };
inline constexpr Token Delete { 0x00, 0x09 };
inline constexpr Token Fetch { 0x00, 0x0A };
inline constexpr Token SyncKey { 0x00, 0x0B };
inline constexpr Token ClientId { 0x00, 0x0C };
inline constexpr Token ServerId { 0x00, 0x0D };
inline constexpr Token Status { 0x00, 0x0E };
inline constexpr Token Collection { 0x00, 0x0F };
inline constexpr Token Class { 0x00, 0x10 };
inline constexpr Token CollectionId { 0x00, 0x12 };
inline constexpr Token GetChanges { 0x00, 0x13 };
inline constexpr Token MoreAvailable { 0x00, 0x14 };
inline constexpr Token WindowSize { 0x00, 0x15 };
inline constexpr Token Commands { 0x00, 0x16 };
inline constexpr Token Options { 0x00, 0x17 };
inline constexpr Token FilterType { 0x00, 0x18 };
inline constexpr Token Conflict { 0x00, 0x1B };
inline constexpr Token Collections { 0x00, 0x1C };
inline constexpr Token ApplicationData { 0x00, 0x1D };
inline constexpr Token DeletesAsMoves { 0x00, 0x1E };
inline constexpr Token Supported { 0x00, 0x20 };
inline constexpr Token SoftDelete { 0x00, 0x21 };
inline constexpr Token MIMESupport { 0x00, 0x22 };
inline constexpr Token MIMETruncation { 0x00, 0x23 };
inline constexpr Token Wait { 0x00, 0x24 };
inline constexpr Token Limit { 0x00, 0x25 };
inline constexpr Token Partial { 0x00, 0x26 };
inline constexpr Token ConversationMode { 0x00, 0x27 };
inline constexpr Token MaxItems { 0x00, 0x28 };
inline constexpr Token HeartbeatInterval { 0x00, 0x29 };
} // namespace AirSync

namespace Contacts {
inline constexpr Token Anniversary { 0x01, 0x05 };
inline constexpr Token AssistantName { 0x01, 0x06 };
inline constexpr Token AssistantPhoneNumber { 0x01, 0x07 };
inline constexpr Token Birthday { 0x01, 0x08 };
inline constexpr Token Business2PhoneNumber { 0x01, 0x0C };
inline constexpr Token BusinessAddressCity { 0x01, 0x0D };
inline constexpr Token BusinessAddressCountry { 0x01, 0x0E };
inline constexpr Token BusinessAddressPostalCode { 0x01, 0x0F };
inline constexpr Token BusinessAddressState { 0x01, 0x10 };
inline constexpr Token BusinessAddressStreet { 0x01, 0x11 };
inline constexpr Token BusinessFaxNumber { 0x01, 0x12 };
inline constexpr Token BusinessPhoneNumber { 0x01, 0x13 };
inline constexpr Token CarPhoneNumber { 0x01, 0x14 };
inline constexpr Token Categories { 0x01, 0x15 };
inline constexpr Token Category { 0x01, 0x16 };
inline constexpr Token Children { 0x01, 0x17 };
inline constexpr Token Child { 0x01, 0x18 };
inline constexpr Token CompanyName { 0x01, 0x19 };
inline constexpr Token Department { 0x01, 0x1A };
inline constexpr Token Email1Address { 0x01, 0x1B };
inline constexpr Token Email2Address { 0x01, 0x1C };
inline constexpr Token Email3Address { 0x01, 0x1D };
inline constexpr Token FileAs { 0x01, 0x1E };
inline constexpr Token FirstName { 0x01, 0x1F };
inline constexpr Token Home2PhoneNumber { 0x01, 0x20 };
inline constexpr Token HomeAddressCity { 0x01, 0x21 };
inline constexpr Token HomeAddressCountry { 0x01, 0x22 };
inline constexpr Token HomeAddressPostalCode { 0x01, 0x23 };
inline constexpr Token HomeAddressState { 0x01, 0x24 };
inline constexpr Token HomeAddressStreet { 0x01, 0x25 };
inline constexpr Token HomeFaxNumber { 0x01, 0x26 };
inline constexpr Token HomePhoneNumber { 0x01, 0x27 };
inline constexpr Token JobTitle { 0x01, 0x28 };
inline constexpr Token LastName { 0x01, 0x29 };
inline constexpr Token MiddleName { 0x01, 0x2A };
inline constexpr Token MobilePhoneNumber { 0x01, 0x2B };
inline constexpr Token OfficeLocation { 0x01, 0x2C };
inline constexpr Token OtherAddressCity { 0x01, 0x2D };
inline constexpr Token OtherAddressCountry { 0x01, 0x2E };
inline constexpr Token OtherAddressPostalCode { 0x01, 0x2F };
inline constexpr Token OtherAddressState { 0x01, 0x30 };
inline constexpr Token OtherAddressStreet { 0x01, 0x31 };
inline constexpr Token PagerNumber { 0x01, 0x32 };
inline constexpr Token RadioPhoneNumber { 0x01, 0x33 };
inline constexpr Token Spouse { 0x01, 0x34 };
inline constexpr Token Suffix { 0x01, 0x35 };
inline constexpr Token Title { 0x01, 0x36 };
inline constexpr Token WebPage { 0x01, 0x37 };
inline constexpr Token YomiCompanyName { 0x01, 0x38 };
inline constexpr Token YomiFirstName { 0x01, 0x39 };
inline constexpr Token YomiLastName { 0x01, 0x3A };
inline constexpr Token Picture { 0x01, 0x3C };
inline constexpr Token Alias { 0x01, 0x3D };
inline constexpr Token WeightedRank { 0x01, 0x3E };
} // namespace Contacts

namespace Email {
inline constexpr Token DateReceived { 0x02, 0x0F };
inline constexpr Token DisplayTo { 0x02, 0x11 };
inline constexpr Token Importance { 0x02, 0x12 };
inline constexpr Token MessageClass { 0x02, 0x13 };
inline constexpr Token Subject { 0x02, 0x14 };
inline constexpr Token Read { 0x02, 0x15 };
inline constexpr Token To { 0x02, 0x16 };
inline constexpr Token Cc { 0x02, 0x17 };
inline constexpr Token From { 0x02, 0x18 };
inline constexpr Token ReplyTo { 0x02, 0x19 };
inline constexpr Token AllDayEvent { 0x02, 0x1A };
inline constexpr Token Categories { 0x02, 0x1B };
inline constexpr Token Category { 0x02, 0x1C };
inline constexpr Token DtStamp { 0x02, 0x1D };
inline constexpr Token EndTime { 0x02, 0x1E };
inline constexpr Token InstanceType { 0x02, 0x1F };
inline constexpr Token BusyStatus { 0x02, 0x20 };
inline constexpr Token Location { 0x02, 0x21 };
inline constexpr Token MeetingRequest { 0x02, 0x22 };
inline constexpr Token Organizer { 0x02, 0x23 };
inline constexpr Token RecurrenceId { 0x02, 0x24 };
inline constexpr Token Reminder { 0x02, 0x25 };
inline constexpr Token ResponseRequested { 0x02, 0x26 };
inline constexpr Token Recurrences { 0x02, 0x27 };
inline constexpr Token Recurrence { 0x02, 0x28 };
inline constexpr Token Type { 0x02, 0x29 };
inline constexpr Token Until { 0x02, 0x2A };
inline constexpr Token Occurrences { 0x02, 0x2B };
inline constexpr Token Interval { 0x02, 0x2C };
inline constexpr Token DayOfWeek { 0x02, 0x2D };
inline constexpr Token DayOfMonth { 0x02, 0x2E };
inline constexpr Token WeekOfMonth { 0x02, 0x2F };
inline constexpr Token MonthOfYear { 0x02, 0x30 };
inline constexpr Token StartTime { 0x02, 0x31 };
inline constexpr Token Sensitivity { 0x02, 0x32 };
inline constexpr Token TimeZone { 0x02, 0x33 };
inline constexpr Token GlobalObjId { 0x02, 0x34 };
inline constexpr Token ThreadTopic { 0x02, 0x35 };
inline constexpr Token InternetCPID { 0x02, 0x39 };
inline constexpr Token Flag { 0x02, 0x3A };
inline constexpr Token Status { 0x02, 0x3B };
inline constexpr Token ContentClass { 0x02, 0x3C };
inline constexpr Token FlagType { 0x02, 0x3D };
inline constexpr Token CompleteTime { 0x02, 0x3E };
inline constexpr Token DisallowNewTimeProposal { 0x02, 0x3F };
} // namespace Email

namespace Calendar {
inline constexpr Token Timezone { 0x04, 0x05 };
inline constexpr Token AllDayEvent { 0x04, 0x06 };
inline constexpr Token Attendees { 0x04, 0x07 };
inline constexpr Token Attendee { 0x04, 0x08 };
inline constexpr Token Email { 0x04, 0x09 };
inline constexpr Token Name { 0x04, 0x0A };
inline constexpr Token BusyStatus { 0x04, 0x0D };
inline constexpr Token Categories { 0x04, 0x0E };
inline constexpr Token Category { 0x04, 0x0F };
inline constexpr Token DtStamp { 0x04, 0x11 };
inline constexpr Token EndTime { 0x04, 0x12 };
inline constexpr Token Exception { 0x04, 0x13 };
inline constexpr Token Exceptions { 0x04, 0x14 };
inline constexpr Token Deleted { 0x04, 0x15 };
inline constexpr Token ExceptionStartTime { 0x04, 0x16 };
inline constexpr Token Location { 0x04, 0x17 };
inline constexpr Token MeetingStatus { 0x04, 0x18 };
inline constexpr Token OrganizerEmail { 0x04, 0x19 };
inline constexpr Token OrganizerName { 0x04, 0x1A };
inline constexpr Token Recurrence { 0x04, 0x1B };
inline constexpr Token Type { 0x04, 0x1C };
inline constexpr Token Until { 0x04, 0x1D };
inline constexpr Token Occurrences { 0x04, 0x1E };
inline constexpr Token Interval { 0x04, 0x1F };
inline constexpr Token DayOfWeek { 0x04, 0x20 };
inline constexpr Token DayOfMonth { 0x04, 0x21 };
inline constexpr Token WeekOfMonth { 0x04, 0x22 };
inline constexpr Token MonthOfYear { 0x04, 0x23 };
inline constexpr Token Reminder { 0x04, 0x24 };
inline constexpr Token Sensitivity { 0x04, 0x25 };
inline constexpr Token Subject { 0x04, 0x26 };
inline constexpr Token StartTime { 0x04, 0x27 };
inline constexpr Token UID { 0x04, 0x28 };
inline constexpr Token AttendeeStatus { 0x04, 0x29 };
inline constexpr Token AttendeeType { 0x04, 0x2A };
inline constexpr Token DisallowNewTimeProposal { 0x04, 0x33 };
inline constexpr Token ResponseRequested { 0x04, 0x34 };
inline constexpr Token AppointmentReplyTime { 0x04, 0x35 };
inline constexpr Token ResponseType { 0x04, 0x36 };
inline constexpr Token CalendarType { 0x04, 0x37 };
inline constexpr Token IsLeapMonth { 0x04, 0x38 };
inline constexpr Token FirstDayOfWeek { 0x04, 0x39 };
inline constexpr Token OnlineMeetingConfLink { 0x04, 0x3A };
inline constexpr Token OnlineMeetingExternalLink { 0x04, 0x3B };
inline constexpr Token ClientUid { 0x04, 0x3C };
} // namespace Calendar

namespace Move {
inline constexpr Token MoveItems { 0x05, 0x05 };
inline constexpr Token Move { 0x05, 0x06 };
inline constexpr Token SrcMsgId { 0x05, 0x07 };
inline constexpr Token SrcFldId { 0x05, 0x08 };
inline constexpr Token DstFldId { 0x05, 0x09 };
inline constexpr Token Response { 0x05, 0x0A };
inline constexpr Token Status { 0x05, 0x0B };
inline constexpr Token DstMsgId { 0x05, 0x0C };
} // namespace Move

namespace GetItemEstimate {
inline constexpr Token GetItemEstimate { 0x06, 0x05 };
inline constexpr Token Collections { 0x06, 0x07 };
inline constexpr Token Collection { 0x06, 0x08 };
inline constexpr Token Class { 0x06, 0x09 };
inline constexpr Token CollectionId { 0x06, 0x0A };
inline constexpr Token Estimate { 0x06, 0x0C };
inline constexpr Token Response { 0x06, 0x0D };
inline constexpr Token Status { 0x06, 0x0E };
} // namespace GetItemEstimate

namespace FolderHierarchy {
inline constexpr Token Folders { 0x07, 0x05 };
inline constexpr Token Folder { 0x07, 0x06 };
inline constexpr Token DisplayName { 0x07, 0x07 };
inline constexpr Token ServerId { 0x07, 0x08 };
inline constexpr Token ParentId { 0x07, 0x09 };
inline constexpr Token Type { 0x07, 0x0A };
inline constexpr Token Status { 0x07, 0x0C };
inline constexpr Token Changes { 0x07, 0x0E };
inline constexpr Token Add { 0x07, 0x0F };
inline constexpr Token Delete { 0x07, 0x10 };
inline constexpr Token Update { 0x07, 0x11 };
inline constexpr Token SyncKey { 0x07, 0x12 };
inline constexpr Token FolderCreate { 0x07, 0x13 };
inline constexpr Token FolderDelete { 0x07, 0x14 };
inline constexpr Token FolderUpdate { 0x07, 0x15 };
inline constexpr Token FolderSync { 0x07, 0x16 };
inline constexpr Token Count { 0x07, 0x17 };
} // namespace FolderHierarchy

namespace MeetingResponse {
inline constexpr Token CalendarId { 0x08, 0x05 };
inline constexpr Token CollectionId { 0x08, 0x06 };
inline constexpr Token MeetingResponse { 0x08, 0x07 };
inline constexpr Token RequestId { 0x08, 0x08 };
inline constexpr Token Request { 0x08, 0x09 };
inline constexpr Token Result { 0x08, 0x0A };
inline constexpr Token Status { 0x08, 0x0B };
inline constexpr Token UserResponse { 0x08, 0x0C };
inline constexpr Token InstanceId { 0x08, 0x0E };
inline constexpr Token ProposedStartTime { 0x08, 0x10 };
inline constexpr Token ProposedEndTime { 0x08, 0x11 };
inline constexpr Token SendResponse { 0x08, 0x12 };
} // namespace MeetingResponse

namespace Tasks {
inline constexpr Token Categories { 0x09, 0x08 };
inline constexpr Token Category { 0x09, 0x09 };
inline constexpr Token Complete { 0x09, 0x0A };
inline constexpr Token DateCompleted { 0x09, 0x0B };
inline constexpr Token DueDate { 0x09, 0x0C };
inline constexpr Token UtcDueDate { 0x09, 0x0D };
inline constexpr Token Importance { 0x09, 0x0E };
inline constexpr Token Recurrence { 0x09, 0x0F };
inline constexpr Token Type { 0x09, 0x10 };
inline constexpr Token Start { 0x09, 0x11 };
inline constexpr Token Until { 0x09, 0x12 };
inline constexpr Token Occurrences { 0x09, 0x13 };
inline constexpr Token Interval { 0x09, 0x14 };
inline constexpr Token DayOfMonth { 0x09, 0x15 };
inline constexpr Token DayOfWeek { 0x09, 0x16 };
inline constexpr Token WeekOfMonth { 0x09, 0x17 };
inline constexpr Token MonthOfYear { 0x09, 0x18 };
inline constexpr Token Regenerate { 0x09, 0x19 };
inline constexpr Token DeadOccur { 0x09, 0x1A };
inline constexpr Token ReminderSet { 0x09, 0x1B };
inline constexpr Token ReminderTime { 0x09, 0x1C };
inline constexpr Token Sensitivity { 0x09, 0x1D };
inline constexpr Token StartDate { 0x09, 0x1E };
inline constexpr Token UtcStartDate { 0x09, 0x1F };
inline constexpr Token Subject { 0x09, 0x20 };
inline constexpr Token OrdinalDate { 0x09, 0x22 };
inline constexpr Token SubOrdinalDate { 0x09, 0x23 };
inline constexpr Token CalendarType { 0x09, 0x24 };
inline constexpr Token IsLeapMonth { 0x09, 0x25 };
inline constexpr Token FirstDayOfWeek { 0x09, 0x26 };
} // namespace Tasks

namespace ResolveRecipients {
inline constexpr Token ResolveRecipients { 0x0A, 0x05 };
inline constexpr Token Response { 0x0A, 0x06 };
inline constexpr Token Status { 0x0A, 0x07 };
inline constexpr Token Type { 0x0A, 0x08 };
inline constexpr Token Recipient { 0x0A, 0x09 };
inline constexpr Token DisplayName { 0x0A, 0x0A };
inline constexpr Token EmailAddress { 0x0A, 0x0B };
inline constexpr Token Certificates { 0x0A, 0x0C };
inline constexpr Token Certificate { 0x0A, 0x0D };
inline constexpr Token MiniCertificate { 0x0A, 0x0E };
inline constexpr Token Options { 0x0A, 0x0F };
inline constexpr Token To { 0x0A, 0x10 };
inline constexpr Token CertificateRetrieval { 0x0A, 0x11 };
inline constexpr Token RecipientCount { 0x0A, 0x12 };
inline constexpr Token MaxCertificates { 0x0A, 0x13 };
inline constexpr Token MaxAmbiguousRecipients { 0x0A, 0x14 };
inline constexpr Token CertificateCount { 0x0A, 0x15 };
inline constexpr Token Availability { 0x0A, 0x16 };
inline constexpr Token StartTime { 0x0A, 0x17 };
inline constexpr Token EndTime { 0x0A, 0x18 };
inline constexpr Token MergedFreeBusy { 0x0A, 0x19 };
inline constexpr Token Picture { 0x0A, 0x1A };
inline constexpr Token MaxSize { 0x0A, 0x1B };
inline constexpr Token Data { 0x0A, 0x1C };
inline constexpr Token MaxPictures { 0x0A, 0x1D };
} // namespace ResolveRecipients

namespace ValidateCert {
inline constexpr Token ValidateCert { 0x0B, 0x05 };
inline constexpr Token Certificates { 0x0B, 0x06 };
inline constexpr Token Certificate { 0x0B, 0x07 };
inline constexpr Token CertificateChain { 0x0B, 0x08 };
inline constexpr Token CheckCRL { 0x0B, 0x09 };
inline constexpr Token Status { 0x0B, 0x0A };
} // namespace ValidateCert

namespace Contacts2 {
inline constexpr Token CustomerId { 0x0C, 0x05 };
inline constexpr Token GovernmentId { 0x0C, 0x06 };
inline constexpr Token IMAddress { 0x0C, 0x07 };
inline constexpr Token IMAddress2 { 0x0C, 0x08 };
inline constexpr Token IMAddress3 { 0x0C, 0x09 };
inline constexpr Token ManagerName { 0x0C, 0x0A };
inline constexpr Token CompanyMainPhone { 0x0C, 0x0B };
inline constexpr Token AccountName { 0x0C, 0x0C };
inline constexpr Token NickName { 0x0C, 0x0D };
inline constexpr Token MMS { 0x0C, 0x0E };
} // namespace Contacts2

namespace Ping {
inline constexpr Token Ping { 0x0D, 0x05 };
inline constexpr Token Status { 0x0D, 0x07 };
inline constexpr Token HeartbeatInterval { 0x0D, 0x08 };
inline constexpr Token Folders { 0x0D, 0x09 };
inline constexpr Token Folder { 0x0D, 0x0A };
inline constexpr Token Id { 0x0D, 0x0B };
inline constexpr Token Class { 0x0D, 0x0C };
inline constexpr Token MaxFolders { 0x0D, 0x0D };
} // namespace Ping

namespace Provision {
inline constexpr Token Provision { 0x0E, 0x05 };
inline constexpr Token Policies { 0x0E, 0x06 };
inline constexpr Token Policy { 0x0E, 0x07 };
inline constexpr Token PolicyType { 0x0E, 0x08 };
inline constexpr Token PolicyKey { 0x0E, 0x09 };
inline constexpr Token Data { 0x0E, 0x0A };
inline constexpr Token Status { 0x0E, 0x0B };
inline constexpr Token RemoteWipe { 0x0E, 0x0C };
inline constexpr Token EASProvisionDoc { 0x0E, 0x0D };
inline constexpr Token DevicePasswordEnabled { 0x0E, 0x0E };
inline constexpr Token AlphanumericDevicePasswordRequired { 0x0E, 0x0F };
inline constexpr Token RequireStorageCardEncryption { 0x0E, 0x10 };
inline constexpr Token PasswordRecoveryEnabled { 0x0E, 0x11 };
inline constexpr Token AttachmentsEnabled { 0x0E, 0x13 };
inline constexpr Token MinDevicePasswordLength { 0x0E, 0x14 };
inline constexpr Token MaxInactivityTimeDeviceLock { 0x0E, 0x15 };
inline constexpr Token MaxDevicePasswordFailedAttempts { 0x0E, 0x16 };
inline constexpr Token MaxAttachmentSize { 0x0E, 0x17 };
inline constexpr Token AllowSimpleDevicePassword { 0x0E, 0x18 };
inline constexpr Token DevicePasswordExpiration { 0x0E, 0x19 };
inline constexpr Token DevicePasswordHistory { 0x0E, 0x1A };
inline constexpr Token AllowStorageCard { 0x0E, 0x1B };
inline constexpr Token AllowCamera { 0x0E, 0x1C };
inline constexpr Token RequireDeviceEncryption { 0x0E, 0x1D };
inline constexpr Token AllowUnsignedApplications { 0x0E, 0x1E };
inline constexpr Token AllowUnsignedInstallationPackages { 0x0E, 0x1F };
inline constexpr Token MinDevicePasswordComplexCharacters { 0x0E, 0x20 };
inline constexpr Token AllowWiFi { 0x0E, 0x21 };
inline constexpr Token AllowTextMessaging { 0x0E, 0x22 };
inline constexpr Token AllowPOPIMAPEmail { 0x0E, 0x23 };
inline constexpr Token AllowBluetooth { 0x0E, 0x24 };
inline constexpr Token AllowIrDA { 0x0E, 0x25 };
inline constexpr Token RequireManualSyncWhenRoaming { 0x0E, 0x26 };
inline constexpr Token AllowDesktopSync { 0x0E, 0x27 };
inline constexpr Token MaxCalendarAgeFilter { 0x0E, 0x28 };
inline constexpr Token AllowHTMLEmail { 0x0E, 0x29 };
inline constexpr Token MaxEmailAgeFilter { 0x0E, 0x2A };
inline constexpr Token MaxEmailBodyTruncationSize { 0x0E, 0x2B };
inline constexpr Token MaxEmailHTMLBodyTruncationSize { 0x0E, 0x2C };
inline constexpr Token RequireSignedSMIMEMessages { 0x0E, 0x2D };
inline constexpr Token RequireEncryptedSMIMEMessages { 0x0E, 0x2E };
inline constexpr Token RequireSignedSMIMEAlgorithm { 0x0E, 0x2F };
inline constexpr Token RequireEncryptionSMIMEAlgorithm { 0x0E, 0x30 };
inline constexpr Token AllowSMIMEEncryptionAlgorithmNegotiation { 0x0E, 0x31 };
inline constexpr Token AllowSMIMESoftCerts { 0x0E, 0x32 };
inline constexpr Token AllowBrowser { 0x0E, 0x33 };
inline constexpr Token AllowConsumerEmail { 0x0E, 0x34 };
inline constexpr Token AllowRemoteDesktop { 0x0E, 0x35 };
inline constexpr Token AllowInternetSharing { 0x0E, 0x36 };
inline constexpr Token UnapprovedInROMApplicationList { 0x0E, 0x37 };
inline constexpr Token ApplicationName { 0x0E, 0x38 };
inline constexpr Token ApprovedApplicationList { 0x0E, 0x39 };
inline constexpr Token Hash { 0x0E, 0x3A };
inline constexpr Token AccountOnlyRemoteWipe { 0x0E, 0x3B };
} // namespace Provision

namespace Search {
inline constexpr Token Search { 0x0F, 0x05 };
inline constexpr Token Store { 0x0F, 0x07 };
inline constexpr Token Name { 0x0F, 0x08 };
inline constexpr Token Query { 0x0F, 0x09 };
inline constexpr Token Options { 0x0F, 0x0A };
inline constexpr Token Range { 0x0F, 0x0B };
inline constexpr Token Status { 0x0F, 0x0C };
inline constexpr Token Response { 0x0F, 0x0D };
inline constexpr Token Result { 0x0F, 0x0E };
inline constexpr Token Properties { 0x0F, 0x0F };
inline constexpr Token Total { 0x0F, 0x10 };
inline constexpr Token EqualTo { 0x0F, 0x11 };
inline constexpr Token Value { 0x0F, 0x12 };
inline constexpr Token And { 0x0F, 0x13 };
inline constexpr Token Or { 0x0F, 0x14 };
inline constexpr Token FreeText { 0x0F, 0x15 };
inline constexpr Token DeepTraversal { 0x0F, 0x17 };
inline constexpr Token LongId { 0x0F, 0x18 };
inline constexpr Token RebuildResults { 0x0F, 0x19 };
inline constexpr Token LessThan { 0x0F, 0x1A };
inline constexpr Token GreaterThan { 0x0F, 0x1B };
inline constexpr Token UserName { 0x0F, 0x1E };
inline constexpr Token Password { 0x0F, 0x1F };
inline constexpr Token ConversationId { 0x0F, 0x20 };
inline constexpr Token Picture { 0x0F, 0x21 };
inline constexpr Token MaxSize { 0x0F, 0x22 };
inline constexpr Token MaxPictures { 0x0F, 0x23 };
} // namespace Search

namespace GAL {
inline constexpr Token DisplayName { 0x10, 0x05 };
inline constexpr Token Phone { 0x10, 0x06 };
inline constexpr Token Office { 0x10, 0x07 };
inline constexpr Token Title { 0x10, 0x08 };
inline constexpr Token Company { 0x10, 0x09 };
inline constexpr Token Alias { 0x10, 0x0A };
inline constexpr Token FirstName { 0x10, 0x0B };
inline constexpr Token LastName { 0x10, 0x0C };
inline constexpr Token HomePhone { 0x10, 0x0D };
inline constexpr Token MobilePhone { 0x10, 0x0E };
inline constexpr Token EmailAddress { 0x10, 0x0F };
inline constexpr Token Picture { 0x10, 0x10 };
inline constexpr Token Status { 0x10, 0x11 };
inline constexpr Token Data { 0x10, 0x12 };
} // namespace GAL

namespace AirSyncBase {
inline constexpr Token BodyPreference { 0x11, 0x05 };
inline constexpr Token Type { 0x11, 0x06 };
inline constexpr Token TruncationSize { 0x11, 0x07 };
inline constexpr Token AllOrNone { 0x11, 0x08 };
inline constexpr Token Body { 0x11, 0x0A };
inline constexpr Token Data { 0x11, 0x0B };
inline constexpr Token EstimatedDataSize { 0x11, 0x0C };
inline constexpr Token Truncated { 0x11, 0x0D };
inline constexpr Token Attachments { 0x11, 0x0E };
inline constexpr Token Attachment { 0x11, 0x0F };
inline constexpr Token DisplayName { 0x11, 0x10 };
inline constexpr Token FileReference { 0x11, 0x11 };
inline constexpr Token Method { 0x11, 0x12 };
inline constexpr Token ContentId { 0x11, 0x13 };
inline constexpr Token ContentLocation { 0x11, 0x14 };
inline constexpr Token IsInline { 0x11, 0x15 };
inline constexpr Token NativeBodyType { 0x11, 0x16 };
inline constexpr Token ContentType { 0x11, 0x17 };
inline constexpr Token Preview { 0x11, 0x18 };
inline constexpr Token BodyPartPreference { 0x11, 0x19 };
inline constexpr Token BodyPart { 0x11, 0x1A };
inline constexpr Token Status { 0x11, 0x1B };
inline constexpr Token Add { 0x11, 0x1C };
inline constexpr Token Delete { 0x11, 0x1D };
inline constexpr Token ClientId { 0x11, 0x1E };
inline constexpr Token Content { 0x11, 0x1F };
inline constexpr Token Location { 0x11, 0x20 };
inline constexpr Token Annotation { 0x11, 0x21 };
inline constexpr Token Street { 0x11, 0x22 };
inline constexpr Token City { 0x11, 0x23 };
inline constexpr Token State { 0x11, 0x24 };
inline constexpr Token Country { 0x11, 0x25 };
inline constexpr Token PostalCode { 0x11, 0x26 };
inline constexpr Token Latitude { 0x11, 0x27 };
inline constexpr Token Longitude { 0x11, 0x28 };
inline constexpr Token Accuracy { 0x11, 0x29 };
inline constexpr Token Altitude { 0x11, 0x2A };
inline constexpr Token AltitudeAccuracy { 0x11, 0x2B };
inline constexpr Token LocationUri { 0x11, 0x2C };
inline constexpr Token InstanceId { 0x11, 0x2D };
} // namespace AirSyncBase

namespace Settings {
inline constexpr Token Settings { 0x12, 0x05 };
inline constexpr Token Status { 0x12, 0x06 };
inline constexpr Token Get { 0x12, 0x07 };
inline constexpr Token Set { 0x12, 0x08 };
inline constexpr Token Oof { 0x12, 0x09 };
inline constexpr Token OofState { 0x12, 0x0A };
inline constexpr Token StartTime { 0x12, 0x0B };
inline constexpr Token EndTime { 0x12, 0x0C };
inline constexpr Token OofMessage { 0x12, 0x0D };
inline constexpr Token AppliesToInternal { 0x12, 0x0E };
inline constexpr Token AppliesToExternalKnown { 0x12, 0x0F };
inline constexpr Token AppliesToExternalUnknown { 0x12, 0x10 };
inline constexpr Token Enabled { 0x12, 0x11 };
inline constexpr Token ReplyMessage { 0x12, 0x12 };
inline constexpr Token BodyType { 0x12, 0x13 };
inline constexpr Token DevicePassword { 0x12, 0x14 };
inline constexpr Token Password { 0x12, 0x15 };
inline constexpr Token DeviceInformation { 0x12, 0x16 };
inline constexpr Token Model { 0x12, 0x17 };
inline constexpr Token IMEI { 0x12, 0x18 };
inline constexpr Token FriendlyName { 0x12, 0x19 };
inline constexpr Token OS { 0x12, 0x1A };
inline constexpr Token OSLanguage { 0x12, 0x1B };
inline constexpr Token PhoneNumber { 0x12, 0x1C };
inline constexpr Token UserInformation { 0x12, 0x1D };
inline constexpr Token EmailAddresses { 0x12, 0x1E };
inline constexpr Token SMTPAddress { 0x12, 0x1F };
inline constexpr Token UserAgent { 0x12, 0x20 };
inline constexpr Token EnableOutboundSMS { 0x12, 0x21 };
inline constexpr Token MobileOperator { 0x12, 0x22 };
inline constexpr Token PrimarySmtpAddress { 0x12, 0x23 };
inline constexpr Token Accounts { 0x12, 0x24 };
inline constexpr Token Account { 0x12, 0x25 };
inline constexpr Token AccountId { 0x12, 0x26 };
inline constexpr Token AccountName { 0x12, 0x27 };
inline constexpr Token UserDisplayName { 0x12, 0x28 };
inline constexpr Token SendDisabled { 0x12, 0x29 };
inline constexpr Token RightsManagementInformation { 0x12, 0x2B };
} // namespace Settings

namespace DocumentLibrary {
inline constexpr Token LinkId { 0x13, 0x05 };
inline constexpr Token DisplayName { 0x13, 0x06 };
inline constexpr Token IsFolder { 0x13, 0x07 };
inline constexpr Token CreationDate { 0x13, 0x08 };
inline constexpr Token LastModifiedDate { 0x13, 0x09 };
inline constexpr Token IsHidden { 0x13, 0x0A };
inline constexpr Token ContentLength { 0x13, 0x0B };
inline constexpr Token ContentType { 0x13, 0x0C };
} // namespace DocumentLibrary

namespace ItemOperations {
inline constexpr Token ItemOperations { 0x14, 0x05 };
inline constexpr Token Fetch { 0x14, 0x06 };
inline constexpr Token Store { 0x14, 0x07 };
inline constexpr Token Options { 0x14, 0x08 };
inline constexpr Token Range { 0x14, 0x09 };
inline constexpr Token Total { 0x14, 0x0A };
inline constexpr Token Properties { 0x14, 0x0B };
inline constexpr Token Data { 0x14, 0x0C };
inline constexpr Token Status { 0x14, 0x0D };
inline constexpr Token Response { 0x14, 0x0E };
inline constexpr Token Version { 0x14, 0x0F };
inline constexpr Token Schema { 0x14, 0x10 };
inline constexpr Token Part { 0x14, 0x11 };
inline constexpr Token EmptyFolderContents { 0x14, 0x12 };
inline constexpr Token DeleteSubFolders { 0x14, 0x13 };
inline constexpr Token UserName { 0x14, 0x14 };
inline constexpr Token Password { 0x14, 0x15 };
inline constexpr Token Move { 0x14, 0x16 };
inline constexpr Token DstFldId { 0x14, 0x17 };
inline constexpr Token ConversationId { 0x14, 0x18 };
inline constexpr Token MoveAlways { 0x14, 0x19 };
} // namespace ItemOperations

namespace ComposeMail {
inline constexpr Token SendMail { 0x15, 0x05 };
inline constexpr Token SmartForward { 0x15, 0x06 };
inline constexpr Token SmartReply { 0x15, 0x07 };
inline constexpr Token SaveInSentItems { 0x15, 0x08 };
inline constexpr Token ReplaceMime { 0x15, 0x09 };
inline constexpr Token Source { 0x15, 0x0B };
inline constexpr Token FolderId { 0x15, 0x0C };
inline constexpr Token ItemId { 0x15, 0x0D };
inline constexpr Token LongId { 0x15, 0x0E };
inline constexpr Token InstanceId { 0x15, 0x0F };
inline constexpr Token Mime { 0x15, 0x10 };
inline constexpr Token ClientId { 0x15, 0x11 };
inline constexpr Token Status { 0x15, 0x12 };
inline constexpr Token AccountId { 0x15, 0x13 };
inline constexpr Token Forwardees { 0x15, 0x15 };
inline constexpr Token Forwardee { 0x15, 0x16 };
inline constexpr Token Name { 0x15, 0x17 };
inline constexpr Token Email { 0x15, 0x18 };
} // namespace ComposeMail

namespace Email2 {
inline constexpr Token UmCallerID { 0x16, 0x05 };
inline constexpr Token UmUserNotes { 0x16, 0x06 };
inline constexpr Token UmAttDuration { 0x16, 0x07 };
inline constexpr Token UmAttOrder { 0x16, 0x08 };
inline constexpr Token ConversationId { 0x16, 0x09 };
inline constexpr Token ConversationIndex { 0x16, 0x0A };
inline constexpr Token LastVerbExecuted { 0x16, 0x0B };
inline constexpr Token LastVerbExecutionTime { 0x16, 0x0C };
inline constexpr Token ReceivedAsBcc { 0x16, 0x0D };
inline constexpr Token Sender { 0x16, 0x0E };
inline constexpr Token CalendarType { 0x16, 0x0F };
inline constexpr Token IsLeapMonth { 0x16, 0x10 };
inline constexpr Token AccountId { 0x16, 0x11 };
inline constexpr Token FirstDayOfWeek { 0x16, 0x12 };
inline constexpr Token MeetingMessageType { 0x16, 0x13 };
inline constexpr Token IsDraft { 0x16, 0x15 };
inline constexpr Token Bcc { 0x16, 0x16 };
inline constexpr Token Send { 0x16, 0x17 };
} // namespace Email2

namespace Notes {
inline constexpr Token Subject { 0x17, 0x05 };
inline constexpr Token MessageClass { 0x17, 0x06 };
inline constexpr Token LastModifiedDate { 0x17, 0x07 };
inline constexpr Token Categories { 0x17, 0x08 };
inline constexpr Token Category { 0x17, 0x09 };
} // namespace Notes

namespace RightsManagement {
inline constexpr Token RightsManagementSupport { 0x18, 0x05 };
inline constexpr Token RightsManagementTemplates { 0x18, 0x06 };
inline constexpr Token RightsManagementTemplate { 0x18, 0x07 };
inline constexpr Token RightsManagementLicense { 0x18, 0x08 };
inline constexpr Token EditAllowed { 0x18, 0x09 };
inline constexpr Token ReplyAllowed { 0x18, 0x0A };
inline constexpr Token ReplyAllAllowed { 0x18, 0x0B };
inline constexpr Token ForwardAllowed { 0x18, 0x0C };
inline constexpr Token ModifyRecipientsAllowed { 0x18, 0x0D };
inline constexpr Token ExtractAllowed { 0x18, 0x0E };
inline constexpr Token PrintAllowed { 0x18, 0x0F };
inline constexpr Token ExportAllowed { 0x18, 0x10 };
inline constexpr Token ProgrammaticAccessAllowed { 0x18, 0x11 };
inline constexpr Token Owner { 0x18, 0x12 };
inline constexpr Token ContentExpiryDate { 0x18, 0x13 };
inline constexpr Token TemplateID { 0x18, 0x14 };
inline constexpr Token TemplateName { 0x18, 0x15 };
inline constexpr Token TemplateDescription { 0x18, 0x16 };
inline constexpr Token ContentOwner { 0x18, 0x17 };
inline constexpr Token RemoveRightsManagementProtection { 0x18, 0x18 };
} // namespace RightsManagement

namespace Find {
inline constexpr Token Find { 0x19, 0x05 };
inline constexpr Token SearchId { 0x19, 0x06 };
inline constexpr Token ExecuteSearch { 0x19, 0x07 };
inline constexpr Token MailBoxSearchCriterion { 0x19, 0x08 };
inline constexpr Token Query { 0x19, 0x09 };
inline constexpr Token Status { 0x19, 0x0A };
inline constexpr Token FreeText { 0x19, 0x0B };
inline constexpr Token Options { 0x19, 0x0C };
inline constexpr Token Range { 0x19, 0x0D };
inline constexpr Token DeepTraversal { 0x19, 0x0E };
inline constexpr Token Response { 0x19, 0x11 };
inline constexpr Token Result { 0x19, 0x12 };
inline constexpr Token Properties { 0x19, 0x13 };
inline constexpr Token Preview { 0x19, 0x14 };
inline constexpr Token HasAttachments { 0x19, 0x15 };
inline constexpr Token Total { 0x19, 0x16 };
inline constexpr Token DisplayCc { 0x19, 0x17 };
inline constexpr Token DisplayBcc { 0x19, 0x18 };
inline constexpr Token GalSearchCriterion { 0x19, 0x19 };
inline constexpr Token MaxPictures { 0x19, 0x20 };
inline constexpr Token MaxSize { 0x19, 0x21 };
inline constexpr Token Picture { 0x19, 0x22 };
} // namespace Find

} // namespace Wbxml
