// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/request.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/engine.h"
#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "requests/networkgate.h"
#include "requests/provisiondemands.h"
#include "requests/provisionrequest.h"
#include "requests/versionnegotiator.h"

#include <QNetworkReply>

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
    , mDemands(
          new ProvisionDemands(this, [this](bool remoteWipe) { return createProvisionRequest(remoteWipe); }))
{
    mResendTimer.setSingleShot(true);
    mResendTimer.setInterval(
        Clock::instance().timerInterval(ProtocolUtils::CommandsRetryTimeout, Clock::Timer::Resend));
    connect(&mResendTimer, &QTimer::timeout, this, &Request::onResendTimer);
    connect(mDemands, &ProvisionDemands::over, this, &Request::onDemandsOver);
}

Request::~Request() = default;

EasAccount *Request::account() const
{
    return Engine::accountOf(this, mAccountId);
}

bool Request::isExpired() const
{
    return isUnderWay() && now() - mStartTime >= ExpiredAfterMilliseconds;
}

bool Request::isUnderWay() const
{
    return mState != State::Idle && mState != State::WaitingForNetwork && mState != State::Ended;
}

bool Request::successfullyFinished() const
{
    return mOutcome.isSuccess();
}

bool Request::started() const
{
    return isUnderWay();
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

// The gates

void Request::start()
{
    if (hasEnded()) {
        mState = State::Idle;
        mDemands->reset();
    }
    if (refuseWipedAccount() || refuseBlockedAccount())
        return;
    if (isUnderWay()) {
        qCWarning(eas()) << "tried to start already started request";
        resetTimeoutFactor();
        return;
    }
    mResendTimer.stop();
    mStartTime = now();
    qCInfo(eas()) << "Start request:" << mId << "for account" << mAccountId << "at" << mStartTime;
    switch (NetworkGate::of(Engine::of(this), mAccountId)) {
    case NetworkGate::Open:
        mState = State::Running;
        checkProtocolVersion();
        return resetTimeoutFactor();
    case NetworkGate::OpensLater:
        mState = State::WaitingForNetwork;
        return startResendTimer();
    case NetworkGate::Closed:
        return finishWith(RequestStatusNoNetwork);
    }
}

bool Request::refuseWipedAccount()
{
    const EasAccount *const wiped = account();
    if (!wiped || !wiped->isRemoteWipeRequested())
        return false;
    qCWarning(eas()) << "Cant start request for account" << mAccountId << ". Its wipe was ordered";
    finishWith(RequestStatusWipeAcknowledged);
    return true;
}

bool Request::refuseBlockedAccount()
{
    EasAccount *const blocked = account();
    if (!blocked || !blocked->isCredentialsNeedUpdate())
        return false;
    qCWarning(eas()) << "Cant start request for blocked account" << mAccountId << ". Credentials need update";
    blocked->credentialsNeedUpdate();
    finishWith(RequestStatusCancelled);
    return true;
}

void Request::checkProtocolVersion()
{
    const EasAccount *const versioned = account();
    if (!versioned) {
        qCCritical(eas()) << "No account object for account:" << mAccountId;
        setStatus(RequestStatusInternalError);
        protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersionUnknown);
        return;
    }
    if (versioned->protocolVersion() != ExchangeActiveSync::ProtocolVersionUnknown) {
        protocolVersionConfirmed(versioned->protocolVersion());
        return;
    }
    if (mVersionNegotiator)
        return;
    mState = State::Negotiating;
    mVersionNegotiator = new VersionNegotiator(mAccountId, this);
    connect(mVersionNegotiator, &VersionNegotiator::finished, this, &Request::onVersionNegotiationReady);
    mVersionNegotiator->start();
}

