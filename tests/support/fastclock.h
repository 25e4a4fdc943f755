// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/clock.h"

/**
 * A clock that makes the delays between attempts and those of push short, gives the sign-on service more time
 * than a starved machine takes, and leaves the other timers alone. It stands in while it lives.
 */
class FastClock : public Clock
{
public:
    FastClock() { Clock::setInstance(this); }
    ~FastClock() override { Clock::setInstance(nullptr); }
    Q_DISABLE_COPY(FastClock)

    /** While off, the intervals are those of the device. */
    void setFast(bool fast) { mFast = fast; }

    /** Lets time pass at once; timers that run do not notice. */
    void advance(int milliseconds) { mAdvance += milliseconds; }

    QDateTime currentDateTimeUtc() const override { return Clock::currentDateTimeUtc().addMSecs(mAdvance); }

    int timerInterval(int milliseconds, Timer timer) const override
    {
        if (timer == Timer::ProcessEnd)
            return 1;
        if (timer == Timer::SignOnAnswer)
            return 20 * milliseconds;
        if (!mFast)
            return milliseconds;
        switch (timer) {
        case Timer::Resend:
            return 20;
        case Timer::PushPause:
        case Timer::LocalChanges:
            // In proportion: that pauses grow is told by the number of requests.
            return milliseconds / 100;
        case Timer::PushRestart:
            return milliseconds / 1000;
        default:
            return milliseconds;
        }
    }

private:
    bool mFast = true;
    qint64 mAdvance = 0;
};
