// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventitem.h"
#include "simulator/exchangeserver.h"
#include "simulator/meetings.h"
#include "support/accountfactory.h"
#include "support/bearer.h"
#include "support/crashbed.h"
#include "support/devicecalendar.h"
#include "support/faultshim.h"
#include "support/maillisting.h"
#include "support/outgoingmail.h"
#include "support/privatebus.h"
#include "support/soak.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <QDir>
#include <QtTest>

#include <memory>

namespace {

QByteArray invitation(const QByteArray &subject)
{
    return "From: olga@example.com\r\nTo: alice@example.com\r\nSubject: " + subject
        + "\r\nMIME-Version: 1.0\r\nContent-Type: text/calendar; method=REQUEST\r\n\r\nBEGIN:VCALENDAR\r\n"
          "VERSION:2.0\r\nMETHOD:REQUEST\r\nBEGIN:VEVENT\r\nUID:"
        + subject
        + "@example.com\r\nDTSTAMP:20300101T080000Z\r\nDTSTART:20300110T080000Z\r\n"
          "DTEND:20300110T090000Z\r\nSUMMARY:"
        + subject
        + "\r\nORGANIZER:mailto:olga@example.com\r\nATTENDEE:mailto:alice@example.com\r\nEND:VEVENT\r\n"
          "END:VCALENDAR\r\n";
}

} // namespace

/** The daemon dies while the user answers an invitation; the user answers once more. */
class MeetingKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void anotherAnswerMendsADeathAtAnyStep();

private:
    /** Answers an invitation under a daemon in this environment, and mends what it has left. Empty if all is
     * well in the end, else what is wrong. */
    QString run(const QProcessEnvironment &environment);
    QString mend(const QString &subject, int repliesBefore);
    quint64 makeReply() const;
    int replies();
    QVector<Simulator::Event> serverEvents(const QString &subject);

    bool mHasBus = PrivateBus::ensure();
    std::unique_ptr<AccountFactory> mAccounts;
    Simulator::ExchangeServer mServer;
    EasAccountId mAccountId = 0;
    int mMeetings = 0;
    int mStatus = 0;
};

void MeetingKillTest::initTestCase()
{
    QVERIFY(mHasBus && Bearer::connectNetwork());
    for (const char *user : { "alice", "olga" })
        mServer.addUser(QLatin1String(user), QStringLiteral("s3cret"));
    QVERIFY(mServer.start());
    mAccounts = std::make_unique<AccountFactory>();
    AccountOptions options = SyncTestBed::everyService();
    options.port = mServer.port();
    mAccountId = mAccounts->create(options);
    QVERIFY(mAccountId != 0);
}

quint64 MeetingKillTest::makeReply() const
{
    return OutgoingMail::putIntoOutbox(
        OutgoingMail::plain(QStringLiteral("Accepted"), QStringLiteral("olga@example.com")),
        QMailAccountId(mAccountId))
        .toULongLong();
}

int MeetingKillTest::replies()
{
    const Simulator::Mailbox &olga = mServer.mailbox(QStringLiteral("olga"));
    return olga.itemCount(olga.inboxId());
}

QVector<Simulator::Event> MeetingKillTest::serverEvents(const QString &subject)
{
    QVector<Simulator::Event> events;
    const Simulator::Mailbox &own = mServer.mailbox();
    const auto entries = own.items(own.folderOfType(Simulator::CalendarFolder).id);
    for (const Simulator::ItemEntry &entry : entries) {
        const auto event = own.value<Simulator::EventItem>(entry.serverId);
        if (event && event->subject == subject)
            events.append(*event);
    }
    return events;
}

QString MeetingKillTest::run(const QProcessEnvironment &environment)
{
    const QString subject = QStringLiteral("meeting%1").arg(++mMeetings);
    Simulator::Mailbox &own = mServer.mailbox();
    Simulator::Meetings::arrive(own, own.deliver(own.inboxId(), invitation(subject.toLatin1())));
    {
        DaemonProcess daemon;
        if (daemon.sync(mAccountId) != 0)
            return QStringLiteral("the invitation does not come");
    }
    const quint64 message = MailListing::deviceMessage(mAccountId, subject).toULongLong();
    const int before = replies();
    {
        DaemonProcess daemon(environment);
        mStatus = daemon.answerMeeting(mAccountId, message, 1, makeReply());
    }
    return mend(subject, before);
}

QString MeetingKillTest::mend(const QString &subject, int repliesBefore)
{
    DaemonProcess daemon;
    if (daemon.sync(mAccountId) != 0)
        return QStringLiteral("no sync after the death");
    if (mStatus != 0) {
        const auto event = DeviceCalendar().withSummary(subject);
        const bool wasTaken = serverEvents(subject).value(0).responseType == 3;
        const int status = wasTaken
            ? daemon.answerEvent(mAccountId, event ? event->uid() : QString(), 1, makeReply())
            : daemon.answerMeeting(
                mAccountId, MailListing::deviceMessage(mAccountId, subject).toULongLong(), 1, makeReply());
        if (status != 0)
            return QStringLiteral("the second answer ends with %1").arg(status);
    }
    if (daemon.sync(mAccountId) != 0)
        return QStringLiteral("no sync in the end");
    const QVector<Simulator::Event> onServer = serverEvents(subject);
    if (onServer.size() != 1 || onServer.first().responseType != 3)
        return QStringLiteral("%1 events on the server").arg(onServer.size());
    int onDevice = 0;
    const DeviceCalendar calendar;
    for (const KCalendarCore::Event::Ptr &event : calendar.series(mAccountId))
        onDevice += event->summary() == subject ? 1 : 0;
    if (onDevice != 1)
        return QStringLiteral("%1 events on the device").arg(onDevice);
    // The organizer hears of each answer at most once, and of the last one for certain.
    const int heard = replies() - repliesBefore;
    if (heard < 1 || heard > (mStatus == 0 ? 1 : 2))
        return QStringLiteral("%1 mails for the organizer").arg(heard);
    return mServer.failures().join(QLatin1Char('\n'));
}

void MeetingKillTest::anotherAnswerMendsADeathAtAnyStep()
{
    const auto shim = [] {
        FaultShim plan(QDir::homePath(), DaemonProcess::program());
        plan.setFiles(
            CrashBed::durableFiles(CrashBed::LaterPimSync) + CrashBed::durableFiles(CrashBed::LaterSync));
        return plan;
    };
    const FaultShim plain = shim();
    QCOMPARE(run(plain.environment()), QString());
    QCOMPARE(mStatus, 0);
    const int steps = plain.steps().size();
    QVERIFY(steps > 10);
    const int stride = qMax(1, steps / Soak::samples(14, steps));
    qInfo("%d durable steps, tried in strides of %d", steps, stride);
    QStringList failures;
    int deaths = 0;
    for (int number = 1; number <= steps; number += stride) {
        FaultShim fault = shim();
        fault.killAtStep(number);
        const QString wrong = run(fault.environment());
        deaths += mStatus == DaemonProcess::Died ? 1 : 0;
        if (!wrong.isEmpty())
            failures.append(QStringLiteral("killed before step %1, %2: %3")
                                .arg(number)
                                .arg(fault.steps().value(number - 1), wrong));
    }
    QCOMPARE(failures, QStringList());
    QVERIFY(deaths > 1);
}

FENNEL_REGISTER_TEST(MeetingKillTest)
#include "meetingkilltest.moc"
