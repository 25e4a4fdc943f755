// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/dbusinterfacethread.h"

#include "accounts/base/accountstore.h"
#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"
#include "dbus/dbusinterfaceadapter.h"
#include "dbus/dbuspeerinterfaceadapter.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusServer>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace {

const QString SessionBusName = QStringLiteral("session_bus");
const QString SchedulerService = QStringLiteral("com.plover.msyncd");
const QString SchedulerPath = QStringLiteral("/synchronizer");
const QString SchedulerSignal = QStringLiteral("syncedExternallyStatus");
constexpr int UnixPathPrefixLength = 10; // "unix:path="

} // namespace

DBusInterfaceThread::DBusInterfaceThread()
{
    setObjectName(QStringLiteral("DBusInterfaceThread"));
}

DBusInterfaceThread::~DBusInterfaceThread() = default;

void DBusInterfaceThread::run()
{
    ExchangeActiveSync::registerDBusTypes();
    // What is created here belongs to this thread and goes with it.
    QObject owner;
    mPeerObject = new QObject(&owner);
    mPeerAdapter = new DBusPeerInterfaceAdapter(mPeerObject);
    createPeerServer();
    if (mPeerServer)
        mPeerServer->setParent(&owner);
    mAdapter = new DBusInterfaceAdapter(this);
    connectSessionBus();
    Q_EMIT serving();

    const int code = exec();
    qCInfo(eas()) << "exec returned:" << code;

    leaveConnections();
    QDBusConnection::disconnectFromBus(SessionBusName);
    const std::unique_ptr<DBusInterfaceAdapter> adapter(mAdapter);
    mAdapter = nullptr;
    mPeerAdapter = nullptr;
    mPeerServer = nullptr;
    mPeerObject = nullptr;
    mAccountsManager.reset();
}

void DBusInterfaceThread::createPeerServer()
{
    const QString address = ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS;
    const QString folder = QFileInfo(address.mid(UnixPathPrefixLength)).path();
    if (!QDir().mkpath(folder))
        qCCritical(eas()) << "Could not create directory for p2p bus socket";
    mPeerServer = new QDBusServer(address);
    if (!mPeerServer->isConnected()) {
        qCCritical(eas()) << "Could not create p2p bus:" << mPeerServer->lastError().message();
        return;
    }
    connect(mPeerServer, &QDBusServer::newConnection, this, &DBusInterfaceThread::newP2PConnection);
    qCInfo(eas()) << "p2p bus for GAL created";
}

void DBusInterfaceThread::connectSessionBus()
{
    // The default connection belongs to the main thread.
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, SessionBusName);
    if (!bus.isConnected())
        qCCritical(eas()) << "Session bus is not connected" << bus.lastError().message();
    if (!bus.registerObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME, this, QDBusConnection::ExportAdaptors))
        qCCritical(eas()) << "Cannot register object";
    if (!bus.registerService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME))
        qCCritical(eas()) << "Cannot register service: " << bus.lastError().message();
    // Found anew by its name, so that the subscription lives on the thread's own connection.
    QDBusConnection(SessionBusName)
        .connect(SchedulerService, SchedulerPath, SchedulerService, SchedulerSignal, this,
            SIGNAL(alwaysOnStatus(uint, QString, bool)));
}

void DBusInterfaceThread::newP2PConnection(const QDBusConnection &connection)
{
    QDBusConnection peer(connection);
    mPeerConnections.append(peer.name());
    if (peer.registerObject(
            ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME, mPeerObject, QDBusConnection::ExportAdaptors))
        qCInfo(eas()) << "Registered object to new p2p connection";
    else
        qCCritical(eas()) << "Could not register object to p2p connection:" << peer.lastError().message();
}

void DBusInterfaceThread::leaveConnections()
{
    // A connection that is closed looks, in the library's own thread, at each object that is still tied to
    // it; these may be gone by then.
    QDBusConnection bus(SessionBusName);
    bus.unregisterObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME);
    bus.disconnect(SchedulerService, SchedulerPath, SchedulerService, SchedulerSignal, this,
        SIGNAL(alwaysOnStatus(uint, QString, bool)));
    for (const QString &name : qAsConst(mPeerConnections))
        QDBusConnection(name).unregisterObject(ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME);
    mPeerConnections.clear();
}

bool DBusInterfaceThread::ensureAccountsManager()
{
    if (!mAccountsManager)
        mAccountsManager = AccountStore::manager();
    return mAccountsManager != nullptr;
}

std::unique_ptr<Accounts::Account> DBusInterfaceThread::storedAccount(qulonglong accountId)
{
    // A fresh object each time: it is read from the store, where another thread may have written meanwhile.
    std::unique_ptr<Accounts::Account> account;
    const bool canExist = accountId <= std::numeric_limits<Accounts::AccountId>::max();
    if (canExist && ensureAccountsManager())
        account.reset(Accounts::Account::fromId(
            mAccountsManager.get(), static_cast<Accounts::AccountId>(accountId), nullptr));
    if (!account)
        qCCritical(eas()) << "Cannot allocate account object";
    return account;
}

int DBusInterfaceThread::protocolVersion(qulonglong accountId)
{
    const auto account = storedAccount(accountId);
    if (!account)
        return ExchangeActiveSync::ProtocolVersionUnknown;
    const QString versions = account->valueAsString(QStringLiteral("last_known_versions"));
    int largest = ExchangeActiveSync::ProtocolVersionUnknown;
    for (const QString &version : versions.split(QLatin1Char(','), Qt::SkipEmptyParts))
        largest = std::max<int>(largest, EasAccount::toProtocolVersion(version.toLatin1()));
    return largest;
}

QString DBusInterfaceThread::emailAddress(qulonglong accountId)
{
    const auto account = storedAccount(accountId);
    if (!account)
        return {};
    account->selectService();
    return account->valueAsString(QStringLiteral("connection/emailaddress"));
}
