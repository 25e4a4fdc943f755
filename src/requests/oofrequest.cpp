// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/oofrequest.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocoltime.h"
#include "protocol/base/protocolutils.h"

namespace {

constexpr char UnhandledText[] = " unhandled error with status:";

constexpr RequestStatusTable::Row rows[] = {
    // A reply that says nothing of the work is no success.
    { Eas::SettingsStatusUndefined, QtCriticalMsg, " unhandled error with status: 0",
        RequestVerb::FailInternally },
    { Eas::SettingsStatusSuccess, QtInfoMsg, nullptr, RequestVerb::Process },
    { Eas::SettingsStatusProtocolError, QtWarningMsg, "Protocol Error", RequestVerb::Complete },
    { Eas::SettingsStatusAccessDenied, QtWarningMsg, "Access Denied", RequestVerb::Complete },
    { Eas::SettingsStatusServerUnavailible, QtWarningMsg, "Server Unavailable", RequestVerb::Complete },
    { Eas::SettingsStatusInvalidArguments, QtWarningMsg, "Invalid Arguments", RequestVerb::Complete },
    { Eas::SettingsStatusConflictingArguments, QtWarningMsg, "Conflicting Arguments", RequestVerb::Complete },
    { Eas::SettingsStatusDeniedByPolicy, QtWarningMsg, "Denied By Policy", RequestVerb::Complete },
};
constexpr RequestStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

} // namespace

OofRequest::OofRequest(EasAccountId accountId, qulonglong requestId, Action action, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
    , mAction(action)
{
}

QString OofRequest::commandName() const
{
    return ProtocolUtils::CommandSettings;
}

bool OofRequest::refuseTimes()
{
    const bool hasTimes = mAction == Set && mOofState.oofEnabled() && mOofState.timeRangeEnabled();
    if (!hasTimes || ProtocolTime::isSpan(mOofState.startTime(), mOofState.endTime()))
        return false;
    qCWarning(eas()) << "The times of the out-of-office settings are not valid, start:"
                     << mOofState.startTime() << "end:" << mOofState.endTime();
    completeWith(RequestStatusBadRequest);
    return true;
}

void OofRequest::startRequest()
{
    if (refuseTimes())
        return;
    auto *const command = newCommand<OofCommand>(OofCommand::Action(mAction));
    if (mAction == Set)
        command->setOofState(mOofState);
    command->start();
}

void OofRequest::onCommandFinished(bool success)
{
    if (!currentCommand())
        qCCritical(eas()) << "Command is null";
    else
        qCInfo(eas()) << "request" << id() << "finished" << success << "status" << currentCommand()->status();
    if (!acceptResult(currentCommand(), success))
        return dropCommand();
    if (handleStatus(status(), statuses))
        return;
    qCCritical(eas()) << UnhandledText << status();
    complete();
}

void OofRequest::processReply()
{
    const auto *const command = qobject_cast<OofCommand *>(currentCommand());
    if (!command) {
        qCCritical(eas()) << "OoF command is null";
        return completeWith(RequestStatusInternalError);
    }
    resetTimeoutFactor();
    mOofState = command->getOofState();
    completeWith(RequestStatusSuccess);
}
