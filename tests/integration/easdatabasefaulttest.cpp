// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "support/buildpaths.h"
#include "support/faultshim.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
const char Program[] = "database-probe";
const char Path[] = "fault/";
const char Name[] = "fennel_eas.db";

} // namespace

/** The mapping database of a process that dies at any durable step, or has any statement refused. */
class EasDatabaseFaultTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void killedAtAnyStepTheNextStartFindsAWholeDatabase()
    {
        const FaultShim plain(QDir::homePath(), Program);
        QCOMPARE(runProbe(plain),
            (QStringList { "open done", "account done", "folders done", "messages done", "key done" }));
        const int steps = plain.steps().size();
        QVERIFY(steps > 50);
        for (int number = 1; number <= steps; ++number) {
            FaultShim shim(QDir::homePath(), Program);
            shim.killAtStep(number);
            const QStringList done = runProbe(shim);
            QCOMPARE(shim.steps().size(), number);
            checkNextStart(done,
                QStringLiteral("killed before step %1 of %2, %3")
                    .arg(number)
                    .arg(steps)
                    .arg(shim.steps().last()));
            if (QTest::currentTestFailed())
                return;
        }
    }

    void withAnyStatementRefusedTheNextStartFindsAWholeDatabase_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("input or output") << int(FaultShim::StatementError::IoError);
        QTest::newRow("disk full") << int(FaultShim::StatementError::Full);
    }

    void withAnyStatementRefusedTheNextStartFindsAWholeDatabase()
    {
        QFETCH(int, error);
        const FaultShim plain(QDir::homePath(), Program);
        runProbe(plain);
        const int statements = plain.statements().size();
        QVERIFY(statements > 10);
        for (int number = 1; number <= statements; ++number) {
            FaultShim shim(QDir::homePath(), Program);
            shim.failStatement(number, FaultShim::StatementError(error));
            const QStringList done = runProbe(shim);
            checkNextStart(done,
                QStringLiteral("statement %1 of %2 failed, %3")
                    .arg(number)
                    .arg(statements)
                    .arg(plain.statements().at(number - 1)));
            if (QTest::currentTestFailed())
                return;
        }
    }

private:
    static QStringList runProbe(const FaultShim &shim)
    {
        QDir(QDir::homePath() + QLatin1Char('/') + QLatin1String(Path)).removeRecursively();
        QProcess process;
        process.setProcessEnvironment(shim.environment());
        process.start(BuildPaths::binary(QStringLiteral("bin/database-probe")), { Path, Name });
        if (!process.waitForFinished())
            qFatal("the probe does not end");
        if (process.exitStatus() == QProcess::NormalExit && process.exitCode() != 0)
            qFatal("%s", process.readAllStandardError().constData());
        const QString output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
        return output.isEmpty() ? QStringList() : output.split('\n');
    }

    /** What the process has told to be done is there, and never a key without its rows. */
    static void checkNextStart(const QStringList &done, const QString &fault)
    {
        const LogCollector log;
        EasDatabase::initializeInstance(nullptr, Path, Name);
        EasDatabase *database = EasDatabase::instance();
        database->onAccountAdded(Account);
        const QString key = database->folderItemByServerId(Account, "2")->syncKey();
        const int messages = database->serverToLocalEmailIds(Account)->size();
        const QString hierarchyKey = *database->folderSyncKey(Account);
        const QStringList tables = QSqlDatabase::database("fennel-eas-db").tables();
        QSqlQuery check("PRAGMA integrity_check", QSqlDatabase::database("fennel-eas-db"));
        const bool intact = check.next() && check.value(0) == "ok";
        check.clear();
        EasDatabase::releaseInstance();

        const QByteArray context = (fault + "\n" + log.texts(QtCriticalMsg).join('\n')).toUtf8();
        QVERIFY2(log.texts(QtCriticalMsg).isEmpty(), context);
        QVERIFY2(intact, context);
        for (const char *table :
            { "versions", "accounts", "collections", "calendar", "contacts", "emails", "attachments" })
            QVERIFY2(tables.contains(table), context + table);
        QVERIFY2(hierarchyKey == "0", context);
        QVERIFY2(key == "2" || !done.contains("key done"), context);
        QVERIFY2(messages == 3 || !done.contains("messages done"), context);
        QVERIFY2(!key.isEmpty() || !done.contains("folders done"), context);
        QVERIFY2(key != "2" || messages == 3, context);
    }
};

FENNEL_REGISTER_TEST(EasDatabaseFaultTest)
#include "easdatabasefaulttest.moc"
