// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"
#include "support/testmain.h"

#include <KCalendarCore/Journal>
#include <KCalendarCore/Todo>

#include <QtTest>

using namespace CalendarFixture;
using KCalendarCore::Event;
using mKCal::Notebook;

/** Notebooks: what they hold, how they are kept, and which objects the storage accepts. */
class CalendarNotebookTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    std::unique_ptr<CalendarStore> mStore;

    QString path() const { return mFolder.filePath(QStringLiteral("db")); }

private Q_SLOTS:
    void init() { mStore = std::make_unique<CalendarStore>(path()); }

    void cleanup()
    {
        mStore.reset();
        QVERIFY(QDir(mFolder.path()).removeRecursively() && QDir().mkpath(mFolder.path()));
    }

    void aNewOne()
    {
        const Notebook notebook;
        QVERIFY(notebook.uid().isEmpty());
        QVERIFY(notebook.isVisible() && notebook.isMaster() && !notebook.isReadOnly());
        QVERIFY(!notebook.isRunTimeOnly() && !notebook.isShared() && !notebook.isSynchronized());
        QVERIFY(notebook.eventsAllowed() && notebook.journalsAllowed() && notebook.todosAllowed());
        QCOMPARE(notebook.attachmentSize(), -1);
        QVERIFY(!notebook.syncDate().isValid());
        const Notebook named(QStringLiteral("Name"), QStringLiteral("Text"));
        QCOMPARE(named.name(), QStringLiteral("Name"));
        QCOMPARE(named.description(), QStringLiteral("Text"));
    }

    void whatItAllows()
    {
        Notebook notebook;
        notebook.setTodosAllowed(false);
        QVERIFY(notebook.incidenceAllowed(Event::Ptr(new Event)));
        QVERIFY(!notebook.incidenceAllowed(KCalendarCore::Todo::Ptr(new KCalendarCore::Todo)));
        notebook.setEventsAllowed(false);
        QVERIFY(!notebook.incidenceAllowed(Event::Ptr(new Event)));
        QVERIFY(notebook.incidenceAllowed(KCalendarCore::Journal::Ptr(new KCalendarCore::Journal)));
        QVERIFY(!notebook.incidenceAllowed(Event::Ptr()));
    }

    void anEmptyValueRemovesAProperty()
    {
        Notebook notebook;
        notebook.setCustomProperty("key", QStringLiteral("value"));
        QCOMPARE(notebook.customProperty("key"), QStringLiteral("value"));
        QCOMPARE(notebook.customPropertyKeys(), QList<QByteArray> { "key" });
        notebook.setCustomProperty("key", QString());
        QCOMPARE(notebook.customProperty("key", QStringLiteral("none")), QStringLiteral("none"));
        QVERIFY(notebook.customPropertyKeys().isEmpty());
    }

    void aCopyIsAValueOfItsOwn()
    {
        Notebook notebook(QStringLiteral("first"), QString());
        const Notebook copy = notebook;
        notebook.setName(QStringLiteral("second"));
        QCOMPARE(copy.name(), QStringLiteral("first"));
    }

    void everythingIsKept()
    {
        const Notebook::Ptr notebook(new Notebook(QStringLiteral("uid-of-notebook"), QStringLiteral("Näme"),
            QStringLiteral("Text"), QStringLiteral("#FF0001"), true, false, true, false, false));
        notebook->setIsShareable(true);
        notebook->setEventsAllowed(true);
        notebook->setJournalsAllowed(false);
        notebook->setTodosAllowed(false);
        notebook->setPluginName(QStringLiteral("plugin"));
        notebook->setAccount(QStringLiteral("17"));
        notebook->setSyncProfile(QStringLiteral("profile"));
        notebook->setAttachmentSize(1234);
        notebook->setCustomProperty("a key", QStringLiteral("a \"value\""));
        notebook->setSyncDate(utc(1600000000).addMSecs(123));
        QVERIFY(mStore->storage->addNotebook(notebook));
        QVERIFY(notebook->creationDate().isValid());
        const QDateTime modified = utc(1650000000);
        notebook->setModifiedDate(modified);
        QVERIFY(mStore->storage->updateNotebook(notebook));

        CalendarStore other(path());
        const Notebook::Ptr read = other.storage->notebook(QStringLiteral("uid-of-notebook"));
        QVERIFY(read);
        QCOMPARE(read->name(), notebook->name());
        QCOMPARE(read->description(), notebook->description());
        QCOMPARE(read->color(), notebook->color());
        QVERIFY(read->isShared() && !read->isMaster() && read->isSynchronized());
        QVERIFY(!read->isReadOnly() && !read->isVisible() && read->isShareable());
        QVERIFY(read->eventsAllowed() && !read->journalsAllowed() && !read->todosAllowed());
        QCOMPARE(read->pluginName(), notebook->pluginName());
        QCOMPARE(read->account(), notebook->account());
        QCOMPARE(read->syncProfile(), notebook->syncProfile());
        QCOMPARE(read->attachmentSize(), 1234);
        QCOMPARE(read->customProperty("a key"), QStringLiteral("a \"value\""));
        QCOMPARE(read->syncDate(), utc(1600000000)); // Whole seconds, in UTC.
        QCOMPARE(read->syncDate().timeSpec(), Qt::UTC);
        QCOMPARE(read->modifiedDate(), modified);
        QCOMPARE(read->creationDate().toSecsSinceEpoch(), notebook->creationDate().toSecsSinceEpoch());
    }

    void anEmptyStoreGetsADefault()
    {
        QVERIFY(mStore->opened);
        QCOMPARE(mStore->storage->notebooks().size(), 1);
        const Notebook::Ptr standard = mStore->storage->defaultNotebook();
        QVERIFY(standard);
        QCOMPARE(standard->name(), QStringLiteral("Default"));
        CalendarStore other(path());
        QCOMPARE(other.storage->notebooks().size(), 1);
        QCOMPARE(other.storage->defaultNotebook()->uid(), standard->uid());
        const Notebook::Ptr mine = addNotebook(other);
        QVERIFY(other.storage->setDefaultNotebook(mine));
        QCOMPARE(CalendarStore(path()).storage->defaultNotebook()->uid(), notebookUid);
        const Event::Ptr event = makeEvent(QStringLiteral("in the default"));
        QVERIFY(other.calendar->addEvent(event));
        QCOMPARE(other.calendar->notebook(event), notebookUid);
    }

    void shortUidsAreReplaced()
    {
        const Notebook::Ptr notebook(new Notebook(QStringLiteral("name"), QString()));
        notebook->setUid(QStringLiteral("short"));
        QVERIFY(mStore->storage->addNotebook(notebook));
        QCOMPARE(notebook->uid().size(), 36);
        QVERIFY(!notebook->uid().startsWith(QLatin1Char('{')));
        QCOMPARE(mStore->storage->notebook(notebook->uid()), notebook); // The very object.
        QVERIFY(!mStore->storage->addNotebook(notebook));
    }

    void onlyThePresentObjectIsAccepted()
    {
        const Notebook::Ptr notebook = addNotebook(*mStore);
        const Notebook::Ptr copy(new Notebook(*notebook));
        QVERIFY(!mStore->storage->updateNotebook(copy));
        QVERIFY(!mStore->storage->deleteNotebook(copy));
        QVERIFY(mStore->storage->updateNotebook(notebook));
        // A notice of a change brings new objects.
        CalendarNotices notices;
        mStore->storage->registerObserver(&notices);
        QTRY_VERIFY_WITH_TIMEOUT(!notices.modified.isEmpty(), 60000);
        mStore->storage->unregisterObserver(&notices);
        QVERIFY(!mStore->storage->updateNotebook(notebook));
        QVERIFY(mStore->storage->updateNotebook(mStore->storage->notebook(notebookUid)));
    }

    void aDeletedNotebookTakesItsEventsAlong()
    {
        const Notebook::Ptr notebook = addNotebook(*mStore);
        addNotebook(*mStore, QStringLiteral("notebook-2"));
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("event-1")), notebookUid));
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("event-2")), notebookUid));
        QVERIFY(
            mStore->calendar->addEvent(makeEvent(QStringLiteral("event-3")), QStringLiteral("notebook-2")));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        QVERIFY(mStore->calendar->deleteEvent(mStore->event(QStringLiteral("event-2"))));
        QVERIFY(mStore->storage->save());
        QVERIFY(mStore->storage->deleteNotebook(mStore->storage->notebook(notebookUid)));
        QVERIFY(!mStore->storage->notebook(notebookUid));
        QVERIFY(!mStore->event(QStringLiteral("event-1")));
        QVERIFY(!mStore->calendar->hasValidNotebook(notebookUid));

        CalendarStore other(path());
        QVERIFY(!other.storage->notebook(notebookUid));
        KCalendarCore::Incidence::List list;
        QVERIFY(other.storage->allIncidences(&list));
        QCOMPARE(uids(list), QStringList { QStringLiteral("event-3") });
        list.clear();
        QVERIFY(other.storage->deletedIncidences(&list));
        QVERIFY(list.isEmpty());
        // What was in memory is not written again either.
        QVERIFY(mStore->storage->save());
        other.reload();
        QCOMPARE(other.calendar->rawEvents().size(), 1);
    }

    void whichNotebooksCanBeSavedInto()
    {
        const Notebook::Ptr notebook = addNotebook(*mStore);
        QVERIFY(mStore->storage->isValidNotebook(notebookUid));
        QVERIFY(!mStore->storage->isValidNotebook(QStringLiteral("unknown")));
        notebook->setIsReadOnly(true);
        QVERIFY(!mStore->storage->isValidNotebook(notebookUid));
        notebook->setIsReadOnly(false);
        notebook->setRunTimeOnly(true);
        QVERIFY(!mStore->storage->isValidNotebook(notebookUid));
    }

    void aNotebookOfTheMomentIsNotKept()
    {
        const Notebook::Ptr notebook(new Notebook(QStringLiteral("passing"), QString()));
        notebook->setRunTimeOnly(true);
        QVERIFY(mStore->storage->addNotebook(notebook));
        QVERIFY(mStore->storage->notebook(notebook->uid()));
        QVERIFY(!CalendarStore(path()).storage->notebook(notebook->uid()));
    }

    void visibilityReachesTheCalendar()
    {
        const Notebook::Ptr notebook = addNotebook(*mStore);
        const Event::Ptr event = makeEvent(QStringLiteral("event-1"));
        QVERIFY(mStore->calendar->addEvent(event, notebookUid));
        QVERIFY(mStore->calendar->isVisible(event));
        notebook->setIsVisible(false);
        QVERIFY(mStore->storage->updateNotebook(notebook));
        QVERIFY(!mStore->calendar->isVisible(event));
    }

    void nothingWorksBeforeOpening()
    {
        mKCal::ExtendedCalendar::Ptr calendar(new mKCal::ExtendedCalendar(QTimeZone::utc()));
        mKCal::SqliteStorage storage(calendar, path());
        const Notebook::Ptr notebook(new Notebook(QStringLiteral("name"), QString()));
        KCalendarCore::Incidence::List list;
        QVERIFY(!storage.addNotebook(notebook));
        QVERIFY(!storage.setDefaultNotebook(notebook));
        QVERIFY(storage.notebooks().isEmpty() && !storage.defaultNotebook());
        QVERIFY(!storage.load() && !storage.load(QStringLiteral("uid")) && !storage.loadSeries(QString()));
        QVERIFY(!storage.load(QDate(2024, 1, 1), QDate(2024, 2, 1)));
        QVERIFY(!storage.loadNotebookIncidences(notebookUid));
        QVERIFY(!storage.save() && !storage.save(mKCal::ExtendedStorage::PurgeDeleted));
        QVERIFY(!storage.allIncidences(&list) && !storage.deletedIncidences(&list));
        QVERIFY(!storage.purgeDeletedIncidences(list));
        QVERIFY(!storage.incidenceDeletedDate(makeEvent(QStringLiteral("uid"))).isValid());
        QVERIFY(storage.open());
        QVERIFY(!storage.open());
        QVERIFY(storage.close());
        QVERIFY(!storage.load());
        QVERIFY(storage.open());
        QCOMPARE(storage.databaseName(), path());
    }

    void theDefaultPlace()
    {
        mKCal::ExtendedCalendar::Ptr calendar(new mKCal::ExtendedCalendar(QTimeZone::utc()));
        const auto name = [&calendar] {
            return mKCal::ExtendedCalendar::defaultStorage(calendar)
                .staticCast<mKCal::SqliteStorage>()
                ->databaseName();
        };
        const QString home = mFolder.filePath(QStringLiteral("home"));
        const QString system = home + QStringLiteral("/.local/share/system");
        const QByteArray oldHome = qgetenv("HOME");
        const QByteArray oldDatabase = qgetenv("SQLITESTORAGEDB");
        qputenv("HOME", home.toLocal8Bit());
        qunsetenv("SQLITESTORAGEDB");
        const QString plain = name();
        QDir().mkpath(system + QStringLiteral("/privileged"));
        const QString privileged = name();
        qputenv("SQLITESTORAGEDB", (home + QStringLiteral("/elsewhere/db")).toLocal8Bit());
        const QString named = name();
        const bool opened = mKCal::ExtendedCalendar::defaultStorage(calendar)->open();
        if (oldDatabase.isNull())
            qunsetenv("SQLITESTORAGEDB");
        else
            qputenv("SQLITESTORAGEDB", oldDatabase);
        qputenv("HOME", oldHome);
        QCOMPARE(plain, system + QStringLiteral("/Calendar/mkcal/db"));
        QCOMPARE(privileged, system + QStringLiteral("/privileged/Calendar/mkcal/db"));
        QVERIFY(QFileInfo(privileged).dir().exists());
        QCOMPARE(named, home + QStringLiteral("/elsewhere/db"));
        QVERIFY(!opened); // The folder of the variable is not made.
    }
};

FENNEL_REGISTER_TEST(CalendarNotebookTest)
#include "calendarnotebooktest.moc"
