// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/clock.h"

/**
 * A clock that makes the delays between attempts short and leaves the other timers alone. It stands in while
 * it lives.
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

    int timerInterval(int milliseconds) const override
    {
        // The resend delays are 5 s, each later one three times the one before; the last one ends a request.
        if (milliseconds == EndDelay)
            return 1;
        for (int delay = 5000; delay <= 1215000; delay *= 3) {
            if (mFast && milliseconds == delay)
                return 20;
        }
        return milliseconds;
    }

private:
    /** From the end of the engine to that of its process. */
    static constexpr int EndDelay = 500;

    bool mFast = true;
    qint64 mAdvance = 0;
};
