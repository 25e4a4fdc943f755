// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/searchstatuses.h"

#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"

namespace {

constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char RetryLaterText[] = "we should try to send command again later. Timeout (in mseconds): 5000";
static_assert(ProtocolUtils::CommandsRetryTimeout == 5000, "the text names the delay");
constexpr char FolderSyncText[] = "Required Folder Sync";

constexpr RequestStatusTable::Row searchRows[] = {
    { Eas::SearchStatusSuccess, QtInfoMsg, "Search command finished successfully", RequestVerb::Process },
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
};
static_assert(RequestStatusTable(searchRows).namesEachStatusOnce());

constexpr RequestStatusTable::Row findRows[] = {
    { Eas::SearchStatusSuccess, QtInfoMsg, "Find command finished successfully", RequestVerb::Process },
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
};
static_assert(RequestStatusTable(findRows).namesEachStatusOnce());

/** The statuses of a store as a Search gives them. */
enum StoreStatus {
    Undefined = 0,
    Success = 1,
    InvalidRequest = 2,
    ServerError = 3,
    BadLink = 4,
    AccessDenied = 5,
    NotFound = 6,
    ConnectionFailed = 7,
    TooComplex = 8,
    IndexNotLoaded = 9,
    TimedOut = 10,
    FolderSyncRequired = 11,
    EndOfRange = 12,
    AccessBlocked = 13,
    CredentialsRequired = 14
};

constexpr SearchStatusTable::Row storeRows[] = {
    { Undefined, QtCriticalMsg, "Undefined Store Status", SearchVerb::Fail },
    { Success, QtInfoMsg, nullptr, SearchVerb::Deliver },
    { EndOfRange, QtInfoMsg, nullptr, SearchVerb::Deliver },
    { InvalidRequest, QtWarningMsg, "Invalid Search request", SearchVerb::Fail },
    { ServerError, QtWarningMsg, RetryLaterText, SearchVerb::RetryLater },
    { ConnectionFailed, QtWarningMsg, RetryLaterText, SearchVerb::RetryLater },
    { TimedOut, QtWarningMsg, RetryLaterText, SearchVerb::RetryLater },
    { BadLink, QtWarningMsg, "Bad link in Search request", SearchVerb::Fail },
    { AccessDenied, QtWarningMsg, "Access to the resource was denied (Search request)", SearchVerb::Fail },
    { NotFound, QtWarningMsg, "Resource not found on server (Search request)", SearchVerb::Fail },
    { TooComplex, QtWarningMsg, "Search query is too complex", SearchVerb::Fail },
    { AccessBlocked, QtWarningMsg, "Access to the resource was blocked (Search request)", SearchVerb::Fail },
};
static_assert(SearchStatusTable(storeRows).namesEachStatusOnce());

constexpr SearchStatusTable::Row mailboxRows[] = {
    { IndexNotLoaded, QtWarningMsg, nullptr, SearchVerb::Fail },
    { FolderSyncRequired, QtWarningMsg, FolderSyncText, SearchVerb::SyncFolders },
};
static_assert(SearchStatusTable(mailboxRows).namesEachStatusOnce());

// People are in no folder: a refresh of the folders would bring the same answer again.
constexpr SearchStatusTable::Row addressListRows[] = {
    { FolderSyncRequired, QtWarningMsg, FolderSyncText, SearchVerb::Fail },
    { CredentialsRequired, QtWarningMsg, nullptr, SearchVerb::Fail },
};
static_assert(SearchStatusTable(addressListRows).namesEachStatusOnce());

/** The statuses of a Find, which have numbers of their own. */
enum FindStatus { FindUndefined = 0, Found = 1, FindInvalid = 2, FindFolderSync = 3, FindRange = 4 };

constexpr SearchStatusTable::Row foundRows[] = {
    { FindUndefined, QtCriticalMsg, "Undefined Response Status", SearchVerb::Fail },
    { Found, QtInfoMsg, nullptr, SearchVerb::Deliver },
    { FindInvalid, QtWarningMsg, "Invalid Find request", SearchVerb::Fail },
    { FindFolderSync, QtWarningMsg, FolderSyncText, SearchVerb::SyncFolders },
    { FindRange, QtWarningMsg, "Issue a new Find request with a Range value that begins with 0. ",
        SearchVerb::Fail },
};
static_assert(SearchStatusTable(foundRows).namesEachStatusOnce());

const SearchStatusTable::Row *rowOf(int status, const SearchStatusTable &own)
{
    const SearchStatusTable::Row *const row = own.find(status);
    return row ? row : SearchStatusTable(storeRows).find(status);
}

} // namespace

constexpr RequestStatusTable SearchStatuses::ofSearch(searchRows);
constexpr RequestStatusTable SearchStatuses::ofFind(findRows);

const SearchStatusTable::Row *SearchStatuses::ofMailbox(int status)
{
    return rowOf(status, SearchStatusTable(mailboxRows));
}

const SearchStatusTable::Row *SearchStatuses::ofAddressList(int status)
{
    return rowOf(status, SearchStatusTable(addressListRows));
}

const SearchStatusTable::Row *SearchStatuses::ofFoundStore(int status)
{
    return SearchStatusTable(foundRows).find(status);
}
