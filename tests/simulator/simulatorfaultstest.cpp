// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"

#include "simulator/wbxmlcodec.h"
#include "support/testmain.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include <vector>

using namespace Simulator;

namespace {

const QString folderSync =
    QStringLiteral("<FolderSync xmlns='FolderHierarchy'><SyncKey>0</SyncKey></FolderSync>");

} // namespace

/** @short What a test can make the server do: dialogues, statuses, HTTP answers, faults of the line. */
class SimulatorFaultsTest : public QObject
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

    void aDialogueIsPlayedToTheLetter()
    {
        mServer->expect(QStringLiteral("FolderSync"))
            .withText(QStringLiteral("SyncKey"), QStringLiteral("0"))
            .reply(QStringLiteral(
                "<FolderSync xmlns='FolderHierarchy'><Status>1</Status><SyncKey>a</SyncKey></FolderSync>"));
        mServer->expect(QStringLiteral("FolderSync")).withBody(folderSync).asServer();
        mServer->expect(QStringLiteral("FolderSync")).drop();
        mServer->expect(QStringLiteral("FolderSync")).status(503, { { "Retry-After", "7" } });
        QCOMPARE(send().document.text(QStringLiteral("SyncKey")), QStringLiteral("a"));
        QVERIFY(send().document.has(QStringLiteral("Changes")));
        QCOMPARE(mServer->remainingSteps(), 2);
        const PlainReply dropped = send();
        QCOMPARE(dropped.error, QNetworkReply::RemoteHostClosedError);
        QCOMPARE(dropped.body, QByteArray());
        const PlainReply busy = send();
        QCOMPARE(busy.status, 503);
        QCOMPARE(busy.header("Retry-After"), QByteArray("7"));
        QCOMPARE(mServer->finish(), QStringList());
    }

    void oneRequestMoreThanTheScriptHoldsIsAFailure()
    {
        mServer->expect(QStringLiteral("FolderSync"));
        send();
        QCOMPARE(mServer->failures(), QStringList());
        QCOMPARE(send().status, 500);
        QCOMPARE(mServer->failures().size(), 1);
        QVERIFY(mServer->failures().first().contains(QLatin1String("one request more")));
    }

    void aStepThatIsNotReachedIsAFailureAtTheEnd()
    {
        mServer->expect(QStringLiteral("Sync"));
        QCOMPARE(mServer->failures(), QStringList());
        QCOMPARE(mServer->finish(), QStringList { QStringLiteral("the client never sent Sync") });
    }

    void anotherRequestThanExpectedIsAFailure_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("complaint");
        QTest::newRow("another command") << "Sync"
                                         << "0"
                                         << "wanted \"Sync\", got \"FolderSync\"";
        QTest::newRow("another text") << "FolderSync"
                                      << "9"
                                      << "wanted \"9\", got \"0\"";
    }

    void anotherRequestThanExpectedIsAFailure()
    {
        QFETCH(QString, command);
        QFETCH(QString, key);
        QFETCH(QString, complaint);
        mServer->expect(command).withText(QStringLiteral("SyncKey"), key);
        QCOMPARE(send().status, 500);
        QVERIFY2(mServer->failures().value(0).contains(complaint), qPrintable(mServer->failures().value(0)));
    }

    void someCommandsCanGoPastTheDialogue()
    {
        mServer->letThrough({ QStringLiteral("OPTIONS") });
        mServer->expect(QStringLiteral("FolderSync"));
        QCOMPARE(mClient->options().status, 200);
        QCOMPARE(send().status, 200);
        QCOMPARE(mServer->finish(), QStringList());
    }

    void matchersNameWhatIsWrong()
    {
        mServer->expect(QStringLiteral("FolderSync"))
            .with(Matchers::header("MS-ASProtocolVersion", "14.1"))
            .with(Matchers::queryItem(QStringLiteral("DeviceId"), QStringLiteral("device1")))
            .with(Matchers::has(QStringLiteral("SyncKey")))
            .with(Matchers::hasNot(QStringLiteral("Status")));
        QCOMPARE(send().status, 200);
        mServer->expect(QStringLiteral("FolderSync")).with(Matchers::has(QStringLiteral("Status")));
        send();
        QVERIFY(mServer->failures().value(0).contains(QLatin1String("Status is missing")));
    }

    void anyHttpStatusCanBeAnswered_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : { 400, 401, 403, 404, 449, 451, 500, 501, 503, 507 })
            QTest::newRow(qPrintable(QString::number(status))) << status;
    }

    void anyHttpStatusCanBeAnswered()
    {
        QFETCH(int, status);
        mServer->overrideNext(
            QStringLiteral("FolderSync"), Override::httpStatus(status, { { "X-Test", "yes" } }));
        const PlainReply reply = send();
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.header("X-Test"), QByteArray("yes"));
        QCOMPARE(send().status, 200);
    }

    void aRedirectCarriesItsLocation()
    {
        const QUrl location(QStringLiteral("https://other.example.com/Microsoft-Server-ActiveSync"));
        mServer->overrideNext(QStringLiteral("OPTIONS"), Override::redirect(location));
        const PlainReply reply = mClient->options();
        QCOMPARE(reply.status, 451);
        QCOMPARE(reply.header("X-MS-Location"), location.toEncoded());
    }

    void statusesCanBeGivenAtEachLevel()
    {
        const QString inbox = mServer->mailbox().inboxId();
        const QString id = mServer->mailbox().deliver(inbox, sampleMessage(QStringLiteral("1")));
        const QString key = mClient->firstKey(inbox);
        mServer->overrideNext(QStringLiteral("Sync"), Override::topStatus(5));
        const QString xml = SimulatorClient::syncXml(inbox, key);
        QCOMPARE(mClient->post(QStringLiteral("Sync"), xml).document.text(QStringLiteral("Status")),
            QStringLiteral("5"));
        mServer->overrideNext(QStringLiteral("Sync"), Override::collectionStatus(8, inbox));
        QCOMPARE(mClient->sync(inbox, key).text(QStringLiteral("Status")), QStringLiteral("8"));
        const QString next = mClient->sync(inbox, key).text(QStringLiteral("SyncKey"));
        mServer->overrideNext(QStringLiteral("Sync"), Override::itemStatus(9, id));
        const QString change = QStringLiteral("<Commands><Change><ServerId>%1</ServerId><ApplicationData>"
                                              "<e:Read>1</e:Read></ApplicationData></Change></Commands>")
                                   .arg(id);
        const WbxmlNode reply = mClient->sync(inbox, next, change);
        QCOMPARE(reply.text(QStringLiteral("Responses/Change/Status")), QStringLiteral("9"));
        QCOMPARE(mServer->mailbox().item(id)->state().value(QStringLiteral("Read")), QByteArray("0"));
    }

    void theServersOwnAnswerCanBeChanged()
    {
        mServer->overrideNext(QStringLiteral("FolderSync"), Override::edited([](WbxmlNode &root) {
            root.find(QStringLiteral("SyncKey"))->setText(QStringLiteral("other"));
        }));
        QCOMPARE(send().document.text(QStringLiteral("SyncKey")), QStringLiteral("other"));
    }

    void aLateReplyWaitsForTheGate()
    {
        const GatePtr gate = std::make_shared<Gate>();
        mServer->overrideNext(QStringLiteral("FolderSync"), Override().holdUntil(gate));
        QSignalSpy received(mServer.get(), &ExchangeServer::requestReceived);
        QSignalSpy replied(mServer.get(), &ExchangeServer::replied);
        QNetworkReply *reply = mClient->send(QStringLiteral("FolderSync"), folderSync);
        QVERIFY(received.wait());
        QVERIFY(!reply->isFinished());
        QCOMPARE(replied.size(), 0);
        gate->open();
        QCOMPARE(SimulatorClient::finished(reply).status, 200);
    }

    void clientsThatAreHeldBackHoldUpNoOthers()
    {
        const GatePtr gate = std::make_shared<Gate>();
        mServer->overrideAll(QStringLiteral("FolderSync"), Override().holdUntil(gate));
        QSignalSpy received(mServer.get(), &ExchangeServer::requestReceived);
        std::vector<std::unique_ptr<SimulatorClient>> clients;
        std::vector<QNetworkReply *> replies;
        for (int i = 0; i < 100; ++i) {
            clients.push_back(std::make_unique<SimulatorClient>(*mServer));
            replies.push_back(clients.back()->send(QStringLiteral("FolderSync"), folderSync));
        }
        QTRY_COMPARE_WITH_TIMEOUT(received.size(), 100, 30000);
        gate->open();
        for (QNetworkReply *reply : replies)
            QCOMPARE(SimulatorClient::finished(reply).status, 200);
    }

    void aDelayTakesItsTime()
    {
        QElapsedTimer timer;
        timer.start();
        mServer->overrideNext(QStringLiteral("FolderSync"), Override().delay(150));
        QCOMPARE(send().status, 200);
        QVERIFY(timer.elapsed() >= 150);
    }

    void aTruncatedReplyEndsAtItsByte_data()
    {
        QTest::addColumn<int>("bytes");
        QTest::newRow("before the first byte") << 0;
        QTest::newRow("after one byte") << 1;
        QTest::newRow("in the middle") << 100;
    }

    void aTruncatedReplyEndsAtItsByte()
    {
        QFETCH(int, bytes);
        mServer->overrideNext(QStringLiteral("FolderSync"), Override().truncateAt(bytes));
        const PlainReply reply = send();
        QCOMPARE(reply.error, QNetworkReply::RemoteHostClosedError);
        QCOMPARE(reply.body.size(), bytes);
        QCOMPARE(reply.header("Content-Length").toInt(), mServer->requests().last().replyBody.size());
    }

    void aReplyDripsByteByByte()
    {
        mServer->overrideNext(QStringLiteral("FolderSync"), Override::bytes("abcdef", "text/plain").drip(60));
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(send().body, QByteArray("abcdef"));
        QVERIFY(timer.elapsed() >= 90);
    }

    void anEndlessReplyGoesOnUntilTheClientHasEnough()
    {
        mServer->overrideNext(QStringLiteral("FolderSync"), Override().endless());
        QNetworkReply *reply = mClient->send(QStringLiteral("FolderSync"), folderSync);
        QTRY_VERIFY(reply->bytesAvailable() > 200000);
        QVERIFY(!reply->isFinished());
        reply->abort();
        reply->deleteLater();
        QCOMPARE(send().status, 200);
    }

    void aLengthCanBeTooLargeOrTooSmall()
    {
        mServer->overrideNext(
            QStringLiteral("FolderSync"), Override::bytes("abcdef", "text/plain").falseLength(100));
        PlainReply reply = send();
        QCOMPARE(reply.error, QNetworkReply::RemoteHostClosedError);
        QCOMPARE(reply.body, QByteArray("abcdef"));
        mServer->overrideNext(
            QStringLiteral("FolderSync"), Override::bytes("abcdef", "text/plain").falseLength(3));
        reply = send();
        QCOMPARE(reply.header("Content-Length"), QByteArray("3"));
        QCOMPARE(reply.body, QByteArray("abc"));
        QCOMPARE(send().status, 200);
    }

    void aHangingRequestGetsNoAnswerAndDoesNotKeepTheServerFromStopping()
    {
        mServer->overrideNext(QStringLiteral("FolderSync"), Override::hang());
        QSignalSpy received(mServer.get(), &ExchangeServer::requestReceived);
        QNetworkReply *reply = mClient->send(QStringLiteral("FolderSync"), folderSync);
        QVERIFY(received.wait());
        QVERIFY(!reply->isFinished());
        QCOMPARE(mServer->requests().last().replyStatus, 0);
        mServer->stop();
        const PlainReply dropped = SimulatorClient::finished(reply);
        QCOMPARE(dropped.status, 0);
    }

    void aLineThatDropsSilentlyGivesNotOneByte()
    {
        mServer->overrideAll(QStringLiteral("FolderSync"), Override::dropSilently());
        const PlainReply reply = send();
        QCOMPARE(reply.error, QNetworkReply::RemoteHostClosedError);
        QCOMPARE(reply.status, 0);
        // The client library tries again by itself.
        QVERIFY(mServer->requests().size() > 1);
    }

    void overridesCanHoldForAllRequests()
    {
        mServer->overrideAll(QString(), Override::httpStatus(403));
        QCOMPARE(send().status, 403);
        QCOMPARE(mClient->options().status, 403);
        mServer->clearScript();
        QCOMPARE(send().status, 200);
    }

    void overTlsTheLineDropsAsWell()
    {
        ExchangeServer server;
        QVERIFY(server.start(ExchangeServer::Https));
        SimulatorClient client(server);
        server.overrideNext(QStringLiteral("FolderSync"), Override::drop());
        QCOMPARE(client.post(QStringLiteral("FolderSync"), folderSync).error,
            QNetworkReply::RemoteHostClosedError);
        server.overrideNext(QStringLiteral("FolderSync"), Override().truncateAt(10));
        QCOMPARE(client.post(QStringLiteral("FolderSync"), folderSync).body.size(), 10);
        QCOMPARE(client.post(QStringLiteral("FolderSync"), folderSync).status, 200);
    }

private:
    PlainReply send() { return mClient->post(QStringLiteral("FolderSync"), folderSync); }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
};

FENNEL_REGISTER_TEST(SimulatorFaultsTest)
#include "simulatorfaultstest.moc"
