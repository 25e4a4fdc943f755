// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deviceinformation.h"

#include "protocol/base/protocolutils.h"
#include "support/bearer.h"
#include "support/logcollector.h"
#include "support/probes.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QLoggingCategory>
#include <QNetworkSession>
#include <QSignalSpy>
#include <QtTest>

namespace {
constexpr EasAccountId Account = 7;
constexpr qulonglong Id = 42;
} // namespace

/** The life that all requests share: gates, retries, cancelling, one end. */
class RequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestClock> mClock;
    ScriptedManager *mManager = nullptr;
    FakeAccount *mAccount = nullptr;
    SessionlessNetwork *mSessionless = nullptr;
    std::unique_ptr<ProbeRequest> mRequest;
    std::unique_ptr<QSignalSpy> mCompleted;

    /** A device that is online, but whose session says so only later. */
    void withoutSession(bool online)
    {
        mSessionless = new SessionlessNetwork(mManager);
        mSessionless->online = online;
        mManager->network = mSessionless;
    }

private Q_SLOTS:
    void init()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*.debug=true"));
        QVERIFY(Bearer::connectNetwork());
        mClock = std::make_unique<TestClock>();
        mManager = ScriptedManager::install();
        mAccount = mManager->addAccount(Account);
        mAccount->negotiated({ QStringLiteral("Sync") });
        mRequest = std::make_unique<ProbeRequest>(Account, Id, mManager);
        mCompleted = std::make_unique<QSignalSpy>(mRequest.get(), &Request::requestCompleted);
        QTRY_COMPARE(mManager->networkSession(Account)->state(), QNetworkSession::Connected);
    }

    void cleanup()
    {
        mCompleted.reset();
        mRequest.reset();
        ScriptedManager::uninstall();
        mClock.reset();
        QLoggingCategory::setFilterRules(QString());
    }

    // Gates

    void aRequestStartsWhenAllGatesAreOpen()
    {
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->starts, 1);
        QVERIFY(mRequest->started());
        QCOMPARE(mCompleted->count(), 0);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Start request:"), QStringLiteral("42") }));
    }

    void aBlockedAccountRefusesAndAsksForCredentials()
    {
        mAccount->blocked = true;
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->starts, 0);
        QCOMPARE(mRequest->status(), -4);
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mAccount->blocks, 1);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Cant start request for blocked account"), QStringLiteral("7"),
                QStringLiteral(". Credentials need update") }));
    }

    void anAccountThatIsToBeWipedRefuses()
    {
        mAccount->wipeOrdered = true;
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->starts, 0);
        QCOMPARE(mRequest->status(), -7);
        QCOMPARE(mCompleted->count(), 1);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Cant start request for account"), QStringLiteral("7"),
                QStringLiteral(". Its wipe was ordered") }));
    }

    void aStartedRequestDoesNotStartAgain()
    {
        mRequest->start();
        mRequest->startResendTimer();
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->starts, 1);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("tried to start already started request") }));
        mClock->intervals.clear();
        mRequest->startResendTimer();
        QCOMPARE(mClock->intervals, QList<int>({ 5000 }));
    }

    void withoutNetworkARequestEndsAtOnce()
    {
        withoutSession(false);
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->status(), -9);
        QCOMPARE(mCompleted->count(), 1);
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("Tried to start request, but session was nullptr.") }));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("Tried to start request, but network is not available") }));
    }

    void aLostSessionIsNamedInTheLog()
    {
        QVERIFY(Bearer::loseNetwork());
        QTRY_VERIFY(mManager->networkSession(Account)->state() != QNetworkSession::Connected);
        QTRY_VERIFY(!mManager->networkManager()->isOnline());
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->status(), -9);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Tried to start request, but network is not available. State:"),
                QStringLiteral("error:"), QStringLiteral("error message:") }));
    }

    void aSessionThatComesLateDelaysTheStartByAGrowingInterval()
    {
        withoutSession(true);
        LogCollector log;
        mClock->intervals.clear();
        mRequest->start();
        QVERIFY(!mRequest->started());
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Network is not available yet, but device is in Online state. "
                             "Trying to execute request later.") }));
        QTRY_VERIFY(mClock->intervals.size() >= 4);
        QCOMPARE(mClock->intervals.mid(0, 4), QList<int>({ 5000, 15000, 45000, 135000 }));
        QCOMPARE(mRequest->starts, 0);
        QCOMPARE(mCompleted->count(), 0);

        mManager->network = nullptr;
        QTRY_COMPARE(mRequest->starts, 1);
        mClock->intervals.clear();
        mRequest->startResendTimer();
        QCOMPARE(mClock->intervals, QList<int>({ 5000 }));
    }

    void theIntervalGrowsWithoutEndAndWithoutOverflow()
    {
        mClock->heldFrom = 1;
        QList<int> wanted { 5000, 15000, 45000, 135000, 405000 };
        for (int i = 0; i < 40; ++i)
            mRequest->startResendTimer();
        QCOMPARE(mClock->intervals.mid(mClock->intervals.size() - 40, 5), wanted);
        for (const int interval : qAsConst(mClock->intervals))
            QVERIFY(interval > 0);
    }

    void anUnknownAccountIsAnInternalError()
    {
        ProbeRequest request(99, Id, mManager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        LogCollector log;
        request.start();
        QCOMPARE(request.status(), -2);
        QCOMPARE(completed.count(), 1);
        QVERIFY(log.contains(
            QtCriticalMsg, { QStringLiteral("No account object for account:"), QStringLiteral("99") }));
    }

    void aCommandThatTheServerLacksIsNotSent()
    {
        mRequest->name = QStringLiteral("Find");
        LogCollector log;
        mRequest->start();
        QCOMPARE(mRequest->starts, 0);
        QCOMPARE(mRequest->status(), -8);
        QCOMPARE(mCompleted->count(), 1);
        QVERIFY(
            log.contains(QtWarningMsg, { QStringLiteral("Command not supported:"), QStringLiteral("Find") }));
    }

    void supportOfACommandNeedsAnAccount()
    {
        ProbeRequest request(99, Id, mManager);
        LogCollector log;
        QVERIFY(!request.isCommandSupported());
        QCOMPARE(request.status(), -8);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No account") }));
    }

    void noVersionIsMinusOneUnlessSomethingTellsMore()
    {
        mRequest->protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersionUnknown);
        QCOMPARE(mRequest->status(), -1);
        ProbeRequest other(Account, Id, mManager);
        other.setStatus(10204);
        other.protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersionUnknown);
        QCOMPARE(other.status(), 10204);
    }

    void theBaseHasNoCommand()
    {
        class Nameless : public Request
        {
        public:
            using Request::commandName;
            using Request::Request;

        protected:
            void startRequest() override {}
            void cancelRequest() override {}
        } nameless(Account, Id);
        LogCollector log;
        QCOMPARE(nameless.commandName(), QString());
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Unexpected call method") }));
    }

    // Outcome

    void onlyZeroAndOneAreSuccess_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("success");
        QTest::newRow("nothing recorded") << 0 << true;
        QTest::newRow("success of the server") << 1 << true;
        QTest::newRow("another status of the server") << 2 << false;
        QTest::newRow("transport failure") << 10204 << false;
        QTest::newRow("own failure") << -2 << false;
        QTest::newRow("cancelled") << -4 << false;
    }

    void onlyZeroAndOneAreSuccess()
    {
        QFETCH(int, status);
        QFETCH(bool, success);
        mRequest->setStatus(status);
        QCOMPARE(mRequest->successfullyFinished(), success);
    }

    void theStatusesHaveNames()
    {
        QCOMPARE(EasRequestStatus::name(-10), QStringLiteral("RequestStatusMessageTooLarge"));
        QCOMPARE(EasRequestStatus::name(-1), QStringLiteral("RequestStatusVersionUnknown"));
        QCOMPARE(EasRequestStatus::name(110), QString());
    }

    void aNetworkErrorBecomesTheStatus()
    {
        LogCollector log;
        mRequest->onNetworkError(10004);
        QCOMPARE(mRequest->status(), 10004);
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("received network error"), QStringLiteral("10004") }));
        mRequest->onNetworkOperationFinished(nullptr);
    }

    void aRequestExpiresAfterFiveMinutes()
    {
        QVERIFY(!mRequest->isExpired());
        mClock->stop();
        mRequest->start();
        mClock->setAhead(300000);
        QVERIFY(!mRequest->isExpired());
        mClock->setAhead(300001);
        QVERIFY(mRequest->isExpired());
        mRequest->completeWith(0);
        QVERIFY(!mRequest->isExpired());
    }

    // Retries

    void theSixthRetryCompletesWithTheLastStatus()
    {
        LogCollector log;
        mRequest->start();
        mRequest->setStatus(111);
        for (int attempt = 1; attempt <= 5; ++attempt) {
            mRequest->retrySend();
            QCOMPARE(mRequest->starts, 1 + attempt);
            QVERIFY(log.contains(QtInfoMsg,
                { QStringLiteral("trying to send command again. Attempt: "), QString::number(attempt) }));
        }
        QCOMPARE(mCompleted->count(), 0);
        mRequest->retrySend();
        QCOMPARE(mRequest->starts, 6);
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), 111);
    }

    void aSuccessGivesAllRetriesBack()
    {
        mRequest->start();
        for (int i = 0; i < 5; ++i)
            mRequest->retrySend();
        mRequest->clearRetries();
        mRequest->retrySend();
        QCOMPARE(mRequest->starts, 7);
        QCOMPARE(mCompleted->count(), 0);
    }

    void aStartedRequestRetriesWhenItsTimerFires()
    {
        mRequest->start();
        mRequest->startResendTimer();
        QTRY_COMPARE(mRequest->starts, 2);
    }

    void retriesTakeSixHundredAndFiveSeconds()
    {
        mRequest->onStart = [this] {
            mRequest->setStatus(111);
            mRequest->startResendTimer();
        };
        mClock->intervals.clear();
        // The first attempt starts the timer before the factor is reset, so that the second delay is 5 s
        // again.
        mRequest->start();
        QTRY_COMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->starts, 6);
        QCOMPARE(mRequest->status(), 111);
        QCOMPARE(mClock->intervals, QList<int>({ 5000, 5000, 15000, 45000, 135000, 405000 }));
    }

    // Cancelling

    void cancellingBeforeTheStartEndsAtOnce()
    {
        LogCollector log;
        mRequest->cancel();
        QCOMPARE(mRequest->status(), -4);
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->cancels, 0);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Cancel request") }));
    }

    void cancellingARunningCommandEndsThroughItsEnd()
    {
        mRequest->onCancel = [this] {
            // What a stopped command does to its request.
            mRequest->setStatus(10005);
            QVERIFY(mRequest->handleStatus(10005));
        };
        mRequest->start();
        mRequest->cancel();
        QCOMPARE(mRequest->cancels, 1);
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
    }

    void cancellingWithNothingInFlightEndsAllTheSame()
    {
        mRequest->start();
        mRequest->cancel();
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
    }

    void cancellingAWaitingRetryEndsOnce_data()
    {
        QTest::addColumn<bool>("commandAnswers");
        QTest::newRow("the command still speaks when it is stopped") << true;
        QTest::newRow("there is no command any more") << false;
    }

    void cancellingAWaitingRetryEndsOnce()
    {
        QFETCH(bool, commandAnswers);
        mRequest->onCancel = [this, commandAnswers] {
            if (commandAnswers)
                mRequest->handleStatus(10005);
        };
        mRequest->start();
        mRequest->startResendTimer();
        mRequest->cancel();
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
        QCOMPARE(mRequest->cancels, 1);
        QTest::qWait(20);
        QCOMPARE(mRequest->starts, 1);
    }

    void cancellingWhileWaitingForTheNetworkEndsAndStopsTheTimer()
    {
        withoutSession(true);
        mClock->heldFrom = 1;
        mRequest->start();
        mRequest->cancel();
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
    }

    void aSecondCancelChangesNothing()
    {
        mRequest->start();
        mRequest->completeWith(0);
        mRequest->cancel();
        QCOMPARE(mRequest->status(), 0);
        QCOMPARE(mCompleted->count(), 1);
    }

    void aRequestEndsOnce()
    {
        mRequest->start();
        mRequest->completeWith(3);
        mRequest->reportRequestCompleted();
        QCOMPARE(mCompleted->count(), 1);
        QVERIFY(mRequest->hasEnded());
        QCOMPARE(mCompleted->first().at(0).toULongLong(), Account);
        QCOMPARE(mCompleted->first().at(1).toULongLong(), Id);
    }

    void aRequestThatEndedCanBeStartedAnew()
    {
        mRequest->start();
        mRequest->completeWith(3);
        mRequest->start();
        QVERIFY(!mRequest->hasEnded());
        mRequest->completeWith(0);
        QCOMPARE(mCompleted->count(), 2);
    }

    void cancellingDuringNegotiationEndsOnceWithMinusFour_data()
    {
        QTest::addColumn<QStringList>("cachedVersions");
        QTest::newRow("nothing is cached") << QStringList();
        QTest::newRow("versions are cached") << QStringList(QStringLiteral("14.1"));
    }

    void cancellingDuringNegotiationEndsOnceWithMinusFour()
    {
        QFETCH(QStringList, cachedVersions);
        ScriptedServer server;
        ScriptedAnswer hang;
        hang.hang = true;
        server.answer(hang);
        mClock->heldFrom = 1;
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersionUnknown);
        mAccount->knownVersions = cachedVersions;
        mAccount->connection->port = server.port();
        mRequest->start();
        QTRY_COMPARE(server.requests().size(), 1);
        mRequest->cancel();
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
        QCOMPARE(mRequest->starts, 0);
        QCoreApplication::processEvents();
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(server.requests().size(), 1);
    }
};

FENNEL_REGISTER_TEST(RequestTest)
#include "requesttest.moc"
