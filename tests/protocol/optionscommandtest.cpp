// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/optionscommand.h"

#include "application/base/deviceinformation.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldersynccustomcommand.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr EasAccountId Account = 7;

ScriptedAnswer offer(const QByteArray &versions, const QByteArray &commands)
{
    ScriptedAnswer answer;
    if (!versions.isNull())
        answer.headers.append({ ProtocolUtils::HeaderAsProtocolVersions, versions });
    if (!commands.isNull())
        answer.headers.append({ ProtocolUtils::HeaderAsProtocolCommands, commands });
    return answer;
}

bool run(BaseProtocolCommand &command)
{
    QSignalSpy finished(&command, &BaseProtocolCommand::finished);
    command.start();
    if (finished.isEmpty() && !finished.wait())
        qWarning("the command did not finish");
    return finished.value(0).value(0).toBool();
}

} // namespace

/** The two exchanges that find out what a server offers. */
class OptionsCommandTest : public QObject
{
    Q_OBJECT

private:
    ScriptedManager *mManager = nullptr;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<ScriptedServer> mServer;

private Q_SLOTS:
    void init()
    {
        mManager = ScriptedManager::install();
        mAccount = mManager->addAccount(Account);
        mServer = std::make_unique<ScriptedServer>();
        mAccount->connection->port = mServer->port();
    }

    void cleanup()
    {
        mServer.reset();
        ScriptedManager::uninstall();
    }

    void optionsAsksWithoutQueryVersionOrPolicyKey()
    {
        mServer->answer(offer("14.1,2.5,,16.0", "Sync,,FolderSync"));
        mAccount->policy = QStringLiteral("4711");
        mAccount->refreshAuthenticationCache();
        OptionsCommand command(Account, mManager);
        QVERIFY(run(command));
        const ReceivedRequest request = mServer->requests().last();
        QCOMPARE(request.verb, QByteArray("OPTIONS"));
        QCOMPARE(request.target, QByteArray("/Microsoft-Server-ActiveSync"));
        QVERIFY(request.body.isEmpty());
        QVERIFY(!request.hasHeader("Content-Type"));
        QVERIFY(!request.hasHeader("MS-ASProtocolVersion"));
        QVERIFY(!request.hasHeader("X-MS-PolicyKey"));
        QCOMPARE(request.header("Connection"), QByteArray("Keep-Alive"));
        QCOMPARE(request.header("Host"), QByteArray("127.0.0.1"));
        QVERIFY(request.header("Authorization").startsWith("Basic "));
        QCOMPARE(request.header("User-Agent"), DeviceInformation::userAgent().toUtf8());
        QCOMPARE(command.versions(), QStringLiteral("14.1,2.5,,16.0"));
        QCOMPARE(command.supportedCommands(),
            QStringList({ QStringLiteral("Sync"), QStringLiteral("FolderSync") }));
    }

    void aReplyWithoutTheHeadersIsASuccess()
    {
        mServer->answer(ScriptedAnswer());
        OptionsCommand command(Account, mManager);
        QVERIFY(run(command));
        QVERIFY(command.versions().isEmpty());
        QVERIFY(command.supportedCommands().isEmpty());
    }

    void headersThatAreTooLongCountAsMissing()
    {
        mServer->answer(offer(QByteArray("14.1,").repeated(1000), QByteArray("Sync,").repeated(1000)));
        OptionsCommand command(Account, mManager);
        LogCollector log;
        QVERIFY(run(command));
        QVERIFY(command.versions().isEmpty());
        QVERIFY(command.supportedCommands().isEmpty());
        QVERIFY(log.contains(QtCriticalMsg, { ProtocolUtils::HeaderAsProtocolVersions, "is too long" }));
    }

    void aRedirectOfHttpIsNoOffer()
    {
        ScriptedAnswer elsewhere = offer("14.1", "Sync");
        elsewhere.status = 302;
        elsewhere.headers << qMakePair(QByteArray("Location"), QByteArray("http://127.0.0.1/"));
        mServer->answer(elsewhere);
        OptionsCommand command(Account, mManager);
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10299);
    }

    void noAnswerInTwentySecondsIsATimeout()
    {
        TestClock clock;
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        OptionsCommand command(Account, mManager);
        LogCollector log;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10004);
        QVERIFY(clock.intervals.contains(20000));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Network error: timeout") }));
    }

    void anHttpFailureIsTheStatus()
    {
        ScriptedAnswer refused;
        refused.status = 403;
        mServer->answer(refused);
        OptionsCommand command(Account, mManager);
        LogCollector log;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10201);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Network error: ") }));
    }

    void withoutAccountConnectionOrCertificateNothingIsSent_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::addColumn<QString>("text");
        QTest::newRow("no account") << QStringLiteral("account") << QStringLiteral("No account");
        QTest::newRow("no connection")
            << QStringLiteral("connection") << QStringLiteral("No connection config");
        QTest::newRow("no certificate")
            << QStringLiteral("certificate") << QStringLiteral("Problem loading certificate/key");
    }

    void withoutAccountConnectionOrCertificateNothingIsSent()
    {
        QFETCH(QString, missing);
        QFETCH(QString, text);
        OptionsCommand command(missing == QLatin1String("account") ? 99 : Account, mManager);
        if (missing == QLatin1String("connection"))
            mAccount->connection.clear();
        if (missing == QLatin1String("certificate"))
            mAccount->connection->certificatePath = QStringLiteral("/nowhere.p12");
        LogCollector log;
        QVERIFY(!run(command));
        QVERIFY(log.contains(QtCriticalMsg, { text }));
        QVERIFY(mServer->requests().isEmpty());
    }

    void theLastResortIsAFolderSyncWithKeyZeroAs120()
    {
        mServer->answer(offer("12.1", "Sync"));
        FolderSyncCustomCommand command(Account, ExchangeActiveSync::ProtocolVersion120, mManager);
        QVERIFY(run(command));
        const ReceivedRequest request = mServer->requests().last();
        QCOMPARE(request.verb, QByteArray("POST"));
        QVERIFY(request.target.contains("Cmd=FolderSync"));
        QCOMPARE(request.header("MS-ASProtocolVersion"), QByteArray("12.0"));
        // Version 1.3, public identifier 1, UTF-8, page 7: <FolderSync><SyncKey>0</SyncKey></FolderSync>
        QVERIFY(request.body.endsWith(QByteArray::fromHex("00075652033000"
                                                          "0101")));
        QCOMPARE(command.versions(), QStringLiteral("12.1"));
        QCOMPARE(command.supportedCommands(), QStringList(QStringLiteral("Sync")));
    }

    void theBodyOfTheLastResortDoesNotMatter()
    {
        ScriptedAnswer answer = offer("12.1", QByteArray());
        answer.body = "no wbxml at all";
        mServer->answer(answer);
        FolderSyncCustomCommand command(Account, ExchangeActiveSync::ProtocolVersion120, mManager);
        QVERIFY(run(command));
        QCOMPARE(command.status(), 0);
        QVERIFY(command.supportedCommands().isEmpty());
    }
};

FENNEL_REGISTER_TEST(OptionsCommandTest)
#include "optionscommandtest.moc"
