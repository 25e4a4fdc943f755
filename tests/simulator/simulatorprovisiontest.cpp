// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include "simulator/controlchannel.h"
#include "simulator/protocolversion.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Simulator;

namespace {

const QString usualType = QStringLiteral("MS-EAS-Provisioning-WBXML");
const QString policyPath = QStringLiteral("Policies/Policy/");

void addVersions()
{
    QTest::addColumn<QString>("version");
    for (const int version : protocolVersions())
        QTest::newRow(qPrintable(versionText(version))) << versionText(version);
}

} // namespace

/** Policies, policy keys and wipes, as a client sees them. */
class SimulatorProvisionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
    }

    void cleanup()
    {
        mClient.reset();
        mServer.reset();
    }

    void aMailboxHasNoPolicyAtFirst_data() { addVersions(); }

    void aMailboxHasNoPolicyAtFirst()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        QVERIFY(mClient->options().header("MS-ASProtocolCommands").contains("Provision"));
        QCOMPARE(folderSync(), QStringLiteral("1"));
        const WbxmlNode reply = askForPolicies();
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(reply.text(policyPath + QStringLiteral("Status")), QStringLiteral("2"));
        QVERIFY(!reply.has(policyPath + QStringLiteral("PolicyKey")));
        QCOMPARE(mServer->failures(), QStringList());
    }

    void aPolicyIsHandedOutAndAcknowledged_data() { addVersions(); }

    void aPolicyIsHandedOutAndAcknowledged()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        setPolicies({ Policy::allowing() });
        QCOMPARE(folderSync(), demand(142));
        const WbxmlNode offered = askForPolicies();
        QCOMPARE(offered.text(policyPath + QStringLiteral("PolicyType")), usualType);
        QCOMPARE(offered.text(policyPath + QStringLiteral("Status")), QStringLiteral("1"));
        const WbxmlNode document = offered.at(policyPath + QStringLiteral("Data/EASProvisionDoc"));
        QCOMPARE(document.text(QStringLiteral("AttachmentsEnabled")), QStringLiteral("1"));
        QCOMPARE(document.has(QStringLiteral("AllowCamera")), version != QLatin1String("12.0"));
        QCOMPARE(document.has(QStringLiteral("MaxDevicePasswordFailedAttempts")),
            version != QLatin1String("16.1"));
        const QString temporary = offered.text(policyPath + QStringLiteral("PolicyKey"));
        setKey(temporary);
        QCOMPARE(folderSync(), demand(144)); // it is good for nothing but the acknowledgement

        const WbxmlNode accepted = acknowledge(temporary, QStringLiteral("2"));
        QCOMPARE(accepted.text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(accepted.text(policyPath + QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(accepted.text(policyPath + QStringLiteral("PolicyType")), usualType);
        const QString key = accepted.text(policyPath + QStringLiteral("PolicyKey"));
        QVERIFY(!key.isEmpty() && key != temporary);
        QCOMPARE(mServer->policies().verdicts.value(QStringLiteral("device1")), QStringLiteral("2"));
        setKey(key);
        QCOMPARE(folderSync(), QStringLiteral("1"));
        QCOMPARE(mServer->failures(), QStringList());
    }

    void aKeyIsCheckedOnEachCommand_data() { addVersions(); }

    void aKeyIsCheckedOnEachCommand()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        setPolicies({ Policy::allowing() });
        QCOMPARE(folderSync(), demand(142));
        setKey(QStringLiteral("0"));
        QCOMPARE(folderSync(), demand(142));
        setKey(QStringLiteral("invented"));
        QCOMPARE(folderSync(), demand(144));
        provision();
        QCOMPARE(folderSync(), QStringLiteral("1"));
        mServer->changePolicies([](ServerPolicies &all) { all.refresh(); });
        QCOMPARE(folderSync(), demand(143));
        provision();
        QCOMPARE(folderSync(), QStringLiteral("1"));
        mServer->changePolicies([](ServerPolicies &all) { all.forgetsKeys = true; });
        QCOMPARE(folderSync(), demand(144));
        mServer->changePolicies([](ServerPolicies &all) { all.setPolicies({}); });
        QCOMPARE(folderSync(), QStringLiteral("1"));
    }

    void everyCommandIsRefusedInItsOwnWay_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("xml");
        QTest::newRow("Sync") << "Sync"
                              << "<Sync xmlns='AirSync'/>";
        QTest::newRow("FolderCreate") << "FolderCreate"
                                      << "<FolderCreate xmlns='FolderHierarchy'/>";
        QTest::newRow("FolderUpdate") << "FolderUpdate"
                                      << "<FolderUpdate xmlns='FolderHierarchy'/>";
        QTest::newRow("FolderDelete") << "FolderDelete"
                                      << "<FolderDelete xmlns='FolderHierarchy'/>";
        QTest::newRow("MoveItems") << "MoveItems"
                                   << "<MoveItems xmlns='Move'/>";
        QTest::newRow("ItemOperations") << "ItemOperations"
                                        << "<ItemOperations xmlns='ItemOperations'/>";
    }

    void everyCommandIsRefusedInItsOwnWay()
    {
        QFETCH(QString, command);
        QFETCH(QString, xml);
        setPolicies({ Policy::allowing() });
        const PlainReply reply = mClient->post(command, xml);
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.document.tag(), command);
        QCOMPARE(reply.document.text(QStringLiteral("Status")), QStringLiteral("142"));
        mClient->setVersion(QStringLiteral("12.1"));
        QCOMPARE(mClient->post(command, xml).status, 449);
    }

    void aClientWithoutAKeyIsRefusedWhereThatIsOrdered_data() { addVersions(); }

    void aClientWithoutAKeyIsRefusedWhereThatIsOrdered()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        mServer->changePolicies([](ServerPolicies &all) { all.refusesKeyless = true; });
        QCOMPARE(folderSync(),
            version < QLatin1String("14.0") ? QStringLiteral("HTTP 403") : QStringLiteral("141"));
        setKey(QStringLiteral("0"));
        QCOMPARE(folderSync(), QStringLiteral("1"));
    }

    void severalPoliciesComeInOneReply()
    {
        Policy foreign = Policy::allowing();
        foreign.type = QStringLiteral("MS-WAP-Provisioning-XML");
        Policy corrupt;
        corrupt.status = 4;
        setPolicies({ foreign, corrupt, Policy::of(QStringLiteral("<AllowCamera>0</AllowCamera>")) });
        const QVector<WbxmlNode> policies = askForPolicies().all(QStringLiteral("Policies/Policy"));
        QCOMPARE(policies.size(), 3);
        QCOMPARE(policies.at(0).text(QStringLiteral("PolicyType")), foreign.type);
        QCOMPARE(policies.at(1).text(QStringLiteral("Status")), QStringLiteral("4"));
        QVERIFY(!policies.at(1).has(QStringLiteral("Data")));
        QCOMPARE(
            policies.at(2).text(QStringLiteral("Data/EASProvisionDoc/AllowCamera")), QStringLiteral("0"));
    }

    void aDeviceThatDoesNotComplyIsRefusedWhereThatIsWanted()
    {
        setPolicies({ Policy::allowing({ { "MinDevicePasswordLength", "16" } }) });
        mServer->changePolicies([](ServerPolicies &all) { all.wantsCompliance = true; });
        const QString key = askForPolicies().text(policyPath + QStringLiteral("PolicyKey"));
        QCOMPARE(acknowledge(key, QStringLiteral("3")).text(QStringLiteral("Status")), QStringLiteral("139"));
        setKey(key);
        QCOMPARE(folderSync(), QStringLiteral("144"));
        const WbxmlNode accepted = acknowledge(key, QStringLiteral("1"));
        QCOMPARE(accepted.text(QStringLiteral("Status")), QStringLiteral("1"));
    }

    void anAcknowledgementOfAnotherPolicyIsOutOfDate()
    {
        setPolicies({ Policy::allowing() });
        askForPolicies();
        const WbxmlNode reply = acknowledge(QStringLiteral("invented"), QStringLiteral("1"));
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(reply.text(policyPath + QStringLiteral("Status")), QStringLiteral("5"));
        QVERIFY(!reply.has(policyPath + QStringLiteral("PolicyKey")));
    }

    void aPolicyOfAnotherTypeIsUnknown()
    {
        setPolicies({ Policy::allowing() });
        const WbxmlNode reply = provisionReply(described()
            + QStringLiteral("<Policies><Policy><PolicyType>Other</PolicyType></Policy></Policies>"));
        QCOMPARE(reply.text(policyPath + QStringLiteral("PolicyType")), QStringLiteral("Other"));
        QCOMPARE(reply.text(policyPath + QStringLiteral("Status")), QStringLiteral("3"));
    }

    void aWipeIsOrderedAndAcknowledged_data() { addVersions(); }

    void aWipeIsOrderedAndAcknowledged()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        QVERIFY(!provisionReply(QString()).has(QStringLiteral("RemoteWipe")));
        mServer->changePolicies([](ServerPolicies &all) { all.orderWipe(Wipe::Device); });
        QCOMPARE(folderSync(), demand(140));
        QVERIFY(provisionReply(QString()).has(QStringLiteral("RemoteWipe")));
        const WbxmlNode reply = askForPolicies();
        QVERIFY(reply.has(QStringLiteral("RemoteWipe")));
        QVERIFY(!reply.has(QStringLiteral("Policies")));
        QVERIFY(!provisionReply(QStringLiteral("<RemoteWipe><Status>1</Status></RemoteWipe>"))
                     .has(QStringLiteral("RemoteWipe")));
        QCOMPARE(mServer->policies().wipeVerdicts.value(QStringLiteral("device1")), QStringLiteral("1"));
        QCOMPARE(folderSync(), QStringLiteral("1"));
        QCOMPARE(mServer->failures(), QStringList());
        mClient->setDevice(QStringLiteral("device2"));
        QCOMPARE(folderSync(), demand(140));
    }

    void aWipeOfTheAccountAloneIsOrderedFrom161On_data() { addVersions(); }

    void aWipeOfTheAccountAloneIsOrderedFrom161On()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        const bool exists = version == QLatin1String("16.1");
        mServer->changePolicies([](ServerPolicies &all) { all.orderWipe(Wipe::Account); });
        QCOMPARE(folderSync(), exists ? QStringLiteral("140") : QStringLiteral("1"));
        const WbxmlNode reply = provisionReply(QString());
        QCOMPARE(reply.has(QStringLiteral("AccountOnlyRemoteWipe")), exists);
        QVERIFY(!reply.has(QStringLiteral("RemoteWipe")));
        if (!exists)
            return;
        provisionReply(QStringLiteral("<AccountOnlyRemoteWipe><Status>1</Status></AccountOnlyRemoteWipe>"));
        QCOMPARE(mServer->policies().wipeVerdicts.size(), 1);
        QCOMPARE(folderSync(), QStringLiteral("1"));
        QCOMPARE(mServer->failures(), QStringList());
    }

    void whatBreaksTheProtocolIsNoted()
    {
        askForPolicies(QStringLiteral("5"));
        setKey(QStringLiteral("0"));
        provisionReply(QStringLiteral("<Policies><Policy><PolicyType>x</PolicyType></Policy></Policies>"));
        provisionReply(QStringLiteral("<RemoteWipe><Status>1</Status></RemoteWipe>"));
        acknowledge(QStringLiteral("7"), QStringLiteral("1"), QStringLiteral("8"));
        mClient->setVersion(QStringLiteral("14.0"));
        setKey(QStringLiteral("0"));
        provisionReply(QStringLiteral("<DeviceInformation xmlns='Settings'/>") + asked());
        const QStringList failures = mServer->failures();
        for (const char *failure : { "the policies are asked for under a policy key", "no device information",
                 "a wipe is acknowledged that was not ordered",
                 "a policy is acknowledged under another policy key", "a device information below 14.1" })
            QVERIFY2(failures.join(QLatin1Char('\n')).contains(QLatin1String(failure)), failure);
        QCOMPARE(failures.size(), 5);
    }

    void theControlChannelActsOnThePolicies()
    {
        ControlChannel control(*mServer, nullptr);
        QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("policy.xml")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<EASProvisionDoc xmlns='Provision'><AllowCamera>0</AllowCamera></EASProvisionDoc>");
        file.close();
        QCOMPARE(control.run(QStringLiteral("policy \"%1\"").arg(file.fileName())), QStringLiteral("ok"));
        QCOMPARE(mServer->policies().list.value(0).document.text(QStringLiteral("AllowCamera")),
            QStringLiteral("0"));
        QCOMPARE(control.run(QStringLiteral("allow-all MinDevicePasswordLength=8")), QStringLiteral("ok"));
        QCOMPARE(mServer->policies().list.value(0).document.text(QStringLiteral("MinDevicePasswordLength")),
            QStringLiteral("8"));
        provision();
        QCOMPARE(control.run(QStringLiteral("policy-status")), QStringLiteral("policy\tdevice1\t1\nok 1"));
        QCOMPARE(control.run(QStringLiteral("refresh-policy")), QStringLiteral("ok"));
        QCOMPARE(folderSync(), QStringLiteral("143"));
        QCOMPARE(control.run(QStringLiteral("demand new-keys on")), QStringLiteral("ok"));
        provision();
        QCOMPARE(folderSync(), QStringLiteral("144"));
        QCOMPARE(control.run(QStringLiteral("no-policy")), QStringLiteral("ok"));
        QCOMPARE(folderSync(), QStringLiteral("1"));
        QCOMPARE(control.run(QStringLiteral("wipe device")), QStringLiteral("ok"));
        QCOMPARE(folderSync(), QStringLiteral("140"));
        provisionReply(QStringLiteral("<RemoteWipe><Status>1</Status></RemoteWipe>"));
        QVERIFY(control.run(QStringLiteral("policy-status")).contains(QLatin1String("wipe\tdevice1\t1\n")));
        QCOMPARE(control.run(QStringLiteral("wipe off")), QStringLiteral("ok"));
        for (const char *wrong : { "wipe all", "demand money on", "policy /missing.xml" })
            QVERIFY2(control.run(QLatin1String(wrong)).startsWith(QLatin1String("error")), wrong);
    }

