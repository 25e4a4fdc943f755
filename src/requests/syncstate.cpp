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

bool SyncState::uploadAnswered(const QString &serverId)
{
    UploadProgress &progress = uploads[serverId];
    progress.sent += progress.sending;
    progress.sending.clear();
    if (progress.isWaiting) {
        addOnce(collectionsToSync, serverId);
        collectionsToRetry.removeAll(serverId);
        return true;
    }
    // What was refused is found again as long as the request lasts, and must not go up with each Sync.
    if (!progress.hasRefused || progress.sent.isEmpty())
        uploads.remove(serverId);
    return false;
}

void SyncState::leaveOut(const QString &serverId)
{
    collectionSynced(serverId);
    collectionsToResync.removeAll(serverId);
    collectionsToAskAlone.removeAll(serverId);
    collectionsSetAside.remove(serverId);
}

void SyncState::setAside(const QString &serverId, int status)
{
    leaveOut(serverId);
    collectionsSetAside.insert(serverId, status);
}

int SyncState::takeSetAside()
{
    const QMap<QString, int> waiting = collectionsSetAside;
    collectionsSetAside.clear();
    for (auto it = waiting.cbegin(); it != waiting.cend(); ++it)
        addOnce(collectionsToSync, it.key());
    return waiting.isEmpty() ? 0 : waiting.first();
}

void SyncState::processSyncRequestInvalidSyncError()
{
    qCWarning(eas()) << "Too many collections in SyncRequest";
    if (!collectionsToSync.isEmpty())
        addOnce(collectionsToRetry, collectionsToSync.first());
}
