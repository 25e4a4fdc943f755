// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/privatebus.h"

#include <QCoreApplication>
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

bool startBus()
{
    bus = new BusProcess;
    qAddPostRoutine(stopBus);
    bus->setProcessChannelMode(QProcess::SeparateChannels);
    bus->start(QStringLiteral("dbus-daemon"),
        { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
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
    static const bool running = startBus();
    return running;
}

QString PrivateBus::address()
{
    return busAddress;
}
