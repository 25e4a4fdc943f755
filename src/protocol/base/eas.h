// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDebug>
#include <QObject>

/**
 * The server's status numbers by name.
 *
 * A number is read in the enumeration of the command at hand first; from 101 upward it is a CommonStatus. The
 * enumerations print as "Eas::" and the key, and as a bare number where there is no key: they hold any number
 * that a server may send.
 */
class Eas
{
    Q_GADGET

public:
    /** The global status numbers of the protocol and, from 400 upward, HTTP statuses. */
    enum CommonStatus : int {
        CommonStatusUndefined = 0,
        CommonStatusInvalidContent = 101,
        CommonStatusInvalidWbxml = 102,
        CommonStatusInvalidXml = 103,
        CommonStatusInvalidDateTime = 104,
        CommonStatusInvalidCombinationIfIds = 105,
        CommonStatusInvalidIds = 106,
        CommonStatusInvalidMime = 107,
        CommonStatusInvalidDeviceId = 108,
        CommonStatusInvalidDeviceType = 109,
        CommonStatusServerError = 110,
        CommonStatusServerErrorRetryLater = 111,
        CommonStatusActiveDirAccessDenied = 112,
        CommonStatusMailboxQuoteExceeded = 113,
        CommonStatusMailboxServerOffline = 114,
        CommonStatusSendQuotaExceeded = 115,
        CommonStatusMessageRecipientUnresolved = 116,
        CommonStatusMessageReplyNotAllowed = 117,
        CommonStatusMessagePreviouselySent = 118,
        CommonStatusMessageHasNoRecipient = 119,
        CommonStatusMailSubmissionFailed = 120,
        CommonStatusMessageReplyFailed = 121,
        CommonStatusAttachmentTooLarge = 122,
        CommonStatusUserHasNoMailbox = 123,
        CommonStatusUserCannotBeAnonymous = 124,
        CommonStatusUserPrincipalNotFound = 125,
        CommonStatusUserDisabledForSync = 126,
        CommonStatusUserOnNewMailboxCannotSync = 127,
        CommonStatusUserOnLegacyMailboxCannotSync = 128,
        CommonStatusDeviceIsBlockedForThisUser = 129,
        CommonStatusAccessDenied = 130,
        CommonStatusAccountDisabled = 131,
        CommonStatusSyncStateNotFound = 132,
        CommonStatusSyncStateLocked = 133,
        CommonStatusSyncStateCorrupt = 134,
        CommonStatusSyncStateAlreadyExists = 135,
        CommonStatusSyncStateVersionInvalid = 136,
        CommonStatusCommandNotSupported = 137,
        CommonStatusVersionNotSupported = 138,
        CommonStatusDeviceNotFullyProvisionable = 139,
        CommonStatusRemoteWipeRequested = 140,
        CommonStatusLegacyDeviceOnStrictPolicy = 141,
        CommonStatusDeviceNotProvisioned = 142,
        CommonStatusPolicyRefresh = 143,
        CommonStatusInvalidPolicyKey = 144,
        CommonStatusExtManagedDevicesNotAllowed = 145,
        CommonStatusNoRecurrenceInCalendar = 146,
        CommonStatusUnexpectedItemClass = 147,
        CommonStatusRemoteServerHasNoSsl = 148,
        CommonStatusInvalidStoreRequest = 149,
        CommonStatusItemNotFound = 150,
        CommonStatusTooManyFolders = 151,
        CommonStatusNoFoldersFound = 152,
        CommonStatusItemsLostAfterMove = 153,
        CommonStatusFailureInMoveOperation = 154,
        CommonStatusMoveCmdDisallowedForNonPersistentMoveAction = 155,
        CommonStatusMoveCmdInvalidDestFolder = 156,
        CommonStatusAvailabilityTooManyRecipients = 160,
        CommonStatusAvailabilityDlLimitReached = 161,
        CommonStatusAvailabilityTransientFailure = 162,
        CommonStatusAvailabilityFailure = 163,
        CommonStatusBodyPartPreferenceTypeNotSupported = 164,
        CommonStatusDeviceInfoRequired = 165,
        CommonStatusInvalidAccountId = 166,
        CommonStatusAccountSendDisabled = 167,
        CommonStatusIrmFeatureDisabled = 168,
        CommonStatusIrmTransientError = 169,
        CommonStatusIrmPermanentError = 170,
        CommonStatusIrmInvalidTemplateId = 171,
        CommonStatusIrmOperationNotPermitted = 172,
        CommonStatusNoPicture = 173,
        CommonStatusPictureTooLarge = 174,
        CommonStatusPictureLimitReached = 175,
        CommonStatusPictureBodyPartConversationTooLarge = 176,
        CommonStatusMaximumDevicesReached = 177,
        CommonStatusHttpInvalidContentXmlIds = 400,
        CommonStatusHttpForbiddenError = 403,
        CommonStatusHttpRetryWithError = 449,
        CommonStatusHttpRedirectionError = 451,
        CommonStatusHttpServerError = 500,
        CommonStatusHttpServerErrorRetryLater = 503,
        CommonStatusHttpInsufficientStorageError = 507,
    };
    Q_ENUM(CommonStatus)

