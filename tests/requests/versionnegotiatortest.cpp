// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/versionnegotiator.h"

#include "protocol/base/protocolutils.h"
#include "support/bearer.h"
#include "support/logcollector.h"
#include "support/probes.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr EasAccountId Account = 7;
constexpr qulonglong Id = 42;

ScriptedAnswer offer(const QByteArray &versions, const QByteArray &commands)
{
    ScriptedAnswer answer;
    answer.headers = { { ProtocolUtils::HeaderAsProtocolVersions, versions },
        { ProtocolUtils::HeaderAsProtocolCommands, commands } };
    if (commands.isNull())
        answer.headers.removeLast();
    return answer;
}

ScriptedAnswer refusal(int status)
{
    ScriptedAnswer answer;
    answer.status = status;
    return answer;
}

QStringList texts(const char *joined)
{
    return QString::fromLatin1(joined).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

/** How an account comes by its protocol version and commands. */
class VersionNegotiatorTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestClock> mClock;
    ScriptedManager *mManager = nullptr;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<ScriptedServer> mServer;

    bool negotiate(VersionNegotiator &negotiator) const
    {
        QSignalSpy finished(&negotiator, &VersionNegotiator::finished);
        negotiator.start();
        if (finished.isEmpty() && !finished.wait())
            qWarning("the negotiation did not finish");
        return finished.value(0).value(0).toBool();
    }
    /** Runs a request through the negotiation until it started or ended. */
    void run(ProbeRequest &request) const
    {
        request.start();
        QTRY_VERIFY(request.starts > 0 || request.hasEnded());
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(Bearer::connectNetwork());
        mClock = std::make_unique<TestClock>();
        mClock->heldFrom = 20000;
        mManager = ScriptedManager::install();
        mAccount = mManager->addAccount(Account);
        mServer = std::make_unique<ScriptedServer>();
        mAccount->connection->port = mServer->port();
        QTRY_COMPARE(mManager->networkSession(Account)->state(), QNetworkSession::Connected);
    }

    void cleanup()
    {
        QCOMPARE(mServer->unexpected(), 0);
        mServer.reset();
        ScriptedManager::uninstall();
        mClock.reset();
    }

    void knownVersionsAreTakenInTheServersOrder()
    {
        mServer->answer(offer("14.1,2.5,,16.0", "Sync,FolderSync"));
        ProbeRequest request(Account, Id, mManager);
        run(request);
        QCOMPARE(request.starts, 1);
        QCOMPARE(mAccount->protocolVersion(), ExchangeActiveSync::ProtocolVersion160);
        QCOMPARE(mAccount->supportedCommands(), texts("Sync,FolderSync"));
        QCOMPARE(mAccount->knownVersions, texts("14.1,2.5,16.0"));
        QCOMPARE(mAccount->knownCommands, texts("Sync,FolderSync"));
    }

    void theNegotiatorListsWhatItKnows()
    {
        mServer->answer(offer("14.1,2.5,,16.0", "Sync"));
        VersionNegotiator negotiator(Account, mManager);
        LogCollector log;
        QVERIFY(negotiate(negotiator));
        const QList<ExchangeActiveSync::ProtocolVersion> wanted { ExchangeActiveSync::ProtocolVersion141,
            ExchangeActiveSync::ProtocolVersion160 };
        QCOMPARE(negotiator.versions(), wanted);
        QVERIFY(log.contains(QStringLiteral("Starting version negotiation")));
        QVERIFY(log.contains(QStringLiteral("version negotiation with OPTIONS finished, success: true")));
    }

    void theChoiceOfAVersion_data()
    {
        QTest::addColumn<QByteArray>("offered");
        QTest::addColumn<int>("preferred");
        QTest::addColumn<int>("choice");
        QTest::newRow("the best one, whatever the order") << QByteArray("12.0,16.1,14.0") << 0 << 0x1601;
        QTest::newRow("the preferred one if it is offered")
            << QByteArray("12.0,14.0,16.1") << 0x1400 << 0x1400;
        QTest::newRow("the best one if the preferred one is not offered")
            << QByteArray("12.0,14.1") << 0x1400 << 0x1401;
        QTest::newRow("the only one") << QByteArray("12.1") << 0 << 0x1201;
        QTest::newRow("12.0") << QByteArray("2.5,12.0") << 0 << 0x1200;
    }

    void theChoiceOfAVersion()
    {
        QFETCH(QByteArray, offered);
        QFETCH(int, preferred);
        QFETCH(int, choice);
        mAccount->preferredVersion = static_cast<ExchangeActiveSync::ProtocolVersion>(preferred);
        mServer->answer(offer(offered, "Sync"));
        LogCollector log;
        ProbeRequest request(Account, Id, mManager);
        run(request);
        QCOMPARE(int(mAccount->protocolVersion()), choice);
        QVERIFY(log.contains(QStringLiteral("Versions:")));
        QVERIFY(log.contains(QStringLiteral("Preferred protocol version:")));
        QVERIFY(log.contains(QStringLiteral("Supported commands:")));
    }

    void aServerOfOldVersionsAloneIsRefused_data()
    {
        QTest::addColumn<QByteArray>("offered");
        QTest::newRow("below 12.0") << QByteArray("1.0,2.0,2.5");
        QTest::newRow("unknown") << QByteArray("17.0");
    }

    void aServerOfOldVersionsAloneIsRefused()
    {
        QFETCH(QByteArray, offered);
        mServer->answer(offer(offered, "Sync"));
        ProbeRequest request(Account, Id, mManager);
        run(request);
        QCOMPARE(request.starts, 0);
        QCOMPARE(request.status(), -1);
    }

    void withoutACommandHeaderTheKnownListStays()
    {
        mAccount->setSupportedCommands(texts("Sync"));
        mAccount->knownCommands = texts("Sync");
        mServer->answer(offer("14.1", QByteArray()));
        ProbeRequest request(Account, Id, mManager);
        run(request);
        QCOMPARE(request.starts, 1);
        QCOMPARE(mAccount->supportedCommands(), texts("Sync"));
        QCOMPARE(mAccount->knownCommands, texts("Sync"));
        QCOMPARE(mAccount->protocolVersion(), ExchangeActiveSync::ProtocolVersion141);
    }

    void aFailedOptionsGoesOnWithTheCache()
    {
        mAccount->knownVersions = texts("16.0,12.1,14.1");
        mAccount->knownCommands = texts("Sync,Ping");
        mServer->answer(refusal(500));
        VersionNegotiator negotiator(Account, mManager);
        LogCollector log;
        QVERIFY(negotiate(negotiator));
        const QList<ExchangeActiveSync::ProtocolVersion> wanted { ExchangeActiveSync::ProtocolVersion160,
            ExchangeActiveSync::ProtocolVersion121, ExchangeActiveSync::ProtocolVersion141 };
        QCOMPARE(negotiator.versions(), wanted);
        QCOMPARE(negotiator.supportedCommands(), texts("Sync,Ping"));
        QCOMPARE(mAccount->knownVersions, texts("16.0,12.1,14.1"));
        QVERIFY(log.contains(QStringLiteral("Using cached version data")));
        QVERIFY(log.contains(QStringLiteral("Using cached supported commands")));
        QCOMPARE(mServer->requests().size(), 1);
    }

    void cachedVersionsWithoutCommandsAreGuessed()
    {
        mAccount->knownVersions = texts("14.1");
        mServer->answer(refusal(500));
        VersionNegotiator negotiator(Account, mManager);
        LogCollector log;
        QVERIFY(negotiate(negotiator));
        QCOMPARE(negotiator.supportedCommands(),
            texts("ItemOperations,Sync,FolderCreate,FolderDelete,FolderSync,FolderUpdate,GetAttachment,"
                  "MoveItems,"
                  "SendMail,MeetingResponse,SmartReply,SmartForward,Provision,Ping,Search"));
        QVERIFY(mAccount->knownCommands.isEmpty());
        QVERIFY(log.contains(QStringLiteral("- no supported commands cached, guessing.")));
    }

    void aTimeoutOfOptionsGoesOnWithTheCache()
    {
        mClock->heldFrom = 20001;
        mAccount->knownVersions = texts("14.1");
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        VersionNegotiator negotiator(Account, mManager);
        QVERIFY(negotiate(negotiator));
        QCOMPARE(negotiator.status(), 10004);
        QVERIFY(mClock->intervals.contains(20000));
    }

    void withoutACacheTheLastResortIsAFolderSync()
    {
        mServer->answer(refusal(500));
        mServer->answer(offer("12.1,14.1", "Sync,Find"));
        ProbeRequest request(Account, Id, mManager);
        LogCollector log;
        run(request);
        QCOMPARE(request.starts, 1);
        QCOMPARE(mAccount->protocolVersion(), ExchangeActiveSync::ProtocolVersion141);
        QCOMPARE(mAccount->knownVersions, texts("12.1,14.1"));
        QCOMPARE(mAccount->knownCommands, texts("Sync,Find"));
        QCOMPARE(mServer->requests().last().header("MS-ASProtocolVersion"), QByteArray("12.0"));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("For last resort on version negotiation trying custom folder sync") }));
        QVERIFY(log.contains(QStringLiteral("version negotiation with FolderSync finished, success: true")));
        QVERIFY(log.contains(QStringLiteral("Supported versions:")));
    }

    void theLastResortRemembersEvenAGuess()
    {
        mServer->answer(refusal(500));
        mServer->answer(offer("14.1", QByteArray()));
        VersionNegotiator negotiator(Account, mManager);
        LogCollector log;
        QVERIFY(negotiate(negotiator));
        QCOMPARE(negotiator.supportedCommands().size(), 15);
        QCOMPARE(mAccount->knownCommands, negotiator.supportedCommands());
        QVERIFY(!mAccount->knownCommands.contains(QStringLiteral("Settings")));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("FolderSync didn't return supported commands, guessing them.") }));
    }

    void aServerThatWantsToBeProvisionedFirstHasAVersion_data()
    {
        QTest::addColumn<QByteArray>("offered");
        QTest::addColumn<int>("choice");
        QTest::newRow("it tells them") << QByteArray("12.0,12.1") << 0x1201;
        QTest::newRow("it tells none: that of the command") << QByteArray() << 0x1200;
    }

    void aServerThatWantsToBeProvisionedFirstHasAVersion()
    {
        QFETCH(QByteArray, offered);
        QFETCH(int, choice);
        ScriptedAnswer demand = offered.isEmpty() ? ScriptedAnswer() : offer(offered, "Sync,Provision");
        demand.status = 449;
        mServer->answer(refusal(500));
        mServer->answer(demand);
        ProbeRequest request(Account, Id, mManager);
        run(request);
        QCOMPARE(request.starts, 1);
        QCOMPARE(int(mAccount->protocolVersion()), choice);
        QVERIFY(mAccount->commandIsSupported(QStringLiteral("Provision")));
    }

    void aServerThatHasMovedIsNoDemand()
    {
        ScriptedAnswer moved = refusal(449);
        moved.headers = { { ProtocolUtils::HeaderXMSLocation, "ftp://example.com/" } };
        mServer->answer(refusal(500));
        mServer->answer(moved);
        ProbeRequest request(Account, Id, mManager);
        run(request);
        QCOMPARE(request.starts, 0);
        QCOMPARE(request.status(), 10299);
    }

    void whenAllSourcesFailTheClientSeesTheLastStatus()
    {
        mServer->answer(refusal(500));
        mServer->answer(refusal(403));
        ProbeRequest request(Account, Id, mManager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        run(request);
        QCOMPARE(request.status(), 10201);
        QCOMPARE(completed.count(), 1);
        QCOMPARE(request.starts, 0);
    }

    void sourcesThatCannotEvenBeAskedAreNoSuccess()
    {
        mAccount->connection->certificatePath = QStringLiteral("/nowhere/certificate.p12");
        ProbeRequest request(Account, Id, mManager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        run(request);
        QCOMPARE(request.status(), -2);
        QVERIFY(!request.successfullyFinished());
        QCOMPARE(completed.count(), 1);
        QCOMPARE(request.starts, 0);
        QVERIFY(mServer->requests().isEmpty());
    }

    void aRunningNegotiatorDoesNotStartAgain()
    {
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        VersionNegotiator negotiator(Account, mManager);
        negotiator.start();
        LogCollector log;
        negotiator.start();
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Version negotiator started while running") }));
        negotiator.stop();
    }

    void aStoppedNegotiatorIsSilentAndIdle_data()
    {
        QTest::addColumn<bool>("inFolderSync");
        QTest::newRow("while OPTIONS runs") << false;
        QTest::newRow("while the FolderSync runs") << true;
    }

    void aStoppedNegotiatorIsSilentAndIdle()
    {
        QFETCH(bool, inFolderSync);
        ScriptedAnswer hang;
        hang.hang = true;
        if (inFolderSync)
            mServer->answer(refusal(500));
        mServer->answer(hang);
        VersionNegotiator negotiator(Account, mManager);
        QSignalSpy finished(&negotiator, &VersionNegotiator::finished);
        negotiator.start();
        QTRY_COMPARE(mServer->requests().size(), inFolderSync ? 2 : 1);
        negotiator.stop();
        QCOMPARE(finished.count(), 0);
        QCOMPARE(negotiator.status(), 10005);
        mServer->answer(offer("14.1", "Sync"));
        QVERIFY(negotiate(negotiator));
    }

    void aVersionOnceKnownIsNotNegotiatedAgain()
    {
        mServer->answer(offer("14.1", "Sync"));
        ProbeRequest first(Account, Id, mManager);
        run(first);
        ProbeRequest second(Account, Id + 1, mManager);
        run(second);
        QCOMPARE(second.starts, 1);
        QCOMPARE(mServer->requests().size(), 1);
    }

    void anAccountThatVanishesMeanwhileCancelsItsRequest()
    {
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        auto *const request = new ProbeRequest(Account, Id, mManager);
        QSignalSpy finished(mManager, &RequestManager::requestFinished);
        mManager->processNewRequest(request);
        QTRY_COMPARE(mServer->requests().size(), 1);
        mManager->storage->remove(Account);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().at(2).toInt(), -4);
        QCOMPARE(request->starts, 0);
    }
};

FENNEL_REGISTER_TEST(VersionNegotiatorTest)
#include "versionnegotiatortest.moc"
