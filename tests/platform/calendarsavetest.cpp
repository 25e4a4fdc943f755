// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"
#include "support/testmain.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTimeZone>
#include <QtTest>

using namespace CalendarFixture;
using KCalendarCore::Event;
using KCalendarCore::Incidence;
using mKCal::ExtendedStorage;

/** What the calendar gathers, what a save writes, and what a load brings. */
class CalendarSaveTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    std::unique_ptr<CalendarStore> mStore;

    QString path() const { return mFolder.filePath(QStringLiteral("db")); }

    QStringList stored() const
    {
        CalendarStore other(path());
        Incidence::List list;
        other.storage->allIncidences(&list);
        return uids(list);
    }

    QStringList remembered() const
    {
        CalendarStore other(path());
        Incidence::List list;
        other.storage->deletedIncidences(&list);
        return uids(list);
    }

    bool add(const Event::Ptr &event) { return mStore->calendar->addEvent(event, notebookUid); }
    bool add(const char *uid) { return add(makeEvent(QLatin1String(uid))); }

    /** An exception of a series that is loaded. */
    Event::Ptr dissociate(const Event::Ptr &series, int day)
    {
        return mStore->calendar->dissociateSingleOccurrence(series, series->dtStart().addDays(day))
            .staticCast<Event>();
    }

