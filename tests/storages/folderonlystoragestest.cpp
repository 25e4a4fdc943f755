// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easfolderitem.h"
#include "storages/calendarstorageimpl.h"
#include "storages/contactstorageimpl.h"
#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

/** Calendar and contact stores that keep folders alone: they lose nothing, because they take nothing. */
class FolderOnlyStoragesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersAreTakenAndLeftAsTheyAre()
    {
        QList<EasFolderItem> added { folder() };
        QList<EasFolderItem> changed { folder() };
        QVERIFY(mCalendar.updateFolders(added, changed, { QStringLiteral("9") }));
        QVERIFY(mContacts.updateFolders(added, changed, { QStringLiteral("9") }));
        QCOMPARE(added.first().serverId(), QStringLiteral("5"));
        QVERIFY2(!added.first().savedInStorage(), "there is nothing on the device yet");
        QVERIFY(!changed.first().savedInStorage());
        QVERIFY(mCalendar.cleanUpFolder(folder()));
        QVERIFY(mContacts.cleanUpFolder(folder()));
    }

    void eventsAreRefusedAloud()
    {
        const LogCollector log;
        QList<EasCalendarItem> some { EasCalendarItem() };
        QList<EasCalendarItem> none;
        QStringList replaced;
        QVERIFY(mCalendar.updateItems(none, none, {}, replaced));
        QVERIFY(log.lines().isEmpty());
        QVERIFY(!mCalendar.updateItems(some, none, {}, replaced));
        QVERIFY(!mCalendar.updateItems(none, some, {}, replaced));
        QVERIFY(!mCalendar.updateItems(none, none, { QStringLiteral("5:1") }, replaced));
        QVERIFY(!mCalendar.touchItems(
            QStringLiteral("5"), { { QStringLiteral("event"), QStringLiteral("20240101T000000Z") } }));
        QVERIFY(!mCalendar.uploadedLocalChanges(some, none, {}));
        QCOMPARE(log.count(QStringLiteral("There is no calendar store")), 5);
    }

    void contactsAreRefusedAloud()
    {
        const LogCollector log;
        QList<EasContactsItem> some { EasContactsItem() };
        QList<EasContactsItem> none;
        const QString folderId = QStringLiteral("7");
        QVERIFY(mContacts.updateItems(folderId, none, none, {}));
        QVERIFY(log.lines().isEmpty());
        QVERIFY(!mContacts.updateItems(folderId, some, none, {}));
        QVERIFY(!mContacts.updateItems(folderId, none, some, {}));
        QVERIFY(!mContacts.updateItems(folderId, none, none, { QStringLiteral("7:1") }));
        QVERIFY(!mContacts.uploadedLocalChanges({ QStringLiteral("1") }, {}, {}));
        QCOMPARE(log.count(QStringLiteral("There is no contact store")), 4);
    }

    void thereAreNoLocalChanges()
    {
        QList<EasCalendarItem> addedEvents;
        QList<EasCalendarItem> changedEvents;
        QStringList deleted;
        qint64 newTime = 0;
        QVERIFY(mCalendar.queryLocalUpdates(
            QStringLiteral("notebook"), 1700000000, newTime, addedEvents, changedEvents, deleted));
        QCOMPARE(newTime, qint64(1700000000));
        QVERIFY(addedEvents.isEmpty() && changedEvents.isEmpty() && deleted.isEmpty());
        QList<EasContactsItem> addedContacts;
        QList<EasContactsItem> changedContacts;
        QVERIFY(mContacts.queryChanges(folder(), &addedContacts, &changedContacts, &deleted));
        QVERIFY(addedContacts.isEmpty() && changedContacts.isEmpty() && deleted.isEmpty());
        QVERIFY(mContacts.uploadedLocalChanges({}, {}, {}));
        QVERIFY(mCalendar.uploadedLocalChanges(addedEvents, changedEvents, {}));
    }

    void accountsThatAreGoneLeaveNothingBehind()
    {
        QVERIFY(CalendarStorageImpl::cleanUpDeletedAccounts({ 1, 2 }));
        QVERIFY(ContactStorageImpl::cleanUpDeletedAccounts({ 1, 2 }));
    }

private:
    static EasFolderItem folder()
    {
        EasFolderItem folder;
        folder.setServerId(QStringLiteral("5"));
        return folder;
    }

    FakeAccount mAccount { 1 };
    CalendarStorageImpl mCalendar { mAccount, nullptr };
    ContactStorageImpl mContacts { mAccount, nullptr };
};

FENNEL_REGISTER_TEST(FolderOnlyStoragesTest)
#include "folderonlystoragestest.moc"
