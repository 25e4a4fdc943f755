// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarfolders.h"

#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/calendar/calendarstorageimpl.h"
#include "support/calendarbed.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <KCalendarCore/CalFormat>

#include <QtTest>

using KCalendarCore::Event;
using mKCal::Notebook;

/** Calendar folders of the server as notebooks of the device. */
class CalendarFoldersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { mBed = std::make_unique<CalendarBed>(); }
    void cleanup() { mBed.reset(); }

    void aFolderIsANotebook()
    {
        const Notebook::Ptr notebook = notebookOf(mBed->notebookUid());
        QVERIFY(notebook);
        QCOMPARE(notebook->name(), QStringLiteral("Calendar"));
        QCOMPARE(notebook->pluginName(), ExchangeActiveSync::ExchangeCalendarPluginName);
        QCOMPARE(notebook->account(), QString::number(mBed->account.id()));
        QVERIFY(notebook->isVisible());
        QVERIFY(!notebook->isReadOnly());
        QVERIFY(!notebook->isRunTimeOnly());
        QVERIFY(!notebook->isMaster());
        QVERIFY(notebook->eventsAllowed());
        QVERIFY(!notebook->journalsAllowed());
        QVERIFY(!notebook->todosAllowed());
        QVERIFY(mBed->folderItem().savedInStorage());
    }

    void otherFoldersArePassedOver()
    {
        QList<EasFolderItem> added { CalendarBed::folder(
            QStringLiteral("9"), QStringLiteral("Inbox"), EasFolderItem::DefaultInboxFolder) };
        QList<EasFolderItem> updated = added;
        QVERIFY(mBed->storage->updateFolders(added, updated, { QStringLiteral("8") }));
        QVERIFY(!added.first().savedInStorage());
        QVERIFY(added.first().localId().isEmpty());
        QCOMPARE(own().size(), 1);
    }

    void aRepeatedResultFindsItsNotebook()
    {
        // The mapping was not written, so the server tells of the folder once more.
        QList<EasFolderItem> added { CalendarBed::folder(QStringLiteral("6"), QStringLiteral("Team")) };
        QList<EasFolderItem> again = added;
        QList<EasFolderItem> none;
        QVERIFY(mBed->storage->updateFolders(added, none, {}));
        QVERIFY(mBed->storage->updateFolders(again, none, {}));
        QCOMPARE(again.first().localId(), added.first().localId());
        QCOMPARE(own().size(), 2);
    }

    void aFolderIsRenamed()
    {
        QList<EasFolderItem> none;
        QList<EasFolderItem> updated { mBed->folderItem() };
        updated.first().setDisplayName(QStringLiteral("Renamed"));
        QVERIFY(mBed->storage->updateFolders(none, updated, {}));
        QCOMPARE(notebookOf(mBed->notebookUid())->name(), QStringLiteral("Renamed"));
        QCOMPARE(updated.first().localId(), mBed->notebookUid());
    }

    void aDeletedFolderGoesWithItsEvents()
    {
        QVERIFY(mBed->add(mBed->item()));
        QList<EasFolderItem> none;
        QVERIFY(mBed->storage->updateFolders(none, none, { QStringLiteral("5") }));
        QVERIFY(own().isEmpty());
        QVERIFY(mBed->events().isEmpty());
        QVERIFY2(mBed->storage->updateFolders(none, none, { QStringLiteral("7") }), "nothing is there to go");
    }

    void aFailedResultIsTakenBack()
    {
        // A notebook of another program bears the name that this account's row has got; the store refuses the
        // new one because it is closed.
        QList<EasFolderItem> added { CalendarBed::folder(QStringLiteral("6"), QStringLiteral("Team")) };
        QList<EasFolderItem> none;
        CalendarStoreContext context = mBed->device();
        CalendarFolders folders(context);
        context.storage->close();
        const LogCollector log;
        QVERIFY(!folders.updateFolders(added, none, {}));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Cannot add new notebook") }));
        QVERIFY(!added.first().savedInStorage());
        QVERIFY(context.storage->open());
        QCOMPARE(own().size(), 1);
    }

    void aLostNotebookComesBackAndIsFilledAnew()
    {
        QVERIFY(mBed->add(mBed->item()));
        EasFolderItem row = mBed->folderItem();
        setSyncKey(row, QStringLiteral("17"));
        const Notebook::Ptr notebook = mBed->device().storage->notebook(mBed->notebookUid());
        QVERIFY(mBed->device().storage->deleteNotebook(notebook));
        QVERIFY(mBed->storage->initStorage());
        QList<EasFolderItem> none;
        QVERIFY(mBed->storage->updateFolders(none, none, {}));
        QCOMPARE(own().size(), 1);
        row = *EasDatabase::instance()->folderItemByServerId(mBed->account.id(), QStringLiteral("5"));
        QCOMPARE(row.localId(), own().first()->uid());
        QCOMPARE(row.syncKey(), QStringLiteral("0"));
        QVERIFY(mBed->localId().isEmpty());
        QVERIFY(mBed->add(mBed->item()));
        QCOMPARE(mBed->events().size(), 1);
    }

    void aFolderStartsAnewWithoutItsEvents()
    {
        QVERIFY(mBed->add(mBed->item()));
        QVERIFY(mBed->applyWithoutMapping({ mBed->item(QStringLiteral("5:2")) }));
        const Event::Ptr own(new Event);
        own->setUid(KCalendarCore::CalFormat::createUniqueId());
        own->setDtStart(QDateTime(QDate(2026, 3, 4), QTime(8, 0), Qt::UTC));
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.calendar->addEvent(own, mBed->notebookUid()));
        QVERIFY(device.storage->save());

        QVERIFY(mBed->storage->cleanUpFolder(mBed->folderItem()));
        QCOMPARE(mBed->events().size(), 1);
        QCOMPARE(mBed->events().first()->uid(), own->uid());
        KCalendarCore::Incidence::List deleted;
        QVERIFY(mBed->device().storage->deletedIncidences(&deleted, QDateTime(), mBed->notebookUid()));
        QVERIFY(deleted.isEmpty());
        QVERIFY(EasDatabase::instance()->clearCalendarFolder(mBed->account.id(), QStringLiteral("5")));
        QVERIFY(mBed->add(mBed->item()));
        QVERIFY(mBed->add(mBed->item(QStringLiteral("5:2"))));
        QCOMPARE(mBed->events().size(), 3);
    }

    void whatIsGoneAlreadyIsNoHindrance()
    {
        QVERIFY(mBed->add(mBed->item()));
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.calendar->deleteEvent(device.calendar->event(mBed->localId())));
        QVERIFY(device.storage->save(mKCal::ExtendedStorage::PurgeDeleted));
        const LogCollector log;
        QVERIFY(mBed->storage->cleanUpFolder(mBed->folderItem()));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Event not found, with localId:") }));
    }

    void aDisabledCalendarIsHiddenAndNotCleaned()
    {
        QVERIFY(mBed->add(mBed->item()));
        mBed->configuration->isEnabled = false;
        Q_EMIT mBed->configuration->calendarConfigurationChanged(mBed->account.id());
        QVERIFY(!notebookOf(mBed->notebookUid())->isVisible());
        const LogCollector log;
        QVERIFY(!mBed->storage->cleanUpFolder(mBed->folderItem()));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Calendar sync disabled") }));
        QCOMPARE(mBed->events().size(), 1);
        mBed->configuration->isEnabled = true;
        Q_EMIT mBed->configuration->calendarConfigurationChanged(mBed->account.id());
        QVERIFY(notebookOf(mBed->notebookUid())->isVisible());
    }

    void notebooksGoWithTheirAccount()
    {
        const Notebook::Ptr stranger = Notebook::Ptr::create(QStringLiteral("Other"), QString());
        stranger->setAccount(QString::number(mBed->account.id()));
        stranger->setPluginName(QStringLiteral("other"));
        QVERIFY(mBed->device().storage->addNotebook(stranger));
        const int before = notebooks().size();
        QVERIFY(CalendarStorageImpl::cleanUpDeletedAccounts({}));
        QVERIFY(CalendarStorageImpl::cleanUpDeletedAccounts({ mBed->account.id() + 1000 }));
        QCOMPARE(notebooks().size(), before);
        QVERIFY(CalendarStorageImpl::cleanUpDeletedAccounts({ mBed->account.id() }));
        QCOMPARE(notebooks().size(), before - 1);
        QVERIFY(own().isEmpty());
    }

    void withoutAStoreNothingIsDone()
    {
        mBed->storage.reset();
        qputenv("SQLITESTORAGEDB", "/nowhere/at/all/db");
        const LogCollector log;
        CalendarStorageImpl storage(mBed->account, nullptr);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Cannot open calendar storage") }));
        QList<EasFolderItem> folders;
        QVERIFY(!storage.updateFolders(folders, folders, {}));
        QVERIFY(!storage.cleanUpFolder(mBed->folderItem()));
        QVERIFY(!CalendarStorageImpl::cleanUpDeletedAccounts({ mBed->account.id() }));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No storage") }));
        QCOMPARE(storage.getEventIcal(QStringLiteral("x")), QString());
    }

