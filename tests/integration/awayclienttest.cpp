// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventitem.h"
#include "simulator/exchangeserver.h"
#include "support/bearer.h"
#include "support/clientprocess.h"
#include "support/daemonprocess.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <memory>

/**
 * Absences and availability as users have them: the command line, the daemon and the server are processes and
 * threads of their own, and everything between them goes over the bus and over the wire.
 */
class AwayClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void anAbsenceIsSetReadAndEnded();
    void whatTheServerRefusesIsSaidSo();
    void peopleAreShownWithTheirHalfHours();
    void nobodyWhoIsKnownIsAFailure();

private:
    int run(const QStringList &arguments) { return mClient.run(arguments); }
    QString fact(const char *key) { return mClient.json().object().value(QLatin1String(key)).toString(); }

    Simulator::ExchangeServer mServer;
    ClientProcess mClient;
    std::unique_ptr<DaemonProcess> mDaemon;
};

// A check that failed prints what the last command said.
#define VERIFY_DONE(step) QVERIFY2(step, mClient.output() + mClient.errors() + mDaemon->log().right(4000))

void AwayClientTest::initTestCase()
{
    QVERIFY(PrivateBus::ensure());
    QVERIFY(Bearer::connectNetwork());
    mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    mServer.addUser(QStringLiteral("bob"), QStringLiteral("s3cret"));
    QVERIFY(mServer.start());
    mDaemon = std::make_unique<DaemonProcess>();
    VERIFY_DONE(mClient.run({ "account", "add", "alice@example.com", "--server",
                                QStringLiteral("http://127.0.0.1:%1").arg(mServer.port()), "--user", "alice",
                                "--password-fd", "0" },
                    "s3cret\n")
        == 0);
    QVERIFY(mDaemon->start());
}

void AwayClientTest::cleanupTestCase()
{
    mClient.run({ "quit" });
    mDaemon.reset();
    QCOMPARE(mClient.run({ "account", "remove", "alice@example.com" }), 0);
    QCOMPARE(mServer.failures(), QStringList());
}

void AwayClientTest::anAbsenceIsSetReadAndEnded()
{
    VERIFY_DONE(run({ "away", "set", "--from", "2099-05-01T09:00", "--to", "2099-05-08", "--message",
                    "Grüße\nAlice", "--external", "known", "--external-message", "Away" })
        == 0);
    const Simulator::OutOfOffice kept = mServer.mailbox(QStringLiteral("alice")).outOfOffice();
    QCOMPARE(kept.state, 2);
    QCOMPARE(kept.start, QDateTime(QDate(2099, 5, 1), QTime(9, 0)).toUTC());
    QCOMPARE(kept.end, QDateTime(QDate(2099, 5, 9), QTime(0, 0)).toUTC());
    QCOMPARE(kept.internal.text, QStringLiteral("Grüße\nAlice"));
    QVERIFY(kept.knownExternal.isEnabled && !kept.unknownExternal.isEnabled);

    VERIFY_DONE(run({ "--json", "away", "show" }) == 0);
    QCOMPARE(fact("away"), QStringLiteral("for a time"));
    QCOMPARE(QDateTime::fromString(fact("from"), Qt::ISODate), kept.start);
    QCOMPARE(QDateTime::fromString(fact("to"), Qt::ISODate), kept.end);
    QCOMPARE(fact("text"), kept.internal.text);
    QCOMPARE(fact("external"), QStringLiteral("known"));
    QCOMPARE(fact("externalText"), QStringLiteral("Away"));

    VERIFY_DONE(run({ "away", "off" }) == 0);
    QCOMPARE(mServer.mailbox(QStringLiteral("alice")).outOfOffice().state, 0);
    VERIFY_DONE(run({ "--json", "away", "show" }) == 0);
    QCOMPARE(fact("away"), QStringLiteral("off"));
}

void AwayClientTest::whatTheServerRefusesIsSaidSo()
{
    mServer.overrideNext(QStringLiteral("Settings"), Simulator::Override::topStatus(3));
    QCOMPARE(run({ "away", "show" }), 1);
    QVERIFY2(mClient.errors().contains("3"), mClient.errors());
    QVERIFY2(mClient.output().isEmpty(), mClient.output());
}

void AwayClientTest::peopleAreShownWithTheirHalfHours()
{
    const QDateTime start = QDateTime(QDate(2026, 5, 4), QTime(8, 0));
    Simulator::Event event =
        Simulator::Event::timed(QStringLiteral("Talk"), "UTC", start.toUTC().addSecs(3600), 60);
    event.busyStatus = 3;
    Simulator::Mailbox &bob = mServer.mailbox(QStringLiteral("bob"));
    bob.addItem(bob.folderOfType(Simulator::CalendarFolder).id, Simulator::EventItem::make(event));
    VERIFY_DONE(run({ "availability", "Bob <bob@example.com>", "nobody@example.com", "--from",
                    "2026-05-04T08:00", "--to", "2026-05-04T11:00" })
        == 0);
    QCOMPARE(mClient.output(),
        QByteArray("2026-05-04              08  10\n"
                   "bob                     ..oo..\n"
                   "nobody@example.com      ??????\n"
                   "\n"
                   ". free   ~ tentative   # busy   o out of office   ? not known\n"));
}

void AwayClientTest::nobodyWhoIsKnownIsAFailure()
{
    QCOMPARE(run({ "availability", "nobody@example.com" }), 1);
    QVERIFY2(mClient.errors().contains("tells nothing of these people"), mClient.errors());
}

FENNEL_REGISTER_TEST(AwayClientTest)
#include "awayclienttest.moc"
