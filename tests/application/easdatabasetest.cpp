// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "application/base/clock.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

namespace {

constexpr EasAccountId Account = 5;

/** No file grows beyond this size, as on a full disk. */
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes)
    {
        mHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &mPrevious);
        rlimit limit = mPrevious;
        limit.rlim_cur = rlim_t(bytes);
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &mPrevious);
        std::signal(SIGXFSZ, mHandler);
    }
    Q_DISABLE_COPY(FileSizeLimit)

private:
    rlimit mPrevious {};
    void (*mHandler)(int);
};

EasFolderItem folder(const QString &serverId)
{
    EasFolderItem item;
    item.setServerId(serverId);
    item.setType(EasFolderItem::DefaultInboxFolder);
    item.setDisplayName(QString(2000, QLatin1Char('n')));
    return item;
}

bool connectionIsOpen()
{
    return QSqlDatabase::database(QStringLiteral("fennel-eas-db"), false).isOpen();
}

} // namespace

class EasDatabaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { mFixture = std::make_unique<DatabaseFixture>(); }
    void cleanup() { mFixture.reset(); }

    void aFreshFileIsStampedWithVersion7AndGetsAllTables()
    {
        const LogCollector log;
        mFixture->open();
        QCOMPARE(mFixture->rows("SELECT * FROM versions"), QStringList { "7" });
        QCOMPARE(mFixture->rows("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
            (QStringList { "accounts", "attachments", "calendar", "collections", "contacts", "emails",
                "sqlite_sequence", "versions" }));
        QVERIFY(log.contains(QtInfoMsg, { "Initialize EAS data base" }));
        QVERIFY(log.contains(QtInfoMsg, { "EAS DB:", mFixture->file() }));
        QVERIFY(log.contains(QtInfoMsg, { "no tables in the DB" }));
        QVERIFY(!log.contains("Successfully migrated"));
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
    }

    void theColumnsAreThoseOfVersion7()
    {
        mFixture->open();
        QCOMPARE(columns("accounts"), (QStringList { "account_id INTEGER", "email_account_id INTEGER" }));
        QCOMPARE(columns("collections"),
            (QStringList { "id INTEGER", "account_id INTEGER", "server_id TEXT", "server_parent_id TEXT",
                "local_id TEXT", "local_parent_id TEXT", "synckey TEXT", "type INTEGER", "display_name TEXT",
                "saved_in_storage INTEGER" }));
        QCOMPARE(columns("calendar"),
            (QStringList { "id INTEGER", "account_id INTEGER", "server_id TEXT", "collection_id TEXT",
                "local_id TEXT", "timestamp INTEGER" }));
        QCOMPARE(columns("emails"),
            (QStringList { "id INTEGER", "account_id INTEGER", "server_id TEXT", "collection_id TEXT",
                "local_id TEXT" }));
        QCOMPARE(columns("contacts"),
            (QStringList { "account_id INTEGER", "server_id varchar(128)", "collection_id varchar(64)",
                "local_id TEXT", "avatar_url TEXT" }));
        QCOMPARE(columns("attachments"),
            (QStringList { "local_id TEXT", "content_id TEXT", "file_reference TEXT" }));
    }

    void withoutAPathTheFileStandsInItsPlaceBelowHome()
    {
        const QString file = QDir::homePath() + "/.local/share/system/privileged/eas-fennel/fennel_eas.db";
        QVERIFY(!QFile::exists(file));
        EasDatabase *database = EasDatabase::instance();
        QCOMPARE(database->parent(), QCoreApplication::instance());
        QVERIFY(QFile::exists(file));
        EasDatabase::releaseInstance();
        QVERIFY(QFile::remove(file));
    }

    void aSecondInitialisationIsRefused()
    {
        mFixture->open();
        EasDatabase *first = EasDatabase::instance();
        const LogCollector log;
        EasDatabase::initializeInstance(nullptr, "elsewhere/", "other.db");
        QVERIFY(log.contains(QtCriticalMsg, { "easDatabaseInstance is already initialized" }));
        QCOMPARE(EasDatabase::instance(), first);
        QVERIFY(!QDir(QDir::homePath() + "/elsewhere").exists());
    }

    void aReleaseIsLoggedOnceAndRemovesTheConnection()
    {
        mFixture->open();
        const LogCollector log;
        EasDatabase::releaseInstance();
        EasDatabase::releaseInstance();
        QCOMPARE(log.count("Release EAS data base"), 1);
        QVERIFY(!QSqlDatabase::contains("fennel-eas-db"));
        QVERIFY(!log.contains("still in use"));
    }

    void anInstanceThatItsParentDestroysIsForgotten()
    {
        auto parent = std::make_unique<QObject>();
        EasDatabase::initializeInstance(parent.get(), "databases/child/", "a.db");
        parent.reset();
        mFixture->open();
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        QCOMPARE(mFixture->rows("SELECT server_id FROM collections"), QStringList { "1" });
    }

    void fileAndFolderAreTheUsersAlone()
    {
        const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
            | QFile::WriteOther | QFile::ExeOther;
        mFixture->open();
        for (const QString &path : { mFixture->file(), mFixture->folder() })
            QVERIFY2(!(QFile::permissions(path) & others), qPrintable(path));
        mFixture->release();
        // As an older version has left them.
        QVERIFY(
            QFile::setPermissions(mFixture->file(), QFile::permissions(mFixture->file()) | QFile::ReadOther));
        QVERIFY(QFile::setPermissions(
            mFixture->folder(), QFile::permissions(mFixture->folder()) | QFile::ReadOther | QFile::ExeOther));
        mFixture->open();
        for (const QString &path : { mFixture->file(), mFixture->folder() })
            QVERIFY2(!(QFile::permissions(path) & others), qPrintable(path));
    }

    void theFileIsClosedAMinuteAfterTheLastUseAndOpenedByTheNext()
    {
        mFixture->open();
        const TestClock clock;
        const LogCollector log;
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        QCOMPARE(clock.intervals, QList<int> { 60000 });
        QVERIFY(connectionIsOpen());
        QTRY_VERIFY(!connectionIsOpen());
        QVERIFY(log.contains(QtInfoMsg, { "database is released" }));

        QCOMPARE(EasDatabase::instance()->folderItemByServerId(Account, "1")->serverId(), QString("1"));
        QVERIFY(connectionIsOpen());
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
    }

    void eachUsePushesTheReleaseAway()
    {
        mFixture->open();
        const TestClock clock;
        EasDatabase::instance();
        EasDatabase::instance();
        EasDatabase::instance()->onAccountAdded(Account);
        QCOMPARE(clock.intervals, (QList<int> { 60000, 60000, 60000, 60000 }));
    }

    void anAccountSignalOpensAReleasedFile()
    {
        mFixture->open();
        EasDatabase *database = EasDatabase::instance();
        {
            const TestClock clock;
            database->startDataBaseTimer(1);
            QTRY_VERIFY(!connectionIsOpen());
        }
        database->onAccountAdded(Account);
        QCOMPARE(mFixture->rows("SELECT * FROM accounts"), QStringList { "5|0" });
    }

    void aFolderThatCannotBeMadeIsLoggedAndNothingIsWrittenElsewhere()
    {
        QFile inTheWay(QDir::homePath() + "/in-the-way");
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        const LogCollector log;
        EasDatabase::initializeInstance(nullptr, "in-the-way/folder/", "a.db");
        QVERIFY(log.contains(QtCriticalMsg, { "can't create path:", "in-the-way/folder" }));
        EasDatabase *database = EasDatabase::instance();
        QVERIFY(log.contains(QtCriticalMsg, { "failed to open DB connection" }));
        QVERIFY(!database->addFolderItems(Account, { folder("1") }));
        QVERIFY(!database->folderItemByServerId(Account, "1"));

        QVERIFY(inTheWay.remove());
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        QVERIFY(QFile::exists(QDir::homePath() + "/in-the-way/folder/a.db"));
        EasDatabase::releaseInstance();
        QVERIFY(QDir(QDir::homePath() + "/in-the-way").removeRecursively());
    }

    void aFileThatIsAFolderIsLoggedAndEveryOperationFails()
    {
        QVERIFY(QDir().mkpath(mFixture->file()));
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "can't open EAS Database. Error:" }));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to migrate existing DB to the latest DB version" }));
        QVERIFY(!EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        QVERIFY(!EasDatabase::instance()->folderSyncKey(Account));
    }

    void aFileThatIsNoDatabaseIsLeftAlone()
    {
        QVERIFY(QDir().mkpath(mFixture->folder()));
        QFile file(mFixture->file());
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray bytes = QByteArray("no database at all ").repeated(200);
        file.write(bytes);
        file.close();
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "failed to migrate existing DB to the latest DB version" }));
        QVERIFY(!EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        mFixture->release();
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), bytes);
    }

    void aTableThatCannotBeMadeEndsTheCreation()
    {
        // An index of that name stands in the way of the table.
        mFixture->execute({ "CREATE TABLE versions (db_version INTEGER)", "INSERT INTO versions VALUES (7)",
            "CREATE INDEX contacts ON versions (db_version)" });
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "Can't create table", "contacts", "Error:" }));
        QCOMPARE(mFixture->rows("SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE "
                                "'sqlite_%' ORDER BY name"),
            (QStringList { "accounts", "calendar", "collections", "versions" }));
        QVERIFY(!log.contains("emails"));
    }

    void aTableThatCouldNotBeMadeIsMadeByTheNextUse()
    {
        mFixture->execute({ "CREATE TABLE versions (db_version INTEGER)", "INSERT INTO versions VALUES (7)",
            "CREATE INDEX contacts ON versions (db_version)" });
        mFixture->open();
        EasDatabase::instance();
        QVERIFY(!hasTable("emails"));
        mFixture->execute({ "DROP INDEX contacts" });
        const LogCollector log;
        EasDatabase::instance();
        QVERIFY(hasTable("contacts"));
        QVERIFY(hasTable("emails"));
        QVERIFY(hasTable("attachments"));
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
        // Once is enough: a table that goes later is no matter of the start.
        mFixture->execute({ "DROP TABLE emails" });
        EasDatabase::instance();
        QVERIFY(!hasTable("emails"));
    }

    void aDiskThatWasFullAtTheStartIsUsedOnceThereIsRoom()
    {
        {
            const FileSizeLimit limit(0);
            const LogCollector log;
            mFixture->open();
            QVERIFY(log.contains(QtCriticalMsg, { "failed to create versions table" }));
            QVERIFY(!EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        }
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        QCOMPARE(mFixture->rows("SELECT * FROM versions"), QStringList { "7" });
        QVERIFY(hasTable("attachments"));
    }

    void aMailAccountTableThatCannotBeMadeIsNamed()
    {
        mFixture->execute({ "CREATE TABLE versions (db_version INTEGER)", "INSERT INTO versions VALUES (7)",
            "CREATE INDEX accounts ON versions (db_version)" });
        const LogCollector log;
        mFixture->open();
        QVERIFY(log.contains(QtCriticalMsg, { "can't create table", "accounts", "Error:" }));
        QCOMPARE(
            mFixture->rows("SELECT count(*) FROM sqlite_master WHERE type='table'"), QStringList { "1" });
    }

    void anInterruptedCreationIsTakenUpAgain()
    {
        mFixture->execute({ "CREATE TABLE versions ( db_version INTEGER )" });
        mFixture->open();
        QCOMPARE(mFixture->rows("SELECT * FROM versions"), QStringList { "7" });
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
    }

    void aFullDiskFailsTheWriteAndLosesNothing()
    {
        mFixture->open();
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        const qint64 size = QFile(mFixture->file()).size();
        const LogCollector log;
        {
            const FileSizeLimit limit(size);
            QList<EasFolderItem> items;
            for (int i = 0; i < 50; ++i)
                items.append(folder(QStringLiteral("more %1").arg(i)));
            QVERIFY(!EasDatabase::instance()->addFolderItems(Account, items));
        }
        QVERIFY(log.contains(QtCriticalMsg, { "can't add folder items for account", "5", ". Error:" }));
        QCOMPARE(EasDatabase::instance()->folderItemByServerId(Account, "1")->serverId(), QString("1"));
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("after") }));
        QCOMPARE(mFixture->rows("PRAGMA integrity_check"), QStringList { "ok" });
    }

    void everythingIsThereAfterARestart()
    {
        mFixture->open();
        EasDatabase::instance()->onAccountAdded(Account);
        EasDatabase::instance()->setFolderSyncKey(Account, "17");
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder("1") }));
        const QStringList before = mFixture->content();
        const LogCollector log;
        mFixture->reopen();
        QCOMPARE(mFixture->content(), before);
        QCOMPARE(*EasDatabase::instance()->folderSyncKey(Account), QString("17"));
        QVERIFY(log.contains(QtInfoMsg, { "version number", "7" }));
    }

private:
    bool hasTable(const QString &name) const
    {
        return !mFixture
                    ->rows(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name='%1'")
                               .arg(name))
                    .isEmpty();
    }

    QStringList columns(const QString &table) const
    {
        return mFixture->rows(
            QStringLiteral("SELECT name || ' ' || type FROM pragma_table_info('%1')").arg(table));
    }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseTest)
#include "easdatabasetest.moc"
