// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/buildpaths.h"
#include "support/privatebus.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusReply>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/** The scheduler as a process on a bus of the test's own. */
class SyncSchedulerTest : public QObject
{
    Q_OBJECT

private:
    const QString mService = QStringLiteral("com.plover.msyncd");
    const QString mProfile = QStringLiteral("fenneleas-email");
    std::unique_ptr<QTemporaryDir> mFolder;
    std::unique_ptr<QProcess> mProcess;
    std::unique_ptr<QDBusInterface> mScheduler;

    static bool isRegistered(const QString &service)
    {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(service);
    }
    bool start()
    {
        mProcess = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), mFolder->path());
        mProcess->setProcessEnvironment(environment);
        QDBusServiceWatcher watcher(
            mService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration);
        mProcess->start(BuildPaths::binary(QStringLiteral("bin/fennel-sync-scheduler")), QStringList());
        if (!Waiting::until([this] { return isRegistered(mService); }, 60000))
            return false;
        mScheduler = std::make_unique<QDBusInterface>(mService, QStringLiteral("/synchronizer"), mService);
        return mScheduler->isValid();
    }
    void stop()
    {
        mScheduler.reset();
        mProcess->terminate();
        mProcess->waitForFinished();
        mProcess.reset();
    }
    QString file() const { return mFolder->filePath(QStringLiteral("eas-fennel/sync-scheduler.conf")); }
    QDBusReply<bool> ask(uint account)
    {
        return mScheduler->call(QStringLiteral("isSyncedExternally"), account, mProfile);
    }
    QDBusReply<void> set(uint account, bool on)
    {
        return mScheduler->call(QStringLiteral("setSyncedExternally"), account, mProfile, on);
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(PrivateBus::ensure());
        mFolder = std::make_unique<QTemporaryDir>();
        QVERIFY(start());
    }
    void cleanup()
    {
        stop();
        mFolder.reset();
    }

    void anAccountIsOffUntilItIsSwitchedOn()
    {
        QSignalSpy published(mScheduler.get(), SIGNAL(syncedExternallyStatus(uint, QString, bool)));
        QCOMPARE(ask(7).value(), false);
        QTRY_COMPARE(published.size(), 1);
        QVERIFY(set(7, true).isValid());
        QTRY_COMPARE(published.size(), 2);
        QCOMPARE(ask(7).value(), true);
        QTRY_COMPARE(published.size(), 3);
        QCOMPARE(ask(8).value(), false);
        QTRY_COMPARE(published.size(), 4);
        const QList<QVariantList> expected { { 7U, mProfile, false }, { 7U, mProfile, true },
            { 7U, mProfile, true }, { 8U, mProfile, false } };
        QCOMPARE(QList<QVariantList>(published), expected);
    }

    void aSwitchOutlivesTheProcess()
    {
        QVERIFY(set(7, true).isValid() && set(8, true).isValid() && set(8, false).isValid());
        stop();
        QVERIFY(start());
        QCOMPARE(ask(7).value(), true);
        QCOMPARE(ask(8).value(), false);
    }

    void theFileIsTheUsersAlone()
    {
        QVERIFY(set(7, true).isValid());
        const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup
            | QFileDevice::ReadOther | QFileDevice::WriteOther;
        QVERIFY((QFileInfo(file()).permissions() & others) == 0);
        QVERIFY((QFileInfo(QFileInfo(file()).path()).permissions() & others) == 0);
    }

    void aSwitchThatCannotBeKeptIsAnError()
    {
        // A file where the folder would be; permissions alone do not hold against an administrator.
        QFile blocker(mFolder->filePath(QStringLiteral("eas-fennel")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        QSignalSpy published(mScheduler.get(), SIGNAL(syncedExternallyStatus(uint, QString, bool)));
        const QDBusReply<void> reply = set(7, true);
        QVERIFY(!reply.isValid());
        QVERIFY2(reply.error().message().contains(QStringLiteral("sync-scheduler.conf")),
            qPrintable(reply.error().message()));
        QCOMPARE(ask(7).value(), false);
        QTRY_COMPARE(published.size(), 1);
        QCOMPARE(published.first().at(2).toBool(), false);
    }

    void aBrokenFileIsNotWrittenOver()
    {
        QVERIFY(set(7, true).isValid());
        QFile broken(file());
        QVERIFY(broken.open(QIODevice::WriteOnly | QIODevice::Truncate));
        const QByteArray content("[fenneleas-email\n7=true\n");
        broken.write(content);
        broken.close();
        QVERIFY(!set(8, true).isValid());
        QVERIFY(broken.open(QIODevice::ReadOnly));
        QCOMPARE(broken.readAll(), content);
    }

    void itEndsWithItsBus()
    {
        QProcess bus;
        bus.start(QStringLiteral("dbus-daemon"),
            { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address") });
        QVERIFY(bus.waitForReadyRead());
        const QString address = QString::fromLatin1(bus.readLine().trimmed());
        const auto name = QStringLiteral("bus-that-ends");
        QDBusConnection connection = QDBusConnection::connectToBus(address, name);
        QDBusServiceWatcher watcher(mService, connection, QDBusServiceWatcher::WatchForRegistration);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        QProcess scheduler;
        scheduler.setProcessEnvironment(environment);
        scheduler.start(BuildPaths::binary(QStringLiteral("bin/fennel-sync-scheduler")), QStringList());
        QVERIFY(Waiting::until(
            [&] { return connection.interface()->isServiceRegistered(mService).value(); }, 60000));
        QDBusConnection::disconnectFromBus(name);
        bus.terminate();
        QVERIFY(bus.waitForFinished() && scheduler.waitForFinished());
        QCOMPARE(scheduler.exitStatus(), QProcess::NormalExit);
    }

    void aSecondSchedulerEndsWithAnError()
    {
        QProcess second;
        second.start(BuildPaths::binary(QStringLiteral("bin/fennel-sync-scheduler")), QStringList());
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), EXIT_FAILURE);
        QVERIFY(second.readAllStandardError().contains("cannot serve"));
    }
};

FENNEL_REGISTER_TEST(SyncSchedulerTest)
#include "syncschedulertest.moc"
