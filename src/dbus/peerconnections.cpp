// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/peerconnections.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDBusError>

#include <algorithm>

void PeerConnections::add(const QDBusConnection &connection, QObject *object)
{
    dropDisconnected();
    QDBusConnection peer(connection);
    mNames.append(peer.name());
    if (peer.registerObject(
            ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME, object, QDBusConnection::ExportAdaptors))
        qCInfo(eas()) << "Registered object to new p2p connection";
    else
        qCCritical(eas()) << "Could not register object to p2p connection:" << peer.lastError().message();
}

void PeerConnections::leave()
{
    for (const QString &name : qAsConst(mNames))
        QDBusConnection(name).unregisterObject(ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME);
    mNames.clear();
}

void PeerConnections::dropDisconnected()
{
    const auto gone = std::stable_partition(mNames.begin(), mNames.end(),
        [](const QString &name) { return QDBusConnection(name).isConnected(); });
    for (auto name = gone; name != mNames.end(); ++name) {
        QDBusConnection(*name).unregisterObject(ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME);
        QDBusConnection::disconnectFromPeer(*name);
    }
    mNames.erase(gone, mNames.end());
}
