// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "interopbed.h"
#include "support/realserver.h"
#include "support/soak.h"
#include "support/syncscheduler.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>

#include <qmailmessagekey.h>
#include <qmailstore.h>

/**
 * @short A Ping of a real server: what arrives at any moment comes once, and the user's marks go.
 *
 * The time from the end of an arrival to the message in the device's store is printed. A soak has 100
 * arrivals at each version.
 */
class PushInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whatArrivesComesOnce_data();
    void whatArrivesComesOnce();

private:
    bool comesTo(const QString &step);
    void arrive(InteropBed &bed, int number);

    static constexpr int Patience = 600000;

    RealServer mServer;
    QVariantMap mState;
    QVector<qint64> mTimes;
};

void PushInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
}

void PushInteropTest::whatArrivesComesOnce_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::newRow("12.1") << "12.1"
                          << "bob";
    QTest::newRow("14.1") << "14.1"
                          << "alice";
}

bool PushInteropTest::comesTo(const QString &step)
{
    return Waiting::until(
        [&] { return mState.value(QStringLiteral("nextStep")).toString() == step; }, Patience);
}

void PushInteropTest::arrive(InteropBed &bed, int number)
{
    const QString subject = QStringLiteral("arrival %1").arg(number);
    QVERIFY(bed.imap().append(QStringLiteral("INBOX"), subject));
    QElapsedTimer time;
    time.start();
    QVERIFY(Waiting::until([&] { return bed.deviceMessage(subject).isValid(); }, Patience));
    mTimes.append(time.elapsed());
}

void PushInteropTest::whatArrivesComesOnce()
{
    QFETCH(QString, version);
    QFETCH(QString, user);
    InteropBed bed(mServer, user, { version });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.sync(), 0);
    connect(RequestManager::instance(), &RequestManager::pushStateChanged, this,
        [this](EasAccountId, const QVariantMap &state) { mState = state; });
    RequestManager::instance()->account(bed.accountId())->setHeartbeatInterval(60);
    SyncScheduler scheduler;
    Q_EMIT scheduler.syncedExternallyStatus(uint(bed.accountId()), QStringLiteral("fenneleas-email"), true);
    QVERIFY(comesTo(QStringLiteral("ping")));

    mTimes.clear();
    QRandomGenerator dice(1);
    const int arrivals = Soak::samples(10, 100);
    for (int i = 0; i < arrivals; ++i) {
        // Half of them at some moment of a Ping that waits, longer than the server takes from one look at its
        // mailbox to the next; the others on the heels of the one before, whatever is going on then.
        if (dice.bounded(2) == 0) {
            QVERIFY(comesTo(QStringLiteral("ping")));
            QTest::qWait(dice.bounded(7000));
        }
        arrive(bed, i);
    }
    QVERIFY(Waiting::until([&] { return bed.deviceState() == bed.serverState(); }, Patience));
    QCOMPARE(bed.deviceMessages().size(), arrivals);
    std::sort(mTimes.begin(), mTimes.end());
    qInfo("version %s: %d arrivals, median %lld ms, 99 of 100 within %lld ms, longest %lld ms",
        qPrintable(version), arrivals, mTimes.at(arrivals / 2), mTimes.at(arrivals * 99 / 100),
        mTimes.last());

    QVERIFY(comesTo(QStringLiteral("ping")));
    QVERIFY(QMailStore::instance()->updateMessagesMetaData(
        QMailMessageKey::id(bed.deviceMessage(QStringLiteral("arrival 0"))), QMailMessage::Read, true));
    QVERIFY(Waiting::until(
        [&] {
            return bed.serverState().contains(
                InteropBed::stateLine(QStringLiteral("INBOX"), QStringLiteral("arrival 0"), true));
        },
        Patience));
}

FENNEL_REGISTER_TEST(PushInteropTest)
#include "pushinteroptest.moc"
