// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncresulthandler.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/elements/synccollection.h"
#include "requests/collectionrestarts.h"
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

void SyncResultHandler::beginAnewFor(const SyncCollection &collection, const QStringList &unknownIds)
{
    if (unknownIds.isEmpty())
        return;
    const auto folder = EasDatabase::instance()->folderItemByServerId(mAccount.id(), collection.id());
    const QString name = folder ? folder->displayName() : QString();
    if (!CollectionRestarts::of(mAccount).begin(collection.id())) {
        qCWarning(eas()) << "changes of unknown items, and the collection has begun anew today already:"
                         << collection.id() << name << unknownIds.size();
        return;
    }
    qCWarning(eas()) << "changes of unknown items, the collection begins anew:" << collection.id() << name
                     << unknownIds.size();
    SyncState::addOnce(mState.collectionsToResync, collection.id());
}