private:
    /** How a demand arrives: as a status from 14.0 on. */
    QString demand(int status) const
    {
        return mClient->version() < QLatin1String("14.0") ? QStringLiteral("HTTP 449")
                                                          : QString::number(status);
    }

    /** Status of a FolderSync, or "HTTP" and the number of a bare answer. */
    QString folderSync()
    {
        const PlainReply reply = mClient->post(QStringLiteral("FolderSync"),
            QStringLiteral("<FolderSync xmlns='FolderHierarchy'><SyncKey>0</SyncKey></FolderSync>"));
        return reply.document.isNull() ? QStringLiteral("HTTP %1").arg(reply.status)
                                       : reply.document.text(QStringLiteral("Status"));
    }

    void setPolicies(const QVector<Policy> &policies)
    {
        mServer->changePolicies([&policies](ServerPolicies &all) { all.setPolicies(policies); });
    }

    void setKey(const QString &key) { mClient->setHeader("X-MS-PolicyKey", key.toUtf8()); }

    WbxmlNode provisionReply(const QString &inner)
    {
        return mClient
            ->post(QStringLiteral("Provision"),
                QStringLiteral("<Provision xmlns='Provision'>%1</Provision>").arg(inner))
            .document;
    }

    QString described() const
    {
        return mClient->version() < QLatin1String("14.1")
            ? QString()
            : QStringLiteral(
                "<DeviceInformation xmlns='Settings'><Set><Model>m</Model></Set></DeviceInformation>");
    }
    static QString asked()
    {
        return QStringLiteral("<Policies><Policy><PolicyType>%1</PolicyType></Policy></Policies>")
            .arg(usualType);
    }

    WbxmlNode askForPolicies(const QString &key = QStringLiteral("0"))
    {
        setKey(key);
        return provisionReply(described() + asked());
    }

    WbxmlNode acknowledge(const QString &key, const QString &verdict, const QString &header = QString())
    {
        setKey(header.isEmpty() ? key : header);
        return provisionReply(QStringLiteral("<Policies><Policy><PolicyType>%1</PolicyType><PolicyKey>%2"
                                             "</PolicyKey><Status>%3</Status></Policy></Policies>")
                                  .arg(usualType, key, verdict));
    }

    /** Takes on the policies and keeps the key. */
    void provision()
    {
        const QString temporary = askForPolicies().text(policyPath + QStringLiteral("PolicyKey"));
        setKey(acknowledge(temporary, QStringLiteral("1")).text(policyPath + QStringLiteral("PolicyKey")));
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
};

FENNEL_REGISTER_TEST(SimulatorProvisionTest)
#include "simulatorprovisiontest.moc"
