// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/testclock.h"

TestClock::TestClock(Pace pace)
    : mPace(pace)
{
    Clock::setInstance(this);
}

TestClock::TestClock(const QDateTime &now, const QTimeZone &zone)
    : mPace(Unhurried)
    , mZone(zone)
    , mStopped(now.toUTC())
{
    Clock::setInstance(this);
}

TestClock::~TestClock()
{
    Clock::setInstance(nullptr);
}

QDateTime TestClock::currentDateTimeUtc() const
{
    return (mStopped.isValid() ? mStopped : Clock::currentDateTimeUtc()).addMSecs(mAhead);
}

QTimeZone TestClock::timeZone() const
{
    return mZone.isValid() ? mZone : Clock::timeZone();
}

void TestClock::stop()
{
    mStopped = Clock::currentDateTimeUtc();
}

int TestClock::timerInterval(int milliseconds, Timer timer) const
{
    intervals.append(milliseconds);
    if (mPace == AtOnce)
        return held.contains(timer) || milliseconds >= heldFrom ? milliseconds : 1;
    if (timer == Timer::ProcessEnd)
        return 1;
    // A starved machine is no service that hangs.
    if (timer == Timer::SignOnAnswer)
        return 20 * milliseconds;
    return mPace == Hurried ? hurried(milliseconds, timer) : milliseconds;
}

int TestClock::hurried(int milliseconds, Timer timer)
{
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
