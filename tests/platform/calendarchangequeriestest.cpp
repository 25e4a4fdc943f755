// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"
#include "support/testmain.h"

#include <QtTest>

using namespace CalendarFixture;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

/** What counts as inserted, modified and deleted since a time. */
class CalendarChangeQueriesTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    std::unique_ptr<CalendarStore> mStore;

    bool add(const char *uid, qint64 created, qint64 modified, const QString &notebook = notebookUid)
    {
        const Event::Ptr event = makeEvent(QLatin1String(uid));
        event->setCreated(utc(created));
        event->setLastModified(utc(modified));
        return mStore->calendar->addEvent(event, notebook);
    }

    QStringList inserted(qint64 after, int milliseconds = 0, const QString &notebook = QString())
    {
        Incidence::List list;
        const bool done =
            mStore->storage->insertedIncidences(&list, utc(after).addMSecs(milliseconds), notebook);
        return done ? uids(list) : QStringList { QStringLiteral("failed") };
    }

    QStringList modified(qint64 after, const QString &notebook = QString())
    {
        Incidence::List list;
        const bool done = mStore->storage->modifiedIncidences(&list, utc(after), notebook);
        return done ? uids(list) : QStringList { QStringLiteral("failed") };
    }

    QStringList deleted(const QDateTime &after, const QString &notebook = QString())
    {
        Incidence::List list;
        const bool done = mStore->storage->deletedIncidences(&list, after, notebook);
        return done ? uids(list) : QStringList { QStringLiteral("failed") };
    }

private Q_SLOTS:
    void init()
    {
        mStore = std::make_unique<CalendarStore>(mFolder.filePath(QStringLiteral("db")));
        addNotebook(*mStore);
        addNotebook(*mStore, QStringLiteral("notebook-2"));
    }

    void cleanup()
    {
        mStore.reset();
        QVERIFY(QDir(mFolder.path()).removeRecursively() && QDir().mkpath(mFolder.path()));
    }

    void theSecondItselfCounts()
    {
        QVERIFY(add("event-1", 1000, 1000));
        QVERIFY(add("event-2", 500, 1000));
        QVERIFY(mStore->storage->save());
        QCOMPARE(inserted(999), QStringList { QStringLiteral("event-1") });
        QCOMPARE(inserted(1000), QStringList { QStringLiteral("event-1") });
        QCOMPARE(inserted(1000, 999), QStringList { QStringLiteral("event-1") }); // Whole seconds.
        QVERIFY(inserted(1001).isEmpty());
        QCOMPARE(modified(1000), QStringList { QStringLiteral("event-2") });
        QCOMPARE(modified(501), QStringList { QStringLiteral("event-2") });
        QVERIFY(modified(500).isEmpty()); // New ones are not modified.
        QVERIFY(modified(1001).isEmpty());
    }

    void anOldCreationTimeMakesItModified()
    {
        // As of a server that tells when an event was made.
        QVERIFY(add("event-1", 1000, 2000));
        QVERIFY(mStore->storage->save());
        QVERIFY(inserted(1500).isEmpty());
        QCOMPARE(modified(1500), QStringList { QStringLiteral("event-1") });
    }

    void deletions()
    {
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        QVERIFY(add("old event", 1000, 1000));
        QVERIFY(add("new event", now + 5, now + 5));
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("old event"))));
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("new event"))));
        QVERIFY(mStore->storage->save());
        const QStringList both { QStringLiteral("new event"), QStringLiteral("old event") };
        QCOMPARE(deleted(QDateTime()), both);
        QCOMPARE(deleted(utc(now)), QStringList { QStringLiteral("old event") });
        QVERIFY(deleted(utc(now + 100000)).isEmpty());
        QVERIFY(deleted(utc(500)).isEmpty()); // Made after it and deleted again: nowhere.
        QVERIFY(inserted(500).isEmpty() && modified(500).isEmpty());
        Incidence::List list;
        QVERIFY(mStore->storage->allIncidences(&list));
        QVERIFY(list.isEmpty());
    }

    void notebooksAreToldApart()
    {
        QVERIFY(add("event-1", 1000, 2000));
        QVERIFY(add("event-2", 1000, 2000, QStringLiteral("notebook-2")));
        QVERIFY(mStore->storage->save());
        QCOMPARE(inserted(900).size(), 2);
        QCOMPARE(inserted(900, 0, notebookUid), QStringList { QStringLiteral("event-1") });
        QCOMPARE(modified(1500, QStringLiteral("notebook-2")), QStringList { QStringLiteral("event-2") });
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("event-2"))));
        QVERIFY(mStore->storage->save());
        QVERIFY(deleted(QDateTime(), notebookUid).isEmpty());
        QCOMPARE(deleted(QDateTime(), QStringLiteral("notebook-2")).size(), 1);
    }

    void invalidTimes()
    {
        Incidence::List list;
        QVERIFY(!mStore->storage->insertedIncidences(&list, QDateTime()));
        QVERIFY(!mStore->storage->modifiedIncidences(&list, QDateTime()));
        QVERIFY(mStore->storage->deletedIncidences(&list, QDateTime()));
    }

    void theObjectsAreFresh()
    {
        QVERIFY(add("event-1", 1000, 1000));
        QVERIFY(mStore->storage->save());
        Incidence::List list;
        QVERIFY(mStore->storage->insertedIncidences(&list, utc(1000)));
        QCOMPARE(list.size(), 1);
        QVERIFY(list.constFirst() != mStore->event(QStringLiteral("event-1")));
        list.constFirst()->setSummary(QStringLiteral("not in the calendar"));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        QVERIFY(mStore->event(QStringLiteral("event-1"))->summary() != QStringLiteral("not in the calendar"));
    }

    void exceptionsAreFoundByTheirMoment()
    {
        const Event::Ptr series = makeSeries(QStringLiteral("series-1"));
        QVERIFY(mStore->calendar->addEvent(series, notebookUid));
        const Event::Ptr exception =
            mStore->calendar->dissociateSingleOccurrence(series, series->dtStart().addDays(1))
                .staticCast<Event>();
        QVERIFY(mStore->calendar->addEvent(exception, notebookUid));
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->calendar->deleteEvent(exception));
        QVERIFY(mStore->storage->save());
        const Event::Ptr inUtc = makeEvent(QStringLiteral("series-1"));
        inUtc->setRecurrenceId(series->dtStart().addDays(1).toUTC());
        QVERIFY(mStore->storage->incidenceDeletedDate(inUtc).isValid());
        QVERIFY(!mStore->storage->incidenceDeletedDate(series).isValid());
        QVERIFY(mStore->storage->purgeDeletedIncidences({ inUtc }));
        QVERIFY(deleted(QDateTime()).isEmpty());
        mStore->reload();
        QVERIFY(mStore->event(QStringLiteral("series-1")));
    }
};

FENNEL_REGISTER_TEST(CalendarChangeQueriesTest)
#include "calendarchangequeriestest.moc"
