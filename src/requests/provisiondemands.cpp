// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/provisiondemands.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "requests/provisionrequest.h"
#include "requests/request.h"

namespace {

/** The first demand of a request, and as many more as a step has retries. */
constexpr int MostDemands = 1 + ProtocolUtils::CommandMaxRetriesCount;

} // namespace

ProvisionDemands::ProvisionDemands(Request *request, const Factory &factory)
    : QObject(request)
    , mRequest(*request)
    , mFactory(factory)
    , mAttempts(MostDemands)
{
    mTimer.setSingleShot(true);
    connect(&mTimer, &QTimer::timeout, this, &ProvisionDemands::meet);
}

ProvisionDemands::~ProvisionDemands() = default;

void ProvisionDemands::reset()
{
    mAttempts.reset();
    mIsUnavailable = false;
}

bool ProvisionDemands::take(const BaseProtocolCommand &command)
{
    mStatus = command.status();
    mDemand = ProvisionDemand::None;
    if (command.status() == ProtocolUtils::TransportStatusUnavailable) {
        // An unavailable server may mean a wipe, unless the device has a policy key, which it knows. It is
        // asked once; one that goes on like that is out of service.
        const EasAccount *const account = mRequest.account();
        const bool isKnown = account && !account->policyKey().isEmpty();
        if (isKnown || mIsUnavailable)
            return false;
        mIsUnavailable = true;
    }
    mDemand = provisionDemand(command, mRequest.accountId());
    if (mDemand == ProvisionDemand::None)
        return false;
    mTimer.start(0);
    return true;
}

void ProvisionDemands::meet()
{
    if (!mAttempts.consume()) {
        qCWarning(eas()) << "no more attempts, failing request";
        Q_EMIT over(false, mStatus);
        return;
    }
    if (mDemand != ProvisionDemand::DefaultKey)
        return startProvisionRequest(mDemand == ProvisionDemand::Wipe);
    if (EasAccount *const account = mRequest.account())
        account->setPolicyKey(ProtocolUtils::DefaultPolicyKey);
    Q_EMIT over(true, EasRequestStatus::RequestStatusSuccess);
}

void ProvisionDemands::startProvisionRequest(bool remoteWipe)
{
    if (mProvisionRequest) {
        mProvisionRequest->disconnect(this);
        mProvisionRequest->cancel();
        mProvisionRequest->deleteLater();
    }
    mProvisionRequest = mFactory(remoteWipe);
    connect(
        mProvisionRequest, &Request::requestCompleted, this, &ProvisionDemands::onProvisionRequestCompleted);
    connect(mProvisionRequest, &Request::policyDocumentReceived, &mRequest, &Request::policyDocumentReceived);
    mProvisionRequest->start();
}

bool ProvisionDemands::cancel()
{
    if (!mProvisionRequest)
        return false;
    mProvisionRequest->cancel();
    return true;
}

void ProvisionDemands::onProvisionRequestCompleted(quint64 accountId, quint64 requestId)
{
    if (!mProvisionRequest || accountId != mRequest.accountId() || requestId != mRequest.id()) {
        qCWarning(eas()) << "received requestCompleted for unknown request" << requestId;
        return;
    }
    // Let go first: the step that resumes may meet another demand.
    ProvisionRequest *const ended = mProvisionRequest;
    mProvisionRequest.clear();
    ended->deleteLater();
    const bool isMet = ended->successfullyFinished() || ended->policiesAreSettled();
    // Nobody is to be told of a success when the work was not done.
    const bool tellsNothing = !isMet && ended->status() == EasRequestStatus::RequestStatusSuccess;
    Q_EMIT over(isMet, tellsNothing ? mStatus : ended->status());
}
