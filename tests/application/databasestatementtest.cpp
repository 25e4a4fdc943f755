// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/databasestatement.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QSqlDatabase>
#include <QtTest>

class DatabaseStatementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("statement-test"));
        mDatabase.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(mDatabase.open());
        run(QStringLiteral("CREATE TABLE pairs (a TEXT UNIQUE, b TEXT)"));
    }

    void cleanup()
    {
        mDatabase = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("statement-test"));
    }

    void aBatchWritesItsColumnsRowByRow()
    {
        DatabaseStatement insert(mDatabase, QStringLiteral("INSERT INTO pairs VALUES (?, ?)"));
        insert.bindColumn({ "1", "2" }).bindColumn({ "one", "two" });
        QVERIFY(insert.runBatch());
        QCOMPARE(pairs(), (QStringList { "1one", "2two" }));
    }

    void aBatchWithColumnsOfUnequalLengthIsRefusedWithALogLine()
    {
        const LogCollector log;
        DatabaseStatement insert(mDatabase, QStringLiteral("INSERT INTO pairs VALUES (?, ?)"));
        insert.bindColumn({ "1", "2", "3" }).bindColumn({ "one" });
        QVERIFY(!insert.runBatch() && !insert.fail("can't add pairs for account", 7));
        QVERIFY(log.contains(QtCriticalMsg, { "can't add pairs for account", "7", ". Error:", "length" }));
        QCOMPARE(pairs(), QStringList());
    }

    void aFailingRowKeepsTheRowsBeforeIt()
    {
        DatabaseStatement insert(mDatabase, QStringLiteral("INSERT INTO pairs VALUES (?, ?)"));
        insert.bindColumn({ "1", "1", "2" }).bindColumn({ "one", "again", "two" });
        QVERIFY(!insert.runBatch());
        QVERIFY2(insert.errorText().contains("UNIQUE"), qPrintable(insert.errorText()));
        QCOMPARE(pairs(), QStringList { "1one" });
    }

    void aRefusedTextAndAFailedRunAreToldApart()
    {
        const LogCollector log;
        const StatementFailure failure("cannot run", "cannot prepare");
        DatabaseStatement refused(mDatabase, QStringLiteral("INSERT INTO nowhere VALUES (1)"));
        QVERIFY(!refused.run() && !refused.fail(failure));
        QVERIFY(log.contains(QtCriticalMsg, { "cannot prepare", "no such table" }));

        run(QStringLiteral("INSERT INTO pairs VALUES ('1', 'one')"));
        DatabaseStatement failing(mDatabase, QStringLiteral("INSERT INTO pairs VALUES ('1', 'again')"));
        QVERIFY(!failing.run() && !failing.fail(failure, QStringLiteral("event")));
        QVERIFY(log.contains(QtCriticalMsg, { "cannot run", "event", ". Error:", "UNIQUE" }));
    }

    void anErrorBetweenTwoRowsIsNotTheEndOfTheRows()
    {
        DatabaseStatement select(mDatabase,
            QStringLiteral("SELECT abs(n) FROM (SELECT 1 AS n UNION ALL SELECT -9223372036854775807 - 1)"));
        QVERIFY(select.run());
        QVERIFY(select.next());
        QVERIFY(!select.failed());
        QVERIFY(!select.next());
        QVERIFY(select.failed());
        QVERIFY2(select.errorText().contains("overflow"), qPrintable(select.errorText()));
    }

    void theEndOfTheRowsIsNotAFailure()
    {
        DatabaseStatement select(mDatabase, QStringLiteral("SELECT 1"));
        QVERIFY(select.run() && select.next() && !select.next());
        QVERIFY(!select.failed());
    }

    void aClosedDatabaseIsNamedAsTheCause()
    {
        mDatabase.close();
        DatabaseStatement select(mDatabase, QStringLiteral("SELECT 1"));
        QVERIFY(!select.run());
        QVERIFY(select.failed());
        QVERIFY2(select.errorText().contains("not open"), qPrintable(select.errorText()));
    }

private:
    void run(const QString &sql) { QVERIFY(DatabaseStatement(mDatabase, sql).run()); }

    QStringList pairs() const
    {
        QStringList result;
        DatabaseStatement select(mDatabase, QStringLiteral("SELECT a, b FROM pairs ORDER BY a"));
        for (bool found = select.run() && select.next(); found; found = select.next())
            result.append(select.text(0) + select.text(1));
        return result;
    }

    QSqlDatabase mDatabase;
};

FENNEL_REGISTER_TEST(DatabaseStatementTest)
#include "databasestatementtest.moc"
