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
    static constexpr int RunsByDefault = 40;

    static FaultShim shim();

    QScopedPointer<CrashBed> mBed;
};

FaultShim KillTest::shim()
{
    FaultShim shim(QDir::homePath(), DaemonProcess::program());
    // The account store is another program's.
    shim.setFiles({ QStringLiteral("fennel_eas.db*"), QStringLiteral("mailstore.db*") });
    return shim;
}

void KillTest::theNextSyncMendsADeathAtAnyStep()
{
    QFETCH(CrashBed::Scenario, scenario);
    QVERIFY(mBed->isReady());
    const FaultShim plain = shim();
    QCOMPARE(mBed->run(scenario, plain.environment()), QString());
    QCOMPARE(mBed->syncStatus(), 0);

    const int steps = plain.steps().size();
    QVERIFY(steps > 50);
    const int stride = qMax(1, steps / Soak::samples(RunsByDefault, steps));
    qInfo("%d durable steps, tried in strides of %d", steps, stride);
    QStringList failures;
    for (int number = 1; number <= steps; number += stride) {
        FaultShim fault = shim();
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
