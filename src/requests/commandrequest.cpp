// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/commandrequest.h"

#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "requests/commonstatuses.h"

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

bool CommandRequest::acceptResult(BaseProtocolCommand *command, bool success)
{
    if (!command) {
        completeWith(RequestStatusInternalError);
        return false;
    }
    setStatus(command->status());
    // A client certificate that cannot be used, a request that could not be built: work that was not done.
    if (!success && command->status() == RequestStatusSuccess)
        setStatus(RequestStatusInternalError);
    if (checkProvisionStatus(command)) {
        qCInfo(eas()) << "request is paused, waiting for provisioning" << id();
        return false;
    }
    return true;
}

bool CommandRequest::handleStatus(int status, const RequestStatusTable &ownTable, const QString &subject)
{
    const RequestStatusTable::Row *row = ownTable.find(status);
    if (!row)
        row = commonStatuses.find(status);
    if (!row)
        return false;
    logStatusText(row->level, row->text, subject);
    perform(row->verb);
    return true;
}

void CommandRequest::perform(RequestVerb verb)
{
    switch (verb) {
    case RequestVerb::Process:
        return processReply();
    case RequestVerb::Complete:
        return complete();
    case RequestVerb::FailInternally:
        return completeWith(RequestStatusInternalError);
    case RequestVerb::Refuse:
        return completeWith(RequestStatusBadRequest);
    case RequestVerb::RefuseTooLarge:
        return completeWith(RequestStatusMessageTooLarge);
    case RequestVerb::ReportStorageFull:
        return completeWith(RequestStatusServerStorageFull);
    case RequestVerb::Cancel:
        return completeCancelled();
    case RequestVerb::RetryLater:
        return startResendTimer();
    case RequestVerb::RefreshDeviceAndRetry:
        DeviceInformation::refreshDeviceId();
        return retrySend();
    case RequestVerb::RefreshDeviceAndRetryLater:
        DeviceInformation::refreshDeviceId();
        return startResendTimer();
    }
}

void CommandRequest::processReply()
{
    complete();
}

void CommandRequest::completeUnhandled()
{
    qCCritical(eas()) << "Unhandled status: " << status();
    complete();
}
