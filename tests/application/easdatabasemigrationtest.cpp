// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "support/databasefixture.h"
#include "support/fakeconfigurations.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
constexpr EasAccountId CalendarOff = 6;
constexpr EasAccountId UnknownAccount = 7;

/** How the tables looked at each version, with rows that each step can be told by. */
QStringList fileOfVersion(int version)
{
    QStringList sql {
        "CREATE TABLE accounts (account_id INTEGER, email_account_id INTEGER)",
        "INSERT INTO accounts VALUES (5, 5)",
        "CREATE TABLE emails (id INTEGER PRIMARY KEY AUTOINCREMENT, account_id INTEGER, server_id TEXT, "
        "collection_id TEXT, local_id TEXT)",
        "INSERT INTO emails VALUES (NULL, 5, '2:1', '2', '101')",
        "CREATE TABLE collections (id INTEGER PRIMARY KEY AUTOINCREMENT, account_id INTEGER, server_id TEXT, "
        "server_parent_id TEXT, local_id TEXT, local_parent_id TEXT, synckey TEXT, type INTEGER)",
        "INSERT INTO collections VALUES (NULL, 5, '', '', '', '', 'h7', 0)",
        "INSERT INTO collections VALUES (NULL, 5, '2', '0', '20', '', 'k2', 2)",
        "INSERT INTO collections VALUES (NULL, 5, '9', '0', '90', '', 'k9', 9)",
        "INSERT INTO collections VALUES (NULL, 5, '14', '0', '140', '', 'k14', 14)",
        "CREATE TABLE calendar (id INTEGER PRIMARY KEY AUTOINCREMENT, account_id INTEGER, server_id TEXT, "
        "collection_id TEXT, local_id TEXT)",
        "INSERT INTO calendar VALUES (NULL, 5, '8:1', '8', 'uid-5')",
        "INSERT INTO calendar VALUES (NULL, 6, '8:1', '8', 'uid-6')",
        "INSERT INTO calendar VALUES (NULL, 7, '8:1', '8', 'uid-7')",
        "CREATE TABLE contacts (account_id INTEGER, server_id TEXT, collection_id TEXT, local_id TEXT, "
        "avatar_url TEXT)",
        "INSERT INTO contacts VALUES (5, '9:1', '9', 'c1', 'file:///a.png')",
        "INSERT INTO contacts VALUES (5, '9:2', '9', 'c2', NULL)",
    };
    if (version >= 2)
        sql << "ALTER TABLE collections ADD COLUMN display_name TEXT"
            << "ALTER TABLE collections ADD COLUMN saved_in_storage INTEGER DEFAULT 1";
    if (version >= 3)
        sql << "ALTER TABLE calendar ADD COLUMN timestamp INTEGER"
            << "UPDATE calendar SET timestamp=1000";
    if (version >= 5)
        sql << "UPDATE collections SET synckey='0' WHERE type IN (9, 14)";
    sql << "CREATE TABLE versions (db_version INTEGER)"
        << QStringLiteral("INSERT INTO versions VALUES (%1)").arg(version);
    return sql;
}

QStringList withoutVersions(QStringList sql)
{
    sql.removeLast();
    sql.removeLast();
    return sql;
}

void addWithCalendar(ScriptedManager &accounts, EasAccountId id, bool enabled, qint64 lastSync)
{
    FakeAccount *account = accounts.addAccount(id);
    const auto calendar = QSharedPointer<FakeCalendarConfiguration>::create(id);
    calendar->isEnabled = enabled;
    account->calendar = calendar;
    account->setLastSyncTime(EasAccount::EmailService, QDateTime::fromSecsSinceEpoch(lastSync));
}

} // namespace

class EasDatabaseMigrationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        EasDatabase::TestMode = false;
        mFixture = std::make_unique<DatabaseFixture>();
        ScriptedManager *accounts = ScriptedManager::install();
        addWithCalendar(*accounts, Account, true, 1700);
        addWithCalendar(*accounts, CalendarOff, false, 1800);
        accounts->addAccount(99);
    }

    void cleanup()
    {
        EasDatabase::TestMode = false;
        mFixture.reset();
        ScriptedManager::uninstall();
    }

    void aFileOfEachVersionEndsAtVersion7_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QStringList>("steps");
        const QStringList all { "to version 3", "to version 4", "to version 5", "to version 6!",
            "to version 7!" };
        QTest::newRow("1") << 1 << all;
        QTest::newRow("2") << 2 << all;
        QTest::newRow("3") << 3 << QStringList(all.mid(1));
        QTest::newRow("4") << 4 << QStringList(all.mid(2));
        QTest::newRow("5") << 5 << QStringList(all.mid(3));
        QTest::newRow("6") << 6 << QStringList(all.mid(4));
        QTest::newRow("7") << 7 << QStringList();
    }

    void aFileOfEachVersionEndsAtVersion7()
    {
        QFETCH(int, version);
        QFETCH(QStringList, steps);
        mFixture->execute(fileOfVersion(version));
        const LogCollector log;
        mFixture->open();

        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
        QVERIFY(log.contains(QtInfoMsg, { "version number", QString::number(version) }));
        QCOMPARE(log.texts().filter("Successfully migrated EAS DB ").size(), steps.size());
        for (const QString &step : qAsConst(steps))
            QVERIFY2(log.contains("Successfully migrated EAS DB " + step), qPrintable(step));

        QCOMPARE(rows("versions"), QStringList { "7" });
        QCOMPARE(rows("accounts"), QStringList { "5|5" });
        QCOMPARE(rows("emails"), QStringList { "1|5|2:1|2|101" });
        QCOMPARE(rows("contacts"), (QStringList { "5|9:1|9|c1|file:///a.png", "5|9:2|9|c2|NULL" }));
        QCOMPARE(rows("collections"),
            (QStringList { "1|5|||||h7|0|NULL|1", "2|5|2|0|20||k2|2|NULL|1", "3|5|9|0|90||0|9|NULL|1",
                "4|5|14|0|140||0|14|NULL|1" }));
        QCOMPARE(rows("calendar"),
            version < 3
                ? (QStringList { "1|5|8:1|8|uid-5|1700", "2|6|8:1|8|uid-6|NULL", "3|7|8:1|8|uid-7|NULL" })
                : (QStringList { "1|5|8:1|8|uid-5|1000", "2|6|8:1|8|uid-6|1000", "3|7|8:1|8|uid-7|1000" }));
        QCOMPARE(rows("attachments"), QStringList());
        QCOMPARE(contactsHaveTheirKey(), version < 7);
    }

    void aMigratedFileServesAllOperations()
    {
        mFixture->execute(fileOfVersion(1));
        mFixture->open();
        EasDatabase *database = EasDatabase::instance();
        QCOMPARE(*database->folderSyncKey(Account), QString("h7"));
        QCOMPARE(database->folderItemByServerId(Account, "2")->localId(), QString("20"));
        QVERIFY(database->folderItemByServerId(Account, "2")->savedInStorage());
        QCOMPARE(*database->calendarItemUpdateTime(Account, "uid-5"), 1700U);
        QCOMPARE(*database->calendarItemUpdateTime(UnknownAccount, "uid-7"), EasDatabase::TimestampInvalid);
        EasFolderItem folder;
        folder.setServerId("21");
        QVERIFY(database->addFolderItems(Account, { folder }));
    }

    void anAccountThatNeverSynchronisedGivesTheInvalidTime()
    {
        static_cast<EasAccount *>(RequestManager::instance()->account(Account))
            ->setLastSyncTime(EasAccount::EmailService, QDateTime());
        mFixture->execute(fileOfVersion(2));
        mFixture->open();
        QCOMPARE(*EasDatabase::instance()->calendarItemUpdateTime(Account, "uid-5"),
            EasDatabase::TimestampInvalid);
    }

    void aFileFromBeforeVersionsWereKeptIsOfTheFirst()
    {
        mFixture->execute(withoutVersions(fileOfVersion(1)));
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtInfoMsg, { "version number", "1" }));
        QCOMPARE(rows("versions"), QStringList { "7" });
        QCOMPARE(rows("collections").first(), QString("1|5|||||h7|0|NULL|1"));
        QVERIFY(contactsHaveTheirKey());
    }

    void aVersionOfTheFutureOrOfNothingIsLeftAlone_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("logged");
        QTest::newRow("0") << "0"
                           << "0";
        QTest::newRow("8") << "8"
                           << "8";
        QTest::newRow("negative") << "-3"
                                  << "-3";
        QTest::newRow("text") << "'seven'"
                              << "0";
    }

    void aVersionOfTheFutureOrOfNothingIsLeftAlone()
    {
        QFETCH(QString, stored);
        QFETCH(QString, logged);
        mFixture->execute(fileOfVersion(1) << "UPDATE versions SET db_version=" + stored);
        const QStringList before = mFixture->content();
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "wrong DB version", logged }));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to migrate existing DB to the latest DB version" }));
        QCOMPARE(mFixture->content(), before);
    }

    void anEmptyVersionsTableBesideOthersCountsAsVersion0()
    {
        mFixture->execute(fileOfVersion(1) << "DELETE FROM versions");
        const QStringList before = mFixture->content();
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "wrong DB version", "0" }));
        QCOMPARE(mFixture->content(), before);
    }

    void ofSeveralVersionsTheLastNumberCounts()
    {
        mFixture->execute(fileOfVersion(6) << "INSERT INTO versions VALUES (7)"
                                           << "INSERT INTO versions VALUES ('none')");
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtInfoMsg, { "version number", "7" }));
        QVERIFY(!log.contains("Successfully migrated"));
    }

    void aVersionsTableThatCannotBeReadEndsTheStart()
    {
        mFixture->execute({ "CREATE TABLE versions (other INTEGER)", "INSERT INTO versions VALUES (7)" });
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "failed to execute sql query on versions table" }));
        QCOMPARE(mFixture->rows("SELECT name FROM sqlite_master"), QStringList { "versions" });
    }

    void inTestModeContactsAndTheirKeysStay()
    {
        EasDatabase::initTestMode();
        mFixture->execute(fileOfVersion(4));
        const LogCollector log;
        mFixture->open();
        QCOMPARE(log.count("Running in test mode, skip contact deletion"), 2);
        QCOMPARE(rows("versions"), QStringList { "7" });
        QCOMPARE(mFixture->rows("SELECT synckey FROM collections WHERE type IN (9, 14)"),
            (QStringList { "k9", "k14" }));
        QVERIFY(!contactsHaveTheirKey());
        QVERIFY(log.contains(QtInfoMsg, { "Successfully migrated EAS DB to version 7!" }));
    }

    void aFailedStepIsLoggedAndLeavesTheVersionBeforeIt_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("obstacle");
        QTest::addColumn<QStringList>("logged");
        QTest::addColumn<QString>("left");
        QTest::newRow("2, name") << 1 << "ALTER TABLE collections ADD COLUMN display_name TEXT"
                                 << QStringList { "failed to add displayname column", "duplicate" } << "1";
        QTest::newRow("2, saved") << 1 << "ALTER TABLE collections ADD COLUMN saved_in_storage INTEGER"
                                  << QStringList { "failed to add savedInStorage column", "duplicate" }
                                  << "1";
        QTest::newRow("2, number") << 1 << refusedVersion(2)
                                   << QStringList { "failed to set DB Version to 2" } << "1";
        QTest::newRow("3, column") << 2 << "ALTER TABLE calendar ADD COLUMN timestamp INTEGER"
                                   << QStringList { "Failed to add timestamp column:", "duplicate" } << "2";
        QTest::newRow("3, number") << 2 << refusedVersion(3) << QStringList { "Failed to save new version" }
                                   << "2";
        QTest::newRow("4, number") << 3 << refusedVersion(4) << QStringList { "Failed to save new version" }
                                   << "3";
        QTest::newRow("5, refused text")
            << 4 << "ALTER TABLE collections RENAME COLUMN synckey TO other"
            << QStringList { "Failed to PREPARE upgradeDbToVersion5 query:", "synckey" } << "4";
        QTest::newRow("5, refused rows")
            << 4
            << "CREATE TRIGGER refuse BEFORE UPDATE ON collections BEGIN SELECT RAISE(FAIL, 'refused'); END"
            << QStringList { "Failed to clear the contacts folder synckeys:", "refused" } << "4";
        QTest::newRow("5, number") << 4 << refusedVersion(5) << QStringList { "Failed to save new version" }
                                   << "4";
        QTest::newRow("6, number") << 5 << refusedVersion(6) << QStringList { "Failed to save new version" }
                                   << "5";
        QTest::newRow("7, temporary table")
            << 6 << "CREATE INDEX contacts_db_tmp ON accounts (account_id)"
            << QStringList { "create temp table query for upgrading table:", "contacts",
                   "to version:", "versions", ". Error:" }
            << "6";
        QTest::newRow("7, no pictures")
            << 6 << "ALTER TABLE contacts RENAME COLUMN avatar_url TO picture"
            << QStringList { "Can't PREPARE data move query for upgrading table:", "contacts",
                   "to version:", "versions", ". Error:", "avatar_url" }
            << "6";
        QTest::newRow("7, repeated key")
            << 6 << "INSERT INTO contacts SELECT * FROM contacts"
            << QStringList { "Can't EXECUTE data move query for upgrading table:", "contacts",
                   "to version:", "versions", ". Error:", "UNIQUE" }
            << "6";
        QTest::newRow("7, number") << 6 << refusedVersion(7) << QStringList { "Failed to save new version" }
                                   << "6";
    }

    void aFailedStepIsLoggedAndLeavesTheVersionBeforeIt()
    {
        QFETCH(int, version);
        QFETCH(QString, obstacle);
        QFETCH(QStringList, logged);
        QFETCH(QString, left);
        mFixture->execute(fileOfVersion(version) << obstacle);
        const QStringList contacts = rows("contacts");
        const LogCollector log;
        mFixture->open();
        QVERIFY2(log.contains(QtCriticalMsg, logged), qPrintable(log.texts(QtCriticalMsg).join('\n')));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to migrate existing DB to the latest DB version" }));
        QCOMPARE(rows("versions"), QStringList { left });
        QCOMPARE(rows("contacts"), contacts);
        QCOMPARE(mFixture->rows("SELECT name FROM sqlite_master WHERE name='attachments'"), QStringList());
    }

    void aFailedVersionNumberIsLoggedWithItsCause()
    {
        mFixture->execute(fileOfVersion(5) << refusedVersion(6));
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "failed to update the DB version", "refused" }));
    }

    void timestampsThatCannotBeWrittenDoNotEndTheStep()
    {
        mFixture->execute(fileOfVersion(2)
            << "CREATE TRIGGER refuse BEFORE UPDATE ON calendar BEGIN SELECT RAISE(FAIL, 'refused'); END");
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "SQL query failed:", "refused" }));
        QCOMPARE(rows("versions"), QStringList { "7" });
    }

    void theNextStartResumesAtTheFailedStep()
    {
        mFixture->execute(fileOfVersion(2) << refusedVersion(6));
        {
            const LogCollector log;
            mFixture->open();
            QCOMPARE(rows("versions"), QStringList { "5" });
        }
        mFixture->execute({ "DROP TRIGGER refuse" });
        const LogCollector log;
        mFixture->reopen();
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
        QVERIFY(!log.contains("Successfully migrated EAS DB to version 5"));
        QCOMPARE(rows("versions"), QStringList { "7" });
        QVERIFY(contactsHaveTheirKey());
    }

    void aCrashAfterTheDataMoveFailsOnTheKeyAndKeepsTheContacts()
    {
        mFixture->execute(fileOfVersion(6)
            << "CREATE TABLE contacts_db_tmp (account_id INTEGER, server_id TEXT, collection_id TEXT, "
               "local_id TEXT, avatar_url TEXT, PRIMARY KEY (server_id, collection_id, local_id))"
            << "INSERT INTO contacts_db_tmp SELECT * FROM contacts");
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "Can't EXECUTE data move query for upgrading table:" }));
        QCOMPARE(rows("versions"), QStringList { "6" });
        QCOMPARE(rows("contacts").size(), 2);
    }

    void aCrashBeforeTheDataMoveIsTakenUpAgain()
    {
        mFixture->execute(fileOfVersion(6)
            << "CREATE TABLE contacts_db_tmp (account_id INTEGER, server_id TEXT, collection_id TEXT, "
               "local_id TEXT, avatar_url TEXT)");
        mFixture->open();
        QCOMPARE(rows("versions"), QStringList { "7" });
        QCOMPARE(rows("contacts").size(), 2);
    }

private:
    static QString refusedVersion(int version)
    {
        return QStringLiteral("CREATE TRIGGER refuse BEFORE UPDATE ON versions WHEN NEW.db_version=%1 "
                              "BEGIN SELECT RAISE(FAIL, 'refused'); END")
            .arg(version);
    }

    QStringList rows(const QString &table) const { return mFixture->rows("SELECT * FROM " + table); }

    bool contactsHaveTheirKey() const
    {
        const QStringList keys =
            mFixture->rows("SELECT name FROM pragma_table_info('contacts') WHERE pk>0 ORDER BY pk");
        return keys == QStringList { "server_id", "collection_id", "local_id" };
    }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseMigrationTest)
#include "easdatabasemigrationtest.moc"
