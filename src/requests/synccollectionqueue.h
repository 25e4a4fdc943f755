// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccollection.h"

#include <QHash>
#include <QList>

class EasAccount;
class EasFolderItem;
struct SyncState;

/**
 * The collections of a sync and their keys: which of them go into the next Sync, which begin anew, and where
 * a new key is committed. A value on the stack of a request's slot; account and state must outlive it. Main
 * thread only.
 */
class SyncCollectionQueue
{
public:
    SyncCollectionQueue(EasAccount &account, SyncState &state);

    /**
     * Collections without a key go first, alone; those that have to be repeated go before all others. What
     * the hierarchy has lost in the meantime is dropped: nobody would answer for it, and the others would
     * wait. False, logged, if the database could not be read.
     */
    bool queryCollectionsForSync(QList<SyncCollection> &initial, QList<SyncCollection> &continuing);

    /** Forgets keys and items of the collections that begin anew; false, logged, if that failed. */
    bool restart(QList<SyncCollection> &collections);

    /**
     * Gives up, for this sync, collections without a key that the server passed over in silence.
     *
     * To an empty reply nothing has changed; some servers answer so for ever about a folder that only holds
     * other folders, and the rest of the mailbox must not wait for it. It is asked for again by the next
     * sync. False if no other collection has a key yet: then the silence may concern all of them.
     */
    bool leaveOut(const QList<SyncCollection> &unanswered);

    /** The one place where a collection's key is committed; false, logged, if the database refused. */
    bool updateFolderSyncKeys(const QList<SyncCollection> &collections, int *changed = nullptr);

private:
    bool readFolder(const QString &serverId, EasFolderItem &folder) const;
    bool readFolders(QHash<QString, EasFolderItem> *known);
    bool forgetCollection(const EasFolderItem &folder);
    bool forgetItems(const EasFolderItem &folder);
    bool setSyncKey(const EasFolderItem &folder, const QString &key);

    EasAccount &mAccount;
    SyncState &mState;
};
