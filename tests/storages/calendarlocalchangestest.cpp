// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/localchangestestbase.h"

#include "storages/calendar/calendarlocalchecks.h"
#include "storages/calendar/calendartimestamps.h"
#include "storages/uploadbudget.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <KCalendarCore/Todo>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

/** What the user changed, and what the engine itself wrote. */
class CalendarLocalChangesTest : public LocalChangesTestBase
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsSyncedIsNoChange()
    {
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        // Stored by a sync after the time of the last one, as everything that a sync brings.
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-2"), mLastSync + 5), QStringLiteral("f1:2")));
        const Found found = query();
        QVERIFY(found.answer == LocalQuery::Answered && found.isEmpty());
        QVERIFY(!mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
    }

    void aNewEvent()
    {
        QVERIFY(mScene->save(event(QStringLiteral("event-1"), mLastSync + 10)));
        QVERIFY(mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        Found found = query();
        QCOMPARE(found.added.size(), 1);
        const EasCalendarItem item = found.added.constFirst();
        QCOMPARE(item.localId(), QStringLiteral("event-1"));
        QCOMPARE(item.collectionId(), mScene->folder);
        QVERIFY(item.itemChanged() && item.serverId().isEmpty());
        QVERIFY(found.updated.isEmpty() && found.deleted.isEmpty());

        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
        QVERIFY(!mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        QCOMPARE(
            *EasDatabase::instance()->calendarItemUpdateTime(mScene->accountId(), QStringLiteral("event-1")),
            uint(mLastSync + 10));
    }

    void anEditedEvent()
    {
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        QVERIFY(mScene->edit(QStringLiteral("event-1"),
            [](const Event::Ptr &event) { event->setSummary(QStringLiteral("edited")); }));
        QVERIFY(mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        Found found = query();
        QVERIFY(found.added.isEmpty() && found.deleted.isEmpty());
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().subject(), QStringLiteral("edited"));
        QCOMPARE(found.updated.constFirst().serverId(), QStringLiteral("f1:1"));
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void aDeletedEvent()
    {
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        QVERIFY(mScene->remove(QStringLiteral("event-1")));
        QVERIFY(mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        Found found = query();
        QCOMPARE(found.deleted, QStringList(QStringLiteral("f1:1")));
        QVERIFY(found.added.isEmpty() && found.updated.isEmpty());
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
        Incidence::List remembered;
        QVERIFY(mScene->context.storage->deletedIncidences(&remembered));
        QVERIFY(remembered.isEmpty());
    }

    void anEventMovedToAnotherCalendar_data()
    {
        QTest::addColumn<bool>("newOneFirst");
        QTest::newRow("deleted first") << false;
        QTest::newRow("added first") << true;
    }

    void anEventMovedToAnotherCalendar()
    {
        QFETCH(bool, newOneFirst);
        const QString second = QStringLiteral("f2");
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        QVERIFY(mScene->move(QStringLiteral("event-1"), mScene->addSecondCalendar()));
        QStringList order { mScene->folder, second };
        if (newOneFirst)
            std::reverse(order.begin(), order.end());
        for (const QString &folder : qAsConst(order)) {
            Found found = queryFolder(folder);
            QVERIFY(found.answer == LocalQuery::Answered && found.updated.isEmpty());
            if (folder == second) {
                QVERIFY(found.deleted.isEmpty());
                QCOMPARE(found.added.size(), 1);
                QCOMPARE(found.added.constFirst().serverId(), QString());
                QCOMPARE(found.added.constFirst().collectionId(), second);
            } else {
                QVERIFY(found.added.isEmpty());
                QCOMPARE(found.deleted, QStringList { QStringLiteral("f1:1") });
            }
            QVERIFY(acknowledge(found));
        }
        QVERIFY(queryFolder(mScene->folder).isEmpty());
        QVERIFY(queryFolder(second).isEmpty());
        QVERIFY(mScene->load(QStringLiteral("event-1")));
    }

    void anEventMovedAndThenDeleted()
    {
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        QVERIFY(mScene->move(QStringLiteral("event-1"), mScene->addSecondCalendar()));
        QVERIFY(mScene->remove(QStringLiteral("event-1")));
        QVERIFY(queryFolder(QStringLiteral("f2")).isEmpty());
        Found found = query();
        QCOMPARE(found.deleted, QStringList { QStringLiteral("f1:1") });
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void anEventAddedAndDeletedLeavesNoTrace()
    {
        LogCollector log;
        QVERIFY(mScene->save(event(QStringLiteral("event-1"))));
        QVERIFY(mScene->remove(QStringLiteral("event-1")));
        QVERIFY(query().isEmpty());
        QVERIFY(!mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("No timestamp in DB for locally deleted item:"), QStringLiteral("event-1") }));
    }

    void whatEachCheckSkips()
    {
        CalendarTimestamps timestamps(mScene->context);
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        QCOMPARE(timestamps.updateTimestampCache(mScene->notebookUid), LocalQuery::Answered);
        const CalendarLocalChecks checks(timestamps);
        const Incidence::Ptr todo(new KCalendarCore::Todo);
        todo->setUid(QStringLiteral("to-do"));
        const Event::Ptr readOnly = event(QStringLiteral("read-only"));
        readOnly->setReadOnly(true);
        const Event::Ptr nameless = event(QStringLiteral("nameless"));
        nameless->setUid(QString());

        LogCollector log;
        QVERIFY(!checks.checkNewLocalItem(todo));
        QVERIFY(!checks.checkNewLocalItem(readOnly));
        QVERIFY(!checks.checkNewLocalItem(nameless));
        QVERIFY(!checks.checkNewLocalItem(mScene->load(QStringLiteral("event-1"))));
        for (const char *reason : { "due to non-event type", "due to read-only", "due to empty local id",
                 "due to modified timestamp match" })
            QVERIFY2(log.contains(QtDebugMsg,
                         { QStringLiteral("Skipping locally added item:"), QLatin1String(reason) }),
                reason);
        log.clear();
        QVERIFY(!checks.checkUpdatedLocalItem(todo));
        QVERIFY(!checks.checkUpdatedLocalItem(readOnly));
        QVERIFY(!checks.checkUpdatedLocalItem(nameless));
        for (const char *reason : { "due to non-event type", "due to read-only", "due to empty UID" })
            QVERIFY2(log.contains(QtDebugMsg,
                         { QStringLiteral("Skipping locally updated item:"), QLatin1String(reason) }),
                reason);
        QVERIFY(!checks.checkUpdatedLocalItem(mScene->load(QStringLiteral("event-1"))));
        QVERIFY(log.contains(QStringLiteral("No local updates detected for locally updated item:")));
        QVERIFY(!checks.checkUpdatedLocalItem(event(QStringLiteral("stranger"))));
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("No timestamp in DB for locally updated item:"), QStringLiteral("stranger") }));
        log.clear();
        QVERIFY(!checks.checkDeletedLocalItem(todo));
        QVERIFY(!checks.checkDeletedLocalItem(readOnly));
        QVERIFY(!checks.checkDeletedLocalItem(nameless));
        for (const char *reason : { "due to non-event type", "due to read-only", "due to empty UID" })
            QVERIFY2(log.contains(QtDebugMsg,
                         { QStringLiteral("Skipping locally deleted item:"), QLatin1String(reason) }),
                reason);
    }

    void toDosNeverGoUp()
    {
        const KCalendarCore::Todo::Ptr todo(new KCalendarCore::Todo);
        todo->setUid(QStringLiteral("to-do-1"));
        QVERIFY(mScene->context.calendar->addIncidence(todo, mScene->notebookUid));
        QVERIFY(mScene->context.storage->save());
        QVERIFY(query().isEmpty());
    }

    void anItemInBothListsGoesUpOnce()
    {
        // Made by a sync after the last one, and edited since: the store reports it as new.
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1"), mLastSync + 5), QStringLiteral("f1:1")));
        QVERIFY(mScene->edit(QStringLiteral("event-1"),
            [](const Event::Ptr &event) { event->setSummary(QStringLiteral("edited")); }));
        const Found found = query();
        QVERIFY(found.added.isEmpty());
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().serverId(), QStringLiteral("f1:1"));
    }

    void aRefusedUploadIsFoundAgain()
    {
        QVERIFY(mScene->save(event(QStringLiteral("event-1"))));
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-2")), QStringLiteral("f1:2")));
        QVERIFY(mScene->edit(QStringLiteral("event-2"),
            [](const Event::Ptr &event) { event->setSummary(QStringLiteral("edited")); }));
        // Both are older than the last sync.
        const Found found = query(1800000000);
        QCOMPARE(found.added.size(), 1);
        QCOMPARE(found.updated.size(), 1);
    }

    void anEditAfterTheClockWasSetBack()
    {
        // Made and synced while the clock was a year ahead.
        QVERIFY(mScene->saveSynced(
            event(QStringLiteral("event-1"), mLastSync + 31536000), QStringLiteral("f1:1")));
        const auto rename = [](const Event::Ptr &event) {
            event->setCreated(QDateTime::fromSecsSinceEpoch(0, Qt::UTC));
            event->setSummary(QStringLiteral("edited"));
        };
        QVERIFY(mScene->edit(QStringLiteral("event-1"), rename, mLastSync + 10));
        Found found = query(mLastSync + 31536001);
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().subject(), QStringLiteral("edited"));
        QVERIFY(acknowledge(found));
        QVERIFY(query(mLastSync + 31536001).isEmpty());
    }

    void anEditedSeriesAfterTheClockWasSetBack()
    {
        setVersion(ProtocolVersion161);
        QVERIFY(
            mScene->saveSynced(CalendarScene::makeSeries(QStringLiteral("series-1"), mLastSync + 31536000),
                QStringLiteral("f1:s")));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("later"), mLastSync + 10));
        QVERIFY(mScene->edit(
            QStringLiteral("series-1"),
            [](const Event::Ptr &event) {
                event->setCreated(QDateTime::fromSecsSinceEpoch(0, Qt::UTC));
                event->setLocation(QStringLiteral("elsewhere"));
            },
            mLastSync + 10));
        Found found = query(mLastSync + 31536001);
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().location(), QStringLiteral("elsewhere"));
        QCOMPARE(found.updated.constFirst().exceptions().size(), 1);
        QVERIFY(found.updated.constFirst().exceptions().constFirst().itemChanged());
        QVERIFY(acknowledge(found));
        QVERIFY(query(mLastSync + 31536001).isEmpty());
    }

    void aDeletionRightAfterTheSyncThatBroughtTheEvent()
    {
        // The store leaves such an event out of its list for the time of that sync.
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1"), mLastSync + 2), QStringLiteral("f1:1")));
        QVERIFY(mScene->remove(QStringLiteral("event-1")));
        QVERIFY(mChanges->hasLocalUpdates(mScene->notebookUid, mLastSync));
        QCOMPARE(query().deleted, QStringList(QStringLiteral("f1:1")));
        QCOMPARE(query(4000000000).deleted, QStringList(QStringLiteral("f1:1")));
    }

    void anEditDuringTheUploadGoesUpNext()
    {
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        QVERIFY(mScene->edit(QStringLiteral("event-1"),
            [](const Event::Ptr &event) { event->setSummary(QStringLiteral("first")); }));
        Found found = query();
        QVERIFY(mScene->edit(
            QStringLiteral("event-1"),
            [](const Event::Ptr &event) { event->setSummary(QStringLiteral("second")); }, 1700000001));
        QVERIFY(acknowledge(found));
        found = query(1700000001);
        QCOMPARE(found.updated.size(), 1);
        QCOMPARE(found.updated.constFirst().subject(), QStringLiteral("second"));
    }

    void disabledClosedOrUnknown()
    {
        LogCollector log;
        Found found;
        QCOMPARE(mChanges->queryLocalUpdates(
                     QStringLiteral("f9"), 0, found.queryTime, found.added, found.updated, found.deleted),
            LocalQuery::StoreSilent);
        QVERIFY(log.contains(QStringLiteral("No notebook ID:")));
        QVERIFY(!mChanges->touchItems(QStringLiteral("f9"), {}));
        QVERIFY(!mChanges->setSyncTime(QString(), 1));
        QVERIFY(log.contains(QStringLiteral("No calendar ID, refusing to setSyncTime")));
        QVERIFY(!mChanges->setSyncTime(QStringLiteral("no notebook"), 1));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("notebook pointer is null for local id"), QStringLiteral("no notebook"),
                QStringLiteral(", refusing to setSyncTime") }));
        mScene->configuration->isEnabled = false;
        QCOMPARE(query().answer, LocalQuery::StoreSilent);
        QVERIFY(!mChanges->touchItems(mScene->folder, {}));
        QCOMPARE(log.count(QStringLiteral("Calendar sync disabled")), 2);
        QVERIFY(!mChanges->setSyncTime(mScene->notebookUid, 1));
        QVERIFY(log.contains(QStringLiteral("Calendar sync disabled, refusing to setSyncTime")));
        QVERIFY(mChanges->handleLocalUpdates().isEmpty());
        QVERIFY(log.contains(QStringLiteral("Calendar disabled")));

        mScene->configuration->isEnabled = true;
        CalendarStoreContext closed;
        closed.account = &mScene->account;
        CalendarLocalChanges changes(closed);
        QVERIFY(!changes.hasLocalUpdates(mScene->notebookUid, 0));
        QVERIFY(!changes.setSyncTime(mScene->notebookUid, 1));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No storage, refusing to setSyncTime") }));
        mScene->account.calendar.clear();
        QVERIFY(changes.handleLocalUpdates().isEmpty());
        QVERIFY(log.contains(QStringLiteral("No calendar config")));
    }

    void theSyncTimeIsTheNotebooks()
    {
        qint64 time = -1;
        QVERIFY(mChanges->syncTime(mScene->notebookUid, time));
        QCOMPARE(time, qint64(0));
        QVERIFY(mChanges->setSyncTime(mScene->notebookUid, mLastSync));
        QVERIFY(mChanges->syncTime(mScene->notebookUid, time));
        QCOMPARE(time, mLastSync);
        QCOMPARE(mScene->notebook->syncDate(), QDateTime::fromSecsSinceEpoch(mLastSync, Qt::UTC));
        QVERIFY(!mChanges->syncTime(QStringLiteral("no notebook"), time));

        // A notebook that somebody else removed.
        QVERIFY(mScene->context.storage->deleteNotebook(mScene->notebook));
        QVERIFY(!mChanges->setSyncTime(mScene->notebookUid, mLastSync));
    }

    void aSyncTimeThatCannotBeStoredIsTold()
    {
        const QString connection = QStringLiteral("calendar-behind-its-back");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
            database.setDatabaseName(mScene->databaseName());
            QVERIFY(database.open());
            QVERIFY(QSqlQuery(database).exec(QStringLiteral("ALTER TABLE notebooks RENAME TO hidden")));
        }
        QSqlDatabase::removeDatabase(connection);
        const LogCollector log;
        QVERIFY(!mChanges->setSyncTime(mScene->notebookUid, mLastSync));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral(" failed to update notebook"), QStringLiteral("in setSyncTime") }));
    }

    void changedFoldersAreNamed()
    {
        LogCollector log;
        QVERIFY(mChanges->handleLocalUpdates().isEmpty());
        QVERIFY(log.contains(QStringLiteral("No local updates are valid to upsync.")));
        QVERIFY(mScene->save(event(QStringLiteral("event-1"), mLastSync + 10)));
        QCOMPARE(mChanges->handleLocalUpdates(), QStringList(mScene->notebookUid));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Found local updates in:") }));
    }

    void aMappingThatCannotBeReadStopsTheSearch()
    {
        QVERIFY(mScene->save(event(QStringLiteral("event-1"), mLastSync + 10)));
        const HiddenTable hidden("calendar");
        const Found found = query();
        QCOMPARE(found.answer, LocalQuery::MappingFailed);
        QVERIFY(found.isEmpty());
    }

    void anEditInTheSecondOfTheUploadIsFound()
    {
        TestClock clock(QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC));
        const qint64 now = clock.currentDateTimeUtc().toSecsSinceEpoch();
        QVERIFY(mScene->save(event(QStringLiteral("event-1"), now)));
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved"), now));
        Found found = query();
        QCOMPARE(found.added.size() + found.updated.size(), 2);
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
        const auto rename = [](const Event::Ptr &event) {
            event->setSummary(QStringLiteral("at once"));
        };
        QVERIFY(mScene->edit(QStringLiteral("event-1"), rename, now));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 4, QStringLiteral("moved, too"), now));
        clock.advance(5000);

        found = query();
        QCOMPARE(found.added.size(), 0);
        QCOMPARE(found.updated.size(), 2);
        QVERIFY(acknowledge(found));
        QVERIFY(query().isEmpty());
    }

    void foldersThatCannotBeReadStopTheSearch()
    {
        const HiddenTable hidden("collections");
        QCOMPARE(query().answer, LocalQuery::MappingFailed);
    }

    void whatDoesNotFitIsLeftForTheNextSearch()
    {
        QVERIFY(mScene->save(event(QStringLiteral("new-event-1"), mLastSync + 10)));
        QVERIFY(mScene->save(event(QStringLiteral("new-event-2"), mLastSync + 10)));
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("moved")));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 3, QStringLiteral("moved as well")));
        UploadBudget budget;
        for (int number = 1; number < UploadBudget::MostChanges; ++number)
            QVERIFY(budget.take(QStringLiteral("of another folder ") + QString::number(number)));
        budget.beginFolder({});
        const Found first = query(0, &budget);
        QCOMPARE(first.added.size() + first.updated.size(), 1);
        QVERIFY(budget.hasLeftOut());

        UploadBudget next;
        next.beginFolder(budget.taken());
        const Found second = query(0, &next);
        QCOMPARE(second.added.size() + second.updated.size(), 2);
        QVERIFY(!next.hasLeftOut());
        const QList<EasCalendarItem> series = first.updated + second.updated;
        QCOMPARE(series.size(), 1);
        QCOMPARE(series.constFirst().exceptions().size(), 2);
    }

    void theSearchTellsWhenItWas()
    {
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        const Found found = query();
        QVERIFY(found.queryTime >= before && found.queryTime <= QDateTime::currentSecsSinceEpoch());
    }

    void stampsOfInvalidTimes()
    {
        QCOMPARE(CalendarTimestamps::timeToStamp(QDateTime()), EasDatabase::TimestampInvalid);
        QCOMPARE(CalendarTimestamps::timeToStamp(QDateTime::fromSecsSinceEpoch(5)), 5u);
        CalendarTimestamps timestamps(mScene->context);
        QCOMPARE(timestamps.updateTimestampCache(mScene->notebookUid), LocalQuery::Answered);
        QCOMPARE(timestamps.eventTimestamp(QStringLiteral("nobody")), EasDatabase::TimestampInvalid);
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("later")));
        QCOMPARE(timestamps.updateTimestampCache(mScene->notebookUid), LocalQuery::Answered);
        QCOMPARE(timestamps.eventTimestamp(QStringLiteral("series-1")), 1700000000u);
        QCOMPARE(timestamps.storedTimestamp(QStringLiteral("series-1")), 1600000000u);
    }
};

FENNEL_REGISTER_TEST(CalendarLocalChangesTest)
#include "calendarlocalchangestest.moc"
