// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

/** The device's sync scheduler, which keeps which accounts are always on; its first call starts it. */
namespace Scheduler {

/** Has push switched for an account, for good; the exit status, an error was printed if it is no success. */
int setPush(EasAccountId account, bool on);

} // namespace Scheduler
