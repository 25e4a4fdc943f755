// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashbed.h"
#include "support/faultshim.h"
#include "support/soak.h"
#include "support/testmain.h"

#include <QDir>
#include <QtTest>

/**
 * Any statement of the mapping database, or of the store of contacts, fails once during a sync. A soak takes
 * every statement; otherwise they are walked through with a stride, to keep the run short.
 */
class DatabaseFaultSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { mBed.reset(new CrashBed); }
    void cleanupTestCase() { mBed.reset(); }
    void theNextSyncMendsAFailedStatement_data();
    void theNextSyncMendsAFailedStatement();

private:
    static FaultShim shim(const QString &database);
    static bool opensFile(const QString &statement);
    static int runsByDefault(CrashBed::Scenario scenario);

    QScopedPointer<CrashBed> mBed;
};

void DatabaseFaultSyncTest::theNextSyncMendsAFailedStatement_data()
{
    QTest::addColumn<CrashBed::Scenario>("scenario");
    QTest::addColumn<QString>("database");
    QTest::addColumn<int>("error");
    QTest::addColumn<CrashBed::After>("after");
    const auto add = [](const char *name, CrashBed::Scenario scenario,
                         const char *database = "fennel_eas.db") {
        QTest::addRow("%s, %s, input or output, the same daemon goes on", name, database)
            << scenario << QString::fromLatin1(database) << int(FaultShim::StatementError::IoError)
            << CrashBed::SameDaemon;
        QTest::addRow("%s, %s, disk full, a new daemon goes on", name, database)
            << scenario << QString::fromLatin1(database) << int(FaultShim::StatementError::Full)
            << CrashBed::NewDaemon;
    };
    add("first sync", CrashBed::FirstSync);
    add("later sync", CrashBed::LaterSync);
    add("move", CrashBed::Move);
    add("the key of a collection is refused", CrashBed::RefusedCollection);
    add("the keys of a sync are refused", CrashBed::RefusedKeys);
    add("the device is forgotten", CrashBed::ForgottenDevice);
    add("first sync of events and contacts", CrashBed::FirstPimSync);
    add("later sync of events and contacts", CrashBed::LaterPimSync);
    add("first sync of events and contacts", CrashBed::FirstPimSync, "contacts.db");
    add("later sync of events and contacts", CrashBed::LaterPimSync, "contacts.db");
}

FaultShim DatabaseFaultSyncTest::shim(const QString &database)
{
    FaultShim shim(QDir::homePath(), DaemonProcess::program());
    shim.setDatabase(database);
    return shim;
}

bool DatabaseFaultSyncTest::opensFile(const QString &statement)
{
    return statement.startsWith(QLatin1String("create table"), Qt::CaseInsensitive)
        || statement.startsWith(QLatin1String("PRAGMA"))
        || statement.startsWith(QLatin1String("INSERT INTO versions"));
}

int DatabaseFaultSyncTest::runsByDefault(CrashBed::Scenario scenario)
{
    if (CrashBed::isNewStart(scenario))
        return 10;
    return CrashBed::isPim(scenario) ? 15 : 20;
}

void DatabaseFaultSyncTest::theNextSyncMendsAFailedStatement()
{
    QFETCH(CrashBed::Scenario, scenario);
    QFETCH(QString, database);
    QFETCH(int, error);
    QFETCH(CrashBed::After, after);
    QVERIFY(mBed->isReady());
    const FaultShim plain = shim(database);
    QCOMPARE(mBed->run(scenario, plain.environment()), QString());
    QCOMPARE(mBed->syncStatus(), 0);

    const int statements = plain.statements().size();
    QVERIFY(statements > 50);
    const int stride = qMax(1, statements / Soak::samples(runsByDefault(scenario), statements));
    qInfo("%d statements, tried in strides of %d", statements, stride);
    QStringList failures;
    for (int number = 1; number <= statements; number += stride) {
        // The next start of the daemon opens, or completes, what failed.
        if (after == CrashBed::SameDaemon && opensFile(plain.statements().at(number - 1)))
            continue;
        FaultShim fault = shim(database);
        fault.failStatement(number, FaultShim::StatementError(error));
        const QString wrong = mBed->run(scenario, fault.environment(), after);
        if (wrong.isEmpty())
            continue;
        failures.append(QStringLiteral("statement %1 of %2 failed, %3")
                            .arg(number)
                            .arg(statements)
                            .arg(fault.statements().value(number - 1)));
        qWarning("%s", qPrintable(failures.last() + QLatin1Char('\n') + wrong));
    }
    QCOMPARE(failures, QStringList());
}

FENNEL_REGISTER_TEST(DatabaseFaultSyncTest)
#include "databasefaultsynctest.moc"