private:
    /** The notebooks as another program sees them. */
    Notebook::List notebooks()
    {
        const auto calendar = mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc());
        const auto storage = mKCal::ExtendedCalendar::defaultStorage(calendar);
        return storage->open() ? storage->notebooks() : Notebook::List();
    }

    Notebook::Ptr notebookOf(const QString &uid)
    {
        const Notebook::List all = notebooks();
        for (const Notebook::Ptr &notebook : all) {
            if (notebook->uid() == uid)
                return notebook;
        }
        return Notebook::Ptr();
    }

    Notebook::List own()
    {
        Notebook::List result;
        const Notebook::List all = notebooks();
        for (const Notebook::Ptr &notebook : all) {
            if (notebook->pluginName() == ExchangeActiveSync::ExchangeCalendarPluginName)
                result.append(notebook);
        }
        return result;
    }

    void setSyncKey(EasFolderItem row, const QString &key)
    {
        row.setSyncKey(key);
        row.appendChangedField(Wbxml::AirSync::SyncKey.key());
        QVERIFY(EasDatabase::instance()->updateFolderItems(mBed->account.id(), { row }));
    }

    std::unique_ptr<CalendarBed> mBed;
};

FENNEL_REGISTER_TEST(CalendarFoldersTest)
#include "calendarfolderstest.moc"
