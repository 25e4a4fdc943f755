// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/clock.h"

#include <QList>
#include <QSet>

inline uint qHash(Clock::Timer timer)
{
    return ::qHash(static_cast<int>(timer));
}

/** Timers end at once, but for those that are held, and the time is what a test says; installed while it
 * lives. */
class ScriptedClock : public Clock
{
public:
    ScriptedClock() { Clock::setInstance(this); }
    ~ScriptedClock() override { Clock::setInstance(nullptr); }

    QDateTime currentDateTimeUtc() const override
    {
        return (mFrozen.isValid() ? mFrozen : Clock::currentDateTimeUtc()).addMSecs(millisecondsAhead);
    }
    /** Only millisecondsAhead moves the time on from here. */
    void freeze() { mFrozen = Clock::currentDateTimeUtc(); }

    int timerInterval(int milliseconds, Timer timer) const override
    {
        intervals.append(milliseconds);
        return held.contains(timer) || milliseconds >= heldFrom ? milliseconds : 1;
    }

    qint64 millisecondsAhead = 0;
    /** Timers of this nominal length or more keep it. */
    int heldFrom = 100000000;
    /** Timers of these kinds keep their length as well. */
    QSet<Timer> held { Timer::Answer };
    /** The nominal lengths that were asked for. */
    mutable QList<int> intervals;

private:
    QDateTime mFrozen;
};
