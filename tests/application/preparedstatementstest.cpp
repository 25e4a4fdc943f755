// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/preparedstatements.h"

#include "application/mapping/databasestatement.h"
#include "support/testmain.h"

#include <QSqlDatabase>
#include <QtTest>

#include <memory>

namespace {

const QString insertText = QStringLiteral("INSERT INTO pairs VALUES (?, ?)");
const QString selectText = QStringLiteral("SELECT b FROM pairs WHERE a = :a");

} // namespace

/** Statements that are used again give what those give that are prepared anew. */
class PreparedStatementsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("prepared-test"));
        mDatabase.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(mDatabase.open());
        mStatements = std::make_unique<PreparedStatements>(mDatabase);
        run("CREATE TABLE pairs (a TEXT UNIQUE, b TEXT)");
        run("INSERT INTO pairs VALUES ('1', 'one')");
        run("INSERT INTO pairs VALUES ('2', 'two')");
    }

    void cleanup()
    {
        mStatements.reset();
        mDatabase = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("prepared-test"));
    }

    void oneThatHasRunIsKept()
    {
        QCOMPARE(valueOf("1"), QStringLiteral("one"));
        QVERIFY(isKept(selectText));
    }

    void oneThatIsUsedAgainTakesNewValues()
    {
        QCOMPARE(valueOf("1"), QStringLiteral("one"));
        QCOMPARE(valueOf("2"), QStringLiteral("two"));
        QCOMPARE(valueOf("3"), QString());
        QCOMPARE(valueOf("1"), QStringLiteral("one"));
        for (const char *key : { "4", "5" }) {
            DatabaseStatement insert(*mStatements, insertText);
            QVERIFY(insert.bind(QLatin1String(key)).bind(QStringLiteral("added")).run());
        }
        DatabaseStatement batch(*mStatements, insertText);
        batch.bindColumn({ QStringLiteral("6"), QStringLiteral("7") })
            .bindColumn({ QStringLiteral("six"), QStringLiteral("seven") });
        QVERIFY(batch.runBatch());
        QCOMPARE(valueOf("5"), QStringLiteral("added"));
        QCOMPARE(valueOf("7"), QStringLiteral("seven"));
    }

    void oneThatFailedIsNotKept()
    {
        {
            DatabaseStatement insert(*mStatements, insertText);
            QVERIFY(!insert.bind(QStringLiteral("1")).bind(QStringLiteral("again")).run());
        }
        QVERIFY(!isKept(insertText));
    }

    void oneThatNeverRanIsNotKept()
    {
        {
            DatabaseStatement insert(*mStatements, insertText);
            insert.bind(QStringLiteral("3"));
        }
        QVERIFY(!isKept(insertText));
    }

    void oneThatWasReadHalfwayLocksNothing()
    {
        {
            DatabaseStatement select(*mStatements, QStringLiteral("SELECT a FROM pairs"));
            QVERIFY(select.run() && select.next());
        }
        run("DROP TABLE pairs");
    }

    void twoOfTheSameTextRunSideBySide()
    {
        DatabaseStatement outer(*mStatements, QStringLiteral("SELECT a FROM pairs ORDER BY a"));
        QVERIFY(outer.run() && outer.next());
        {
            DatabaseStatement inner(*mStatements, QStringLiteral("SELECT a FROM pairs ORDER BY a"));
            QVERIFY(inner.run() && inner.next() && inner.next());
            QCOMPARE(inner.text(0), QStringLiteral("2"));
        }
        QCOMPARE(outer.text(0), QStringLiteral("1"));
        QVERIFY(outer.next());
        QCOMPARE(outer.text(0), QStringLiteral("2"));
        QVERIFY(!outer.next());
    }

    void aChangeOfTheTablesIsNoticed()
    {
        QCOMPARE(valueOf("1"), QStringLiteral("one"));
        run("ALTER TABLE pairs RENAME TO hidden");
        {
            DatabaseStatement select(*mStatements, selectText);
            select.bind(QStringLiteral(":a"), QStringLiteral("1"));
            QVERIFY(!select.run());
            QVERIFY2(
                select.errorText().contains(QLatin1String("no such table")), qPrintable(select.errorText()));
        }
        run("ALTER TABLE hidden RENAME TO pairs");
        QCOMPARE(valueOf("2"), QStringLiteral("two"));
    }

private:
    void run(const char *sql) { QVERIFY(DatabaseStatement(mDatabase, QLatin1String(sql)).run()); }

    bool isKept(const QString &sql) { return !mStatements->take(sql).lastQuery().isEmpty(); }

    QString valueOf(const char *key)
    {
        DatabaseStatement select(*mStatements, selectText);
        select.bind(QStringLiteral(":a"), QLatin1String(key));
        return select.run() && select.next() ? select.text(0) : QString();
    }

    QSqlDatabase mDatabase;
    std::unique_ptr<PreparedStatements> mStatements;
};

FENNEL_REGISTER_TEST(PreparedStatementsTest)
#include "preparedstatementstest.moc"
