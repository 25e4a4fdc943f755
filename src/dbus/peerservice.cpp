// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/peerservice.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "dbus/dbuspeerinterfaceadapter.h"

#include <QDBusError>
#include <QDir>
#include <QFileInfo>

namespace {

QString socketInItsFolder()
{
    const QString address = ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS;
    const QString folder = QFileInfo(address.section(QLatin1Char('='), 1)).path();
    if (!QDir().mkpath(folder))
        qCCritical(eas()) << "Could not create directory for p2p bus socket";
    return address;
}

} // namespace

PeerService::PeerService()
    : mAdapter(new DBusPeerInterfaceAdapter(&mObject))
    , mServer(socketInItsFolder())
{
    if (mServer.isConnected())
        qCInfo(eas()) << "p2p bus for GAL created";
    else
        qCCritical(eas()) << "Could not create p2p bus:" << mServer.lastError().message();
}
