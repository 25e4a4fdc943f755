// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "interopbed.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

/** @short Out-of-office settings and availability, as a real server has them. */
class AbsenceInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whatIsWrittenIsReadAgain_data() { versions({ "12.0", "12.1", "14.0", "14.1" }); }
    void whatIsWrittenIsReadAgain();
    void peopleHaveTheirHalfHours_data() { versions({ "14.0", "14.1" }); }
    void peopleHaveTheirHalfHours();

private:
    static void versions(const QStringList &versions);
    static EasOofContainer read(InteropBed &bed, qulonglong id);

    RealServer mServer;
};

void AbsenceInteropTest::versions(const QStringList &versions)
{
    QTest::addColumn<QString>("version");
    for (const QString &version : versions)
        QTest::newRow(qPrintable(version)) << version;
}

void AbsenceInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
    QVERIFY(mServer.seedEvents(QStringLiteral("bob"), 24));
}

EasOofContainer AbsenceInteropTest::read(InteropBed &bed, qulonglong id)
{
    QSignalSpy fetched(RequestManager::instance(), &RequestManager::oofStateFetched);
    RequestManager::instance()->onGetOofRequest(bed.accountId(), id);
    return bed.waitFor(id) == 0 && fetched.count() == 1 ? fetched.first().at(2).value<EasOofContainer>()
                                                        : EasOofContainer();
}

void AbsenceInteropTest::whatIsWrittenIsReadAgain()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, QStringLiteral("alice"), { version });
    QVERIFY(bed.isReady());
    EasOofContainer state;
    state.setOofEnabled(true);
    state.setTimeRangeEnabled(true);
    const QDateTime start = QDateTime(QDate::currentDate().addDays(1), QTime(0, 0), Qt::UTC);
    state.setStartTime(start);
    state.setEndTime(start.addDays(5));
    state.setInternalMessage(QStringLiteral("Grüße aus dem Urlaub"));
    RequestManager::instance()->onSetOofStateRequest(bed.accountId(), 9001, state);
    QCOMPARE(bed.waitFor(9001), 0);
    const EasOofContainer told = read(bed, 9002);
    QVERIFY(told.oofEnabled());
    QVERIFY(told.timeRangeEnabled());
    QCOMPARE(told.startTime(), state.startTime());
    QCOMPARE(told.endTime(), state.endTime());
    QCOMPARE(told.internalMessage(), state.internalMessage());

    RequestManager::instance()->onSetOofStateRequest(bed.accountId(), 9003, EasOofContainer());
    QCOMPARE(bed.waitFor(9003), 0);
    QVERIFY(!read(bed, 9004).oofEnabled());
}

void AbsenceInteropTest::peopleHaveTheirHalfHours()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, QStringLiteral("alice"), { version });
    QVERIFY(bed.isReady());
    QSignalSpy lists(RequestManager::instance(), &RequestManager::attendeesAvailableDataReady);
    const QDateTime start = QDateTime(QDate::currentDate().addDays(-7), QTime(0, 0), Qt::UTC);
    RequestManager::instance()->onAttendeesAvailableRequest(bed.accountId(), 9001,
        QStringLiteral("Bob <bob@example.org>; nobody@example.org"), start.toString(Qt::ISODate),
        start.addDays(14).toString(Qt::ISODate));
    QTRY_COMPARE_WITH_TIMEOUT(lists.count(), 1, 60000);
    // People whom it does not know are left out of its reply.
    QCOMPARE(lists.first().at(1).toStringList(), QStringList("bob@example.org"));
    QCOMPARE(lists.first().at(2).toStringList(), QStringList("Bob Brown"));
    const QString states = lists.first().at(3).toStringList().value(0);
    // It counts the half hour in which the span ends as well.
    QCOMPARE(states.size(), 14 * 48 + 1);
    QVERIFY2(states.contains('2'), qPrintable(states));
    QVERIFY2(states.contains('0'), qPrintable(states));
}

FENNEL_REGISTER_TEST(AbsenceInteropTest)
#include "absenceinteroptest.moc"
