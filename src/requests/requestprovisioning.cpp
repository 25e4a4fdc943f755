// SPDX-License-Identifier: LGPL-2.1-or-later
// How a request meets a server's demand for provisioning, and goes on after it.
#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "requests/provisionrequest.h"
#include "requests/request.h"

namespace {

// 10000 plus a network error, named after HTTP statuses; the first one is what a 503 arrives as.
constexpr int TransportForbidden = ProtocolUtils::TransportStatusBase + 403;
constexpr int TransportRetryWith = ProtocolUtils::TransportStatusBase + 449;

} // namespace

bool Request::checkProvisionStatus(BaseProtocolCommand *command)
{
    if (!command) {
        qCCritical(eas()) << "Command is null!";
        return false;
    }
    const EasAccount *const provisioned = account();
    switch (command->status()) {
    case Eas::CommonStatusDeviceNotFullyProvisionable:
        qCCritical(eas()) << "Device is not fully Provisionable for account" << mAccountId;
        return false;
    case Eas::CommonStatusRemoteWipeRequested:
        qCCritical(eas()) << "remote wipe is requested for account" << mAccountId;
        startProvisionRequest(true);
        return true;
    case Eas::CommonStatusLegacyDeviceOnStrictPolicy:
        qCWarning(eas()) << "server requires policy key to be submitted for" << mAccountId;
        submitDefaultPolicyKey();
        return true;
    case Eas::CommonStatusDeviceNotProvisioned:
        qCInfo(eas()) << "Provision Policy is in place for account" << mAccountId;
        break;
    case Eas::CommonStatusPolicyRefresh:
        qCInfo(eas()) << "Policy refresh requested for account" << mAccountId;
        break;
    case Eas::CommonStatusInvalidPolicyKey:
        qCWarning(eas()) << "Invalid policy key for account" << mAccountId;
        break;
    case Eas::CommonStatusExtManagedDevicesNotAllowed:
        qCWarning(eas()) << "Exterally managed devices are not allowed for account" << mAccountId;
        break;
    case TransportForbidden:
        if (provisioned && !provisioned->policyKey().isEmpty())
            return false;
        qCCritical(eas()) << "remote wipe is requested for account" << mAccountId << "by http status 403";
        startProvisionRequest(true);
        return true;
    case TransportRetryWith:
        qCWarning(eas()) << "provisioning error for" << mAccountId << "by http status 449";
        break;
    default:
        return false;
    }
    startProvisionRequest(false);
    return true;
}

void Request::submitDefaultPolicyKey()
{
    if (EasAccount *const provisioned = account())
        provisioned->setPolicyKey(ProtocolUtils::DefaultPolicyKey);
    // Later, so that the finished command can unwind first. The request may be cancelled until then.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!hasEnded())
                resumeRequest(true);
        },
        Qt::QueuedConnection);
}

void Request::startProvisionRequest(bool remoteWipe)
{
    if (mProvisionRequest) {
        mProvisionRequest->disconnect(this);
        mProvisionRequest->cancel();
        mProvisionRequest->deleteLater();
    }
    mProvisionRequest = createProvisionRequest(remoteWipe);
    connect(mProvisionRequest, &Request::requestCompleted, this, &Request::onProvisionRequestCompleted);
    mProvisionRequest->start();
}

ProvisionRequest *Request::createProvisionRequest(bool remoteWipe)
{
    return new ProvisionRequest(mAccountId, mId, remoteWipe, this);
}

void Request::onProvisionRequestCompleted(EasAccountId accountId, qulonglong requestId)
{
    if (!mProvisionRequest || accountId != mAccountId || requestId != mId) {
        qCWarning(eas()) << "received requestCompleted for unknown request" << requestId;
        return;
    }
    // Let go first: the step that resumes may meet another demand.
    ProvisionRequest *const provisionRequest = mProvisionRequest;
    mProvisionRequest.clear();
    provisionRequest->deleteLater();
    setStatus(provisionRequest->status());
    resumeRequest(provisionRequest->successfullyFinished());
}

void Request::resumeRequest(bool success)
{
    qCInfo(eas()) << "Resume request. Provision request successfully finished:"
                  << (success ? "true" : "false");
    if (success)
        startRequest();
    else if (!hasEnded())
        Q_EMIT requestCompleted(mAccountId, mId);
}
