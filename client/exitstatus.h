// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** What scripts can rely on. */
enum ExitStatus {
    ExitSuccess = 0,
    /** The engine or the server refused, or something could not be written. */
    ExitFailure = 1,
    ExitUsage = 2,
    /** No such account, folder, message, part, event, occurrence or contact. */
    ExitNotFound = 3,
    /** The daemon, the sync scheduler or a store of the device cannot be reached. */
    ExitUnavailable = 4,
    ExitCancelled = 5
};
