// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/faultshim.h"
#include "support/buildpaths.h"
#include "support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

const char Program[] = "fault-shim-probe";
constexpr int Rows = 3;

struct Run
{
    bool killed;
    QStringList lines;
};

} // namespace

class FaultShimTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { mFolder = std::make_unique<QTemporaryDir>(QDir::homePath() + "/shim-XXXXXX"); }

    void withoutAFaultTheProgramRunsAndItsStepsAreListed()
    {
        const FaultShim shim(mFolder->path(), Program);
        const Run run = runProbe(shim);
        QVERIFY(!run.killed);
        QCOMPARE(run.lines, (QStringList { "accepted 1", "accepted 2", "accepted 3" }));

        const QStringList steps = shim.steps();
        QVERIFY2(steps.contains("write fennel_eas.db"), qPrintable(steps.join('\n')));
        QVERIFY(steps.contains("write fennel_eas.db-journal"));
        QVERIFY(steps.contains("sync fennel_eas.db"));
        // Each statement ends with the removal of its journal: the table and three rows.
        QCOMPARE(steps.count("remove fennel_eas.db-journal"), 1 + Rows);
        QCOMPARE(steps.last(), QString("remove fennel_eas.db-journal"));
    }

    void aListNumbersItsStepsFromOne()
    {
        const FaultShim shim(mFolder->path(), Program);
        runProbe(shim);
        QFile list(shim.environment().value("FENNEL_FAULT_STEPS"));
        QVERIFY(list.open(QIODevice::ReadOnly));
        int expected = 0;
        const QList<QByteArray> lines = list.readAll().trimmed().split('\n');
        for (const QByteArray &line : lines)
            QCOMPARE(line.left(line.indexOf(' ')).toInt(), ++expected);
        QCOMPARE(expected, shim.steps().size());
    }

    void killedAtEachStepTheProgramLosesNothingThatWasAccepted()
    {
        const FaultShim plain(mFolder->path(), Program);
        runProbe(plain);
        const QStringList steps = plain.steps();
        QVERIFY(steps.size() > 4 * (1 + Rows));
        for (int number = 1; number <= steps.size(); ++number) {
            FaultShim shim(mFolder->path(), Program);
            shim.killAtStep(number);
            const Run run = runProbe(shim);
            QVERIFY2(run.killed, qPrintable(QString::number(number)));
            QCOMPARE(shim.steps(), QStringList(steps.mid(0, number)));
            const int stored = storedRows();
            QVERIFY2(stored == run.lines.size() || stored == run.lines.size() + 1,
                qPrintable(QString("killed at %1: %2").arg(number).arg(steps.at(number - 1))));
        }
    }

    void aKillBeyondTheLastStepDoesNotHappen()
    {
        FaultShim shim(mFolder->path(), Program);
        shim.killAtStep(100000);
        QVERIFY(!runProbe(shim).killed);
    }

    void onlyChosenKindsCount()
    {
        FaultShim shim(mFolder->path(), Program);
        shim.setKinds({ "remove" });
        shim.killAtStep(2);
        const Run run = runProbe(shim);
        QVERIFY(run.killed);
        QCOMPARE(run.lines, QStringList());
        QCOMPARE(
            shim.steps(), (QStringList { "remove fennel_eas.db-journal", "remove fennel_eas.db-journal" }));
    }

    void onlyChosenFilesCount()
    {
        FaultShim shim(mFolder->path(), Program);
        shim.setFiles({ "*.eml", "other.db" });
        shim.killAtStep(1);
        QVERIFY(!runProbe(shim).killed);
        QCOMPARE(shim.steps(), QStringList());
    }

    void aProgramOfAnotherNameRunsAsUsual()
    {
        FaultShim shim(mFolder->path(), "some-other-program");
        shim.killAtStep(1);
        shim.failStatement(1, FaultShim::StatementError::IoError);
        const Run run = runProbe(shim);
        QVERIFY(!run.killed);
        QCOMPARE(run.lines.size(), Rows);
        QCOMPARE(shim.steps(), QStringList());
        QCOMPARE(shim.statements(), QStringList());
    }

    void theStatementsOfADatabaseAreListed()
    {
        const FaultShim shim(mFolder->path(), Program);
        runProbe(shim);
        QCOMPARE(shim.statements(),
            (QStringList { "CREATE TABLE IF NOT EXISTS rows (number INTEGER)", "INSERT INTO rows VALUES (1)",
                "INSERT INTO rows VALUES (2)", "INSERT INTO rows VALUES (3)" }));
    }

    void oneStatementFailsAndTheOthersDoNot_data()
    {
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("code");
        QTest::newRow("input or output") << int(FaultShim::StatementError::IoError) << "10";
        QTest::newRow("disk full") << int(FaultShim::StatementError::Full) << "13";
    }

    void oneStatementFailsAndTheOthersDoNot()
    {
        QFETCH(int, error);
        QFETCH(QString, code);
        FaultShim shim(mFolder->path(), Program);
        shim.failStatement(3, FaultShim::StatementError(error));
        const Run run = runProbe(shim);
        QVERIFY(!run.killed);
        QCOMPARE(run.lines, (QStringList { "accepted 1", "refused 2 " + code, "accepted 3" }));
        QCOMPARE(storedRows(), 2);
    }

    void theStatementsOfAnotherDatabaseAreLeftAlone()
    {
        FaultShim shim(mFolder->path(), Program);
        shim.setDatabase("mail*.db");
        shim.failStatement(1, FaultShim::StatementError::IoError);
        QCOMPARE(runProbe(shim).lines.size(), Rows);
        QCOMPARE(shim.statements(), QStringList());
    }

private:
    QString databaseFile() const { return mFolder->filePath("fennel_eas.db"); }

    Run runProbe(const FaultShim &shim) const
    {
        QFile::remove(databaseFile());
        QFile::remove(databaseFile() + "-journal");
        QProcessEnvironment base = QProcessEnvironment::systemEnvironment();
        QProcess process;
        process.setProcessEnvironment(shim.environment(base));
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(BuildPaths::binary(QStringLiteral("bin/fault-shim-probe")),
            { databaseFile(), QString::number(Rows) });
        if (!process.waitForFinished())
            qFatal("the probe does not end");
        const bool killed = process.exitStatus() == QProcess::CrashExit;
        if (killed ? process.exitCode() != SIGKILL : process.exitCode() != 0)
            qFatal("the probe ended with %d", process.exitCode());
        const QString output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
        return { killed, output.isEmpty() ? QStringList() : output.split('\n') };
    }

    /** Rows in the database after its recovery; -1 if it is damaged. */
    int storedRows() const
    {
        int count = -1;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "after");
            database.setDatabaseName(databaseFile());
            QSqlQuery query(database.open() ? database : QSqlDatabase());
            if (query.exec("PRAGMA integrity_check") && query.next() && query.value(0) == "ok") {
                // Without the table nothing has been accepted yet.
                count = query.exec("SELECT count(*) FROM rows") && query.next() ? query.value(0).toInt() : 0;
            }
        }
        QSqlDatabase::removeDatabase("after");
        return count;
    }

    std::unique_ptr<QTemporaryDir> mFolder;
};

FENNEL_REGISTER_TEST(FaultShimTest)
#include "faultshimtest.moc"
