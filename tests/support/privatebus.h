// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * A session bus of the test process's own, with the real sign-on service behind its activation.
 *
 * Call ensure() before anything talks to a session bus; the bus then stays until the process ends, because
 * the account library ends a process whose bus goes away.
 */
class PrivateBus
{
public:
    PrivateBus() = delete;

    /** Starts the bus at the first call; false, with the reason as a warning, if it cannot run. */
    static bool ensure();
    /** The same for a bus that can start no service, the sign-on service included. */
    static bool ensureWithoutServices();
    static QString address();
};
