// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/commandrequest.h"

void CommandRequest::cancelRequest()
{
    if (mCommand)
        mCommand->stop();
}

void CommandRequest::takeCommand(BaseProtocolCommand *command)
{
    dropCommand();
    connect(
        command, &BaseProtocolCommand::finished, this, [this](bool success) { onCommandFinished(success); });
    mCommand = command;
}

void CommandRequest::dropCommand()
{
    if (!mCommand)
        return;
    mCommand->disconnect(this);
    mCommand->deleteLater();
    mCommand.clear();
}
