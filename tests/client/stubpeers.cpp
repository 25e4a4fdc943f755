// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/stubpeers.h"

#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDir>
#include <QFileInfo>

StubPeers::StubPeers()
{
    ExchangeActiveSync::registerDBusTypes();
    const QString address = ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS;
    const QString socket = address.section(QLatin1Char('='), 1);
    QDir().mkpath(QFileInfo(socket).path());
    QFile::remove(socket);
    mServer = std::make_unique<QDBusServer>(address);
    connect(mServer.get(), &QDBusServer::newConnection, this, [this](const QDBusConnection &connection) {
        QDBusConnection peer(connection);
        mNames.append(peer.name());
        peer.registerObject(
            ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME, this, QDBusConnection::ExportScriptableSignals);
    });
}

StubPeers::~StubPeers()
{
    for (const QString &name : qAsConst(mNames))
        QDBusConnection::disconnectFromPeer(name);
}
