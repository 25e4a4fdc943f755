// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/base/accountstoreguard.h"
#include "accounts/base/accountstore.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <Accounts/Manager>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>

/** @short The lock that keeps a database's write-ahead log, whatever else opens and closes its file. */
class AccountStoreGuardTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;

    /** Makes a database in this journal mode, and leaves it open under the name of the mode. */
    QString open(const QString &journalMode)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), journalMode);
        database.setDatabaseName(mFolder.filePath(journalMode));
        if (database.open()) {
            QSqlQuery query(database);
            query.exec(QStringLiteral("PRAGMA journal_mode = ") + journalMode);
            query.exec(QStringLiteral("CREATE TABLE t (value INTEGER)"));
        }
        return database.databaseName();
    }

    static void close(const QString &journalMode)
    {
        QSqlDatabase::database(journalMode, false).close();
        QSqlDatabase::removeDatabase(journalMode);
    }

    /** Whether SQLite, were it to end its last connection now, would leave the log to somebody else. */
    static bool isInUse(const QString &fileName)
    {
        // Drops the locks of SQLite itself.
        QFile file(fileName);
        if (!file.open(QIODevice::ReadWrite))
            return false;
        file.close();
        file.open(QIODevice::ReadWrite);
        struct flock exclusive
        {
        };
        exclusive.l_type = F_WRLCK;
        exclusive.l_whence = SEEK_SET;
        exclusive.l_start = 0x40000002;
        exclusive.l_len = 510;
        return ::fcntl(file.handle(), F_OFD_GETLK, &exclusive) == 0 && exclusive.l_type == F_RDLCK;
    }

private Q_SLOTS:
    void theLogOfAGuardedDatabaseStaysWhenItsUserEnds()
    {
        const QString mode = QStringLiteral("wal");
        const QString file = open(mode);
        QVERIFY(QFile::exists(file + QStringLiteral("-wal")));
        AccountStoreGuard guard(file);
        QVERIFY(guard.hold());
        // What the account library does before each connection, and what drops the locks of SQLite.
        QVERIFY(QFile(file).open(QIODevice::ReadOnly));

        close(mode);

        QVERIFY(QFile::exists(file + QStringLiteral("-wal")));
        QVERIFY(guard.hold());
    }

    void aDatabaseWithARollbackJournalIsLeftWritable()
    {
        const QString mode = QStringLiteral("delete");
        AccountStoreGuard guard(open(mode));
        QVERIFY(!guard.hold());
        QSqlQuery query(QSqlDatabase::database(mode));
        QVERIFY(query.exec(QStringLiteral("INSERT INTO t (value) VALUES (1)")));
        query.finish();
        query = QSqlQuery();
        close(mode);
    }

    void aDatabaseThatComesLaterIsHeldLater()
    {
        const QString mode = QStringLiteral("wal");
        AccountStoreGuard guard(mFolder.filePath(mode));
        QFile::remove(mFolder.filePath(mode));
        QVERIFY(!guard.hold());
        open(mode);
        QVERIFY(guard.hold());
        close(mode);
    }

    void theAccountStoreIsGuardedFromItsFirstManagerOn()
    {
        QVERIFY(PrivateBus::ensure());
        const auto all = AccountStore::manager();
        QVERIFY(all);
        QVERIFY(isInUse(qEnvironmentVariable("ACCOUNTS") + QStringLiteral("/accounts.db")));
        QCOMPARE(AccountStore::manager(), all);
        const auto mail = AccountStore::manager(QStringLiteral("e-mail"));
        QVERIFY(mail && mail != all);
        QCOMPARE(mail->serviceType(), QStringLiteral("e-mail"));
    }
};

FENNEL_REGISTER_TEST(AccountStoreGuardTest)
#include "accountstoreguardtest.moc"
