// SPDX-License-Identifier: LGPL-2.1-or-later
#include "synchronizer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QStandardPaths>

#include <cstdlib>
#include <sys/stat.h>

int main(int argc, char **argv)
{
    // Only the user may read which accounts there are.
    umask(S_IRWXG | S_IRWXO);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fennel-sync-scheduler"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FENNEL_EAS_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Keeps which accounts are always on, for devices without a sync scheduler.\n"
                       "Serves com.plover.msyncd on the session bus, which starts it when it is called."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    Synchronizer synchronizer(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/eas-fennel/sync-scheduler.conf"));
    QDBusConnection bus = QDBusConnection::sessionBus();
    // The session has ended with its bus.
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), &application,
        SLOT(quit()));
    if (!synchronizer.serve(bus)) {
        qCritical(
            "fennel-sync-scheduler: cannot serve the session bus: %s", qPrintable(bus.lastError().message()));
        return EXIT_FAILURE;
    }
    return QCoreApplication::exec();
}
