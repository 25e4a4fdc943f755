// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/dbusinterfacethread.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

namespace {
constexpr char busVariable[] = "DBUS_SESSION_BUS_ADDRESS";
constexpr char noBus[] = "unix:path=/nonexistent/bus";
} // namespace

/** The service on a machine without a session bus: it runs without clients. */
class DBusServiceWithoutBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theThreadRunsWithoutClients()
    {
        // A process keeps the bus that it saw first.
        if (qgetenv(busVariable) == noBus)
            runWithoutBus();
        else
            runInOwnProcess();
    }

private:
    static void runInOwnProcess()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(busVariable), QString::fromLatin1(noBus));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(
            QCoreApplication::applicationFilePath(), { QStringLiteral("DBusServiceWithoutBusTest") });
        QVERIFY(process.waitForFinished(60000));
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            process.readAll().constData());
    }

    static void runWithoutBus()
    {
        const LogCollector log;
        DBusInterfaceThread thread;
        thread.moveToThread(&thread);
        QSignalSpy serving(&thread, &DBusInterfaceThread::serving);
        thread.start();
        QVERIFY(serving.count() > 0 || serving.wait());
        for (const char *text :
            { "Session bus is not connected", "Cannot register object", "Cannot register service: " })
            QVERIFY2(log.contains(QtCriticalMsg, { QString::fromLatin1(text) }), text);
        thread.exit(0);
        QVERIFY(thread.wait(60000));
    }
};

FENNEL_REGISTER_TEST(DBusServiceWithoutBusTest)
#include "dbusservicewithoutbustest.moc"
