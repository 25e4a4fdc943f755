// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncstate.h"

#include "application/base/logging.h"

void SyncState::addOnce(QStringList &list, const QString &id)
{
    if (!list.contains(id))
        list.append(id);
}

void SyncState::collectionSynced(const QString &serverId)
{
    collectionsToRetry.removeAll(serverId);
    collectionsToSync.removeAll(serverId);
}

void SyncState::processSyncRequestInvalidSyncError()
{
    qCWarning(eas()) << "Too many collections in SyncRequest";
    if (!collectionsToSync.isEmpty())
        addOnce(collectionsToRetry, collectionsToSync.first());
}
