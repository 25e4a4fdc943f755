// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "integration/demandscene.h"
#include "support/testmain.h"

#include <QSignalSpy>

using namespace DemandScene;
using namespace StatusScene;
using Simulator::Override;
using Simulator::RecordedRequest;

Q_DECLARE_METATYPE(Simulator::Override)

/**
 * A server that wants something first in the middle of any work: the device is provisioned and the work goes
 * on, or it ends, once, and can be begun anew.
 */
class ProvisionDemandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // There is one engine at a time.
    void cleanup() { mBed.reset(); }
    void theWorkGoesOn_data();
    void theWorkGoesOn();
    void aServerWithoutAPolicyLetsTheWorkGoOn_data() { eachWork(); }
    void aServerWithoutAPolicyLetsTheWorkGoOn();
    void aRefusedProvisioningEndsTheWork_data() { eachWork(); }
    void aRefusedProvisioningEndsTheWork();
    void aProvisioningThatNeverEndsIsCancelledWithTheWork_data() { eachWork(); }
    void aProvisioningThatNeverEndsIsCancelledWithTheWork();
    void theAccountGoesDuringTheProvisioning_data() { eachWork(); }
    void theAccountGoesDuringTheProvisioning();
    void aDemandForEverEndsTheWork_data() { eachRepeatedWork(); }
    void aDemandForEverEndsTheWork();
    void theWorkEndsAsTheProvisioningDoes_data();
    void theWorkEndsAsTheProvisioningDoes();

private:
    std::unique_ptr<SyncTestBed> mBed;
    qulonglong mRequest = 0;

    static void eachWork();
    /** Those that do not go on without the command. */
    static void eachRepeatedWork();
    const Work &work() const;
    /** A device at the beginning of the work, whose command is answered like this. */
    bool prepare(const Override &override, int times = Once);
    int run();
    int countOf(const char *command) const { return count(*mBed, command); }
    QString policyKey() const { return RequestManager::instance()->account(mBed->accountId())->policyKey(); }
    /** Begins work whose demand is answered never. */
    void runUntilProvisioning();
    bool canBeDoneAnew();
};

void ProvisionDemandTest::eachWork()
{
    QTest::addColumn<int>("work");
    for (int i = 0; i < works().size(); ++i)
        QTest::newRow(works().at(i).name) << i;
}

void ProvisionDemandTest::eachRepeatedWork()
{
    QTest::addColumn<int>("work");
    for (int i = 0; i < works().size(); ++i) {
        if (works().at(i).isRepeated)
            QTest::newRow(works().at(i).name) << i;
    }
}

const Work &ProvisionDemandTest::work() const
{
    QFETCH(int, work);
    return works().at(work);
}

bool ProvisionDemandTest::prepare(const Override &override, int times)
{
    mBed = bedFor(work());
    if (!mBed->isReady() || !work().prepare(*mBed))
        return false;
    mBed->server().clearRequests();
    answer(*mBed, work(), override, times);
    return true;
}

int ProvisionDemandTest::run()
{
    mRequest = work().start(*mBed);
    return mBed->waitFor(mRequest);
}

void ProvisionDemandTest::runUntilProvisioning()
{
    mBed->server().overrideAll(QStringLiteral("Provision"), Override::hang());
    mRequest = work().start(*mBed);
    QTRY_VERIFY_WITH_TIMEOUT(countOf("Provision") == 1, 60000);
}

bool ProvisionDemandTest::canBeDoneAnew()
{
    mBed->server().clearScript();
    return run() == 0 && work().isDone(*mBed);
}

void ProvisionDemandTest::theWorkGoesOn_data()
{
    QTest::addColumn<int>("work");
    QTest::addColumn<int>("demand");
    for (int i = 0; i < works().size(); ++i) {
        for (const int demand : { 142, 143, 144, 449 })
            QTest::addRow("%s, %d", works().at(i).name, demand) << i << demand;
    }
}

void ProvisionDemandTest::theWorkGoesOn()
{
    QFETCH(int, demand);
    QVERIFY(prepare(demand == 449 ? Override::httpStatus(449) : Override::topStatus(demand)));
    offerPolicy(*mBed);
    QCOMPARE(run(), 0);
    QCOMPARE(mBed->finishedCount(mRequest), 1);
    // The policies were fetched and acknowledged once, and their key is the account's.
    const QVector<RecordedRequest> exchange = mBed->server().requests(QStringLiteral("Provision"));
    QCOMPARE(exchange.size(), 2);
    QCOMPARE(policyKey(), exchange.last().replyDocument.text(QStringLiteral("Policies/Policy/PolicyKey")));
    const QVector<RecordedRequest> commands = mBed->server().requests(QLatin1String(work().command));
    QCOMPARE(QString::fromLatin1(commands.last().header("X-MS-PolicyKey")),
        work().isRepeated ? policyKey() : QString());
    QVERIFY(work().isDone(*mBed));
    QCOMPARE(countOf("Provision"), 2);
    QCOMPARE(mBed->server().failures(), QStringList());
}

void ProvisionDemandTest::aServerWithoutAPolicyLetsTheWorkGoOn()
{
    QVERIFY(prepare(Override::topStatus(142)));
    QCOMPARE(run(), 0);
    QCOMPARE(countOf("Provision"), 1);
    QVERIFY(policyKey().isEmpty());
    QVERIFY(work().isDone(*mBed));
}

