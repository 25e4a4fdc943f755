// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"
#include "protocol/provisioncommand.h"
#include "requests/commandrequest.h"

/**
 * Takes on a server's policies, or asks whether a wipe is ordered, as a request of its own or nested in the
 * request that met the demand.
 *
 * Of the policies the account's ProvisionManager gives a verdict, which goes back to the server; the key that
 * the server answers with is the account's from then on. An order to wipe, in whichever reply, is handed to
 * the account and acknowledged.
 *
 * A policy exchange ends with 0 and policyStatus(); an inquiry about a wipe that nobody ordered ends with 1,
 * the one status that successfullyFinished() takes; a wipe ends with RequestStatusWipeAcknowledged.
 */
class ProvisionRequest : public CommandRequest
{
    Q_OBJECT

public:
    enum ProvisionRequestType : int {
        InitialPolicyKey = ProvisionCommand::InitialPolicyKey,
        InitialRemoteWipe = ProvisionCommand::InitialRemoteWipe
    };
    Q_ENUM(ProvisionRequestType)

    /** What became of the policies; other values are the status of a reply that ended the exchange. */
    enum PolicyStatus { PolicyStatusNone = 1, PolicyStatusKeyStored = 3, PolicyStatusNoKey = 4 };
    Q_ENUM(PolicyStatus)

    ProvisionRequest(EasAccountId accountId, qulonglong requestId, ProvisionRequestType requestType,
        QObject *parent = nullptr);

    /** The policies that the device does not meet. */
    FailedPolicyMap provisionPolicies() const { return mFailedPolicies; }
    int policyStatus() const { return mPolicyStatus; }
    /** Whether the server has what it wanted: the device's verdict on its policies, or there are none. */
    bool policiesAreSettled() const;

    bool successfullyFinished() const override;
    bool isProvisioning() const override { return true; }

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;
    void cancelRequest() override;
    void reportRequestCompleted() override;
    QString commandName() const override;
    bool isCommandSupported() override;
    void onCommandFinished(bool success) override;

private:
    struct Step;
    static const Step steps[];

    ProvisionCommand *provisionCommand() const;
    ProvisionCommand *newProvisionCommand(ProvisionCommand::ProvisionCommandType commandType);
    const Step &step() const;
    void handleResponse(const ProvisionCommand &command);
    /** Ends a form whose reply did not lead on; the forms of a wipe keep the reply's status. */
    void endReplied(int status);
    /** False if the reply orders a wipe, which goes before its policies, or the account has gone. */
    bool mayTakePolicies();
    void handleInitialPolicy();
    void handleAcknowledgePolicy();
    void handleInitialRemoteWipe();
    void handleAcknowledgeRemoteWipe();
    /** Whether a policy was judged and its acknowledgement is on its way. */
    bool applyPolicy(const EasPolicyContainer &policy);
    void acknowledgePolicy(EasPolicyContainer::RequestStatus verdict, const QString &policyKey);
    void acceptPolicyKey(const QString &policyKey);
    void endWithoutPolicy();
    void endWithPolicyStatus(EasPolicyContainer::ResponseStatus status);
    bool orderRemoteWipe(const ProvisionCommand &command);

    ProvisionRequestType mRequestType;
    ProvisionCommand::ProvisionCommandType mCommandType;
    int mPolicyStatus = 0;
    FailedPolicyMap mFailedPolicies;
};
