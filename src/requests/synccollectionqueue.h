// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
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
     * Collections without a key go first, and the others wait for the next call; those that have to be
     * repeated go before all others. What the hierarchy has lost in the meantime is dropped: nobody would
     * answer for it, and the others would wait. False, logged, if the database could not be read.
     */
    bool queryCollectionsForSync(QList<SyncCollection> &initial, QList<SyncCollection> &continuing);

    /** Forgets keys and items of the collections that begin anew; false, logged, if that failed. */
    bool restart(QList<SyncCollection> &collections);

    /**
     * Gives up, for this sync, a collection without a key that the server passes over in silence; it is asked
     * for again by the next one. False, and nothing is given up, if no collection of the account has a key.
     */
    bool leaveOut(const SyncCollection &silent);

    /** The one place where a collection's key is committed; false, logged, if the database refused. */
    bool updateFolderSyncKeys(const QList<SyncCollection> &collections);

private:
    Lookup<EasFolderItem> readFolder(const QString &serverId) const;
    /** False, logged, if the collection could not be made. */
    static bool append(QList<SyncCollection> &collections, const Lookup<SyncCollection> &collection);
    bool anyHasKey() const;
    /** Those that go into the next Sync: all, or one that has to be asked for alone. */
    QList<EasFolderItem> foldersWithoutKey(const QList<EasFolderItem> &folders) const;
    bool readFolders(QHash<QString, EasFolderItem> *known);
    bool forgetCollection(const EasFolderItem &folder);
    bool forgetItems(const EasFolderItem &folder);
    bool expectContacts(const EasFolderItem &folder);
    bool setSyncKey(const EasFolderItem &folder, const QString &key);

    EasAccount &mAccount;
    SyncState &mState;
};
