// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "simulator/meetings.h"
#include "support/calendarparts.h"
#include "support/devicecalendar.h"
#include "support/outgoingmail.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <QtTest>

#include <qmailstore.h>

#include <memory>
#include <utility>

using Simulator::Email;
using Simulator::Event;
using Simulator::Mailbox;
using Simulator::Override;

namespace {

const QString Subject = QStringLiteral("Planning");
/** 2030-01-17T08:00:00Z, the second occurrence. */
constexpr qint64 SecondWeek = 1894867200;

QByteArray invitation(const QByteArray &rule = QByteArray(), const QByteArray &method = "REQUEST")
{
    return "From: Olga Organizer <olga@example.com>\r\nTo: alice@example.com, bob@example.com\r\n"
           "Subject: Planning\r\nMessage-ID: <planning@example.com>\r\nMIME-Version: 1.0\r\n"
           "Content-Type: multipart/alternative; boundary=x\r\n\r\n--x\r\nContent-Type: text/plain\r\n\r\n"
           "Shall we?\r\n--x\r\nContent-Type: text/calendar; charset=utf-8; method="
        + method + "\r\n\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Example//EN\r\nMETHOD:" + method
        + "\r\nBEGIN:VEVENT\r\nUID:planning@example.com\r\nDTSTAMP:20300101T080000Z\r\n"
          "DTSTART:20300110T080000Z\r\nDTEND:20300110T090000Z\r\nSUMMARY:Planning\r\nLOCATION:Room 2\r\n"
        + rule
        + "ORGANIZER;CN=Olga Organizer:mailto:olga@example.com\r\n"
          "ATTENDEE;PARTSTAT=NEEDS-ACTION:mailto:alice@example.com\r\n"
          "ATTENDEE;PARTSTAT=NEEDS-ACTION:mailto:bob@example.com\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n"
          "--x--\r\n";
}
const QByteArray Weekly = "RRULE:FREQ=WEEKLY;BYDAY=TH;COUNT=8\r\n";

} // namespace

/** An invitation from its arrival to the answer that the organizer reads. */
class MeetingTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SyncTestBed> mBed;

    Mailbox &own() { return mBed->mailbox(); }
    /** What stands in somebody's Inbox. */
    QVector<std::shared_ptr<const Email>> inbox(const char *user)
    {
        Mailbox &mailbox = mBed->server().mailbox(QLatin1String(user));
        QVector<std::shared_ptr<const Email>> mails;
        for (const Simulator::ItemEntry &entry : mailbox.items(mailbox.inboxId()))
            mails.append(std::dynamic_pointer_cast<const Email>(entry.item));
        return mails;
    }

    bool begin(const QString &version, const QByteArray &message)
    {
        mBed = std::make_unique<SyncTestBed>(QStringList { version }, SyncTestBed::everyService());
        if (!mBed->isReady())
            return false;
        for (const char *user : { "olga", "bob" })
            mBed->server().addUser(QLatin1String(user), QStringLiteral("secret"));
        arrive(message);
        return mBed->sync() == 0;
    }
    void arrive(const QByteArray &message)
    {
        Simulator::Meetings::arrive(own(), own().deliver(own().inboxId(), message));
    }

    /** The message for the organizer, as a mail program makes it. */
    quint64 makeReply()
    {
        const QMailMessage reply = QMailMessage::fromRfc2822(
            "From: alice@example.com\r\nTo: olga@example.com\r\nSubject: Answer: Planning\r\n"
            "Content-Type: text/plain; charset=UTF-8\r\n\r\nAs you see.\r\n");
        return OutgoingMail::putIntoOutbox(reply, QMailAccountId(mBed->accountId())).toULongLong();
    }

    int answer(int response, qint64 instance = 0)
    {
        static qulonglong id = 200000;
        RequestManager::instance()->onMeetingResponseRequest(mBed->accountId(), ++id,
            mBed->deviceMessage(Subject).toULongLong(), instance, response, makeReply(), {}, {}, {});
        return mBed->waitFor(id);
    }
    int answerEvent(int response, qint64 instance = 0)
    {
        static qulonglong id = 300000;
        RequestManager::instance()->onMeetingResponseCalendarRequest(
            mBed->accountId(), ++id, deviceUid(), instance, response, makeReply(), {}, {}, {});
        return mBed->waitFor(id);
    }

    QString deviceUid()
    {
        const auto event = DeviceCalendar().withSummary(Subject);
        return event ? event->uid() : QString();
    }
    int deviceEvents() { return DeviceCalendar().series(mBed->accountId()).size(); }
    bool isInStep()
    {
        if (mBed->sync() != 0)
            return false;
        mBed->server().clearRequests();
        return mBed->sync() == 0 && mBed->deviceState() == mBed->serverState()
            && mBed->server().failures().isEmpty();
    }

    static void eachVersion()
    {
        QTest::addColumn<QString>("version");
        for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
            QTest::newRow(version) << QString::fromLatin1(version);
    }

