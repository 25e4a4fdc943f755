// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

/** What a connection derives from its settings. */
class ConnectionAccountConfigurationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSchemeFollowsTheSecureFlag()
    {
        FakeConnection connection(3);
        QCOMPARE(connection.accountId(), EasAccountId(3));
        QCOMPARE(connection.scheme(), QStringLiteral("http"));
        connection.secure = true;
        QCOMPARE(connection.scheme(), QStringLiteral("https"));
    }

    void theSecureFlagFollowsTheScheme()
    {
        FakeConnection connection(3);
        connection.setScheme(QStringLiteral("https"));
        QVERIFY(connection.secure);
        connection.setScheme(QStringLiteral("http"));
        QVERIFY(!connection.secure);
    }

    void anyOtherSchemeChangesNothing_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::newRow("another protocol") << "ftp";
        QTest::newRow("nothing") << "";
        QTest::newRow("capitals") << "HTTPS";
    }

    void anyOtherSchemeChangesNothing()
    {
        QFETCH(QString, scheme);
        FakeConnection connection(3);
        for (const bool secure : { true, false }) {
            connection.secure = secure;
            const LogCollector log;
            connection.setScheme(scheme);
            QCOMPARE(connection.secure, secure);
            QVERIFY(log.contains(QtCriticalMsg, { "unexpected scheme" }));
        }
    }

    void thePathIsFixed()
    {
        QCOMPARE(FakeConnection(3).serverPath(), QStringLiteral("/Microsoft-Server-ActiveSync"));
    }
};

FENNEL_REGISTER_TEST(ConnectionAccountConfigurationTest)
#include "connectionaccountconfigurationtest.moc"
