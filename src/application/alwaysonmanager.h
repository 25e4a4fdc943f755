// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/alwaysonstate.h"
#include "application/base/deadline.h"
#include "application/localchanges.h"
#include "application/pushpauses.h"
#include "application/pushping.h"
#include "application/pushrestart.h"
#include "application/storechanges.h"
#include "common/easaccountid.h"

#include <QObject>
#include <QStringList>

class EasAccount;
class PingRequest;
class PushSyncs;
class RequestManager;

/**
 * Keeps one account always on: a Ping waits for the server's changes between syncs, and what it reports, or
 * the user changes, becomes a sync, which goes through the bus and the account's queue as any other.
 *
 *     full sync -> pause -> Ping -> changes -> sync of the folders -> pause -> Ping ...
 *
 * A Ping gives way to each sync. Pauses grow where a server fails or reports changes that are none. Whatever
 * stops push, a failed sync or a Ping that nothing is to be done about, a full sync begins again after a
 * while; without a network nothing runs until it is back.
 *
 * The account creates its manager when it is first switched to always-on and owns it from then on;
 * setAlwaysOnScheduling(false) stops it at once. Without a RequestManager above the account it holds the
 * switch alone. Main thread only.
 */
class AlwaysOnManager : public QObject
{
    Q_OBJECT

public:
    AlwaysOnManager(EasAccountId accountId, QObject *parent);
    ~AlwaysOnManager() override;

    EasAccountId accountId() const;
    bool alwaysOnScheduling() const;
    void setAlwaysOnScheduling(bool enabledAlwaysOn);

    AlwaysOnState state() const;

public Q_SLOTS:
    void onConfigAccountChanged(qulonglong accountId);
    void onSyncStarted(EasAccountId accountId, qulonglong requestId);
    void onSyncCompleted(EasAccountId accountId, qulonglong requestId, int status);
    void onNetworkStateChanged(EasAccountId accountId, bool networkEnabled);

private Q_SLOTS:
    void onPingCompleted(const PingRequest &finished);
    void rePing();
    void onChangesAvailable(const QStringList &localFolderIds);
    void onStartInternalSync();
    void onPingAnswered(int status);
    void onCredentialsChanged();
    void restart();

private:
    EasAccount *account() const;
    void connectToSignals();
    void connectToAccount(EasAccount &pushed);
    void watchStores();
    bool isNetworkConnected() const;

    void restartPingTimer();
    void stopPingRequest();
    void actOnPing(const PingRequest &finished);
    void repingAfterError(int status);
    void syncFolders(const QStringList &serverFolderIds);
    void startFullSyncRequest();
    /** The account is gone. */
    void leave();
    /** Push has stopped: a full sync starts it again, later. */
    void scheduleRestart(PushRestart::Cause cause = PushRestart::Cause::Failure);
    /** Tells the clients of the bus, if something has changed for them. */
    void publish();

    const EasAccountId mAccountId;
    RequestManager *mManager;
    PushSyncs *mSyncs = nullptr;
    PushPing mPing;
    Deadline mPingTimer;
    PushPauses mPauses;
    PushRestart mRestart;
    StoreChanges mStoreChanges;
    LocalChanges mLocalChanges;

    bool mAlwaysOnEnabled = false;
    bool mNetworkEnabled = false;
    bool mSyncInProgress = false;
    /** The sync that push begins with has not succeeded yet. */
    bool mOwesFullSync = false;
    AlwaysOnState mState;
    QVariantMap mPublished;
};
