// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/email.h"
#include "simulator/eventitem.h"
#include "simulator/meetings.h"
#include "simulatorclient.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

QByteArray meetingMail(const QByteArray &method = "REQUEST", const QByteArray &rule = QByteArray())
{
    return "From: Olga Organizer <olga@example.com>\r\nTo: user@example.com\r\nSubject: Plans\r\n"
           "MIME-Version: 1.0\r\nContent-Type: text/calendar; charset=utf-8; method="
        + method + "\r\n\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Example//EN\r\nMETHOD:" + method
        + "\r\nBEGIN:VEVENT\r\nUID:plans@example.com\r\nDTSTAMP:20300101T080000Z\r\n"
          "DTSTART:20300110T080000Z\r\nDTEND:20300110T090000Z\r\nSUMMARY:Plans\r\n"
        + rule
        + "ORGANIZER;CN=Olga Organizer:mailto:olga@example.com\r\n"
          "ATTENDEE;PARTSTAT=NEEDS-ACTION:mailto:user@example.com\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

const QByteArray Weekly = "RRULE:FREQ=WEEKLY;BYDAY=TH;COUNT=8\r\n";
const QString SecondWeek = QStringLiteral("<InstanceId>2030-01-17T08:00:00.000Z</InstanceId>");

} // namespace

