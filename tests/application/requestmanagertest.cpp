// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"

#include "protocol/base/protocolutils.h"
#include "support/bearer.h"
#include "support/logcollector.h"
#include "support/probes.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QtTest>

namespace {
constexpr EasAccountId Account = 7;
constexpr EasAccountId OtherAccount = 8;
} // namespace

/** The queues of requests, and what their ends tell the clients. */
class RequestManagerTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestClock> mClock;
    QPointer<ScriptedManager> mManager;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<QSignalSpy> mFinished;

    ProbeRequest *enter(qulonglong id, EasAccountId account = Account)
    {
        auto *const request = new ProbeRequest(account, id, mManager);
        mManager->processNewRequest(request);
        return request;
    }
    QList<qulonglong> finishedIds() const
    {
        QList<qulonglong> ids;
        for (const QList<QVariant> &signal : *mFinished)
            ids.append(signal.at(1).toULongLong());
        return ids;
    }
    int finishedStatus(int index) const { return mFinished->value(index).value(2).toInt(); }

private Q_SLOTS:
    void init()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*.debug=true"));
        QVERIFY(Bearer::connectNetwork());
        mClock = std::make_unique<TestClock>();
        mClock->heldFrom = 5000;
        mManager = ScriptedManager::install();
        for (const EasAccountId id : { Account, OtherAccount })
            mManager->addAccount(id)->negotiated({ QStringLiteral("Sync"), QStringLiteral("Provision") });
        mAccount = static_cast<FakeAccount *>(mManager->account(Account));
        mFinished = std::make_unique<QSignalSpy>(mManager.data(), &RequestManager::requestFinished);
        QTRY_COMPARE(mManager->networkSession(Account)->state(), QNetworkSession::Connected);
        QTRY_COMPARE(mManager->networkSession(OtherAccount)->state(), QNetworkSession::Connected);
    }

    void cleanup()
    {
        mFinished.reset();
        if (mManager)
            ScriptedManager::uninstall();
        mClock.reset();
        QLoggingCategory::setFilterRules(QString());
    }

    // Queues

    void aRequestOfABusyAccountWaitsAndStartsWithoutAFurtherEvent()
    {
        LogCollector log;
        ProbeRequest *const first = enter(1);
        ProbeRequest *const second = enter(2);
        QCOMPARE(first->starts, 1);
        QCOMPARE(second->starts, 0);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Account"), QStringLiteral("7"), QStringLiteral("is busy, request"),
                QStringLiteral("2"), QStringLiteral("added to queue") }));
        first->completeWith(0);
        QCOMPARE(second->starts, 1);
        second->completeWith(3);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 1, 2 }));
        QCOMPARE(finishedStatus(0), 0);
        QCOMPARE(finishedStatus(1), 3);
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("onRequestCompleted:"), QStringLiteral("1"), QStringLiteral("for account"),
                QStringLiteral("7") }));
    }

    void accountsRunSideBySide()
    {
        ProbeRequest *const one = enter(1);
        ProbeRequest *const other = enter(2, OtherAccount);
        QCOMPARE(one->starts, 1);
        QCOMPARE(other->starts, 1);
    }

    void finishedRequestsAreDeleted()
    {
        const QPointer<ProbeRequest> request = enter(1);
        request->completeWith(0);
        QVERIFY(request);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!request);
    }

    void aStatusOfOneIsReportedAsZero()
    {
        enter(1)->completeWith(1);
        QCOMPARE(finishedStatus(0), 0);
    }

    void aRequestThatEndsTwiceIsReportedOnce()
    {
        ProbeRequest *const request = enter(1);
        request->completeWith(3);
        Q_EMIT request->requestCompleted(Account, 1);
        QCOMPARE(mFinished->count(), 1);
    }

    void aWrongIdentifierIsLoggedAndReportedAllTheSame()
    {
        ProbeRequest *const request = enter(1);
        LogCollector log;
        Q_EMIT request->requestCompleted(Account, 99);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Wrong requestId") }));
        QCOMPARE(finishedIds(), QList<qulonglong>({ 99 }));
    }

    void aCompletionOutOfOrderEndsThatRequestAlone()
    {
        ProbeRequest *const first = enter(1);
        ProbeRequest *const second = enter(2);
        LogCollector log;
        second->completeWith(3);
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("The first request in a queue"), QStringLiteral("1"),
                QStringLiteral("does not match completed requests"), QStringLiteral("2") }));
        QCOMPARE(finishedIds(), QList<qulonglong>({ 2 }));
        QCOMPARE(first->starts, 1);
        first->completeWith(0);
        QCOMPARE(mFinished->count(), 2);
    }

    void aRequestThatStartsAndEndsAtOnceLeavesTheAccountIdle()
    {
        mAccount->setSupportedCommands({});
        enter(1);
        QCOMPARE(finishedStatus(0), -8);
        mAccount->setSupportedCommands({ QStringLiteral("Sync") });
        QCOMPARE(enter(2)->starts, 1);
    }

    void aBlockedAccountDrainsItsWholeQueue()
    {
        ProbeRequest *const head = enter(1);
        for (qulonglong id = 2; id <= 3000; ++id)
            enter(id);
        mAccount->blocked = true;
        head->completeWith(10204);
        QCOMPARE(mFinished->count(), 3000);
        QCOMPARE(finishedStatus(0), 10204);
        for (int i = 1; i < mFinished->count(); ++i)
            QCOMPARE(finishedStatus(i), -4);
    }

    // An account that is to be wiped

    void anOrderToWipeEndsAllRequestsOfItsAccount()
    {
        ProbeRequest *const head = enter(1);
        enter(2);
        ProbeRequest *const other = enter(3, OtherAccount);
        QVERIFY(mAccount->remoteWipeRequested());
        QCOMPARE(head->cancels, 1);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 1, 2 }));
        QCOMPARE(finishedStatus(0), -4);
        QCOMPARE(finishedStatus(1), -7);
        QCOMPARE(enter(4)->starts, 0);
        QCOMPARE(finishedStatus(2), -7);
        QVERIFY(other->started());
    }

    void theRequestThatAcknowledgesTheWipeGoesOnUntilItBegins()
    {
        ProbeRequest *const head = enter(1);
        head->provisionWaits = true;
        head->startProvisionRequest(true);
        enter(2);
        QVERIFY(mAccount->remoteWipeRequested());
        QCOMPARE(mFinished->count(), 0);
        QVERIFY(head->provision);
        Q_EMIT mAccount->remoteWipeBegun(Account);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 1, 2 }));
        QCOMPARE(finishedStatus(0), -4);
        QCOMPARE(finishedStatus(1), -7);
    }

    void progressGivesTheMaximumFirst()
    {
        QSignalSpy progress(mManager.data(), &RequestManager::requestProgress);
        ProbeRequest *const request = enter(1);
        Q_EMIT request->requestDownloadProgress(Account, 1, 10, 100);
        QCOMPARE(progress.count(), 1);
        QCOMPARE(progress.first().at(2).toLongLong(), 100);
        QCOMPARE(progress.first().at(3).toLongLong(), 10);
    }

    void aRequestWithAResultReportsItsEndInItsOwnWay()
    {
        QList<int> ends;
        auto *const request = new ProbeRequest(Account, 1, mManager);
        mManager->processNewRequest(request, [&ends, request](EasAccountId, qulonglong, int status) {
            ends.append({ int(request->id()), status });
        });
        request->completeWith(1);
        QCOMPARE(ends, QList<int>({ 1, 0 }));
        QCOMPARE(mFinished->count(), 0);
    }

    void aProvisionRequestHasASignalOfItsOwn()
    {
        QSignalSpy provisioned(mManager.data(), &RequestManager::provisionRequestFinished);
        mAccount->setSupportedCommands({});
        mManager->onProvisionPolicyRequest(Account, 5);
        QCOMPARE(provisioned.count(), 1);
        QCOMPARE(provisioned.first().at(2).toInt(), 0);
        QCOMPARE(provisioned.first().at(4).toInt(), 1);
        QCOMPARE(mFinished->count(), 0);
    }

    // Hung requests

    void aHungHeadIsCancelledAfterTheNextRequestHasEntered()
    {
        ProbeRequest *const head = enter(1);
        mClock->setAhead(300001);
        QString order;
        LogCollector log;
        head->onCancel = [&] {
            order = log.texts().join(QLatin1Char('\n'));
        };
        enter(2);
        QCOMPARE(head->cancels, 1);
        QVERIFY(order.contains(QStringLiteral("is busy, request 2 added to queue")));
    }

    void aHungHeadIsCancelledByTheNextRequest()
    {
        ProbeRequest *const head = enter(1);
        mClock->setAhead(300002);
        LogCollector log;
        ProbeRequest *const next = enter(2);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("The first request in a queue"), QStringLiteral("1"),
                QStringLiteral("is still active. Trying to force request cancellation") }));
        QCOMPARE(head->cancels, 1);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 1 }));
        QCOMPARE(finishedStatus(0), -4);
        QCOMPARE(next->starts, 1);
    }

    void aHeadOfFourMinutesIsLeftAlone()
    {
        ProbeRequest *const head = enter(1);
        mClock->setAhead(240000);
        enter(2);
        QCOMPARE(head->cancels, 0);
        QCOMPARE(mFinished->count(), 0);
    }

    void aRequestThatHasJustStartedIsLeftAlone()
    {
        mClock->setAhead(300002);
        QCOMPARE(enter(1)->cancels, 0);
        QCOMPARE(mFinished->count(), 0);
    }

    // Cancelling

    void aQueuedRequestIsCancelledWithoutHavingStarted()
    {
        enter(1);
        ProbeRequest *const queued = enter(2);
        LogCollector log;
        mManager->onCancelRequest(Account, 2);
        QCOMPARE(queued->starts, 0);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 2 }));
        QCOMPARE(finishedStatus(0), -4);
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Cancel request"), QStringLiteral("2"), QStringLiteral("for account:"),
                QStringLiteral("7") }));
    }

    void aSecondCancelHasNoEffect()
    {
        enter(1);
        mManager->onCancelRequest(Account, 1);
        LogCollector log;
        mManager->onCancelRequest(Account, 1);
        QCOMPARE(mFinished->count(), 1);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Request queue does not exist for account"), QStringLiteral("7") }));
    }

    void cancellingAnUnknownIdentifierTouchesNobody()
    {
        ProbeRequest *const request = enter(1);
        mManager->onCancelRequest(Account, 99);
        QCOMPARE(request->cancels, 0);
        QCOMPARE(mFinished->count(), 0);
    }

    void deletingAnAccountCancelsFromTheLastToTheFirst()
    {
        ProbeRequest *const first = enter(1);
        ProbeRequest *const second = enter(2);
        enter(3);
        enter(4, OtherAccount);
        QSignalSpy deleted(mManager.data(), &RequestManager::accountDeleted);
        mManager->storage->remove(Account);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 3, 2, 1 }));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(finishedStatus(i), -4);
        QCOMPARE(first->starts, 1);
        QCOMPARE(second->starts, 0);
        QCOMPARE(deleted.count(), 1);
    }

    void deletingAnAccountStartsNoneOfItsRequests_data()
    {
        QTest::addColumn<int>("gate");
        QTest::newRow("the head waits for its password") << 0;
        QTest::newRow("the head waits for the network") << 1;
        QTest::newRow("the head asks for the protocol version") << 2;
    }

    void deletingAnAccountStartsNoneOfItsRequests()
    {
        QFETCH(int, gate);
        if (gate == 0)
            mAccount->setReady(false);
        if (gate == 1)
            mManager->network = new SessionlessNetwork(mManager);
        if (gate == 2)
            mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersionUnknown);
        QList<ProbeRequest *> requests { enter(1), enter(2), enter(3) };
        QCOMPARE(mFinished->count(), 0);
        mManager->storage->remove(Account);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 3, 2, 1 }));
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(finishedStatus(i), -4);
            QCOMPARE(requests.at(i)->starts, 0);
        }
    }

    void aHeadThatWaitsForTheNetworkStartsOnce()
    {
        mClock->heldFrom = 100000000;
        mManager->network = new SessionlessNetwork(mManager);
        ProbeRequest *const head = enter(1);
        enter(2);
        mManager->network = nullptr;
        mManager->onCancelRequest(Account, 2);
        QTRY_COMPARE(head->starts, 1);
        // Runs out behind every timer that the head may have left.
        bool passed = false;
        QTimer::singleShot(2, this, [&passed] { passed = true; });
        QTRY_VERIFY(passed);
        QCOMPARE(head->starts, 1);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 2 }));
    }

    void deletingAnIdleAccountIsOnlyTold()
    {
        LogCollector log;
        QSignalSpy deleted(mManager.data(), &RequestManager::accountDeleted);
        mManager->storage->remove(Account);
        QCOMPARE(deleted.count(), 1);
        QVERIFY(log.contains(
            QtInfoMsg, { QStringLiteral("Request queue does not exist for account"), QStringLiteral("7") }));
    }

    // Readiness

    void requestsWaitUntilTheAccountsAreReady()
    {
        mManager->storage->isReadyNow = false;
        LogCollector log;
        ProbeRequest *const first = enter(1);
        ProbeRequest *const second = enter(2);
        QCOMPARE(first->starts, 0);
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Request"), QStringLiteral("1"),
                QStringLiteral("was added to the queue for account"), QStringLiteral("7") }));
        mManager->onAccountStorageReady();
        QCOMPARE(first->starts, 0);
        mManager->storage->becomeReady();
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Ready") }));
        QCOMPARE(first->starts, 1);
        QCOMPARE(second->starts, 0);
        first->completeWith(0);
        QCOMPARE(second->starts, 1);
    }

    void aRequestWaitsForThePasswordOfItsAccount()
    {
        mAccount->setReady(false);
        ProbeRequest *const first = enter(1);
        ProbeRequest *const second = enter(2);
        ProbeRequest *const others = enter(3, OtherAccount);
        QCOMPARE(first->starts, 0);
        QCOMPARE(others->starts, 1);
        mAccount->setReady(true);
        QCOMPARE(first->starts, 1);
        QCOMPARE(second->starts, 0);
        // A new password is fetched while a request runs.
        mAccount->setReady(false);
        mAccount->setReady(true);
        QCOMPARE(first->starts, 1);
        mAccount->setReady(false);
        first->completeWith(0);
        QCOMPARE(second->starts, 0);
        mAccount->setReady(true);
        QCOMPARE(second->starts, 1);
    }

    void aRequestThatWaitsForAPasswordCanBeCancelled()
    {
        mAccount->setReady(false);
        enter(1);
        ProbeRequest *const second = enter(2);
        mManager->onCancelRequest(Account, 1);
        QCOMPARE(finishedIds(), QList<qulonglong>({ 1 }));
        QCOMPARE(finishedStatus(0), int(Request::RequestStatusCancelled));
        QCOMPARE(second->starts, 0);
        mAccount->setReady(true);
        QCOMPARE(second->starts, 1);
    }

    void aWaitingRequestIsCancelledWithoutAReport()
    {
        mManager->storage->isReadyNow = false;
        const QPointer<ProbeRequest> cancelled = enter(1);
        const QPointer<ProbeRequest> kept = enter(2);
        mManager->onCancelRequest(Account, 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!cancelled);
        QCOMPARE(mFinished->count(), 0);
        mManager->storage->becomeReady();
        QCOMPARE(kept->starts, 1);
    }

    void aWaitingProvisionRequestThatIsCancelledIsReported()
    {
        mManager->storage->isReadyNow = false;
        QSignalSpy provisioned(mManager.data(), &RequestManager::provisionRequestFinished);
        mManager->onProvisionPolicyRequest(Account, 5);
        mManager->onCancelRequest(Account, 5);
        QCOMPARE(provisioned.count(), 1);
        QCOMPARE(provisioned.first().at(0).toULongLong(), Account);
        QCOMPARE(provisioned.first().at(1).toULongLong(), 5ULL);
        QCOMPARE(provisioned.first().at(2).toInt(), -4);
        mManager->storage->becomeReady();
        QCOMPARE(provisioned.count(), 1);
        QCOMPARE(mFinished->count(), 0);
    }

    void waitingAvailabilityThatIsCancelledIsReported()
    {
        mManager->storage->isReadyNow = false;
        QSignalSpy lists(mManager.data(), &RequestManager::attendeesAvailableDataReady);
        mManager->onAttendeesAvailableRequest(Account, 5, {}, {}, {});
        mManager->onAttendeesAvailableRequest(Account, 6, {}, {}, {});
        mManager->onCancelRequest(Account, 5);
        QCOMPARE(lists.count(), 1);
        QCOMPARE(lists.first().at(0).toULongLong(), 5ULL);
        mManager->onAccountDeleted(Account);
        QCOMPARE(lists.count(), 2);
        QCOMPARE(lists.last().at(0).toULongLong(), 6ULL);
        mManager->storage->becomeReady();
        QCOMPARE(lists.count(), 2);
        QCOMPARE(mFinished->count(), 0);
    }

    void waitingRequestsOfADeletedAccountGo()
    {
        mManager->storage->isReadyNow = false;
        const QPointer<ProbeRequest> gone = enter(1);
        const QPointer<ProbeRequest> kept = enter(2, OtherAccount);
        mManager->storage->remove(Account);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!gone);
        mManager->storage->becomeReady();
        QCOMPARE(kept->starts, 1);
    }

    // Quitting

    void anUpdateThatDisablesTheLastAccountEndsTheManager_data()
    {
        QTest::addColumn<bool>("isEnabled");
        QTest::newRow("an enabled account keeps it") << true;
        QTest::newRow("no enabled account ends it") << false;
    }

    void anUpdateThatDisablesTheLastAccountEndsTheManager()
    {
        QFETCH(bool, isEnabled);
        mClock->heldFrom = 5001;
        LogCollector log;
        QSignalSpy updated(mManager.data(), &RequestManager::accountUpdated);
        static_cast<FakeAccount *>(mManager->account(OtherAccount))->isEnabled = false;
        mAccount->isEnabled = isEnabled;
        mClock->intervals.clear();
        Q_EMIT mManager->storage->accountUpdated(Account);
        QCOMPARE(updated.count(), 1);
        QVERIFY(mClock->intervals.contains(5000));
        QVERIFY(log.contains(QStringLiteral("requesting to check accounts count")));
        if (isEnabled) {
            QTest::qWait(50);
            QVERIFY(mManager);
            return;
        }
        QTRY_VERIFY(!mManager);
        QVERIFY(log.contains(QStringLiteral("we don't have any enabled accounts, quiting")));
        QVERIFY(log.contains(QStringLiteral("closing application")));
    }

    void withoutAnAccountTheManagerEndsFiveSecondsAfterItsStart()
    {
        ScriptedManager::uninstall();
        mClock->heldFrom = 5001;
        mClock->intervals.clear();
        mManager = ScriptedManager::install();
        QVERIFY(mClock->intervals.contains(5000));
        QVERIFY(mManager);
        QTRY_VERIFY(!mManager);
    }

    void deletingTheLastAccountEndsTheManager()
    {
        mManager->storage->remove(OtherAccount);
        mClock->heldFrom = 5001;
        mManager->storage->remove(Account);
        QTRY_VERIFY(!mManager);
    }

    void aQuitTellsNobodyAboutRunningRequests()
    {
        QPointer<ProbeRequest> request = enter(1);
        enter(2);
        LogCollector log;
        mManager->onQuitRequest();
        QVERIFY(!mManager);
        QVERIFY(!request);
        QCOMPARE(mFinished->count(), 0);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Quit request") }));
    }

    void aQuitTellsNobodyAboutACommandThatRuns()
    {
        ScriptedServer server;
        ScriptedAnswer hang;
        hang.hang = true;
        server.answer(hang);
        mAccount->connection->port = server.port();
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersionUnknown);
        enter(1);
        QTRY_COMPARE(server.requests().size(), 1);
        mManager->onQuitRequest();
        QVERIFY(!mManager);
        QCOMPARE(mFinished->count(), 0);
    }

    // Other calls

    void alwaysOnReachesTheAccount()
    {
        mManager->onAlwaysOnStatus(Account, QStringLiteral("profile"), true);
        QVERIFY(mAccount->alwaysOnSwitch);
        mManager->onAlwaysOnStatus(Account, QStringLiteral("profile"), false);
        QVERIFY(!mAccount->alwaysOnSwitch);
    }

    void alwaysOnOfAnUnknownAccountIsOnlyLogged()
    {
        LogCollector log;
        mManager->onAlwaysOnStatus(99, QStringLiteral("profile"), true);
        QVERIFY(
            log.contains(QtInfoMsg, { QStringLiteral("Not found account with ID:"), QStringLiteral("99") }));
        QVERIFY(log.contains(QStringLiteral("onAlwaysOnStatus")));
    }

    void meetingResponsesAreChecked_data()
    {
        QTest::addColumn<int>("response");
        QTest::addColumn<qulonglong>("message");
        QTest::addColumn<QString>("event");
        QTest::addColumn<int>("status");
        QTest::newRow("response below the range") << 0 << 5ULL << QStringLiteral("uid") << -3;
        QTest::newRow("response above the range") << 4 << 5ULL << QStringLiteral("uid") << -3;
        QTest::newRow("nothing to respond to") << 1 << 0ULL << QString() << -3;
        QTest::newRow("a good one, which the server does not offer")
            << 3 << 5ULL << QStringLiteral("uid") << -8;
    }

    void meetingResponsesAreChecked()
    {
        QFETCH(int, response);
        QFETCH(qulonglong, message);
        QFETCH(QString, event);
        QFETCH(int, status);
        LogCollector log;
        mManager->onMeetingResponseRequest(Account, 1, message, 0, response, 0, {}, {}, {});
        mManager->onMeetingResponseCalendarRequest(Account, 2, event, 0, response, 0, {}, {}, {});
        QCOMPARE(finishedIds(), QList<qulonglong>({ 1, 2 }));
        QCOMPARE(finishedStatus(0), status);
        QCOMPARE(finishedStatus(1), status);
        if (status == -3)
            QVERIFY(log.contains(QtCriticalMsg,
                { QStringLiteral("Wrong args, userResponse:"), QStringLiteral(", requestMessageId:") }));
    }

    void commandsThatAreNotOfferedAreRefused()
    {
        mManager->onSendMailRequest(Account, 1, 4);
        mManager->onCalendarAttachmentDownloadRequest(Account, 10, {});
        QCOMPARE(finishedIds(), QList<qulonglong>({ 4, 10 }));
        for (int i = 0; i < mFinished->count(); ++i)
            QCOMPARE(finishedStatus(i), -8);
    }

    void afterAFailedReadNoSettingsAreTold()
    {
        QSignalSpy fetched(mManager.data(), &RequestManager::oofStateFetched);
        mManager->onGetOofRequest(Account, 8);
        mManager->onSetOofStateRequest(Account, 9, EasOofContainer());
        QCOMPARE(finishedIds(), QList<qulonglong>({ 8, 9 }));
        QCOMPARE(finishedStatus(0), -8);
        QCOMPARE(finishedStatus(1), -8);
        QCOMPARE(fetched.count(), 0);
    }

    void availabilityEndsWithItsListsAlone()
    {
        QSignalSpy lists(mManager.data(), &RequestManager::attendeesAvailableDataReady);
        mManager->onAttendeesAvailableRequest(Account, 11, {}, {}, {});
        QCOMPARE(lists.count(), 1);
        QCOMPARE(lists.first(), QVariantList({ 11ULL, QStringList(), QStringList(), QStringList() }));
        QCOMPARE(finishedIds(), QList<qulonglong>());
    }
};

FENNEL_REGISTER_TEST(RequestManagerTest)
#include "requestmanagertest.moc"
