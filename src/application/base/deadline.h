// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/clock.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

/**
 * A single shot after a span of time that goes on while the device sleeps: it comes with the timer, which
 * does not mind a clock that is put back, and at once when the clock jumps past its end. Main thread only.
 */
class Deadline : public QObject
{
    Q_OBJECT

public:
    /** `timer` says what it is for, for clocks that shorten it. */
    explicit Deadline(Clock::Timer timer, QObject *parent = nullptr);

    /** Begins anew, in milliseconds. */
    void start(int milliseconds);
    void stop();
    bool isActive() const { return mTimer.isActive(); }
    /** By the clock, in UTC; invalid while it does not run. */
    QDateTime due() const { return isActive() ? mDue : QDateTime(); }

Q_SIGNALS:
    void expired();

private:
    void onClockJumped();
    void expire();

    const Clock::Timer mKind;
    QTimer mTimer;
    QDateTime mDue;
};
