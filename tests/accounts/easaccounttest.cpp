// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/alwaysonmanager.h"
#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;

/** What an account keeps by itself: versions, cookie, times, the always-on switch. */
class EasAccountTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aVersionHasOneText_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("12.0") << 0x1200 << QByteArray("12.0");
        QTest::newRow("12.1") << 0x1201 << QByteArray("12.1");
        QTest::newRow("14.0") << 0x1400 << QByteArray("14.0");
        QTest::newRow("14.1") << 0x1401 << QByteArray("14.1");
        QTest::newRow("16.0") << 0x1600 << QByteArray("16.0");
        QTest::newRow("16.1") << 0x1601 << QByteArray("16.1");
    }

    void aVersionHasOneText()
    {
        QFETCH(int, version);
        QFETCH(QByteArray, text);
        QCOMPARE(EasAccount::encodedProtocolVersion(static_cast<ProtocolVersion>(version)), text);
        QCOMPARE(static_cast<int>(EasAccount::toProtocolVersion(text)), version);
    }

    void anUnknownVersionHasNoText()
    {
        QCOMPARE(EasAccount::encodedProtocolVersion(ProtocolVersionUnknown), QByteArray());
        for (const char *text : { "2.5", "", "12.00", " 12.0", "14" })
            QCOMPARE(EasAccount::toProtocolVersion(text), ProtocolVersionUnknown);
    }

    void theVersionInUseIsLoggedWhenItChanges()
    {
        FakeAccount account(1);
        QCOMPARE(account.encodedProtocolVersion(), QByteArray());
        account.setProtocolVersion(ProtocolVersion121);
        const LogCollector log;
        account.setProtocolVersion(ProtocolVersion161);
        QVERIFY(log.contains(QtInfoMsg, { "12.1", " => ", "16.1" }));
        QCOMPARE(account.encodedProtocolVersion(), QByteArray("16.1"));
    }

    void theCookieHoldsDomainUserAndPassword_data()
    {
        QTest::addColumn<QString>("domain");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QByteArray>("plain");
        QTest::newRow("without a domain") << ""
                                          << "pw" << QByteArray("alice:pw");
        QTest::newRow("with a domain") << "CORP"
                                       << "pw" << QByteArray("CORP\\alice:pw");
        QTest::newRow("a colon in the password") << ""
                                                 << "a:b:c" << QByteArray("alice:a:b:c");
        QTest::newRow("not ASCII") << "" << QString::fromUtf8("gr\u00fcn") << QByteArray("alice:gr\xc3\xbcn");
    }

    void theCookieHoldsDomainUserAndPassword()
    {
        QFETCH(QString, domain);
        QFETCH(QString, password);
        QFETCH(QByteArray, plain);
        FakeAccount account(1);
        account.connection->domain = domain;
        account.secret = password;
        account.refreshAuthenticationCache();
        QCOMPARE(QByteArray::fromBase64(account.authenticationBasicCookie()), plain);
    }

    void theCookieChangesOnlyWhenItIsRefreshed()
    {
        FakeAccount account(1);
        QVERIFY(account.authenticationBasicCookie().isEmpty());
        account.refreshAuthenticationCache();
        const QByteArray before = account.authenticationBasicCookie();
        account.secret = QStringLiteral("other");
        QCOMPARE(account.authenticationBasicCookie(), before);
    }

    void noConnectionMeansNoCookie()
    {
        FakeAccount account(1);
        account.refreshAuthenticationCache();
        account.connection.reset();
        const LogCollector log;
        account.refreshAuthenticationCache();
        QVERIFY(account.authenticationBasicCookie().isEmpty());
        QVERIFY(log.contains(QtCriticalMsg, { "No connection config" }));
    }

    void theCookieIsNeverLogged()
    {
        FakeAccount account(1);
        const LogCollector log;
        account.refreshAuthenticationCache();
        QVERIFY(!log.contains(account.secret));
        QVERIFY(!log.contains(QString::fromLatin1(account.authenticationBasicCookie())));
    }

    void severalServicesTakeOneTimeButOnlyOneIsAsked()
    {
        FakeAccount account(1);
        const QDateTime time = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
        const EasAccount::Service both = EasAccount::ContactsService | EasAccount::CalendarService;
        account.setLastSyncTime(both, time);
        QCOMPARE(account.lastSyncTime(EasAccount::ContactsService), time);
        QCOMPARE(account.lastSyncTime(EasAccount::CalendarService), time);
        QVERIFY(!account.lastSyncTime(EasAccount::EmailService).isValid());
        QVERIFY(!account.lastSyncTime(both).isValid());
    }

    void commandsAreComparedExactly()
    {
        FakeAccount account(1);
        const QStringList commands { QStringLiteral("Sync"), QStringLiteral("FolderSync") };
        account.setSupportedCommands(commands);
        QVERIFY(account.commandIsSupported(QStringLiteral("Sync")));
        QVERIFY(!account.commandIsSupported(QStringLiteral("sync")));
        QVERIFY(!account.commandIsSupported(QString()));
        QCOMPARE(account.supportedCommands(), commands);
        QVERIFY(!account.supportedCommands().isSharedWith(commands));
        const QStringList own = account.supportedCommands();
        account.setSupportedCommands(own);
        QVERIFY2(account.supportedCommands().isSharedWith(own), "its own list is left alone");
    }

    void valuesStartAsTheProtocolExpects()
    {
        FakeAccount account(7);
        QCOMPARE(account.id(), EasAccountId(7));
        QCOMPARE(account.heartbeatInterval(), 300);
        QCOMPARE(account.deviceId(), QStringLiteral("v140Device"));
        QCOMPARE(account.deviceType(), QStringLiteral("HalcyonOS"));
        QCOMPARE(account.protocolVersion(), ProtocolVersionUnknown);
        QVERIFY(account.isReady());
        QVERIFY(!account.alwaysOn());
        account.setHeartbeatInterval(600);
        account.setId(8);
        QCOMPARE(account.heartbeatInterval(), 600);
        QCOMPARE(account.id(), EasAccountId(8));
    }

    void switchingOffMakesNoManager()
    {
        FakeAccount account(1);
        account.setAlwaysOn(false);
        QCOMPARE(account.alwaysOnManager(), nullptr);
    }

    void aDisabledAccountGetsNoManager()
    {
        FakeAccount account(1);
        account.isEnabled = false;
        account.setAlwaysOn(true);
        QVERIFY(account.alwaysOn());
        QCOMPARE(account.alwaysOnManager(), nullptr);
    }

    void theManagerStaysWhenItIsSwitchedOff()
    {
        FakeAccount account(1);
        account.setAlwaysOn(true);
        AlwaysOnManager *manager = account.alwaysOnManager();
        QVERIFY(manager && manager->alwaysOnScheduling());
        QCOMPARE(manager->accountId(), EasAccountId(1));
        account.setAlwaysOn(false);
        QCOMPARE(account.alwaysOnManager(), manager);
        QVERIFY(!manager->alwaysOnScheduling());
        account.setAlwaysOn(true);
        QCOMPARE(account.alwaysOnManager(), manager);
        QVERIFY(manager->alwaysOnScheduling());
    }

    void aChangeOfADisabledAccountEndsAlwaysOnForGood()
    {
        FakeAccount account(1);
        account.setAlwaysOn(true);
        account.isEnabled = false;
        Q_EMIT account.calendarConfigurationChanged(1);
        QVERIFY(!account.alwaysOn());
        QVERIFY(!account.alwaysOnManager()->alwaysOnScheduling());
        account.isEnabled = true;
        Q_EMIT account.emailConfigurationChanged(1);
        QVERIFY2(!account.alwaysOn(), "only the scheduler brings it back");
    }

    void aChangeOfAnEnabledAccountKeepsAlwaysOn()
    {
        FakeAccount account(1);
        account.setAlwaysOn(true);
        Q_EMIT account.contactsConfigurationChanged(1);
        QVERIFY(account.alwaysOn());
        QVERIFY(account.alwaysOnManager()->alwaysOnScheduling());
    }
};

FENNEL_REGISTER_TEST(EasAccountTest)
#include "easaccounttest.moc"
