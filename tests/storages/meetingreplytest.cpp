// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/meetingreply.h"

#include "application/base/deviceinformation.h"
#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QElapsedTimer>
#include <QtTest>

namespace {

const QString Address = QStringLiteral("user@example.com");

QString calendar(const QStringList &properties, const QStringList &head = { "METHOD:REQUEST", "VERSION:2.0" })
{
    const QStringList event = QStringList { "BEGIN:VEVENT" } + properties + QStringList { "END:VEVENT" };
    return (QStringList { "BEGIN:VCALENDAR" } + head + event + QStringList { "END:VCALENDAR", QString() })
        .join("\r\n");
}

QStringList plainMeeting()
{
    return { "UID:meeting@example.com", "DTSTART:20300110T080000Z", "DTEND:20300110T090000Z", "SEQUENCE:4",
        "SUMMARY:Plans\\, and more", "LOCATION:Room 2", "TRANSP:OPAQUE", "ORGANIZER:mailto:olga@example.com",
        "ATTENDEE:mailto:other@example.com", "DESCRIPTION:Nothing for the reply",
        "X-MICROSOFT-CDO-BUSYSTATUS:BUSY", "X-FENNEL-EAS-UID:abc" };
}

MeetingReply reply(EasItemsCommon::UserResponseType response = EasItemsCommon::UserResponseAccepted)
{
    return MeetingReply(Address, response);
}

/** The lines of the document, folded ones in one. */
QStringList lines(QString document)
{
    return document.replace("\r\n", "\n").remove("\n ").split('\n', Qt::SkipEmptyParts);
}

/** Names of the properties and components, in order. */
QStringList names(const QString &document)
{
    QStringList result;
    for (const QString &line : lines(document)) {
        const QString name = line.section(':', 0, 0).section(';', 0, 0);
        result.append(name == "BEGIN" || name == "END" ? line : name);
    }
    return result;
}

} // namespace

