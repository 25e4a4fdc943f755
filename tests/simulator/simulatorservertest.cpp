// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

#include <chrono>
#include <future>

using namespace Simulator;

namespace {

const QString folderSync =
    QStringLiteral("<FolderSync xmlns='FolderHierarchy'><SyncKey>%1</SyncKey></FolderSync>");

} // namespace

/** @short The HTTP side: options, authentication, versions, commands, TLS, the record of requests. */
class SimulatorServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void optionsAnnounceTheChosenVersionsAndCommands()
    {
        ExchangeServer server;
        server.setVersions({ QStringLiteral("12.0"), QStringLiteral("14.1") });
        server.setCommands({ QStringLiteral("Sync"), QStringLiteral("FolderSync") });
        QVERIFY(server.start());
        SimulatorClient client(server);
        const PlainReply reply = client.options();
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.header("MS-ASProtocolVersions"), QByteArray("12.0,14.1"));
        QCOMPARE(reply.header("MS-ASProtocolCommands"), QByteArray("Sync,FolderSync"));
    }

    void aWrongPasswordIsRefused()
    {
        ExchangeServer server;
        server.addUser(QStringLiteral("ann"), QStringLiteral("right"));
        QVERIFY(server.start());
        SimulatorClient client(server);
        client.setCredentials(QStringLiteral("ann"), QStringLiteral("wrong"));
        QCOMPARE(client.options().status, 401);
        client.setCredentials(QStringLiteral("domain\\ann"), QStringLiteral("right"));
        QCOMPARE(client.options().status, 200);
    }

    void aVersionOrCommandThatIsNotAnnouncedIsRefused()
    {
        ExchangeServer server;
        server.setVersions({ QStringLiteral("14.1") });
        server.setCommands({ QStringLiteral("FolderSync") });
        QVERIFY(server.start());
        SimulatorClient client(server, QStringLiteral("12.1"));
        QCOMPARE(client.post(QStringLiteral("FolderSync"), folderSync.arg(0)).status, 400);
        QCOMPARE(server.failures().size(), 1);
        client.setVersion(QStringLiteral("14.1"));
        QCOMPARE(client.post(QStringLiteral("FolderSync"), folderSync.arg(0)).status, 200);
        QCOMPARE(client
                     .post(QStringLiteral("Sync"),
                         SimulatorClient::syncXml(QStringLiteral("1"), QStringLiteral("0")))
                     .status,
            501);
    }

    void theSameOverTls()
    {
        ExchangeServer server;
        QVERIFY(server.start(ExchangeServer::Https));
        QCOMPARE(server.url().scheme(), QStringLiteral("https"));
        SimulatorClient client(server);
        QCOMPARE(client.options().status, 200);
        QCOMPARE(client.post(QStringLiteral("FolderSync"), folderSync.arg(0))
                     .document.text(QStringLiteral("Status")),
            QStringLiteral("1"));
    }

    void requestsAreRecordedAndSignalledWithBothSides()
    {
        ExchangeServer server;
        QVERIFY(server.start());
        QSignalSpy received(&server, &ExchangeServer::requestReceived);
        QSignalSpy replied(&server, &ExchangeServer::replied);
        SimulatorClient client(server);
        client.post(QStringLiteral("FolderSync"), folderSync.arg(0));
        QTRY_COMPARE(replied.size(), 1);
        QCOMPARE(received.size(), 1);
        const RecordedRequest request = server.requests(QStringLiteral("FolderSync")).value(0);
        QCOMPARE(request.verb, QStringLiteral("POST"));
        QCOMPARE(request.user, QStringLiteral("user"));
        QCOMPARE(request.deviceId, QStringLiteral("device1"));
        QCOMPARE(request.version, 0x1401);
        QCOMPARE(request.document.text(QStringLiteral("SyncKey")), QStringLiteral("0"));
        QCOMPARE(request.replyStatus, 200);
        QCOMPARE(request.replyDocument.text(QStringLiteral("Status")), QStringLiteral("1"));
        const QByteArray secret = QByteArray("user:secret").toBase64();
        QVERIFY(request.header("Authorization").contains(secret));
        QVERIFY(!request.dump().contains(QString::fromLatin1(secret)));
    }

    void aMailboxIsFoundWhileACommandIsCarriedOut()
    {
        ExchangeServer server;
        QVERIFY(server.start());
        std::future<Mailbox *> lookUp;
        bool isFound = false;
        server.overrideNext(QStringLiteral("FolderSync"), Override::edited([&](WbxmlNode &) {
            lookUp = std::async(std::launch::async, [&server] { return &server.mailbox(); });
            isFound = lookUp.wait_for(std::chrono::minutes(1)) == std::future_status::ready;
        }));
        SimulatorClient client(server);
        client.post(QStringLiteral("FolderSync"), folderSync.arg(0));
        QVERIFY(isFound);
        QCOMPARE(lookUp.get(), &server.mailbox());
    }

    void itListensAgainOnTheSamePortWithItsStateKept()
    {
        ExchangeServer server;
        QVERIFY(server.start());
        const quint16 port = server.port();
        SimulatorClient client(server);
        const QString key = client.post(QStringLiteral("FolderSync"), folderSync.arg(0))
                                .document.text(QStringLiteral("SyncKey"));
        server.stop();
        QVERIFY(!server.isListening());
        QVERIFY(server.start(ExchangeServer::Http, port));
        QCOMPARE(server.port(), port);
        const PlainReply reply = client.post(QStringLiteral("FolderSync"), folderSync.arg(key));
        QCOMPARE(reply.document.text(QStringLiteral("Changes/Count")), QStringLiteral("0"));
    }
};

FENNEL_REGISTER_TEST(SimulatorServerTest)
#include "simulatorservertest.moc"
