// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/dbusinterfacethread.h"
#include "support/logcollector.h"
#include "support/ownprocess.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

/** The service on a machine without a session bus: it runs without clients. */
class DBusServiceWithoutBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theThreadRunsWithoutClients()
    {
        if (OwnProcess::bears(OwnProcess::WithoutBus))
            runWithoutBus();
        else
            QCOMPARE(OwnProcess::run(OwnProcess::WithoutBus, { QStringLiteral("DBusServiceWithoutBusTest") }),
                QString());
    }

private:
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
