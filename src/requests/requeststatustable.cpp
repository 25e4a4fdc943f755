// SPDX-License-Identifier: LGPL-2.1-or-later
// What the statuses of a finished command make a request do.
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "requests/request.h"

#include <algorithm>

namespace {

// 10000 plus a network error, the value that really arrives, but named after an HTTP status: servers' 500 and
// 503 arrive as other numbers.
constexpr int TransportServerError = ProtocolUtils::TransportStatusBase + 500;
constexpr int TransportRetryLater = ProtocolUtils::TransportStatusBase + 503;

constexpr char ServerErrorText[] = "server error. We shouldn't retry later. Completing request";
constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char RetryLaterText[] = "we should try to send command again later. Timeout (in mseconds): 5000";
static_assert(ProtocolUtils::CommandsRetryTimeout == 5000, "the text names the delay");

constexpr RequestStatusTable::Row commonRows[] = {
    { Eas::CommonStatusInvalidIds, QtWarningMsg, ServerErrorText, RequestVerb::Complete },
    { Eas::CommonStatusServerError, QtWarningMsg, ServerErrorText, RequestVerb::Complete },
    { TransportServerError, QtWarningMsg, ServerErrorText, RequestVerb::Complete },
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetry },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetry },
    { Eas::CommonStatusServerErrorRetryLater, QtWarningMsg, RetryLaterText, RequestVerb::RetryLater },
    { TransportRetryLater, QtWarningMsg, RetryLaterText, RequestVerb::RetryLater },
    { ProtocolUtils::TransportStatusCancelled, QtWarningMsg, nullptr, RequestVerb::Cancel },
};
constexpr RequestStatusTable commonTable(commonRows);
static_assert(commonTable.namesEachStatusOnce());

} // namespace

bool Request::acceptResult(BaseProtocolCommand *command, bool success)
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

bool Request::handleStatus(int status, const RequestStatusTable &ownTable, const QString &subject)
{
    const RequestStatusTable::Row *row = ownTable.find(status);
    if (!row)
        row = commonTable.find(status);
    if (!row)
        return false;
    logStatusText(row->level, row->text, subject);
    perform(row->verb);
    return true;
}

bool Request::handleCommonStatus(int status, const StatusRows &ownRows)
{
    const auto row = std::find_if(ownRows.cbegin(), ownRows.cend(), [status](const StatusRow &candidate) {
        return std::find(candidate.statuses.cbegin(), candidate.statuses.cend(), status)
            != candidate.statuses.cend();
    });
    if (row == ownRows.cend())
        return handleStatus(status);
    row->action();
    return true;
}

void Request::perform(RequestVerb verb)
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

void Request::processReply()
{
    complete();
}

void Request::complete()
{
    reportRequestCompleted();
}

void Request::completeWith(int status)
{
    setStatus(status);
    reportRequestCompleted();
}

void Request::completeCancelled()
{
    completeWith(RequestStatusCancelled);
}

void Request::completeUnhandled()
{
    qCCritical(eas()) << "Unhandled status: " << status();
    reportRequestCompleted();
}

void Request::refreshDeviceAndRetryLater()
{
    qCWarning(eas()) << DeviceText;
    perform(RequestVerb::RefreshDeviceAndRetryLater);
}
