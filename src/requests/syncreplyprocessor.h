// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccollection.h"

#include <QHash>
#include <QList>
#include <QStringList>

class EasAccount;
class SyncCommand;
struct SyncState;

/**
 * Walks through the reply of a Sync with real keys: looks at each collection's status, hands its items to
 * the handler of its class and keeps what the request needs to decide on the next command.
 *
 * Made for one reply, on the stack of the request's slot; account and state must outlive it. Main thread
 * only.
 */
class SyncReplyProcessor
{
public:
    /** retryCount is the request's own: collections that ask to be repeated count against it. */
    SyncReplyProcessor(EasAccount &account, SyncState &state, int &retryCount);

    /** False if the sync state of a collection is corrupt on the server; nothing behind it was handled. */
    bool process(const SyncCommand &command);

    /** Collections whose items are stored and mapped, so that their keys may be written. */
    QList<SyncCollection> updated() const { return mUpdated; }
    QStringList failedIds() const { return mFailedIds; }
    int recordedStatus() const { return mRecordedStatus; }
    /** What a request that cannot go on after the failures has to end with; 0 if nothing failed. */
    int failureStatus() const { return mRecordedStatus != 0 ? mRecordedStatus : mFirstFailedStatus; }
    bool moreAvailable() const { return mMoreAvailable; }
    /** Whether any collection brought items, and a key that lies behind them. */
    bool hasProgressed() const { return mHasProgressed; }

    /** The status of the first collection of a reply that is no success; 0 if there is none. */
    static int firstFailure(const SyncCommand &command);

    /** Takes a collection off the lists of what is still to be done. */
    static void collectionSynced(SyncState &state, const QString &serverId);

    /** Status 15: the server wants fewer collections, so the next Sync carries one. */
    static void processSyncRequestInvalidSyncError(SyncState &state);

private:
    bool asksForRepetition(const SyncCommand &command) const;
    void processCollection(SyncCollection &collection);
    bool handleCollectionResults(const SyncCollection &collection);
    bool handleItems(SyncCollection &collection);
    void narrow(const SyncCollection &collection);
    void addFailed(const SyncCollection &collection, int status);
    bool mayRepeat(const SyncCollection &collection);
    static bool bearsItems(const SyncCollection &collection);

    EasAccount &mAccount;
    SyncState &mState;
    int &mRetryCount;
    QList<SyncCollection> mUpdated;
    QStringList mFailedIds;
    int mRecordedStatus = 0;
    int mFirstFailedStatus = 0;
    bool mMoreAvailable = false;
    bool mHasProgressed = false;
    bool mHasNarrowed = false;
    QHash<QString, QString> mSentKeys;
};
