// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QJsonArray>
#include <QJsonObject>

/** What a server asks of the device is shown with what the device fails of it. */
class PolicyCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;

    QString account() const { return QString::number(mScene->accountId()); }
    static QVariantMap document()
    {
        return { { QStringLiteral("AllowCamera"), false }, { QStringLiteral("AllowWiFi"), true },
            { QStringLiteral("MinDevicePasswordLength"), 6U }, { QStringLiteral("MaxEmailAgeFilter"), 3 } };
    }
    static QJsonObject policy(const ClientProcess &client, const char *name)
    {
        const QJsonArray policies = client.json().object().value(QStringLiteral("policies")).toArray();
        for (const QJsonValue &value : policies) {
            if (value.toObject().value(QStringLiteral("name")).toString() == QLatin1String(name))
                return value.toObject();
        }
        return {};
    }
    static QString text(const QJsonObject &object, const char *key)
    {
        return object.value(QLatin1String(key)).toString();
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
    }
    void cleanup()
    {
        mDaemon.reset();
        mScene.reset();
    }

    void aPolicyThatTheDeviceMeetsIsShown()
    {
        mDaemon->setPolicy(document(), {}, 3);
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "policy", "show" }), int(ExitSuccess));
        const QJsonObject all = client.json().object();
        QCOMPARE(text(all, "verdict"), QStringLiteral("met"));
        QCOMPARE(text(all, "policyStatusName"), QStringLiteral("accepted"));
        QCOMPARE(all.value(QStringLiteral("policies")).toArray().size(), document().size());
        const QJsonObject length = policy(client, "MinDevicePasswordLength");
        QCOMPARE(length.value(QStringLiteral("value")).toInt(), 6);
        QCOMPARE(text(length, "demands"), QStringLiteral("6 characters at least"));
        QVERIFY(length.value(QStringLiteral("met")).toBool());
        QVERIFY(!length.contains(QStringLiteral("help")));
        QCOMPARE(mDaemon->calls(), QStringList { QStringLiteral("provisionPolicy ") + account() });
    }

    void whatIsToldBeforeTheIdentifierIsNotLost()
    {
        mDaemon->setHasty(true);
        mDaemon->setPolicy(document(), { { 8, false } }, 3);
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "policy", "show" }), int(ExitSuccess));
        QCOMPARE(text(client.json().object(), "verdict"), QStringLiteral("partlyMet"));
        QVERIFY(policy(client, "AllowWiFi").value(QStringLiteral("met")).toBool());
    }

    void whatTheDeviceFailsIsNamedWithWhatWouldHelp()
    {
        mDaemon->setPolicy(document(), { { 8, false }, { 3, 6U }, { 36, 3 } }, 3);
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "policy", "show", account() }), int(ExitSuccess));
        QCOMPARE(text(client.json().object(), "verdict"), QStringLiteral("failed"));
        const QJsonObject length = policy(client, "MinDevicePasswordLength");
        QVERIFY(!length.value(QStringLiteral("met")).toBool(true));
        QCOMPARE(text(length, "help"), QStringLiteral("Set a lock code of 6 characters or more."));
        QVERIFY(text(policy(client, "MaxEmailAgeFilter"), "help").endsWith("--past-time 3"));
        QVERIFY(text(policy(client, "AllowCamera"), "help").contains("administrator"));
        QVERIFY(policy(client, "AllowWiFi").value(QStringLiteral("met")).toBool());
        QCOMPARE(client.run({ "policy", "show" }), int(ExitSuccess));
        for (const char *words :
            { "camera", "not allowed", "Not met: length of the lock code\n  Set a lock code of 6",
                "fails what the policy demands of its lock" })
            QVERIFY2(client.output().contains(words), client.output());
    }

    void aServerWithoutAPolicyIsSaidSo()
    {
        mDaemon->setPolicy({}, {}, 1);
        ClientProcess client;
        QCOMPARE(client.run({ "policy", "show" }), int(ExitSuccess));
        QCOMPARE(client.output(), "The server has no policy for account " + account().toUtf8() + ".\n");
        QCOMPARE(client.run({ "--json", "policy", "show" }), int(ExitSuccess));
        const QJsonObject all = client.json().object();
        QCOMPARE(text(all, "policyStatusName"), QStringLiteral("no policy"));
        QVERIFY(!all.contains(QStringLiteral("verdict")));
        QVERIFY(all.value(QStringLiteral("policies")).toArray().isEmpty());
    }

    void anAcknowledgementWithoutAKeyIsSaidSo()
    {
        mDaemon->setPolicy(document(), {}, 4);
        ClientProcess client;
        QCOMPARE(client.run({ "policy", "show" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("no key"), client.output());
    }

    void aDeviceThatTheServerDoesNotTakeIsSaidSo()
    {
        mDaemon->setPolicy(document(), { { 8, false } }, 139);
        ClientProcess client;
        QCOMPARE(client.run({ "policy", "show" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("has not accepted"), client.output());
    }

    void aRefusedPolicyIsShownBesideTheError()
    {
        mDaemon->setPolicy(document(), { { 1, true } }, 1);
        mDaemon->setStatus(-5);
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "policy", "show" }), int(ExitFailure));
        const QJsonObject all = client.json().object();
        QCOMPARE(all.value(QStringLiteral("status")).toInt(), -5);
        QCOMPARE(all.value(QStringLiteral("exitStatus")).toInt(), int(ExitFailure));
        // The number is the server's own here, not that of an outcome.
        QCOMPARE(text(all, "policyStatusName"), QStringLiteral("not accepted"));
        QCOMPARE(text(all, "message"),
            QStringLiteral(
                "The device fails what the policy demands of its lock, which the server was told."));
        // Told by the number alone, as the document has no word of it.
        QCOMPARE(text(policy(client, "DevicePasswordEnabled"), "help"), QStringLiteral("Set a device lock."));
    }

    void aDaemonThatDoesNotKnowPoliciesEndsWithItsStatus()
    {
        mDaemon->setStatus(-8);
        ClientProcess client;
        QCOMPARE(client.run({ "policy", "show" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("-8"), client.errors());
        QVERIFY2(client.output().isEmpty(), client.output());
    }

    void anInterruptCancels()
    {
        mDaemon->setStatus(StubDaemon::Open);
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "policy", "show" });
        const QString call = QStringLiteral("provisionPolicy ") + account();
        QVERIFY(Waiting::until([&] { return mDaemon->calls().contains(call); }, 60000));
        client.type("\003");
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
        QVERIFY(mDaemon->calls().contains(QStringLiteral("cancelRequest %1 1").arg(account())));
        QVERIFY2(!client.output().contains("no policy"), client.output());
    }

    void aCancelledRequestHasNoOutcomeInWatch()
    {
        ClientProcess client;
        client.start({ "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        Q_EMIT mDaemon->provisionRequestFinished(mScene->accountId(), 7, -4, {}, 1);
        QVERIFY2(client.waitForOutput("RequestStatusCancelled policy: not accepted\n"), client.output());
    }

    void anAbsentDaemonIsSaidSo()
    {
        mDaemon.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "policy", "show" }), int(ExitUnavailable));
        QVERIFY2(client.errors().contains("daemon cannot be reached"), client.errors());
    }

    void watchTellsOfPoliciesInWords()
    {
        ClientProcess client;
        client.start({ "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        Q_EMIT mDaemon->policyDocumentReceived(mScene->accountId(), 7, document());
        Q_EMIT mDaemon->provisionRequestFinished(
            mScene->accountId(), 7, 0, { { 2, 3U }, { 8, false }, { 42, QStringList { "x" } } }, 3);
        QVERIFY2(client.waitForOutput("policy: accepted"), client.errors());
        const QByteArray output = client.output();
        QVERIFY2(output.contains("policyDocumentReceived " + account().toUtf8() + " 7 policies: 4"), output);
        QVERIFY2(
            output.contains("RequestStatusSuccess not met: kinds of characters in the lock code, camera, "
                            "only these applications or none of these applications policy: accepted"),
            output);
    }
};

FENNEL_REGISTER_TEST(PolicyCommandsTest)
#include "policycommandstest.moc"
