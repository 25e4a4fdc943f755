// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/pingrequest.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/pingcommand.h"
#include "requests/pingfolders.h"
#include "requests/provisiondemand.h"
#include "requests/statustable.h"

namespace {

enum class PingVerb {
    Reping,
    TakeChanges,
    TakeHeartbeat,
    TakeFewerFolders,
    RepeatLater,
    /** The same without newer values. */
    RepeatUnchangedLater,
    Complete,
    Cancel
};
using PingStatusTable = StatusTable<PingVerb>;

constexpr char ServerErrorText[] = "server error. We shouldn't retry later. Completing request";
constexpr char RetryLaterText[] = "we should try to send command again later. Timeout (in mseconds): 5000";
static_assert(ProtocolUtils::CommandsRetryTimeout == 5000, "the text names the delay");

// Demands for provisioning have no row: the Ping ends, and the next sync meets them.
constexpr PingStatusTable::Row rows[] = {
    { EasRequestStatus::RequestStatusCancelled, QtInfoMsg, "Request was canceled", PingVerb::Complete },
    { ProtocolUtils::TransportStatusCancelled, QtInfoMsg, "Operation was canceled", PingVerb::Cancel },
    { Eas::HeartbeatIntervalExpiredBeforeAnyChangesOccurred, QtInfoMsg, "We should reping",
        PingVerb::Reping },
    { Eas::ChangesOccurred, QtInfoMsg, "Changes occurred in at least one of the monitored folders.",
        PingVerb::TakeChanges },
    { Eas::OmittedRequiredParametersInRequest, QtWarningMsg,
        "The Ping command request did not specify all the necessary parameters.", PingVerb::RepeatLater },
    { Eas::PingCommandRequestSyntaxError, QtWarningMsg,
        "Syntax error in Ping command request. We should try to send command again later.",
        PingVerb::RepeatLater },
    { Eas::HeartbeatIntervalIsOutsideOfRange, QtWarningMsg, nullptr, PingVerb::TakeHeartbeat },
    { Eas::TooManyNumberOfFoldersToMonitor, QtWarningMsg, "Too Many Number Of Folders To Monitor",
        PingVerb::TakeFewerFolders },
    { Eas::FolderHierarchySyncRequired, QtInfoMsg,
        "The folder hierarchy is out of date; a folder hierarchy sync is required.", PingVerb::Complete },
    { Eas::ServerError, QtWarningMsg, "An error occurred on the server.", PingVerb::RepeatLater },
    { Eas::CommonStatusInvalidIds, QtWarningMsg, ServerErrorText, PingVerb::Complete },
    { Eas::CommonStatusServerError, QtWarningMsg, ServerErrorText, PingVerb::Complete },
    { Eas::CommonStatusHttpServerError, QtWarningMsg, ServerErrorText, PingVerb::Complete },
    { Eas::CommonStatusServerErrorRetryLater, QtWarningMsg, RetryLaterText, PingVerb::RepeatLater },
    { Eas::CommonStatusHttpServerErrorRetryLater, QtWarningMsg, RetryLaterText, PingVerb::RepeatLater },
    { ProtocolUtils::TransportStatusBase + QNetworkReply::NetworkSessionFailedError, QtWarningMsg,
        "Network session failed error (network switch probably happened). Trying to resend",
        PingVerb::RepeatUnchangedLater },
};
constexpr PingStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

/** Seconds after which no answer counts as too quick. */
constexpr int LongEnough = 30;

} // namespace

PingRequest::PingRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
{
    mPauseTimer.setSingleShot(true);
    connect(&mPauseTimer, &QTimer::timeout, this, &PingRequest::send);
}

QString PingRequest::commandName() const
{
    return ProtocolUtils::CommandPing;
}

PingCommand *PingRequest::pingCommand() const
{
    return qobject_cast<PingCommand *>(currentCommand());
}

void PingRequest::startRequest()
{
    qCDebug(eas()) << "startRequest";
    EasAccount *const pinged = account();
    if (!pinged) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    const Lookup<QList<PingFolderItem>> folders = PingFolders(*pinged).getDefaultSynchronizedFolders(true);
    if (!folders)
        return completeWith(RequestStatusInternalError);
    mFolders = *folders;
    newCommand<PingCommand>();
    updateCommand();
    send();
}

void PingRequest::updateCommand()
{
    PingCommand *const command = pingCommand();
    if (!command) {
        qCCritical(eas()) << "Command is null";
        return;
    }
    const EasAccount *const pinged = account();
    if (!pinged) {
        qCCritical(eas()) << "No account";
        return;
    }
    command->setHeartbeatInterval(pinged->heartbeatInterval());
    command->setMaxFolders(mMaxFolders);
    command->setResponseFolders(mResponseFolders);
    command->setFolders(mFolders);
}

