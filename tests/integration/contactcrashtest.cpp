// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactcrashbed.h"
#include "support/faultshim.h"
#include "support/soak.h"
#include "support/testmain.h"

#include <QDir>
#include <QtTest>

/**
 * The daemon dies before any of its durable steps, or any statement of a database fails, while contacts go
 * both ways. A soak takes every step; otherwise they are walked through with a stride, to keep the run short.
 */
class ContactCrashTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { mBed.reset(new ContactCrashBed); }
    void cleanupTestCase() { mBed.reset(); }
    void theNextSyncMendsADeathAtAnyStep_data();
    void theNextSyncMendsADeathAtAnyStep();
    void theNextSyncMendsAFailedStatement_data();
    void theNextSyncMendsAFailedStatement();

private:
    static constexpr int DeathsByDefault = 40;
    static constexpr int FailuresByDefault = 15;

    static FaultShim stepShim();
    static FaultShim statementShim(const QString &database);
    static bool opensFile(const QString &statement);

    QScopedPointer<ContactCrashBed> mBed;
};

FaultShim ContactCrashTest::stepShim()
{
    FaultShim shim(QDir::homePath(), DaemonProcess::program());
    shim.setFiles(
        { QStringLiteral("fennel_eas.db*"), QStringLiteral("contacts.db*"), QStringLiteral("avatar-*") });
    return shim;
}

void ContactCrashTest::theNextSyncMendsADeathAtAnyStep_data()
{
    QTest::addColumn<ContactCrashBed::Scenario>("scenario");
    QTest::newRow("first sync") << ContactCrashBed::FirstSync;
    QTest::newRow("later sync") << ContactCrashBed::LaterSync;
}

void ContactCrashTest::theNextSyncMendsADeathAtAnyStep()
{
    QFETCH(ContactCrashBed::Scenario, scenario);
    QVERIFY(mBed->isReady());
    const FaultShim plain = stepShim();
    QCOMPARE(mBed->run(scenario, plain.environment()), QString());
    QCOMPARE(mBed->syncStatus(), 0);

    const int steps = plain.steps().size();
    QVERIFY(steps > 50);
    const int stride = qMax(1, steps / Soak::samples(DeathsByDefault, steps));
    qInfo("%d durable steps, tried in strides of %d", steps, stride);
    QStringList failures;
    for (int number = 1; number <= steps; number += stride) {
        FaultShim fault = stepShim();
        fault.killAtStep(number);
        const QString wrong = mBed->run(scenario, fault.environment());
        if (wrong.isEmpty())
            continue;
        failures.append(QStringLiteral("killed before step %1 of %2, %3")
                            .arg(number)
                            .arg(steps)
                            .arg(fault.steps().value(number - 1)));
        qWarning("%s", qPrintable(failures.last() + QLatin1Char('\n') + wrong));
    }
    QCOMPARE(failures, QStringList());
}

FaultShim ContactCrashTest::statementShim(const QString &database)
{
    FaultShim shim(QDir::homePath(), DaemonProcess::program());
    shim.setDatabase(database);
    return shim;
}

bool ContactCrashTest::opensFile(const QString &statement)
{
    return statement.startsWith(QLatin1String("create table"), Qt::CaseInsensitive)
        || statement.startsWith(QLatin1String("PRAGMA"))
        || statement.startsWith(QLatin1String("INSERT INTO versions"));
}

void ContactCrashTest::theNextSyncMendsAFailedStatement_data()
{
    QTest::addColumn<ContactCrashBed::Scenario>("scenario");
    QTest::addColumn<QString>("database");
    QTest::addColumn<ContactCrashBed::After>("after");
    for (const char *database : { "fennel_eas.db", "contacts.db" }) {
        const QString name = QString::fromLatin1(database);
        QTest::addRow("first sync, %s, a new daemon goes on", database)
            << ContactCrashBed::FirstSync << name << ContactCrashBed::NewDaemon;
        QTest::addRow("later sync, %s, the same daemon goes on", database)
            << ContactCrashBed::LaterSync << name << ContactCrashBed::SameDaemon;
    }
}

void ContactCrashTest::theNextSyncMendsAFailedStatement()
{
    QFETCH(ContactCrashBed::Scenario, scenario);
    QFETCH(QString, database);
    QFETCH(ContactCrashBed::After, after);
    QVERIFY(mBed->isReady());
    const FaultShim plain = statementShim(database);
    QCOMPARE(mBed->run(scenario, plain.environment()), QString());

    const int statements = plain.statements().size();
    QVERIFY(statements > 20);
    const int stride = qMax(1, statements / Soak::samples(FailuresByDefault, statements));
    qInfo("%d statements, tried in strides of %d", statements, stride);
    QStringList failures;
    for (int number = 1; number <= statements; number += stride) {
        // The next start of the daemon opens, or completes, what failed.
        if (after == ContactCrashBed::SameDaemon && opensFile(plain.statements().at(number - 1)))
            continue;
        FaultShim fault = statementShim(database);
        fault.failStatement(number, FaultShim::StatementError::IoError);
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

FENNEL_REGISTER_TEST(ContactCrashTest)
#include "contactcrashtest.moc"
