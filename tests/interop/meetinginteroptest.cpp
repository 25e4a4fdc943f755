// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "interopbed.h"
#include "support/davclient.h"
#include "support/devicecalendar.h"
#include "support/outgoingmail.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

const QString Alice = QStringLiteral("alice");
const QString Bob = QStringLiteral("bob");

QByteArray meeting(const QByteArray &uid, const QByteArray &subject, const QByteArray &more = QByteArray())
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Example//EN\r\nBEGIN:VEVENT\r\nUID:" + uid
        + "\r\nDTSTAMP:20260101T080000Z\r\nDTSTART:20300110T080000Z\r\nDTEND:20300110T090000Z\r\nSUMMARY:"
        + subject + "\r\nLOCATION:Room 2\r\n" + more
        + "ORGANIZER;CN=Bob Brown:mailto:bob@example.org\r\n"
          "ATTENDEE;CN=Alice;PARTSTAT=NEEDS-ACTION;RSVP=TRUE:mailto:alice@example.org\r\n"
          "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

/** 2030-01-17T08:00:00Z, the second occurrence of a weekly series. */
constexpr qint64 SecondWeek = 1894867200;

/** The line of an attendee's answer, unfolded; empty if there is none. */
QString attendee(QString iCalendar)
{
    iCalendar.replace("\r\n", "\n").replace("\n ", "");
    return iCalendar.split('\n').filter("ATTENDEE").filter("alice@example.org").join(' ');
}

} // namespace

/** @short Invitations of a second user, answered on the device, as the other protocols tell of them. */
class MeetingInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void anAnswerReachesCalendarAndOrganizer_data();
    void anAnswerReachesCalendarAndOrganizer();
    void anAnswerToOneOccurrenceCountsForAll();
    void aCancelledMeetingGoesAndIsTold();

private:
    DavClient calendarOf(const QString &user) const
    {
        return DavClient(
            DavClient::Calendar, RealServer::host(), mServer.httpPort(), user, RealServer::password());
    }
    ImapClient mailOf(const QString &user) const
    {
        return ImapClient(RealServer::host(), mServer.imapPort(), user, RealServer::password());
    }
    /** What stands in a calendar of the meeting of this identifier. */
    QString stored(const QString &user, const QByteArray &uid) const
    {
        QStringList found;
        const auto texts = calendarOf(user).texts();
        for (const QString &text : texts.value_or(QMap<QString, QString>())) {
            if (text.contains("UID:" + QString::fromLatin1(uid)))
                found.append(text);
        }
        return found.join("\n----\n");
    }
    /** "folder|subject" of the messages about a meeting. */
    QStringList subjects(const QString &user, const QString &subject) const
    {
        QStringList found;
        const QList<ImapMessage> messages = mailOf(user).messages();
        for (const ImapMessage &message : messages) {
            if (message.subject.contains(subject))
                found.append(message.folder + '|' + message.subject);
        }
        return found;
    }
    /** The message about a meeting that begins with the words of the server. */
    static QMailMessageId message(const InteropBed &bed, const QString &words, const QString &subject)
    {
        for (const QMailMessageId &id : bed.deviceMessages()) {
            const QString found = QMailMessageMetaData(id).subject();
            if (found.startsWith(words) && found.contains(subject))
                return id;
        }
        return {};
    }
    static QMailMessageId invitation(const InteropBed &bed, const QString &subject)
    {
        return message(bed, QStringLiteral("Event Invitation"), subject);
    }
    /** From Drafts, as this account has no Outbox. */
    static QMailMessageId reply(const InteropBed &bed, const QString &subject)
    {
        return OutgoingMail::store(
            OutgoingMail::plain(subject, QStringLiteral("bob@example.org"), QStringLiteral("As you see")),
            QMailAccountId(bed.accountId()), bed.deviceFolder(QStringLiteral("Drafts")));
    }
    static int answer(InteropBed &bed, const QString &subject, int response, qint64 instance = 0)
    {
        static qulonglong id = 9000;
        RequestManager::instance()->onMeetingResponseRequest(bed.accountId(), ++id,
            invitation(bed, subject).toULongLong(), instance, response,
            reply(bed, QStringLiteral("Answer to ") + subject).toULongLong(), {}, {}, {});
        return bed.waitFor(id);
    }

    RealServer mServer;
};

void MeetingInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
}

