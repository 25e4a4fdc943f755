// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/firstkeysphase.h"
#include "requests/hierarchyphase.h"
#include "requests/hierarchyrequest.h"
#include "requests/itemsphase.h"
#include "requests/movephase.h"

#include <QStringList>

/**
 * One complete synchronisation of an account, or of the services or folders that the client names.
 *
 * It is a list of phases: FolderSync until the hierarchy is current, MoveItems for mail that was moved on the
 * device, then as many Sync commands as it takes until every chosen collection has nothing more to say on
 * either side, collections without a key first, alone. Each phase owns its command and its statuses; this
 * class is their order. Every way back to an earlier phase is counted, so that no answer of a server makes it
 * run for ever.
 *
 * Queued and owned by RequestManager; started once. Main thread only.
 */
class SyncRequest : public HierarchyRequest
{
    Q_OBJECT

public:
    SyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

    /** Restricts the sync to services; bits: 1 mail, 2 calendar, 4 contacts. */
    void setSyncService(int service);
    /** Restricts the sync to folders, by their identifiers in the local stores. */
    void setSyncFolders(const QStringList &localFolderIds);

    /** Whether it is about the default folders of all services. */
    bool isFull() const { return mSyncService == 0 && mSyncFolders.isEmpty(); }

    bool started() const override;

public Q_SLOTS:
    void resumeRequest(bool success) override;
    void retrySend() override;
    void startFolderSyncCommand();
    void startSyncCommand();
    void startMoveItemsCommand();

protected:
    void startRequest() override;
    void reportRequestCompleted() override;
    QString commandName() const override;

    void onCommandFinished(bool success) override;

    bool broughtChanges() const override { return mRun.state.hasBroughtChanges; }

private:
    SyncPhase::State requestState() const;
    /** Goes on as a phase wants it. */
    void follow(SyncPhase::End end);
    void startNextPhase();
    void startCollections();
    void startCollectionsResync();
    /** False, logged, if the database could not be read. */
    bool initializeSyncCollections();
    /** Tries again later what got no key while the others went on; false if there is nothing of the kind. */
    bool retrySetAside();
    void completeSuccessfully();

    int mSyncService = 0;
    QStringList mSyncFolders;
    SyncRun mRun;
    HierarchyPhase mHierarchy;
    MovePhase mMoves;
    FirstKeysPhase mFirstKeys;
    ItemsPhase mItems;
    /** The one whose command was started last; null before the first. */
    SyncPhase *mPhase = nullptr;
};
