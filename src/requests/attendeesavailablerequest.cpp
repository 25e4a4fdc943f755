// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/attendeesavailablerequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/protocoltime.h"
#include "protocol/base/protocolutils.h"

namespace {

constexpr int Success = 1;
constexpr int InvalidRequest = 2;

constexpr RequestStatusTable::Row rows[] = {
    { Success, QtInfoMsg, "AttendeesAvailable command finished successfully", RequestVerb::Process },
    { InvalidRequest, QtWarningMsg, "Invalid request.", RequestVerb::Refuse },
};
constexpr RequestStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

} // namespace

AttendeesAvailableRequest::AttendeesAvailableRequest(
    EasAccountId accountId, qulonglong requestId, const Options &options, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
    , mOptions(options)
{
    // Not every end passes through reportRequestCompleted(); this one comes before all who listen later.
    connect(this, &Request::requestCompleted, this,
        [this] { Q_EMIT dataReady(id(), mEmails, mNames, mStatuses); });
}

QString AttendeesAvailableRequest::commandName() const
{
    return ProtocolUtils::CommandAttendeesAvailable;
}

bool AttendeesAvailableRequest::isCommandSupported()
{
    if (!CommandRequest::isCommandSupported())
        return false;
    if (account()->protocolVersion() >= ExchangeActiveSync::ProtocolVersion140)
        return true;
    qCWarning(eas()) << "Availability is not known to servers below 14.0";
    completeWith(RequestStatusCommandNotSupported);
    return false;
}

bool AttendeesAvailableRequest::refuseOptions()
{
    if (!mOptions.emails.isEmpty() && ProtocolTime::isSpan(mOptions.startTime, mOptions.endTime))
        return false;
    qCWarning(eas()) << "Availability cannot be asked for, addresses:" << mOptions.emails.size()
                     << "start:" << mOptions.startTime << "end:" << mOptions.endTime;
    completeWith(RequestStatusBadRequest);
    return true;
}

void AttendeesAvailableRequest::startRequest()
{
    if (!account()) {
        qCCritical(eas()) << "account not found";
        return completeWith(RequestStatusInternalError);
    }
    if (!refuseOptions())
        startAttendeesAvailableCommand();
}

void AttendeesAvailableRequest::startAttendeesAvailableCommand()
{
    newCommand<AttendeesAvailableCommand>(mOptions)->start();
}

void AttendeesAvailableRequest::onCommandFinished(bool success)
{
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request started";
        return dropCommand();
    }
    if (handleStatus(status(), statuses))
        return;
    if (!success) {
        qCWarning(eas()) << "AttendeesAvailable command failed with status" << status();
        return complete();
    }
    qCCritical(eas()) << "Unhandled AttendeesAvailable request status: " << status();
    completeWith(RequestStatusInternalError);
}

void AttendeesAvailableRequest::processReply()
{
    const auto *const command = qobject_cast<AttendeesAvailableCommand *>(currentCommand());
    if (!command) {
        qCCritical(eas()) << "Wrong state:" << status();
        return completeWith(RequestStatusInternalError);
    }
    resetTimeoutFactor();
    handleResponse(*command);
}

void AttendeesAvailableRequest::handleResponse(const AttendeesAvailableCommand &command)
{
    switch (command.responseStatus()) {
    case Success:
        takeAttendees(command);
        return completeWith(RequestStatusSuccess);
    case InvalidRequest:
        return refuse("Invalid AttendeesAvailable request");
    default:
        return refuse("Undefined Response Status");
    }
}

void AttendeesAvailableRequest::takeAttendees(const AttendeesAvailableCommand &command)
{
    for (const AttendeesAvailableCommand::AttendeeData &attendee : command.attendees()) {
        mEmails.append(attendee.email);
        mNames.append(attendee.name);
        mStatuses.append(attendee.status);
    }
}

void AttendeesAvailableRequest::refuse(const char *text)
{
    qCWarning(eas()) << text;
    completeWith(RequestStatusBadRequest);
}
