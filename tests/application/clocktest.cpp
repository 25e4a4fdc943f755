// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/clock.h"
#include "support/testmain.h"

#include <QtTest>

class ClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSystemClockLeavesIntervalsAlone() { QCOMPARE(Clock::instance().timerInterval(5000), 5000); }

    void anotherClockStandsInUntilItIsTakenOut()
    {
        class Fast : public Clock
        {
        public:
            int timerInterval(int, Timer) const override { return 1; }
        } fast;
        Clock::setInstance(&fast);
        QCOMPARE(Clock::instance().timerInterval(5000), 1);
        Clock::setInstance(nullptr);
        QCOMPARE(Clock::instance().timerInterval(5000), 5000);
    }
};

FENNEL_REGISTER_TEST(ClockTest)
#include "clocktest.moc"
