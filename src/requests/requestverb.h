// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/statustable.h"

/** What the status of a finished command makes its request do. */
enum class RequestVerb {
    /** The command did what was asked; the request takes its reply. */
    Process,
    /** The request ends with the status as it stands. */
    Complete,
    /** The request ends with RequestStatusInternalError. */
    FailInternally,
    /** The request ends with RequestStatusBadRequest. */
    Refuse,
    /** The request ends with RequestStatusMessageTooLarge. */
    RefuseTooLarge,
    /** The request ends with RequestStatusServerStorageFull. */
    ReportStorageFull,
    /** The request ends with RequestStatusCancelled. */
    Cancel,
    /** The step goes out again after the delay. */
    RetryLater,
    /** The device's identifier is computed anew, and the step goes out again, at once or after the delay. */
    RefreshDeviceAndRetry,
    RefreshDeviceAndRetryLater
};

using RequestStatusTable = StatusTable<RequestVerb>;
