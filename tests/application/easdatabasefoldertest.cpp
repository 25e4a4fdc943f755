// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
constexpr EasAccountId OtherAccount = 6;

EasFolderItem folder(const QString &serverId, EasFolderItem::FolderType type, const QString &localId)
{
    EasFolderItem item;
    item.setServerId(serverId);
    item.setType(type);
    item.setLocalId(localId);
    item.setDisplayName(QStringLiteral("Name of ") + serverId);
    return item;
}

EasDatabase *database()
{
    return EasDatabase::instance();
}

} // namespace

class EasDatabaseFolderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
    }

    void cleanup() { mFixture.reset(); }

    void anAddedFolderIsKeptWithAllItsColumns()
    {
        EasFolderItem item = folder("7", EasFolderItem::DefaultInboxFolder, "70");
        item.setServerParentId("0");
        item.setLocalParentId("1");
        item.setSyncKey("{key}3");
        item.setSavedInStorage(true);
        QVERIFY(database()->addFolderItems(Account, { item }));
        QCOMPARE(rows(), QStringList { "1|5|7|0|70|1|{key}3|2|Name of 7|1" });
    }

    void textsThatAFolderLacksAreEmptyAndNotNull()
    {
        QVERIFY(database()->addFolderItems(Account, { EasFolderItem() }));
        QCOMPARE(rows(), QStringList { "1|5||||||18||0" });
    }

    void aFolderIsFoundByEitherIdentifierWithinItsAccount()
    {
        EasFolderItem item = folder("7", EasFolderItem::DefaultSentItemsFolder, "70");
        item.setSyncKey("9");
        item.setSavedInStorage(true);
        EasFolderItem foreign = folder("7", EasFolderItem::DefaultInboxFolder, "71");
        QVERIFY(database()->addFolderItems(OtherAccount, { foreign }));
        QVERIFY(database()->addFolderItems(Account, { item }));
        for (const EasFolderItem &found : { *database()->folderItemByLocalId(Account, "70"),
                 *database()->folderItemByServerId(Account, "7") }) {
            QCOMPARE(found.serverId(), QString("7"));
            QCOMPARE(found.localId(), QString("70"));
            QCOMPARE(found.syncKey(), QString("9"));
            QCOMPARE(found.type(), EasFolderItem::DefaultSentItemsFolder);
            QCOMPARE(found.displayName(), QString("Name of 7"));
            QVERIFY(found.savedInStorage());
        }
    }

    void anUnknownServerIdentifierGivesADefaultFolderAndNoError()
    {
        const LogCollector log;
        const EasFolderItem item = *database()->folderItemByServerId(Account, "unknown");
        QCOMPARE(item.type(), EasFolderItem::UnknownFolder);
        QCOMPARE(item.serverId(), QString());
        QCOMPARE(item.localId(), QString());
        QCOMPARE(item.syncKey(), QString());
        QCOMPARE(item.displayName(), QString());
        QVERIFY(!item.savedInStorage());
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
        QCOMPARE(*database()->folderTypeByServerId(Account, "unknown"), EasFolderItem::UnknownFolder);
    }

    void anUnknownLocalIdentifierStandsInTheDefaultFolder()
    {
        const EasFolderItem item = *database()->folderItemByLocalId(Account, "404");
        QCOMPARE(item.localId(), QString("404"));
        QCOMPARE(item.serverId(), QString());
        QCOMPARE(item.type(), EasFolderItem::UnknownFolder);
    }

    void mailFoldersAreThoseOfTheMailTypesAlone()
    {
        addOneFolderOfEachType();
        QStringList found;
        const QList<EasFolderItem> items = *database()->emailFolderItems(Account);
        for (const EasFolderItem &item : items) {
            QCOMPARE(item.serverId(), QString::number(item.type()));
            found.append(item.serverId());
        }
        QCOMPARE(found, (QStringList { "1", "2", "3", "4", "5", "6", "12" }));
    }

    void calendarFoldersComeWithTheirParents()
    {
        addOneFolderOfEachType();
        const QList<EasFolderItem> items = *database()->calendarFolderItems(Account);
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.at(0).type(), EasFolderItem::DefaultCalendarFolder);
        QCOMPARE(items.at(1).type(), EasFolderItem::UserCreatedCalendarFolder);
        QCOMPARE(items.at(1).serverId(), QString("13"));
        QCOMPARE(items.at(1).serverParentId(), QString("parent of 13"));
        QCOMPARE(items.at(1).localId(), QString("local 13"));
        QCOMPARE(items.at(1).localParentId(), QString("local parent of 13"));
        QCOMPARE(items.at(1).syncKey(), QString("key 13"));
        QCOMPARE(items.at(1).displayName(), QString("Name of 13"));
        QVERIFY(items.at(1).savedInStorage());
    }

    void foldersOfOneTypeAreListed()
    {
        addOneFolderOfEachType();
        QVERIFY(database()->addFolderItems(
            Account, { folder("more", EasFolderItem::UserCreatedContactsFolder, "m") }));
        const QList<EasFolderItem> items =
            *database()->folderItemsByFolderType(Account, EasFolderItem::UserCreatedContactsFolder);
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.at(0).serverId(), QString("14"));
        QCOMPARE(items.at(0).localId(), QString("local 14"));
        QCOMPARE(items.at(0).syncKey(), QString("key 14"));
        QCOMPARE(items.at(1).serverId(), QString("more"));
        QCOMPARE(items.at(1).type(), EasFolderItem::UserCreatedContactsFolder);
        QCOMPARE(*database()->folderTypeByServerId(Account, "14"), EasFolderItem::UserCreatedContactsFolder);
    }

    void theMapsHoldTheHierarchyRowWithEmptyIdentifiers()
    {
        database()->onAccountAdded(Account);
        QVERIFY(
            database()->addFolderItems(Account, { folder("7", EasFolderItem::DefaultInboxFolder, "70") }));
        using Map = QMap<QString, QString>;
        QCOMPARE(*database()->serverToLocalFolderIds(Account), (Map { { "", "" }, { "7", "70" } }));
        QCOMPARE(*database()->localToServerFolderIds(Account), (Map { { "", "" }, { "70", "7" } }));
        QCOMPARE(*database()->serverToLocalFolderIds(OtherAccount), Map());
    }

    void theParentsAreThoseOfTheServer()
    {
        EasFolderItem item = folder("7", EasFolderItem::DefaultInboxFolder, "70");
        item.setServerParentId("3");
        QVERIFY(database()->addFolderItems(Account, { item }));
        using Map = QMap<QString, QString>;
        QCOMPARE(*database()->serverFolderParentIds(Account), (Map { { "7", "3" } }));
        QCOMPARE(*database()->serverFolderParentIds(OtherAccount), Map());
    }

    void anUpdateWritesTheBindingAndTheChangedFields_data()
    {
        QTest::addColumn<QList<uint>>("tags");
        QTest::addColumn<QString>("row");
        const QString unchanged = "1|5|7|0|new local|new parent|0|2|Name of 7|1";
        QTest::newRow("no field") << QList<uint>() << unchanged;
        QTest::newRow("parent") << QList<uint> { 1801 } << "1|5|7|9|new local|new parent|0|2|Name of 7|1";
        QTest::newRow("name") << QList<uint> { 1799 } << "1|5|7|0|new local|new parent|0|2|New name|1";
        QTest::newRow("key of the hierarchy page")
            << QList<uint> { 1810 } << "1|5|7|0|new local|new parent|k2|2|Name of 7|1";
        QTest::newRow("key of the sync page")
            << QList<uint> { 11 } << "1|5|7|0|new local|new parent|k2|2|Name of 7|1";
        QTest::newRow("all") << QList<uint> { 1801, 1799, 1810, 11 }
                             << "1|5|7|9|new local|new parent|k2|2|New name|1";
    }

    void anUpdateWritesTheBindingAndTheChangedFields()
    {
        QFETCH(QList<uint>, tags);
        QFETCH(QString, row);
        EasFolderItem item = folder("7", EasFolderItem::DefaultInboxFolder, "70");
        item.setServerParentId("0");
        item.setSyncKey("0");
        QVERIFY(database()->addFolderItems(Account, { item }));

        item.setLocalId("new local");
        item.setLocalParentId("new parent");
        item.setSavedInStorage(true);
        item.setServerParentId("9");
        item.setDisplayName("New name");
        item.setSyncKey("k2");
        for (const uint tag : qAsConst(tags))
            item.appendChangedField(tag);
        QVERIFY(database()->updateFolderItems(Account, { item }));
        QCOMPARE(rows(), QStringList { row });
    }

    void anUnknownTagIsWarnedOfAndTheRestIsWritten()
    {
        const LogCollector log;
        EasFolderItem item = folder("7", EasFolderItem::DefaultInboxFolder, "70");
        QVERIFY(database()->addFolderItems(Account, { item }));
        item.setDisplayName("New name");
        item.appendChangedField(1802);
        item.appendChangedField(1799);
        QVERIFY(database()->updateFolderItems(Account, { item }));
        QVERIFY(log.contains(QtWarningMsg, { "unhandled tag id", "1802" }));
        QCOMPARE(database()->folderItemByServerId(Account, "7")->displayName(), QString("New name"));
    }

    void aFailedUpdateLeavesTheItemsBehindItAlone()
    {
        const LogCollector log;
        EasFolderItem first = folder("1", EasFolderItem::DefaultInboxFolder, "10");
        EasFolderItem second = folder("2", EasFolderItem::DefaultInboxFolder, "20");
        EasFolderItem third = folder("3", EasFolderItem::DefaultInboxFolder, "30");
        QVERIFY(database()->addFolderItems(Account, { first, second, third }));
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE UPDATE ON collections WHEN OLD.server_id='2' "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        for (EasFolderItem *item : { &first, &second, &third })
            item->setLocalId("new");
        QVERIFY(!database()->updateFolderItems(Account, { first, second, third }));
        QVERIFY(log.contains(
            QtCriticalMsg, { "can't update folder items for account", "5", ". Error:", "refused" }));
        QCOMPARE(mFixture->rows("SELECT local_id FROM collections"), (QStringList { "new", "20", "30" }));
    }

    void deletedFoldersGoInTheirAccountAlone()
    {
        const QList<EasFolderItem> items { folder("1", EasFolderItem::DefaultInboxFolder, "10"),
            folder("2", EasFolderItem::UserCreatedMailFolder, "20") };
        QVERIFY(database()->addFolderItems(Account, items));
        QVERIFY(database()->addFolderItems(OtherAccount, items));
        QVERIFY(database()->deleteFolderItems(Account, { "2", "unknown" }));
        QCOMPARE(mFixture->rows("SELECT account_id, server_id FROM collections"),
            (QStringList { "5|1", "6|1", "6|2" }));
    }

    void changesAreAddedThenUpdatedThenDeleted()
    {
        EasFolderItem added = folder("1", EasFolderItem::DefaultInboxFolder, "10");
        EasFolderItem updated = added;
        updated.setDisplayName("Renamed");
        updated.appendChangedField(1799);
        const EasFolderItem shortLived = folder("2", EasFolderItem::UserCreatedMailFolder, "20");
        QVERIFY(database()->folderItemsChanges(Account, { added, shortLived }, { updated }, { "2" }));
        QCOMPARE(
            mFixture->rows("SELECT server_id, display_name FROM collections"), QStringList { "1|Renamed" });
    }

    void theFirstFailedStepEndsTheChanges()
    {
        const LogCollector log;
        const EasFolderItem item = folder("1", EasFolderItem::DefaultInboxFolder, "10");
        QVERIFY(database()->addFolderItems(Account, { item }));
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE INSERT ON collections "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        EasFolderItem other = folder("2", EasFolderItem::DefaultInboxFolder, "20");
        QVERIFY(!database()->folderItemsChanges(Account, { other }, {}, { "1" }));
        QVERIFY(log.contains(QtCriticalMsg, { "can't add folder items for account", "5", ". Error:" }));
        QCOMPARE(mFixture->rows("SELECT server_id FROM collections"), QStringList { "1" });
    }

    void emptyListsRunNoStatement()
    {
        const LogCollector log;
        mFixture->execute({ "DROP TABLE collections" });
        QVERIFY(database()->folderItemsChanges(Account, {}, {}, {}));
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
    }

    void aFolderIsMarkedAsSaved()
    {
        QVERIFY(database()->addFolderItems(Account,
            { folder("1", EasFolderItem::DefaultInboxFolder, "10"),
                folder("2", EasFolderItem::DefaultInboxFolder, "20") }));
        QVERIFY(database()->setSavedInStorage(Account, "20", true));
        QCOMPARE(mFixture->rows("SELECT saved_in_storage FROM collections"), (QStringList { "0", "1" }));
        QVERIFY(database()->setSavedInStorage(Account, "20", false));
        QCOMPARE(mFixture->rows("SELECT saved_in_storage FROM collections"), (QStringList { "0", "0" }));
    }

private:
    QStringList rows() const { return mFixture->rows("SELECT * FROM collections"); }

    void addOneFolderOfEachType()
    {
        database()->onAccountAdded(Account);
        QList<EasFolderItem> items;
        for (int type = 1; type <= 19; ++type) {
            const QString id = QString::number(type);
            EasFolderItem item = folder(id, EasFolderItem::FolderType(type), "local " + id);
            item.setServerParentId("parent of " + id);
            item.setLocalParentId("local parent of " + id);
            item.setSyncKey("key " + id);
            item.setSavedInStorage(true);
            items.append(item);
        }
        QVERIFY(database()->addFolderItems(Account, items));
    }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseFolderTest)
#include "easdatabasefoldertest.moc"
