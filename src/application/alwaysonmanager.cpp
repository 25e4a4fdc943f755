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
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

#include <QNetworkSession>

AlwaysOnManager::AlwaysOnManager(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mManager(dynamic_cast<RequestManager *>(Engine::of(this)))
    , mPingTimer(Clock::Timer::PushPause)
    , mRestartTimer(Clock::Timer::PushRestart)
{
    if (!mManager)
        return;
    mSyncs = new PushSyncs(accountId, *mManager, this);
    connectToSignals();
}

AlwaysOnManager::~AlwaysOnManager()
{
    // It belongs to the engine, which may have gone with it already.
    delete mPingRequest;
}

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
    connect(&mPingTimer, &Deadline::expired, this, &AlwaysOnManager::rePing);
    connect(&mRestartTimer, &Deadline::expired, this, &AlwaysOnManager::restart);
    connect(&mLocalChanges, &LocalChanges::due, this, &AlwaysOnManager::onStartInternalSync);
    connect(mSyncs, &PushSyncs::failed, this, &AlwaysOnManager::scheduleRestart);
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
    EasAccount *const pushed = account();
    if (!pushed) {
        qCCritical(eas()) << "AlwaysOnManager: account object is null:" << mAccountId;
        return;
    }
    connect(pushed, &EasAccount::emailConfigurationChanged, this, &AlwaysOnManager::onConfigAccountChanged);
    connect(
        pushed, &EasAccount::calendarConfigurationChanged, this, &AlwaysOnManager::onConfigAccountChanged);
    connect(
        pushed, &EasAccount::contactsConfigurationChanged, this, &AlwaysOnManager::onConfigAccountChanged);
    connect(pushed, &EasAccount::credentialsChanged, this, &AlwaysOnManager::onCredentialsChanged);
    connectStores();
}

void AlwaysOnManager::connectStores()
{
    EasAccount *const pushed = account();
    if (!pushed)
        return;
    if (const auto contacts = pushed->contactStorage())
        connect(contacts.data(), &ContactStorage::changesAvailable, this,
            &AlwaysOnManager::onChangesAvailable, Qt::UniqueConnection);
    else
        qCWarning(eas()) << "contacts storage is null for account" << mAccountId;
    if (const auto calendar = pushed->calendarStorage())
        connect(calendar.data(), &CalendarStorage::changesAvailable, this,
            &AlwaysOnManager::onChangesAvailable, Qt::UniqueConnection);
    else
        qCWarning(eas()) << "No calendar storage for account:" << mAccountId;
    // The mail store comes and goes with the service.
    if (const auto mail = pushed->mailStorage())
        connect(mail.data(), &MailStorage::messagesChanged, this, &AlwaysOnManager::onChangesAvailable,
            Qt::UniqueConnection);
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
        connectStores();
        mOwesFullSync = true;
        startFullSyncRequest();
    } else {
        stopPingRequest();
        mRestartTimer.stop();
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
    connectStores();
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
    mRestartTimer.stop();
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
    mPingRequest = new PingRequest(mAccountId, 0, mManager);
    connect(mPingRequest, &Request::requestCompleted, this, &AlwaysOnManager::onPingRequestCompleted);
    connect(mPingRequest, &PingRequest::answered, this, &AlwaysOnManager::onPingAnswered);
    connect(mPingRequest, &PingRequest::waiting, this, [this] {
        mState.folders = mPingRequest ? mPingRequest->folderCount() : mState.folders;
        publish();
    });
    mPingRequest->start();
    qCInfo(eas()) << "ping request started";
    publish();
}

void AlwaysOnManager::stopPingRequest()
{
    mPingTimer.stop();
    PingRequest *const stopped = mPingRequest;
    if (!stopped)
        return;
    mPingRequest.clear();
    stopped->disconnect(this);
    stopped->cancel();
    stopped->deleteLater();
    qCInfo(eas()) << "Request canceled";
    mPauses.serverRecovered();
}

void AlwaysOnManager::onPingAnswered(int status)
{
    mState.lastAnswer = status;
    mState.lastAnswerAt = Clock::instance().currentDateTimeUtc();
    const bool works = status == Eas::HeartbeatIntervalExpiredBeforeAnyChangesOccurred
        || status == Eas::ChangesOccurred || status == Eas::FolderHierarchySyncRequired;
    if (works)
        mRestartDelays.reset();
    // Later, when it shows whether the request goes on.
    QMetaObject::invokeMethod(
        this, [this] { publish(); }, Qt::QueuedConnection);
}

void AlwaysOnManager::onPingRequestCompleted(EasAccountId accountId, qulonglong requestId)
{
    PingRequest *const finished = mPingRequest;
    if (accountId != mAccountId || !finished || finished->id() != requestId)
        return;
    mPingRequest.clear();
    finished->deleteLater();
    qCInfo(eas()) << " requestId:" << requestId << "status:" << finished->status();
    actOnPing(finished->status(), finished->responseFolders());
    publish();
}

void AlwaysOnManager::actOnPing(int status, const QStringList &responseFolders)
{
    const PushVerb verb = pushVerb(status);
    if (verb != PushVerb::PauseForLonger && verb != PushVerb::Fail)
        mPauses.serverRecovered();
    switch (verb) {
    case PushVerb::Pause:
        return restartPingTimer();
    case PushVerb::SyncFolders:
        mPauses.changesReported();
        return syncFolders(responseFolders);
    case PushVerb::SyncHierarchy:
        mPauses.changesReported();
        return mSyncs->startFoldersSyncRequest();
    case PushVerb::PauseForLonger:
        return repingAfterError(status);
    case PushVerb::Stop:
    case PushVerb::Fail:
        return scheduleRestart();
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

void AlwaysOnManager::scheduleRestart()
{
    if (!mAlwaysOnEnabled || !mNetworkEnabled || mSyncInProgress || mRestartTimer.isActive()
        || mPingTimer.isActive() || mPingRequest)
        return publish();
    EasAccount *const pushed = account();
    mWaitsForCredentials = pushed && pushed->isCredentialsNeedUpdate();
    const int minutes = mRestartDelays.take();
    qCWarning(eas()) << "push has stopped for account" << mAccountId << ", full sync in" << minutes << "min";
    mRestartTimer.start(minutes * 60 * 1000);
    publish();
}

void AlwaysOnManager::restart()
{
    startFullSyncRequest();
    publish();
}

void AlwaysOnManager::onCredentialsChanged()
{
    // Those of an account that is not blocked are fetched anew whenever a server refuses them.
    EasAccount *const pushed = account();
    if (!mWaitsForCredentials || !pushed || pushed->isCredentialsNeedUpdate() || !mRestartTimer.isActive())
        return;
    mWaitsForCredentials = false;
    mRestartTimer.stop();
    restart();
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
        mRestartTimer.stop();
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
    if (const EasAccount *const pushed = account())
        state.heartbeat = pushed->heartbeatInterval();
    using Step = AlwaysOnState::Step;
    if (!mAlwaysOnEnabled) {
        state.nextStep = Step::Off;
    } else if (mSyncInProgress) {
        state.nextStep = Step::Sync;
    } else if (!mNetworkEnabled) {
        state.nextStep = Step::Network;
    } else if (mPingRequest) {
        state.nextStep = Step::Ping;
    } else if (mPingTimer.isActive()) {
        state.nextStep = Step::Pause;
        state.nextStepAt = mPingTimer.due();
    } else if (mRestartTimer.isActive()) {
        state.nextStep = Step::Stopped;
        state.nextStepAt = mRestartTimer.due();
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
