// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/wbxmltokens.h"

#include "simulator/protocolversion.h"

#include <QHash>

#include <iterator>

namespace Simulator {
namespace {

enum Versions : quint8 {
    All = 0x3F,
    From121 = 0x3E,
    From140 = 0x3C,
    From141 = 0x38,
    From160 = 0x30,
    Only161 = 0x20,
    Until121 = 0x03,
    Until141 = 0x0F,
    Until160 = 0x1F,
    From121To160 = 0x1E,
};

const char *const pageNames[] = { "AirSync", "Contacts", "Email", "", "Calendar", "Move", "GetItemEstimate",
    "FolderHierarchy", "MeetingResponse", "Tasks", "ResolveRecipients", "ValidateCert", "Contacts2", "Ping",
    "Provision", "Search", "GAL", "AirSyncBase", "Settings", "DocumentLibrary", "ItemOperations",
    "ComposeMail", "Email2", "Notes", "RightsManagement", "Find" };

// clang-format off
const WbxmlToken table[] = {
    // 0: AirSync
    { 0, 0x05, "Sync", All }, { 0, 0x06, "Responses", All }, { 0, 0x07, "Add", All },
    { 0, 0x08, "Change", All }, { 0, 0x09, "Delete", All }, { 0, 0x0A, "Fetch", All },
    { 0, 0x0B, "SyncKey", All }, { 0, 0x0C, "ClientId", All }, { 0, 0x0D, "ServerId", All },
    { 0, 0x0E, "Status", All }, { 0, 0x0F, "Collection", All }, { 0, 0x10, "Class", All },
    { 0, 0x12, "CollectionId", All }, { 0, 0x13, "GetChanges", All }, { 0, 0x14, "MoreAvailable", All },
    { 0, 0x15, "WindowSize", All }, { 0, 0x16, "Commands", All }, { 0, 0x17, "Options", All },
    { 0, 0x18, "FilterType", All }, { 0, 0x1B, "Conflict", All }, { 0, 0x1C, "Collections", All },
    { 0, 0x1D, "ApplicationData", All }, { 0, 0x1E, "DeletesAsMoves", All }, { 0, 0x20, "Supported", All },
    { 0, 0x21, "SoftDelete", All }, { 0, 0x22, "MIMESupport", All }, { 0, 0x23, "MIMETruncation", All },
    { 0, 0x24, "Wait", From121 }, { 0, 0x25, "Limit", From121 }, { 0, 0x26, "Partial", From121 },
    { 0, 0x27, "ConversationMode", From140 }, { 0, 0x28, "MaxItems", From140 },
    { 0, 0x29, "HeartbeatInterval", From140 },
    // 1: Contacts
    { 1, 0x05, "Anniversary", All }, { 1, 0x06, "AssistantName", All },
    { 1, 0x07, "AssistantPhoneNumber", All }, { 1, 0x08, "Birthday", All },
    { 1, 0x0C, "Business2PhoneNumber", All }, { 1, 0x0D, "BusinessAddressCity", All },
    { 1, 0x0E, "BusinessAddressCountry", All }, { 1, 0x0F, "BusinessAddressPostalCode", All },
    { 1, 0x10, "BusinessAddressState", All }, { 1, 0x11, "BusinessAddressStreet", All },
    { 1, 0x12, "BusinessFaxNumber", All }, { 1, 0x13, "BusinessPhoneNumber", All },
    { 1, 0x14, "CarPhoneNumber", All }, { 1, 0x15, "Categories", All }, { 1, 0x16, "Category", All },
    { 1, 0x17, "Children", All }, { 1, 0x18, "Child", All }, { 1, 0x19, "CompanyName", All },
    { 1, 0x1A, "Department", All }, { 1, 0x1B, "Email1Address", All }, { 1, 0x1C, "Email2Address", All },
    { 1, 0x1D, "Email3Address", All }, { 1, 0x1E, "FileAs", All }, { 1, 0x1F, "FirstName", All },
    { 1, 0x20, "Home2PhoneNumber", All }, { 1, 0x21, "HomeAddressCity", All },
    { 1, 0x22, "HomeAddressCountry", All }, { 1, 0x23, "HomeAddressPostalCode", All },
    { 1, 0x24, "HomeAddressState", All }, { 1, 0x25, "HomeAddressStreet", All },
    { 1, 0x26, "HomeFaxNumber", All }, { 1, 0x27, "HomePhoneNumber", All }, { 1, 0x28, "JobTitle", All },
    { 1, 0x29, "LastName", All }, { 1, 0x2A, "MiddleName", All }, { 1, 0x2B, "MobilePhoneNumber", All },
    { 1, 0x2C, "OfficeLocation", All }, { 1, 0x2D, "OtherAddressCity", All },
    { 1, 0x2E, "OtherAddressCountry", All }, { 1, 0x2F, "OtherAddressPostalCode", All },
    { 1, 0x30, "OtherAddressState", All }, { 1, 0x31, "OtherAddressStreet", All },
    { 1, 0x32, "PagerNumber", All }, { 1, 0x33, "RadioPhoneNumber", All }, { 1, 0x34, "Spouse", All },
    { 1, 0x35, "Suffix", All }, { 1, 0x36, "Title", All }, { 1, 0x37, "WebPage", All },
    { 1, 0x38, "YomiCompanyName", All }, { 1, 0x39, "YomiFirstName", All },
    { 1, 0x3A, "YomiLastName", All }, { 1, 0x3C, "Picture", All }, { 1, 0x3D, "Alias", From140 },
    { 1, 0x3E, "WeightedRank", From140 },
    // 2: Email
    { 2, 0x0F, "DateReceived", All }, { 2, 0x11, "DisplayTo", All }, { 2, 0x12, "Importance", All },
    { 2, 0x13, "MessageClass", All }, { 2, 0x14, "Subject", All }, { 2, 0x15, "Read", All },
    { 2, 0x16, "To", All }, { 2, 0x17, "Cc", All }, { 2, 0x18, "From", All }, { 2, 0x19, "ReplyTo", All },
    { 2, 0x1A, "AllDayEvent", All }, { 2, 0x1B, "Categories", From140 }, { 2, 0x1C, "Category", From140 },
    { 2, 0x1D, "DtStamp", All }, { 2, 0x1E, "EndTime", All }, { 2, 0x1F, "InstanceType", All },
    { 2, 0x20, "BusyStatus", All }, { 2, 0x21, "Location", Until141 }, { 2, 0x22, "MeetingRequest", All },
    { 2, 0x23, "Organizer", All }, { 2, 0x24, "RecurrenceId", All }, { 2, 0x25, "Reminder", All },
    { 2, 0x26, "ResponseRequested", All }, { 2, 0x27, "Recurrences", All }, { 2, 0x28, "Recurrence", All },
    { 2, 0x29, "Type", All }, { 2, 0x2A, "Until", All }, { 2, 0x2B, "Occurrences", All },
    { 2, 0x2C, "Interval", All }, { 2, 0x2D, "DayOfWeek", All }, { 2, 0x2E, "DayOfMonth", All },
    { 2, 0x2F, "WeekOfMonth", All }, { 2, 0x30, "MonthOfYear", All }, { 2, 0x31, "StartTime", All },
    { 2, 0x32, "Sensitivity", All }, { 2, 0x33, "TimeZone", All }, { 2, 0x34, "GlobalObjId", Until141 },
    { 2, 0x35, "ThreadTopic", All }, { 2, 0x39, "InternetCPID", All }, { 2, 0x3A, "Flag", All },
    { 2, 0x3B, "Status", All }, { 2, 0x3C, "ContentClass", All }, { 2, 0x3D, "FlagType", All },
    { 2, 0x3E, "CompleteTime", All }, { 2, 0x3F, "DisallowNewTimeProposal", From140 },
    // 4: Calendar
    { 4, 0x05, "Timezone", All }, { 4, 0x06, "AllDayEvent", All }, { 4, 0x07, "Attendees", All },
    { 4, 0x08, "Attendee", All }, { 4, 0x09, "Email", All }, { 4, 0x0A, "Name", All },
    { 4, 0x0D, "BusyStatus", All }, { 4, 0x0E, "Categories", All }, { 4, 0x0F, "Category", All },
    { 4, 0x11, "DtStamp", All }, { 4, 0x12, "EndTime", All }, { 4, 0x13, "Exception", All },
    { 4, 0x14, "Exceptions", All }, { 4, 0x15, "Deleted", All },
    { 4, 0x16, "ExceptionStartTime", Until141 }, { 4, 0x17, "Location", Until141 },
    { 4, 0x18, "MeetingStatus", All }, { 4, 0x19, "OrganizerEmail", All },
    { 4, 0x1A, "OrganizerName", All }, { 4, 0x1B, "Recurrence", All }, { 4, 0x1C, "Type", All },
    { 4, 0x1D, "Until", All }, { 4, 0x1E, "Occurrences", All }, { 4, 0x1F, "Interval", All },
    { 4, 0x20, "DayOfWeek", All }, { 4, 0x21, "DayOfMonth", All }, { 4, 0x22, "WeekOfMonth", All },
    { 4, 0x23, "MonthOfYear", All }, { 4, 0x24, "Reminder", All }, { 4, 0x25, "Sensitivity", All },
    { 4, 0x26, "Subject", All }, { 4, 0x27, "StartTime", All }, { 4, 0x28, "UID", All },
    { 4, 0x29, "AttendeeStatus", All }, { 4, 0x2A, "AttendeeType", All },
    { 4, 0x33, "DisallowNewTimeProposal", From140 }, { 4, 0x34, "ResponseRequested", From140 },
    { 4, 0x35, "AppointmentReplyTime", From140 }, { 4, 0x36, "ResponseType", From140 },
    { 4, 0x37, "CalendarType", From140 }, { 4, 0x38, "IsLeapMonth", From140 },
    { 4, 0x39, "FirstDayOfWeek", From141 }, { 4, 0x3A, "OnlineMeetingConfLink", From141 },
    { 4, 0x3B, "OnlineMeetingExternalLink", From141 }, { 4, 0x3C, "ClientUid", From160 },
    // 5: Move
    { 5, 0x05, "MoveItems", All }, { 5, 0x06, "Move", All }, { 5, 0x07, "SrcMsgId", All },
    { 5, 0x08, "SrcFldId", All }, { 5, 0x09, "DstFldId", All }, { 5, 0x0A, "Response", All },
    { 5, 0x0B, "Status", All }, { 5, 0x0C, "DstMsgId", All },
    // 6: GetItemEstimate
    { 6, 0x05, "GetItemEstimate", All }, { 6, 0x07, "Collections", All }, { 6, 0x08, "Collection", All },
    { 6, 0x09, "Class", Until121 }, { 6, 0x0A, "CollectionId", All }, { 6, 0x0C, "Estimate", All },
    { 6, 0x0D, "Response", All }, { 6, 0x0E, "Status", All },
    // 7: FolderHierarchy
    { 7, 0x05, "Folders", Until121 }, { 7, 0x06, "Folder", Until121 }, { 7, 0x07, "DisplayName", All },
    { 7, 0x08, "ServerId", All }, { 7, 0x09, "ParentId", All }, { 7, 0x0A, "Type", All },
    { 7, 0x0C, "Status", All }, { 7, 0x0E, "Changes", All }, { 7, 0x0F, "Add", All },
    { 7, 0x10, "Delete", All }, { 7, 0x11, "Update", All }, { 7, 0x12, "SyncKey", All },
    { 7, 0x13, "FolderCreate", All }, { 7, 0x14, "FolderDelete", All }, { 7, 0x15, "FolderUpdate", All },
    { 7, 0x16, "FolderSync", All }, { 7, 0x17, "Count", All },
    // 8: MeetingResponse
    { 8, 0x05, "CalendarId", All }, { 8, 0x06, "CollectionId", All }, { 8, 0x07, "MeetingResponse", All },
    { 8, 0x08, "RequestId", All }, { 8, 0x09, "Request", All }, { 8, 0x0A, "Result", All },
    { 8, 0x0B, "Status", All }, { 8, 0x0C, "UserResponse", All }, { 8, 0x0E, "InstanceId", From141 },
    { 8, 0x10, "ProposedStartTime", Only161 }, { 8, 0x11, "ProposedEndTime", Only161 },
    { 8, 0x12, "SendResponse", From160 },
    // 9: Tasks
    { 9, 0x08, "Categories", All }, { 9, 0x09, "Category", All }, { 9, 0x0A, "Complete", All },
    { 9, 0x0B, "DateCompleted", All }, { 9, 0x0C, "DueDate", All }, { 9, 0x0D, "UtcDueDate", All },
    { 9, 0x0E, "Importance", All }, { 9, 0x0F, "Recurrence", All }, { 9, 0x10, "Type", All },
    { 9, 0x11, "Start", All }, { 9, 0x12, "Until", All }, { 9, 0x13, "Occurrences", All },
    { 9, 0x14, "Interval", All }, { 9, 0x15, "DayOfMonth", All }, { 9, 0x16, "DayOfWeek", All },
    { 9, 0x17, "WeekOfMonth", All }, { 9, 0x18, "MonthOfYear", All }, { 9, 0x19, "Regenerate", All },
    { 9, 0x1A, "DeadOccur", All }, { 9, 0x1B, "ReminderSet", All }, { 9, 0x1C, "ReminderTime", All },
    { 9, 0x1D, "Sensitivity", All }, { 9, 0x1E, "StartDate", All }, { 9, 0x1F, "UtcStartDate", All },
    { 9, 0x20, "Subject", All }, { 9, 0x22, "OrdinalDate", All }, { 9, 0x23, "SubOrdinalDate", All },
    { 9, 0x24, "CalendarType", From140 }, { 9, 0x25, "IsLeapMonth", From140 },
    { 9, 0x26, "FirstDayOfWeek", From141 },
    // 10: ResolveRecipients
    { 10, 0x05, "ResolveRecipients", All }, { 10, 0x06, "Response", All }, { 10, 0x07, "Status", All },
    { 10, 0x08, "Type", All }, { 10, 0x09, "Recipient", All }, { 10, 0x0A, "DisplayName", All },
    { 10, 0x0B, "EmailAddress", All }, { 10, 0x0C, "Certificates", All }, { 10, 0x0D, "Certificate", All },
    { 10, 0x0E, "MiniCertificate", All }, { 10, 0x0F, "Options", All }, { 10, 0x10, "To", All },
    { 10, 0x11, "CertificateRetrieval", All }, { 10, 0x12, "RecipientCount", All },
    { 10, 0x13, "MaxCertificates", All }, { 10, 0x14, "MaxAmbiguousRecipients", All },
    { 10, 0x15, "CertificateCount", All }, { 10, 0x16, "Availability", From140 },
    { 10, 0x17, "StartTime", From140 }, { 10, 0x18, "EndTime", From140 },
    { 10, 0x19, "MergedFreeBusy", From140 }, { 10, 0x1A, "Picture", From141 },
    { 10, 0x1B, "MaxSize", From141 }, { 10, 0x1C, "Data", From141 }, { 10, 0x1D, "MaxPictures", From141 },
    // 11: ValidateCert
    { 11, 0x05, "ValidateCert", All }, { 11, 0x06, "Certificates", All }, { 11, 0x07, "Certificate", All },
    { 11, 0x08, "CertificateChain", All }, { 11, 0x09, "CheckCRL", All }, { 11, 0x0A, "Status", All },
    // 12: Contacts2
    { 12, 0x05, "CustomerId", All }, { 12, 0x06, "GovernmentId", All }, { 12, 0x07, "IMAddress", All },
    { 12, 0x08, "IMAddress2", All }, { 12, 0x09, "IMAddress3", All }, { 12, 0x0A, "ManagerName", All },
    { 12, 0x0B, "CompanyMainPhone", All }, { 12, 0x0C, "AccountName", All }, { 12, 0x0D, "NickName", All },
    { 12, 0x0E, "MMS", All },
    // 13: Ping
    { 13, 0x05, "Ping", All }, { 13, 0x07, "Status", All }, { 13, 0x08, "HeartbeatInterval", All },
    { 13, 0x09, "Folders", All }, { 13, 0x0A, "Folder", All }, { 13, 0x0B, "Id", All },
    { 13, 0x0C, "Class", All }, { 13, 0x0D, "MaxFolders", All },
    // 14: Provision
    { 14, 0x05, "Provision", All }, { 14, 0x06, "Policies", All }, { 14, 0x07, "Policy", All },
    { 14, 0x08, "PolicyType", All }, { 14, 0x09, "PolicyKey", All }, { 14, 0x0A, "Data", All },
    { 14, 0x0B, "Status", All }, { 14, 0x0C, "RemoteWipe", All }, { 14, 0x0D, "EASProvisionDoc", All },
    { 14, 0x0E, "DevicePasswordEnabled", All }, { 14, 0x0F, "AlphanumericDevicePasswordRequired", All },
    { 14, 0x10, "RequireStorageCardEncryption", From121 }, { 14, 0x11, "PasswordRecoveryEnabled", All },
    { 14, 0x13, "AttachmentsEnabled", All }, { 14, 0x14, "MinDevicePasswordLength", All },
    { 14, 0x15, "MaxInactivityTimeDeviceLock", All },
    { 14, 0x16, "MaxDevicePasswordFailedAttempts", Until160 }, { 14, 0x17, "MaxAttachmentSize", All },
    { 14, 0x18, "AllowSimpleDevicePassword", All }, { 14, 0x19, "DevicePasswordExpiration", All },
    { 14, 0x1A, "DevicePasswordHistory", All }, { 14, 0x1B, "AllowStorageCard", From121 },
    { 14, 0x1C, "AllowCamera", From121 }, { 14, 0x1D, "RequireDeviceEncryption", From121 },
    { 14, 0x1E, "AllowUnsignedApplications", From121 },
    { 14, 0x1F, "AllowUnsignedInstallationPackages", From121 },
    { 14, 0x20, "MinDevicePasswordComplexCharacters", From121 }, { 14, 0x21, "AllowWiFi", From121 },
    { 14, 0x22, "AllowTextMessaging", From121 }, { 14, 0x23, "AllowPOPIMAPEmail", From121 },
    { 14, 0x24, "AllowBluetooth", From121 }, { 14, 0x25, "AllowIrDA", From121 },
    { 14, 0x26, "RequireManualSyncWhenRoaming", From121 }, { 14, 0x27, "AllowDesktopSync", From121 },
    { 14, 0x28, "MaxCalendarAgeFilter", From121To160 }, { 14, 0x29, "AllowHTMLEmail", From121 },
    { 14, 0x2A, "MaxEmailAgeFilter", From121 }, { 14, 0x2B, "MaxEmailBodyTruncationSize", From121 },
    { 14, 0x2C, "MaxEmailHTMLBodyTruncationSize", From121 },
    { 14, 0x2D, "RequireSignedSMIMEMessages", From121 },
    { 14, 0x2E, "RequireEncryptedSMIMEMessages", From121 },
    { 14, 0x2F, "RequireSignedSMIMEAlgorithm", From121 },
    { 14, 0x30, "RequireEncryptionSMIMEAlgorithm", From121 },
    { 14, 0x31, "AllowSMIMEEncryptionAlgorithmNegotiation", From121 },
    { 14, 0x32, "AllowSMIMESoftCerts", From121 }, { 14, 0x33, "AllowBrowser", From121 },
    { 14, 0x34, "AllowConsumerEmail", From121 }, { 14, 0x35, "AllowRemoteDesktop", From121 },
    { 14, 0x36, "AllowInternetSharing", From121 }, { 14, 0x37, "UnapprovedInROMApplicationList", From121 },
    { 14, 0x38, "ApplicationName", From121 }, { 14, 0x39, "ApprovedApplicationList", From121 },
    { 14, 0x3A, "Hash", From121 }, { 14, 0x3B, "AccountOnlyRemoteWipe", Only161 },
    // 15: Search
    { 15, 0x05, "Search", All }, { 15, 0x07, "Store", All }, { 15, 0x08, "Name", All },
    { 15, 0x09, "Query", All }, { 15, 0x0A, "Options", All }, { 15, 0x0B, "Range", All },
    { 15, 0x0C, "Status", All }, { 15, 0x0D, "Response", All }, { 15, 0x0E, "Result", All },
    { 15, 0x0F, "Properties", All }, { 15, 0x10, "Total", All }, { 15, 0x11, "EqualTo", All },
    { 15, 0x12, "Value", All }, { 15, 0x13, "And", All }, { 15, 0x14, "Or", All },
    { 15, 0x15, "FreeText", All }, { 15, 0x17, "DeepTraversal", All }, { 15, 0x18, "LongId", All },
    { 15, 0x19, "RebuildResults", All }, { 15, 0x1A, "LessThan", All }, { 15, 0x1B, "GreaterThan", All },
    { 15, 0x1E, "UserName", From121 }, { 15, 0x1F, "Password", From121 },
    { 15, 0x20, "ConversationId", From140 }, { 15, 0x21, "Picture", From141 },
    { 15, 0x22, "MaxSize", From141 }, { 15, 0x23, "MaxPictures", From141 },
    // 16: GAL
    { 16, 0x05, "DisplayName", All }, { 16, 0x06, "Phone", All }, { 16, 0x07, "Office", All },
    { 16, 0x08, "Title", All }, { 16, 0x09, "Company", All }, { 16, 0x0A, "Alias", All },
    { 16, 0x0B, "FirstName", All }, { 16, 0x0C, "LastName", All }, { 16, 0x0D, "HomePhone", All },
    { 16, 0x0E, "MobilePhone", All }, { 16, 0x0F, "EmailAddress", All }, { 16, 0x10, "Picture", From141 },
    { 16, 0x11, "Status", From141 }, { 16, 0x12, "Data", From141 },
    // 17: AirSyncBase
    { 17, 0x05, "BodyPreference", All }, { 17, 0x06, "Type", All }, { 17, 0x07, "TruncationSize", All },
    { 17, 0x08, "AllOrNone", All }, { 17, 0x0A, "Body", All }, { 17, 0x0B, "Data", All },
    { 17, 0x0C, "EstimatedDataSize", All }, { 17, 0x0D, "Truncated", All },
    { 17, 0x0E, "Attachments", All }, { 17, 0x0F, "Attachment", All }, { 17, 0x10, "DisplayName", All },
    { 17, 0x11, "FileReference", All }, { 17, 0x12, "Method", All }, { 17, 0x13, "ContentId", All },
    { 17, 0x14, "ContentLocation", All }, { 17, 0x15, "IsInline", All },
    { 17, 0x16, "NativeBodyType", All }, { 17, 0x17, "ContentType", All },
    { 17, 0x18, "Preview", From140 }, { 17, 0x19, "BodyPartPreference", From141 },
    { 17, 0x1A, "BodyPart", From141 }, { 17, 0x1B, "Status", From141 }, { 17, 0x1C, "Add", From160 },
    { 17, 0x1D, "Delete", From160 }, { 17, 0x1E, "ClientId", From160 }, { 17, 0x1F, "Content", From160 },
    { 17, 0x20, "Location", From160 }, { 17, 0x21, "Annotation", From160 },
    { 17, 0x22, "Street", From160 }, { 17, 0x23, "City", From160 }, { 17, 0x24, "State", From160 },
    { 17, 0x25, "Country", From160 }, { 17, 0x26, "PostalCode", From160 },
    { 17, 0x27, "Latitude", From160 }, { 17, 0x28, "Longitude", From160 },
    { 17, 0x29, "Accuracy", From160 }, { 17, 0x2A, "Altitude", From160 },
    { 17, 0x2B, "AltitudeAccuracy", From160 }, { 17, 0x2C, "LocationUri", From160 },
    { 17, 0x2D, "InstanceId", From160 },
    // 18: Settings
    { 18, 0x05, "Settings", All }, { 18, 0x06, "Status", All }, { 18, 0x07, "Get", All },
    { 18, 0x08, "Set", All }, { 18, 0x09, "Oof", All }, { 18, 0x0A, "OofState", All },
    { 18, 0x0B, "StartTime", All }, { 18, 0x0C, "EndTime", All }, { 18, 0x0D, "OofMessage", All },
    { 18, 0x0E, "AppliesToInternal", All }, { 18, 0x0F, "AppliesToExternalKnown", All },
    { 18, 0x10, "AppliesToExternalUnknown", All }, { 18, 0x11, "Enabled", All },
    { 18, 0x12, "ReplyMessage", All }, { 18, 0x13, "BodyType", All }, { 18, 0x14, "DevicePassword", All },
    { 18, 0x15, "Password", All }, { 18, 0x16, "DeviceInformation", All }, { 18, 0x17, "Model", All },
    { 18, 0x18, "IMEI", All }, { 18, 0x19, "FriendlyName", All }, { 18, 0x1A, "OS", All },
    { 18, 0x1B, "OSLanguage", All }, { 18, 0x1C, "PhoneNumber", All },
    { 18, 0x1D, "UserInformation", All }, { 18, 0x1E, "EmailAddresses", All },
    { 18, 0x1F, "SMTPAddress", All }, { 18, 0x20, "UserAgent", From121 },
    { 18, 0x21, "EnableOutboundSMS", From140 }, { 18, 0x22, "MobileOperator", From140 },
    { 18, 0x23, "PrimarySmtpAddress", From141 }, { 18, 0x24, "Accounts", From141 },
    { 18, 0x25, "Account", From141 }, { 18, 0x26, "AccountId", From141 },
    { 18, 0x27, "AccountName", From141 }, { 18, 0x28, "UserDisplayName", From141 },
    { 18, 0x29, "SendDisabled", From141 }, { 18, 0x2B, "RightsManagementInformation", From141 },
    // 19: DocumentLibrary
    { 19, 0x05, "LinkId", All }, { 19, 0x06, "DisplayName", All }, { 19, 0x07, "IsFolder", All },
    { 19, 0x08, "CreationDate", All }, { 19, 0x09, "LastModifiedDate", All },
    { 19, 0x0A, "IsHidden", All }, { 19, 0x0B, "ContentLength", All }, { 19, 0x0C, "ContentType", All },
    // 20: ItemOperations
    { 20, 0x05, "ItemOperations", All }, { 20, 0x06, "Fetch", All }, { 20, 0x07, "Store", All },
    { 20, 0x08, "Options", All }, { 20, 0x09, "Range", All }, { 20, 0x0A, "Total", All },
    { 20, 0x0B, "Properties", All }, { 20, 0x0C, "Data", All }, { 20, 0x0D, "Status", All },
    { 20, 0x0E, "Response", All }, { 20, 0x0F, "Version", All }, { 20, 0x10, "Schema", All },
    { 20, 0x11, "Part", All }, { 20, 0x12, "EmptyFolderContents", All },
    { 20, 0x13, "DeleteSubFolders", All }, { 20, 0x14, "UserName", From121 },
    { 20, 0x15, "Password", From121 }, { 20, 0x16, "Move", From140 }, { 20, 0x17, "DstFldId", From140 },
    { 20, 0x18, "ConversationId", From140 }, { 20, 0x19, "MoveAlways", From140 },
    // 21: ComposeMail
    { 21, 0x05, "SendMail", From140 }, { 21, 0x06, "SmartForward", From140 },
    { 21, 0x07, "SmartReply", From140 }, { 21, 0x08, "SaveInSentItems", From140 },
    { 21, 0x09, "ReplaceMime", From140 }, { 21, 0x0B, "Source", From140 },
    { 21, 0x0C, "FolderId", From140 }, { 21, 0x0D, "ItemId", From140 }, { 21, 0x0E, "LongId", From140 },
    { 21, 0x0F, "InstanceId", From140 }, { 21, 0x10, "Mime", From140 }, { 21, 0x11, "ClientId", From140 },
    { 21, 0x12, "Status", From140 }, { 21, 0x13, "AccountId", From141 },
    { 21, 0x15, "Forwardees", From160 }, { 21, 0x16, "Forwardee", From160 }, { 21, 0x17, "Name", From160 },
    { 21, 0x18, "Email", From160 },
    // 22: Email2
    { 22, 0x05, "UmCallerID", From140 }, { 22, 0x06, "UmUserNotes", From140 },
    { 22, 0x07, "UmAttDuration", From140 }, { 22, 0x08, "UmAttOrder", From140 },
    { 22, 0x09, "ConversationId", From140 }, { 22, 0x0A, "ConversationIndex", From140 },
    { 22, 0x0B, "LastVerbExecuted", From140 }, { 22, 0x0C, "LastVerbExecutionTime", From140 },
    { 22, 0x0D, "ReceivedAsBcc", From140 }, { 22, 0x0E, "Sender", From140 },
    { 22, 0x0F, "CalendarType", From140 }, { 22, 0x10, "IsLeapMonth", From140 },
    { 22, 0x11, "AccountId", From141 }, { 22, 0x12, "FirstDayOfWeek", From141 },
    { 22, 0x13, "MeetingMessageType", From141 }, { 22, 0x15, "IsDraft", From160 },
    { 22, 0x16, "Bcc", From160 }, { 22, 0x17, "Send", From160 },
    // 23: Notes
    { 23, 0x05, "Subject", From140 }, { 23, 0x06, "MessageClass", From140 },
    { 23, 0x07, "LastModifiedDate", From140 }, { 23, 0x08, "Categories", From140 },
    { 23, 0x09, "Category", From140 },
    // 24: RightsManagement
    { 24, 0x05, "RightsManagementSupport", From141 }, { 24, 0x06, "RightsManagementTemplates", From141 },
    { 24, 0x07, "RightsManagementTemplate", From141 }, { 24, 0x08, "RightsManagementLicense", From141 },
    { 24, 0x09, "EditAllowed", From141 }, { 24, 0x0A, "ReplyAllowed", From141 },
    { 24, 0x0B, "ReplyAllAllowed", From141 }, { 24, 0x0C, "ForwardAllowed", From141 },
    { 24, 0x0D, "ModifyRecipientsAllowed", From141 }, { 24, 0x0E, "ExtractAllowed", From141 },
    { 24, 0x0F, "PrintAllowed", From141 }, { 24, 0x10, "ExportAllowed", From141 },
    { 24, 0x11, "ProgrammaticAccessAllowed", From141 }, { 24, 0x12, "Owner", From141 },
    { 24, 0x13, "ContentExpiryDate", From141 }, { 24, 0x14, "TemplateID", From141 },
    { 24, 0x15, "TemplateName", From141 }, { 24, 0x16, "TemplateDescription", From141 },
    { 24, 0x17, "ContentOwner", From141 }, { 24, 0x18, "RemoveRightsManagementProtection", From141 },
    // 25: Find
    { 25, 0x05, "Find", Only161 }, { 25, 0x06, "SearchId", Only161 },
    { 25, 0x07, "ExecuteSearch", Only161 }, { 25, 0x08, "MailBoxSearchCriterion", Only161 },
    { 25, 0x09, "Query", Only161 }, { 25, 0x0A, "Status", Only161 }, { 25, 0x0B, "FreeText", Only161 },
    { 25, 0x0C, "Options", Only161 }, { 25, 0x0D, "Range", Only161 },
    { 25, 0x0E, "DeepTraversal", Only161 }, { 25, 0x11, "Response", Only161 },
    { 25, 0x12, "Result", Only161 }, { 25, 0x13, "Properties", Only161 }, { 25, 0x14, "Preview", Only161 },
    { 25, 0x15, "HasAttachments", Only161 }, { 25, 0x16, "Total", Only161 },
    { 25, 0x17, "DisplayCc", Only161 }, { 25, 0x18, "DisplayBcc", Only161 },
    { 25, 0x19, "GalSearchCriterion", Only161 }, { 25, 0x20, "MaxPictures", Only161 },
    { 25, 0x21, "MaxSize", Only161 }, { 25, 0x22, "Picture", Only161 },
};
// clang-format on

quint16 key(quint8 page, quint8 token)
{
    return quint16(page << 8 | token);
}

QHash<QString, const WbxmlToken *> indexByName()
{
    QHash<QString, const WbxmlToken *> index;
    for (const WbxmlToken &entry : table)
        index.insert(WbxmlTokens::pageName(entry.page) + QLatin1Char(':') + QLatin1String(entry.tag), &entry);
    return index;
}

QHash<quint16, QString> indexByNumber()
{
    QHash<quint16, QString> index;
    for (const WbxmlToken &entry : table) {
        index.insert(key(entry.page, entry.token),
            WbxmlTokens::pageName(entry.page) + QLatin1Char(':') + QLatin1String(entry.tag));
    }
    return index;
}

} // namespace

const WbxmlToken *WbxmlTokens::begin()
{
    return std::begin(table);
}

const WbxmlToken *WbxmlTokens::end()
{
    return std::end(table);
}

QString WbxmlTokens::pageName(int page)
{
    return page >= 0 && page < int(std::size(pageNames)) ? QLatin1String(pageNames[page]) : QString();
}

std::optional<WbxmlToken> WbxmlTokens::find(const QString &qualifiedName)
{
    static const QHash<QString, const WbxmlToken *> index = indexByName();
    const WbxmlToken *found = index.value(qualifiedName);
    return found ? std::optional<WbxmlToken>(*found) : std::nullopt;
}

QString WbxmlTokens::name(quint8 page, quint8 token)
{
    static const QHash<quint16, QString> index = indexByNumber();
    return index.value(key(page, token));
}

bool WbxmlTokens::existsAt(const WbxmlToken &token, int version)
{
    const int position = protocolVersions().indexOf(version);
    return position >= 0 && (token.versions & (1 << position));
}

} // namespace Simulator