private Q_SLOTS:
    void cleanup() { mBed.reset(); }

    void anInvitationComesWithItsCalendarPart_data() { eachVersion(); }
    void anInvitationComesWithItsCalendarPart()
    {
        QFETCH(QString, version);
        QVERIFY(begin(version, invitation(Weekly)));
        const QMailMessage message(mBed->deviceMessage(Subject));
        QVERIFY(message.status() & QMailMessage::CalendarInvitation);
        const QStringList texts = calendarTexts(message);
        QCOMPARE(texts.size(), 1);
        for (const char *line :
            { "METHOD:REQUEST", "UID:planning@example.com", "SUMMARY:\"Olga Organizer\" <olga@example.com>",
                "DTSTART:20300110T080000Z", "DTEND:20300110T090000Z", "LOCATION:Room 2", "RRULE:FREQ=WEEKLY",
                "MAILTO:olga@example.com" })
            QVERIFY2(texts.first().contains(QLatin1String(line)), line);
        QCOMPARE(deviceEvents(), 1);
    }

    void anAcceptedMeetingStandsOnceOnBothSides_data() { eachVersion(); }
    void anAcceptedMeetingStandsOnceOnBothSides()
    {
        QFETCH(QString, version);
        QVERIFY(begin(version, invitation()));
        QCOMPARE(answer(1), 0);
        QVERIFY(!mBed->deviceMessage(Subject).isValid());
        QVERIFY(isInStep());
        QCOMPARE(mBed->serverEvents().size(), 1);
        QCOMPARE(mBed->serverEvents().first().responseType, 3);
        QCOMPARE(mBed->serverEvents().first().busyStatus, 2);
        QCOMPARE(deviceEvents(), 1);
        QCOMPARE(inbox("alice").size(), 0);

        QCOMPARE(inbox("olga").size(), 1);
        const auto reply = inbox("olga").first();
        QCOMPARE(reply->content().headers().messageClass, QStringLiteral("IPM.Schedule.Meeting.Resp.Pos"));
        QCOMPARE(inbox("bob").size(), 0);
        QCOMPARE(mBed->server().outbound().size(), 0);
        QCOMPARE(own().itemCount(own().folderOfType(Simulator::SentItemsFolder).id), 1);
    }

    void aRefusalTellsTheOrganizerAlone_data() { eachVersion(); }
    void aRefusalTellsTheOrganizerAlone()
    {
        QFETCH(QString, version);
        QVERIFY(begin(version, invitation()));
        QCOMPARE(answer(3), 0);
        QVERIFY(isInStep());
        QCOMPARE(mBed->serverEvents().size(), 0);
        QCOMPARE(deviceEvents(), 0);
        QCOMPARE(inbox("olga").size(), 1);
        QCOMPARE(inbox("olga").first()->content().headers().messageClass,
            QStringLiteral("IPM.Schedule.Meeting.Resp.Neg"));
        QCOMPARE(inbox("bob").size(), 0);
        QCOMPARE(inbox("alice").size(), 0);
    }

    void aTentativeAnswerKeepsTheMeetingTentative()
    {
        QVERIFY(begin(QStringLiteral("14.1"), invitation()));
        QCOMPARE(answer(2), 0);
        QVERIFY(isInStep());
        QCOMPARE(mBed->serverEvents().first().responseType, 2);
        QCOMPARE(mBed->serverEvents().first().busyStatus, 1);
        QCOMPARE(inbox("olga").first()->content().headers().messageClass,
            QStringLiteral("IPM.Schedule.Meeting.Resp.Tent"));
    }

    void oneOccurrenceIsRefused_data()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("14.1") << "14.1";
        QTest::newRow("16.1") << "16.1";
    }
    void oneOccurrenceIsRefused()
    {
        QFETCH(QString, version);
        QVERIFY(begin(version, invitation(Weekly)));
        QCOMPARE(answer(3, SecondWeek), 0);
        QVERIFY(isInStep());
        QCOMPARE(mBed->serverEvents().size(), 1);
        QCOMPARE(mBed->serverEvents().first().exceptions.size(), 1);
        QVERIFY(mBed->serverEvents().first().exceptions.first().isDeleted);
        const auto series = DeviceCalendar().withSummary(Subject);
        QVERIFY(series);
        QVERIFY(!series->recursAt(QDateTime::fromSecsSinceEpoch(SecondWeek, Qt::UTC)));
        QCOMPARE(inbox("olga").size(), 1);
        const QByteArray reply = inbox("olga").first()->content().message();
        const QMailMessage read = QMailMessage::fromRfc2822(reply);
        QVERIFY(calendarTexts(read).join(QString()).contains("RECURRENCE-ID:20300117T080000Z"));
    }

    void anEventIsAnsweredAgain()
    {
        QVERIFY(begin(QStringLiteral("14.1"), invitation()));
        QCOMPARE(answer(2), 0);
        QVERIFY(isInStep());
        QCOMPARE(answerEvent(1), 0);
        QVERIFY(isInStep());
        QCOMPARE(mBed->serverEvents().size(), 1);
        QCOMPARE(mBed->serverEvents().first().responseType, 3);
        QCOMPARE(deviceEvents(), 1);
        QCOMPARE(inbox("olga").size(), 2);
    }

    void anAnswerAfterAFailureDoublesNothing_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("isLost");
        QTest::newRow("the server fails") << "MeetingResponse" << false;
        QTest::newRow("the server's answer is lost") << "MeetingResponse" << true;
        QTest::newRow("the reply fails") << "SendMail" << false;
    }
    void anAnswerAfterAFailureDoublesNothing()
    {
        QFETCH(QString, command);
        QFETCH(bool, isLost);
        QVERIFY(begin(QStringLiteral("14.1"), invitation()));
        mBed->server().overrideNext(command, isLost ? Override::drop() : Override::topStatus(110));
        QVERIFY(answer(1) != 0);
        QVERIFY2(mBed->deviceMessage(Subject).isValid(), "the invitation stays");
        QCOMPARE(inbox("olga").size(), 0);
        QCOMPARE(mBed->sync(), 0);
        // Where the server has taken the first answer the invitation has gone, and the event is there.
        if (mBed->deviceMessage(Subject).isValid()
            && mBed->deviceFolder(QStringLiteral("Inbox"))
                == QMailMessageMetaData(mBed->deviceMessage(Subject)).parentFolderId())
            QCOMPARE(answer(1), 0);
        else
            QCOMPARE(answerEvent(1), 0);
        QCOMPARE(mBed->sync(), 0);
        QCOMPARE(mBed->serverEvents().size(), 1);
        QCOMPARE(deviceEvents(), 1);
        QCOMPARE(inbox("olga").size(), 1);
    }

    void everyStatusIsTold_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("isOfTheAnswer");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("expected");
        for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" }) {
            for (const auto &[status, expected] :
                { std::pair(2, -2), std::pair(3, 0), std::pair(4, 0), std::pair(5, -2) })
                QTest::addRow("%s, answer %d", version, status) << version << true << status << expected;
            for (const auto &[status, expected] : { std::pair(2, -2), std::pair(3, 0), std::pair(4, 0),
                     std::pair(101, 101), std::pair(106, 106), std::pair(108, 0), std::pair(109, 0),
                     std::pair(110, 110), std::pair(111, 0), std::pair(150, 150) })
                QTest::addRow("%s, whole %d", version, status) << version << false << status << expected;
        }
    }
    void everyStatusIsTold()
    {
        QFETCH(QString, version);
        QFETCH(bool, isOfTheAnswer);
        QFETCH(int, status);
        QFETCH(int, expected);
        QVERIFY(begin(version, invitation()));
        mBed->server().overrideNext(QStringLiteral("MeetingResponse"),
            isOfTheAnswer ? Override::itemStatus(status) : Override::topStatus(status));
        QCOMPARE(answer(1), expected);
        const bool isRepeated = expected == 0;
        QCOMPARE(mBed->server().requests(QStringLiteral("MeetingResponse")).size(), isRepeated ? 2 : 1);
        QCOMPARE(mBed->deviceMessage(Subject).isValid(), !isRepeated);
        QCOMPARE(inbox("olga").size(), isRepeated ? 1 : 0);
        QCOMPARE(mBed->serverEvents().first().responseType, isRepeated ? 3 : 5);
    }

    void aCancelledMeetingIsNotAnswered()
    {
        QVERIFY(begin(QStringLiteral("14.1"), invitation(QByteArray(), "CANCEL")));
        const QMailMessage message(mBed->deviceMessage(Subject));
        QVERIFY(message.status() & QMailMessage::CalendarCancellation);
        QCOMPARE(answer(1), -2);
        QCOMPARE(mBed->serverEvents().size(), 0);
        QCOMPARE(inbox("olga").size(), 0);
        QVERIFY(mBed->deviceMessage(Subject).isValid());
    }
};

FENNEL_REGISTER_TEST(MeetingTest)
#include "meetingtest.moc"
