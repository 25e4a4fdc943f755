// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchrequest.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/fetchitemcommand.h"

namespace {

constexpr RequestStatusTable::Row rows[] = {
    { Eas::ItemOperationsStatusUndefined, QtInfoMsg, nullptr, RequestVerb::Process },
    { Eas::ItemOperationsStatusSuccess, QtInfoMsg, nullptr, RequestVerb::Process },
};
constexpr RequestStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

} // namespace

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
    if (!success && successfullyFinished()) {
        qCWarning(eas()) << "Success: "
                         << "false"
                         << ", status:" << status();
        return completeWith(RequestStatusInternalError);
    }
    if (!handleStatus(status(), statuses)) {
        qCWarning(eas()) << "unhandled status" << status();
        complete();
    }
}

void FetchRequest::processReply()
{
    processCommandSuccess();
}
