// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "application/storagescleanup.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
constexpr EasAccountId OtherAccount = 6;

EasDatabase *database()
{
    return EasDatabase::instance();
}

using Accounts = QList<EasAccountId>;

} // namespace

class EasDatabaseAccountsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
        mStorages = std::make_unique<StoragesCleanUp>();
        mAccounts = ScriptedManager::install();
    }

    void cleanup()
    {
        ScriptedManager::uninstall();
        mStorages.reset();
        mFixture.reset();
    }

    void anAccountThatIsAddedTwiceHasOneRowAndOneHierarchyRow()
    {
        database()->onAccountAdded(Account);
        database()->onAccountAdded(Account);
        QCOMPARE(rows("accounts"), QStringList { "5|0" });
        QCOMPARE(rows("collections"), QStringList { "1|5|||||0|0||0" });
        QCOMPARE(mFixture->rows("SELECT count(*) FROM collections WHERE server_id='' AND server_parent_id='' "
                                "AND local_id='' AND local_parent_id='' AND display_name=''"),
            QStringList { "1" });
    }

    void theMailAccountIsZeroUntilItIsSet()
    {
        QCOMPARE(*database()->emailAccountId(Account), quint64(0));
        QCOMPARE(rows("accounts"), QStringList { "5|0" });
        database()->setEmailAccountId(Account, 17);
        QCOMPARE(*database()->emailAccountId(Account), quint64(17));
        database()->setEmailAccountId(OtherAccount, 18);
        QCOMPARE(rows("accounts"), (QStringList { "5|17", "6|18" }));
    }

    void theHierarchyKeyIsInitialUntilItIsSet()
    {
        QCOMPARE(*database()->folderSyncKey(Account), QString("0"));
        database()->setFolderSyncKey(Account, "3;a'b");
        QCOMPARE(*database()->folderSyncKey(Account), QString("3;a'b"));
        QCOMPARE(*database()->folderSyncKey(OtherAccount), QString("0"));
        QCOMPARE(rows("collections").size(), 2);
    }

    void aHierarchyRowWithoutKeyGivesTheInitialOne()
    {
        mFixture->execute({ "INSERT INTO collections (account_id, type, synckey) VALUES (5, 0, NULL)" });
        QCOMPARE(*database()->folderSyncKey(Account), QString("0"));
    }

    void settingTheHierarchyKeyLeavesTheFoldersAlone()
    {
        addRowsOf(Account);
        database()->setFolderSyncKey(Account, "9");
        QCOMPARE(mFixture->rows("SELECT synckey FROM collections WHERE type<>0"), QStringList { "k" });
    }

    void aRowThatHasGoneIsMadeAgainByTheNextAccess()
    {
        database()->onAccountAdded(Account);
        mFixture->execute({ "DELETE FROM accounts", "DELETE FROM collections" });
        QCOMPARE(*database()->emailAccountId(Account), quint64(0));
        QCOMPARE(*database()->folderSyncKey(Account), QString("0"));
        QCOMPARE(rows("accounts"), QStringList { "5|0" });
        QCOMPARE(rows("collections").size(), 1);
    }

    void anAccountIsRemovedFromEveryTableButTheAttachments()
    {
        addRowsOf(Account);
        addRowsOf(OtherAccount);
        database()->removeAccount(Account);
        for (const char *table : { "accounts", "calendar", "contacts", "collections", "emails" }) {
            const QString counts = QStringLiteral("SELECT count(*) FROM %1 WHERE account_id=%2");
            QCOMPARE(mFixture->rows(counts.arg(table).arg(Account)), QStringList { "0" });
            QVERIFY(mFixture->rows(counts.arg(table).arg(OtherAccount)) != QStringList { "0" });
        }
        QCOMPARE(rows("attachments").size(), 2);
    }

    void theFirstFailureEndsARemoval()
    {
        addRowsOf(Account);
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE DELETE ON contacts "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        const LogCollector log;
        database()->removeAccount(Account);
        QVERIFY(log.contains(QtCriticalMsg, { "can't delete rows from contacts table. Error:", "refused" }));
        QCOMPARE(rows("accounts").size(), 0);
        QCOMPARE(rows("calendar").size(), 0);
        QCOMPARE(rows("contacts").size(), 1);
        QCOMPARE(rows("emails").size(), 1);
        QVERIFY(!rows("collections").isEmpty());
    }

    void aDeletedAccountGoesAfterItsStores()
    {
        addRowsOf(Account);
        database()->onAccountDeleted(Account);
        QCOMPARE(mStorages->deleted, QList<Accounts> { Accounts { Account } });
        QCOMPARE(rows("accounts"), QStringList());
    }

    void aDeletedAccountStaysWhileItsStoresDo()
    {
        addRowsOf(Account);
        mStorages->succeeds = false;
        const LogCollector log;
        const QStringList before = mFixture->content();
        database()->onAccountDeleted(Account);
        QVERIFY(log.contains(QtWarningMsg, { "failed to clean up storages" }));
        QCOMPARE(mFixture->content(), before);
    }

    void aClearedAccountHasNoRowsButAFreshHierarchy()
    {
        addRowsOf(Account);
        addRowsOf(OtherAccount);
        FakeAccount *account = mAccounts->addAccount(Account);
        account->firstSyncDone = true;
        const LogCollector log;
        QVERIFY(database()->clearAccount(Account));
        QVERIFY(log.contains(QtInfoMsg, { "Clearing account with ID:", "5" }));
        QCOMPARE(mStorages->cleared, QList<Accounts> { Accounts { Account } });
        QCOMPARE(mFixture->rows("SELECT * FROM accounts WHERE account_id=5"), QStringList());
        QCOMPARE(mFixture->rows("SELECT type, synckey FROM collections WHERE account_id=5"),
            QStringList { "0|0" });
        QCOMPARE(mFixture->rows("SELECT count(*) FROM emails WHERE account_id=6"), QStringList { "1" });
        QVERIFY(!account->firstSyncCompleted());
    }

    void anAccountIsNotClearedWhileItsStoresAreNot()
    {
        addRowsOf(Account);
        mAccounts->addAccount(Account);
        mStorages->succeeds = false;
        database()->setFolderSyncKey(Account, "17");
        const LogCollector log;
        const QStringList before = mFixture->content();
        QVERIFY(!database()->clearAccount(Account));
        QVERIFY(log.contains(QtWarningMsg, { "Failed to clean up storages for account ID:", "5" }));
        // The rows stay for the next sync, which goes on with this as there is no key.
        QCOMPARE(*database()->folderSyncKey(Account), QString("0"));
        database()->setFolderSyncKey(Account, "17");
        QCOMPARE(mFixture->content(), before);
    }

    void whatWasHalfClearedIsClearedToTheEnd_data()
    {
        QTest::addColumn<QStringList>("gone");
        QTest::newRow("before the stores") << QStringList();
        QTest::newRow("at the rows of accounts") << QStringList { "accounts" };
        QTest::newRow("at the rows of folders")
            << QStringList { "accounts", "calendar", "contacts", "collections" };
    }

    void whatWasHalfClearedIsClearedToTheEnd()
    {
        QFETCH(QStringList, gone);
        addRowsOf(Account);
        addRowsOf(OtherAccount);
        mAccounts->addAccount(Account);
        database()->setFolderSyncKey(Account, "0");
        for (const QString &table : qAsConst(gone))
            mFixture->execute({ QStringLiteral("DELETE FROM %1 WHERE account_id=5").arg(table) });
        QVERIFY(database()->finishClearingAccount(Account));
        QCOMPARE(mStorages->cleared, QList<Accounts> { Accounts { Account } });
        QCOMPARE(mFixture->rows("SELECT type, synckey FROM collections WHERE account_id=5"),
            QStringList { "0|0" });
        QCOMPARE(mFixture->rows("SELECT count(*) FROM emails WHERE account_id=5"), QStringList { "0" });
        QCOMPARE(mFixture->rows("SELECT count(*) FROM emails WHERE account_id=6"), QStringList { "1" });
    }

    void anAccountThatIsNotHalfClearedStays()
    {
        QVERIFY(database()->finishClearingAccount(Account)); // a new one
        addRowsOf(OtherAccount);
        database()->setFolderSyncKey(OtherAccount, "17");
        const QStringList before = mFixture->content();
        QVERIFY(database()->finishClearingAccount(OtherAccount));
        QCOMPARE(mFixture->content(), before);
        QCOMPARE(mStorages->cleared, QList<Accounts>());
    }

    void clearingAnUnknownAccountFailsAfterTheFact()
    {
        const LogCollector log;
        QVERIFY(!database()->clearAccount(Account));
        QVERIFY(log.contains(QtCriticalMsg, { "Account with ID: ", "5", " does not exist!" }));
        QCOMPARE(*database()->folderSyncKey(Account), QString("0"));
    }

    void cleaningUpWithAllAccountsRemovesNothing()
    {
        addRowsOf(Account);
        addRowsOf(OtherAccount);
        const QStringList before = mFixture->content();
        QVERIFY(database()->cleanUp({ OtherAccount, Account, 99 }));
        QCOMPARE(mFixture->content(), before);
        QCOMPARE(mStorages->deleted, QList<Accounts>());
    }

    void cleaningUpRemovesTheAccountsThatAreGone()
    {
        addRowsOf(Account);
        addRowsOf(OtherAccount);
        addRowsOf(7);
        const LogCollector log;
        QVERIFY(database()->cleanUp({ OtherAccount }));
        QVERIFY(log.contains("accounts for clean up:"));
        QVERIFY(log.contains("5, 7"));
        QCOMPARE(mStorages->deleted, (QList<Accounts> { Accounts { Account, 7 } }));
        QCOMPARE(mFixture->rows("SELECT account_id FROM accounts"), QStringList { "6" });
        QCOMPARE(mFixture->rows("SELECT account_id FROM emails"), QStringList { "6" });
    }

    void aFailedCleanUpKeepsTheRowsForTheNextStart()
    {
        addRowsOf(Account);
        mStorages->succeeds = false;
        const LogCollector log;
        const QStringList before = mFixture->content();
        QVERIFY(!database()->cleanUp({}));
        QVERIFY(log.contains(QtWarningMsg, { "failed to clean up storages" }));
        QCOMPARE(mFixture->content(), before);
        mStorages->succeeds = true;
        QVERIFY(database()->cleanUp({}));
        QCOMPARE(rows("accounts"), QStringList());
    }

    void theKindOfAnItemGoesByItsTable_data()
    {
        QTest::addColumn<QString>("serverId");
        QTest::addColumn<int>("type");
        QTest::newRow("a message") << "mail" << 1;
        QTest::newRow("a contact") << "contact" << 2;
        QTest::newRow("an event") << "event" << 3;
        QTest::newRow("nothing") << "unknown" << 0;
        QTest::newRow("in two tables the first row counts") << "both" << 1;
    }

    void theKindOfAnItemGoesByItsTable()
    {
        QFETCH(QString, serverId);
        QFETCH(int, type);
        mFixture->execute({ "INSERT INTO emails VALUES (NULL, 9, 'mail', '1', '1')",
            "INSERT INTO emails VALUES (NULL, 9, 'both', '1', '2')",
            "INSERT INTO calendar VALUES (NULL, 5, 'event', '1', '1', 1)",
            "INSERT INTO calendar VALUES (NULL, 5, 'both', '1', '1', 1)",
            "INSERT INTO contacts VALUES (5, 'contact', '1', '1', '')" });
        QCOMPARE(int(*database()->getAppDataType(serverId)), type);
    }

private:
    QStringList rows(const QString &table) const { return mFixture->rows("SELECT * FROM " + table); }

    void addRowsOf(EasAccountId id)
    {
        database()->onAccountAdded(id);
        const QString number = QString::number(id);
        QStringList statements {
            "INSERT INTO collections VALUES (NULL, %1, '7', '0', '70', '', 'k', 2, 'Inbox', 1)",
            "INSERT INTO emails VALUES (NULL, %1, '7:1', '7', '101')",
            "INSERT INTO calendar VALUES (NULL, %1, '4:1', '4', 'uid-1', 1)",
            "INSERT INTO contacts VALUES (%1, '2:1', '2', 'c%1', '')",
            "INSERT INTO attachments VALUES ('event of %1', 'cid', 'ref')",
        };
        mFixture->execute(statements.replaceInStrings("%1", number));
    }

    std::unique_ptr<DatabaseFixture> mFixture;
    std::unique_ptr<StoragesCleanUp> mStorages;
    ScriptedManager *mAccounts = nullptr;
};

FENNEL_REGISTER_TEST(EasDatabaseAccountsTest)
#include "easdatabaseaccountstest.moc"
