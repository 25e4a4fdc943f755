// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

class QDBusConnection;
class QObject;

/**
 * The clients that are connected to the daemon without the bus, for items that are too big for it.
 *
 * The bus library keeps each connection by its name until it is told to drop it: those whose client has gone
 * are dropped when the next one comes. Owned by the service thread, and used on it alone.
 */
class PeerConnections
{
public:
    /** Serves the object to a new client. */
    void add(const QDBusConnection &connection, QObject *object);
    /** Takes the object back from all clients. */
    void leave();
    int count() const { return mNames.size(); }

private:
    void dropDisconnected();

    QStringList mNames;
};