void MeetingInteropTest::anAnswerReachesCalendarAndOrganizer_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<int>("response");
    QTest::addColumn<QString>("participation");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1" }) {
        QTest::addRow("%s accepted", version) << version << 1 << "ACCEPTED";
        QTest::addRow("%s tentative", version) << version << 2 << "TENTATIVE";
        QTest::addRow("%s declined", version) << version << 3 << "DECLINED";
    }
}

void MeetingInteropTest::anAnswerReachesCalendarAndOrganizer()
{
    QFETCH(QString, version);
    QFETCH(int, response);
    QFETCH(QString, participation);
    const QByteArray uid = "meeting-" + QByteArray(QTest::currentDataTag()).replace(' ', '-');
    const QString subject = QStringLiteral("Meeting ") + QTest::currentDataTag();
    InteropBed bed(mServer, Alice, { version, false, false, false, true });
    QVERIFY(bed.isReady());
    QVERIFY(calendarOf(Bob).put(uid + ".ics", meeting(uid, subject.toUtf8())));
    QCOMPARE(bed.sync(), 0);
    QVERIFY(invitation(bed, subject).isValid());
    QCOMPARE(answer(bed, subject, response), 0);
    QCOMPARE(bed.sync(), 0);
    // One event on either side, and in both calendars the answer of the one who was asked.
    const auto event = DeviceCalendar().withSummary(subject);
    QVERIFY(event);
    QCOMPARE(stored(Alice, uid).count("BEGIN:VEVENT"), 1);
    QVERIFY(attendee(stored(Alice, uid)).contains("PARTSTAT=" + participation));
    QVERIFY(attendee(stored(Bob, uid)).contains("PARTSTAT=" + participation));
    // Exactly one message is from here; the other one this server writes itself, at all versions.
    QCOMPARE(subjects(Bob, subject).filter("Answer to").size(), 1);
    QCOMPARE(subjects(Bob, subject).filter("nvitation: ").size(), 1);
    QCOMPARE(subjects(Alice, subject).filter("Sent|Answer to").size(), 1);
    QVERIFY(!invitation(bed, subject).isValid());
}

void MeetingInteropTest::anAnswerToOneOccurrenceCountsForAll()
{
    const QByteArray uid = "series";
    const QString subject = QStringLiteral("Weekly series");
    InteropBed bed(mServer, Alice, { QStringLiteral("14.1"), false, false, false, true });
    QVERIFY(bed.isReady());
    QVERIFY(calendarOf(Bob).put(
        uid + ".ics", meeting(uid, subject.toUtf8(), "RRULE:FREQ=WEEKLY;BYDAY=TH;COUNT=4\r\n")));
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(answer(bed, subject, 3, SecondWeek), 0);
    // It does not look at InstanceId, and takes the answer for the whole series.
    const QStringList told = mServer.requests(QStringLiteral("MeetingResponse"));
    QVERIFY(told.join(QString()).contains("<InstanceId>2030-01-17T08:00:00.000Z</InstanceId>"));
    QVERIFY(attendee(stored(Alice, uid)).contains("PARTSTAT=DECLINED"));
    QVERIFY(!stored(Alice, uid).contains("RECURRENCE-ID"));
    QCOMPARE(subjects(Bob, subject).filter("Answer to").size(), 1);
}

void MeetingInteropTest::aCancelledMeetingGoesAndIsTold()
{
    const QByteArray uid = "cancelled";
    const QString subject = QStringLiteral("Cancelled meeting");
    InteropBed bed(mServer, Alice, { QStringLiteral("14.1"), false, false, false, true });
    QVERIFY(bed.isReady());
    QVERIFY(calendarOf(Bob).put(uid + ".ics", meeting(uid, subject.toUtf8())));
    QCOMPARE(bed.sync(), 0);
    QVERIFY(calendarOf(Bob).leaveThisSecond());
    QVERIFY(calendarOf(Bob).remove(uid + ".ics"));
    QCOMPARE(bed.sync(), 0);
    const QMailMessageId cancellation = message(bed, QStringLiteral("Event Cancelled"), subject);
    QVERIFY(cancellation.isValid());
    QVERIFY(QMailMessageMetaData(cancellation).status() & QMailMessage::CalendarCancellation);
    QCOMPARE(stored(Alice, uid), QString());
    QVERIFY(!DeviceCalendar().withSummary(subject));
}

FENNEL_REGISTER_TEST(MeetingInteropTest)
#include "meetinginteroptest.moc"
