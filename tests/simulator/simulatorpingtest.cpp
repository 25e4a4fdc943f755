// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QtTest>

using namespace Simulator;

/** @short Ping: what is answered at once, what waits, and what wakes it. */
class SimulatorPingTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mInbox;
    QString mKey;

    static QString pingXml(int heartbeat, const QStringList &folders)
    {
        QString list;
        for (const QString &id : folders)
            list += QStringLiteral("<Folder><Id>%1</Id><Class>Email</Class></Folder>").arg(id);
        return QStringLiteral("<Ping xmlns=\"Ping\">%1%2</Ping>")
            .arg(heartbeat > 0 ? QStringLiteral("<HeartbeatInterval>%1</HeartbeatInterval>").arg(heartbeat)
                               : QString(),
                list.isEmpty() ? QString() : QStringLiteral("<Folders>%1</Folders>").arg(list));
    }

    WbxmlNode ping(int heartbeat, const QStringList &folders)
    {
        return mClient->post(QStringLiteral("Ping"), pingXml(heartbeat, folders)).document;
    }

    QNetworkReply *waitingPing(int heartbeat = 300)
    {
        const int before = mServer->requests(QStringLiteral("Ping")).size();
        QNetworkReply *const reply = mClient->send(QStringLiteral("Ping"), pingXml(heartbeat, { mInbox }));
        const auto hasCome = [this, before] {
            return mServer->requests(QStringLiteral("Ping")).size() > before;
        };
        return Waiting::until(hasCome, 60000) ? reply : nullptr;
    }

    QString status(const WbxmlNode &reply) { return reply.text(QStringLiteral("Status")); }

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mInbox = mServer->mailbox().inboxId();
        mClient->post(QStringLiteral("FolderSync"),
            QStringLiteral("<FolderSync xmlns=\"FolderHierarchy\"><SyncKey>0</SyncKey></FolderSync>"));
        mKey = mClient->firstKey(mInbox);
    }

    void cleanup()
    {
        mClient.reset();
        mServer.reset();
    }

    void aChangeBeforeThePingAnswersItAtOnce()
    {
        mServer->mailbox().deliver(mInbox, sampleMessage(QStringLiteral("early")));
        const WbxmlNode reply = ping(300, { mInbox });
        QCOMPARE(status(reply), QStringLiteral("2"));
        QCOMPARE(reply.text(QStringLiteral("Folders/Folder")), mInbox);
    }

    void aChangeWakesIt()
    {
        QNetworkReply *const reply = waitingPing();
        QVERIFY(reply);
        mServer->mailbox().deliver(mInbox, sampleMessage(QStringLiteral("late")));
        const WbxmlNode document = SimulatorClient::finished(reply).document;
        QCOMPARE(status(document), QStringLiteral("2"));
        QCOMPARE(document.all(QStringLiteral("Folders/Folder")).size(), 1);
    }

    void aChangeElsewhereDoesNot()
    {
        QNetworkReply *const reply = waitingPing();
        QVERIFY(reply);
        mServer->mailbox().deliver(
            mServer->mailbox().folderOfType(DraftsFolder).id, sampleMessage(QStringLiteral("elsewhere")));
        mServer->expirePings();
        QCOMPARE(status(SimulatorClient::finished(reply).document), QStringLiteral("1"));
    }

    void otherCommandsGoOnMeanwhile()
    {
        QNetworkReply *const reply = waitingPing();
        QVERIFY(reply);
        mServer->mailbox().deliver(
            mServer->mailbox().folderOfType(DraftsFolder).id, sampleMessage(QStringLiteral("draft")));
        QCOMPARE(status(mClient->sync(mInbox, mKey)), QString()); // nothing new: an empty reply
        QVERIFY(!reply->isFinished());
        mServer->expirePings();
        QCOMPARE(status(SimulatorClient::finished(reply).document), QStringLiteral("1"));
    }

    void whatTheDeviceItselfChangedIsNoNews()
    {
        const QString id = mServer->mailbox().deliver(mInbox, sampleMessage(QStringLiteral("read here")));
        const WbxmlNode added = mClient->sync(mInbox, mKey);
        const QString key = added.text(QStringLiteral("SyncKey"));
        mClient->sync(mInbox, key,
            QStringLiteral("<Commands><Change><ServerId>%1</ServerId><ApplicationData>"
                           "<Read xmlns=\"Email\">1</Read></ApplicationData></Change></Commands>")
                .arg(id));
        QNetworkReply *const reply = waitingPing();
        QVERIFY(reply);
        mServer->expirePings();
        QCOMPARE(status(SimulatorClient::finished(reply).document), QStringLiteral("1"));
    }

    void aChangeOfTheFoldersEndsIt()
    {
        QNetworkReply *const reply = waitingPing();
        QVERIFY(reply);
        mServer->mailbox().addFolder(QStringLiteral("New"));
        QCOMPARE(status(SimulatorClient::finished(reply).document), QStringLiteral("7"));
    }

    void aHeartbeatOutOfRangeIsRefusedWithTheNearestOne()
    {
        WbxmlNode reply = ping(10, { mInbox });
        QCOMPARE(status(reply), QStringLiteral("5"));
        QCOMPARE(reply.text(QStringLiteral("HeartbeatInterval")), QStringLiteral("60"));
        mServer->setHeartbeatLimits(5, 20);
        reply = ping(300, { mInbox });
        QCOMPARE(status(reply), QStringLiteral("5"));
        QCOMPARE(reply.text(QStringLiteral("HeartbeatInterval")), QStringLiteral("20"));
    }

    void tooManyFoldersAreRefusedWithTheirLimit()
    {
        mServer->setMaxPingFolders(1);
        const WbxmlNode reply = ping(300, { mInbox, QStringLiteral("2") });
        QCOMPARE(status(reply), QStringLiteral("6"));
        QCOMPARE(reply.text(QStringLiteral("MaxFolders")), QStringLiteral("1"));
    }

    void withoutFoldersTheLastOnesHold()
    {
        QCOMPARE(status(ping(300, {})), QStringLiteral("3"));
        QNetworkReply *const first = waitingPing();
        QVERIFY(first);
        mServer->expirePings();
        SimulatorClient::finished(first);
        mServer->mailbox().deliver(mInbox, sampleMessage(QStringLiteral("new")));
        QCOMPARE(status(ping(0, {})), QStringLiteral("2"));
        // Not one element, not one byte.
        QCOMPARE(
            status(mClient->postBytes(QStringLiteral("Ping"), QByteArray()).document), QStringLiteral("2"));
    }

    void whatIsNoPingIsASyntaxError()
    {
        QCOMPARE(status(mClient
                            ->post(QStringLiteral("Ping"),
                                QStringLiteral("<FolderSync xmlns=\"FolderHierarchy\"><SyncKey>0</SyncKey>"
                                               "</FolderSync>"))
                            .document),
            QStringLiteral("4"));
    }

    void aSecondPingOfADeviceEndsTheFirst()
    {
        QNetworkReply *const first = waitingPing();
        QVERIFY(first);
        QNetworkReply *const second = waitingPing();
        QVERIFY(second);
        QCOMPARE(status(SimulatorClient::finished(first).document), QStringLiteral("1"));
        mServer->mailbox().deliver(mInbox, sampleMessage(QStringLiteral("news")));
        QCOMPARE(status(SimulatorClient::finished(second).document), QStringLiteral("2"));
    }

    void aServerThatStopsWaitsForNone()
    {
        QNetworkReply *const reply = waitingPing();
        QVERIFY(reply);
        mServer->stop();
        SimulatorClient::finished(reply);
        QVERIFY(mServer->start());
    }

    void faultsComeInstead()
    {
        mServer->overrideNext(QStringLiteral("Ping"), Override::topStatus(8));
        QCOMPARE(status(ping(300, { mInbox })), QStringLiteral("8"));
        mServer->overrideNext(QStringLiteral("Ping"), Override::httpStatus(503, { { "Retry-After", "60" } }));
        const PlainReply refused = mClient->post(QStringLiteral("Ping"), pingXml(300, { mInbox }));
        QCOMPARE(refused.status, 503);
        QCOMPARE(refused.header("Retry-After"), QByteArray("60"));
    }
};

FENNEL_REGISTER_TEST(SimulatorPingTest)
#include "simulatorpingtest.moc"
