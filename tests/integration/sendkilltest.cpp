// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/easrequeststatus.h"
#include "simulator/email.h"
#include "simulator/exchangeserver.h"
#include "support/accountfactory.h"
#include "support/bearer.h"
#include "support/crashmail.h"
#include "support/daemonprocess.h"
#include "support/faultshim.h"
#include "support/outgoingmail.h"
#include "support/privatebus.h"
#include "support/soak.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QDir>
#include <QtTest>
#include <qmailaccount.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <algorithm>
#include <random>

using Simulator::Email;

namespace {

/** A device whose daemon meets a fault while it sends a message, beside a server that goes on. */
class SendCrash
{
public:
    explicit SendCrash(const QString &version)
        : mRemembersClientIds(version >= QLatin1String("14"))
    {
        if (!mHasBus || !Bearer::connectNetwork())
            return;
        mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
        mServer.addUser(QStringLiteral("bob"), QStringLiteral("secret"));
        mServer.setVersions({ version });
        if (!mServer.start())
            return;
        AccountOptions options;
        options.port = mServer.port();
        options.preferredVersion = version;
        mAccount = mAccounts.create(options);
        DaemonProcess daemon;
        mIsReady = mAccount != 0
            && mAccounts.setValue(
                mAccount, AccountFactory::mailService(), QStringLiteral("save_in_sent_items"), true)
            && daemon.sync(mAccount) == 0;
    }
    ~SendCrash()
    {
        QMailStore::instance()->removeMessages(
            QMailMessageKey::parentAccountId(QMailAccountId(mAccount)), QMailStore::NoRemovalRecord);
        mAccounts.remove(mAccount);
    }

    bool isReady() const { return mIsReady; }
    /** Sends a message by a daemon and nothing else; whether its copy comes to the device meanwhile. */
    bool bringsTheCopy()
    {
        mSubject = QStringLiteral("alone");
        DaemonProcess daemon;
        const quint64 id = OutgoingMail::putIntoOutbox(
            OutgoingMail::plain(mSubject, "bob@example.com"), QMailAccountId(mAccount))
                               .toULongLong();
        return daemon.sendMail(mAccount, id) == 0
            && Waiting::until(
                [this] { return places() == QStringList { QStringLiteral("Sent Items") }; }, 60000);
    }
    int status() const { return mStatus; }
    std::chrono::microseconds duration() const { return mDuration; }

    /** Sends a message by a daemon in this environment, which may die; empty if it went once or not at all
     * and is in one place. */
    QString run(const QProcessEnvironment &environment,
        std::chrono::microseconds life = std::chrono::microseconds::zero())
    {
        mSubject = QStringLiteral("message %1").arg(++mRuns);
        const quint64 id = OutgoingMail::putIntoOutbox(
            OutgoingMail::plain(mSubject, "bob@example.com"), QMailAccountId(mAccount))
                               .toULongLong();
        {
            DaemonProcess daemon(environment);
            if (life.count() > 0)
                daemon.killAfterStart(life);
            const auto start = std::chrono::steady_clock::now();
            mStatus = daemon.sendMail(mAccount, id);
            mDuration = std::chrono::duration_cast<std::chrono::microseconds>(
                std::chrono::steady_clock::now() - start);
            daemon.kill();
        }
        DaemonProcess next;
        const QString wrong = whatIsWrong(next, id);
        return wrong.isEmpty() ? wrong : wrong + QLatin1Char('\n') + QString::fromUtf8(next.log());
    }

private:
    QString whatIsWrong(DaemonProcess &next, quint64 id)
    {
        const int sent = sentCount();
        const bool waits = places() == QStringList { QStringLiteral("Outbox") };
        if (sent > 1 || (sent == 0 && !waits))
            return QStringLiteral("sent %1 times, in %2").arg(sent).arg(places().join(QLatin1Char(' ')));
        // What the daemon knows to have been sent it has marked, and takes out with the next attempt.
        const bool isMarked = mStatus == EasRequestStatus::RequestStatusInternalError;
        if (waits && sent == 1 && !mRemembersClientIds && !isMarked) {
            // The user is told that it may have gone, or hears of the daemon's end.
            if (mStatus == 0)
                return QStringLiteral("a success that left the message in the Outbox");
            QMailStore::instance()->removeMessage(QMailMessageId(id), QMailStore::NoRemovalRecord);
            return QString();
        }
        if (waits) {
            const int again = next.sendMail(mAccount, id);
            if (again != 0)
                return QStringLiteral("the next attempt ended with %1").arg(again);
        }
        if (next.sync(mAccount) != 0)
            return QStringLiteral("the next sync failed");
        if (sentCount() != 1 || places() != QStringList { QStringLiteral("Sent Items") })
            return QStringLiteral("at the end sent %1 times, in %2")
                .arg(sentCount())
                .arg(places().join(QLatin1Char(' ')));
        return QString();
    }

    int sentCount()
    {
        Simulator::Mailbox &bob = mServer.mailbox(QStringLiteral("bob"));
        const QVector<Simulator::ItemEntry> entries = bob.items(bob.inboxId());
        return int(std::count_if(entries.cbegin(), entries.cend(), [this](const Simulator::ItemEntry &entry) {
            return std::static_pointer_cast<const Email>(entry.item)->content().headers().subject == mSubject;
        }));
    }

