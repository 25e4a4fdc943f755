// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/meetinginvitation.h"

#include "application/base/deviceinformation.h"
#include "easitems/mstimezoneinformation.h"
#include "storages/calendar/meetingreply.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>

#include <QDataStream>
#include <QtTest>

#include <limits>

namespace {

const QByteArray ForeignId = [] {
    QByteArray id = QByteArray::fromHex("040000008200E00074C5B7101A82E008") + QByteArray(20, '\0');
    const QByteArray data = "vCal-Uid" + QByteArray::fromHex("01000000") + "meeting@example.com" + '\0';
    id += char(data.size());
    id += QByteArray(3, '\0') + data;
    return id.toBase64();
}();

EasMeetingRequestContainer meeting()
{
    EasMeetingRequestContainer request;
    request.setStartTime("2030-01-10T08:00:00.000Z");
    request.setEndTime("2030-01-10T09:00:00.000Z");
    request.setDtStamp("2029-12-01T10:00:00.000Z");
    request.setOrganizer("\"Organizer, Olga\" <olga@example.com>");
    request.setLocation("Room 2, second floor");
    request.setGlobalObjId(ForeignId);
    return request;
}

/** Central Europe, under a name. */
MSTimeZoneInformation zone(const QString &name = QStringLiteral("W. Europe Standard Time"))
{
    MSTimeZoneInformation information;
    information.bias = -60;
    information.stdName = name;
    information.stdDate = { 0, 10, 0, 5, 3, 0, 0, 0 };
    information.dltName = name;
    information.dltDate = { 0, 3, 0, 5, 2, 0, 0, 0 };
    information.dltBias = -60;
    return information;
}

QString block(const MSTimeZoneInformation &information)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << information;
    return QString::fromLatin1(bytes.toBase64());
}

QString encoded(const EasMeetingRequestContainer &request, const QString &summary = "Plans",
    const QString &description = "Shall we?",
    ExchangeActiveSync::ProtocolVersion version = ExchangeActiveSync::ProtocolVersion141)
{
    return QString::fromUtf8(MeetingInvitation(request, version).encode(summary, description));
}

QStringList lines(QString document)
{
    return document.replace("\r\n", "\n").remove("\n ").split('\n', Qt::SkipEmptyParts);
}

/** As the device's calendar reads it. */
KCalendarCore::Event::Ptr read(const QString &document)
{
    const KCalendarCore::MemoryCalendar::Ptr calendar(new KCalendarCore::MemoryCalendar(QTimeZone::utc()));
    KCalendarCore::ICalFormat().fromString(calendar, document);
    return calendar->events().value(0);
}

} // namespace

