// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/clock.h"

namespace {
Clock *replacement = nullptr;
}

Clock &Clock::instance()
{
    static Clock systemClock;
    return replacement ? *replacement : systemClock;
}

void Clock::setInstance(Clock *clock)
{
    replacement = clock;
}

QDateTime Clock::currentDateTimeUtc() const
{
    return QDateTime::currentDateTimeUtc();
}

QTimeZone Clock::timeZone() const
{
    return QTimeZone::systemTimeZone();
}

int Clock::timerInterval(int milliseconds, Timer) const
{
    return milliseconds;
}
