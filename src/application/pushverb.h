// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** How push goes on after a Ping has ended. */
enum class PushVerb {
    Pause, ///< the next Ping comes after a pause
    SyncFolders, ///< those that the server has named
    SyncHierarchy,
    PauseForLonger, ///< the server fails: the pauses grow
    Stop, ///< until a full sync starts push again
    Fail, ///< the same for a status that nothing else is known of
    EndForGood ///< the account is being wiped
};

/** By the status of the PingRequest; writes the row's log line. */
PushVerb pushVerb(int status);
