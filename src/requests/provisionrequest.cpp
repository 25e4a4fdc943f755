// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/provisionrequest.h"

#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"

ProvisionRequest::ProvisionRequest(
    EasAccountId accountId, qulonglong requestId, bool remoteWipe, QObject *parent)
    : Request(accountId, requestId, parent)
    , mRemoteWipe(remoteWipe)
{
}

FailedPolicyMap ProvisionRequest::provisionPolicies() const
{
    return {};
}

int ProvisionRequest::policyStatus() const
{
    return 0;
}

void ProvisionRequest::startRequest()
{
    qCCritical(eas()) << "this device does not apply server policies yet, account:" << accountId()
                      << (mRemoteWipe ? "a remote wipe was requested" : "provisioning was requested");
    completeWith(RequestStatusPolicyRefused);
}

void ProvisionRequest::cancelRequest() {}

QString ProvisionRequest::commandName() const
{
    return ProtocolUtils::CommandProvision;
}

bool ProvisionRequest::isCommandSupported()
{
    // The refusal needs nothing from the server.
    return true;
}
