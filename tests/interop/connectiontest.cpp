// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interopbed.h"
#include "support/logcollector.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QNetworkReply>
#include <QtTest>

/** @short The ways to a real server: plain, over TLS with a self-signed certificate, and with a wrong
 * password. */
class ConnectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void plainHttp();
    void anUnknownCertificateIsRefused();
    void anUnknownCertificateIsAcceptedByChoice();
    void aWrongPasswordIsRefused();

private:
    static constexpr int MessageCount = 17;
    static const QString User;

    RealServer mServer;
};

const QString ConnectionTest::User = QStringLiteral("alice");

void ConnectionTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
    QVERIFY(mServer.seed(User, MessageCount));
}

void ConnectionTest::plainHttp()
{
    InteropBed bed(mServer, User, { QStringLiteral("14.1") });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), MessageCount);
}

void ConnectionTest::anUnknownCertificateIsRefused()
{
    LogCollector log;
    InteropBed bed(mServer, User, { QStringLiteral("14.1"), true, false });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.sync(), 10000 + int(QNetworkReply::SslHandshakeFailedError));
    QVERIFY2(log.contains(QtWarningMsg, { QStringLiteral("SSL errors:"), QStringLiteral("self-signed") })
            || log.contains(QtWarningMsg, { QStringLiteral("SSL errors:"), QStringLiteral("self signed") }),
        qPrintable(log.texts(QtWarningMsg).join(QLatin1Char('\n'))));
    QCOMPARE(bed.deviceState(), QStringList());
}

void ConnectionTest::anUnknownCertificateIsAcceptedByChoice()
{
    InteropBed bed(mServer, User, { QStringLiteral("14.1"), true, true });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), MessageCount);
}

/** The challenge of this server names its scheme in lower case. */
void ConnectionTest::aWrongPasswordIsRefused()
{
    InteropBed bed(mServer, User, { QStringLiteral("14.1") });
    QVERIFY(bed.isReady());
    QVERIFY(bed.changePassword(QStringLiteral("wrong")));
    QVERIFY(bed.sync() != 0);
    QCOMPARE(bed.deviceState(), QStringList());

    QVERIFY(bed.changePassword(RealServer::password()));
    QTRY_COMPARE_WITH_TIMEOUT(bed.sync(), 0, 20000);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

FENNEL_REGISTER_TEST(ConnectionTest)
#include "connectiontest.moc"