/** The iCalendar reply that the organizer of a meeting gets. */
class MeetingReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReplyHasItsPropertiesInOrder()
    {
        const TestClock clock(QDateTime(QDate(2030, 1, 1), QTime(7, 0), Qt::UTC));
        const QString document = reply().encode(calendar(plainMeeting()));
        QCOMPARE(lines(document),
            QStringList({ "BEGIN:VCALENDAR", "METHOD:REPLY", "PRODID:" + DeviceInformation::prodId(),
                "VERSION:2.0", "BEGIN:VEVENT", "DTSTART:20300110T080000Z", "DTEND:20300110T090000Z",
                "DTSTAMP:20300101T070000Z", "UID:meeting@example.com",
                "ATTENDEE;PARTSTAT=ACCEPTED:MAILTO:user@example.com", "LOCATION:Room 2", "SEQUENCE:0",
                "STATUS:CONFIRMED", "SUMMARY:Plans\\, and more", "TRANSP:OPAQUE",
                "X-MICROSOFT-CDO-BUSYSTATUS:BUSY", "END:VEVENT", "END:VCALENDAR" }));
    }

    void theAnswerIsTheParticipation_data()
    {
        QTest::addColumn<int>("response");
        QTest::addColumn<QString>("participation");
        QTest::newRow("accepted") << 1 << "ACCEPTED";
        QTest::newRow("tentative") << 2 << "TENTATIVE";
        QTest::newRow("declined") << 3 << "DECLINED";
    }

    void theAnswerIsTheParticipation()
    {
        QFETCH(int, response);
        QFETCH(QString, participation);
        const QString document =
            reply(EasItemsCommon::UserResponseType(response)).encode(calendar(plainMeeting()));
        QVERIFY(document.contains("PARTSTAT=" + participation));
        QVERIFY(!document.contains("ORGANIZER"));
        QCOMPARE(document.count("ATTENDEE"), 1);
    }

    void aZoneComesAlong()
    {
        const QString zone = "BEGIN:VTIMEZONE\r\nTZID:Europe/Berlin\r\nBEGIN:STANDARD\r\n"
                             "DTSTART:19701025T030000\r\nTZOFFSETFROM:+0200\r\nTZOFFSETTO:+0100\r\n"
                             "END:STANDARD\r\nEND:VTIMEZONE";
        const QString document = reply().encode(
            calendar({ "UID:u", "DTSTART;TZID=Europe/Berlin:20300110T090000", "RRULE:FREQ=WEEKLY;BYDAY=TH" },
                { "METHOD:REQUEST", "VERSION:2.0", zone }));
        QVERIFY(names(document).contains("BEGIN:VTIMEZONE"));
        QVERIFY(document.contains("DTSTART;TZID=Europe/Berlin:20300110T090000"));
        QVERIFY(document.contains("RRULE:FREQ=WEEKLY;BYDAY=TH"));
        QVERIFY(document.contains("SEQUENCE:0"));
    }

    void aRequestForOneOccurrenceIsAnsweredForIt()
    {
        const QString document =
            reply().encode(calendar(plainMeeting() + QStringList { "RECURRENCE-ID:20300110T080000Z" }));
        QVERIFY(document.contains("SEQUENCE:1"));
        QVERIFY(document.contains("RECURRENCE-ID:20300110T080000Z"));
    }

    void oneOccurrenceOfASeriesCanBeAnswered()
    {
        MeetingReply answer = reply(EasItemsCommon::UserResponseDeclined);
        answer.setOccurrence(QDateTime(QDate(2030, 1, 17), QTime(8, 0), Qt::UTC));
        const QString document =
            answer.encode(calendar(plainMeeting() + QStringList { "RRULE:FREQ=WEEKLY;COUNT=5" }));
        QVERIFY(document.contains("RECURRENCE-ID:20300117T080000Z"));
        QVERIFY(document.contains("DTSTART:20300117T080000Z"));
        QVERIFY(document.contains("DTEND:20300117T090000Z"));
        QVERIFY(document.contains("SEQUENCE:1"));
        QVERIFY2(!document.contains("RRULE"), "the answer would be about them all");
    }

    void oneDayOfAnAllDaySeriesCanBeAnswered()
    {
        MeetingReply answer = reply();
        answer.setOccurrence(QDateTime(QDate(2030, 1, 17), QTime(0, 0)));
        const QString document = answer.encode(calendar({ "UID:u", "DTSTART;VALUE=DATE:20300110",
            "DTEND;VALUE=DATE:20300111", "RRULE:FREQ=WEEKLY;COUNT=5" }));
        QVERIFY(document.contains("RECURRENCE-ID;VALUE=DATE:20300117"));
        QVERIFY(document.contains("DTSTART;VALUE=DATE:20300117"));
        QVERIFY(document.contains("DTEND;VALUE=DATE:20300118"));
    }

    void anEventHasNoMethod()
    {
        MeetingReply answer = reply();
        const QString event = calendar(plainMeeting(), { "VERSION:2.0" });
        const LogCollector log;
        QCOMPARE(answer.encode(event), QString());
        QVERIFY(log.contains(QtWarningMsg, { "No method property in request" }));
        answer.allowMissingMethod(true);
        QVERIFY(!answer.encode(event).isEmpty());
    }

    void whatIsNoInvitationIsRefused_data()
    {
        QTest::addColumn<QString>("document");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << QString() << "No request ICalendar data";
        QTest::newRow("no iCalendar") << "Dear all,\r\nhow about Friday?"
                                      << "Failed parsing request data";
        QTest::newRow("published") << calendar(plainMeeting(), { "METHOD:PUBLISH", "VERSION:2.0" })
                                   << "Wrong method property in request:";
        QTest::newRow("without a method")
            << calendar(plainMeeting(), { "VERSION:2.0" }) << "No method property in request";
        QTest::newRow("without a version")
            << calendar(plainMeeting(), { "METHOD:REQUEST" }) << "No version property in request";
        QTest::newRow("version 1.0") << calendar(plainMeeting(), { "METHOD:REQUEST", "VERSION:1.0" })
                                     << "Wrong version in request:";
        QTest::newRow("without an event")
            << "BEGIN:VCALENDAR\r\nMETHOD:REQUEST\r\nVERSION:2.0\r\nEND:VCALENDAR\r\n"
            << "No event component in request";
    }

    void whatIsNoInvitationIsRefused()
    {
        QFETCH(QString, document);
        QFETCH(QString, text);
        const LogCollector log;
        QCOMPARE(reply().encode(document), QString());
        QVERIFY2(log.contains(QtWarningMsg, { text }), qPrintable(log.texts(QtWarningMsg).join("; ")));
    }

    void nobodyAnswersWithoutAnAddressOrAnAnswer()
    {
        const LogCollector log;
        QCOMPARE(MeetingReply({}, EasItemsCommon::UserResponseAccepted).encode(calendar(plainMeeting())),
            QString());
        QVERIFY(log.contains(QtWarningMsg, { "No email address" }));
        QCOMPARE(reply(EasItemsCommon::UserResponseUndefined).encode(calendar(plainMeeting())), QString());
        QCOMPARE(reply(EasItemsCommon::UserResponseType(4)).encode(calendar(plainMeeting())), QString());
        QVERIFY(log.contains(QtWarningMsg, { "Wrong user response:", "0" }));
        QVERIFY(log.contains(QtWarningMsg, { "Wrong user response:", "4" }));
    }

    void foreignPartsAreLoggedAndLeftOut()
    {
        const LogCollector log;
        const QString document = reply().encode(calendar(plainMeeting(),
            { "METHOD:REQUEST", "VERSION:2.0", "CALSCALE:GREGORIAN", "BEGIN:VTODO\r\nUID:x\r\nEND:VTODO" }));
        QVERIFY(!document.contains("VTODO"));
        QVERIFY(!document.contains("CALSCALE"));
        QVERIFY(log.contains(QtDebugMsg, { "Unknown component in request, type:" }));
        QVERIFY(log.contains(QtDebugMsg, { "Unknown property in request, type:" }));
    }

    void hostileTextsStayTexts_data()
    {
        QTest::addColumn<QString>("property");
        QTest::newRow("escaped line break") << "SUMMARY:a\\nATTENDEE:mailto:x@example.org";
        QTest::newRow("lone carriage return") << "SUMMARY:a\rATTENDEE:mailto:x@example.org";
        QTest::newRow("vertical tab") << "SUMMARY:a\vATTENDEE:mailto:x@example.org";
        QTest::newRow("escaped break in a foreign property") << "X-A:a\\nATTENDEE:mailto:x@example.org";
        QTest::newRow("lone carriage return in a foreign property") << "X-A:a\rATTENDEE:mailto:x@example.org";
        QTest::newRow("encoded break in a parameter") << "LOCATION;X-P=\"a^nATTENDEE:mailto:x\":here";
        QTest::newRow("right-to-left marks") << QStringLiteral("SUMMARY:\u202e\u2066moc.live\u200f");
        QTest::newRow("4 KB name") << "LOCATION:" + QString(4096, 'n') + QString(1000, QChar(0x4e2d));
    }

    void hostileTextsStayTexts()
    {
        QFETCH(QString, property);
        const QString document = reply().encode(calendar({ "UID:u", "DTSTART:20300110T080000Z", property }));
        const QStringList found = names(document);
        QCOMPARE(found.count("ATTENDEE"), 1);
        QCOMPARE(found.count("BEGIN:VEVENT"), 1);
        for (const QString &line : document.split("\r\n"))
            QVERIFY2(line.toUtf8().size() <= 75, qPrintable(line));
    }

    void anAddressIsOneValue()
    {
        const MeetingReply answer(
            "user@example.com\r\nDTSTART:19700101T000000Z", EasItemsCommon::UserResponseAccepted);
        const QStringList found = names(answer.encode(calendar(plainMeeting())));
        QCOMPARE(found.count("DTSTART"), 1);
    }

    void hostileDocumentsAreRefusedInTime_data()
    {
        QTest::addColumn<QString>("document");
        QTest::addColumn<bool>("isAnswered");
        QTest::newRow("10 MB") << calendar({ "UID:u", "DESCRIPTION:" + QString(10 * 1024 * 1024, 'x') })
                               << false;
        QStringList properties { "UID:u" };
        for (int i = 0; i < 100000; ++i)
            properties.append("X-P:1");
        QTest::newRow("100,000 properties") << calendar(properties) << false;
        QTest::newRow("1,000 components deep") << QString("BEGIN:VEVENT\r\n").repeated(1000) << false;
        QTest::newRow("1,000 components deep, folded")
            << QString("BEG\r\n IN:VEVENT\r\n").repeated(1000) << false;
        QTest::newRow("NUL") << calendar({ "UID:u", QString("SUMMARY:a") + QChar(0) + "b" }) << false;
        QTest::newRow("rules without end") << calendar({ "UID:u", "DTSTART:20300110T080000Z",
            "RRULE:FREQ=SECONDLY;INTERVAL=1", "RRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=31" })
                                           << true;
        QTest::newRow("900 KB of text")
            << calendar({ "UID:u", "DESCRIPTION:" + QString(900000, 'x') }) << true;
        QTest::newRow("900 KB of a foreign property")
            << calendar({ "UID:u", "X-A:" + QString(900000, 'x') }) << true;
        QTest::newRow("half a million values")
            << calendar({ "UID:u", "CATEGORIES:" + QString("a,").repeated(450000) }) << true;
        QTest::newRow("half a million dates")
            << calendar({ "UID:u", "EXDATE:" + QString("20300110T080000Z,").repeated(50000) }) << true;
        QTest::newRow("many parameters")
            << calendar({ "UID:u", "LOCATION" + QString(";X-P=1").repeated(150000) + ":here" }) << true;
        QTest::newRow("an empty parameter list")
            << calendar({ "UID:u", "LOCATION" + QString(";").repeated(900000) + ":here" }) << true;
    }

    void hostileDocumentsAreRefusedInTime()
    {
        QFETCH(QString, document);
        QFETCH(bool, isAnswered);
        QElapsedTimer time;
        time.start();
        const QString answer = reply().encode(document);
        qInfo() << time.elapsed() << "ms";
        QCOMPARE(!answer.isEmpty(), isAnswered);
    }
};

FENNEL_REGISTER_TEST(MeetingReplyTest)
#include "meetingreplytest.moc"
