// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/attempts.h"

#include "support/testmain.h"

#include <QtTest>

/** The count of repetitions and the delay before each. */
class AttemptsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStepIsRepeatedFiveTimes()
    {
        Attempts attempts;
        for (int used = 1; used <= 5; ++used) {
            QVERIFY(!attempts.spent());
            QVERIFY(attempts.consume());
            QCOMPARE(attempts.used(), used);
        }
        QVERIFY(attempts.spent());
        QVERIFY(!attempts.consume());
        QCOMPARE(attempts.used(), 5);
    }

    void aSuccessGivesAllRepetitionsBack()
    {
        Attempts attempts(1);
        QVERIFY(attempts.consume());
        QVERIFY(!attempts.consume());
        attempts.reset();
        QVERIFY(attempts.consume());
    }

    void whatIsSpentIsNotRepeated()
    {
        Attempts attempts;
        attempts.spend();
        QVERIFY(!attempts.consume());
    }

    void theDelayTriplesUntilItIsReset()
    {
        Attempts attempts;
        QList<int> delays;
        for (int i = 0; i < 5; ++i)
            delays.append(attempts.takeDelay());
        QCOMPARE(delays, QList<int>({ 5000, 15000, 45000, 135000, 405000 }));
        attempts.reset();
        QCOMPARE(attempts.takeDelay(), 1215000);
        attempts.resetDelay();
        QCOMPARE(attempts.takeDelay(), 5000);
    }

    void theDelayNeverOverflows()
    {
        Attempts attempts;
        int last = 0;
        for (int i = 0; i < 40; ++i) {
            const int delay = attempts.takeDelay();
            QVERIFY(delay >= last);
            last = delay;
        }
        QCOMPARE(last, std::numeric_limits<int>::max());
    }
};

FENNEL_REGISTER_TEST(AttemptsTest)
#include "attemptstest.moc"
