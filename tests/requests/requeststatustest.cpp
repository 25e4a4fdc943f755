// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deviceinformation.h"

#include "protocol/base/protocolutils.h"
#include "requests/commandrequest.h"
#include "support/bearer.h"
#include "support/logcollector.h"
#include "support/probes.h"
#include "support/scriptedmanager.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

namespace {
constexpr EasAccountId Account = 7;
constexpr qulonglong Id = 42;

enum Reaction { Completes, Retries, RetriesLater };
} // namespace

Q_DECLARE_METATYPE(Reaction)

/** A request of one command, which a test ends; the demand for provisioning is met at once. */
class CommandProbe : public CommandRequest
{
    Q_OBJECT

public:
    using CommandRequest::CommandRequest;
    using CommandRequest::currentCommand;

    int commands = 0;

    void finish(int status) { static_cast<FinishedCommand *>(currentCommand())->finish(status); }

protected:
    void startRequest() override
    {
        ++commands;
        newCommand<FinishedCommand>();
    }
    QString commandName() const override { return QStringLiteral("Sync"); }
    void onCommandFinished(bool success) override
    {
        if (!acceptResult(currentCommand(), success))
            dropCommand();
    }
    ProvisionRequest *createProvisionRequest(bool) override
    {
        return new ProbeProvision(accountId(), id(), ProvisionRequest::InitialPolicyKey, this);
    }
};

/** What the status of a finished command makes a request do, row by row. */
class RequestStatusTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestClock> mClock;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<ProbeRequest> mRequest;
    std::unique_ptr<QSignalSpy> mCompleted;

