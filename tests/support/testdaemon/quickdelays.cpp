// SPDX-License-Identifier: LGPL-2.1-or-later
// Linked with the daemon's own main(): it runs as it is, but waits milliseconds where a device waits seconds.
#include "support/testclock.h"

#include <QThread>

namespace {

class DaemonClock : public TestClock
{
public:
    DaemonClock()
        : TestClock(Hurried)
    {
    }

    int timerInterval(int milliseconds, Timer timer) const override
    {
        // The check for accounts is set up before the event loop runs, and ends the process if it comes
        // before the accounts have been read.
        const bool starting = QThread::currentThread()->loopLevel() == 0;
        if (timer == Timer::WipeRetry)
            return 20;
        if (timer == Timer::SignOnAnswer && qEnvironmentVariableIsSet("FENNEL_TEST_IMPATIENT_SIGN_ON"))
            return 1;
        return starting ? milliseconds : TestClock::timerInterval(milliseconds, timer);
    }
};

const DaemonClock clock;

} // namespace
