// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eascontactsitem.h"
#include "easitems/easfolderitem.h"
#include "storages/contactstorageimpl.h"
#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

/** A contact store that keeps folders alone: it loses nothing, because it takes nothing. */
class FolderOnlyStoragesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersAreTakenAndLeftAsTheyAre()
    {
        QList<EasFolderItem> added { folder() };
        QList<EasFolderItem> changed { folder() };
        QVERIFY(mContacts.updateFolders(added, changed, { QStringLiteral("9") }));
        QCOMPARE(added.first().serverId(), QStringLiteral("5"));
        QVERIFY2(!added.first().savedInStorage(), "there is nothing on the device yet");
        QVERIFY(!changed.first().savedInStorage());
        QVERIFY(mContacts.cleanUpFolder(folder()));
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
        QStringList deleted;
        QList<EasContactsItem> addedContacts;
        QList<EasContactsItem> changedContacts;
        QVERIFY(mContacts.queryChanges(folder(), &addedContacts, &changedContacts, &deleted));
        QVERIFY(addedContacts.isEmpty() && changedContacts.isEmpty() && deleted.isEmpty());
        QVERIFY(mContacts.uploadedLocalChanges({}, {}, {}));
    }

    void accountsThatAreGoneLeaveNothingBehind()
    {
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
    ContactStorageImpl mContacts { mAccount, nullptr };
};

FENNEL_REGISTER_TEST(FolderOnlyStoragesTest)
#include "folderonlystoragestest.moc"
