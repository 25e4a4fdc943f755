// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/exchangeactivesync.h"
#include "support/accountfactory.h"
#include "support/buildpaths.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDateTime>
#include <QDirIterator>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

#include <sys/stat.h>

/** The program itself: how it starts, and the three ways in which it ends. */
class DaemonTest : public QObject
{
    Q_OBJECT

private:
    static bool hasMapping()
    {
        return QDirIterator(QDir::homePath(), { QStringLiteral("fennel_eas.db") }, QDir::Files | QDir::Hidden,
            QDirIterator::Subdirectories)
            .hasNext();
    }

    std::unique_ptr<QProcess> mDaemon;

    static QString program() { return BuildPaths::binary(QStringLiteral("bin/fennel-eas")); }

    void start()
    {
        QDBusServiceWatcher watcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, QDBusConnection::sessionBus(),
            QDBusServiceWatcher::WatchForRegistration);
        QSignalSpy registered(&watcher, &QDBusServiceWatcher::serviceRegistered);
        mDaemon = std::make_unique<QProcess>();
        mDaemon->start(program(), QStringList());
        QVERIFY(mDaemon->waitForStarted());
        QVERIFY(registered.wait(20000));
    }
    bool ends(int milliseconds = 20000)
    {
        return mDaemon->waitForFinished(milliseconds) && mDaemon->exitStatus() == QProcess::NormalExit
            && mDaemon->exitCode() == 0;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(PrivateBus::ensure());
        qputenv("DBUS_SESSION_BUS_ADDRESS", PrivateBus::address().toLocal8Bit());
    }

    void cleanup() { mDaemon.reset(); }

    void whatItMakesCanBeReadByItsUserAlone()
    {
        AccountFactory factory;
        AccountOptions options;
        options.calendarsEnabled = true;
        options.contactsEnabled = true;
        QVERIFY(factory.create(options));
        const QDateTime before = QDateTime::currentDateTime();
        umask(S_IWGRP | S_IWOTH);
        start();
        // It is on the bus before it opens the accounts.
        QTRY_VERIFY_WITH_TIMEOUT(hasMapping(), 60000);
        mDaemon->terminate();
        QVERIFY(ends());
        QStringList made;
        QDirIterator files(QDir::homePath(), QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
            QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QFileInfo file(files.next());
            // The account store and the sign-on service are others'.
            if (file.birthTime() < before || file.filePath().contains(QStringLiteral("/accounts"))
                || file.filePath().contains(QStringLiteral("/signon")))
                continue;
            made.append(file.filePath());
            QVERIFY2(!(file.permissions() & 0x0077), qPrintable(file.filePath()));
        }
        QVERIFY2(made.filter(QStringLiteral("fennel_eas.db")).size() > 0,
            qPrintable(made.join(QLatin1Char('\n'))));
    }

    void versionAndHelpNeedNoBus_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("version") << QStringLiteral("--version");
        QTest::newRow("help") << QStringLiteral("--help");
    }

    void versionAndHelpNeedNoBus()
    {
        QFETCH(QString, option);
        QProcess process;
        process.start(program(), { option });
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        QVERIFY(process.readAllStandardOutput().contains("fennel-eas"));
    }

    void aSignalEndsItCleanly()
    {
        start();
        mDaemon->terminate();
        QVERIFY(ends());
    }

    void aCallEndsIt()
    {
        start();
        const QDBusMessage reply = QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
            ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, ExchangeActiveSync::EAS_DBUS_PATH_NAME,
            QStringLiteral("org.fennelos.easdaemon"), QStringLiteral("quit")));
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QVERIFY(ends());
    }

    void aSignalWhileItIsEndingChangesNothing()
    {
        start();
        mDaemon->terminate();
        QTRY_VERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(
            ExchangeActiveSync::EAS_DBUS_SERVICE_NAME));
        mDaemon->terminate();
        QDBusServiceWatcher watcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, QDBusConnection::sessionBus(),
            QDBusServiceWatcher::WatchForRegistration);
        QSignalSpy registeredAgain(&watcher, &QDBusServiceWatcher::serviceRegistered);
        QVERIFY(ends());
        QCoreApplication::processEvents();
        QCOMPARE(registeredAgain.count(), 0);
    }

    void withoutAnEnabledAccountItEndsByItself()
    {
        start();
        QVERIFY(ends());
    }

    void aRequestForAnUnknownAccountFailsAndTheDaemonLives()
    {
        AccountFactory factory;
        QVERIFY(factory.create());
        start();
        QDBusMessage call = QDBusMessage::createMethodCall(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, QStringLiteral("org.fennelos.easdaemon"),
            QStringLiteral("sync"));
        call << 4711ULL;
        QVERIFY(QDBusConnection::sessionBus().connect(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, QStringLiteral("org.fennelos.easdaemon"),
            QStringLiteral("requestFinished"), this, SLOT(onFinished(QDBusMessage))));
        QCOMPARE(QDBusConnection::sessionBus().call(call).arguments().value(0).toULongLong(), 1ULL);
        QTRY_COMPARE(mFinished.size(), 1);
        QCOMPARE(mFinished.first().arguments().at(2).toInt(), -2);
        mDaemon->terminate();
        QVERIFY(ends());
    }

public Q_SLOTS:
    void onFinished(const QDBusMessage &message) { mFinished.append(message); }

private:
    QList<QDBusMessage> mFinished;
};

FENNEL_REGISTER_TEST(DaemonTest)
#include "daemontest.moc"
