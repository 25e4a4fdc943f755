// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/attempts.h"
#include "requests/outcome.h"
#include "requests/syncstate.h"

class CommandRequest;

/** What the phases of one sync share with the request that runs them. It belongs to the request. */
struct SyncRun
{
    CommandRequest &request;
    /** The request's own: how it stands, and the repetitions of the present step. */
    Outcome &outcome;
    Attempts &attempts;
    /** Ways back to an earlier phase, so that no answer of a server makes the sync run for ever. */
    Attempts waysBack {};
    SyncState state {};

    /** Counts a way back; false, logged, if none was left. */
    bool mayGoBack();
    /** Clears the account's mapping and stores, and forgets what was still to be done; false, logged, if that
     * failed. */
    bool clearAccount();
};
