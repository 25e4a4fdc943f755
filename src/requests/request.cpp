// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/request.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/networkmanager.h"
#include "application/requestmanager.h"
#include "protocol/base/protocolutils.h"
#include "requests/provisionrequest.h"
#include "requests/versionnegotiator.h"

#include <QNetworkReply>
#include <QNetworkSession>

namespace {

constexpr qint64 ExpiredAfterMilliseconds = 300001;

qint64 now()
{
    return Clock::instance().currentDateTimeUtc().toMSecsSinceEpoch();
}

} // namespace

Request::Request(EasAccountId accountId, qulonglong requestId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mId(requestId)
{
    mResendTimer.setSingleShot(true);
    mResendTimer.setInterval(Clock::instance().timerInterval(ProtocolUtils::CommandsRetryTimeout));
    connect(&mResendTimer, &QTimer::timeout, this, &Request::onResendTimer);
    // However a subclass ends, the end is noted here.
    connect(this, &Request::requestCompleted, this, [this] { mEnded = true; });
}

Request::~Request() = default;

EasAccountId Request::accountId() const
{
    return mAccountId;
}

qulonglong Request::id() const
{
    return mId;
}

EasAccount *Request::account() const
{
    return RequestManager::instance()->account(mAccountId);
}

int Request::status() const
{
    return mOutcome.status();
}

void Request::setStatus(int status)
{
    mOutcome.setStatus(status);
}

bool Request::isExpired() const
{
    return mStarted && now() - mStartTime >= ExpiredAfterMilliseconds;
}

bool Request::hasEnded() const
{
    return mEnded;
}

bool Request::successfullyFinished() const
{
    return mOutcome.isSuccess();
}

bool Request::started() const
{
    return mStarted;
}

void Request::onNetworkOperationFinished(QNetworkReply *reply)
{
    if (reply)
        reply->deleteLater();
}

void Request::onNetworkError(int error)
{
    qCWarning(eas()) << "received network error" << error;
    setStatus(error);
}

void Request::onReadyRead()
{
    auto *const reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply)
        return;
    QByteArrayList headers;
    for (const QByteArray &header : reply->rawHeaderList())
        headers.append(header);
    qCDebug(easNetwork()) << "status" << reply->attribute(QNetworkRequest::HttpStatusCodeAttribute)
                          << "data:" << reply->peek(reply->bytesAvailable())
                          << "headers:" << headers.join(", ");
}

QString Request::commandName() const
{
    qCCritical(eas()) << "Unexpected call method";
    return {};
}

void Request::start()
{
    if (refuseBlockedAccount())
        return;
    if (started()) {
        qCWarning(eas()) << "tried to start already started request";
        resetTimeoutFactor();
        return;
    }
    mEnded = false;
    mStartTime = now();
    qCInfo(eas()) << "Start request:" << mId << "for account" << mAccountId << "at" << mStartTime;
    const QNetworkSession *const session =
        RequestManager::instance()->networkManager()->networkSession(mAccountId);
    if (session && session->state() == QNetworkSession::Connected) {
        mStarted = true;
        checkProtocolVersion();
        resetTimeoutFactor();
        return;
    }
    if (session)
        qCWarning(eas()) << "Tried to start request, but network is not available. State:" << session->state()
                         << "error:" << session->error() << "error message:" << session->errorString();
    else
        qCWarning(eas()) << "Tried to start request, but session was nullptr.";
    waitForNetwork();
}

bool Request::refuseBlockedAccount()
{
    EasAccount *const blocked = account();
    if (!blocked || !blocked->isCredentialsNeedUpdate())
        return false;
    qCWarning(eas()) << "Cant start request for blocked account" << mAccountId << ". Credentials need update";
    blocked->credentialsNeedUpdate();
    setStatus(RequestStatusCancelled);
    Q_EMIT requestCompleted(mAccountId, mId);
    return true;
}

void Request::waitForNetwork()
{
    if (RequestManager::instance()->networkManager()->isOnline()) {
        qCWarning(eas()) << "Network is not available yet, but device is in Online state. Trying to execute "
                            "request later.";
        startResendTimer();
        return;
    }
    qCWarning(eas()) << "Tried to start request, but network is not available";
    setStatus(RequestStatusNoNetwork);
    Q_EMIT requestCompleted(mAccountId, mId);
}

void Request::protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersion version)
{
    if (version == ExchangeActiveSync::ProtocolVersionUnknown) {
        if (status() == RequestStatusSuccess)
            setStatus(RequestStatusVersionUnknown);
        reportRequestCompleted();
        return;
    }
    if (isCommandSupported())
        startRequest();
}

bool Request::isCommandSupported()
{
    EasAccount *const offering = account();
    if (offering && offering->commandIsSupported(commandName()))
        return true;
    if (offering)
        qCWarning(eas()) << "Command not supported:" << commandName();
    else
        qCCritical(eas()) << "No account";
    completeWith(RequestStatusCommandNotSupported);
    return false;
}

void Request::startResendTimer()
{
    const int interval = mAttempts.takeDelay();
    mResendTimer.setInterval(Clock::instance().timerInterval(interval));
    qCInfo(eas()) << "timer interval:" << interval;
    mResendTimer.start();
}

void Request::resetTimeoutFactor()
{
    mAttempts.resetDelay();
}

void Request::onResendTimer()
{
    if (mStarted)
        retrySend();
    else
        start();
}

void Request::retrySend()
{
    if (consumeRetry())
        startRequest();
}

bool Request::consumeRetry()
{
    if (!mAttempts.consume()) {
        reportRequestCompleted();
        return false;
    }
    qCInfo(eas()) << "trying to send command again. Attempt: " << mAttempts.used();
    return true;
}

void Request::clearRetries()
{
    mAttempts.reset();
}

void Request::reportRequestCompleted()
{
    mStarted = false;
    if (!mEnded)
        Q_EMIT requestCompleted(mAccountId, mId);
}

void Request::cancel()
{
    qCInfo(eas()) << "Cancel request" << mId;
    if (mEnded)
        return;
    mResendTimer.stop();
    if (mVersionNegotiator) {
        cancelNegotiation();
        return;
    }
    if (mProvisionRequest) {
        mProvisionRequest->cancel();
        return;
    }
    setStatus(RequestStatusCancelled);
    if (!started()) {
        Q_EMIT requestCompleted(mAccountId, mId);
        return;
    }
    // A command that is stopped reports back and ends the request. One that waits for its retry, or none at
    // all, has nothing to report, and the end comes from here.
    cancelRequest();
    if (!mEnded)
        completeCancelled();
}

void Request::cancelNegotiation()
{
    mVersionNegotiator->disconnect(this);
    mVersionNegotiator->stop();
    mVersionNegotiator->deleteLater();
    mVersionNegotiator.clear();
    completeCancelled();
}
