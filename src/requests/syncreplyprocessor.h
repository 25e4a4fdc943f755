// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccollection.h"
#include "requests/attempts.h"
#include "requests/statustable.h"

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
    enum class Reply {
        Taken, ///< each of its collections was looked at
        StateLost ///< the server has lost its state; nothing behind the collection that says so was handled
    };

    /** Collections that ask to be repeated count against the attempts, which are the request's own. */
    SyncReplyProcessor(EasAccount &account, SyncState &state, Attempts &attempts);

    Reply process(const SyncCommand &command);

    /** Collections whose items are stored and mapped, so that their keys may be written. */
    QList<SyncCollection> updated() const { return mUpdated; }
    QStringList failedIds() const { return mFailedIds; }
    int recordedStatus() const { return mRecordedStatus; }
    /** What a request that cannot go on after the failures has to end with; 0 if nothing failed. */
    int failureStatus() const { return mRecordedStatus != 0 ? mRecordedStatus : mFirstFailedStatus; }
    bool moreAvailable() const { return mMoreAvailable; }
    /** Whether any collection brought items, and a key that lies behind them. */
    bool hasProgressed() const { return mHasProgressed; }

private:
    enum class Verb { TakeItems, LoseState, Fail, FailStorageFull, Narrow, Repeat };
    using Statuses = StatusTable<Verb>;
    static const Statuses statuses;

    /** What became of a collection. */
    enum class Result {
        Taken, ///< its items are stored and mapped
        NotHandled, ///< its folder is of a type that is not synchronised
        NotStored, ///< its items could not be stored; it is repeated from its old key
        Refused, ///< by its status
        GivenUp ///< it has asked to be repeated too often, and is left for the next sync
    };

    bool asksForRepetition(const SyncCommand &command) const;
    Result judge(SyncCollection &collection, const Statuses::Row *row);
    void apply(Result result, const SyncCollection &collection);
    Result takeItems(SyncCollection &collection);
    Result narrow(const SyncCollection &collection);
    Result repeat(const SyncCollection &collection);
    void addFailed(const SyncCollection &collection, int status);
    void closeUnlessMore(const SyncCollection &collection);
    static bool bearsItems(const SyncCollection &collection);

    EasAccount &mAccount;
    SyncState &mState;
    Attempts &mAttempts;
    QList<SyncCollection> mUpdated;
    QStringList mFailedIds;
    int mRecordedStatus = 0;
    int mFirstFailedStatus = 0;
    /** Of the items of the collection at hand. */
    int mStoreStatus = 0;
    bool mMoreAvailable = false;
    bool mHasProgressed = false;
    bool mHasNarrowed = false;
    QHash<QString, QString> mSentKeys;
};
