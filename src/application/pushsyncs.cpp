// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/pushsyncs.h"

#include "application/base/logging.h"
#include "application/requestmanager.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

PushSyncs::PushSyncs(EasAccountId accountId, RequestManager &manager, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mManager(manager)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        qCCritical(eas()) << "Cannot connect to Dbus";
    mProxy = std::make_unique<EasDBusInterfaceProxy>(
        ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, ExchangeActiveSync::EAS_DBUS_PATH_NAME, bus);
    connect(&manager, &RequestManager::requestFinished, this, &PushSyncs::onRequestFinished);
}

PushSyncs::~PushSyncs() = default;

void PushSyncs::startFullSyncRequest()
{
    if (mFullCalls > 0 || mManager.hasFullSync(mAccountId)) {
        qCInfo(eas()) << "Internal full sync request: one is under way, account" << mAccountId;
        return;
    }
    qCInfo(eas()) << "Internal full sync request:" << mAccountId;
    follow(mProxy->sync(mAccountId), true);
}

void PushSyncs::startFoldersSyncRequest()
{
    qCInfo(eas()) << "Internal folders request" << mAccountId;
    follow(mProxy->foldersSync(mAccountId));
}

void PushSyncs::startSyncFoldersRequest(const QStringList &folders)
{
    qCInfo(eas()) << "Internal sync folders request" << mAccountId << folders;
    follow(mProxy->syncFolders(mAccountId, folders));
}

void PushSyncs::follow(const QDBusPendingCall &call, bool isFull)
{
    ++mCalls;
    mFullCalls += isFull ? 1 : 0;
    auto *const watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, isFull](QDBusPendingCallWatcher *done) {
        done->deleteLater();
        --mCalls;
        mFullCalls -= isFull ? 1 : 0;
        const QDBusPendingReply<qulonglong> reply = *done;
        if (!reply.isError())
            return onAccepted(reply.value());
        qCWarning(eas()) << "the bus refused a sync of account" << mAccountId << ":"
                         << reply.error().message();
        Q_EMIT failed();
    });
}

void PushSyncs::onAccepted(qulonglong requestId)
{
    const bool hasEnded = mEndedEarly.contains(requestId);
    const int status = mEndedEarly.value(requestId);
    if (mCalls == 0)
        mEndedEarly.clear();
    if (!hasEnded)
        mRunning.insert(requestId);
    else if (status != 0)
        Q_EMIT failed();
}

void PushSyncs::onRequestFinished(EasAccountId accountId, qulonglong requestId, int status)
{
    if (accountId != mAccountId)
        return;
    const bool isOurs = mRunning.remove(requestId);
    if (!isOurs && mCalls > 0)
        mEndedEarly.insert(requestId, status);
    if (isOurs && status != 0)
        Q_EMIT failed();
}
