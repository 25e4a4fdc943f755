// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "requests/request.h"

#include <QPointer>

/**
 * A request that runs one command at a time: a new one takes the place of the one before, and a cancel stops
 * the one that runs. Lives as a Request does. Main thread only.
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
    template <typename Command> Command *newCommand()
    {
        auto *command = new Command(accountId(), this);
        takeCommand(command);
        return command;
    }

protected:
    void cancelRequest() override;

    virtual void onCommandFinished(bool success) = 0;

    void dropCommand();

private:
    void takeCommand(BaseProtocolCommand *command);

    QPointer<BaseProtocolCommand> mCommand;
};