void PingRequest::send()
{
    PingCommand *const command = pingCommand();
    if (!command)
        return;
    mSent = Clock::instance().currentDateTimeUtc();
    mAskedHeartbeat = command->heartbeatInterval();
    Q_EMIT waiting();
    command->start();
}

void PingRequest::cancelRequest()
{
    mPauseTimer.stop();
    CommandRequest::cancelRequest();
}

void PingRequest::retrySend()
{
    if (mRepeatsUncounted) {
        mRepeatsUncounted = false;
        return send();
    }
    if (attempts().spent()) {
        qCWarning(eas()) << " retrySend failed";
        return complete();
    }
    consumeRetry();
    if (pingCommand())
        return send();
    qCWarning(eas()) << "command is null, restarting request";
    startRequest();
}

void PingRequest::onCommandFinished(bool success)
{
    qCDebug(eas()) << "ping command finished: " << success;
    const PingCommand *const command = pingCommand();
    if (!command) {
        qCCritical(eas()) << "Command is null";
        return completeWith(RequestStatusInternalError);
    }
    qCInfo(eas()) << " mPingCommand->status():" << command->status();
    setStatus(command->status());
    // A client certificate that cannot be used, a request that could not be built.
    if (!success && command->status() == RequestStatusSuccess)
        setStatus(RequestStatusInternalError);
    mDemandsProvisioning = isProvisioningDemanded(*command);
    if (status() != ProtocolUtils::TransportStatusCancelled)
        Q_EMIT answered(status());
    if (command->isGivenUp()) {
        updateCommand();
        return retrySend();
    }
    handleStatus(status());
}

void PingRequest::handleStatus(int status)
{
    const PingStatusTable::Row *const row = statuses.find(status);
    if (!row) {
        qCWarning(eas()) << " unhandled error with status:" << status;
        return complete();
    }
    logStatusText(row->level, row->text);
    switch (row->verb) {
    case PingVerb::Reping:
        return reping();
    case PingVerb::TakeChanges:
        return takeChanges();
    case PingVerb::TakeHeartbeat:
        return takeHeartbeat();
    case PingVerb::TakeFewerFolders:
        return takeFewerFolders();
    case PingVerb::RepeatLater:
        if (status == Eas::OmittedRequiredParametersInRequest)
            qCWarning(eas()) << "mHeartbeatInterval:" << mAskedHeartbeat
                             << "mFolders.size:" << mFolders.size();
        return repeatLater();
    case PingVerb::RepeatUnchangedLater:
        return startResendTimer();
    case PingVerb::Complete:
        return complete();
    case PingVerb::Cancel:
        return completeCancelled();
    }
}

bool PingRequest::wasTooQuick() const
{
    const qint64 elapsed = mSent.msecsTo(Clock::instance().currentDateTimeUtc());
    return elapsed < LongEnough * 1000 && elapsed < mAskedHeartbeat * 1000 / 2;
}

void PingRequest::reping()
{
    clearRetries();
    resetTimeoutFactor();
    mHeartbeatTaken = false;
    updateCommand();
    if (!wasTooQuick()) {
        mQuickAnswers.reset();
        return send();
    }
    const int pause = mQuickAnswers.take();
    qCWarning(eas()) << "the server has not waited as it was asked to, pausing for" << pause << "s";
    mPauseTimer.start(Clock::instance().timerInterval(pause * 1000, Clock::Timer::PushPause));
}

void PingRequest::takeChanges()
{
    mResponseFolders = pingCommand()->responseFolders();
    complete();
}

void PingRequest::repeatLater()
{
    updateCommand();
    startResendTimer();
}

void PingRequest::takeHeartbeat()
{
    EasAccount *const pinged = account();
    if (!pinged) {
        qCCritical(eas()) << "No account";
        return complete();
    }
    const int wanted = pingCommand()->heartbeatInterval();
    const int heartbeat =
        wanted > 0 ? qMin(wanted, ProtocolUtils::LongestHeartbeat) : pinged->heartbeatInterval();
    qCWarning(eas()) << "heartbeat interval is outside the allowed range. Sending a new Ping with interval"
                     << heartbeat;
    pinged->setHeartbeatInterval(heartbeat);
    // A server that refuses its own value, too, would be asked for ever.
    mRepeatsUncounted = wanted > 0 && !mHeartbeatTaken;
    mHeartbeatTaken = true;
    repeatLater();
}

void PingRequest::takeFewerFolders()
{
    mMaxFolders = pingCommand()->maxFolders();
    EasAccount *const pinged = account();
    const auto folders = pinged ? PingFolders(*pinged).getDefaultSynchronizedFolders(false)
                                : Lookup<QList<PingFolderItem>>::unread();
    if (!folders)
        return completeWith(RequestStatusInternalError);
    mFolders = *folders;
    repeatLater();
}
