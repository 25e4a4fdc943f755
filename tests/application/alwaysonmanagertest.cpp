// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/alwaysonmanager.h"

#include "application/base/clockwatch.h"
#include "application/mapping/easdatabase.h"
#include "fakedaemon.h"
#include "requests/syncrequest.h"
#include "support/fakeconfigurations.h"
#include "support/logcollector.h"
#include "support/privatebus.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/waiting.h"
#include "support/wbxmldocument.h"

#include <QDBusConnectionInterface>
#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;
constexpr int Patience = 60000;

QByteArray reply(int status, const QString &folder = QString())
{
    QVector<WbxmlNode> fields { node(Ping::Status, QString::number(status)) };
    if (!folder.isEmpty())
        fields.append(node(Ping::Folders, { node(Ping::Folder, folder) }));
    return document(node(Ping::Ping, fields));
}

} // namespace

/** What keeps an account always on. Syncs are told as over by the tests. */
class AlwaysOnManagerTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    std::unique_ptr<FakeDaemon> mDaemon;
    qulonglong mLastSync = 1000;
    int mPings = 0;

    AlwaysOnManager *manager() const { return mBed->account->alwaysOnManager(); }
    QString step() const { return manager()->state().toMap().value(QStringLiteral("nextStep")).toString(); }

    bool waitForCalls(int count)
    {
        if (!Waiting::until([this, count] { return mDaemon->calls.size() >= count; }, Patience))
            return false;
        // The bus keeps the order of its messages: with this answer those of the daemon have come, too.
        QDBusConnection::sessionBus().interface()->isServiceRegistered(QStringLiteral("org.example"));
        QCoreApplication::processEvents();
        return mDaemon->calls.size() == count;
    }
    bool waitForPings(int count)
    {
        return Waiting::until([this, count] { return mBed->server.requests().size() >= count; }, Patience)
            && mBed->server.requests().size() == count;
    }
    bool waitForStep(const char *wanted)
    {
        return Waiting::until([this, wanted] { return step() == QLatin1String(wanted); }, Patience);
    }

    /** A sync of the account comes and goes. */
    void syncRuns(int status = 0, bool bringsChanges = true)
    {
        Q_EMIT mBed->manager->syncStarted(Account, ++mLastSync);
        if (bringsChanges)
            Q_EMIT mBed->manager->changesReceived(Account);
        Q_EMIT mBed->manager->syncCompleted(Account, mLastSync, status);
        Q_EMIT mBed->manager->requestFinished(Account, mLastSync, status);
    }

    /** Push is on, and the full sync that it begins with is over. */
    void begin()
    {
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForCalls(1));
        syncRuns();
    }

    /** The device's clock goes on, and timers that are held come. */
    void jump(int seconds)
    {
        mBed->clock.advance(qint64(seconds) * 1000);
        Q_EMIT ClockWatch::instance().jumped();
    }

    QList<int> pauses() const
    {
        QList<int> found;
        for (const int interval : qAsConst(mBed->clock.intervals)) {
            if (interval == 1000 || interval == 3000 || interval == 9000 || interval == 27000)
                found.append(interval / 1000);
        }
        return found;
    }

    static void addFolder(const char *serverId, const char *localId, EasFolderItem::FolderType type)
    {
        EasFolderItem folder;
        folder.setServerId(QString::fromLatin1(serverId));
        folder.setLocalId(QString::fromLatin1(localId));
        folder.setServerParentId(QStringLiteral("0"));
        folder.setType(type);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder }));
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(PrivateBus::ensure());
        mDaemon = std::make_unique<FakeDaemon>();
        QVERIFY(mDaemon->isRegistered());
        mBed = std::make_unique<RequestBed>(QStringList { QStringLiteral("Ping"), QStringLiteral("Sync") });
        mBed->clock.stop();
        mBed->clock.held += { Clock::Timer::PushRestart, Clock::Timer::LocalChanges };
        mBed->account->firstSyncDone = true;
        mBed->account->email.reset(new FakeEmailConfiguration(Account));
        mBed->account->calendar.reset(new FakeCalendarConfiguration(Account));
        mBed->account->contacts.reset(new FakeContactsConfiguration(Account));
        addFolder("8", "calendar", EasFolderItem::DefaultCalendarFolder);
        addFolder("9", "contacts", EasFolderItem::DefaultContactsFolder);
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup()
    {
        const QString wrong = RequestBed::end(mBed);
        mDaemon.reset();
        QCOMPARE(wrong, QString());
    }

    void pushBeginsWithAFullSync()
    {
        LogCollector log;
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForCalls(1));
        QCOMPARE(mDaemon->calls, QStringList { QStringLiteral("sync 7") });
        QVERIFY(log.contains(QStringLiteral("start, enabledAlwaysOn: true")));
        QVERIFY(log.contains(QStringLiteral("Internal full sync request: 7")));
        QCOMPARE(step(), QStringLiteral("sync"));
        // Once.
        mBed->account->setAlwaysOn(true);
        QCOMPARE(step(), QStringLiteral("sync"));

        mBed->answerNever();
        syncRuns();
        QVERIFY(waitForPings(1));
        QCOMPARE(step(), QStringLiteral("ping"));
        QCOMPARE(mDaemon->calls.size(), 1);
        QVERIFY(log.contains(QStringLiteral("Restart ping timer interval: 1000")));
        QVERIFY(log.contains(QStringLiteral("ping request started")));
    }

    void aFullSyncIsNotAskedForTwice()
    {
        auto *const queued = new SyncRequest(Account, 5, mBed->manager);
        mBed->account->ready = false;
        mBed->manager->processNewRequest(queued);
        LogCollector log;
        mBed->account->setAlwaysOn(true);
        QVERIFY(log.contains(QStringLiteral("Internal full sync request: one is under way")));
        QCOMPARE(mDaemon->calls, QStringList());
    }

    void withoutAFirstSyncThereIsNoPing()
    {
        mBed->account->firstSyncDone = false;
        LogCollector log;
        begin();
        QTRY_VERIFY(
            log.contains(QStringLiteral("Initial sync is not completed, can't start ping request yet")));
        QVERIFY(waitForStep("stopped"));
    }

    void changesAreFetched()
    {
        mBed->answer(reply(2, QStringLiteral("8")));
        begin();
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("syncFolders 7 calendar"));
        QCOMPARE(step(), QStringLiteral("sync"));
        const QVariantMap state = manager()->state().toMap();
        QCOMPARE(state.value(QStringLiteral("lastAnswer")).toInt(), 2);
        QCOMPARE(state.value(QStringLiteral("folders")).toInt(), 2);
        mBed->answerNever();
        syncRuns();
        QVERIFY(waitForPings(2));
    }

    void changesOfAnUnknownFolderLeadToAFullSync()
    {
        mBed->answer(reply(2, QStringLiteral("77")));
        begin();
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("sync 7"));
    }

    void aChangedHierarchyIsFetched()
    {
        mBed->answer(reply(7));
        LogCollector log;
        begin();
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("foldersSync 7"));
        QVERIFY(log.contains(QStringLiteral("Internal folders request")));
    }

    void aServerThatFailsMakesPausesGrow_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : { 106, 110, 500 })
            QTest::addRow("%d", status) << status;
    }

    void aServerThatFailsMakesPausesGrow()
    {
        QFETCH(int, status);
        for (int i = 0; i < 3; ++i)
            mBed->answer(reply(status));
        mBed->answer(reply(7));
        mBed->clock.intervals.clear();
        LogCollector log;
        begin();
        QVERIFY(waitForCalls(2));
        QCOMPARE(pauses(), QList<int>({ 1, 1, 3, 9 }));
        QVERIFY(log.contains(QStringLiteral("server error. mTimeoutFactor: 9")));
        // A word of sense, and they begin anew.
        mBed->answerNever();
        mBed->clock.intervals.clear();
        syncRuns();
        QVERIFY(waitForPings(5));
        QCOMPARE(pauses(), QList<int>({ 1 }));
    }

    void changesThatAreNoneMakePausesGrow()
    {
        mBed->clock.intervals.clear();
        mBed->answer(reply(2, QStringLiteral("8")));
        begin();
        for (int round = 2; round <= 4; ++round) {
            QVERIFY(waitForCalls(round));
            mBed->answer(reply(2, QStringLiteral("8")));
            syncRuns(0, false);
        }
        QVERIFY(waitForCalls(5));
        QCOMPARE(pauses(), QList<int>({ 1, 1, 3, 9 }));
        // Something did come, and they begin anew.
        mBed->answerNever();
        mBed->clock.intervals.clear();
        syncRuns();
        QVERIFY(waitForPings(5));
        QCOMPARE(pauses(), QList<int>({ 1 }));
    }

    void whateverElseStopsPushUntilAFullSync()
    {
        const QList<int> minutes { 1, 5, 15, 30, 30 };
        mBed->answer(reply(129));
        LogCollector log;
        begin();
        QVERIFY(waitForStep("stopped"));
        int calls = 1;
        for (const int wait : minutes) {
            QCOMPARE(manager()->state().nextStepAt, mBed->clock.currentDateTimeUtc().addSecs(wait * 60));
            QVERIFY(log.contains(QStringLiteral("full sync in %1 min").arg(wait)));
            jump(wait * 60);
            QVERIFY(waitForCalls(++calls));
            QCOMPARE(mDaemon->calls.last(), QStringLiteral("sync 7"));
            syncRuns(4);
            QVERIFY(waitForStep("stopped"));
        }
        // One that succeeds starts push again, and a Ping that is answered makes the waits short again.
        jump(30 * 60);
        QVERIFY(waitForCalls(++calls));
        mBed->answer(reply(7));
        syncRuns();
        QVERIFY(waitForCalls(++calls));
        syncRuns(4);
        QCOMPARE(manager()->state().nextStepAt, mBed->clock.currentDateTimeUtc().addSecs(60));
    }

    void aDemandForProvisioningIsMetByASyncAtOnce_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : { 140, 141, 142, 143, 144, 145, 449 })
            QTest::addRow("%d", status) << status;
    }

    void aDemandForProvisioningIsMetByASyncAtOnce()
    {
        QFETCH(int, status);
        const auto demand = [&] {
            ScriptedAnswer refusal;
            refusal.status = status;
            status == 449 ? mBed->server.answer(refusal) : mBed->answer(reply(status));
        };
        demand();
        begin();
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("sync 7"));
        // It has not helped: the next one waits as after any stop.
        demand();
        syncRuns();
        QVERIFY(waitForStep("stopped"));
        QCOMPARE(manager()->state().nextStepAt, mBed->clock.currentDateTimeUtc().addSecs(60));
        jump(60);
        QVERIFY(waitForCalls(3));
        // A Ping in between that is answered as it should be makes it a new demand.
        mBed->answer(reply(7));
        syncRuns();
        QVERIFY(waitForCalls(4));
        demand();
        syncRuns();
        QVERIFY(waitForCalls(5));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("sync 7"));
    }

    void aServerThatIsUnavailableMakesNoDemand()
    {
        ScriptedAnswer unavailable;
        unavailable.status = 503;
        mBed->server.answer(unavailable);
        begin();
        QVERIFY(waitForStep("stopped"));
        QCOMPARE(manager()->state().nextStepAt, mBed->clock.currentDateTimeUtc().addSecs(60));
    }

    void aFailedSyncStopsPush()
    {
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForCalls(1));
        syncRuns(10001);
        QCOMPARE(step(), QStringLiteral("stopped"));
    }

    void aRequestThatEndsWithoutASyncStopsPush()
    {
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForCalls(1));
        // The account is blocked, say; the end may come before the reply of the call.
        Q_EMIT mBed->manager->requestFinished(Account, 1, -4);
        QVERIFY(waitForStep("stopped"));
        Q_EMIT mBed->manager->requestFinished(Account, 1, -4);
        QVERIFY(manager()->state().nextStepAt.isValid());
    }

    void newCredentialsOfABlockedAccountStartPushAgain()
    {
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForCalls(1));
        syncRuns(10204);
        // Fetched anew because they were refused; the account is not blocked yet.
        Q_EMIT mBed->account->credentialsChanged(Account);
        QVERIFY(waitForCalls(1));
        mBed->account->blocked = true;
        jump(60);
        QVERIFY(waitForCalls(2));
        syncRuns(-4);
        Q_EMIT mBed->account->credentialsChanged(Account);
        QVERIFY(waitForCalls(2));
        mBed->account->blocked = false;
        Q_EMIT mBed->account->credentialsChanged(Account);
        QVERIFY(waitForCalls(3));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("sync 7"));
    }

    void aDaemonThatIsNotThereStopsPush()
    {
        mDaemon.reset();
        LogCollector log;
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForStep("stopped"));
        QVERIFY(log.contains(QStringLiteral("the bus refused a sync of account 7")));
        mDaemon = std::make_unique<FakeDaemon>();
        jump(60);
        QVERIFY(waitForCalls(1));
    }

    void aPingGivesWayToASync()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        Q_EMIT mBed->manager->syncStarted(Account, 5);
        QCOMPARE(step(), QStringLiteral("sync"));
        Q_EMIT mBed->manager->networkStateChanged(Account, true);
        Q_EMIT mBed->account->emailConfigurationChanged(Account);
        QCOMPARE(step(), QStringLiteral("sync"));
        mBed->answerNever();
        Q_EMIT mBed->manager->syncCompleted(Account, 5, 0);
        QVERIFY(waitForPings(2));
    }

    void syncsOfOtherAccountsDoNotMatter()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        Q_EMIT mBed->manager->syncStarted(Account + 1, 5);
        Q_EMIT mBed->manager->syncCompleted(Account + 1, 5, 4);
        Q_EMIT mBed->manager->networkStateChanged(Account + 1, false);
        QCOMPARE(step(), QStringLiteral("ping"));
    }

    void aLostNetworkEndsThePingUntilItIsBack()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        LogCollector log;
        Q_EMIT mBed->manager->networkStateChanged(Account, false);
        QCOMPARE(step(), QStringLiteral("network"));
        QVERIFY(log.contains(QStringLiteral("Request canceled")));
        Q_EMIT mBed->manager->networkStateChanged(Account, false);
        mBed->answerNever();
        Q_EMIT mBed->manager->networkStateChanged(Account, true);
        QVERIFY(waitForPings(2));
        QCOMPARE(mDaemon->calls.size(), 1);
    }

    void withoutANetworkAStopWaitsForIt()
    {
        begin();
        Q_EMIT mBed->manager->networkStateChanged(Account, false);
        syncRuns(-9);
        QCOMPARE(step(), QStringLiteral("network"));
        QVERIFY(!manager()->state().nextStepAt.isValid());
    }

    void theFirstFullSyncIsMadeUpForWhenTheNetworkIsBack()
    {
        mBed->account->setAlwaysOn(true);
        QVERIFY(waitForCalls(1));
        Q_EMIT mBed->manager->networkStateChanged(Account, false);
        syncRuns(-9);
        Q_EMIT mBed->manager->networkStateChanged(Account, true);
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("sync 7"));
    }

    void localChangesGoUpTogether()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        LogCollector log;
        Q_EMIT mBed->calendar->changesAvailable({ QStringLiteral("calendar") });
        Q_EMIT mBed->contacts->changesAvailable({ QStringLiteral("contacts"), QStringLiteral("calendar") });
        Q_EMIT mBed->mail->messagesChanged({ QStringLiteral("3") });
        jump(2);
        QCOMPARE(step(), QStringLiteral("ping"));
        jump(1);
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("syncFolders 7 calendar,contacts,3"));
        QVERIFY(log.contains(QStringLiteral("starting internal sync for folders:")));
        QVERIFY(log.contains(QStringLiteral("changes available in folders:")));
        mBed->answerNever();
        syncRuns();
        QVERIFY(waitForPings(2));
        jump(10);
        QCOMPARE(mDaemon->calls.size(), 2);
    }

    void changesMadeOfflineGoUpWhenTheNetworkIsBack()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        Q_EMIT mBed->manager->networkStateChanged(Account, false);
        Q_EMIT mBed->calendar->changesAvailable({ QStringLiteral("calendar") });
        jump(10);
        QCOMPARE(mDaemon->calls.size(), 1);
        LogCollector log;
        Q_EMIT mBed->manager->networkStateChanged(Account, true);
        QVERIFY(log.contains(QStringLiteral("we have some local changes to sync")));
        jump(3);
        QVERIFY(waitForCalls(2));
        QCOMPARE(mDaemon->calls.last(), QStringLiteral("syncFolders 7 calendar"));
    }

    void aSwitchThatIsOffStopsEverything()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        Q_EMIT mBed->calendar->changesAvailable({ QStringLiteral("calendar") });
        mBed->account->setAlwaysOn(false);
        QCOMPARE(step(), QStringLiteral("off"));
        LogCollector log;
        Q_EMIT mBed->contacts->changesAvailable({ QStringLiteral("contacts") });
        Q_EMIT mBed->account->emailConfigurationChanged(Account);
        QVERIFY(log.contains(QStringLiteral("Tried Start reping timer, but Always on is disabled")));
        syncRuns(4);
        jump(24 * 3600);
        QCOMPARE(step(), QStringLiteral("off"));
        QCOMPARE(mDaemon->calls.size(), 1);
    }

    void anAccountThatIsDisabledIsNotPushed()
    {
        mBed->account->isEnabled = false;
        mBed->account->setAlwaysOn(true);
        QVERIFY(!manager());
        mBed->account->isEnabled = true;
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        mBed->account->isEnabled = false;
        Q_EMIT mBed->account->emailConfigurationChanged(Account);
        QCOMPARE(step(), QStringLiteral("off"));
    }

    void anAccountThatIsRemovedIsNotPushed()
    {
        mBed->answerNever();
        begin();
        QVERIFY(waitForPings(1));
        LogCollector log;
        mBed->manager->storage->remove(Account);
        QVERIFY(log.contains(QStringLiteral("Request canceled")));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void anAcknowledgedWipeEndsPush()
    {
        mBed->answer(reply(2, QStringLiteral("8")));
        begin();
        QVERIFY(waitForCalls(2));
        mBed->account->alwaysOnManager()->setAlwaysOnScheduling(false);
        QCOMPARE(step(), QStringLiteral("off"));
    }

    void theStateIsToldWhenItChanges()
    {
        QSignalSpy told(mBed->manager, &RequestManager::pushStateChanged);
        mBed->answer(reply(7));
        begin();
        QVERIFY(waitForCalls(2));
        QStringList steps;
        QVariantMap last;
        for (const QList<QVariant> &signal : told) {
            const QVariantMap state = signal.at(1).toMap();
            QVERIFY(state != last);
            last = state;
            const QString next = state.value(QStringLiteral("nextStep")).toString();
            if (steps.isEmpty() || steps.last() != next)
                steps.append(next);
            QCOMPARE(state.value(QStringLiteral("enabled")).toBool(), true);
            QCOMPARE(state.value(QStringLiteral("heartbeat")).toInt(), 300);
            QCOMPARE(state.contains(QStringLiteral("nextStepAt")), next == QLatin1String("pause"));
            // An answer that ends the Ping is told with what follows it.
            if (next == QLatin1String("ping"))
                QVERIFY(!state.contains(QStringLiteral("lastAnswer")));
        }
        QCOMPARE(steps,
            QStringList({ QStringLiteral("sync"), QStringLiteral("pause"), QStringLiteral("ping"),
                QStringLiteral("sync") }));
        QCOMPARE(last.value(QStringLiteral("lastAnswer")).toInt(), 7);
        QCOMPARE(last.value(QStringLiteral("lastAnswerAt")).toLongLong(),
            mBed->clock.currentDateTimeUtc().toSecsSinceEpoch());
    }
};

FENNEL_REGISTER_TEST(AlwaysOnManagerTest)
#include "alwaysonmanagertest.moc"
