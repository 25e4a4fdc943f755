// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/provisionrequest.h"

#include "application/account/easaccount.h"
#include "application/account/provisionmanager.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "easitems/containers/provisiondocfields.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/requestheaders.h"
#include "requests/statustable.h"

namespace {

enum class Verb {
    Proceed,
    Succeed, ///< ends with RequestStatusSuccess
    FailInternally, ///< ends with RequestStatusInternalError
    BlameRequest, ///< ends with RequestStatusBadRequest
    RefusePolicy, ///< ends with RequestStatusPolicyRefused
    RetryLater,
    RefreshDeviceAndRetryLater
};
using ReplyTable = StatusTable<Verb>;

// 10000 plus a network error, named after HTTP statuses; a reply that was read never has these.
constexpr int TransportServerError = ProtocolUtils::TransportStatusBase + 500;
constexpr int TransportRetryLater = ProtocolUtils::TransportStatusBase + 503;

constexpr char ServerErrorText[] = "server error. We shouldn't retry later. Completing request";
constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char RetryLaterText[] = "we should try to send command again later. Timeout (in mseconds): 5000";
static_assert(ProtocolUtils::CommandsRetryTimeout == 5000, "the text names the delay");
constexpr char UndefinedText[] = "Provision status undefined.";
constexpr char KeyFieldText[] = "The device is not provisionable. Include Policy key field";

/** What the status of any reply means. */
constexpr ReplyTable::Row replyRows[] = {
    { Eas::ProvisionStatusSuccess, QtInfoMsg, nullptr, Verb::Proceed },
    { Eas::ProvisionStatusProtocolError, QtWarningMsg, "Syntax error in the Provision command request",
        Verb::BlameRequest },
    { Eas::ProvisionStatusServerError, QtWarningMsg, "An error occurred on the server.",
        Verb::FailInternally },
    { Eas::ProvisionStatusUndefined, QtInfoMsg, UndefinedText, Verb::FailInternally },
    { Eas::CommonStatusInvalidIds, QtCriticalMsg, ServerErrorText, Verb::FailInternally },
    { Eas::CommonStatusServerError, QtCriticalMsg, ServerErrorText, Verb::FailInternally },
    { TransportServerError, QtCriticalMsg, ServerErrorText, Verb::FailInternally },
    { Eas::CommonStatusInvalidDeviceId, QtCriticalMsg, DeviceText, Verb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtCriticalMsg, DeviceText, Verb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusServerErrorRetryLater, QtWarningMsg, RetryLaterText, Verb::RetryLater },
    { TransportRetryLater, QtWarningMsg, RetryLaterText, Verb::RetryLater },
    { Eas::CommonStatusLegacyDeviceOnStrictPolicy, QtInfoMsg, KeyFieldText, Verb::Succeed },
};
constexpr ReplyTable replies(replyRows);
static_assert(replies.namesEachStatusOnce());

/** What else it means once the server knows the verdict. */
constexpr ReplyTable::Row verdictRows[] = {
    { Eas::ProvisionStatusUndefined, QtInfoMsg, UndefinedText, Verb::Succeed },
    { Eas::CommonStatusDeviceNotFullyProvisionable, QtInfoMsg,
        "The client cannot fully comply with all requirements of the policy", Verb::Succeed },
    { Eas::CommonStatusExtManagedDevicesNotAllowed, QtInfoMsg, "The client is externally managed",
        Verb::Succeed },
};
constexpr ReplyTable verdictReplies(verdictRows);
static_assert(verdictReplies.namesEachStatusOnce());

/** Why there is no policy where one should be; all of them end the exchange. */
constexpr ReplyTable::Row policyRows[] = {
    { EasPolicyContainer::ResponseStatusUnknownType, QtInfoMsg, "The policy type is unknown",
        Verb::RefusePolicy },
    { EasPolicyContainer::ResponseStatusCorrupt, QtInfoMsg, "The policy data on the server is corrupt",
        Verb::RefusePolicy },
    { EasPolicyContainer::ResponseStatusOutOfDate, QtInfoMsg,
        "The client is trying to acknowledge an out-of-date or invalid policy", Verb::RefusePolicy },
};
constexpr ReplyTable policyStatuses(policyRows);
static_assert(policyStatuses.namesEachStatusOnce());

bool isSupportedType(const EasPolicyContainer &policy)
{
    return policy.policyType().compare(ProtocolUtils::PolicyType, Qt::CaseInsensitive) == 0;
}

} // namespace

