// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "requests/request.h"
#include "requests/requestverb.h"

#include <QPointer>

/**
 * A request that runs one command at a time: a new one takes the place of the one before, and a cancel stops
 * the one that runs. What a finished command does reads:
 *
 *     if (!acceptResult(currentCommand(), success)) // gone, ended, or paused for provisioning
 *         return dropCommand();
 *     if (!handleStatus(status(), ownTable))
 *         completeUnhandled();
 *
 * A row of a table says what a status means; the request's own rows come before the common ones, so that a
 * request replaces a common row by naming its status. The verb Process comes back as processReply().
 *
 * Lives as a Request does. Main thread only.
 */
class CommandRequest : public Request
{
    Q_OBJECT

public:
    using Request::Request;

    // For the request itself, and for the phases that it consists of

    /** Null before the first command and once the last one was dropped. */
    BaseProtocolCommand *currentCommand() const { return mCommand; }
    /** A command of this account whose end comes to onCommandFinished(); the one before is dropped. */
    template <typename Command, typename... Arguments> Command *newCommand(Arguments... arguments)
    {
        auto *command = new Command(accountId(), this, arguments...);
        takeCommand(command);
        return command;
    }

protected:
    void cancelRequest() override;

    virtual void onCommandFinished(bool success) = 0;
    /** Takes the reply of a command that did what was asked: the verb Process. */
    virtual void processReply();

    /** Takes over the status of a finished command; one that failed without a status counts as -2. False if
     * the command is gone, and the request has ended, or if it is paused for provisioning: either way the
     * caller drops its command and returns. */
    bool acceptResult(BaseProtocolCommand *command, bool success);
    /** Does what the row of a status says, a row of the own table or else of the common one; false if no row
     * names it. `subject` is what the texts of the own rows are about. */
    bool handleStatus(int status, const RequestStatusTable &ownTable = {}, const QString &subject = {});
    /** Ends the request with a status that no row names. */
    void completeUnhandled();

    void dropCommand();

private:
    void takeCommand(BaseProtocolCommand *command);
    void perform(RequestVerb verb);

    QPointer<BaseProtocolCommand> mCommand;
};
