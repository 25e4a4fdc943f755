// SPDX-License-Identifier: LGPL-2.1-or-later
#include "synchronizer.h"

#include <QDBusConnection>

namespace {

const auto Service = QStringLiteral("com.plover.msyncd");
const auto Path = QStringLiteral("/synchronizer");

} // namespace

Synchronizer::Synchronizer(const QString &fileName)
    : mSwitches(fileName)
{
}

bool Synchronizer::serve(QDBusConnection bus)
{
    // The object comes first: who waits for the name calls it at once.
    return bus.registerObject(Path, this, QDBusConnection::ExportScriptableContents)
        && bus.registerService(Service);
}

bool Synchronizer::isSyncedExternally(uint accountId, const QString &profileName)
{
    const bool isOn = mSwitches.isOn(accountId, profileName);
    Q_EMIT syncedExternallyStatus(accountId, profileName, isOn);
    return isOn;
}

void Synchronizer::setSyncedExternally(uint accountId, const QString &profileName, bool on)
{
    if (mSwitches.set(accountId, profileName, on))
        Q_EMIT syncedExternallyStatus(accountId, profileName, on);
    else
        sendErrorReply(QDBusError::AccessDenied, QStringLiteral("cannot write %1").arg(mSwitches.fileName()));
}
