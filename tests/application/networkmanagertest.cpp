// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/networkmanager.h"
#include "protocol/base/protocolutils.h"
#include "support/bearer.h"
#include "support/challengeserver.h"
#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/testmain.h"

#include <QBuffer>
#include <QNetworkReply>
#include <QtTest>

#include <memory>

namespace {
constexpr EasAccountId accountId = 5;
}

/** Sessions that follow the device's network, and the answers to challenges. */
class NetworkManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<EasAccountId>("EasAccountId"); }

    void init()
    {
        mAccount = std::make_unique<FakeAccount>(accountId);
        ScriptedManager::install()->present(mAccount.get());
        mServer = std::make_unique<ChallengeServer>();
        mLog = std::make_unique<LogCollector>();
        mNetwork = std::make_unique<NetworkManager>(nullptr);
        QVERIFY(Bearer::settleConnected());
        QVERIFY(mNetwork->isOnline());
    }

    void cleanup()
    {
        QVERIFY2(!mLog->contains(QStringLiteral("s3cret")), "no password in any log line");
        mNetwork.reset();
        ScriptedManager::uninstall();
        mServer.reset();
        mLog.reset();
        mAccount.reset();
        Bearer::connectNetwork();
    }

    void acceptedCredentialsAreGivenOnce()
    {
        mServer->accepted = "alice:s3cret";
        QCOMPARE(exchange(), QNetworkReply::NoError);
        QCOMPARE(mServer->answers, QList<QByteArray> { "alice:s3cret" });
        QCOMPARE(mAccount->refusals, 0);
        QCOMPARE(mAccount->blocks, 0);
        QVERIFY(mLog->contains(QStringLiteral("accountId: ")));
    }

    void theDomainStandsBeforeTheUser()
    {
        mAccount->connection->domain = QStringLiteral("CORP");
        mServer->accepted = "CORP\\alice:s3cret";
        QCOMPARE(exchange(), QNetworkReply::NoError);
        QCOMPARE(mServer->answers, QList<QByteArray> { "CORP\\alice:s3cret" });
    }

    void credentialsThatWereFetchedAnewAreTried()
    {
        mServer->accepted = "alice:s3cret-new";
        mAccount->whenRefused = [this] {
            mAccount->secret = QStringLiteral("s3cret-new");
        };
        QCOMPARE(exchange(), QNetworkReply::NoError);
        QCOMPARE(mServer->answers, (QList<QByteArray> { "alice:s3cret", "alice:s3cret-new" }));
        QCOMPARE(mAccount->refusals, 1);
        QCOMPARE(mAccount->blocks, 0);
    }

    void aThirdChallengeBlocksTheAccount()
    {
        mAccount->connection->domain = QStringLiteral("WRONG");
        mAccount->whenRefused = [this] {
            mAccount->secret += QLatin1Char('x');
        };
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mServer->answers, (QList<QByteArray> { "WRONG\\alice:s3cret", "WRONG\\alice:s3cretx" }));
        QCOMPARE(mAccount->blocks, 1);
        QVERIFY(mLog->contains(QtWarningMsg, { "too many failed authentication attempts" }));
    }

    void aRefusedAnswerThatDoesNotChangeBlocksTheAccount()
    {
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mServer->answers, QList<QByteArray> { "alice:s3cret" });
        QCOMPARE(mAccount->refusals, 1);
        QCOMPARE(mAccount->blocks, 1);
        QVERIFY(mLog->contains(QtWarningMsg, { "too many failed authentication attempts" }));
    }

    void aPasswordThatWasAcceptedIsRefusedOnceWithoutABlock()
    {
        mServer->accepted = "alice:s3cret";
        QCOMPARE(exchange(), QNetworkReply::NoError);
        mServer->accepted.clear();
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mAccount->blocks, 0);
        QVERIFY(mLog->contains(
            QtWarningMsg, { "the server refuses a password that it has accepted before, account", "5" }));
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mAccount->blocks, 1);
    }

    void onlyRefusalsInARowBlock()
    {
        for (int round = 0; round < 3; ++round) {
            mServer->accepted = "alice:s3cret";
            QCOMPARE(exchange(), QNetworkReply::NoError);
            mServer->accepted.clear();
            QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        }
        QCOMPARE(mAccount->blocks, 0);
    }

    void aPasswordOfAnotherAccountProvesNothing()
    {
        mServer->accepted = "alice:s3cret";
        QCOMPARE(exchange(), QNetworkReply::NoError);
        Q_EMIT RequestManager::instance()->accountDeleted(accountId);
        mServer->accepted.clear();
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mAccount->blocks, 1);
    }

    void withoutAPasswordAChallengeIsLeftUnanswered()
    {
        mAccount->secret.clear();
        mServer->accepted = "alice:";
        for (int round = 0; round < 3; ++round)
            QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QVERIFY(mServer->answers.isEmpty());
        QCOMPARE(mAccount->refusals, 0);
        QCOMPARE(mAccount->blocks, 0);
        QVERIFY(mLog->contains(QtWarningMsg, { "there is no password for account", "5" }));
    }

    void theAccountIsBlockedBeforeTheRequestHearsOfIt()
    {
        const std::unique_ptr<QNetworkReply> reply(post());
        int blocksAtTheEnd = -1;
        connect(reply.get(), &QNetworkReply::finished, this, [&] { blocksAtTheEnd = mAccount->blocks; });
        QTRY_COMPARE(blocksAtTheEnd, 1);
    }

    void aRefusalWithoutAnAnswerBlocksNothing()
    {
        mServer->namesMethod = false;
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mAccount->refusals, 0);
        QCOMPARE(mAccount->blocks, 0);
    }

    void everyRequestHasItsOwnAllowance()
    {
        mAccount->whenRefused = [this] {
            mAccount->secret += QLatin1Char('x');
        };
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(mAccount->blocks, 1);
        mServer->answers.clear();
        mServer->accepted = "alice:s3cretxxx";
        mAccount->secret = QStringLiteral("s3cretxx");
        QCOMPARE(exchange(), QNetworkReply::NoError);
        QCOMPARE(mServer->answers.last(), QByteArray("alice:s3cretxxx"));
        QCOMPARE(mAccount->blocks, 1);
    }

    void anAccountThatIsGoneGetsNoAnswer()
    {
        mAccount.reset();
        QCOMPARE(exchange(), QNetworkReply::AuthenticationRequiredError);
        QVERIFY(mServer->answers.isEmpty());
    }

    void otherVerbsAreSentAsTheyAre()
    {
        mServer->accepted = "alice:s3cret";
        QBuffer body;
        const std::unique_ptr<QNetworkReply> reply(
            mNetwork->sendCustomRequest(accountId, QNetworkRequest(mServer->url()), "OPTIONS", &body));
        ProtocolUtils::setAccountId(reply.get(), accountId);
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(reply->error(), QNetworkReply::NoError);
        QCOMPARE(mServer->verbs, (QList<QByteArray> { "OPTIONS", "OPTIONS" }));
    }

    void nothingIsPostedWhileOffline()
    {
        goOffline();
        QCOMPARE(post(), nullptr);
        QCOMPARE(mNetwork->sendCustomRequest(accountId, QNetworkRequest(mServer->url()), "OPTIONS", nullptr),
            nullptr);
        QVERIFY(mLog->contains(QtCriticalMsg, { "Network manager is null for account", "5" }));
        QVERIFY(mServer->verbs.isEmpty());
    }

    void aSessionIsGivenEvenWhileOffline()
    {
        goOffline();
        const QNetworkSession *session = mNetwork->networkSession(accountId);
        QVERIFY(session);
        QVERIFY(session->state() != QNetworkSession::Connected);
        QCOMPARE(mNetwork->networkSession(accountId), session);
    }

    void eachAccountHasItsOwnSession()
    {
        QNetworkSession *const session = mNetwork->networkSession(accountId);
        QCOMPARE(session->state(), QNetworkSession::Connected);
        QCOMPARE(mNetwork->networkSession(accountId), session);
        QVERIFY(mNetwork->networkSession(6) != session);
    }

    void aLostSessionIsReplaced()
    {
        const QPointer<QNetworkSession> before = mNetwork->networkSession(accountId);
        QSignalSpy states(mNetwork.get(), &NetworkManager::networkStateChanged);
        QVERIFY(Bearer::loseNetwork());
        QTRY_VERIFY(states.contains(QVariantList { accountId, false }));
        QTRY_VERIFY(before.isNull());
        QVERIFY(mLog->contains(QStringLiteral("New network session state:")));
        QVERIFY(mLog->contains(QtInfoMsg, { "Deleting connection for account:", "5" }));
        // The network library knows that the device is offline before it tells.
        QTRY_VERIFY(mLog->contains(QtInfoMsg, { "Device is online:", "false" }));
        QVERIFY(!mNetwork->isOnline());
        QVERIFY(mLog->contains(QtWarningMsg, { "No active network session!" }));
        QVERIFY(mNetwork->networkSession(accountId)->state() != QNetworkSession::Connected);
    }

    void aNetworkThatComesBackIsReportedAndUsed()
    {
        mNetwork->networkSession(accountId);
        goOffline();
        QSignalSpy states(mNetwork.get(), &NetworkManager::networkStateChanged);
        QVERIFY(Bearer::connectNetwork());
        QTRY_VERIFY(states.contains(QVariantList { accountId, true }));
        QCOMPARE(mNetwork->networkSession(accountId)->state(), QNetworkSession::Connected);
        mServer->accepted = "alice:s3cret";
        QCOMPARE(exchange(), QNetworkReply::NoError);
    }

    void aReplyInFlightDiesWithTheNetworkAndSaysNothing()
    {
        mServer->silent = true;
        const QPointer<QNetworkReply> reply = post();
        QSignalSpy finished(reply.data(), &QNetworkReply::finished);
        QTRY_COMPARE(mServer->verbs.size(), 1);
        QVERIFY(Bearer::loseNetwork());
        QTRY_VERIFY(reply.isNull());
        QCOMPARE(finished.count(), 0);
    }

    void aCheckLeavesAConnectedPairAlone()
    {
        QNetworkSession *const session = mNetwork->networkSession(accountId);
        QSignalSpy states(mNetwork.get(), &NetworkManager::networkStateChanged);
        mNetwork->onCheckNetworkState();
        QCOMPARE(mNetwork->networkSession(accountId), session);
        QCOMPARE(states.count(), 1);
        QCOMPARE(states.first(), (QVariantList { accountId, true }));
        QVERIFY(mLog->contains(QStringLiteral("Checking connection state")));
        QVERIFY(mLog->contains(
            QtDebugMsg, { "Session state for account", "5", ", state", "session connected:", "true" }));
    }

    void aSessionThatNeverConnectedIsNotReportedAsLost()
    {
        QVERIFY(Bearer::loseNetwork());
        QTRY_VERIFY(!mNetwork->isOnline());
        QNetworkSession *const session = mNetwork->networkSession(accountId);
        QSignalSpy states(mNetwork.get(), &NetworkManager::networkStateChanged);
        Q_EMIT session->stateChanged(QNetworkSession::NotAvailable);
        QCOMPARE(states.count(), 0);
    }

    void statesOfForeignSendersAreIgnored()
    {
        QSignalSpy states(mNetwork.get(), &NetworkManager::networkStateChanged);
        mNetwork->networkSession(accountId);
        mNetwork->onNetworkStateChanged(QNetworkSession::Disconnected);
        QCOMPARE(states.count(), 0);
        QVERIFY(!mLog->contains(QStringLiteral("Deleting connection for account:")));
    }

    void aDeletedAccountLosesItsPairAndItsCounter()
    {
        const QPointer<QNetworkSession> session = mNetwork->networkSession(accountId);
        mServer->silent = true;
        const QPointer<QNetworkReply> reply = post();
        QTRY_COMPARE(mServer->verbs.size(), 1);
        Q_EMIT RequestManager::instance()->accountDeleted(accountId);
        QTRY_VERIFY(session.isNull());
        QVERIFY(reply.isNull());
        QSignalSpy states(mNetwork.get(), &NetworkManager::networkStateChanged);
        mNetwork->onCheckNetworkState();
        QCOMPARE(states.count(), 0);
    }

    void whoeverHearsOfAStateMayAskForSessions()
    {
        mNetwork->networkSession(accountId);
        mNetwork->networkSession(6);
        connect(mNetwork.get(), &NetworkManager::networkStateChanged, this, [this](EasAccountId id) {
            mNetwork->networkSession(id);
            mNetwork->networkSession(id + 100);
        });
        QVERIFY(Bearer::loseNetwork());
        QTRY_VERIFY(!mNetwork->isOnline());
        QVERIFY(Bearer::connectNetwork());
        QTRY_VERIFY(mNetwork->isOnline());
        QTRY_COMPARE(mNetwork->networkSession(accountId)->state(), QNetworkSession::Connected);
    }

private:
    QNetworkReply *post()
    {
        QNetworkRequest request(mServer->url());
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/plain"));
        QNetworkReply *reply = mNetwork->post(accountId, request, "body");
        if (reply)
            ProtocolUtils::setAccountId(reply, accountId);
        return reply;
    }

    /** Posts once and waits for the end. */
    QNetworkReply::NetworkError exchange()
    {
        const std::unique_ptr<QNetworkReply> reply(post());
        if (!reply)
            return QNetworkReply::UnknownNetworkError;
        if (!reply->isFinished()) {
            QSignalSpy finished(reply.get(), &QNetworkReply::finished);
            finished.wait();
        }
        return reply->isFinished() ? reply->error() : QNetworkReply::TimeoutError;
    }

    void goOffline()
    {
        QVERIFY(Bearer::setState(QNetworkSession::NotAvailable));
        QTRY_VERIFY(!mNetwork->isOnline());
    }

    std::unique_ptr<FakeAccount> mAccount;
    std::unique_ptr<ChallengeServer> mServer;
    std::unique_ptr<LogCollector> mLog;
    std::unique_ptr<NetworkManager> mNetwork;
};

FENNEL_REGISTER_TEST(NetworkManagerTest)
#include "networkmanagertest.moc"
