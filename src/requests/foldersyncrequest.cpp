// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/foldersyncrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"

namespace {

constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";

constexpr RequestStatusTable::Row rows[] = {
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
};
constexpr RequestStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

} // namespace

FolderSyncRequest::FolderSyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : HierarchyRequest(accountId, requestId, parent)
    , mRun { *this, outcome(), attempts() }
    , mHierarchy(mRun, HierarchyPhase::Alone)
{
}

QString FolderSyncRequest::commandName() const
{
    return ProtocolUtils::CommandFolderSync;
}

void FolderSyncRequest::startRequest()
{
    if (!account()) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    // First, because the command may end before its start returns.
    Q_EMIT syncStarted(accountId(), id());
    follow(mHierarchy.start());
}

void FolderSyncRequest::onCommandFinished(bool success)
{
    handleFinished(success);
}

void FolderSyncRequest::handleFinished(bool success)
{
    if (!currentCommand())
        qCCritical(eas()) << "No command object";
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request required";
        return dropCommand();
    }
    if (handleStatus(status(), statuses))
        return;
    const bool answered = success && successfullyFinished();
    follow(mHierarchy.finish(success));
    if (!answered || !hasEnded() || !mResyncRequested)
        return;
    // Last: the sync that this brings must not find a request that is still at work.
    mResyncRequested = false;
    Q_EMIT resyncFolders(accountId(), id());
}

void FolderSyncRequest::follow(SyncPhase::End end)
{
    switch (end) {
    case SyncPhase::End::Sent:
        return;
    case SyncPhase::End::StartOver:
        mResyncRequested = true;
        return startRequest();
    case SyncPhase::End::AgainLater:
        return startResendTimer();
    case SyncPhase::End::Done:
        qCInfo(eas()) << "Folder sync request successfully completed for account:" << accountId();
        return complete();
    default:
        complete();
    }
}
