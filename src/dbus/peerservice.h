// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "dbus/peerconnections.h"

#include <QDBusServer>
#include <QObject>

class DBusPeerInterfaceAdapter;

/**
 * The service for clients that connect to the daemon without the bus: its server, the object that it exports
 * and the clients. Made, used and destroyed on the service thread.
 */
class PeerService
{
public:
    /** Serves at once; a socket that cannot be opened is written to the log, and then nobody comes. */
    PeerService();
    Q_DISABLE_COPY(PeerService)

    /** Its newConnection() tells of clients. */
    QDBusServer &server() { return mServer; }
    DBusPeerInterfaceAdapter *adapter() const { return mAdapter; }
    void add(const QDBusConnection &connection) { mConnections.add(connection, &mObject); }
    /** To be called while the event loop's objects still live: the bus library looks at them from its own
     * thread. */
    void leave() { mConnections.leave(); }

private:
    QObject mObject;
    DBusPeerInterfaceAdapter *mAdapter;
    QDBusServer mServer;
    PeerConnections mConnections;
};
