// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/daemonrequest.h"

#include "client/daemonproxy.h"
#include "client/exitstatus.h"
#include "client/statustext.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/easrequeststatus.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

DaemonRequest::DaemonRequest(EasAccountId accountId)
    : mAccountId(accountId)
    , mProxy(DaemonProxy::create())
{
    connect(mProxy.get(), &EasDBusInterfaceProxy::requestFinished, this, &DaemonRequest::onFinished);
    connect(mProxy.get(), &EasDBusInterfaceProxy::requestProgress, this, &DaemonRequest::onProgress);
    connect(mProxy.get(), &EasDBusInterfaceProxy::syncStarted, this, &DaemonRequest::onSyncStarted);
}

DaemonRequest::~DaemonRequest() = default;

void DaemonRequest::start(const Call &call)
{
    // Before the call, so that a daemon that dies over it is noticed.
    watchDaemon();
    auto *const watcher = new QDBusPendingCallWatcher(call(*mProxy), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DaemonRequest::onIdentifier);
}

void DaemonRequest::follow(qulonglong requestId)
{
    watchDaemon();
    mRequestId = requestId;
}

void DaemonRequest::watchDaemon()
{
    auto *const service = new QDBusServiceWatcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForUnregistration, this);
    connect(service, &QDBusServiceWatcher::serviceUnregistered, this, &DaemonRequest::onDaemonGone);
}

void DaemonRequest::onIdentifier(QDBusPendingCallWatcher *watcher)
{
    watcher->deleteLater();
    const QDBusPendingReply<qulonglong> reply = *watcher;
    if (reply.isError())
        return end(ExitUnavailable, DaemonProxy::whyUnreachable(reply.error()));
    mRequestId = reply.value();
    if (mEarly.contains(mRequestId))
        finish(mEarly.value(mRequestId));
    else if (mIsToBeCancelled)
        cancel();
}

void DaemonRequest::cancel()
{
    mIsToBeCancelled = true;
    if (mRequestId != 0)
        mProxy->cancelRequest(mAccountId, mRequestId);
}

void DaemonRequest::abandon(const QString &reason)
{
    end(ExitCancelled, reason);
}

bool DaemonRequest::isMine(qulonglong accountId, qulonglong requestId) const
{
    return accountId == mAccountId && requestId == mRequestId && mRequestId != 0;
}

void DaemonRequest::onSyncStarted(qulonglong accountId, qulonglong requestId)
{
    if (!isMine(accountId, requestId) || mIsAtWork)
        return;
    mIsAtWork = true;
    Q_EMIT atWork();
}

void DaemonRequest::onProgress(
    qulonglong accountId, qulonglong requestId, qlonglong maximum, qlonglong current)
{
    if (isMine(accountId, requestId) && maximum > 0)
        Q_EMIT progressed(maximum, current);
}

void DaemonRequest::onFinished(qulonglong accountId, qulonglong requestId, int status)
{
    if (isMine(accountId, requestId))
        finish(status);
    else if (accountId == mAccountId && mRequestId == 0)
        mEarly.insert(requestId, status);
}

void DaemonRequest::finish(int status)
{
    mStatus = status;
    mHasStatus = true;
    if (status == EasRequestStatus::RequestStatusSuccess)
        return end(ExitSuccess, QString());
    if (status != EasRequestStatus::RequestStatusCancelled)
        return end(ExitFailure, StatusText::explanation(status));
    end(ExitCancelled, mIsToBeCancelled ? QStringLiteral("cancelled") : StatusText::explanation(status));
}

void DaemonRequest::onDaemonGone()
{
    end(ExitUnavailable,
        QStringLiteral("the daemon ended before the request did; call again to start it anew"));
}

void DaemonRequest::end(int exitStatus, const QString &error)
{
    if (mHasEnded)
        return;
    mHasEnded = true;
    mExitStatus = exitStatus;
    mError = error;
    Q_EMIT ended();
}

QJsonObject DaemonRequest::describe() const
{
    QJsonObject object;
    if (mRequestId != 0)
        object[QStringLiteral("request")] = QString::number(mRequestId);
    if (mHasStatus) {
        object[QStringLiteral("status")] = mStatus;
        object[QStringLiteral("statusName")] = StatusText::name(mStatus);
    }
    return object;
}