    /** The folders of the device that have the message. */
    QStringList places() const
    {
        const QMailMessageIdList ids =
            QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(QMailAccountId(mAccount)));
        QStringList folders;
        for (const QMailMessageId &id : ids) {
            const QMailMessageMetaData message(id);
            if (message.subject() == mSubject)
                folders.append(QMailFolder(message.parentFolderId()).displayName());
        }
        folders.sort();
        return folders;
    }

    // The account library wants a bus before anything of it is made.
    const bool mHasBus = PrivateBus::ensure();
    AccountFactory mAccounts;
    Simulator::ExchangeServer mServer;
    EasAccountId mAccount = 0;
    const bool mRemembersClientIds;
    bool mIsReady = false;
    int mRuns = 0;
    int mStatus = 0;
    std::chrono::microseconds mDuration {};
    QString mSubject;
};

} // namespace

/** The daemon dies, or its stores fail, while it sends: the message goes once and is in one place. */
class SendKillTest : public QObject
{
    Q_OBJECT

private:
    static void versions()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("12.1") << QStringLiteral("12.1");
        QTest::newRow("14.1") << QStringLiteral("14.1");
    }

    static FaultShim shim()
    {
        FaultShim shim(QDir::homePath(), DaemonProcess::program());
        shim.setFiles(CrashMail::durableFiles());
        return shim;
    }

private Q_SLOTS:
    void theCopyComesByItself()
    {
        SendCrash crash(QStringLiteral("14.1"));
        QVERIFY(crash.isReady());
        QVERIFY(crash.bringsTheCopy());
    }

    void aDeathBeforeAnyStep_data() { versions(); }
    void aDeathBeforeAnyStep()
    {
        QFETCH(QString, version);
        SendCrash crash(version);
        QVERIFY(crash.isReady());
        const FaultShim plain = shim();
        QCOMPARE(crash.run(plain.environment()), QString());
        QCOMPARE(crash.status(), 0);
        const int steps = plain.steps().size();
        QVERIFY(steps > 3);
        const int stride = qMax(1, steps / Soak::samples(12, steps));
        QStringList failures;
        for (int number = 1; number <= steps; number += stride) {
            FaultShim fault = shim();
            fault.killAtStep(number);
            const QString wrong = crash.run(fault.environment());
            if (!wrong.isEmpty())
                failures.append(QStringLiteral("killed before step %1 of %2, %3: %4")
                                    .arg(number)
                                    .arg(steps)
                                    .arg(fault.steps().value(number - 1), wrong));
        }
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(QLatin1Char('\n'))));
    }

    void aDeathAtAnyMoment_data() { versions(); }
    void aDeathAtAnyMoment()
    {
        QFETCH(QString, version);
        SendCrash crash(version);
        QVERIFY(crash.isReady());
        const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        QCOMPARE(crash.run(environment), QString());
        std::chrono::microseconds whole = crash.duration();
        const uint seed = std::random_device()();
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> fraction(0.0, 1.0);
        QStringList failures;
        for (int run = 0; run < Soak::samples(12, 200); ++run) {
            const auto moment =
                std::chrono::duration_cast<std::chrono::microseconds>(fraction(random) * whole);
            const QString wrong = crash.run(environment, moment);
            if (crash.status() != DaemonProcess::Died)
                whole = std::min(whole, crash.duration());
            if (!wrong.isEmpty())
                failures.append(QStringLiteral("killed at %1 of %2, seed %3: ")
                                    .arg(moment.count())
                                    .arg(whole.count())
                                    .arg(seed)
                    + wrong);
        }
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(QLatin1Char('\n'))));
    }

    void aStatementFails_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("database");
        for (const char *version : { "12.1", "14.1" }) {
            const QString text = QString::fromLatin1(version);
            QTest::addRow("of the mail store, %s", version) << text << QStringLiteral("mailstore.db");
            QTest::addRow("of the mapping, %s", version) << text << QStringLiteral("fennel_eas.db");
        }
    }
    void aStatementFails()
    {
        QFETCH(QString, version);
        QFETCH(QString, database);
        SendCrash crash(version);
        QVERIFY(crash.isReady());
        FaultShim plain(QDir::homePath(), DaemonProcess::program());
        plain.setDatabase(database);
        QCOMPARE(crash.run(plain.environment()), QString());
        const int statements = plain.statements().size();
        QVERIFY(statements > 0);
        const int stride = qMax(1, statements / Soak::samples(15, statements));
        QStringList failures;
        for (int number = 1; number <= statements; number += stride) {
            FaultShim fault(QDir::homePath(), DaemonProcess::program());
            fault.setDatabase(database);
            fault.failStatement(number, FaultShim::StatementError::IoError);
            const QString wrong = crash.run(fault.environment());
            if (!wrong.isEmpty())
                failures.append(QStringLiteral("statement %1 of %2 failed, %3: %4")
                                    .arg(number)
                                    .arg(statements)
                                    .arg(plain.statements().value(number - 1), wrong));
        }
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(QLatin1Char('\n'))));
    }
};

FENNEL_REGISTER_TEST(SendKillTest)
#include "sendkilltest.moc"
