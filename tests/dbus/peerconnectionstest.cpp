// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/peerconnections.h"
#include "support/testmain.h"

#include <QDBusConnection>
#include <QDBusServer>
#include <QTemporaryDir>
#include <QtTest>

/** @short Clients without the bus come and go, and leave nothing behind. */
class PeerConnectionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clientsThatHaveGoneAreDropped()
    {
        const QTemporaryDir folder;
        QDBusServer server(QStringLiteral("unix:path=") + folder.filePath(QStringLiteral("socket")));
        QVERIFY(server.isConnected());
        QObject served;
        PeerConnections peers;
        QStringList names;
        connect(&server, &QDBusServer::newConnection, this, [&](const QDBusConnection &connection) {
            names.append(connection.name());
            peers.add(connection, &served);
        });
        QDBusConnection::connectToPeer(server.address(), QStringLiteral("stays"));
        QTRY_COMPARE(names.size(), 1);
        for (int number = 0; number < 5; ++number) {
            const QString client = QStringLiteral("goes %1").arg(number);
            QDBusConnection::connectToPeer(server.address(), client);
            QTRY_COMPARE(names.size(), number + 2);
            // The one that stays, and the one that has just come.
            QCOMPARE(peers.count(), 2);
            QDBusConnection::disconnectFromPeer(client);
            QTRY_VERIFY(!QDBusConnection(names.last()).isConnected());
        }
        QVERIFY(QDBusConnection(names.first()).isConnected());
        peers.leave();
        QCOMPARE(peers.count(), 0);
        for (const QString &name : qAsConst(names))
            QDBusConnection::disconnectFromPeer(name);
        QDBusConnection::disconnectFromPeer(QStringLiteral("stays"));
    }
};

FENNEL_REGISTER_TEST(PeerConnectionsTest)
#include "peerconnectionstest.moc"
