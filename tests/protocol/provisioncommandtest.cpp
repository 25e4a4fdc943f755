// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/provisioncommand.h"
#include "application/base/deviceinformation.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = 1;

QByteArray okay()
{
    return document(node(Provision::Provision, { node(Provision::Status, "1") }));
}

} // namespace

/** A Provision in each of its forms, on the wire. */
class ProvisionCommandTest : public QObject
{
    Q_OBJECT

private:
    ScriptedManager *mManager = nullptr;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<ScriptedServer> mServer;

    using Type = ProvisionCommand::ProvisionCommandType;

    std::unique_ptr<ProvisionCommand> command(Type type)
    {
        return std::make_unique<ProvisionCommand>(Account, mManager, type);
    }

    /** Starts and waits for the end; whether it succeeded. */
    bool run(ProvisionCommand &command, const QByteArray &reply)
    {
        ScriptedAnswer answer;
        answer.body = reply;
        mServer->answer(answer);
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        if (finished.isEmpty() && !finished.wait())
            qWarning("the command did not finish");
        return finished.value(0).value(0).toBool();
    }
    QString sent() const { return WbxmlDocument::outline(mServer->requests().last().body); }

private Q_SLOTS:
    void init()
    {
        mManager = ScriptedManager::install();
        mAccount = mManager->addAccount(Account);
        mAccount->negotiated({ QStringLiteral("Provision") });
        mAccount->policy = QStringLiteral("kept");
        mServer = std::make_unique<ScriptedServer>();
        mAccount->connection->port = mServer->port();
    }

    void cleanup()
    {
        mServer.reset();
        ScriptedManager::uninstall();
    }

