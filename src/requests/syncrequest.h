// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/hierarchyrequest.h"
#include "requests/syncstate.h"

#include <QStringList>

class EasAccount;
class FolderSyncCommand;
class MoveItemsCommand;
class SyncCollection;
class SyncCommand;

/**
 * One complete synchronisation of an account, or of the services or folders that the client names.
 *
 * Runs FolderSync until the hierarchy is current, MoveItems for mail that was moved on the device, then as
 * many Sync commands as it takes until every chosen collection has nothing more to say on either side:
 * collections without a key first, alone; then the others together. A reply goes into the stores, then into
 * the mapping database, and last its sync key is written, so that a crash repeats a batch and loses nothing.
 *
 * Queued and owned by RequestManager; started once. Every way back to an earlier phase is counted, so that
 * no answer of a server makes it run for ever. Main thread only.
 */
class SyncRequest : public HierarchyRequest
{
    Q_OBJECT

public:
    struct SyncTexts;

    SyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

    /** Restricts the sync to services; bits: 1 mail, 2 calendar, 4 contacts. */
    void setSyncService(int service);
    /** Restricts the sync to folders, by their identifiers in the local stores. */
    void setSyncFolders(const QStringList &localFolderIds);

    bool started() const override;

public Q_SLOTS:
    void resumeRequest(bool success) override;
    void retrySend() override;
    void startFolderSyncCommand();
    void startSyncCommand();
    bool startMoveItemsCommand();

protected:
    void startRequest() override;
    void reportRequestCompleted() override;
    QString commandName() const override;

    void onCommandFinished(bool success) override;

private:
    enum RequestState {
        StateIdle,
        StateInitialFolderSync,
        StateFolderSync,
        StateInitialSync,
        StateContinuingSync,
        StateResync,
        StateMoveItems
    };

    void dispatch(bool success);
    void reportProgress(int percent);
    void succeedPhase();
    /** Counts a way back to an earlier phase; false, and the request has ended, if there were too many. */
    bool mayStartOver();

    void processFolderSyncFinished(bool success);
    void applyFolderChanges(const FolderSyncCommand &command);
    void continueAfterFolderSync(const FolderSyncCommand &command);
    void processWrongFolderSyncKey();
    /** False, logged, if the database could not be read. */
    bool initializeSyncCollections(EasAccount &easAccount);

    void processMoveItemsFinished(bool success);
    bool handleMoveItemsResults(const MoveItemsCommand &command);

    void sendSync(RequestState state, const QList<SyncCollection> &collections);
    bool startCollectionsResync();

    void processInitialSyncFinished(bool success);
    void storeInitialKeys(const SyncCommand &command);
    void processSyncFinished(bool success);
    void applySyncReply(const SyncCommand &command);
    void finishUnansweredCollections(const SyncCommand &command);
    void decideNextSync(bool moreAvailable, bool progressed);
    void repeatIdleSync();
    void startDeferredExceptions();
    void completeSuccessfully();

    /** What a Sync's top-level status other than success leads to; the texts name the kind of Sync. */
    void handleSyncStatus(const SyncTexts &texts);
    void processSyncCommandInvalidSyncKeyError();
    void processSyncCommandServerErrorError();
    void processSyncCommandProtocolErrorError(const char *text);
    void addCommandToResync();
    void restartFromAccount();

    int mRestarts = 0;
    RequestState mRequestState = StateIdle;
    int mSyncService = 0;
    QStringList mSyncFolders;
    int mMoveAttempts = 0;
    /** Replies in a row that announced more and brought nothing. */
    int mIdleReplies = 0;
    /** Of a collection that failed while others were still to be repeated. */
    int mFailureStatus = 0;
    SyncState mSync;
};
