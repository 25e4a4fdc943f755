// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/outcome.h"

#include "support/testmain.h"

#include <QtTest>

/** The status that a request ends with, and the failure that it must not forget. */
class OutcomeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyZeroAndOneAreSuccess_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("success");
        QTest::newRow("nothing recorded") << 0 << true;
        QTest::newRow("success of the server") << 1 << true;
        QTest::newRow("another status of the server") << 2 << false;
        QTest::newRow("transport failure") << 10204 << false;
        QTest::newRow("cancelled") << -4 << false;
    }

    void onlyZeroAndOneAreSuccess()
    {
        QFETCH(int, status);
        QFETCH(bool, success);
        Outcome outcome;
        outcome.setStatus(status);
        QCOMPARE(outcome.isSuccess(), success);
    }

    void aFailedPartIsKeptBesideTheStatus()
    {
        Outcome outcome;
        outcome.noteFailure(6);
        outcome.setStatus(1);
        outcome.noteFailure(0);
        QCOMPARE(outcome.failure(), 6);
        QVERIFY(outcome.isSuccess());
        outcome.noteFailure(-6);
        QCOMPARE(outcome.failure(), -6);
        outcome.forgetFailure();
        QCOMPARE(outcome.failure(), 0);
    }
};

FENNEL_REGISTER_TEST(OutcomeTest)
#include "outcometest.moc"
