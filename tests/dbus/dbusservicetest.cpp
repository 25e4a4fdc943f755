// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/dbusinterfacethread.h"

#include "application/account/easaccount.h"
#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"
#include "support/accountfactory.h"
#include "support/logcollector.h"
#include "support/privatebus.h"
#include "support/syncscheduler.h"
#include "support/testmain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QtTest>

namespace {

const QString Interface = QStringLiteral("org.fennelos.easdaemon");
const QString PeerInterface = QStringLiteral("org.fennelos.easdaemonp2p");

/** Keeps the messages of one signal of the bus. */
class BusSpy : public QObject
{
    Q_OBJECT

public:
    BusSpy(QDBusConnection bus, const QString &service, const QString &path, const QString &interface,
        const QString &name)
    {
        connected = bus.connect(service, path, interface, name, this, SLOT(onSignal(QDBusMessage)));
    }

    bool connected = false;
    QList<QDBusMessage> messages;

public Q_SLOTS:
    void onSignal(const QDBusMessage &message) { messages.append(message); }
};

QString peerSocket()
{
    return ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS.mid(10);
}

} // namespace

/** The service thread on a real bus, without an engine behind it. */
class DBusServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DBusInterfaceThread> mThread;

    void startThread()
    {
        mThread = std::make_unique<DBusInterfaceThread>();
        mThread->moveToThread(mThread.get());
        QSignalSpy serving(mThread.get(), &DBusInterfaceThread::serving);
        mThread->start();
        QVERIFY(serving.wait());
    }
    void stopThread()
    {
        if (!mThread)
            return;
        mThread->exit(1);
        QVERIFY(mThread->wait(10000));
        mThread.reset();
    }
    template <typename... Arguments> static QDBusMessage call(const QString &method, Arguments &&...arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, Interface, method);
        message.setArguments({ QVariant::fromValue(arguments)... });
        return QDBusConnection::sessionBus().call(message);
    }
    static qulonglong id(const QDBusMessage &reply)
    {
        if (reply.type() == QDBusMessage::ErrorMessage)
            qWarning() << reply.errorMessage();
        return reply.arguments().value(0).toULongLong();
    }
    static BusSpy *spyOn(const QString &signal, QObject *parent)
    {
        auto *const spy = new BusSpy(QDBusConnection::sessionBus(), ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, Interface, signal);
        spy->setParent(parent);
        return spy;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(PrivateBus::ensure());
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        ExchangeActiveSync::registerDBusTypes();
        qRegisterMetaType<EasAccountId>("EasAccountId");
        qRegisterMetaType<FailedPolicyMap>("FailedPolicyMap");
        qRegisterMetaType<EasOofContainer>("EasOofContainer");
        qRegisterMetaType<GalItem>("GalItem");
    }

    void init() { startThread(); }
    void cleanup() { stopThread(); }

    // Calls

    void identifiersCountFromOneForAllAccountsTogether()
    {
        QSignalSpy requested(mThread.get(), &DBusInterfaceThread::requestedSync);
        QCOMPARE(id(call(QStringLiteral("sync"), 7ULL)), 1ULL);
        QCOMPARE(id(call(QStringLiteral("sync"), 8ULL)), 2ULL);
        QCOMPARE(id(call(QStringLiteral("foldersSync"), 7ULL)), 3ULL);
        QTRY_COMPARE(requested.count(), 2);
        QCOMPARE(requested.at(1).at(0).toULongLong(), 8ULL);
        QCOMPARE(requested.at(1).at(1).toULongLong(), 2ULL);
    }

    void foldersAsNumbersOrTextsAreTheSame()
    {
        QSignalSpy requested(mThread.get(), &DBusInterfaceThread::requestedSyncFolders);
        QVERIFY(
            id(call(QStringLiteral("syncFolders"), 7ULL, QList<qulonglong> { 3, 18446744073709551615ULL })));
        QVERIFY(id(call(QStringLiteral("syncFolders"), 7ULL,
            QStringList { QStringLiteral("3"), QStringLiteral("18446744073709551615") })));
        QTRY_COMPARE(requested.count(), 2);
        QCOMPARE(requested.at(0).at(1).toStringList(), requested.at(1).at(1).toStringList());
        QCOMPARE(requested.at(0).at(1).toStringList().size(), 2);
    }

    void everyMethodGivesAnIdentifierAndGoesOn()
    {
        struct Case
        {
            const char *method;
            QVariantList arguments;
            const char *signal;
        };
        const QString text = QStringLiteral("x");
        const QVariant ids = QVariant::fromValue(QList<qulonglong> { 1, 2 });
        const QList<Case> cases {
            { "syncService", { 7ULL, 5 }, SIGNAL(requestedSyncService(qulonglong, int, qulonglong)) },
            { "sendMail", { 7ULL, 9ULL }, SIGNAL(requestedSendMail(qulonglong, qulonglong, qulonglong)) },
            { "meetingResponse", { 7ULL, 9ULL, 1, 5LL, 3ULL, text, text, text },
                SIGNAL(requestedMeetingResponse(qulonglong, qulonglong, qulonglong, qlonglong, int,
                    qulonglong, QString, QString, QString)) },
            { "meetingResponseCalendar", { 7ULL, text, 1, 5LL, 3ULL, text, text, text },
                SIGNAL(requestedMeetingResponseCalendar(qulonglong, qulonglong, QString, qlonglong, int,
                    qulonglong, QString, QString, QString)) },
            { "createFolder", { 7ULL, text, text, 12U },
                SIGNAL(requestedCreateFolder(qulonglong, QString, QString, uint, qulonglong)) },
            { "updateFolder", { 7ULL, text, text, text },
                SIGNAL(requestedUpdateFolder(qulonglong, QString, QString, QString, qulonglong)) },
            { "downloadCalendarAttachment", { 7ULL, text },
                SIGNAL(requestedDownloadCalendarAttachment(qulonglong, qulonglong, QString)) },
            { "deleteFolder", { 7ULL, text },
                SIGNAL(requestedDeleteFolder(qulonglong, QString, qulonglong)) },
            { "provisionPolicy", { 7ULL }, SIGNAL(requestedProvisionPolicy(qulonglong, qulonglong)) },
            { "downloadMessagePart", { 7ULL, 9ULL, text },
                SIGNAL(requestedDownloadMessagePart(qulonglong, qulonglong, QString, qulonglong)) },
            { "searchMessages", { 7ULL, text, text, text, text, 10ULL },
                SIGNAL(requestedSearchMessages(
                    qulonglong, QString, QString, QString, QString, qulonglong, qulonglong)) },
            { "searchGAL", { 7ULL, text, 0, 9, true, false },
                SIGNAL(requestedSearchGAL(qulonglong, QString, int, int, bool, bool, qulonglong)) },
            { "find", { 7ULL, text, text, 1, 10ULL },
                SIGNAL(requestedFind(qulonglong, QString, QString, int, qulonglong, qulonglong)) },
            { "downloadMessages", { 7ULL, ids, true },
                SIGNAL(requestedDownloadMessages(qulonglong, QList<qulonglong>, bool, qulonglong)) },
            { "getOofState", { 7ULL }, SIGNAL(requestedGetOofState(qulonglong, qulonglong)) },
            { "setOofState", { 7ULL, true, false, text, text, text, true, false, text },
                SIGNAL(requestedSetOofState(qulonglong, qulonglong, EasOofContainer)) },
            { "attendeesAvailable", { 7ULL, text, text, text },
                SIGNAL(requestedAttendeesAvailable(qulonglong, qulonglong, QString, QString, QString)) },
        };
        qulonglong last = 0;
        for (const Case &wanted : cases) {
            QSignalSpy requested(mThread.get(), wanted.signal);
            QDBusMessage message = QDBusMessage::createMethodCall(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
                ExchangeActiveSync::EAS_DBUS_PATH_NAME, Interface, QString::fromLatin1(wanted.method));
            message.setArguments(wanted.arguments);
            const qulonglong given = id(QDBusConnection::sessionBus().call(message));
            QVERIFY2(given == ++last, wanted.method);
            QTRY_VERIFY2(requested.count() == 1, wanted.method);
            QCOMPARE(requested.first().first().toULongLong(), 7ULL);
        }
    }

    void quitReconfigAndCancelTakeNoIdentifier()
    {
        QSignalSpy quit(mThread.get(), &DBusInterfaceThread::requestedQuit);
        QSignalSpy reconfig(mThread.get(), &DBusInterfaceThread::requestedReconfig);
        QSignalSpy cancel(mThread.get(), &DBusInterfaceThread::requestedCancelRequest);
        call(QStringLiteral("reconfig"));
        call(QStringLiteral("cancelRequest"), 7ULL, 1ULL);
        call(QStringLiteral("quit"));
        QCOMPARE(id(call(QStringLiteral("sync"), 7ULL)), 1ULL);
        QTRY_COMPARE(quit.count(), 1);
        QCOMPARE(reconfig.count(), 1);
        QCOMPARE(cancel.count(), 1);
    }

    void theOutOfOfficeStateArrivesWhole()
    {
        QSignalSpy requested(mThread.get(), &DBusInterfaceThread::requestedSetOofState);
        QVERIFY(id(call(QStringLiteral("setOofState"), 7ULL, true, true,
            QStringLiteral("2026-01-02T03:04:05Z"), QStringLiteral("2026-02-02T03:04:05Z"),
            QStringLiteral("in"), true, false, QStringLiteral("out"))));
        QTRY_COMPARE(requested.count(), 1);
        const auto state = requested.first().at(2).value<EasOofContainer>();
        QVERIFY(state.oofEnabled());
        QVERIFY(state.timeRangeEnabled());
        QCOMPARE(state.startTime(), QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
        QCOMPARE(state.endTime(), QDateTime(QDate(2026, 2, 2), QTime(3, 4, 5), Qt::UTC));
        QCOMPARE(state.internalMessage(), QStringLiteral("in"));
        QVERIFY(state.externalMessageEnabled());
        QVERIFY(!state.externalMessageToAnyone());
        QCOMPARE(state.externalMessage(), QStringLiteral("out"));
    }

    void versionAndAddressComeFromTheAccountsRecord()
    {
        AccountFactory factory;
        const EasAccountId account = factory.create();
        QVERIFY(account);
        QCOMPARE(call(QStringLiteral("protocolVersion"), qulonglong(account)).arguments().first().toInt(), 0);
        QVERIFY(factory.setValue(
            account, QString(), QStringLiteral("last_known_versions"), QStringLiteral("14.1,2.5,16.0,12.1")));
        // The account library tells the service's thread of a change in its own time.
        QTRY_COMPARE(
            call(QStringLiteral("protocolVersion"), qulonglong(account)).arguments().first().toInt(), 0x1600);
        QVERIFY(factory.setValue(account, QString(), QStringLiteral("connection/emailaddress"),
            QStringLiteral("alice@example.org")));
        QTRY_COMPARE(call(QStringLiteral("emailAddress"), qulonglong(account)).arguments().first().toString(),
            QStringLiteral("alice@example.org"));
    }

    void anUnknownAccountHasNeither()
    {
        LogCollector log;
        QCOMPARE(call(QStringLiteral("protocolVersion"), 4711ULL).arguments().first().toInt(), 0);
        QCOMPARE(call(QStringLiteral("emailAddress"), 4711ULL).arguments().first().toString(), QString());
        QCOMPARE(log.count(QStringLiteral("Cannot allocate account object")), 2);
    }

    void anUnknownAccountDoesNotHideTheKnownOnes()
    {
        AccountFactory factory;
        const EasAccountId account = factory.create();
        QVERIFY(factory.setValue(
            account, QString(), QStringLiteral("last_known_versions"), QStringLiteral("14.1")));
        QCOMPARE(call(QStringLiteral("protocolVersion"), 4711ULL).arguments().first().toInt(), 0);
        QTRY_COMPARE(
            call(QStringLiteral("protocolVersion"), qulonglong(account)).arguments().first().toInt(), 0x1401);
        // The account library has shorter numbers; the rest of this one is that of the account.
        constexpr qulonglong tooLong = 1ULL << 32U;
        QCOMPARE(call(QStringLiteral("protocolVersion"), tooLong + account).arguments().first().toInt(), 0);
    }

    // Results

    void resultsLeaveAsSignals()
    {
        QObject owner;
        BusSpy *const finished = spyOn(QStringLiteral("requestFinished"), &owner);
        BusSpy *const progress = spyOn(QStringLiteral("requestProgress"), &owner);
        BusSpy *const started = spyOn(QStringLiteral("syncStarted"), &owner);
        BusSpy *const completed = spyOn(QStringLiteral("syncCompleted"), &owner);
        DBusInterfaceThread *const thread = mThread.get();
        QMetaObject::invokeMethod(thread, [thread] {
            thread->reportSyncStarted(7, 1);
            thread->reportRequestProgress(7, 1, 100, 20);
            thread->reportSyncCompleted(7, 1, 0);
            thread->reportRequestFinished(7, 1, -4);
        });
        QTRY_COMPARE(finished->messages.size(), 1);
        QCOMPARE(finished->messages.first().signature(), QStringLiteral("tti"));
        QCOMPARE(finished->messages.first().arguments().at(2).toInt(), -4);
        QCOMPARE(progress->messages.value(0).signature(), QStringLiteral("ttxx"));
        QCOMPARE(progress->messages.value(0).arguments().at(2).toLongLong(), 100);
        QCOMPARE(started->messages.size(), 1);
        QCOMPARE(completed->messages.size(), 1);
    }

    void listsAndMapsHaveTheirSignatures()
    {
        QObject owner;
        BusSpy *const provision = spyOn(QStringLiteral("provisionRequestFinished"), &owner);
        BusSpy *const document = spyOn(QStringLiteral("policyDocumentReceived"), &owner);
        BusSpy *const messages = spyOn(QStringLiteral("searchMessagesFinished"), &owner);
        BusSpy *const directory = spyOn(QStringLiteral("searchGALFinished"), &owner);
        BusSpy *const found = spyOn(QStringLiteral("findMessagesFinished"), &owner);
        BusSpy *const attendees = spyOn(QStringLiteral("attendeesAvailableDataReady"), &owner);
        BusSpy *const oof = spyOn(QStringLiteral("getOofFinished"), &owner);
        DBusInterfaceThread *const thread = mThread.get();
        QMetaObject::invokeMethod(thread, [thread] {
            thread->reportProvisionRequestFinished(
                7, 1, -5, { { 3, 4U }, { 6, -1 }, { 7, false }, { 42, QStringList { "x" } } }, 2);
            thread->reportPolicyDocumentReceived(
                7, 1, { { "AllowCamera", true }, { "MaxAttachmentSize", 4U } });
            thread->reportSearchMessagesFinished(7, 2, 0, 9, { 1, 2 });
            thread->reportSearchGALFinished(7, 3, 0, 9, { 1, 2 });
            thread->reportFindMessagesFinished(7, 4, 0, 9, {});
            EasOofContainer state;
            state.setInternalMessage(QStringLiteral("in"));
            thread->reportGetOofFinished(7, 5, state);
            thread->attendeesAvailableDataReady(6, { QStringLiteral("a") }, { QStringLiteral("b") }, {});
        });
        QTRY_COMPARE(attendees->messages.size(), 1);
        QCOMPARE(provision->messages.value(0).signature(), QStringLiteral("ttia{iv}i"));
        const auto policies = qdbus_cast<FailedPolicyMap>(provision->messages.first().arguments().at(3));
        QCOMPARE(policies.value(3), QVariant(4U));
        QCOMPARE(policies.value(6), QVariant(-1));
        QCOMPARE(policies.value(7), QVariant(false));
        QCOMPARE(policies.value(42), QVariant(QStringList { QStringLiteral("x") }));
        QCOMPARE(policies.value(3).type(), QVariant::UInt);
        QCOMPARE(policies.value(6).type(), QVariant::Int);
        QCOMPARE(policies.size(), 4);
        QCOMPARE(document->messages.value(0).signature(), QStringLiteral("tta{sv}"));
        const auto values = qdbus_cast<QVariantMap>(document->messages.first().arguments().at(2));
        QCOMPARE(values.value(QStringLiteral("AllowCamera")), QVariant(true));
        QCOMPARE(values.value(QStringLiteral("MaxAttachmentSize")), QVariant(4U));
        QCOMPARE(messages->messages.value(0).signature(), QStringLiteral("ttiuat"));
        QCOMPARE(directory->messages.value(0).signature(), QStringLiteral("ttiiat"));
        QCOMPARE(found->messages.value(0).signature(), QStringLiteral("ttiuat"));
        QCOMPARE(attendees->messages.value(0).signature(), QStringLiteral("tasasas"));
        QCOMPARE(oof->messages.value(0).signature(), QStringLiteral("ttbbsssbbs"));
    }

    void theStateOfPushIsAnsweredAsItWasTold()
    {
        QObject owner;
        BusSpy *const changed = spyOn(QStringLiteral("pushStateChanged"), &owner);
        QVERIFY(changed->connected);
        const auto state = [](const QDBusMessage &message, int position) {
            return qdbus_cast<QVariantMap>(message.arguments().value(position));
        };
        const QVariantMap off = state(call(QStringLiteral("pushState"), 7ULL), 0);
        QCOMPARE(off.value(QStringLiteral("nextStep")).toString(), QStringLiteral("off"));
        QCOMPARE(off.value(QStringLiteral("enabled")), QVariant(false));

        const QVariantMap pings { { QStringLiteral("enabled"), true }, { QStringLiteral("heartbeat"), 480 },
            { QStringLiteral("lastAnswerAt"), qlonglong(1714550400) },
            { QStringLiteral("nextStep"), QStringLiteral("ping") } };
        // The second one says nothing new, the fourth that the account has gone.
        for (const QVariantMap &told : { pings, pings, off, QVariantMap(), pings, QVariantMap() })
            QMetaObject::invokeMethod(
                mThread.get(), [&] { mThread->reportPushState(7, told); }, Qt::BlockingQueuedConnection);
        QTRY_COMPARE(changed->messages.size(), 4);
        QCOMPARE(changed->messages.value(0).signature(), QStringLiteral("ta{sv}"));
        QCOMPARE(changed->messages.value(0).arguments().value(0).toULongLong(), 7ULL);
        QCOMPARE(state(changed->messages.value(0), 1), pings);
        QCOMPARE(state(changed->messages.value(1), 1), off);
        QCOMPARE(state(changed->messages.value(2), 1), pings);
        QCOMPARE(state(changed->messages.value(3), 1), off);

        QMetaObject::invokeMethod(
            mThread.get(), [&] { mThread->reportPushState(8, pings); }, Qt::BlockingQueuedConnection);
        QCOMPARE(state(call(QStringLiteral("pushState"), 8ULL), 0), pings);
        QCOMPARE(state(call(QStringLiteral("pushState"), 7ULL), 0), off);
    }

    void withoutAnAdapterResultsAreOnlyLogged()
    {
        DBusInterfaceThread idle;
        LogCollector log;
        idle.reportRequestFinished(7, 1, 0);
        idle.reportGalItemReceived(7, 1, 1, GalItem());
        QCOMPARE(log.count(QStringLiteral("No adapter")), 2);
    }

    // Peers

    void directoryItemsReachEveryPeerAndNotTheBus()
    {
        const QString address = ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS;
        QObject owner;
        BusSpy onBus(QDBusConnection::sessionBus(), ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, PeerInterface, QStringLiteral("galItemReceived"));
        QDBusConnection one = QDBusConnection::connectToPeer(address, QStringLiteral("one"));
        QDBusConnection two = QDBusConnection::connectToPeer(address, QStringLiteral("two"));
        QVERIFY(one.isConnected());
        QVERIFY(two.isConnected());
        const QString path = ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME;
        BusSpy first(one, QString(), path, PeerInterface, QStringLiteral("galItemReceived"));
        BusSpy second(two, QString(), path, PeerInterface, QStringLiteral("galItemReceived"));
        DBusInterfaceThread *const thread = mThread.get();
        GalItem item;
        item.setAlias(QStringLiteral("ali"));
        item.setPictureData(QString(200000, QLatin1Char('p')));
        // The server learns of a peer in its own time; the item is sent until both have it.
        const auto bothHaveIt = [&] {
            QMetaObject::invokeMethod(
                thread, [thread, item] { thread->reportGalItemReceived(7, 1, 5, item); });
            return !first.messages.isEmpty() && !second.messages.isEmpty();
        };
        QTRY_VERIFY(bothHaveIt());
        QCOMPARE(first.messages.first().signature(), QStringLiteral("ttt(ssssssssssss)"));
        QCOMPARE(qdbus_cast<GalItem>(second.messages.first().arguments().at(3)), item);
        QCOMPARE(onBus.messages.size(), 0);
        QDBusConnection::disconnectFromPeer(QStringLiteral("one"));
        QDBusConnection::disconnectFromPeer(QStringLiteral("two"));
    }

    void theServiceComesAndGoesWithItsConnections()
    {
        // Connections are closed in the library's thread while this one goes on; that is where it may go
        // wrong.
        for (int round = 0; round < 100; ++round) {
            stopThread();
            startThread();
        }
    }

    void aPeerSocketThatCannotBeMadeLeavesTheBusServed()
    {
        stopThread();
        const QString socket = peerSocket();
        QFile::remove(socket);
        // A folder where the socket should be stands for a folder that is not writable, also for root.
        QVERIFY(QDir().mkpath(socket + QStringLiteral("/in/the/way")));
        LogCollector log;
        startThread();
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Could not create p2p bus:") }));
        QVERIFY(id(call(QStringLiteral("searchGAL"), 7ULL, QStringLiteral("x"), 0, 9, false, false)));
        QObject owner;
        BusSpy *const finished = spyOn(QStringLiteral("searchGALFinished"), &owner);
        DBusInterfaceThread *const thread = mThread.get();
        QMetaObject::invokeMethod(thread, [thread] {
            thread->reportGalItemReceived(7, 1, 5, GalItem());
            thread->reportSearchGALFinished(7, 1, 0, 0, {});
        });
        QTRY_COMPARE(finished->messages.size(), 1);
        stopThread();
        QVERIFY(QDir(socket).removeRecursively());
    }

    void aFolderOfThePeerSocketThatCannotBeMadeIsLogged()
    {
        stopThread();
        const QString folder = QFileInfo(peerSocket()).path();
        QVERIFY(QDir(folder).removeRecursively());
        QFile inTheWay(folder);
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        LogCollector log;
        startThread();
        QVERIFY(
            log.contains(QtCriticalMsg, { QStringLiteral("Could not create directory for p2p bus socket") }));
        QVERIFY(id(call(QStringLiteral("sync"), 7ULL)));
        stopThread();
        QVERIFY(inTheWay.remove());
    }

    // The bus around it

    void aNameThatAnotherProcessHoldsIsLogged()
    {
        stopThread();
        QDBusConnection other =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("other"));
        QTRY_VERIFY(other.registerService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME));
        LogCollector log;
        startThread();
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Cannot register service: ") }));
        stopThread();
        QVERIFY(other.unregisterService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME));
        QDBusConnection::disconnectFromBus(QStringLiteral("other"));
    }

    void theSchedulersSignalBecomesTheAlwaysOnStatus()
    {
        SyncScheduler scheduler;
        QVERIFY(scheduler.isRegistered());
        // Not by a spy, which would be written to on the service's thread.
        QObject owner;
        QList<QVariantList> status;
        connect(mThread.get(), &DBusInterfaceThread::alwaysOnStatus, &owner,
            [&status](uint accountId, const QString &profile, bool enabled) {
                status.append({ accountId, profile, enabled });
            });
        Q_EMIT scheduler.syncedExternallyStatus(7, QStringLiteral("profile"), true);
        QTRY_COMPARE(status.size(), 1);
        QCOMPARE(status.first(), QVariantList({ 7U, QStringLiteral("profile"), true }));
    }

    void theNameIsGivenBack()
    {
        LogCollector log;
        stopThread();
        QVERIFY(log.contains(QStringLiteral("exec returned: 1")));
        QTRY_VERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(
            ExchangeActiveSync::EAS_DBUS_SERVICE_NAME));
    }
};

FENNEL_REGISTER_TEST(DBusServiceTest)
#include "dbusservicetest.moc"
