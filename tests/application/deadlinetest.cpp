// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deadline.h"

#include "application/base/clockwatch.h"
#include "application/base/growingpause.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QtTest>

/** Spans of time, and clocks that jump. */
class DeadlineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itComesWithItsTimer()
    {
        TestClock clock;
        Deadline deadline(Clock::Timer::PushPause);
        QSignalSpy expired(&deadline, &Deadline::expired);
        deadline.start(5000);
        QVERIFY(deadline.isActive());
        QVERIFY(expired.count() == 1 || expired.wait(60000));
        QVERIFY(!deadline.isActive());
        QVERIFY(!deadline.due().isValid());
    }

    void aClockThatJumpsPastItEndsItAtOnce()
    {
        TestClock clock;
        clock.stop();
        Deadline deadline(Clock::Timer::Answer);
        QSignalSpy expired(&deadline, &Deadline::expired);
        deadline.start(360000);
        QCOMPARE(deadline.due(), clock.currentDateTimeUtc().addSecs(360));

        clock.setAhead(359999);
        Q_EMIT ClockWatch::instance().jumped();
        QCOMPARE(expired.count(), 0);
        clock.setAhead(24 * 3600 * 1000);
        Q_EMIT ClockWatch::instance().jumped();
        QCOMPARE(expired.count(), 1);
        Q_EMIT ClockWatch::instance().jumped();
        QCOMPARE(expired.count(), 1);
    }

    void aClockThatIsPutBackLeavesItAlone()
    {
        TestClock clock;
        clock.stop();
        Deadline deadline(Clock::Timer::Answer);
        QSignalSpy expired(&deadline, &Deadline::expired);
        deadline.start(360000);
        clock.setAhead(-24 * 3600 * 1000);
        Q_EMIT ClockWatch::instance().jumped();
        QCOMPARE(expired.count(), 0);
        QVERIFY(deadline.isActive());
    }

    void oneThatWasStoppedNeverComes()
    {
        TestClock clock;
        Deadline deadline(Clock::Timer::Answer);
        QSignalSpy expired(&deadline, &Deadline::expired);
        deadline.start(360000);
        deadline.stop();
        clock.setAhead(24 * 3600 * 1000);
        Q_EMIT ClockWatch::instance().jumped();
        QCOMPARE(expired.count(), 0);
    }

    void pausesGrowToHalfAnHour()
    {
        GrowingPause pause;
        QList<int> taken;
        for (int i = 0; i < 9; ++i)
            taken.append(pause.take());
        QCOMPARE(taken, QList<int>({ 1, 3, 9, 27, 81, 243, 729, 1800, 1800 }));
        pause.reset();
        QCOMPARE(pause.take(), 1);
    }
};

FENNEL_REGISTER_TEST(DeadlineTest)
#include "deadlinetest.moc"