void Request::onVersionNegotiationReady(bool success)
{
    EasAccount *const versioned = account();
    if (!versioned || !mVersionNegotiator)
        return completeWith(RequestStatusInternalError);
    VersionNegotiator &negotiator = *mVersionNegotiator;
    mVersionNegotiator.clear();
    negotiator.deleteLater();
    setStatus(negotiator.status());
    if (success)
        return protocolVersionConfirmed(negotiator.settle(*versioned));
    if (status() == ProtocolUtils::TransportStatusCancelled)
        setStatus(RequestStatusCancelled);
    else if (successfullyFinished()) // no source could even be asked, for want of a client certificate say
        setStatus(RequestStatusInternalError);
    reportRequestCompleted();
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
        run();
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

void Request::run()
{
    mState = State::Running;
    startRequest();
}

// Attempts

void Request::startResendTimer()
{
    if (hasEnded())
        return;
    mState = isUnderWay() ? State::WaitingToRetry : State::WaitingForNetwork;
    const int interval = mAttempts.takeDelay();
    mResendTimer.setInterval(Clock::instance().timerInterval(interval, Clock::Timer::Resend));
    qCInfo(eas()) << "timer interval:" << interval;
    mResendTimer.start();
}

void Request::resetTimeoutFactor()
{
    mAttempts.resetDelay();
}

void Request::onResendTimer()
{
    if (mState == State::WaitingForNetwork)
        return start();
    if (mState != State::WaitingToRetry)
        return;
    mState = State::Running;
    retrySend();
}

void Request::retrySend()
{
    if (consumeRetry())
        run();
}

bool Request::consumeRetry()
{
    if (!mAttempts.consume()) {
        qCWarning(eas()) << "no more attempts, failing request";
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

// Provisioning

bool Request::checkProvisionStatus(BaseProtocolCommand *command)
{
    if (!command) {
        qCCritical(eas()) << "Command is null!";
        return false;
    }
    if (!mDemands->take(*command))
        return false;
    mState = State::Paused;
    return true;
}

void Request::startProvisionRequest(bool remoteWipe)
{
    mState = State::Paused;
    mDemands->startProvisionRequest(remoteWipe);
}

ProvisionRequest *Request::createProvisionRequest(bool remoteWipe)
{
    return new ProvisionRequest(mAccountId, mId,
        remoteWipe ? ProvisionRequest::InitialRemoteWipe : ProvisionRequest::InitialPolicyKey, this);
}

void Request::onDemandsOver(bool isMet, int status)
{
    mState = State::Running;
    setStatus(status);
    resumeRequest(isMet);
}

void Request::resumeRequest(bool success)
{
    qCInfo(eas()) << "Resume request. Provision request successfully finished:"
                  << (success ? "true" : "false");
    success ? run() : finish();
}

// The end

void Request::complete()
{
    reportRequestCompleted();
}

void Request::completeWith(int status)
{
    setStatus(status);
    reportRequestCompleted();
}

void Request::completeCancelled()
{
    completeWith(RequestStatusCancelled);
}

void Request::reportRequestCompleted()
{
    finish();
}

void Request::finishWith(int status)
{
    setStatus(status);
    finish();
}

void Request::finish()
{
    if (hasEnded())
        return;
    mState = State::Ended;
    mResendTimer.stop();
    mDemands->stop();
    Q_EMIT requestCompleted(mAccountId, mId);
}

void Request::cancel()
{
    qCInfo(eas()) << "Cancel request" << mId;
    switch (mState) {
    case State::Ended:
        return;
    case State::Idle:
    case State::WaitingForNetwork:
        return finishWith(RequestStatusCancelled);
    case State::Negotiating:
        mVersionNegotiator->disconnect(this);
        mVersionNegotiator->stop();
        mVersionNegotiator->deleteLater();
        mVersionNegotiator.clear();
        return completeCancelled();
    case State::Paused:
        if (!mDemands->cancel())
            completeCancelled();
        return;
    case State::Running:
    case State::WaitingToRetry:
        break;
    }
    mResendTimer.stop();
    setStatus(RequestStatusCancelled);
    // A command that is stopped reports back and ends the request. One that waits for its retry, or none at
    // all, has nothing to report, and the end comes from here.
    cancelRequest();
    if (!hasEnded())
        completeCancelled();
}