private Q_SLOTS:
    void init()
    {
        QVERIFY(Bearer::connectNetwork());
        mClock = std::make_unique<TestClock>();
        mClock->heldFrom = 1;
        ScriptedManager *const manager = ScriptedManager::install();
        mAccount = manager->addAccount(Account);
        mAccount->negotiated({ QStringLiteral("Sync"), QStringLiteral("Provision") });
        mRequest = std::make_unique<ProbeRequest>(Account, Id, manager);
        mCompleted = std::make_unique<QSignalSpy>(mRequest.get(), &Request::requestCompleted);
        QTRY_COMPARE(manager->networkSession(Account)->state(), QNetworkSession::Connected);
        mRequest->start();
        mClock->intervals.clear();
    }

    void cleanup()
    {
        mCompleted.reset();
        mRequest.reset();
        ScriptedManager::uninstall();
        mClock.reset();
    }

    void theCommonTable_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<Reaction>("reaction");
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("text");
        const QString server = QStringLiteral("server error. We shouldn't retry later. Completing request");
        const QString device =
            QStringLiteral("invalid Device ID or Type. Trying to update Device information");
        const QString later =
            QStringLiteral("we should try to send command again later. Timeout (in mseconds): 5000");
        QTest::newRow("106 invalid identifiers complete") << 106 << Completes << 106 << server;
        QTest::newRow("110 server error completes") << 110 << Completes << 110 << server;
        QTest::newRow("10500 completes") << 10500 << Completes << 10500 << server;
        QTest::newRow("108 invalid device identifier refreshes it and retries")
            << 108 << Retries << 108 << device;
        QTest::newRow("109 invalid device type refreshes and retries") << 109 << Retries << 109 << device;
        QTest::newRow("111 retries later") << 111 << RetriesLater << 111 << later;
        QTest::newRow("10503 retries later") << 10503 << RetriesLater << 10503 << later;
        QTest::newRow("10005 is a cancelled command") << 10005 << Completes << -4 << QString();
    }

    void theCommonTable()
    {
        QFETCH(int, status);
        QFETCH(Reaction, reaction);
        QFETCH(int, result);
        QFETCH(QString, text);
        LogCollector log;
        FinishedCommand command(Account, status);
        QVERIFY(mRequest->acceptResult(&command, false));
        QVERIFY(mRequest->handleStatus(mRequest->status()));
        QCOMPARE(mRequest->status(), result);
        QCOMPARE(mCompleted->count(), reaction == Completes ? 1 : 0);
        QCOMPARE(mRequest->starts, reaction == Retries ? 2 : 1);
        QCOMPARE(mClock->intervals, reaction == RetriesLater ? QList<int>({ 5000 }) : QList<int>());
        if (!text.isEmpty())
            QVERIFY(log.contains(text));
    }

    void otherStatusesAreNobodys_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("0 undefined") << 0;
        QTest::newRow("1 success") << 1;
        QTest::newRow("139 not fully provisionable") << 139;
        QTest::newRow("10201 from HTTP 403") << 10201;
        QTest::newRow("10204 from HTTP 401") << 10204;
        QTest::newRow("10299 from HTTP 451 without a location") << 10299;
        QTest::newRow("10401 from HTTP 500") << 10401;
        QTest::newRow("-2 a reply that could not be read") << -2;
    }

    void otherStatusesAreNobodys()
    {
        QFETCH(int, status);
        mRequest->setStatus(status);
        QVERIFY(!mRequest->handleStatus(status));
        LogCollector log;
        mRequest->completeUnhandled();
        QVERIFY(
            log.contains(QtCriticalMsg, { QStringLiteral("Unhandled status: "), QString::number(status) }));
        QCOMPARE(mRequest->status(), status);
        QCOMPARE(mCompleted->count(), 1);
    }

    void theRequestsOwnRowsComeFirst()
    {
        static constexpr RequestStatusTable::Row rows[] = {
            { 4, QtWarningMsg, "no room for %1", RequestVerb::Refuse },
            { 109, QtWarningMsg, nullptr, RequestVerb::RefreshDeviceAndRetryLater },
        };
        const RequestStatusTable table(rows);
        LogCollector log;
        QVERIFY(!mRequest->handleStatus(5, table));
        QVERIFY(mRequest->handleStatus(109, table));
        QCOMPARE(mRequest->starts, 1);
        QCOMPARE(mClock->intervals, QList<int>({ 5000 }));
        QVERIFY(mRequest->handleStatus(4, table, QStringLiteral("the folder")));
        QCOMPARE(mRequest->status(), -3);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("no room for the folder") }));
    }

    void aCommandThatIsGoneIsAnInternalError()
    {
        QVERIFY(!mRequest->acceptResult(nullptr, true));
        QCOMPARE(mRequest->status(), -2);
        QCOMPARE(mCompleted->count(), 1);
    }

    void aFailureWithoutAStatusIsAnInternalError()
    {
        FinishedCommand command(Account, 0);
        QVERIFY(mRequest->acceptResult(&command, false));
        QCOMPARE(mRequest->status(), -2);
        QVERIFY(mRequest->acceptResult(&command, true));
        QCOMPARE(mRequest->status(), 0);
    }

    // Provisioning

    void theProvisioningTable_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("wipe");
        QTest::addColumn<QString>("text");
        QTest::newRow("140 starts a wipe")
            << 140 << true << QStringLiteral("remote wipe is requested for account 7");
        QTest::newRow("142 starts provisioning")
            << 142 << false << QStringLiteral("Provision Policy is in place for account 7");
        QTest::newRow("143 starts provisioning")
            << 143 << false << QStringLiteral("Policy refresh requested for account 7");
        QTest::newRow("144 starts provisioning")
            << 144 << false << QStringLiteral("Invalid policy key for account 7");
        QTest::newRow("145 starts provisioning")
            << 145 << false << QStringLiteral("Exterally managed devices are not allowed for account 7");
        QTest::newRow("10403 without a policy key starts a wipe")
            << 10403 << true << QStringLiteral("remote wipe is requested for account 7 by http status 403");
        QTest::newRow("10449 starts provisioning")
            << 10449 << false << QStringLiteral("provisioning error for 7 by http status 449");
    }

    void theProvisioningTable()
    {
        QFETCH(int, status);
        QFETCH(bool, wipe);
        QFETCH(QString, text);
        LogCollector log;
        FinishedCommand command(Account, status);
        QVERIFY(!mRequest->acceptResult(&command, true));
        QTRY_COMPARE(mRequest->provisionRuns, QList<bool>({ wipe }));
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(mRequest->starts, 2);
        QCOMPARE(mCompleted->count(), 0);
        QVERIFY(
            log.contains(QStringLiteral("Resume request. Provision request successfully finished: true")));
    }

    void statusesThatAreNoProvisioningMatter_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("policyKey");
        QTest::addColumn<QString>("text");
        QTest::newRow("139 is only logged")
            << 139 << QString() << QStringLiteral("Device is not fully Provisionable for account 7");
        QTest::newRow("10403 with a policy key is left to the request")
            << 10403 << QStringLiteral("1") << QString();
        QTest::newRow("any other status") << 6 << QString() << QString();
    }

    void statusesThatAreNoProvisioningMatter()
    {
        QFETCH(int, status);
        QFETCH(QString, policyKey);
        QFETCH(QString, text);
        mAccount->policy = policyKey;
        LogCollector log;
        FinishedCommand command(Account, status);
        QVERIFY(mRequest->acceptResult(&command, true));
        QCOMPARE(mRequest->provisionRuns.size(), 0);
        QVERIFY(!mRequest->handleStatus(status));
        if (!text.isEmpty())
            QVERIFY(log.contains(QtCriticalMsg, { text }));
    }

    void aMissingCommandDemandsNothing()
    {
        LogCollector log;
        QVERIFY(!mRequest->checkProvisionStatus(nullptr));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Command is null!") }));
    }

    void status141SubmitsTheDefaultKeyAndResumesLater_data()
    {
        QTest::addColumn<QString>("policyKey");
        QTest::newRow("without a key") << QString();
        QTest::newRow("with the default key already") << QStringLiteral("0");
    }

    void status141SubmitsTheDefaultKeyAndResumesLater()
    {
        QFETCH(QString, policyKey);
        mAccount->policy = policyKey;
        LogCollector log;
        FinishedCommand command(Account, 141);
        QVERIFY(!mRequest->acceptResult(&command, true));
        QCOMPARE(mRequest->starts, 1);
        QTRY_COMPARE(mRequest->starts, 2);
        QCOMPARE(mAccount->policy, QStringLiteral("0"));
        QVERIFY(log.contains(QStringLiteral("server requires policy key to be submitted for 7")));
    }

    void aServerThatAsksForTheDefaultKeyForEverIsGivenUp()
    {
        mRequest->onStart = [this] {
            FinishedCommand command(Account, 141);
            mRequest->acceptResult(&command, true);
        };
        mRequest->onStart();
        QTRY_COMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), 141);
        // The start of init(), the answer to the first demand, and five more.
        QCOMPARE(mRequest->starts, 7);
    }

    void demandsAreCountedWhateverSucceedsBetweenThem_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : { 140, 141, 142, 143, 144, 145 })
            QTest::newRow(qPrintable(QString::number(status))) << status;
    }

    void demandsAreCountedWhateverSucceedsBetweenThem()
    {
        QFETCH(int, status);
        mRequest->onStart = [this, status] {
            mRequest->clearRetries();
            FinishedCommand command(Account, status);
            mRequest->acceptResult(&command, true);
        };
        mRequest->onStart();
        QTRY_COMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), status);
        QCOMPARE(mRequest->starts, 7);
        QCOMPARE(mRequest->provisionRuns.size(), status == 141 ? 0 : 6);
    }

    void anUnavailableServerIsAskedOnceWhetherItMeansAWipe()
    {
        FinishedCommand command(Account, 10403);
        QVERIFY(!mRequest->acceptResult(&command, true));
        QTRY_COMPARE(mRequest->starts, 2);
        QVERIFY(mRequest->acceptResult(&command, true));
        QCOMPARE(mRequest->status(), 10403);
        QCOMPARE(mRequest->provisionRuns, QList<bool>({ true }));
    }

    void aDemandThatIsMetWithoutASuccessIsWhatTheRequestEndsWith()
    {
        mRequest->provisionOutcome = 0;
        FinishedCommand command(Account, 143);
        QVERIFY(!mRequest->acceptResult(&command, true));
        QTRY_COMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), 143);
        QCOMPARE(mRequest->starts, 1);
    }

    void aStepThatIsResumedAtOnceKeepsItsNewCommand()
    {
        CommandProbe request(Account, Id, RequestManager::instance());
        request.start();
        QCOMPARE(request.commands, 1);
        request.finish(142);
        QTRY_COMPARE(request.commands, 2);
        QVERIFY(request.currentCommand());
    }

    void aCancelBeforeTheResumeAfter141Holds()
    {
        FinishedCommand command(Account, 141);
        QVERIFY(!mRequest->acceptResult(&command, true));
        mRequest->cancel();
        QCoreApplication::processEvents();
        QCOMPARE(mRequest->starts, 1);
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
    }

    void refusedProvisioningEndsTheRequestWithItsStatus()
    {
        mRequest->provisionOutcome = -5;
        FinishedCommand command(Account, 142);
        LogCollector log;
        QVERIFY(!mRequest->acceptResult(&command, true));
        QTRY_COMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->starts, 1);
        QCOMPARE(mRequest->status(), -5);
        QVERIFY(
            log.contains(QStringLiteral("Resume request. Provision request successfully finished: false")));
    }

    void cancellingDuringProvisioningCancelsThatAndEndsOnce()
    {
        mRequest->provisionWaits = true;
        FinishedCommand command(Account, 142);
        QVERIFY(!mRequest->acceptResult(&command, true));
        QTRY_COMPARE(mRequest->provisionRuns.size(), 1);
        mRequest->cancel();
        QCOMPARE(mCompleted->count(), 1);
        QCOMPARE(mRequest->status(), -4);
        QCOMPARE(mRequest->cancels, 0);
    }

    void aSecondDemandReplacesTheFirst()
    {
        mRequest->provisionWaits = true;
        mRequest->startProvisionRequest(false);
        const QPointer<ProbeProvision> first = mRequest->provision;
        mRequest->startProvisionRequest(true);
        QVERIFY(mRequest->provision != first);
        QCOMPARE(mCompleted->count(), 0);
        mRequest->provision->completeWith(1);
        QCOMPARE(mRequest->starts, 2);
    }
};

FENNEL_REGISTER_TEST(RequestStatusTest)
#include "requeststatustest.moc"
