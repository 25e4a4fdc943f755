// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/syncscheduler.h"
#include "support/testmain.h"

#include <QJsonArray>
#include <QJsonObject>

/** Push is switched at the scheduler and shown as the daemon tells it. */
class PushCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    std::unique_ptr<SyncScheduler> mScheduler;

    QString account() const { return QString::number(mScene->accountId()); }
    QString switchOf(EasAccountId id, const char *state) const
    {
        return QStringLiteral("%1 fenneleas-email %2").arg(id).arg(QLatin1String(state));
    }
    static QJsonObject firstAccount(const ClientProcess &client)
    {
        return client.json().object().value(QStringLiteral("accounts")).toArray().first().toObject();
    }
    static QVariantMap someState()
    {
        return { { QStringLiteral("enabled"), true }, { QStringLiteral("heartbeat"), 480 },
            { QStringLiteral("folders"), 7 }, { QStringLiteral("lastAnswer"), 5 },
            { QStringLiteral("lastAnswerAt"), qlonglong(1714550400) },
            { QStringLiteral("nextStep"), QStringLiteral("pause") },
            { QStringLiteral("nextStepAt"), qlonglong(1714550409) } };
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
        mScheduler = std::make_unique<SyncScheduler>();
        QVERIFY(mScheduler->isRegistered());
    }
    void cleanup()
    {
        mScheduler.reset();
        mDaemon.reset();
        mScene.reset();
    }

    void theSchedulerIsToldAndTheDaemonStarted()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "push", "on" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("is on"), client.output());
        QCOMPARE(mScheduler->switches(), QStringList { switchOf(mScene->accountId(), "on") });
        // A daemon that does not run does no work; a call starts it.
        QCOMPARE(mDaemon->calls(), QStringList { QStringLiteral("pushState ") + account() });
        QCOMPARE(client.run({ "--json", "push", "off", account() }), int(ExitSuccess));
        QCOMPARE(firstAccount(client),
            QJsonObject({ { QStringLiteral("id"), account() }, { QStringLiteral("enabled"), false } }));
        QCOMPARE(mScheduler->switches().last(), switchOf(mScene->accountId(), "off"));
    }

    void allEnabledAccountsAreMeantUnlessOneIsNamed()
    {
        AccountFactory others;
        const EasAccountId second = others.create();
        const EasAccountId off = others.create();
        QVERIFY(second != 0 && others.setEnabled(off, false));
        ClientProcess client;
        QCOMPARE(client.run({ "push", "on" }), int(ExitSuccess));
        const QStringList both { switchOf(mScene->accountId(), "on"), switchOf(second, "on") };
        QCOMPARE(mScheduler->switches(), both);
        QCOMPARE(client.run({ "push", "on", QString::number(off) }), int(ExitFailure));
        QVERIFY2(client.errors().contains("is disabled"), client.errors());
        QCOMPARE(mScheduler->switches(), both);
        // What was switched on before can be switched off.
        QCOMPARE(client.run({ "--account", QString::number(off), "push", "off" }), int(ExitSuccess));
        QCOMPARE(mScheduler->switches().last(), switchOf(off, "off"));
    }

    void anAbsentSchedulerIsSaidSo()
    {
        mScheduler.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "push", "on" }), int(ExitUnavailable));
        QVERIFY2(client.errors().contains("no sync scheduler"), client.errors());
        QVERIFY(mDaemon->calls().isEmpty());
    }

    void aSchedulerThatCannotBeToldIsSaidSo()
    {
        mScheduler.reset();
        QObject silent;
        QDBusConnection bus = QDBusConnection::sessionBus();
        QVERIFY(bus.registerObject(QStringLiteral("/synchronizer"), &silent)
            && bus.registerService(QStringLiteral("com.plover.msyncd")));
        ClientProcess client;
        const int exit = client.run({ "push", "off" });
        bus.unregisterService(QStringLiteral("com.plover.msyncd"));
        bus.unregisterObject(QStringLiteral("/synchronizer"));
        QCOMPARE(exit, int(ExitFailure));
        QVERIFY2(client.errors().contains("does not let programs switch"), client.errors());
    }

    void anAbsentDaemonIsSaidSoWhenPushIsOn()
    {
        mDaemon.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "push", "on" }), int(ExitUnavailable));
        QVERIFY2(client.output().contains("is on"), client.output());
        QVERIFY2(client.errors().contains("daemon cannot be reached"), client.errors());
    }

    void theStateIsShownAsTheDaemonTellsIt()
    {
        mDaemon->setPushState(mScene->accountId(), someState());
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "push", "status" }), int(ExitSuccess));
        QVERIFY(client.json().object().value(QStringLiteral("daemonRuns")).toBool());
        const QJsonObject only = firstAccount(client);
        QCOMPARE(only.value(QStringLiteral("id")).toString(), account());
        QVERIFY(only.value(QStringLiteral("enabled")).toBool());
        QCOMPARE(only.value(QStringLiteral("heartbeat")).toInt(), 480);
        QCOMPARE(only.value(QStringLiteral("folders")).toInt(), 7);
        QCOMPARE(only.value(QStringLiteral("lastAnswer")).toInt(), 5);
        QCOMPARE(
            only.value(QStringLiteral("lastAnswerName")).toString(), QStringLiteral("heartbeat refused"));
        QCOMPARE(QDateTime::fromString(only.value(QStringLiteral("lastAnswerAt")).toString(), Qt::ISODate)
                     .toSecsSinceEpoch(),
            1714550400);
        QCOMPARE(only.value(QStringLiteral("nextStep")).toString(), QStringLiteral("pause"));
        QCOMPARE(client.run({ "push", "status" }), int(ExitSuccess));
        for (const char *word : { "heartbeat refused", "480", "ping" })
            QVERIFY2(client.output().contains(word), client.output());
    }

    void theStateFitsAnOrdinaryTerminal()
    {
        QVariantMap state = someState();
        const qlonglong now = QDateTime::currentSecsSinceEpoch();
        state[QStringLiteral("lastAnswerAt")] = now;
        state[QStringLiteral("nextStepAt")] = now;
        state[QStringLiteral("nextStep")] = QStringLiteral("ping");
        mDaemon->setPushState(mScene->accountId(), state);
        ClientProcess client(ClientProcess::OnTerminal);
        client.setColumns(80);
        QCOMPARE(client.run({ "push", "status" }), int(ExitSuccess));
        const QByteArray row = client.output().split('\n').at(1);
        const QByteArray time = QDateTime::fromSecsSinceEpoch(now).toString("HH:mm:ss").toLatin1();
        QVERIFY2(row.simplified().contains("heartbeat refused " + time + " await changes " + time), row);
    }

    void anOlderDaemonIsSaidSo()
    {
        mDaemon.reset();
        QObject older;
        QDBusConnection bus = QDBusConnection::sessionBus();
        QVERIFY(bus.registerObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME, &older)
            && bus.registerService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME));
        ClientProcess client;
        const int exit = client.run({ "push", "status" });
        bus.unregisterService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME);
        bus.unregisterObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME);
        QCOMPARE(exit, int(ExitUnavailable));
        QVERIFY2(client.errors().contains("older than this program"), client.errors());
    }

    void anAccountWithoutAnswersHasNone()
    {
        mDaemon->setPushState(mScene->accountId(),
            { { QStringLiteral("enabled"), false }, { QStringLiteral("nextStep"), QStringLiteral("off") } });
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "push", "status", account() }), int(ExitSuccess));
        const QJsonObject only = firstAccount(client);
        QVERIFY(!only.value(QStringLiteral("enabled")).toBool(true));
        for (const char *key : { "lastAnswer", "lastAnswerName", "lastAnswerAt", "nextStepAt", "heartbeat" })
            QVERIFY2(!only.contains(QLatin1String(key)), key);
    }

    void theStatusStartsNoDaemon()
    {
        mDaemon.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "push", "status" }), int(ExitSuccess));
        QVERIFY(!client.json().object().value(QStringLiteral("daemonRuns")).toBool(true));
        QVERIFY(!firstAccount(client).contains(QStringLiteral("enabled")));
        QCOMPARE(client.run({ "push", "status" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("does not run"), client.output());
    }

    void watchTellsOfPushInWords()
    {
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        QVariantMap state = someState();
        const QDateTime now = QDateTime::currentDateTime();
        state[QStringLiteral("nextStepAt")] = now.toSecsSinceEpoch();
        mDaemon->setPushState(mScene->accountId(), state);
        const QByteArray line = "pushStateChanged " + account().toUtf8()
            + " on, heartbeat 480 s, folders: 7, last answer: heartbeat refused, next: ping at "
            + now.toString("HH:mm:ss").toLatin1();
        QVERIFY2(client.waitForOutput(line), client.output());
        client.type("\003");
        QCOMPARE(client.waitForEnd(), -1);
    }

    void watchTellsOfAccountsThatComeAndGo()
    {
        ClientProcess client;
        client.start({ "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        AccountFactory others;
        const EasAccountId other = others.create();
        const QByteArray number = QByteArray::number(other) + '\n';
        QVERIFY2(client.waitForOutput("accountAdded " + number), client.errors());
        QVERIFY(others.remove(other));
        QVERIFY2(client.waitForOutput("accountRemoved " + number), client.errors());
        QVERIFY2(!client.output().contains("accountRemoved " + account().toUtf8()), client.output());
    }

    void watchTellsOfADaemonThatComesAndGoes()
    {
        ClientProcess client;
        client.start({ "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        mDaemon.reset();
        QVERIFY2(client.waitForOutput("daemonEnded\n"), client.errors());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY2(client.waitForOutput("daemonStarted\n"), client.errors());
        mDaemon->setPushState(mScene->accountId(), someState());
        QVERIFY2(client.waitForOutput("pushStateChanged"), client.errors());
    }

    void watchPrintsMapsAsDocuments()
    {
        ClientProcess client;
        client.start({ "--json", "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        mDaemon->setPushState(mScene->accountId(), someState());
        QVERIFY2(client.waitForOutput("}\n"), client.errors());
        const QJsonObject line =
            QJsonDocument::fromJson(client.output().left(client.output().indexOf('\n'))).object();
        QCOMPARE(line.value(QStringLiteral("signal")).toString(), QStringLiteral("pushStateChanged"));
        QCOMPARE(line.value(QStringLiteral("arguments"))
                     .toArray()
                     .at(1)
                     .toObject()
                     .value(QStringLiteral("heartbeat"))
                     .toInt(),
            480);
    }
};

FENNEL_REGISTER_TEST(PushCommandsTest)
#include "pushcommandstest.moc"