void ProvisionDemandTest::aRefusedProvisioningEndsTheWork()
{
    QVERIFY(prepare(Override::topStatus(142)));
    mBed->server().overrideAll(QStringLiteral("Provision"), Override::topStatus(4));
    QCOMPARE(run(), -5);
    QCOMPARE(mBed->finishedCount(mRequest), 1);
    QCOMPARE(countOf("Provision"), 1);
    QVERIFY(canBeDoneAnew());
}

void ProvisionDemandTest::aProvisioningThatNeverEndsIsCancelledWithTheWork()
{
    QVERIFY(prepare(Override::topStatus(142)));
    runUntilProvisioning();
    RequestManager::instance()->onCancelRequest(mBed->accountId(), mRequest);
    QCOMPARE(mBed->waitFor(mRequest), -4);
    QCoreApplication::processEvents();
    QCOMPARE(mBed->finishedCount(mRequest), 1);
    QVERIFY(canBeDoneAnew());
}

void ProvisionDemandTest::theAccountGoesDuringTheProvisioning()
{
    QVERIFY(prepare(Override::topStatus(142)));
    runUntilProvisioning();
    QVERIFY(mBed->accounts().remove(mBed->accountId()));
    QCOMPARE(mBed->waitFor(mRequest), -4);
    QCoreApplication::processEvents();
    QCOMPARE(mBed->finishedCount(mRequest), 1);
    QCOMPARE(countOf("Provision"), 1);
}

void ProvisionDemandTest::aDemandForEverEndsTheWork()
{
    QVERIFY(prepare(Override::topStatus(142), ForEver));
    offerPolicy(*mBed);
    QCOMPARE(run(), 142);
    QCOMPARE(mBed->finishedCount(mRequest), 1);
    // The first demand and five more are met.
    QCOMPARE(countOf("Provision"), 12);
    const QVector<RecordedRequest> commands = mBed->server().requests(QLatin1String(work().command));
    const auto demands = std::count_if(commands.cbegin(), commands.cend(), [](const auto &request) {
        return request.replyDocument.text(QStringLiteral("Status")) == QLatin1String("142");
    });
    QCOMPARE(int(demands), 7);
    QVERIFY(canBeDoneAnew());
}

void ProvisionDemandTest::theWorkEndsAsTheProvisioningDoes_data()
{
    QTest::addColumn<int>("work");
    QTest::addColumn<Override>("first");
    QTest::addColumn<Override>("second");
    QTest::addColumn<int>("end");
    const auto later = std::find_if(works().cbegin(), works().cend(),
        [](const Work &candidate) { return qstrcmp(candidate.name, "later items") == 0; });
    const int work = int(later - works().cbegin());
    const auto row = [work](const char *name, const Override &first, const Override &second, int end) {
        QTest::newRow(name) << work << first << second << end;
    };
    const Override asServer;
    const auto policyStatus = [](int status) {
        return Override::edited([status](Simulator::WbxmlNode &reply) {
            if (auto *const node = reply.find(QStringLiteral("Policies/Policy/Status")))
                node->setText(QString::number(status));
        });
    };
    const auto withoutKey = Override::edited([](Simulator::WbxmlNode &reply) {
        if (auto *const policy = reply.find(QStringLiteral("Policies/Policy")))
            policy->removeAll(QStringLiteral("PolicyKey"));
    });
    row("accepted", asServer, asServer, 0);
    row("syntax error", Override::topStatus(2), asServer, -3);
    row("server error", Override::topStatus(3), asServer, -2);
    row("a key field is missing", Override::topStatus(141), asServer, 142);
    row("corrupt policy", policyStatus(4), asServer, -5);
    row("out of service", Override::httpStatus(503), asServer, 10403);
    row("forbidden", Override::httpStatus(403), asServer, 10201);
    row("a demand of its own", Override::httpStatus(449), asServer, 10299);
    row("no document", Override::empty(), asServer, -2);
    row("verdict, syntax error", asServer, Override::topStatus(2), -3);
    row("verdict, server error", asServer, Override::topStatus(3), -2);
    row("verdict, not good enough", asServer, Override::topStatus(139), 142);
    row("verdict, managed elsewhere", asServer, Override::topStatus(145), 142);
    row("verdict, out of date", asServer, policyStatus(5), -5);
    row("verdict, no policy any more", asServer, policyStatus(2), 0);
    row("verdict, no key", asServer, withoutKey, 142);
    row("verdict, later", asServer, Override::topStatus(111), 0);
    row("verdict, out of service", asServer, Override::httpStatus(503), 10403);
}

void ProvisionDemandTest::theWorkEndsAsTheProvisioningDoes()
{
    QFETCH(Override, first);
    QFETCH(Override, second);
    QFETCH(int, end);
    QVERIFY(prepare(Override::topStatus(142)));
    offerPolicy(*mBed);
    mBed->server().overrideNext(QStringLiteral("Provision"), first);
    mBed->server().overrideNext(QStringLiteral("Provision"), second);
    QCOMPARE(run(), end);
    QCOMPARE(mBed->finishedCount(mRequest), 1);
    QCOMPARE(work().isDone(*mBed), end == 0);
    QVERIFY(canBeDoneAnew());
}

FENNEL_REGISTER_TEST(ProvisionDemandTest)
#include "provisiondemandtest.moc"
