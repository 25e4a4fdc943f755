// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/privatebus.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int startTimeout = 10000;

/** Dies with the test, however that ends. */
class BusProcess : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

BusProcess *bus = nullptr;
QString busAddress;

void stopBus()
{
    bus->kill();
    bus->waitForFinished();
    delete bus;
    bus = nullptr;
}

/** A bus configuration without a folder of services; empty if it cannot be written. */
QString bareConfiguration()
{
    const QString name = qEnvironmentVariable("HOME") + QStringLiteral("/bare-bus.conf");
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write("<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy context=\"default\">"
               "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow own=\"*\"/>"
               "</policy></busconfig>");
    return name;
}

bool startBus(const QString &configuration)
{
    bus = new BusProcess;
    qAddPostRoutine(stopBus);
    bus->setProcessChannelMode(QProcess::SeparateChannels);
    bus->start(QStringLiteral("dbus-daemon"),
        { configuration, QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
            QStringLiteral("--print-address") });
    while (!bus->canReadLine() && bus->waitForReadyRead(startTimeout)) {}
    busAddress = QString::fromLatin1(bus->readLine().trimmed());
    if (busAddress.isEmpty()) {
        qWarning("dbus-daemon does not start: %s", qPrintable(bus->errorString()));
        return false;
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", busAddress.toLatin1());
    return true;
}

} // namespace

bool PrivateBus::ensure()
{
    static const bool running = startBus(QStringLiteral("--session"));
    return running;
}

bool PrivateBus::ensureWithoutServices()
{
    static const bool running = startBus(QStringLiteral("--config-file=") + bareConfiguration());
    return running;
}

QString PrivateBus::address()
{
    return busAddress;
}
