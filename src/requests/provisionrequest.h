// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"
#include "requests/request.h"

/**
 * Meets a server's demand that the device take on its policies, as a request of its own or nested in the
 * request that met the demand.
 *
 * This device does not apply policies yet, so the answer is always a refusal: the request ends with
 * RequestStatusPolicyRefused without a word to the server. A demand to wipe the device ends in the same way
 * and wipes nothing.
 */
class ProvisionRequest : public Request
{
    Q_OBJECT

public:
    ProvisionRequest(
        EasAccountId accountId, qulonglong requestId, bool remoteWipe, QObject *parent = nullptr);

    /** The policies that the device does not meet. */
    FailedPolicyMap provisionPolicies() const;
    int policyStatus() const;
    bool isProvisioning() const override { return true; }

protected:
    void startRequest() override;
    void cancelRequest() override;
    QString commandName() const override;
    bool isCommandSupported() override;

private:
    bool mRemoteWipe;
};
