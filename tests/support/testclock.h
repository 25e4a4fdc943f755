// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/clock.h"

#include <QList>
#include <QSet>

inline uint qHash(Clock::Timer timer)
{
    return ::qHash(static_cast<int>(timer));
}

/**
 * The clock of a test: how long timers take, and what time it is. It stands in for the device's clock while
 * it lives. Time passes as on the device until a test stops it or moves it on; timers that run do not notice
 * either.
 */
class TestClock : public Clock
{
public:
    enum Pace {
        AtOnce, ///< timers end at once, but for those that are held
        Hurried, ///< the delays between attempts and those of push are short, the others are the device's
        Unhurried ///< as on the device
    };

    explicit TestClock(Pace pace = AtOnce);
    /** Time stands still at this moment, in a zone of the test's choice; timers are unhurried. */
    explicit TestClock(const QDateTime &now, const QTimeZone &zone = QTimeZone::utc());
    ~TestClock() override;
    Q_DISABLE_COPY(TestClock)

    QDateTime currentDateTimeUtc() const override;
    QTimeZone timeZone() const override;
    int timerInterval(int milliseconds, Timer timer) const override;

    void setPace(Pace pace) { mPace = pace; }
    /** Only advance() and setAhead() move the time on from here. */
    void stop();
    void advance(qint64 milliseconds) { mAhead += milliseconds; }
    /** The time is so far ahead of what it would have been. */
    void setAhead(qint64 milliseconds) { mAhead = milliseconds; }

    /** At once, timers of this nominal length or more keep it. */
    int heldFrom = 100000000;
    /** At once, timers of these kinds keep their length as well. */
    QSet<Timer> held { Timer::Answer };
    /** The nominal lengths that were asked for. */
    mutable QList<int> intervals;

private:
    static int hurried(int milliseconds, Timer timer);

    Pace mPace;
    QTimeZone mZone; ///< invalid: the device's
    QDateTime mStopped;
    qint64 mAhead = 0;
};
