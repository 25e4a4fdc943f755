// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/pushverb.h"

#include "common/easrequeststatus.h"
#include "protocol/base/eas.h"
#include "requests/statustable.h"

namespace {

using PushStatusTable = StatusTable<PushVerb>;

constexpr PushStatusTable::Row rows[] = {
    { EasRequestStatus::RequestStatusCancelled, QtInfoMsg, "Request canceled", PushVerb::Stop },
    { EasRequestStatus::RequestStatusWipeAcknowledged, QtInfoMsg, nullptr, PushVerb::EndForGood },
    { Eas::HeartbeatIntervalExpiredBeforeAnyChangesOccurred, QtInfoMsg, "Ping finished", PushVerb::Pause },
    { Eas::ChangesOccurred, QtInfoMsg, nullptr, PushVerb::SyncFolders },
    { Eas::FolderHierarchySyncRequired, QtInfoMsg, nullptr, PushVerb::SyncHierarchy },
    { Eas::CommonStatusInvalidIds, QtWarningMsg, nullptr, PushVerb::PauseForLonger },
    { Eas::CommonStatusServerError, QtWarningMsg, nullptr, PushVerb::PauseForLonger },
    { Eas::CommonStatusHttpServerError, QtWarningMsg, nullptr, PushVerb::PauseForLonger },
};
constexpr PushStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

} // namespace

PushVerb pushVerb(int status)
{
    const PushStatusTable::Row *const row = statuses.find(status);
    if (!row)
        return PushVerb::Fail;
    logStatusText(row->level, row->text);
    return row->verb;
}