/** One form of the command: what its reply means, and what follows a good one. */
struct ProvisionRequest::Step
{
    ProvisionCommand::ProvisionCommandType type;
    /** Rows that come before those of all forms. */
    ReplyTable ownReplies;
    /** Whether the request ends with the status of the reply, whatever it is, or as the row says. */
    bool endsAsReplied;
    void (ProvisionRequest::*proceed)();
};

const ProvisionRequest::Step ProvisionRequest::steps[] = {
    { ProvisionCommand::InitialPolicyKey, ReplyTable(), false, &ProvisionRequest::handleInitialPolicy },
    { ProvisionCommand::InitialRemoteWipe, ReplyTable(), true, &ProvisionRequest::handleInitialRemoteWipe },
    { ProvisionCommand::AcknowledgePolicyKey, verdictReplies, false,
        &ProvisionRequest::handleAcknowledgePolicy },
    { ProvisionCommand::AcknowledgeRemoteWipe, ReplyTable(), true,
        &ProvisionRequest::handleAcknowledgeRemoteWipe },
};

ProvisionRequest::ProvisionRequest(
    EasAccountId accountId, qulonglong requestId, ProvisionRequestType requestType, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
    , mRequestType(requestType)
    , mCommandType(static_cast<ProvisionCommand::ProvisionCommandType>(requestType))
{
}

const ProvisionRequest::Step &ProvisionRequest::step() const
{
    return steps[mCommandType];
}

bool ProvisionRequest::successfullyFinished() const
{
    return status() == Eas::ProvisionStatusSuccess;
}

bool ProvisionRequest::policiesAreSettled() const
{
    return mRequestType == InitialPolicyKey && status() == RequestStatusSuccess
        && (mPolicyStatus == PolicyStatusNone || mPolicyStatus == PolicyStatusKeyStored);
}

QString ProvisionRequest::commandName() const
{
    return ProtocolUtils::CommandProvision;
}

bool ProvisionRequest::isCommandSupported()
{
    EasAccount *const offering = account();
    if (!offering) {
        qCCritical(eas()) << "No account";
        completeWith(RequestStatusInternalError);
        return false;
    }
    if (offering->commandIsSupported(ProtocolUtils::CommandProvision))
        return true;
    endWithoutPolicy();
    return false;
}

ProvisionCommand *ProvisionRequest::provisionCommand() const
{
    return static_cast<ProvisionCommand *>(currentCommand());
}

ProvisionCommand *ProvisionRequest::newProvisionCommand(ProvisionCommand::ProvisionCommandType commandType)
{
    mCommandType = commandType;
    return newCommand<ProvisionCommand>(commandType);
}

void ProvisionRequest::startRequest()
{
    if (mRequestType != InitialPolicyKey && mRequestType != InitialRemoteWipe) {
        qCWarning(eas()) << "Invalid Provision RequestType";
        return completeWith(RequestStatusInternalError);
    }
    newProvisionCommand(static_cast<ProvisionCommand::ProvisionCommandType>(mRequestType))->start();
}

void ProvisionRequest::cancelRequest()
{
    qCInfo(eas()) << "cancel provision request";
    CommandRequest::cancelRequest();
}

void ProvisionRequest::retrySend()
{
    if (!consumeRetry())
        return;
    if (currentCommand())
        return currentCommand()->start();
    qCWarning(eas()) << "command is null, restarting request";
    startRequest();
}

void ProvisionRequest::reportRequestCompleted()
{
    EasAccount *const wiped = account();
    if (!hasEnded() && mCommandType == ProvisionCommand::AcknowledgeRemoteWipe && wiped)
        wiped->remoteWipeAcknowledged();
    CommandRequest::reportRequestCompleted();
}

// The replies

void ProvisionRequest::onCommandFinished(bool success)
{
    qCInfo(eas()) << "Provision command finished: " << (success ? "true" : "false");
    const ProvisionCommand *const command = provisionCommand();
    if (!command) {
        qCCritical(eas()) << "current command is null";
        return completeWith(RequestStatusInternalError);
    }
    if (success)
        return handleResponse(*command);
    if (command->status() == ProtocolUtils::TransportStatusCancelled)
        return completeCancelled();
    const bool isUntold = command->status() == RequestStatusSuccess;
    setStatus(isUntold ? int(RequestStatusInternalError) : command->status());
    qCWarning(eas()) << "Provision command failed with status" << status();
    complete();
}

void ProvisionRequest::handleResponse(const ProvisionCommand &command)
{
    if (step().endsAsReplied)
        setStatus(command.status());
    else
        mPolicyStatus = command.status();
    const ReplyTable::Row *row = step().ownReplies.find(command.status());
    if (!row)
        row = replies.find(command.status());
    if (!row)
        return endReplied(RequestStatusPolicyRefused);
    logStatusText(row->level, row->text);
    switch (row->verb) {
    case Verb::Proceed:
        clearRetries();
        resetTimeoutFactor();
        return (this->*step().proceed)();
    case Verb::RefreshDeviceAndRetryLater:
        DeviceInformation::refreshDeviceId();
        return startResendTimer();
    case Verb::RetryLater:
        return startResendTimer();
    case Verb::Succeed:
        return endReplied(RequestStatusSuccess);
    case Verb::FailInternally:
        return endReplied(RequestStatusInternalError);
    case Verb::BlameRequest:
        return endReplied(RequestStatusBadRequest);
    case Verb::RefusePolicy:
        return endReplied(RequestStatusPolicyRefused);
    }
}

void ProvisionRequest::endReplied(int status)
{
    step().endsAsReplied ? complete() : completeWith(status);
}

bool ProvisionRequest::mayTakePolicies()
{
    setStatus(RequestStatusSuccess);
    if (orderRemoteWipe(*provisionCommand()))
        return false;
    if (account())
        return true;
    qCCritical(eas()) << "No account";
    completeWith(RequestStatusInternalError);
    return false;
}

void ProvisionRequest::handleInitialPolicy()
{
    if (!mayTakePolicies())
        return;
    const QList<EasPolicyContainer> policies = provisionCommand()->policies();
    if (policies.isEmpty()) {
        qCInfo(eas()) << "No Policies to apply";
        return endWithoutPolicy();
    }
    for (const EasPolicyContainer &policy : policies) {
        if (policy.status() != EasPolicyContainer::ResponseStatusSuccess)
            return endWithPolicyStatus(policy.status());
        if (!isSupportedType(policy))
            qCInfo(eas()) << "Not supported" << policy.policyType() << "policy type";
        else if (applyPolicy(policy))
            return;
    }
    completeWith(RequestStatusPolicyRefused);
}

bool ProvisionRequest::applyPolicy(const EasPolicyContainer &policy)
{
    qCInfo(eas()) << "Try to apply policy settings";
    Q_EMIT policyDocumentReceived(accountId(), id(), ProvisionDocFields::values(policy.data()));
    EasAccount *const provisioned = account();
    const ProvisionManager *const manager = provisioned ? provisioned->provisionManager() : nullptr;
    if (!manager) {
        qCCritical(eas()) << "nothing judges the policies of account" << accountId();
        completeWith(RequestStatusInternalError);
        return true;
    }
    const EasPolicyContainer::RequestStatus verdict = manager->verifyPolicy(policy.data(), mFailedPolicies);
    if (verdict == EasPolicyContainer::RequestStatusUndefined)
        return false;
    acknowledgePolicy(verdict, policy.policyKey());
    return true;
}

void ProvisionRequest::acknowledgePolicy(EasPolicyContainer::RequestStatus verdict, const QString &policyKey)
{
    ProvisionCommand *const command = newProvisionCommand(ProvisionCommand::AcknowledgePolicyKey);
    command->setResultStatus(QString::number(verdict));
    command->setPolicyKey(policyKey);
    command->start();
}

void ProvisionRequest::handleAcknowledgePolicy()
{
    if (!mayTakePolicies())
        return;
    const QList<EasPolicyContainer> policies = provisionCommand()->policies();
    if (policies.isEmpty()) {
        qCCritical(eas()) << "No Policy container in response";
        return completeWith(RequestStatusInternalError);
    }
    qCInfo(eas()) << "We received" << policies.size() << "policies";
    const EasPolicyContainer &policy = policies.first();
    if (policy.status() != EasPolicyContainer::ResponseStatusSuccess)
        return endWithPolicyStatus(policy.status());
    if (!isSupportedType(policy)) {
        qCCritical(eas()) << "Not supported" << policy.policyType() << "policy type";
        return completeWith(RequestStatusInternalError);
    }
    acceptPolicyKey(policy.policyKey());
    complete();
}

void ProvisionRequest::acceptPolicyKey(const QString &policyKey)
{
    mPolicyStatus = PolicyStatusNoKey;
    if (policyKey.isEmpty())
        return;
    // It would stand in a header of each command, and none could be sent.
    if (!RequestHeaders::fits(policyKey.toUtf8())) {
        qCWarning(eas()) << "Refused a policy key with a line break";
        return;
    }
    account()->setPolicyKey(policyKey);
    mPolicyStatus = PolicyStatusKeyStored;
}

void ProvisionRequest::endWithPolicyStatus(EasPolicyContainer::ResponseStatus policyStatus)
{
    if (policyStatus == EasPolicyContainer::ResponseStatusNoPolicy) {
        qCInfo(eas()) << "No policy";
        account()->setPolicyKey(QString());
        return endWithoutPolicy();
    }
    if (const ReplyTable::Row *const row = policyStatuses.find(policyStatus))
        logStatusText(row->level, row->text);
    else
        qCInfo(eas()) << "Invalid policyStatus";
    completeWith(RequestStatusPolicyRefused);
}

void ProvisionRequest::endWithoutPolicy()
{
    mPolicyStatus = PolicyStatusNone;
    completeWith(RequestStatusSuccess);
}

// The wipe

void ProvisionRequest::handleInitialRemoteWipe()
{
    if (orderRemoteWipe(*provisionCommand()))
        return;
    qCInfo(eas()) << "Don't need Remote Wipe";
    complete();
}

bool ProvisionRequest::orderRemoteWipe(const ProvisionCommand &command)
{
    const bool ofDevice = command.remoteWipeTagPresence();
    if (!ofDevice && !command.accountOnlyRemoteWipeTagPresence())
        return false;
    EasAccount *const wiped = account();
    if (!wiped) {
        qCCritical(eas()) << "account object is null";
        completeWith(RequestStatusInternalError);
        return true;
    }
    ProvisionCommand *const acknowledgement = newProvisionCommand(ProvisionCommand::AcknowledgeRemoteWipe);
    acknowledgement->setAccountOnlyRemoteWipe(!ofDevice);
    const bool isRecorded = wiped->remoteWipeRequested();
    acknowledgement->setResultStatus(QString::number(isRecorded ? 1 : 2));
    acknowledgement->start();
    return true;
}

void ProvisionRequest::handleAcknowledgeRemoteWipe()
{
    if (!provisionCommand()->remoteWipeTagPresence())
        qCInfo(eas()) << "Remote Wipe succesfull finished";
    completeWith(RequestStatusWipeAcknowledged);
}