/** @short MeetingResponse: what answers make of calendar and invitation, and what the organizer gets. */
class SimulatorMeetingTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;

    Mailbox &mailbox() { return mServer->mailbox(QStringLiteral("user")); }
    QString folderId(int type) { return mailbox().folderOfType(type).id; }
    QVector<ItemEntry> calendar() { return mailbox().items(folderId(CalendarFolder)); }
    Event event(int index = 0) { return *mailbox().value<EventItem>(calendar().at(index).serverId); }

    QString deliver(const QByteArray &message)
    {
        const QString id = mailbox().deliver(mailbox().inboxId(), message);
        Meetings::arrive(mailbox(), id);
        return id;
    }

    WbxmlNode respond(const QString &itemId, int response, const QString &more = QString())
    {
        const QString xml =
            QStringLiteral("<MeetingResponse xmlns=\"MeetingResponse\"><Request>"
                           "<UserResponse>%1</UserResponse><CollectionId>%2</CollectionId>"
                           "<RequestId>%3</RequestId>%4</Request></MeetingResponse>")
                .arg(QString::number(response), itemId.section(QLatin1Char(':'), 0, 0), itemId, more);
        return mClient->post(QStringLiteral("MeetingResponse"), xml).document;
    }
    static QString status(const WbxmlNode &reply) { return reply.text(QStringLiteral("Result/Status")); }
    static QString calendarId(const WbxmlNode &reply)
    {
        return reply.text(QStringLiteral("Result/CalendarId"));
    }

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        mServer->addUser(QStringLiteral("user"), QStringLiteral("secret"));
        mServer->addUser(QStringLiteral("olga"), QStringLiteral("secret"));
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
    }

    void cleanup()
    {
        mClient.reset();
        mServer.reset();
    }

    void anInvitationStandsInTheCalendarOnce()
    {
        deliver(meetingMail());
        deliver(meetingMail());
        QCOMPARE(calendar().size(), 1);
        QCOMPARE(event().meetingStatus, 3);
        QCOMPARE(event().responseType, 5);
        QCOMPARE(event().busyStatus, 1);
        QCOMPARE(event().organizerEmail, QStringLiteral("olga@example.com"));
    }

    void anAnswerChangesTheEventAndRemovesTheInvitation_data()
    {
        QTest::addColumn<int>("response");
        QTest::addColumn<int>("responseType");
        QTest::addColumn<int>("busyStatus");
        QTest::newRow("accepted") << 1 << 3 << 2;
        QTest::newRow("tentative") << 2 << 2 << 1;
    }

    void anAnswerChangesTheEventAndRemovesTheInvitation()
    {
        QFETCH(int, response);
        QFETCH(int, responseType);
        QFETCH(int, busyStatus);
        const WbxmlNode reply = respond(deliver(meetingMail()), response);
        QCOMPARE(status(reply), QStringLiteral("1"));
        QCOMPARE(calendar().size(), 1);
        QCOMPARE(calendarId(reply), calendar().first().serverId);
        QCOMPARE(event().responseType, responseType);
        QCOMPARE(event().busyStatus, busyStatus);
        QCOMPARE(mailbox().itemCount(mailbox().inboxId()), 0);
        QCOMPARE(mailbox().itemCount(folderId(DeletedItemsFolder)), 1);
        // The event itself can be answered again, and stays one.
        QCOMPARE(status(respond(calendarId(reply), 1)), QStringLiteral("1"));
        QCOMPARE(calendar().size(), 1);
    }

    void aRefusedMeetingLeavesTheCalendar()
    {
        const WbxmlNode reply = respond(deliver(meetingMail()), 3);
        QCOMPARE(status(reply), QStringLiteral("1"));
        QCOMPARE(calendarId(reply), QString());
        QCOMPARE(calendar().size(), 0);
        QCOMPARE(mailbox().itemCount(mailbox().inboxId()), 0);
    }

    void anInvitationThatNeverStoodInTheCalendarIsAccepted()
    {
        QCOMPARE(
            status(respond(mailbox().deliver(mailbox().inboxId(), meetingMail()), 1)), QStringLiteral("1"));
        QCOMPARE(calendar().size(), 1);
    }

    void oneOccurrenceIsAnswered()
    {
        const QString invitation = deliver(meetingMail("REQUEST", Weekly));
        QCOMPARE(status(respond(invitation, 3, SecondWeek)), QStringLiteral("1"));
        QCOMPARE(calendar().size(), 1);
        QCOMPARE(event().exceptions.size(), 1);
        QVERIFY(event().exceptions.first().isDeleted);
        QCOMPARE(event().responseType, 5);
        const QString third = QString(SecondWeek).replace(QLatin1String("17T"), QLatin1String("24T"));
        QCOMPARE(status(respond(calendar().first().serverId, 1, third)), QStringLiteral("1"));
        QCOMPARE(event().exceptions.size(), 2);
        QCOMPARE(event().exceptions.last().details.responseType, 3);
        const QString none = QString(SecondWeek).replace(QLatin1String("17T"), QLatin1String("18T"));
        QCOMPARE(status(respond(calendar().first().serverId, 1, none)), QStringLiteral("2"));
    }

    void theServerWritesToTheOrganizer()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        const QString more = QStringLiteral(
            "<SendResponse><Body xmlns=\"AirSyncBase\"><Type>1</Type><Data>Könnte später sein</Data></Body>"
            "<ProposedStartTime>20300111T080000Z</ProposedStartTime>"
            "<ProposedEndTime>20300111T090000Z</ProposedEndTime></SendResponse>");
        QCOMPARE(status(respond(deliver(meetingMail()), 2, more)), QStringLiteral("1"));
        Mailbox &olga = mServer->mailbox(QStringLiteral("olga"));
        QCOMPARE(olga.itemCount(olga.inboxId()), 1);
        const auto reply = std::dynamic_pointer_cast<const Email>(olga.items(olga.inboxId()).first().item);
        QCOMPARE(reply->content().headers().messageClass, QStringLiteral("IPM.Schedule.Meeting.Resp.Tent"));
        QCOMPARE(reply->content().headers().subject, QStringLiteral("Tentative: Plans"));
        QVERIFY(reply->content().bodies().plain.contains(QStringLiteral("Könnte später sein")));
        QVERIFY(reply->content().message().contains("X-PROPOSED-START:20300111T080000Z"));
        QCOMPARE(mailbox().itemCount(folderId(SentItemsFolder)), 1);
        QVERIFY(mServer->failures().isEmpty());
    }

    void withoutTheWishTheServerWritesNothing()
    {
        respond(deliver(meetingMail()), 1);
        Mailbox &olga = mServer->mailbox(QStringLiteral("olga"));
        QCOMPARE(olga.itemCount(olga.inboxId()), 0);
        QCOMPARE(mailbox().itemCount(folderId(SentItemsFolder)), 0);
    }

    void whatCannotBeAnsweredIsInvalid()
    {
        const QString invitation = deliver(meetingMail());
        QCOMPARE(status(respond(invitation, 4)), QStringLiteral("2"));
        QCOMPARE(status(respond(QStringLiteral("99:1"), 1)), QStringLiteral("2"));
        const QString plain = deliver("From: a@example.com\r\nSubject: Hello\r\n\r\nHello\r\n");
        QCOMPARE(status(respond(plain, 1)), QStringLiteral("2"));
        QCOMPARE(status(respond(invitation, 3)), QStringLiteral("1"));
        QCOMPARE(status(respond(invitation, 3)), QStringLiteral("2"));
    }

    void aCancellationMarksTheEvent()
    {
        deliver(meetingMail());
        const QString cancellation = deliver(meetingMail("CANCEL"));
        QCOMPARE(calendar().size(), 1);
        QCOMPARE(event().meetingStatus, 7);
        QCOMPARE(status(respond(cancellation, 1)), QStringLiteral("2"));
        const auto mail = std::dynamic_pointer_cast<const Email>(mailbox().item(cancellation));
        QCOMPARE(mail->content().headers().messageClass, QStringLiteral("IPM.Schedule.Meeting.Canceled"));
    }

    void aTestCanSayTheStatus()
    {
        const QString invitation = deliver(meetingMail());
        mServer->overrideNext(QStringLiteral("MeetingResponse"), Override::itemStatus(4));
        QCOMPARE(status(respond(invitation, 1)), QStringLiteral("4"));
        mServer->overrideNext(QStringLiteral("MeetingResponse"), Override::topStatus(111));
        QCOMPARE(respond(invitation, 1).text(QStringLiteral("Status")), QStringLiteral("111"));
        QCOMPARE(event().responseType, 5);
    }
};

FENNEL_REGISTER_TEST(SimulatorMeetingTest)
#include "simulatormeetingtest.moc"
