// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/busthread.h"

#include <QDBusConnection>

void BusThread::settle()
{
    // A connection is made in that thread, behind all else, while the caller waits. There is nobody at the
    // address.
    const QString name = QStringLiteral("fennel-settled");
    QDBusConnection::connectToPeer(QStringLiteral("unix:path=/nonexistent/fennel"), name);
    QDBusConnection::disconnectFromPeer(name);
}
