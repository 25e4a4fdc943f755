// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deadline.h"

#include "application/base/clockwatch.h"

Deadline::Deadline(Clock::Timer timer, QObject *parent)
    : QObject(parent)
    , mKind(timer)
{
    mTimer.setSingleShot(true);
    // Others may come a twentieth of their length too early.
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &Deadline::expire);
    connect(&ClockWatch::instance(), &ClockWatch::jumped, this, &Deadline::onClockJumped);
}

void Deadline::start(int milliseconds)
{
    mDue = Clock::instance().currentDateTimeUtc().addMSecs(milliseconds);
    mTimer.start(Clock::instance().timerInterval(milliseconds, mKind));
}

void Deadline::stop()
{
    mTimer.stop();
}

void Deadline::onClockJumped()
{
    if (isActive() && Clock::instance().currentDateTimeUtc() >= mDue)
        expire();
}

void Deadline::expire()
{
    mTimer.stop();
    Q_EMIT expired();
}
