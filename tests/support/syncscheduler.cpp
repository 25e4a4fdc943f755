// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/syncscheduler.h"

#include "support/privatebus.h"

namespace {
const QString connectionName = QStringLiteral("test-sync-scheduler");
const QString serviceName = QStringLiteral("com.plover.msyncd");
} // namespace

SyncScheduler::SyncScheduler(QObject *parent)
    : QObject(parent)
    , mConnection(QDBusConnection::connectToBus(PrivateBus::address(), connectionName))
{
    mRegistered = mConnection.registerObject(
                      QStringLiteral("/synchronizer"), this, QDBusConnection::ExportScriptableContents)
        && mConnection.registerService(serviceName);
}

SyncScheduler::~SyncScheduler()
{
    mConnection.unregisterService(serviceName);
    // The connection is closed in the library's thread, when this object may be gone.
    mConnection.unregisterObject(QStringLiteral("/synchronizer"));
    QDBusConnection::disconnectFromBus(connectionName);
}

bool SyncScheduler::isRegistered() const
{
    return mRegistered;
}

QList<SyncScheduler::Query> SyncScheduler::queries() const
{
    return mQueries;
}

bool SyncScheduler::isSyncedExternally(uint accountId, const QString &profileName)
{
    mQueries.append(Query(accountId, profileName));
    Q_EMIT queried();
    if (mAnswer)
        Q_EMIT syncedExternallyStatus(accountId, profileName, true);
    return mAnswer;
}

QStringList SyncScheduler::switches() const
{
    return mSwitches;
}

void SyncScheduler::setSyncedExternally(uint accountId, const QString &profileName, bool on)
{
    mSwitches.append(QStringLiteral("%1 %2 %3")
                         .arg(accountId)
                         .arg(profileName, on ? QStringLiteral("on") : QStringLiteral("off")));
    Q_EMIT syncedExternallyStatus(accountId, profileName, on);
}