    enum SyncStatus : int {
        SyncStatusUndefined = 0,
        SyncStatusSuccess = 1,
        SyncStatusInvalidSyncKey = 3,
        SyncStatusProtocolError = 4,
        SyncStatusServerError = 5,
        SyncStatusClientServerError = 6,
        SyncStatusClientServerMatching = 7,
        SyncStatusObjectNotFound = 8,
        SyncStatusCannotComplete = 9,
        SyncStatusFoldersChanged = 12,
        SyncStatusRequestNotComplete = 13,
        SyncStatusInvalidWait = 14,
        SyncStatusInvalidSync = 15,
        SyncStatusRetry = 16,
    };
    Q_ENUM(SyncStatus)

    enum MeetingResponseStatus : int {
        MeetingResponseStatusUndefined = 0,
        MeetingResponseStatusSuccess = 1,
        MeetingResponseStatusInvalidMeetingRequest = 2,
        MeetingResponseStatusServerMailboxError = 3,
        MeetingResponseStatusServerError = 4,
    };
    Q_ENUM(MeetingResponseStatus)

    enum MoveItemsStatus : int {
        MoveItemsStatusUndefined = 0,
        MoveItemsInvalidSourceId = 1,
        MoveItemsInvalidDestinationId = 2,
        MoveItemsStatusSuccess = 3,
        MoveItemsStatusSameSrcDstId = 4,
        MoveItemsStatusCannotBeMoved = 5,
        MoveItemsStatusSrcOrDstLocked = 7,
    };
    Q_ENUM(MoveItemsStatus)

    enum FolderSyncStatus : int {
        FolderSyncStatusUndefined = 0,
        FolderSyncStatusSuccess = 1,
        FolderSyncStatusServerError = 6,
        FolderSyncStatusWrongSyncKey = 9,
        FolderSyncStatusWrongRequest = 10,
        FolderSyncStatusUnknownError = 11,
        FolderSyncStatusCodeUnknown = 12,
    };
    Q_ENUM(FolderSyncStatus)

    enum ItemOperationsStatus : int {
        ItemOperationsStatusUndefined = 0,
        ItemOperationsStatusSuccess = 1,
        ItemOperationsStatusProtocolError = 2,
        ItemOperationsStatusServerError = 3,
        ItemOperationsStatusDocLibBadUri = 4,
        ItemOperationsStatusDocLibNoAccess = 5,
        ItemOperationsStatusDocLibNotFound = 6,
        ItemOperationsStatusDocLibFailedToConnect = 7,
        ItemOperationsStatusInvalidRange = 8,
        ItemOperationsStatusUnknownStore = 9,
        ItemOperationsStatusFileIsEmpty = 10,
        ItemOperationsStatusSizeTooLarge = 11,
        ItemOperationsStatusIoFailure = 12,
        ItemOperationsStatusConversionFailed = 14,
        ItemOperationsStatusInvalidAttachmentId = 15,
        ItemOperationsStatusAccessDenied = 16,
        ItemOperationsStatusPartialSuccess = 17,
        ItemOperationsStatusCredentialsRequired = 18,
        ItemOperationsStatusProtocolError2 = 155,
        ItemOperationsStatusWrongAction = 156,
    };
    Q_ENUM(ItemOperationsStatus)

    enum ProvisionStatus : int {
        ProvisionStatusUndefined = 0,
        ProvisionStatusSuccess = 1,
        ProvisionStatusProtocolError = 2,
        ProvisionStatusServerError = 3,
    };
    Q_ENUM(ProvisionStatus)

    enum SettingsStatus : int {
        SettingsStatusUndefined = 0,
        SettingsStatusSuccess = 1,
        SettingsStatusProtocolError = 2,
        SettingsStatusAccessDenied = 3,
        SettingsStatusServerUnavailible = 4,
        SettingsStatusInvalidArguments = 5,
        SettingsStatusConflictingArguments = 6,
        SettingsStatusDeniedByPolicy = 7,
    };
    Q_ENUM(SettingsStatus)

    enum SearchStatus : int {
        SearchStatusUndefined = 0,
        SearchStatusSuccess = 1,
        SearchStatusServerError = 3,
    };
    Q_ENUM(SearchStatus)

    enum PingResponseStatus : int {
        PingStatusUndefined = 0,
        HeartbeatIntervalExpiredBeforeAnyChangesOccurred = 1,
        ChangesOccurred = 2,
        OmittedRequiredParametersInRequest = 3,
        PingCommandRequestSyntaxError = 4,
        HeartbeatIntervalIsOutsideOfRange = 5,
        TooManyNumberOfFoldersToMonitor = 6,
        FolderHierarchySyncRequired = 7,
        ServerError = 8,
        PingInternalError = 9,
    };
    Q_ENUM(PingResponseStatus)
};

QDebug operator<<(QDebug debug, Eas::CommonStatus status);
QDebug operator<<(QDebug debug, Eas::SyncStatus status);
QDebug operator<<(QDebug debug, Eas::MeetingResponseStatus status);
QDebug operator<<(QDebug debug, Eas::MoveItemsStatus status);
QDebug operator<<(QDebug debug, Eas::FolderSyncStatus status);
QDebug operator<<(QDebug debug, Eas::ItemOperationsStatus status);
QDebug operator<<(QDebug debug, Eas::ProvisionStatus status);
QDebug operator<<(QDebug debug, Eas::SettingsStatus status);
QDebug operator<<(QDebug debug, Eas::SearchStatus status);
QDebug operator<<(QDebug debug, Eas::PingResponseStatus status);
