// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>
#include <QTimer>

/** Starts the daemon by calling it, and asks it to quit. */
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    EasDBusInterfaceProxy daemon(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus());
    QDBusPendingReply<qulonglong> reply = daemon.sync(4711);
    reply.waitForFinished();
    if (reply.isError() || reply.value() == 0) {
        qCritical("%s", qPrintable(reply.error().message()));
        return 1;
    }
    QDBusServiceWatcher watcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, QDBusConnection::sessionBus(),
        QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(
        &watcher, &QDBusServiceWatcher::serviceUnregistered, &application, [] { QCoreApplication::exit(0); });
    QTimer::singleShot(30000, &application, [] { QCoreApplication::exit(1); });
    daemon.quit();
    return QCoreApplication::exec();
}
