// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fakedaemon.h"

#include "common/exchangeactivesync.h"
#include "support/privatebus.h"

namespace {
const QString connectionName = QStringLiteral("test-fake-daemon");
} // namespace

FakeDaemon::FakeDaemon(QObject *parent)
    : QObject(parent)
    , mConnection(QDBusConnection::connectToBus(PrivateBus::address(), connectionName))
{
    mRegistered = mConnection.registerObject(
                      ExchangeActiveSync::EAS_DBUS_PATH_NAME, this, QDBusConnection::ExportScriptableContents)
        && mConnection.registerService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME);
}

FakeDaemon::~FakeDaemon()
{
    mConnection.unregisterService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME);
    mConnection.unregisterObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME);
    QDBusConnection::disconnectFromBus(connectionName);
}

qulonglong FakeDaemon::note(const QString &call)
{
    calls.append(call);
    Q_EMIT called();
    return ++mLastId;
}

qulonglong FakeDaemon::sync(qulonglong accountId)
{
    return note(QStringLiteral("sync %1").arg(accountId));
}

qulonglong FakeDaemon::foldersSync(qulonglong accountId)
{
    return note(QStringLiteral("foldersSync %1").arg(accountId));
}

qulonglong FakeDaemon::syncFolders(qulonglong accountId, const QStringList &folderIds)
{
    return note(QStringLiteral("syncFolders %1 %2").arg(accountId).arg(folderIds.join(QLatin1Char(','))));
}
