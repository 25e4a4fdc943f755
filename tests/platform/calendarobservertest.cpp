// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"
#include "support/testmain.h"

#include <QtTest>

using namespace CalendarFixture;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

/** When observers are called, and what has happened by then. */
class CalendarObserverTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    std::unique_ptr<CalendarStore> mStore;
    std::unique_ptr<CalendarNotices> mNotices;

    QString path() const { return mFolder.filePath(QStringLiteral("db")); }

    /** Waits for the notices of what has been written, through one that comes after all of them. */
    void settle()
    {
        CalendarStore last(path());
        const mKCal::Notebook::Ptr marker(new mKCal::Notebook(QStringLiteral("marker"), QString()));
        QVERIFY(last.storage->addNotebook(marker));
        QTRY_VERIFY_WITH_TIMEOUT(mStore->storage->notebook(marker->uid()), 60000);
        mNotices->modified.clear();
        mNotices->finished.clear();
    }

private Q_SLOTS:
    void init()
    {
        mStore = std::make_unique<CalendarStore>(path());
        mNotices = std::make_unique<CalendarNotices>();
        mStore->storage->registerObserver(mNotices.get());
        addNotebook(*mStore);
        settle();
    }

    void cleanup()
    {
        mStore.reset();
        QVERIFY(QDir(mFolder.path()).removeRecursively() && QDir().mkpath(mFolder.path()));
    }

    void finishedComesBeforeTheCallReturns()
    {
        QVERIFY(mStore->storage->load());
        QCOMPARE(mNotices->finished, QStringList { QStringLiteral("load completed") });
        QVERIFY(mStore->storage->save());
        QCOMPARE(mNotices->finished.last(), QStringLiteral("save completed"));
        Incidence::List list;
        QVERIFY(mStore->storage->insertedIncidences(&list, utc(0)));
        QCOMPARE(mNotices->finished.last(), QStringLiteral("select completed"));
        QCOMPARE(mNotices->finished.size(), 3);
        QCOMPARE(mNotices->progress, 0);
    }

    void anOwnSaveComesBack()
    {
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("event-1")), notebookUid));
        QVERIFY(mStore->storage->save());
        QVERIFY(mNotices->modified.isEmpty()); // Only through the event loop.
        QVERIFY(mStore->event(QStringLiteral("event-1")));
        const mKCal::Notebook::Ptr notebook = mStore->storage->notebook(notebookUid);
        QTRY_VERIFY_WITH_TIMEOUT(!mNotices->modified.isEmpty(), 60000);
        QCOMPARE(mNotices->modified.constFirst(), path() + QStringLiteral(".changed"));
        QVERIFY(mStore->calendar->rawEvents().isEmpty());
        QVERIFY(mStore->storage->notebook(notebookUid));
        QVERIFY(mStore->storage->notebook(notebookUid) != notebook);
    }

    void anotherStoragesChangesCome_data()
    {
        QTest::addColumn<int>("change");
        QTest::newRow("an event") << 0;
        QTest::newRow("a new notebook") << 1;
        QTest::newRow("a changed notebook") << 2;
        QTest::newRow("a deleted notebook") << 3;
    }

    void anotherStoragesChangesCome()
    {
        QFETCH(int, change);
        CalendarStore other(path());
        const mKCal::Notebook::Ptr notebook = other.storage->notebook(notebookUid);
        if (change == 0) {
            QVERIFY(other.calendar->addEvent(makeEvent(QStringLiteral("event-1")), notebookUid));
            QVERIFY(other.storage->save());
        } else if (change == 1) {
            QVERIFY(addNotebook(other, QStringLiteral("notebook-2")));
        } else if (change == 2) {
            notebook->setName(QStringLiteral("renamed"));
            QVERIFY(other.storage->updateNotebook(notebook));
        } else {
            QVERIFY(other.storage->deleteNotebook(notebook));
        }
        QTRY_VERIFY_WITH_TIMEOUT(!mNotices->modified.isEmpty(), 60000);
        if (change == 0)
            QVERIFY(mStore->storage->load() && mStore->event(QStringLiteral("event-1")));
        else if (change == 1)
            QVERIFY(mStore->storage->notebook(QStringLiteral("notebook-2")));
        else if (change == 2)
            QCOMPARE(mStore->storage->notebook(notebookUid)->name(), QStringLiteral("renamed"));
        else
            QVERIFY(!mStore->storage->notebook(notebookUid));
    }

    void whatWritesNothingTellsNothing()
    {
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->storage->load());
        CalendarStore other(path());
        QVERIFY(other.opened);
        QVERIFY(mStore->storage->purgeDeletedIncidences({ makeEvent(QStringLiteral("nobody")) }));
        // The only notice is that of the notebook, which comes last.
        QVERIFY(addNotebook(other, QStringLiteral("notebook-2")));
        QTRY_VERIFY_WITH_TIMEOUT(mStore->storage->notebook(QStringLiteral("notebook-2")), 60000);
        QCOMPARE(mNotices->modified.size(), 1);
    }

    void anObserverIsCalledOnceAndNoMoreAfterItLeft()
    {
        mStore->storage->registerObserver(mNotices.get());
        QVERIFY(mStore->storage->load());
        QCOMPARE(mNotices->finished.size(), 1);
        mStore->storage->unregisterObserver(mNotices.get());
        QVERIFY(mStore->storage->load());
        QCOMPARE(mNotices->finished.size(), 1);
        CalendarNotices second;
        mStore->storage->registerObserver(&second);
        QVERIFY(mStore->storage->load());
        QCOMPARE(second.finished.size(), 1);
        mStore->storage->unregisterObserver(&second);
    }

    void observersAreCalledInTheirOrderAndTheCalendarComesFirst()
    {
        static QStringList order;
        order.clear();
        struct Named : CalendarNotices
        {
            explicit Named(const QString &name)
                : name(name)
            {
            }
            void storageModified(mKCal::ExtendedStorage *storage, const QString &) override
            {
                order.append(name + QString::number(storage->calendar()->rawEvents().size()));
            }
            const QString name;
        };
        Named first(QStringLiteral("first "));
        Named second(QStringLiteral("second "));
        mStore->storage->registerObserver(&first);
        mStore->storage->registerObserver(&second);
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("event-1")), notebookUid));
        QVERIFY(mStore->storage->save());
        QTRY_VERIFY_WITH_TIMEOUT(order.size() >= 2, 60000);
        QCOMPARE(order.mid(0, 2), (QStringList { QStringLiteral("first 0"), QStringLiteral("second 0") }));
        mStore->storage->unregisterObserver(&first);
        mStore->storage->unregisterObserver(&second);
    }

    void aRemovedMarkerIsMadeAgain()
    {
        QVERIFY(QFile::remove(path() + QStringLiteral(".changed")));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path() + QStringLiteral(".changed")), 60000);
        mNotices->modified.clear();
        settle();
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("event-1")), notebookUid));
        QVERIFY(mStore->storage->save());
        QTRY_VERIFY_WITH_TIMEOUT(!mNotices->modified.isEmpty(), 60000);
    }

    void aStorageMayBeClosedInANotice()
    {
        struct Closer : CalendarNotices
        {
            void storageModified(mKCal::ExtendedStorage *storage, const QString &info) override
            {
                CalendarNotices::storageModified(storage, info);
                storage->close();
            }
        } closer;
        mStore->storage->registerObserver(&closer);
        QVERIFY(addNotebook(*mStore, QStringLiteral("notebook-2")));
        QTRY_COMPARE_WITH_TIMEOUT(closer.modified.size(), 1, 60000);
        QVERIFY(!mStore->storage->load());
        mStore->storage->unregisterObserver(&closer);
    }
};

FENNEL_REGISTER_TEST(CalendarObserverTest)
#include "calendarobservertest.moc"
