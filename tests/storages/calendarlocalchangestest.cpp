// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendarlocalchanges.h"

#include "application/easdatabase.h"
#include "storages/calendareventproperties.h"
#include "storages/calendarlocalchecks.h"
#include "storages/calendartimestamps.h"
#include "support/calendarscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <KCalendarCore/Todo>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** What one search finds. */
struct Found
{
    bool done = false;
    qint64 queryTime = 0;
    QList<EasCalendarItem> added;
    QList<EasCalendarItem> updated;
    QStringList deleted;

    bool isEmpty() const { return added.isEmpty() && updated.isEmpty() && deleted.isEmpty(); }
};

} // namespace

/** What the user changed, and what the engine itself wrote. */
class CalendarLocalChangesTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CalendarScene> mScene;
    std::unique_ptr<CalendarLocalChanges> mChanges;
    /** Between the time of the synced events and that of the user's edits. */
    const qint64 mLastSync = 1650000000;

    Found query(qint64 after = 0)
    {
        Found found;
        found.done = mChanges->queryLocalUpdates(mScene->folder, after == 0 ? mLastSync : after,
            found.queryTime, found.added, found.updated, found.deleted);
        return found;
    }

    /** What a request does once the server has taken everything. */
    bool acknowledge(Found &found)
    {
        for (EasCalendarItem &item : found.added)
            item.setServerId(QStringLiteral("f1:new-") + item.localId());
        return mChanges->uploadedLocalChanges(found.added, found.updated, found.deleted)
            && EasDatabase::instance()->calendarItemsChanges(
                mScene->accountId(), found.added, found.updated, found.deleted, {});
    }

    static Event::Ptr event(const QString &uid, qint64 modified = 1600000000)
    {
        return CalendarScene::makeEvent(uid, modified);
    }

    bool saveSeries()
    {
        return mScene->saveSynced(
            CalendarScene::makeSeries(QStringLiteral("series-1")), QStringLiteral("f1:s"));
    }

    QDateTime day(int number) const
    {
        return CalendarScene::makeEvent(QStringLiteral("any")).data()->dtStart().addDays(number);
    }

    void setVersion(ProtocolVersion version) { mScene->account.setProtocolVersion(version); }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CalendarScene>();
        mChanges = std::make_unique<CalendarLocalChanges>(mScene->context);
    }

    void cleanup()
    {
        mChanges.reset();
        mScene.reset();
    }

    void whatIsSyncedIsNoChange()
    {
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-1")), QStringLiteral("f1:1")));
        // Stored by a sync after the time of the last one, as everything that a sync brings.
        QVERIFY(mScene->saveSynced(event(QStringLiteral("event-2"), mLastSync + 5), QStringLiteral("f1:2")));
        const Found found = query();
        QVERIFY(found.done && found.isEmpty());
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
            EasDatabase::instance()->calendarItemUpdateTime(mScene->accountId(), QStringLiteral("event-1")),
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
        QVERIFY(timestamps.updateTimestampCache(mScene->notebookUid));
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

    void aDeletedException_data() { aNewExceptionOfAnUnchangedSeries_data(); }

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

    void disabledClosedOrUnknown()
    {
        LogCollector log;
        Found found;
        QVERIFY(!mChanges->queryLocalUpdates(
            QStringLiteral("f9"), 0, found.queryTime, found.added, found.updated, found.deleted));
        QVERIFY(log.contains(QStringLiteral("No notebook ID:")));
        QVERIFY(!mChanges->touchItems(QStringLiteral("f9"), {}));
        QVERIFY(!mChanges->setSyncTime(QString(), 1));
        QVERIFY(log.contains(QStringLiteral("No calendar ID, refusing to setSyncTime")));
        QVERIFY(!mChanges->setSyncTime(QStringLiteral("no notebook"), 1));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("notebook pointer is null for local id"), QStringLiteral("no notebook"),
                QStringLiteral(", refusing to setSyncTime") }));
        mScene->configuration->isEnabled = false;
        QVERIFY(!query().done);
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
        LogCollector log;
        const mKCal::Notebook::Ptr stranger = mKCal::Notebook::Ptr::create(*mScene->notebook);
        QVERIFY(mScene->context.storage->deleteNotebook(mScene->notebook));
        QVERIFY(!mChanges->setSyncTime(mScene->notebookUid, mLastSync));
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

    void aMappingThatCannotBeReadStopsTheSearch()
    {
        QVERIFY(mScene->save(event(QStringLiteral("event-1"), mLastSync + 10)));
        QSqlQuery rename(QSqlDatabase::database(QStringLiteral("fennel-eas-db")));
        QVERIFY(rename.exec(QStringLiteral("ALTER TABLE calendar RENAME TO hidden")));
        LogCollector log;
        const Found found = query();
        QVERIFY(rename.exec(QStringLiteral("ALTER TABLE hidden RENAME TO calendar")));
        QVERIFY(!found.done);
        QVERIFY(found.isEmpty());
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
        QVERIFY(timestamps.updateTimestampCache(mScene->notebookUid));
        QCOMPARE(timestamps.eventTimestamp(QStringLiteral("nobody")), EasDatabase::TimestampInvalid);
        QVERIFY(saveSeries());
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 2, QStringLiteral("later")));
        QVERIFY(timestamps.updateTimestampCache(mScene->notebookUid));
        QCOMPARE(timestamps.eventTimestamp(QStringLiteral("series-1")), 1700000000u);
        QCOMPARE(timestamps.storedTimestamp(QStringLiteral("series-1")), 1600000000u);
    }
};

FENNEL_REGISTER_TEST(CalendarLocalChangesTest)
#include "calendarlocalchangestest.moc"
