// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

class Engine;

/** Whether a request can go out now. */
namespace NetworkGate {

enum State {
    Open,
    /** The device is online, but the account's session is not there yet. */
    OpensLater,
    Closed
};

/** The gate of an account; what keeps it closed is written to the log. */
State of(Engine *engine, EasAccountId accountId);

} // namespace NetworkGate