    void aFormGoesOut_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<bool>("accountOnly");
        QTest::addColumn<QString>("body");
        QTest::newRow("policies") << int(ProvisionCommand::InitialPolicyKey) << QByteArray("0") << false
                                  << "Provision(Policies(Policy(PolicyType=MS-EAS-Provisioning-WBXML)))";
        QTest::newRow("verdict on policies")
            << int(ProvisionCommand::AcknowledgePolicyKey) << QByteArray("temporary") << false
            << "Provision(Policies(Policy(PolicyType=MS-EAS-Provisioning-WBXML,PolicyKey=temporary,Status=2))"
               ")";
        QTest::newRow("wipe") << int(ProvisionCommand::InitialRemoteWipe) << QByteArray("kept") << false
                              << "Provision";
        QTest::newRow("verdict on a wipe")
            << int(ProvisionCommand::AcknowledgeRemoteWipe) << QByteArray("kept") << false
            << "Provision(RemoteWipe(Status=2))";
        QTest::newRow("verdict on a wipe of the account")
            << int(ProvisionCommand::AcknowledgeRemoteWipe) << QByteArray("kept") << true
            << "Provision(AccountOnlyRemoteWipe(Status=2))";
    }

    void aFormGoesOut()
    {
        QFETCH(int, type);
        QFETCH(QByteArray, key);
        QFETCH(bool, accountOnly);
        QFETCH(QString, body);
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion140);
        const auto provision = command(Type(type));
        provision->setPolicyKey(QStringLiteral("temporary"));
        provision->setResultStatus(QStringLiteral("2"));
        provision->setAccountOnlyRemoteWipe(accountOnly);
        QVERIFY(run(*provision, okay()));
        QCOMPARE(provision->status(), 1);
        QCOMPARE(sent(), body);
        const ReceivedRequest request = mServer->requests().last();
        QVERIFY(request.target.contains("Cmd=Provision&"));
        QCOMPARE(request.header("X-MS-PolicyKey"), key);
    }

    void anAccountWithoutAKeySendsNoneWithAWipe()
    {
        mAccount->policy.clear();
        const auto provision = command(ProvisionCommand::InitialRemoteWipe);
        QVERIFY(run(*provision, okay()));
        QVERIFY(!mServer->requests().last().hasHeader("X-MS-PolicyKey"));
    }

    void theDeviceIsDescribedFrom141On_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("described");
        QTest::newRow("12.0") << 0x1200 << false;
        QTest::newRow("12.1") << 0x1201 << false;
        QTest::newRow("14.0") << 0x1400 << false;
        QTest::newRow("14.1") << 0x1401 << true;
        QTest::newRow("16.0") << 0x1600 << true;
        QTest::newRow("16.1") << 0x1601 << true;
    }

    void theDeviceIsDescribedFrom141On()
    {
        QFETCH(int, version);
        QFETCH(bool, described);
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        const auto initial = command(ProvisionCommand::InitialPolicyKey);
        QVERIFY(run(*initial, okay()));
        QCOMPARE(sent().startsWith(QStringLiteral("Provision(DeviceInformation(Set(")), described);
        QCOMPARE(sent().contains(DeviceInformation::userAgent()), described);
        QCOMPARE(sent().contains(QStringLiteral("EnableOutboundSMS=0")), described);
        QVERIFY(sent().endsWith(QStringLiteral("Policies(Policy(PolicyType=MS-EAS-Provisioning-WBXML)))")));
        const auto acknowledgement = command(ProvisionCommand::AcknowledgePolicyKey);
        QVERIFY(run(*acknowledgement, okay()));
        QVERIFY(!sent().contains(QStringLiteral("DeviceInformation")));
    }

    void everyFormReadsTheWholeReply_data()
    {
        QTest::addColumn<int>("type");
        for (int type = 0; type < 4; ++type)
            QTest::newRow(qPrintable(QStringLiteral("form %1").arg(type))) << type;
    }

    void everyFormReadsTheWholeReply()
    {
        QFETCH(int, type);
        const auto provision = command(Type(type));
        provision->setPolicyKey(QStringLiteral("temporary"));
        QVERIFY(run(*provision,
            document(node(Provision::Provision,
                { node(Settings::DeviceInformation, { node(Settings::Status, "1") }),
                    node(Provision::Status, "3"),
                    node(Provision::Policies,
                        { node(Provision::Policy, { node(Provision::PolicyKey, "k") }) }),
                    node(Provision::RemoteWipe), node(Provision::AccountOnlyRemoteWipe) }))));
        QCOMPARE(provision->status(), 3);
        QCOMPARE(provision->deviceInformationStatus(), 1U);
        QCOMPARE(provision->policies().value(0).policyKey(), QStringLiteral("k"));
        QVERIFY(provision->remoteWipeTagPresence());
        QVERIFY(provision->accountOnlyRemoteWipeTagPresence());
    }

    void aReplyWithoutAnEndOfTheRootFails_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut off") << okay().chopped(1);
        QTest::newRow("another command's")
            << document(node(FolderHierarchy::FolderSync, { node(FolderHierarchy::Status, "142") }));
    }

    void aReplyWithoutAnEndOfTheRootFails()
    {
        QFETCH(QByteArray, reply);
        const auto provision = command(ProvisionCommand::InitialPolicyKey);
        QVERIFY(!run(*provision, reply));
        QCOMPARE(provision->status(), -2);
        QVERIFY(provision->policies().isEmpty());
    }

    void aKeyWithALineBreakIsNotSent()
    {
        LogCollector log;
        const auto provision = command(ProvisionCommand::AcknowledgePolicyKey);
        provision->setPolicyKey(QStringLiteral("1\r\nX-Other: 2"));
        QVERIFY(!run(*provision, okay()));
        QCOMPARE(provision->status(), -2);
        QVERIFY(mServer->requests().isEmpty());
    }

    void aSecondStartIsRefused()
    {
        LogCollector log;
        const auto provision = command(ProvisionCommand::InitialPolicyKey);
        QSignalSpy finished(provision.get(), &BaseProtocolCommand::finished);
        ScriptedAnswer answer;
        answer.body = okay();
        mServer->answer(answer);
        provision->start();
        provision->start();
        QVERIFY(log.contains(QtCriticalMsg, { "Cannot begin, probably already in progress" }));
        QVERIFY(finished.wait());
        QCOMPARE(finished.size(), 1);
        QCOMPARE(mServer->requests().size(), 1);
    }

    void withoutAnAccountItEnds()
    {
        LogCollector log;
        mManager->storage->remove(Account);
        const auto provision = command(ProvisionCommand::InitialPolicyKey);
        QVERIFY(!run(*provision, okay()));
        QVERIFY(log.contains(QtCriticalMsg, { "No account" }));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to setup network request" }));
    }
};

FENNEL_REGISTER_TEST(ProvisionCommandTest)
#include "provisioncommandtest.moc"