private Q_SLOTS:
    void init()
    {
        mStore = std::make_unique<CalendarStore>(path());
        addNotebook(*mStore);
    }

    void cleanup()
    {
        mStore.reset();
        QVERIFY(QDir(mFolder.path()).removeRecursively() && QDir().mkpath(mFolder.path()));
    }

    void whatIsNotAdded()
    {
        QVERIFY(!mStore->calendar->addEvent(Event::Ptr(), notebookUid));
        QVERIFY(!mStore->calendar->addEvent(makeEvent(QStringLiteral("event-1")), QString()));
        QVERIFY(add("event-1"));
        QVERIFY(!add("event-1"));
        QVERIFY(mStore->storage->save());
        QCOMPARE(stored(), QStringList { QStringLiteral("event-1") });
        // The store is not asked, only the memory.
        mStore->calendar->close();
        QVERIFY(add("event-1"));
    }

    void anEventWithoutUidGetsOne()
    {
        const Event::Ptr event = makeEvent(QString());
        QVERIFY(add(event));
        QCOMPARE(event->uid().size(), 36);
    }

    void shortUids()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("short"));
        QVERIFY(!add(event));
        QCOMPARE(mStore->calendar->rawEvents().size(), 1); // It is there, without a notebook.
        QCOMPARE(event->uid().size(), 36);
        QVERIFY(mStore->calendar->notebook(event).isEmpty());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("not saved")));
        QVERIFY(mStore->storage->save());
        QVERIFY(stored().isEmpty());
    }

    void unsuitableNotebooksAreLeftOut_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("unknown") << 0;
        QTest::newRow("read-only") << 1;
        QTest::newRow("of the moment") << 2;
    }

    void unsuitableNotebooksAreLeftOut()
    {
        QFETCH(int, kind);
        const QString uid = QStringLiteral("unsuitable");
        if (kind > 0) {
            const mKCal::Notebook::Ptr notebook = addNotebook(*mStore, uid);
            notebook->setIsReadOnly(kind == 1);
            notebook->setRunTimeOnly(kind == 2);
            QVERIFY(mStore->storage->updateNotebook(notebook));
        }
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("left out")), uid));
        QVERIFY(add("saved event"));
        CalendarNotices notices;
        mStore->storage->registerObserver(&notices);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("not saved")));
        QVERIFY(mStore->storage->save());
        mStore->storage->unregisterObserver(&notices);
        QCOMPARE(notices.finished, QStringList { QStringLiteral("save completed") });
        QCOMPARE(stored(), QStringList { QStringLiteral("saved event") });
    }

    void closingBeforeSavingLosesTheEvent()
    {
        QVERIFY(add("event-1"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("closed before")));
        mStore->calendar->close();
        QVERIFY(mStore->storage->save());
        QVERIFY(stored().isEmpty());
    }

    void addingAndDeletingLeavesNothing()
    {
        QVERIFY(add("event-1"));
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("event-1"))));
        QVERIFY(mStore->storage->save());
        QVERIFY(stored().isEmpty() && remembered().isEmpty());
    }

    void deletingMarks()
    {
        QVERIFY(add("event-1"));
        QVERIFY(mStore->storage->save());
        const Event::Ptr event = mStore->event(QStringLiteral("event-1"));
        QVERIFY(mStore->calendar->deleteEvent(event));
        QVERIFY(!mStore->calendar->deleteEvent(event));
        QVERIFY(!mStore->event(QStringLiteral("event-1")));
        QCOMPARE(mStore->calendar->deletedEvent(QStringLiteral("event-1")), event);
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        QVERIFY(mStore->storage->save());
        const QDateTime date = mStore->storage->incidenceDeletedDate(event);
        QVERIFY(date.toSecsSinceEpoch() >= before);
        QVERIFY(stored().isEmpty());
        QCOMPARE(remembered(), QStringList { QStringLiteral("event-1") });
        mStore->calendar->close();
        QVERIFY(!mStore->calendar->deletedEvent(QStringLiteral("event-1")));
        // A new one of that name takes the place of the memory.
        QVERIFY(add("event-1"));
        QVERIFY(mStore->storage->save());
        QCOMPARE(stored(), QStringList { QStringLiteral("event-1") });
        QVERIFY(remembered().isEmpty());
    }

    void purgingErases()
    {
        QVERIFY(add("event-1"));
        QVERIFY(add("event-2"));
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("event-1"))));
        QVERIFY(mStore->storage->save(ExtendedStorage::PurgeDeleted));
        QVERIFY(remembered().isEmpty());

        const Event::Ptr second = mStore->event(QStringLiteral("event-2"));
        QVERIFY(mStore->calendar->deleteEvent(second));
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->storage->purgeDeletedIncidences({ makeEvent(QStringLiteral("stranger")) }));
        QCOMPARE(remembered().size(), 1);
        QVERIFY(mStore->storage->purgeDeletedIncidences({ second }, notebookUid));
        QVERIFY(remembered().isEmpty());
        // What is not deleted is not touched.
        QVERIFY(add("event-3"));
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->storage->purgeDeletedIncidences({ mStore->event(QStringLiteral("event-3")) }));
        QCOMPARE(stored(), QStringList { QStringLiteral("event-3") });
    }

    void deletingAndAddingAgainIsAChange()
    {
        QVERIFY(add("event-1"));
        QVERIFY(mStore->storage->save());
        const Event::Ptr event = mStore->event(QStringLiteral("event-1"));
        QVERIFY(mStore->calendar->deleteEvent(event));
        const Event::Ptr again = makeEvent(QStringLiteral("event-1"));
        again->setSummary(QStringLiteral("again"));
        QVERIFY(add(again));
        QVERIFY(mStore->storage->save());
        QCOMPARE(stored(), QStringList { QStringLiteral("event-1") });
        QVERIFY(remembered().isEmpty());
        mStore->reload();
        QCOMPARE(mStore->event(QStringLiteral("event-1"))->summary(), QStringLiteral("again"));
    }

    void changesAreWritten()
    {
        QVERIFY(add("event-1"));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        const Event::Ptr event = mStore->event(QStringLiteral("event-1"));
        event->setSummary(QStringLiteral("changed"));
        event->setLastModified(utc(1234567890));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        QCOMPARE(mStore->event(QStringLiteral("event-1"))->summary(), QStringLiteral("changed"));
        QCOMPARE(mStore->event(QStringLiteral("event-1"))->lastModified(), utc(1234567890));
    }

    void loadingChangesNothing()
    {
        const Event::Ptr event = makeSeries(QStringLiteral("event-1"));
        event->newAlarm()->setType(KCalendarCore::Alarm::Display);
        event->setLastModified(utc(1234567890));
        QVERIFY(add(event));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        QCOMPARE(mStore->event(QStringLiteral("event-1"))->lastModified(), utc(1234567890));
        QVERIFY(mStore->storage->save());
        CalendarStore other(path());
        other.storage->load();
        QCOMPARE(other.event(QStringLiteral("event-1"))->lastModified(), utc(1234567890));
    }

    void anEmptyPairOfUpdatesIsAChange()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("event-1"));
        event->setLastModified(utc(1234567890));
        QVERIFY(add(event));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        const Event::Ptr read = mStore->event(QStringLiteral("event-1"));
        read->startUpdates();
        read->endUpdates();
        QVERIFY(read->lastModified() > utc(1234567890));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        QVERIFY(mStore->event(QStringLiteral("event-1"))->lastModified() > utc(1234567890));
    }

    void whatIsInMemoryStays()
    {
        QVERIFY(add("event-1"));
        QVERIFY(mStore->storage->save());
        CalendarStore other(path());
        other.storage->load();
        other.event(QStringLiteral("event-1"))->setSummary(QStringLiteral("changed elsewhere"));
        QVERIFY(other.storage->save());
        QVERIFY(mStore->storage->load());
        QVERIFY(mStore->event(QStringLiteral("event-1"))->summary() != QStringLiteral("changed elsewhere"));
        mStore->reload();
        QCOMPARE(mStore->event(QStringLiteral("event-1"))->summary(), QStringLiteral("changed elsewhere"));
        // What was deleted here is not brought back.
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("event-1"))));
        QVERIFY(mStore->storage->load());
        QVERIFY(!mStore->event(QStringLiteral("event-1")));
    }

    void partsOfTheStore()
    {
        addNotebook(*mStore, QStringLiteral("notebook-2"));
        QVERIFY(add(makeEvent(QStringLiteral("some day in March"), QDate(2024, 3, 10))));
        QVERIFY(mStore->calendar->addEvent(
            makeEvent(QStringLiteral("some day in May"), QDate(2024, 5, 10)), QStringLiteral("notebook-2")));
        const Event::Ptr series = makeSeries(QStringLiteral("each day"), QDate(2023, 1, 1));
        QVERIFY(add(series));
        QVERIFY(add(dissociate(series, 3)));
        QVERIFY(mStore->storage->save());

        CalendarStore other(path());
        QVERIFY(other.storage->load(QStringLiteral("nobody"))); // Nothing found is no failure.
        QVERIFY(other.storage->load(QStringLiteral("each day")));
        QCOMPARE(other.calendar->rawEvents().size(), 1);
        QVERIFY(other.storage->load(QStringLiteral("each day"), series->dtStart().addDays(3).toUTC()));
        QCOMPARE(other.calendar->rawEvents().size(), 2);
        other.calendar->close();
        QVERIFY(other.storage->loadSeries(QStringLiteral("each day")));
        QCOMPARE(other.calendar->rawEvents().size(), 2);
        other.calendar->close();
        QVERIFY(other.storage->load(QDate(2024, 3, 1), QDate(2024, 3, 31)));
        QVERIFY(other.event(QStringLiteral("some day in March")) && other.event(QStringLiteral("each day")));
        QVERIFY(!other.event(QStringLiteral("some day in May")));
        other.calendar->close();
        QVERIFY(other.storage->loadNotebookIncidences(QStringLiteral("notebook-2")));
        QCOMPARE(other.calendar->rawEvents().size(), 1);
        QCOMPARE(other.calendar->incidences(QStringLiteral("notebook-2")).size(), 1);
        QVERIFY(!other.storage->loadNotebookIncidences(QString()));
        QVERIFY(other.storage->load());
        QCOMPARE(other.calendar->rawEvents().size(), 4);
        QCOMPARE(other.calendar->incidences(notebookUid).size(), 3);
    }

    void dissociating()
    {
        const Event::Ptr series = makeSeries(QStringLiteral("series-1"));
        series->setLocation(QStringLiteral("Room"));
        series->addAttendee(KCalendarCore::Attendee(QStringLiteral("A"), QStringLiteral("a@example.com")));
        series->newAlarm()->setStartOffset(KCalendarCore::Duration(-60));
        series->setNonKDECustomProperty("X-OWN", QStringLiteral("1"));
        series->setSchedulingID(QStringLiteral("scheduling"), QStringLiteral("series-1"));
        QVERIFY(add(series));
        const QDateTime moment = series->dtStart().addDays(4).toUTC().addMSecs(250);
        const Incidence::Ptr none;
        QCOMPARE(mStore->calendar->dissociateSingleOccurrence(none, moment), none);
        QCOMPARE(mStore->calendar->dissociateSingleOccurrence(series, moment.addSecs(60)), none);
        QCOMPARE(mStore->calendar->dissociateSingleOccurrence(series, moment.addDays(-20)), none);

        const Event::Ptr exception =
            mStore->calendar->dissociateSingleOccurrence(series, moment, QTimeZone("Asia/Tokyo"))
                .staticCast<Event>();
        QVERIFY(exception);
        QCOMPARE(exception->uid(), series->uid());
        QCOMPARE(exception->recurrenceId(), moment.addMSecs(-250));
        QCOMPARE(exception->dtStart(), series->dtStart().addDays(4));
        QCOMPARE(exception->dtStart().timeZone().id(), QByteArray("Europe/Berlin"));
        QCOMPARE(exception->dtEnd(), series->dtEnd().addDays(4));
        QVERIFY(!exception->recurs());
        QCOMPARE(exception->schedulingID(), exception->uid());
        QCOMPARE(exception->location(), QStringLiteral("Room"));
        QCOMPARE(exception->attendees().size(), 1);
        QCOMPARE(exception->alarms().size(), 1);
        QCOMPARE(exception->nonKDECustomProperty("X-OWN"), QStringLiteral("1"));
        QCOMPARE(exception->lastModified(), exception->created());
        QCOMPARE(series->lastModified(), exception->created());

        QVERIFY(!mStore->event(series->uid(), exception->recurrenceId())); // Not in the calendar yet.
        QVERIFY(series->recurrence()->exDateTimes().isEmpty());
        QVERIFY(add(exception));
        QCOMPARE(mStore->calendar->dissociateSingleOccurrence(series, moment), none);
        QCOMPARE(mStore->event(series->uid(), moment.addMSecs(-250)), exception);
        QVERIFY(mStore->storage->save());
        mStore->reload();
        QVERIFY(mStore->event(series->uid(), exception->recurrenceId()));
        QCOMPARE(mStore->calendar->eventInstances(mStore->event(series->uid())).size(), 1);
    }

    void dissociatingADay()
    {
        const Event::Ptr series = makeSeries(QStringLiteral("all-day"));
        series->setAllDay(true);
        series->setDtStart(QDateTime(QDate(2024, 5, 1), QTime(0, 0), QTimeZone("Europe/Berlin")));
        series->setDtEnd(QDateTime(QDate(2024, 5, 2), QTime(0, 0), QTimeZone("Europe/Berlin")));
        QVERIFY(add(series));
        // The evening of the day before in UTC.
        const QDateTime moment(QDate(2024, 5, 7), QTime(22, 0), Qt::UTC);
        const Event::Ptr exception =
            mStore->calendar->dissociateSingleOccurrence(series, moment, QTimeZone("Europe/Berlin"))
                .staticCast<Event>();
        QVERIFY(exception);
        QCOMPARE(exception->recurrenceId().date(), QDate(2024, 5, 8));
        QCOMPARE(exception->dtStart().date(), QDate(2024, 5, 8));
        QCOMPARE(exception->dtEnd().date(), QDate(2024, 5, 9));
        const Incidence::Ptr inUtc = mStore->calendar->dissociateSingleOccurrence(series, moment);
        QCOMPARE(inUtc->recurrenceId().date(), QDate(2024, 5, 7));
        QVERIFY(!mStore->calendar->dissociateSingleOccurrence(
            series, QDateTime(QDate(2024, 4, 1), QTime(0, 0), Qt::UTC)));
    }

    void deletingASeriesTakesItsExceptionsAlong()
    {
        const Event::Ptr series = makeSeries(QStringLiteral("series-1"));
        QVERIFY(add(series));
        QVERIFY(add(dissociate(series, 1)));
        QVERIFY(add(dissociate(series, 2)));
        QVERIFY(mStore->storage->save());
        const Event::Ptr exception = mStore->event(series->uid(), series->dtStart().addDays(1));
        QVERIFY(mStore->calendar->deleteEvent(exception));
        QVERIFY(mStore->event(series->uid()));
        QVERIFY(mStore->calendar->deleteEvent(series));
        QVERIFY(mStore->calendar->rawEvents().isEmpty());
        QVERIFY(mStore->storage->save());
        QVERIFY(stored().isEmpty());
        QCOMPARE(remembered().size(), 3);
    }

    void aFailedSaveIsRepeated()
    {
        QVERIFY(add("event-1"));
        CalendarNotices notices;
        mStore->storage->registerObserver(&notices);
        {
            QSqlDatabase spoiler =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("spoiler"));
            spoiler.setDatabaseName(path());
            QVERIFY(spoiler.open());
            QSqlQuery query(spoiler);
            QVERIFY(query.exec(QStringLiteral("ALTER TABLE incidences RENAME TO hidden")));
            QVERIFY(!mStore->storage->save());
            QVERIFY(!mStore->storage->load());
            QVERIFY(query.exec(QStringLiteral("ALTER TABLE hidden RENAME TO incidences")));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("spoiler"));
        QCOMPARE(notices.finished.value(0), QStringLiteral("error: errors saving incidences"));
        QVERIFY(mStore->storage->save());
        mStore->storage->unregisterObserver(&notices);
        QCOMPARE(notices.finished.last(), QStringLiteral("save completed"));
        QCOMPARE(stored(), QStringList { QStringLiteral("event-1") });
    }
};

FENNEL_REGISTER_TEST(CalendarSaveTest)
#include "calendarsavetest.moc"
