// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashbed.h"
#include "support/faultshim.h"
#include "support/soak.h"
#include "support/testmain.h"

#include <QDir>
#include <QtTest>

/**
 * The daemon dies before any of its durable steps. A soak takes every step; otherwise they are walked through
 * with a stride, to keep the run short.
 */
class KillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { mBed.reset(new CrashBed); }
    void cleanupTestCase() { mBed.reset(); }
    void theNextSyncMendsADeathAtAnyStep_data() { CrashBed::addScenarioRows(); }
    void theNextSyncMendsADeathAtAnyStep();

private:
    static FaultShim shim(CrashBed::Scenario scenario);
    static int runsByDefault(CrashBed::Scenario scenario);

    QScopedPointer<CrashBed> mBed;
};

FaultShim KillTest::shim(CrashBed::Scenario scenario)
{
    FaultShim shim(QDir::homePath(), DaemonProcess::program());
    shim.setFiles(CrashBed::durableFiles(scenario));
    return shim;
}

int KillTest::runsByDefault(CrashBed::Scenario scenario)
{
    if (CrashBed::isNewStart(scenario))
        return 14;
    return CrashBed::isPim(scenario) ? 18 : 40;
}

void KillTest::theNextSyncMendsADeathAtAnyStep()
{
    QFETCH(CrashBed::Scenario, scenario);
    QVERIFY(mBed->isReady());
    const FaultShim plain = shim(scenario);
    QCOMPARE(mBed->run(scenario, plain.environment()), QString());
    QCOMPARE(mBed->syncStatus(), 0);

    const int steps = plain.steps().size();
    QVERIFY(steps > 50);
    const int stride = qMax(1, steps / Soak::samples(runsByDefault(scenario), steps));
    qInfo("%d durable steps, tried in strides of %d", steps, stride);
    QStringList failures;
    for (int number = 1; number <= steps; number += stride) {
        FaultShim fault = shim(scenario);
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

FENNEL_REGISTER_TEST(KillTest)
#include "killtest.moc"