/** The iCalendar invitation that a message with a MeetingRequest gets. */
class MeetingInvitationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anInvitationHasItsPropertiesInOrder()
    {
        EasMeetingRequestContainer request = meeting();
        request.setProposedStartTime("2030-01-11T08:00:00.000Z");
        request.setProposedEndTime("2030-01-11T09:00:00.000Z");
        request.setRecurrenceId("2030-01-10T08:00:00.000Z");
        QCOMPARE(lines(encoded(request)),
            QStringList({ "BEGIN:VCALENDAR", "METHOD:REQUEST", "PRODID:" + DeviceInformation::prodId(),
                "VERSION:2.0", "BEGIN:VEVENT", "ORGANIZER;CN=\"Organizer, Olga\":MAILTO:olga@example.com",
                "DESCRIPTION:Shall we?", "UID:meeting@example.com", "X-FENNEL-EAS-UID:meeting@example.com",
                "X-MICROSOFT-CDO-ALLDAYEVENT:FALSE", "SUMMARY:Plans", "DTEND:20300110T090000Z",
                "DTSTART:20300110T080000Z", "X-FENNEL-EAS-PROPOSED-START:20300111T080000Z",
                "X-FENNEL-EAS-PROPOSED-END:20300111T090000Z", "CLASS:PUBLIC", "PRIORITY:5",
                "DTSTAMP:20291201T100000Z", "TRANSP:OPAQUE", "STATUS:CONFIRMED", "SEQUENCE:0",
                "LOCATION:Room 2\\, second floor", "RECURRENCE-ID:20300110T080000Z", "END:VEVENT",
                "END:VCALENDAR" }));
    }

    void theSensitivityIsTheClass_data()
    {
        QTest::addColumn<int>("sensitivity");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << -1 << "PUBLIC";
        QTest::newRow("normal") << 0 << "PUBLIC";
        QTest::newRow("personal") << 1 << "PRIVATE";
        QTest::newRow("private") << 2 << "PRIVATE";
        QTest::newRow("confidential") << 3 << "CONFIDENTIAL";
    }

    void theSensitivityIsTheClass()
    {
        QFETCH(int, sensitivity);
        QFETCH(QString, expected);
        EasMeetingRequestContainer request = meeting();
        request.setSensitivity(EasMeetingRequestContainer::Sensitivity(sensitivity));
        QVERIFY(lines(encoded(request)).contains("CLASS:" + expected));
    }

    void theIdentifierDependsOnTheVersion()
    {
        EasMeetingRequestContainer request = meeting();
        request.setCalendarMessageId("040000-of-16");
        const auto uid = [&request](ExchangeActiveSync::ProtocolVersion version) {
            return lines(encoded(request, {}, {}, version)).filter(QRegExp("^UID:")).join(',');
        };
        QCOMPARE(uid(ExchangeActiveSync::ProtocolVersion120), QStringLiteral("UID:meeting@example.com"));
        QCOMPARE(uid(ExchangeActiveSync::ProtocolVersion141), QStringLiteral("UID:meeting@example.com"));
        QCOMPARE(uid(ExchangeActiveSync::ProtocolVersion160), QStringLiteral("UID:040000-of-16"));
        QCOMPARE(uid(ExchangeActiveSync::ProtocolVersion161), QStringLiteral("UID:040000-of-16"));
    }

    void allDayIsAMark()
    {
        EasMeetingRequestContainer request = meeting();
        request.setAllDayEvent(1);
        QVERIFY(lines(encoded(request)).contains("X-MICROSOFT-CDO-ALLDAYEVENT:TRUE"));
    }

    void timesAreInTheZoneOfTheMeeting()
    {
        EasMeetingRequestContainer request = meeting();
        request.setTimeZone(block(zone()));
        request.setProposedStartTime("2030-07-11T08:00:00.000Z");
        const QStringList found = lines(encoded(request));
        QVERIFY(found.contains("DTSTART;TZID=Europe/Berlin:20300110T090000"));
        QVERIFY(found.contains("DTEND;TZID=Europe/Berlin:20300110T100000"));
        QVERIFY(found.contains("X-FENNEL-EAS-PROPOSED-START;TZID=Europe/Berlin:20300711T100000"));
        const int begin = found.indexOf("BEGIN:VTIMEZONE");
        QCOMPARE(found.mid(begin, 14),
            QStringList(
                { "BEGIN:VTIMEZONE", "TZID:Europe/Berlin", "BEGIN:STANDARD", "DTSTART:19701025T030000",
                    "TZOFFSETFROM:+0200", "TZOFFSETTO:+0100", "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10",
                    "END:STANDARD", "BEGIN:DAYLIGHT", "DTSTART:19700329T020000", "TZOFFSETFROM:+0100",
                    "TZOFFSETTO:+0200", "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3", "END:DAYLIGHT" }));
        const KCalendarCore::Event::Ptr event = read(encoded(request));
        QVERIFY(event);
        QCOMPARE(event->dtStart().toUTC(), QDateTime(QDate(2030, 1, 10), QTime(8, 0), Qt::UTC));
        QCOMPARE(event->dtStart().timeZone().id(), QByteArray("Europe/Berlin"));
    }

    void aZoneWithoutSeasonsHasOneOffset()
    {
        MSTimeZoneInformation information;
        information.bias = -330;
        information.stdName = QStringLiteral("India Standard Time");
        EasMeetingRequestContainer request = meeting();
        request.setTimeZone(block(information));
        const QStringList found = lines(encoded(request));
        QVERIFY(found.contains("DTSTART;TZID=Asia/Calcutta:20300110T133000")
            || found.contains("DTSTART;TZID=Asia/Kolkata:20300110T133000"));
        QVERIFY(found.contains("TZOFFSETTO:+0530"));
        QVERIFY(!found.contains("BEGIN:DAYLIGHT"));
    }

    void withoutAZoneTimesAreInUtc_data()
    {
        QTest::addColumn<QString>("timeZone");
        QTest::newRow("none") << QString();
        QTest::newRow("no block") << "Europe";
        QTest::newRow("no name") << block(zone(QString()));
        QTest::newRow("a name of no zone") << block(zone("Mitteleurop\u00e4ische Zeit"));
        MSTimeZoneInformation hostile = zone();
        hostile.bias = std::numeric_limits<qint32>::min();
        QTest::newRow("an impossible bias") << block(hostile);
    }

    void withoutAZoneTimesAreInUtc()
    {
        QFETCH(QString, timeZone);
        EasMeetingRequestContainer request = meeting();
        request.setTimeZone(timeZone);
        const QString document = encoded(request);
        QVERIFY(lines(document).contains("DTSTART:20300110T080000Z"));
        QVERIFY(!document.contains("TZID"));
    }

    void aSeriesHasItsRule()
    {
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::WeeklyRecurrence);
        recurrence.setInterval(2);
        recurrence.setOccurrences(8);
        recurrence.setDayOfWeek(0x12); // Monday and Thursday
        EasMeetingRequestContainer request = meeting();
        request.setRecurrences({ recurrence });
        request.setTimeZone(block(zone()));
        const QString rule = lines(encoded(request)).filter("RRULE:FREQ=WEEKLY").join(',');
        QVERIFY(rule.contains("INTERVAL=2"));
        QVERIFY(rule.contains("COUNT=8"));
        QVERIFY(rule.contains("BYDAY=MO,TH"));

        recurrence.setOccurrences(0);
        recurrence.setUntil("2030-03-01T08:00:00.000Z");
        request.setRecurrences({ recurrence });
        QVERIFY(lines(encoded(request)).filter("RRULE:FREQ=WEEKLY").join(',').contains("UNTIL=20300301T"));
    }

    void aRuleThatMakesNoSenseIsLeftOut()
    {
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::RecurrenceType(99));
        EasMeetingRequestContainer request = meeting();
        request.setRecurrences({ recurrence, EasRecurrenceContainer() });
        const QString document = encoded(request);
        QVERIFY(!document.isEmpty());
        QVERIFY(!document.contains("RRULE"));
    }

    void whatIsMadeOfLongTextsCanBeAnswered()
    {
        EasMeetingRequestContainer request = meeting();
        const QString text(10 * 1024 * 1024, QLatin1Char('n'));
        request.setLocation(text);
        request.setOrganizer("\"" + text + "\" <olga@example.com>");
        request.setCalendarMessageId(text.toUtf8());
        const QString document = encoded(request, text, text, ExchangeActiveSync::ProtocolVersion161);
        const MeetingReply reply("alice@example.com", EasItemsCommon::UserResponseAccepted);
        QVERIFY(!reply.encode(document).isEmpty());
    }

    void aMeetingWithoutAStartIsNone()
    {
        EasMeetingRequestContainer request = meeting();
        request.setStartTime("yesterday");
        QCOMPARE(encoded(request), QString());
    }

    void whatIsMissingIsLeftOut()
    {
        const TestClock clock(QDateTime(QDate(2030, 1, 1), QTime(7, 0), Qt::UTC));
        EasMeetingRequestContainer request;
        request.setStartTime("20300110T080000Z");
        const QStringList found = lines(encoded(request, {}, {}));
        QVERIFY(found.contains("DTSTART:20300110T080000Z"));
        QVERIFY(found.contains("DTSTAMP:20300101T070000Z"));
        for (const char *name : { "ORGANIZER", "DTEND", "RECURRENCE-ID", "X-FENNEL-EAS-PROPOSED" })
            QVERIFY2(found.filter(QLatin1String(name)).isEmpty(), name);
    }

    void hostileTextsStayTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("line break") << "a\r\nATTENDEE:mailto:x@example.org";
        QTest::newRow("lone line feed") << "a\nATTENDEE:mailto:x@example.org";
        QTest::newRow("lone carriage return") << "a\rATTENDEE:mailto:x@example.org";
        QTest::newRow("NUL") << QString("a") + QChar(0) + "ATTENDEE:mailto:x@example.org";
        QTest::newRow("quotes") << "a\";ATTENDEE=\"x\":mailto:x@example.org";
        QTest::newRow("right-to-left marks") << QStringLiteral("\u202e\u2066moc.live\u200f");
        QTest::newRow("4 KB name") << QString(4096, 'n') + QString(1000, QChar(0x4e2d));
    }

    void hostileTextsStayTexts()
    {
        QFETCH(QString, text);
        EasMeetingRequestContainer request = meeting();
        request.setLocation(text);
        request.setOrganizer("\"" + text + "\" <olga@example.com>");
        request.setCalendarMessageId(text.toUtf8());
        for (const QString &organizer : { request.organizer(), text, "<" + text + ">" }) {
            request.setOrganizer(organizer);
            const QString document = encoded(request, text, text, ExchangeActiveSync::ProtocolVersion161);
            QVERIFY(lines(document).filter(QRegExp("^ATTENDEE")).isEmpty());
            QCOMPARE(document.count('\r'), document.count("\r\n"));
            QCOMPARE(document.count("BEGIN:VEVENT"), 1);
            for (const QString &line : document.split("\r\n"))
                QVERIFY2(line.toUtf8().size() <= 75, qPrintable(line));
            QVERIFY(read(document));
        }
    }
};

FENNEL_REGISTER_TEST(MeetingInvitationTest)
#include "meetinginvitationtest.moc"
