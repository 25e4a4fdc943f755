// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "protocol/elements/movecontainer.h"
#include "requests/mailserverids.h"
#include "requests/statustable.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

class EasAccount;
class MoveItemsCommand;
class MoveItemsResponse;
struct SyncState;

/**
 * Applies the answers of a MoveItems: moved mail keeps its place in the database and gets its new server
 * identifier in the store. Made for one reply, on the stack of the request's slot; account and state must
 * outlive it. Main thread only.
 */
class MoveItemsResultHandler
{
public:
    MoveItemsResultHandler(EasAccount &account, SyncState &state);

    /** One move for each message; what the server would call by the same name waits for the next sync. */
    static QList<MoveContainer> moves(const QList<EasEmailItem> &movedEmails);

    /** False, logged, if the moved mail could not be recorded. */
    bool handle(const MoveItemsCommand &command);

    bool folderSyncNeeded() const { return mFolderSyncNeeded; }
    bool retryMove() const { return mRetryMove; }

private:
    enum class Verb { TakeNewName, KeepName, AskForSource, AskForFolders, AgainLater, LeaveForNextSync };
    using Statuses = StatusTable<Verb>;
    static const Statuses statuses;

    /** False, logged, if the database could not be read. */
    bool lookUp(const QList<MoveContainer> &moves, const QHash<QString, MoveItemsResponse> &responses);
    void handleMove(const MoveContainer &move, const MoveItemsResponse &response);
    void takeNewName(const MoveContainer &move, const WireEmailId &wireId);
    void askForSource(const MoveContainer &move);
    void appendMoved(const MoveContainer &move, const WireEmailId &wireId);
    bool recordMoved();
    /**
     * Removes messages that have no row, and that the server has not where the device took them from: their
     * folder began anew in between, and no reply will ever name them.
     */
    bool removeLost();

    EasAccount &mAccount;
    SyncState &mState;
    MailServerIds mIds;
    QList<EasEmailItem> mMoved;
    /** By the identifiers that the store knows them by. */
    QSet<QString> mLost;
    bool mFolderSyncNeeded = false;
    bool mRetryMove = false;
};
