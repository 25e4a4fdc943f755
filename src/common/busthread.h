// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** The thread in which Qt's bus library works for a process. */
namespace BusThread {

/**
 * Waits until that thread has done what it was asked for so far. For the end of main(): the library ends its
 * thread with the static objects, after those of the lock that it may still wait for, and then the process
 * hangs.
 */
void settle();

} // namespace BusThread
