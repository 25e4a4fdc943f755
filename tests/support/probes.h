// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "requests/commandrequest.h"
#include "requests/provisionrequest.h"

/** A command that has finished with a status, and was never sent. */
class FinishedCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    FinishedCommand(EasAccountId accountId, int status, QObject *parent = nullptr)
        : BaseProtocolCommand(accountId, parent)
    {
        setStatus(status);
    }
    FinishedCommand(EasAccountId accountId, QObject *parent)
        : FinishedCommand(accountId, 0, parent)
    {
    }

    void finish(int status)
    {
        setStatus(status);
        Q_EMIT finished(true);
    }
};

/** A provisioning run that ends as a test says, or waits. */
class ProbeProvision : public ProvisionRequest
{
    Q_OBJECT

public:
    using ProvisionRequest::completeWith;
    using ProvisionRequest::ProvisionRequest;

    bool waits = false;
    int outcome = 1;

protected:
    void startRequest() override
    {
        if (!waits)
            completeWith(outcome);
    }
};

/** A request whose steps a test gives, and which shows its protected side. */
class ProbeRequest : public CommandRequest
{
    Q_OBJECT

public:
    using CommandRequest::CommandRequest;

    using CommandRequest::acceptResult;
    using CommandRequest::completeUnhandled;
    using CommandRequest::handleStatus;
    using Request::checkProvisionStatus;
    using Request::clearRetries;
    using Request::completeWith;
    using Request::hasEnded;
    using Request::isCommandSupported;
    using Request::protocolVersionConfirmed;
    using Request::reportRequestCompleted;
    using Request::startProvisionRequest;
    using Request::startResendTimer;

    QString name = QStringLiteral("Sync");
    std::function<void()> onStart;
    std::function<void()> onCancel;
    int starts = 0;
    int cancels = 0;
    bool provisionWaits = false;
    /** 1 lets the request resume. */
    int provisionOutcome = 1;
    QList<bool> provisionRuns;
    QPointer<ProbeProvision> provision;

protected:
    void startRequest() override
    {
        ++starts;
        if (onStart)
            onStart();
    }
    void cancelRequest() override
    {
        ++cancels;
        if (onCancel)
            onCancel();
    }
    void onCommandFinished(bool) override {}
    QString commandName() const override { return name; }
    ProvisionRequest *createProvisionRequest(bool remoteWipe) override
    {
        provisionRuns.append(remoteWipe);
        provision = new ProbeProvision(accountId(), id(),
            remoteWipe ? ProvisionRequest::InitialRemoteWipe : ProvisionRequest::InitialPolicyKey, this);
        provision->waits = provisionWaits;
        provision->outcome = provisionOutcome;
        return provision;
    }
};
