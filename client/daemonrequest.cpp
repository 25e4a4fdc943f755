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
#include <QDateTime>

#include <utility>

DaemonRequest::DaemonRequest(EasAccountId accountId)
    : mAccountId(accountId)
    , mProxy(DaemonProxy::create())
{
    connect(mProxy.get(), &EasDBusInterfaceProxy::requestFinished, this, &DaemonRequest::onFinished);
    connect(mProxy.get(), &EasDBusInterfaceProxy::requestProgress, this, &DaemonRequest::onProgress);
    connect(mProxy.get(), &EasDBusInterfaceProxy::syncStarted, this, &DaemonRequest::onSyncStarted);
    connect(mProxy.get(), &EasDBusInterfaceProxy::provisionRequestFinished, this,
        &DaemonRequest::onProvisionFinished);
    connect(
        mProxy.get(), &EasDBusInterfaceProxy::policyDocumentReceived, this, &DaemonRequest::onPolicyDocument);
    connect(mProxy.get(), &EasDBusInterfaceProxy::getOofFinished, this, &DaemonRequest::onOofState);
    connect(mProxy.get(), &EasDBusInterfaceProxy::attendeesAvailableDataReady, this,
        &DaemonRequest::onAvailability);
    connect(mProxy.get(), &EasDBusInterfaceProxy::searchMessagesFinished, this, &DaemonRequest::onMatches);
    connect(mProxy.get(), &EasDBusInterfaceProxy::findMessagesFinished, this, &DaemonRequest::onMatches);
    connect(mProxy.get(), &EasDBusInterfaceProxy::searchGALFinished, this, &DaemonRequest::onMatches);
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
    const QList<Act> early = mEarly.take(mRequestId);
    for (const Act &act : early)
        act();
    if (mIsToBeCancelled && !mHasEnded)
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

void DaemonRequest::ifMine(qulonglong accountId, qulonglong requestId, const Act &act)
{
    if (accountId != mAccountId)
        return;
    if (mRequestId == 0)
        mEarly[requestId].append(act);
    else if (requestId == mRequestId)
        act();
}

void DaemonRequest::onSyncStarted(qulonglong accountId, qulonglong requestId)
{
    ifMine(accountId, requestId, [this] {
        if (std::exchange(mIsAtWork, true))
            return;
        Q_EMIT atWork();
    });
}

void DaemonRequest::onProgress(
    qulonglong accountId, qulonglong requestId, qlonglong maximum, qlonglong current)
{
    ifMine(accountId, requestId, [this, maximum, current] {
        if (maximum > 0)
            Q_EMIT progressed(maximum, current);
    });
}

void DaemonRequest::onPolicyDocument(qulonglong accountId, qulonglong requestId, const QVariantMap &document)
{
    ifMine(accountId, requestId, [this, document] { Q_EMIT policyReceived(document); });
}

void DaemonRequest::onProvisionFinished(
    qulonglong accountId, qulonglong requestId, int status, const FailedPolicyMap &failed, int policyStatus)
{
    ifMine(accountId, requestId, [this, status, failed, policyStatus] {
        Q_EMIT policyJudged(failed, policyStatus);
        finish(status);
    });
}

void DaemonRequest::onOofState(qulonglong accountId, qulonglong requestId, bool enabled,
    bool timeRangeEnabled, const QString &startTime, const QString &endTime, const QString &internalMessage,
    bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage)
{
    EasOofContainer state;
    state.setOofEnabled(enabled);
    state.setTimeRangeEnabled(timeRangeEnabled);
    state.setStartTime(QDateTime::fromString(startTime, Qt::ISODate));
    state.setEndTime(QDateTime::fromString(endTime, Qt::ISODate));
    state.setInternalMessage(internalMessage);
    state.setExternalMessageEnabled(externalMessageEnabled);
    state.setExternalMessageToAnyone(externalMessageToAnyone);
    state.setExternalMessage(externalMessage);
    ifMine(accountId, requestId, [this, state] { Q_EMIT oofStateReceived(state); });
}

void DaemonRequest::onAvailability(
    qulonglong requestId, const QStringList &emails, const QStringList &names, const QStringList &statuses)
{
    // The one signal that does not name the account.
    ifMine(mAccountId, requestId, [this, emails, names, statuses] {
        if (!emails.isEmpty()) {
            Q_EMIT availabilityReceived(emails, names, statuses);
            return end(ExitSuccess, QString());
        }
        if (mIsToBeCancelled)
            return end(ExitCancelled, QStringLiteral("cancelled"));
        end(ExitFailure,
            QStringLiteral("The server tells nothing of these people, or it could not be asked. The daemon's "
                           "log tells more (fennel-easctl log info)."));
    });
}

void DaemonRequest::onMatches(
    qulonglong accountId, qulonglong requestId, int status, uint count, const QList<qulonglong> &matches)
{
    ifMine(accountId, requestId, [this, status, count, matches] {
        if (status == EasRequestStatus::RequestStatusSuccess)
            Q_EMIT matchesReceived(matches, count);
        finish(status);
    });
}

void DaemonRequest::onFinished(qulonglong accountId, qulonglong requestId, int status)
{
    ifMine(accountId, requestId, [this, status] { finish(status); });
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
