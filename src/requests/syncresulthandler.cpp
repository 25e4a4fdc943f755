// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncresulthandler.h"

#include "application/base/logging.h"
#include "requests/request.h"
#include "requests/syncstate.h"

SyncResultHandler::SyncResultHandler(EasAccount &account, SyncState &state)
    : mAccount(account)
    , mState(state)
{
}

SyncResultHandler::~SyncResultHandler() = default;

bool SyncResultHandler::fail(const char *text)
{
    qCCritical(eas()) << text;
    mStatus = Request::RequestStatusInternalError;
    return false;
}

bool SyncResultHandler::judge(SyncItemStatus::Operation operation, uint status, const QString &serverId,
    const QString &localId, bool &acknowledged)
{
    switch (SyncItemStatus::outcome(operation, status, serverId, localId)) {
    case SyncItemStatus::Outcome::Acknowledged:
        acknowledged = true;
        break;
    case SyncItemStatus::Outcome::Unacknowledged:
        break;
    case SyncItemStatus::Outcome::Failed:
        mFailedLocalIds.append(localId);
        break;
    case SyncItemStatus::Outcome::Gone:
        mFailedLocalIds.append(localId);
        acknowledged = true;
        break;
    case SyncItemStatus::Outcome::RetryCollection:
        SyncState::addOnce(mState.collectionsToRetry, mCollectionId);
        break;
    case SyncItemStatus::Outcome::StorageFull:
        mStatus = Request::RequestStatusServerStorageFull;
        return false;
    }
    return true;
}
