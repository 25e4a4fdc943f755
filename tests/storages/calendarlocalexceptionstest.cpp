// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/exchangeactivesync.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/localchangestestbase.h"

#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

/** Occurrences of series that the user changed, made or deleted. */
class CalendarLocalExceptionsTest : public LocalChangesTestBase
{
    Q_OBJECT

private Q_SLOTS:
    void aNewExceptionOfAnUnchangedSeries_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("within the series") << int(ProtocolVersion141);
        QTest::newRow("on its own") << int(ProtocolVersion160);
    }

    void aNewExceptionOfAnUnchangedSeries()
    {
        QFETCH(int, version);
        setVersion(ProtocolVersion(version));
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved")));
        QVERIFY(mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        Found found = query();
        QVERIFY(found.added.isEmpty() && found.deleted.isEmpty());
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().serverId(), QStringLiteral("f1:s"));
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        const EasCalendarItem exception = found.updated.constFirst().exceptions().constFirst();
        QCOMPARE(exception.subject(), QStringLiteral("moved"));
        QVERIFY(exception.itemChanged());
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void otherExceptionsStayWithTheirSeries()
    {
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 1, QStringLiteral("old"), 1600000000));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("new")));
        Found found = query();
        QCOMPARE(found.updated.size(), 1);
        const QList<EasCalendarItem> exceptions = found.updated.constFirst().exceptions();
        QCOMPARE(exceptions.size(), 2);
        for (const EasCalendarItem &exception : exceptions)
            QCOMPARE(exception.itemChanged(), exception.subject() == QLatin1String("new"));
        setVersion(ProtocolVersion161);
        found = query();
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().constFirst().subject(), QStringLiteral("new"));
    }

    void anEditedExceptionOfAnEditedSeries()
    {
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved")));
        QVERIFY(mScene->edit(QStringLiteral("series-1"),
            [](const Event::Ptr &event) { event->setSummary(QStringLiteral("edited")); }));
        const Found found = query();
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().subject(), QStringLiteral("edited"));
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        QVERIFY(found.updated.constFirst().exceptions().constFirst().itemChanged());
    }

    void aNewSeriesWithAnException()
    {
        QVERIFY(mScene->save(CalendarScene::makeSeries(QStringLiteral("series-1"), mLastSync + 10)));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved"), mLastSync + 20));
        const Found found = query();
        QVERIFY(found.updated.isEmpty());
        QCOMPARE(found.added.size(), 1);
        QCOMPARE(found.added.constFirst().exceptions().size(), 1);
        QVERIFY(found.added.constFirst().exceptions().constFirst().itemChanged());
    }

    void exceptionsOfANewSeriesFollowWhateverComesBetween_data() { aNewExceptionOfAnUnchangedSeries_data(); }

    void exceptionsOfANewSeriesFollowWhateverComesBetween()
    {
        QFETCH(int, version);
        setVersion(ProtocolVersion(version));
        const bool goAlone = version >= ProtocolVersion160;
        const Event::Ptr series = CalendarScene::makeSeries(QStringLiteral("series-1"), mLastSync + 10);
        series->recurrence()->addExDateTime(series->dtStart().addDays(4));
        series->setLastModified(QDateTime::fromSecsSinceEpoch(mLastSync + 10, Qt::UTC));
        QVERIFY(mScene->save(series));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved"), mLastSync + 20));
        Found found = query();
        QCOMPARE(found.added.size(), 1);
        QVERIFY(acknowledge(found));

        // The request that brought the series up has ended, or the whole daemon.
        mChanges = std::make_unique<CalendarLocalChanges>(mScene->context);
        found = query(mLastSync + 1000);
        QVERIFY(found.added.isEmpty());
        QCOMPARE(found.updated.size(), goAlone ? 1 : 0);
        if (goAlone) {
            QStringList changed;
            const QList<EasCalendarItem> exceptions = found.updated.constFirst().exceptions();
            for (const EasCalendarItem &exception : exceptions) {
                QVERIFY(exception.itemChanged());
                changed.append(exception.exceptionStartTime() + QLatin1Char('-')
                    + QString::number(exception.exceptionDeleted()));
            }
            changed.sort();
            QCOMPARE(changed,
                QStringList({ QStringLiteral("20240503T080000Z-0"), QStringLiteral("20240505T080000Z-1") }));
            QVERIFY(acknowledge(found));
        }
        QVERIFY(query().isEmpty());
    }

    void aDeletedException_data() { aNewExceptionOfAnUnchangedSeries_data(); }

    void deletedOccurrencesOfAMovedSeriesGoUpAnew()
    {
        setVersion(ExchangeActiveSync::ProtocolVersion161);
        const Event::Ptr series = CalendarScene::makeSeries(QStringLiteral("series-1"));
        series->recurrence()->addExDateTime(day(2));
        CalendarEventProperties::setKnownDeletions(*series, { ExchangeActiveSync::dateTimeToString(day(2)) });
        series->setLastModified(QDateTime::fromSecsSinceEpoch(1600000000, Qt::UTC));
        QVERIFY(mScene->saveSynced(series, QStringLiteral("f1:s")));
        const QString second = QStringLiteral("f2");
        QVERIFY(mScene->move(QStringLiteral("series-1"), mScene->addSecondCalendar()));
        Found found = queryFolder(second);
        QCOMPARE(found.added.size(), 1);
        QCOMPARE(found.added.constFirst().exceptions().size(), 1);
        QCOMPARE(found.added.constFirst().exceptions().constFirst().exceptionDeleted(), quint8(1));
        QVERIFY(acknowledge(found));
        // The series alone has gone up.
        const QString start = ExchangeActiveSync::dateTimeToString(day(2));
        QVERIFY(mChanges->touchItems(second, { { QStringLiteral("series-1"), start } }));
        found = queryFolder(second);
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().constFirst().exceptionStartTime(), start);
        QVERIFY(acknowledge(found));
        QVERIFY(queryFolder(second).isEmpty());
    }

    void aDeletedException()
    {
        QFETCH(int, version);
        setVersion(ProtocolVersion(version));
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved"), 1600000000));
        QVERIFY(mScene->remove(QStringLiteral("series-1"), day(2)));
        QVERIFY(mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        Found found = query();
        QVERIFY(found.deleted.isEmpty());
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        const EasCalendarItem exception = found.updated.constFirst().exceptions().constFirst();
        QCOMPARE(exception.exceptionDeleted(), quint8(1));
        QCOMPARE(exception.exceptionStartTime(), QStringLiteral("20240503T080000Z"));
        QCOMPARE(exception.serverId(), QStringLiteral("f1:s"));

        // To the server the occurrence is gone, and so it is here.
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
        const Event::Ptr series = mScene->load(QStringLiteral("series-1"));
        QVERIFY(!series->recursAt(day(2)));
        QVERIFY(series->recursAt(day(3)));
        QVERIFY(!mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
    }

    void aDeletedSeriesTakesItsExceptionsAlong()
    {
        LogCollector log;
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved"), 1600000000));
        QVERIFY(mScene->remove(QStringLiteral("series-1")));
        Found found = query();
        QCOMPARE(found.deleted, QStringList(QStringLiteral("f1:s")));
        QVERIFY(found.updated.isEmpty());
        QVERIFY(log.contains(QStringLiteral("skipping exception of the deleted event")));
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void anExcludedOccurrence_data() { aNewExceptionOfAnUnchangedSeries_data(); }

    void anExcludedOccurrence()
    {
        QFETCH(int, version);
        setVersion(ProtocolVersion(version));
        QVERIFY(saveSeries());
        QVERIFY(mScene->edit(QStringLiteral("series-1"), [](const Event::Ptr &series) {
            series->recurrence()->addExDateTime(series->dtStart().addDays(4));
        }));
        Found found = query();
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().constFirst().exceptionDeleted(), quint8(1));
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
        // The next change of the series does not delete it again where deletions go up one by one.
        QVERIFY(mScene->edit(
            QStringLiteral("series-1"),
            [](const Event::Ptr &series) { series->setSummary(QStringLiteral("edited")); }, 1700000100));
        found = query();
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().size(), version < ProtocolVersion160 ? 1 : 0);
    }

    void whatAChangeOfTheRuleLeftBehindStays_data() { aNewExceptionOfAnUnchangedSeries_data(); }

    void whatAChangeOfTheRuleLeftBehindStays()
    {
        QFETCH(int, version);
        setVersion(ProtocolVersion(version));
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved")));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 3, QStringLiteral("gone")));
        QVERIFY(mScene->remove(QStringLiteral("series-1"), day(3)));
        QVERIFY(mScene->edit(QStringLiteral("series-1"), [](const Event::Ptr &series) {
            series->recurrence()->addExDateTime(series->dtStart().addDays(4));
            series->setDtStart(series->dtStart().addSecs(3600));
            series->setDtEnd(series->dtEnd().addSecs(3600));
        }));
        Found found = query();
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().startTime(), QStringLiteral("20240501T090000Z"));
        QVERIFY(found.updated.constFirst().exceptions().isEmpty());
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void touchedExceptionsGoUpOnce()
    {
        setVersion(ProtocolVersion160);
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved"), 1600000000));
        QVERIFY(query().isEmpty());
        LogCollector log;
        QVERIFY(mChanges->touchItems(mScene->folder,
            { { QStringLiteral("series-1"), QStringLiteral("20240503T080000Z") },
                { QStringLiteral("no event"), QStringLiteral("20240503T080000Z") } }));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Touth time:") }));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Event"), QStringLiteral("no event"),
                QStringLiteral("not found in Calendar storage") }));
        Found found = query();
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void aTouchCountsEvenInTheSecondOfTheUpload()
    {
        setVersion(ProtocolVersion160);
        const qint64 inAMoment = QDateTime::currentSecsSinceEpoch() + 1000;
        QVERIFY(mScene->saveSynced(
            CalendarScene::makeSeries(QStringLiteral("series-1"), inAMoment), QStringLiteral("f1:s")));
        QVERIFY(mScene->edit(
            QStringLiteral("series-1"),
            [](const Event::Ptr &series) {
                series->recurrence()->addExDateTime(series->dtStart().addDays(4));
            },
            inAMoment));
        QVERIFY(query().isEmpty());
        QVERIFY(mChanges->touchItems(
            mScene->folder, { { QStringLiteral("series-1"), QStringLiteral("20240505T080000Z") } }));
        QCOMPARE(query().updated.size(), 1);
    }
};

FENNEL_REGISTER_TEST(CalendarLocalExceptionsTest)
#include "calendarlocalexceptionstest.moc"
