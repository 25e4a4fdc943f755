// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchrequest.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/fetchitemcommand.h"

QString FetchRequest::commandName() const
{
    return ProtocolUtils::CommandItemOperations;
}

FetchItemCommand *FetchRequest::newFetchCommand()
{
    auto *command = newCommand<FetchItemCommand>();
    command->setStore(ProtocolUtils::StorageMailbox);
    return command;
}

FetchItemCommand *FetchRequest::fetchCommand() const
{
    return qobject_cast<FetchItemCommand *>(currentCommand());
}

void FetchRequest::handleFetchStatus(bool success)
{
    const StatusRows rows = {
        { { Eas::ItemOperationsStatusUndefined, Eas::ItemOperationsStatusSuccess },
            [this, success] {
                if (success)
                    return processCommandSuccess();
                qCWarning(eas()) << "Success: "
                                 << "false"
                                 << ", status:" << status();
                completeWith(RequestStatusInternalError);
            } },
    };
    if (!handleCommonStatus(status(), rows)) {
        qCWarning(eas()) << "unhandled status" << status();
        complete();
    }
}
