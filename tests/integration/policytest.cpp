// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "integration/statusscene.h"
#include "support/authenticationservice.h"
#include "support/devicelock.h"
#include "support/testmain.h"

#include <QSignalSpy>

using namespace StatusScene;
using Simulator::Override;
using Simulator::Policy;
using Simulator::RecordedRequest;
using Simulator::ServerPolicies;
using Simulator::Wipe;

/** @short A server that has policies from the beginning, at each version, and what clients are told. */
class PolicyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // There is one engine at a time.
    void cleanup() { mBed.reset(); }
    void aDeviceIsProvisionedOnceForAPolicy_data() { versions(); }
    void aDeviceIsProvisionedOnceForAPolicy();
    void keysThatAreForgottenAtOnceEndTheSync_data() { versions(); }
    void keysThatAreForgottenAtOnceEndTheSync();
    void aServerThatRefusesAKeylessDeviceIsGivenTheDefaultKey_data() { versions(); }
    void aServerThatRefusesAKeylessDeviceIsGivenTheDefaultKey();
    void aWipeIsAcknowledged_data() { versions(); }
    void aWipeIsAcknowledged();
    void aClientIsToldWhatTheServerWants();
    void aPolicyThatNobodyCanMeet_data();
    void aPolicyThatNobodyCanMeet();
    void aServerMayHaveNoPolicy();
    void severalPoliciesOfWhichOneIsKnown();
    void aCancelledProvisioningHasOneEnd_data();
    void aCancelledProvisioningHasOneEnd();

private:
    struct End
    {
        int status = -1000;
        FailedPolicyMap failed;
        int policyStatus = 0;
    };

    std::unique_ptr<SyncTestBed> mBed;
    QVariantMap mDocument;

    static void versions();
    bool start(const QString &version = QStringLiteral("14.1"));
    void setPolicies(const QVector<Policy> &policies)
    {
        mBed->server().changePolicies([&policies](ServerPolicies &all) { all.setPolicies(policies); });
    }
    int countOf(const char *command) const { return count(*mBed, command); }
    QString policyKey() const { return RequestManager::instance()->account(mBed->accountId())->policyKey(); }
    QString verdict() const { return mBed->server().policies().verdicts.values().value(0); }
    /** Runs provisionPolicy to its end; a document that came before is kept. */
    End provision();
};

void PolicyTest::versions()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
        QTest::newRow(version) << QString::fromLatin1(version);
}

