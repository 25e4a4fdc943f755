// SPDX-License-Identifier: LGPL-2.1-or-later
// What the statuses of a finished command make a request do.
#include "application/base/logging.h"
#include "application/deviceinformation.h"
#include "protocol/baseprotocolcommand.h"
#include "protocol/eas.h"
#include "protocol/protocolutils.h"
#include "requests/request.h"

#include <algorithm>

namespace {

// 10000 plus a network error, the value that really arrives, but named after an HTTP status: servers' 500 and
// 503 arrive as other numbers.
constexpr int TransportServerError = ProtocolUtils::TransportStatusBase + 500;
constexpr int TransportRetryLater = ProtocolUtils::TransportStatusBase + 503;

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

bool Request::handleCommonStatus(int status, const StatusRows &ownRows)
{
    const auto names = [status](const StatusRow &row) {
        return std::find(row.statuses.cbegin(), row.statuses.cend(), status) != row.statuses.cend();
    };
    StatusRows rows = ownRows;
    const StatusRows common = commonRows();
    rows.insert(rows.end(), common.cbegin(), common.cend());
    const auto row = std::find_if(rows.cbegin(), rows.cend(), names);
    if (row == rows.cend())
        return false;
    row->action();
    return true;
}

Request::StatusRows Request::commonRows()
{
    return {
        { { Eas::CommonStatusInvalidIds, Eas::CommonStatusServerError, TransportServerError },
            [this] {
                completeWithoutRetry();
            } },
        { { Eas::CommonStatusInvalidDeviceId, Eas::CommonStatusInvalidDeviceType },
            [this] {
                refreshDeviceAndRetry();
            } },
        { { Eas::CommonStatusServerErrorRetryLater, TransportRetryLater },
            [this] {
                retryLater();
            } },
        { { ProtocolUtils::TransportStatusCancelled },
            [this] {
                completeCancelled();
            } },
    };
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

void Request::completeWithoutRetry()
{
    qCWarning(eas()) << "server error. We shouldn't retry later. Completing request";
    reportRequestCompleted();
}

void Request::completeUnhandled()
{
    qCCritical(eas()) << "Unhandled status: " << status();
    reportRequestCompleted();
}

void Request::retryLater()
{
    qCWarning(eas()) << "we should try to send command again later. Timeout (in mseconds):"
                     << ProtocolUtils::CommandsRetryTimeout;
    startResendTimer();
}

void Request::refreshDevice()
{
    qCWarning(eas()) << "invalid Device ID or Type. Trying to update Device information";
    DeviceInformation::refreshDeviceId();
}

void Request::refreshDeviceAndRetry()
{
    refreshDevice();
    retrySend();
}

void Request::refreshDeviceAndRetryLater()
{
    refreshDevice();
    startResendTimer();
}
