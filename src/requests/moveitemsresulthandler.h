// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "protocol/elements/movecontainer.h"

#include "requests/mailserverids.h"

#include <QHash>
#include <QList>

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
    /** False, logged, if the database could not be read. */
    bool lookUp(const QList<MoveContainer> &moves, const QHash<QString, MoveItemsResponse> &responses);
    void handleMove(const MoveContainer &move, const MoveItemsResponse &response);
    void appendMoved(const MoveContainer &move, const WireEmailId &wireId);
    bool recordMoved();

    EasAccount &mAccount;
    SyncState &mState;
    MailServerIds mIds;
    QList<EasEmailItem> mMoved;
    bool mFolderSyncNeeded = false;
    bool mRetryMove = false;
};