bool PolicyTest::start(const QString &version)
{
    mBed = std::make_unique<SyncTestBed>(QStringList { version });
    mBed->mailbox().deliver(mBed->mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    return mBed->isReady();
}

PolicyTest::End PolicyTest::provision()
{
    mDocument.clear();
    RequestManager *const manager = RequestManager::instance();
    QSignalSpy documents(manager, &RequestManager::policyDocumentReceived);
    QSignalSpy ends(manager, &RequestManager::provisionRequestFinished);
    manager->onProvisionPolicyRequest(mBed->accountId(), 77);
    if (ends.isEmpty() && !ends.wait(60000))
        return {};
    if (!documents.isEmpty())
        mDocument = documents.constFirst().at(2).toMap();
    const QVariantList end = ends.constFirst();
    return { end.at(2).toInt(), end.at(3).value<FailedPolicyMap>(), end.at(4).toInt() };
}

void PolicyTest::aDeviceIsProvisionedOnceForAPolicy()
{
    QFETCH(QString, version);
    QVERIFY(start(version));
    setPolicies({ Policy::allowing() });
    QSignalSpy documents(RequestManager::instance(), &RequestManager::policyDocumentReceived);
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(mBed->deviceState(), mBed->serverState());
    QCOMPARE(countOf("Provision"), 2);
    // Clients hear of the policy from whichever request met the demand.
    QCOMPARE(documents.size(), 1);
    // What a version cannot say reads as not allowed: nearly all at 12.0, the age of events at 16.1.
    const bool isMet = version != QLatin1String("12.0") && version != QLatin1String("16.1");
    QCOMPARE(verdict(), isMet ? QStringLiteral("1") : QStringLiteral("2"));
    const QString key = policyKey();
    QVERIFY(!key.isEmpty());

    QCOMPARE(mBed->sync(), 0);
    mBed->restartEngine();
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(countOf("Provision"), 2);
    QCOMPARE(policyKey(), key);

    mBed->server().changePolicies([](ServerPolicies &all) { all.refresh(); });
    mBed->mailbox().deliver(mBed->mailbox().inboxId(), SyncTestBed::message(QStringLiteral("two")));
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(countOf("Provision"), 4);
    QVERIFY(policyKey() != key);
    QCOMPARE(mBed->deviceState(), mBed->serverState());

    setPolicies({});
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(countOf("Provision"), 4);
    QCOMPARE(mBed->server().failures(), QStringList());
}

void PolicyTest::keysThatAreForgottenAtOnceEndTheSync()
{
    QFETCH(QString, version);
    QVERIFY(start(version));
    setPolicies({ Policy::allowing() });
    mBed->server().changePolicies([](ServerPolicies &all) { all.forgetsKeys = true; });
    QCOMPARE(mBed->sync(), version < QLatin1String("14.0") ? 10299 : 144);
    QCOMPARE(countOf("FolderSync"), 7);
    QCOMPARE(countOf("Provision"), 12);
    mBed->server().changePolicies([](ServerPolicies &all) { all.forgetsKeys = false; });
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(mBed->deviceState(), mBed->serverState());
}

void PolicyTest::aServerThatRefusesAKeylessDeviceIsGivenTheDefaultKey()
{
    QFETCH(QString, version);
    QVERIFY(start(version));
    mBed->server().changePolicies([](ServerPolicies &all) { all.refusesKeyless = true; });
    const bool tells = version >= QLatin1String("14.0");
    // Before 14.0 it is HTTP 403, which says nothing of a key.
    QCOMPARE(mBed->sync(), tells ? 0 : 10201);
    QCOMPARE(policyKey(), tells ? QStringLiteral("0") : QString());
    QCOMPARE(countOf("Provision"), 0);
}

void PolicyTest::aWipeIsAcknowledged()
{
    QFETCH(QString, version);
    QVERIFY(start(version));
    QCOMPARE(mBed->sync(), 0);
    const bool ofAccount = version == QLatin1String("16.1");
    mBed->server().changePolicies(
        [ofAccount](ServerPolicies &all) { all.orderWipe(ofAccount ? Wipe::Account : Wipe::Device); });
    QCOMPARE(mBed->sync(), -7);
    const QVector<RecordedRequest> exchange = mBed->server().requests(QStringLiteral("Provision"));
    QCOMPARE(exchange.size(), 2);
    // Before 14.0 the demand does not say what it is for.
    QCOMPARE(exchange.first().document.has(QStringLiteral("Policies")), version < QLatin1String("14.0"));
    QVERIFY(exchange.last().document.has(
        ofAccount ? QStringLiteral("AccountOnlyRemoteWipe") : QStringLiteral("RemoteWipe")));
    QCOMPARE(mBed->server().policies().wipeVerdicts.values(), QStringList { QStringLiteral("1") });
    QCOMPARE(mBed->server().failures(), QStringList());
}

void PolicyTest::aClientIsToldWhatTheServerWants()
{
    QVERIFY(start());
    setPolicies({ Policy::allowing({ { "AllowCamera", "0" }, { "MaxAttachmentSize", "2048" },
        { "MaxEmailBodyTruncationSize", "1024" }, { "AllowBluetooth", "1" } }) });
    const End end = provision();
    QCOMPARE(end.status, 0);
    QCOMPARE(end.policyStatus, 3);
    QCOMPARE(end.failed, (FailedPolicyMap { { 6, 1 }, { 8, false }, { 33, 2048U }, { 37, 1024 } }));
    QCOMPARE(verdict(), QStringLiteral("2"));
    QCOMPARE(mDocument.size(), 42);
    QCOMPARE(mDocument.value(QStringLiteral("MaxAttachmentSize")), QVariant(2048U));
    QCOMPARE(mDocument.value(QStringLiteral("AllowCamera")), QVariant(false));
    QCOMPARE(mBed->finishedCount(77), 0);
}

void PolicyTest::aPolicyThatNobodyCanMeet_data()
{
    QTest::addColumn<bool>("wantsCompliance");
    QTest::addColumn<int>("policyStatus");
    QTest::newRow("is taken by a server that lets it pass") << false << 3;
    QTest::newRow("is not taken by a strict server") << true << 139;
}

void PolicyTest::aPolicyThatNobodyCanMeet()
{
    QFETCH(bool, wantsCompliance);
    QFETCH(int, policyStatus);
    const AuthenticationService daemon({ { "new-length", 4 }, { "max-attempts", 10 } });
    const DeviceLock lock(true, 60);
    QVERIFY(start());
    setPolicies({ Policy::allowing({ { "DevicePasswordEnabled", "1" }, { "MinDevicePasswordLength", "16" },
        { "MaxDevicePasswordFailedAttempts", "4" }, { "MaxInactivityTimeDeviceLock", "30" } }) });
    mBed->server().changePolicies(
        [wantsCompliance](ServerPolicies &all) { all.wantsCompliance = wantsCompliance; });
    const End end = provision();
    QCOMPARE(end.status, 0);
    QCOMPARE(end.policyStatus, policyStatus);
    QCOMPARE(end.failed, (FailedPolicyMap { { 3, 16U }, { 5, 30U } }));
    QCOMPARE(verdict(), QStringLiteral("3"));
    QCOMPARE(policyKey().isEmpty(), wantsCompliance);
    QCOMPARE(mBed->sync(), wantsCompliance ? 142 : 0);
}

void PolicyTest::aServerMayHaveNoPolicy()
{
    QVERIFY(start());
    const End end = provision();
    QCOMPARE(end.status, 0);
    QCOMPARE(end.policyStatus, 1);
    QVERIFY(end.failed.isEmpty());
    QVERIFY(mDocument.isEmpty());
}

void PolicyTest::severalPoliciesOfWhichOneIsKnown()
{
    QVERIFY(start());
    Policy foreign = Policy::allowing();
    foreign.type = QStringLiteral("MS-WAP-Provisioning-XML");
    setPolicies({ foreign, Policy::allowing({ { "AllowWiFi", "0" } }) });
    const End end = provision();
    QCOMPARE(end.policyStatus, 3);
    QCOMPARE(end.failed, (FailedPolicyMap { { 23, false } }));
}

void PolicyTest::aCancelledProvisioningHasOneEnd_data()
{
    QTest::addColumn<int>("passing");
    QTest::newRow("while it asks for the policies") << 0;
    QTest::newRow("while it acknowledges them") << 1;
}

void PolicyTest::aCancelledProvisioningHasOneEnd()
{
    QFETCH(int, passing);
    QVERIFY(start());
    setPolicies({ Policy::allowing() });
    if (passing > 0)
        mBed->server().overrideNext(QStringLiteral("Provision"), Override(), passing);
    mBed->server().overrideAll(QStringLiteral("Provision"), Override::hang());
    RequestManager *const manager = RequestManager::instance();
    QSignalSpy ends(manager, &RequestManager::provisionRequestFinished);
    manager->onProvisionPolicyRequest(mBed->accountId(), 77);
    QTRY_VERIFY_WITH_TIMEOUT(countOf("Provision") == passing + 1, 60000);
    manager->onCancelRequest(mBed->accountId(), 77);
    QTRY_COMPARE(ends.size(), 1);
    QCOMPARE(ends.constFirst().at(2).toInt(), -4);
    QCoreApplication::processEvents();
    QCOMPARE(ends.size(), 1);
    QVERIFY(policyKey().isEmpty());
}

FENNEL_REGISTER_TEST(PolicyTest)
#include "policytest.moc"
