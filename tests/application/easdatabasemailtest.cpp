// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
constexpr EasAccountId OtherAccount = 6;
constexpr uint CollectionIdTag = 18;

EasEmailItem email(const QString &serverId, const QString &collectionId, const QString &localId)
{
    EasEmailItem item;
    item.setServerId(serverId);
    item.setCollectionId(collectionId);
    item.setLocalId(localId);
    return item;
}

EasEmailItem moved(const QString &previousServerId, const QString &serverId, const QString &collectionId)
{
    EasEmailItem item = email(serverId, collectionId, QString());
    item.setPreviousServerId(previousServerId);
    return item;
}

EasDatabase *database()
{
    return EasDatabase::instance();
}

using Map = QMap<QString, QString>;

} // namespace

class EasDatabaseMailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
        QVERIFY(database()->addEmailItems(
            Account, { email("7:1", "7", "101"), email("7:2", "7", "102"), email("8:1", "8", "103") }));
        QVERIFY(database()->addEmailItems(OtherAccount, { email("7:1", "7", "201") }));
    }

    void cleanup() { mFixture.reset(); }

    void addedMessagesAreKept()
    {
        QCOMPARE(
            rows(), (QStringList { "1|5|7:1|7|101", "2|5|7:2|7|102", "3|5|8:1|8|103", "4|6|7:1|7|201" }));
    }

    void identifiersAreReadPerAccountAndFolder()
    {
        QCOMPARE(*database()->localEmailIds(Account, "7"), (QStringList { "101", "102" }));
        QCOMPARE(*database()->localEmailIds(Account, "9"), QStringList());
        QCOMPARE(*database()->serverToLocalEmailIds(Account),
            (Map { { "7:1", "101" }, { "7:2", "102" }, { "8:1", "103" } }));
        QCOMPARE(*database()->localToServerEmailIds(OtherAccount), (Map { { "201", "7:1" } }));
        QCOMPARE(*database()->folderServerIdByEmailServerId(Account, "8:1"), QString("8"));
        QCOMPARE(*database()->collectionServerIdFromEmailItemId(Account, "7:2"), QString("7"));
        QCOMPARE(*database()->folderServerIdByEmailServerId(Account, "9:9"), QString());
    }

    void identifiersOfSomeMessagesAreReadByAllTheirNames()
    {
        // As a move leaves it that was cut short: one message under its old and its new name.
        QVERIFY(database()->addEmailItems(Account, { email("8:7", "8", "101"), email("7:9", "7", "") }));
        QVERIFY(database()->addEmailItems(Account, { email("7:8", "7", "") }));
        QCOMPARE(*database()->serverToLocalEmailIds(Account, { "7:1", "9:9" }),
            (Map { { "7:1", "101" }, { "8:7", "101" } }));
        QCOMPARE(*database()->serverToLocalEmailIds(Account, { "7:9" }), (Map { { "7:9", "" } }));
        QCOMPARE(*database()->serverToLocalEmailIds(Account, {}), Map());
        QCOMPARE(*database()->localToServerEmailIds(Account, { "102", "201" }), (Map { { "102", "7:2" } }));
    }

    void moreNamesThanAStatementTakesAreReadInParts()
    {
        QStringList serverIds;
        QList<EasEmailItem> items;
        for (int i = 0; i < 2000; ++i) {
            serverIds.append(QStringLiteral("12:%1").arg(i));
            items.append(email(serverIds.last(), "12", QString::number(5000 + i)));
        }
        QVERIFY(database()->addEmailItems(Account, items));
        QCOMPARE(database()->serverToLocalEmailIds(Account, serverIds)->size(), 2000);
        QCOMPARE(database()->localToServerEmailIds(Account, { "5000", "6999" })->values(),
            (QStringList { "12:0", "12:1999" }));
    }

    void anUpdateToTheSameFolderWritesNothing()
    {
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE UPDATE ON emails "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        EasEmailItem item = email("7:1", "7", "101");
        item.appendChangedField(CollectionIdTag);
        QVERIFY(database()->updateEmailItems(Account, { item }));
    }

    void anUpdateWithoutTheFolderTagRunsNoStatement()
    {
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE UPDATE ON emails "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        EasEmailItem item = email("7:1", "8", "999");
        item.appendChangedField(533);
        QVERIFY(database()->updateEmailItems(Account, { item }));
        QCOMPARE(*database()->folderServerIdByEmailServerId(Account, "7:1"), QString("7"));
    }

    void anUpdateWithTheFolderTagMovesTheMessageOfThatAccount()
    {
        EasEmailItem untouched = email("7:2", "8", "999");
        EasEmailItem item = email("7:1", "8", "999");
        item.appendChangedField(CollectionIdTag);
        QVERIFY(database()->updateEmailItems(Account, { untouched, item }));
        QCOMPARE(
            rows(), (QStringList { "1|5|7:1|8|101", "2|5|7:2|7|102", "3|5|8:1|8|103", "4|6|7:1|7|201" }));
    }

    void aMovedMessageKeepsItsRowAndItsLocalIdentifier()
    {
        QVERIFY(database()->updateMovedEmailItems(
            Account, { moved("7:1", "8:5", "8"), moved("7:2", "9:6", "9") }));
        QCOMPARE(
            rows(), (QStringList { "1|5|8:5|8|101", "2|5|9:6|9|102", "3|5|8:1|8|103", "4|6|7:1|7|201" }));
    }

    void twoMessagesThatSwapTheirIdentifiersAreNotMixedUp()
    {
        QVERIFY(database()->updateMovedEmailItems(
            Account, { moved("7:1", "7:2", "8"), moved("7:2", "7:1", "9") }));
        QCOMPARE(*database()->serverToLocalEmailIds(Account),
            (Map { { "7:2", "101" }, { "7:1", "102" }, { "8:1", "103" } }));
    }

    void aMoveOfAMessageWithTwoRowsFailsAndChangesNothing()
    {
        const LogCollector log;
        QVERIFY(database()->addEmailItems(Account, { email("7:1", "7", "104") }));
        const QStringList before = rows();
        QVERIFY(!database()->updateMovedEmailItems(Account, { moved("7:1", "8:5", "8") }));
        QCOMPARE(rows(), before);
        QVERIFY(log.contains(QtCriticalMsg,
            { "selected eas DB ids are not bind properly to email server ids                                 "
              "for account",
                "5", ". Check duplications in Eas DB" }));
    }

    void aMoveOfAnUnknownMessageFails()
    {
        const QStringList before = rows();
        QVERIFY(!database()->updateMovedEmailItems(
            Account, { moved("7:1", "8:5", "8"), moved("unknown", "8:6", "8") }));
        QCOMPARE(rows(), before);
    }

    void aRowIdentifierThatIsNoNumberEndsTheMove()
    {
        const LogCollector log;
        mFixture->execute({ "DROP TABLE emails",
            "CREATE TABLE emails (id, account_id INTEGER, server_id TEXT, collection_id TEXT, local_id TEXT)",
            "INSERT INTO emails VALUES ('one', 5, '7:1', '7', '101')" });
        QVERIFY(!database()->updateMovedEmailItems(Account, { moved("7:1", "8:5", "8") }));
        QVERIFY(log.contains(QtCriticalMsg, { "can't get email id value from query. easDbId:", "one" }));
        QCOMPARE(rows(), QStringList { "one|5|7:1|7|101" });
    }

    void deletedMessagesGoInTheirAccountAlone()
    {
        QVERIFY(database()->deleteEmailItems(Account, { "7:1", "unknown" }));
        QCOMPARE(rows(), (QStringList { "2|5|7:2|7|102", "3|5|8:1|8|103", "4|6|7:1|7|201" }));
    }

    void changesAreAddedThenUpdatedThenDeleted()
    {
        EasEmailItem added = email("9:1", "9", "110");
        EasEmailItem updated = email("9:1", "10", "110");
        updated.appendChangedField(CollectionIdTag);
        QVERIFY(database()->emailItemsChanges(Account, { added }, { updated }, { "7:1", "7:2", "8:1" }));
        QCOMPARE(rows(), (QStringList { "4|6|7:1|7|201", "5|5|9:1|10|110" }));
    }

    void theFirstFailedStepEndsTheChanges()
    {
        const LogCollector log;
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE UPDATE ON emails "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        EasEmailItem updated = email("7:2", "10", "102");
        updated.appendChangedField(CollectionIdTag);
        QVERIFY(
            !database()->emailItemsChanges(Account, { email("9:1", "9", "110") }, { updated }, { "7:1" }));
        QVERIFY(log.contains(
            QtCriticalMsg, { "can't update email items for account", "5", ". Error:", "refused" }));
        QCOMPARE(
            database()->serverToLocalEmailIds(Account)->keys(), (QStringList { "7:1", "7:2", "8:1", "9:1" }));
    }

    void aFolderIsCleared()
    {
        QVERIFY(database()->clearEmailFolder(Account, "7"));
        QCOMPARE(rows(), (QStringList { "3|5|8:1|8|103", "4|6|7:1|7|201" }));
    }

    void aThousandMessagesGoInOneBatch()
    {
        QList<EasEmailItem> items;
        QStringList serverIds;
        for (int i = 0; i < 1000; ++i) {
            serverIds.append(QStringLiteral("12:%1").arg(i));
            items.append(email(serverIds.last(), "12", QString::number(1000 + i)));
        }
        QVERIFY(database()->addEmailItems(Account, items));
        QCOMPARE(database()->localEmailIds(Account, "12")->size(), 1000);
        QVERIFY(database()->deleteEmailItems(Account, serverIds));
        QCOMPARE(database()->localEmailIds(Account, "12")->size(), 0);
    }

private:
    QStringList rows() const { return mFixture->rows("SELECT * FROM emails"); }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseMailTest)
#include "easdatabasemailtest.moc"
