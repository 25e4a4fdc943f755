// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easemailitem.h"
#include "support/databasefixture.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;

template <typename Item> QList<Item> oneItem(const QString &name)
{
    Item item;
    item.setServerId(name);
    item.setCollectionId(name);
    item.setLocalId(name);
    return { item };
}

EasDatabase *database()
{
    return EasDatabase::instance();
}

using Map = QMap<QString, QString>;

} // namespace

/** Whatever a server or a store calls its things, it lands as data in every column and is found by it. */
class EasDatabaseHostileNamesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
    }

    void cleanup() { mFixture.reset(); }

    void aNameIsData_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("single quote") << "'; DROP TABLE emails; --";
        QTest::newRow("double quote") << "\"collections\"";
        QTest::newRow("placeholders") << "? :server_id_value :localId %1 %2 %s";
        QTest::newRow("path") << "../../../etc/passwd";
        QTest::newRow("line breaks") << "first\r\nsecond\n";
        QTest::newRow("NUL") << QString::fromUtf8("be\0hind", 7);
        QTest::newRow("NUL alone") << QString(QChar(0));
        QTest::newRow("4 KB") << QString(4096, QLatin1Char('x'));
        QTest::newRow("right to left") << QString::fromUtf8("\u202Egnp.exe\u200F\u2066");
        QTest::newRow("beyond the basic plane") << QString::fromUtf8("\U0001F98A fennel");
        QTest::newRow("a number") << "0007";
        QTest::newRow("like a big number") << "1e400";
        QTest::newRow("blanks") << "  padded  ";
    }

    void aNameIsData()
    {
        QFETCH(QString, name);
        checkFolder(name);
        checkMail(name);
        checkCalendar(name);
        checkContact(name);
        checkAttachment(name);

        database()->setFolderSyncKey(Account, name);
        QCOMPARE(*database()->folderSyncKey(Account), name);
        QCOMPARE(*database()->getAppDataType(name), EasDatabase::AppDataEmail);
        QCOMPARE(
            mFixture->rows("SELECT count(*) FROM sqlite_master WHERE type='table'"), QStringList { "8" });

        QVERIFY(database()->deleteFolderItems(Account, { name }));
        QVERIFY(database()->deleteEmailItems(Account, { name }));
        QVERIFY(database()->deleteCalendarItems(Account, { name }));
        QVERIFY(database()->deleteContactsItems(Account, { name }));
        QVERIFY(database()->deleteCalendarAttachmentByContentId(name, name));
        for (const char *table : { "emails", "calendar", "contacts", "attachments" })
            QCOMPARE(
                mFixture->rows(QStringLiteral("SELECT count(*) FROM %1").arg(table)), QStringList { "0" });
    }

private:
    void checkFolder(const QString &name)
    {
        EasFolderItem folder;
        folder.setServerId(name);
        folder.setServerParentId(name);
        folder.setLocalId(name);
        folder.setLocalParentId(name);
        folder.setSyncKey("0");
        folder.setDisplayName("0");
        folder.setType(EasFolderItem::DefaultCalendarFolder);
        QVERIFY(database()->addFolderItems(Account, { folder }));
        folder.setDisplayName(name);
        folder.setSyncKey(name);
        folder.appendChangedField(1799);
        folder.appendChangedField(11);
        QVERIFY(database()->updateFolderItems(Account, { folder }));
        QVERIFY(database()->setSavedInStorage(Account, name, true));
        const QList<EasFolderItem> found = *database()->calendarFolderItems(Account);
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().serverId(), name);
        QCOMPARE(found.first().serverParentId(), name);
        QCOMPARE(found.first().localParentId(), name);
        QCOMPARE(found.first().displayName(), name);
        QCOMPARE(found.first().syncKey(), name);
        QVERIFY(found.first().savedInStorage());
        QCOMPARE(database()->folderItemByServerId(Account, name)->localId(), name);
        QCOMPARE(database()->folderItemByLocalId(Account, name)->serverId(), name);
    }

    void checkMail(const QString &name)
    {
        QVERIFY(database()->addEmailItems(Account, oneItem<EasEmailItem>(name)));
        QCOMPARE(*database()->serverToLocalEmailIds(Account), (Map { { name, name } }));
        QCOMPARE(*database()->localEmailIds(Account, name), QStringList { name });
        QCOMPARE(*database()->folderServerIdByEmailServerId(Account, name), name);
        QList<EasEmailItem> moved = oneItem<EasEmailItem>(name);
        moved.first().setPreviousServerId(name);
        QVERIFY(database()->updateMovedEmailItems(Account, moved));
    }

    void checkCalendar(const QString &name)
    {
        QVERIFY(database()->addCalendarItems(Account, oneItem<EasCalendarItem>(name)));
        QVERIFY(database()->updateCalendarItems(Account, oneItem<EasCalendarItem>(name)));
        QCOMPARE(*database()->localToServerCalendarId(Account, name), name);
        QCOMPARE(*database()->serverCalendarIdToCollectionId(Account, name), name);
    }

    void checkContact(const QString &name)
    {
        QVERIFY(database()->addContactsItems(Account, oneItem<EasContactsItem>(name)));
        QVERIFY(database()->updateContactsItems(Account, oneItem<EasContactsItem>(name)));
        QCOMPARE(*database()->localToServerContactIds(Account, name), (Map { { name, name } }));
        QCOMPARE(*database()->folderServerIdByContactLocalId(Account, name), name);
    }

    void checkAttachment(const QString &name)
    {
        EasAttachmentContainer attachment;
        attachment.setContentId(name);
        attachment.setFileReference(name);
        QVERIFY(database()->addCalendarAttachment(name, attachment));
        QVERIFY(*database()->isCalendarAttachmentExists(name, name) == Existence::Present);
        QCOMPARE(database()->getAttachmentByFileReference(name, name)->value().contentId(), name);
    }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseHostileNamesTest)
#include "easdatabasehostilenamestest.moc"
