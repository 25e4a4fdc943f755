// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/alwaysonmanager.h"

#include "application/account/easaccount.h"
#include "application/base/engine.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "application/pushsyncs.h"
#include "application/pushverb.h"
#include "application/requestmanager.h"
#include "protocol/base/eas.h"
#include "requests/pingrequest.h"

#include <QNetworkSession>

AlwaysOnManager::AlwaysOnManager(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mManager(dynamic_cast<RequestManager *>(Engine::of(this)))
    , mPing(accountId, mManager)
    , mPingTimer(Clock::Timer::PushPause)
    , mRestart(accountId)
{
    if (!mManager)
        return;
    mSyncs = new PushSyncs(accountId, *mManager, this);
    connectToSignals();
}

AlwaysOnManager::~AlwaysOnManager() = default;

EasAccountId AlwaysOnManager::accountId() const
{
    return mAccountId;
}

bool AlwaysOnManager::alwaysOnScheduling() const
{
    return mAlwaysOnEnabled;
}

EasAccount *AlwaysOnManager::account() const
{
    return Engine::accountOf(this, mAccountId);
}

void AlwaysOnManager::connectToSignals()
{
    connect(&mPing, &PushPing::answered, this, &AlwaysOnManager::onPingAnswered);
    connect(&mPing, &PushPing::completed, this, &AlwaysOnManager::onPingCompleted);
    connect(&mPing, &PushPing::waiting, this, &AlwaysOnManager::publish);
    connect(&mPingTimer, &Deadline::expired, this, &AlwaysOnManager::rePing);
    connect(&mRestart, &PushRestart::due, this, &AlwaysOnManager::restart);
    connect(&mStoreChanges, &StoreChanges::changed, this, &AlwaysOnManager::onChangesAvailable);
    connect(&mLocalChanges, &LocalChanges::due, this, &AlwaysOnManager::onStartInternalSync);
    connect(mSyncs, &PushSyncs::failed, this, [this] { scheduleRestart(); });
    connect(mManager, &RequestManager::syncStarted, this, &AlwaysOnManager::onSyncStarted);
    connect(mManager, &RequestManager::syncCompleted, this, &AlwaysOnManager::onSyncCompleted);
    connect(mManager, &RequestManager::changesReceived, this, [this](EasAccountId accountId) {
        if (accountId == mAccountId)
            mPauses.changesReceived();
    });
    connect(mManager, &RequestManager::networkStateChanged, this, &AlwaysOnManager::onNetworkStateChanged);
    connect(mManager, &RequestManager::accountDeleted, this, [this](EasAccountId accountId) {
        if (accountId == mAccountId)
            leave();
    });
    if (EasAccount *const pushed = account())
        connectToAccount(*pushed);
    else
        qCCritical(eas()) << "AlwaysOnManager: account object is null:" << mAccountId;
}

void AlwaysOnManager::connectToAccount(EasAccount &pushed)
{
    connect(&pushed, &EasAccount::emailConfigurationChanged, this, &AlwaysOnManager::onConfigAccountChanged);
    connect(
        &pushed, &EasAccount::calendarConfigurationChanged, this, &AlwaysOnManager::onConfigAccountChanged);
    connect(
        &pushed, &EasAccount::contactsConfigurationChanged, this, &AlwaysOnManager::onConfigAccountChanged);
    connect(&pushed, &EasAccount::credentialsChanged, this, &AlwaysOnManager::onCredentialsChanged);
    mStoreChanges.watch(pushed);
}

void AlwaysOnManager::watchStores()
{
    if (EasAccount *const pushed = account())
        mStoreChanges.watch(*pushed);
}

bool AlwaysOnManager::isNetworkConnected() const
{
    const QNetworkSession *const session = mManager ? mManager->networkSession(mAccountId) : nullptr;
    return session && session->state() == QNetworkSession::Connected;
}

// The switch

void AlwaysOnManager::setAlwaysOnScheduling(bool enabledAlwaysOn)
{
    qCInfo(eas()) << "start, enabledAlwaysOn:" << enabledAlwaysOn;
    if (!mManager) {
        mAlwaysOnEnabled = enabledAlwaysOn;
        return;
    }
    mNetworkEnabled = isNetworkConnected();
    if (mAlwaysOnEnabled == enabledAlwaysOn)
        return;
    mAlwaysOnEnabled = enabledAlwaysOn;
    if (mAlwaysOnEnabled) {
        watchStores();
        mOwesFullSync = true;
        startFullSyncRequest();
    } else {
        stopPingRequest();
        mRestart.stop();
        mLocalChanges.clear();
    }
    publish();
}

void AlwaysOnManager::leave()
{
    setAlwaysOnScheduling(false);
    mManager->disconnect(this);
    Q_EMIT mManager->pushStateChanged(mAccountId, {});
}

void AlwaysOnManager::onConfigAccountChanged(qulonglong accountId)
{
    if (accountId != mAccountId)
        return;
    qCInfo(eas()) << "Account config changed for account:" << accountId;
    watchStores();
    restartPingTimer();
    publish();
}

// The Ping

void AlwaysOnManager::restartPingTimer()
{
    if (!mNetworkEnabled || mSyncInProgress) {
        qCInfo(eas()) << "Tried to restart Ping timer, but mNetworkEnabled:" << mNetworkEnabled
                      << ", mSyncInProgress:" << mSyncInProgress;
        return;
    }
    if (!mAlwaysOnEnabled) {
        qCInfo(eas()) << "Tried Start reping timer, but Always on is disabled";
        return;
    }
    if (mPingTimer.isActive()) {
        qCInfo(eas()) << "Tried Start reping timer, but timer is active alredy";
        return;
    }
    mRestart.stop();
    const int interval = mPauses.seconds() * 1000;
    qCInfo(eas()) << "Restart ping timer interval:" << interval;
    mPingTimer.start(interval);
}

void AlwaysOnManager::rePing()
{
    if (!mNetworkEnabled) {
        qCInfo(eas()) << "network is disabled. Ping request is not started";
        return publish();
    }
    const EasAccount *const pushed = account();
    if (!pushed) {
        qCCritical(eas()) << "account object is null:" << mAccountId;
        return;
    }
    if (!pushed->firstSyncCompleted()) {
        qCInfo(eas()) << "Initial sync is not completed, can't start ping request yet";
        return scheduleRestart();
    }
    stopPingRequest();
    mPauses.pingStarted();
    mPing.start();
    publish();
}

void AlwaysOnManager::stopPingRequest()
{
    mPingTimer.stop();
    if (mPing.stop())
        mPauses.serverRecovered();
}

void AlwaysOnManager::onPingAnswered(int status)
{
    mState.lastAnswer = status;
    mState.lastAnswerAt = Clock::instance().currentDateTimeUtc();
    const bool works = status == Eas::HeartbeatIntervalExpiredBeforeAnyChangesOccurred
        || status == Eas::ChangesOccurred || status == Eas::FolderHierarchySyncRequired;
    if (works)
        mRestart.serverAnswered();
    // Later, when it shows whether the request goes on.
    QMetaObject::invokeMethod(
        this, [this] { publish(); }, Qt::QueuedConnection);
}

void AlwaysOnManager::onPingCompleted(const PingRequest &finished)
{
    actOnPing(finished);
    publish();
}

void AlwaysOnManager::actOnPing(const PingRequest &finished)
{
    const PushVerb verb = pushVerb(finished.status());
    if (verb != PushVerb::PauseForLonger && verb != PushVerb::Fail)
        mPauses.serverRecovered();
    switch (verb) {
    case PushVerb::Pause:
        return restartPingTimer();
    case PushVerb::SyncFolders:
        mPauses.changesReported();
        return syncFolders(finished.responseFolders());
    case PushVerb::SyncHierarchy:
        mPauses.changesReported();
        return mSyncs->startFoldersSyncRequest();
    case PushVerb::PauseForLonger:
        return repingAfterError(finished.status());
    case PushVerb::Stop:
    case PushVerb::Fail:
        return scheduleRestart(
            finished.demandsProvisioning() ? PushRestart::Cause::Demand : PushRestart::Cause::Failure);
    case PushVerb::EndForGood:
        return;
    }
}

void AlwaysOnManager::repingAfterError(int status)
{
    qCWarning(eas()) << "server error. mTimeoutFactor:" << mPauses.timeoutFactor() << "status:" << status;
    restartPingTimer();
    mPauses.serverFailed();
}

void AlwaysOnManager::syncFolders(const QStringList &serverFolderIds)
{
    const auto localIds = EasDatabase::instance()->serverToLocalFolderIds(mAccountId);
    if (!localIds)
        return scheduleRestart();
    QStringList folders;
    for (const QString &serverId : serverFolderIds) {
        const QString localId = localIds->value(serverId);
        if (!localId.isEmpty())
            folders.append(localId);
    }
    folders.isEmpty() ? startFullSyncRequest() : mSyncs->startSyncFoldersRequest(folders);
}

// Syncs

void AlwaysOnManager::startFullSyncRequest()
{
    mSyncs->startFullSyncRequest();
}

void AlwaysOnManager::onSyncStarted(EasAccountId accountId, qulonglong requestId)
{
    if (accountId != mAccountId)
        return;
    qCInfo(eas()) << "AlwaysOnManager: sync started for account" << accountId << "requestId" << requestId;
    stopPingRequest();
    mSyncInProgress = true;
    mPauses.syncStarted();
    publish();
}

void AlwaysOnManager::onSyncCompleted(EasAccountId accountId, qulonglong requestId, int status)
{
    if (accountId != mAccountId)
        return;
    qCInfo(eas()) << "AlwaysOnManager: sync completed. accountId" << accountId << "requestId" << requestId
                  << "status" << status;
    mSyncInProgress = false;
    const bool succeeded = status == EasRequestStatus::RequestStatusSuccess;
    if (succeeded) {
        mPauses.syncSucceeded();
        restartPingTimer();
        mOwesFullSync = false;
    } else {
        scheduleRestart();
    }
    publish();
}

void AlwaysOnManager::scheduleRestart(PushRestart::Cause cause)
{
    if (!mAlwaysOnEnabled || !mNetworkEnabled || mSyncInProgress || mRestart.isActive()
        || mPingTimer.isActive() || mPing.isActive())
        return publish();
    EasAccount *const pushed = account();
    mRestart.schedule(cause, pushed && pushed->isCredentialsNeedUpdate());
    publish();
}

void AlwaysOnManager::restart()
{
    startFullSyncRequest();
    publish();
}

void AlwaysOnManager::onCredentialsChanged()
{
    if (EasAccount *const pushed = account())
        mRestart.credentialsChanged(pushed->isCredentialsNeedUpdate());
}

// The network and the user

void AlwaysOnManager::onNetworkStateChanged(EasAccountId accountId, bool networkEnabled)
{
    if (accountId != mAccountId)
        return;
    qCInfo(eas()) << "network state changed. accountId:" << accountId << "; enabled:" << networkEnabled;
    if (mNetworkEnabled == networkEnabled)
        return;
    mNetworkEnabled = networkEnabled;
    if (!networkEnabled) {
        stopPingRequest();
        mRestart.stop();
        mLocalChanges.stopWaiting();
    } else if (mOwesFullSync) {
        startFullSyncRequest();
    } else if (mLocalChanges.isEmpty()) {
        restartPingTimer();
    } else {
        qCInfo(eas()) << "we have some local changes to sync";
        mLocalChanges.startWaiting();
    }
    publish();
}

void AlwaysOnManager::onChangesAvailable(const QStringList &localFolderIds)
{
    if (!mAlwaysOnEnabled)
        return; // the full sync that push begins with finds them
    qCInfo(eas()) << "changes available in folders:" << localFolderIds;
    mLocalChanges.add(localFolderIds);
    if (mNetworkEnabled)
        mLocalChanges.startWaiting();
}

void AlwaysOnManager::onStartInternalSync()
{
    if (!mNetworkEnabled || mLocalChanges.isEmpty())
        return;
    stopPingRequest();
    const QStringList folders = mLocalChanges.take();
    qCInfo(eas()) << "starting internal sync for folders:" << folders;
    mSyncs->startSyncFoldersRequest(folders);
    publish();
}

// What the clients get

AlwaysOnState AlwaysOnManager::state() const
{
    AlwaysOnState state = mState;
    state.isEnabled = mAlwaysOnEnabled;
    state.folders = mPing.folderCount();
    if (const EasAccount *const pushed = account())
        state.heartbeat = pushed->heartbeatInterval();
    using Step = AlwaysOnState::Step;
    if (!mAlwaysOnEnabled) {
        state.nextStep = Step::Off;
    } else if (mSyncInProgress) {
        state.nextStep = Step::Sync;
    } else if (!mNetworkEnabled) {
        state.nextStep = Step::Network;
    } else if (mPing.isActive()) {
        state.nextStep = Step::Ping;
    } else if (mPingTimer.isActive()) {
        state.nextStep = Step::Pause;
        state.nextStepAt = mPingTimer.due();
    } else if (mRestart.isActive()) {
        state.nextStep = Step::Stopped;
        state.nextStepAt = mRestart.dueAt();
    } else {
        state.nextStep = mSyncs && mSyncs->isActive() ? Step::Sync : Step::Stopped;
    }
    return state;
}

void AlwaysOnManager::publish()
{
    if (!mManager)
        return;
    const QVariantMap map = state().toMap();
    if (map == mPublished)
        return;
    mPublished = map;
    Q_EMIT mManager->pushStateChanged(mAccountId, map);
}
