// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/commonstatuses.h"

#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"

namespace {

// 10000 plus a network error, the value that really arrives, but named after an HTTP status: servers' 500 and
// 503 arrive as other numbers.
constexpr int TransportServerError = ProtocolUtils::TransportStatusBase + 500;
constexpr int TransportRetryLater = ProtocolUtils::TransportStatusBase + 503;

constexpr char ServerErrorText[] = "server error. We shouldn't retry later. Completing request";
constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char RetryLaterText[] = "we should try to send command again later. Timeout (in mseconds): 5000";
static_assert(ProtocolUtils::CommandsRetryTimeout == 5000, "the text names the delay");

constexpr RequestStatusTable::Row rows[] = {
    { Eas::CommonStatusInvalidIds, QtWarningMsg, ServerErrorText, RequestVerb::Complete },
    { Eas::CommonStatusServerError, QtWarningMsg, ServerErrorText, RequestVerb::Complete },
    { TransportServerError, QtWarningMsg, ServerErrorText, RequestVerb::Complete },
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetry },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetry },
    { Eas::CommonStatusServerErrorRetryLater, QtWarningMsg, RetryLaterText, RequestVerb::RetryLater },
    { TransportRetryLater, QtWarningMsg, RetryLaterText, RequestVerb::RetryLater },
    { ProtocolUtils::TransportStatusCancelled, QtWarningMsg, nullptr, RequestVerb::Cancel },
};
static_assert(RequestStatusTable(rows).namesEachStatusOnce());

} // namespace

constexpr RequestStatusTable commonStatuses(rows);
