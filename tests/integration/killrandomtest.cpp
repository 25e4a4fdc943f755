// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashbed.h"
#include "support/soak.h"
#include "support/testmain.h"

#include <QtTest>

#include <algorithm>
#include <random>

/**
 * The daemon dies at random moments between its start and the end of its sync: some 200 of them over all
 * stories, thousands in a soak. FENNEL_KILL_SEED repeats the moments of a run that has printed its seed.
 */
class KillRandomTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { mBed.reset(); }
    void theNextSyncMendsADeathAtAnyMoment_data() { CrashBed::addScenarioRows(); }
    void theNextSyncMendsADeathAtAnyMoment();

private:
    static int runs(CrashBed::Scenario scenario);

    QScopedPointer<CrashBed> mBed;
    uint mSeed = 0;
};

int KillRandomTest::runs(CrashBed::Scenario scenario)
{
    if (CrashBed::isNewStart(scenario))
        return Soak::samples(10, 1000);
    return CrashBed::isPim(scenario) ? Soak::samples(15, 1000) : Soak::samples(67, 1000);
}

void KillRandomTest::initTestCase()
{
    mBed.reset(new CrashBed);
    mSeed = qEnvironmentVariableIsSet("FENNEL_KILL_SEED")
        ? uint(qEnvironmentVariableIntValue("FENNEL_KILL_SEED"))
        : std::random_device()() & 0x7fffffffu;
    qInfo("FENNEL_KILL_SEED=%u", mSeed);
}

void KillRandomTest::theNextSyncMendsADeathAtAnyMoment()
{
    QFETCH(CrashBed::Scenario, scenario);
    QVERIFY(mBed->isReady());
    QCOMPARE(mBed->run(scenario, QProcessEnvironment::systemEnvironment()), QString());
    QCOMPARE(mBed->syncStatus(), 0);
    std::chrono::microseconds whole = mBed->syncDuration();

    std::mt19937 random(mSeed + uint(scenario));
    std::uniform_real_distribution<double> fraction(0.0, 1.0);
    int deaths = 0;
    const int count = runs(scenario);
    QStringList failures;
    for (int run = 0; run < count; ++run) {
        const double moment = fraction(random);
        const QString wrong =
            mBed->runUntil(scenario, std::chrono::duration_cast<std::chrono::microseconds>(moment * whole));
        // One that came through was quicker than those before it.
        if (mBed->syncStatus() == DaemonProcess::Died)
            ++deaths;
        else
            whole = std::min(whole, mBed->syncDuration());
        if (wrong.isEmpty())
            continue;
        failures.append(QStringLiteral("killed at %1 of %2 microseconds, FENNEL_KILL_SEED=%3, run %4")
                            .arg(moment)
                            .arg(whole.count())
                            .arg(mSeed)
                            .arg(run));
        qWarning("%s", qPrintable(failures.last() + QLatin1Char('\n') + wrong));
    }
    qInfo("%d of %d daemons died before the end of their sync", deaths, count);
    QVERIFY(deaths > 0);
    QCOMPARE(failures, QStringList());
}

FENNEL_REGISTER_TEST(KillRandomTest)
#include "killrandomtest.moc"
