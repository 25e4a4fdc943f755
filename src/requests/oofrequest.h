// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easoofcontainer.h"
#include "protocol/oofcommand.h"
#include "requests/commandrequest.h"

/**
 * Reads or writes the out-of-office settings of an account's mailbox.
 *
 * Settings for a time whose times are not valid, or end before they begin, end a write with
 * RequestStatusBadRequest, and nothing is sent. After a read that ended well getOofState() is what the server
 * said; a refusal of the server ends the request with its status. Queued and owned by the RequestManager.
 * Main thread only.
 */
class OofRequest : public CommandRequest
{
    Q_OBJECT

public:
    enum Action : int { Get = OofCommand::Get, Set = OofCommand::Set };
    Q_ENUM(Action)

    OofRequest(EasAccountId accountId, qulonglong requestId, Action action, QObject *parent = nullptr);

    EasOofContainer getOofState() const { return mOofState; }
    void setOofState(const EasOofContainer &state) { mOofState = state; }

protected:
    void startRequest() override;
    QString commandName() const override;
    void onCommandFinished(bool success) override;
    void processReply() override;

private:
    bool refuseTimes();

    const Action mAction;
    EasOofContainer mOofState;
};
