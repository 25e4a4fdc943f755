// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

/** Calls of the device's sync scheduler, which keeps which accounts are to be always on. None waits for its
 * answer. */
namespace SchedulerCalls {

/** The scheduler publishes the account's switch, which comes back as a signal. */
void ask(EasAccountId accountId);
/** The account is gone, and its switch with it. A scheduler that other programs manage may not know the call.
 */
void forget(EasAccountId accountId);

} // namespace SchedulerCalls
