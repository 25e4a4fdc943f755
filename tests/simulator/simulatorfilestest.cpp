// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/calendarfile.h"
#include "simulator/contactfile.h"
#include "simulator/contactitem.h"
#include "simulator/controlchannel.h"
#include "simulator/eventitem.h"
#include "simulator/mailboxdirectory.h"
#include "simulator/sampleitems.h"
#include "simulator/samplemailbox.h"
#include "support/testmain.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Simulator;

namespace {

const QByteArray contactText = "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Müller;Ann;Maria;Dr.;jun.\r\n"
                               "FN:Ann Müller\r\nNICKNAME:Annie\r\nORG:Example;Sales\r\nTITLE:Editor\r\n"
                               "TEL;TYPE=CELL:1\r\nTEL;TYPE=WORK,VOICE:2\r\nTEL;TYPE=WORK:3\r\n"
                               "TEL;TYPE=HOME:4\r\nTEL;TYPE=HOME,FAX:5\r\nTEL;TYPE=WORK,FAX:6\r\n"
                               "EMAIL;TYPE=INTERNET:a@example.com\r\nEMAIL:b@example.com\r\n"
                               "ADR;TYPE=WORK:;;1 Main St;Town;State;123;Land\r\nBDAY:1984-02-29\r\n"
                               "CATEGORIES:Friends,Büro\r\nNOTE:One\\nTwo\r\n"
                               "PHOTO;ENCODING=b;TYPE=PNG:iVBORw0KGgo=\r\nEND:VCARD\r\n"
                               "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Reader;Bob;;;\r\nFN:Bob\r\nEND:VCARD\r\n";

const QByteArray calendarText =
    "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\n"
    "BEGIN:VTIMEZONE\r\nTZID:Europe/Berlin\r\n"
    "BEGIN:STANDARD\r\nDTSTART:19701025T030000\r\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\r\n"
    "TZOFFSETFROM:+0200\r\nTZOFFSETTO:+0100\r\nEND:STANDARD\r\n"
    "BEGIN:DAYLIGHT\r\nDTSTART:19700329T020000\r\nRRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\r\n"
    "TZOFFSETFROM:+0100\r\nTZOFFSETTO:+0200\r\nEND:DAYLIGHT\r\nEND:VTIMEZONE\r\n"
    "BEGIN:VEVENT\r\nUID:series\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Team\r\nLOCATION:Room 7\r\n"
    "DTSTART;TZID=Europe/Berlin:20260302T093000\r\nDTEND;TZID=Europe/Berlin:20260302T101500\r\n"
    "RRULE:FREQ=WEEKLY;INTERVAL=2;COUNT=10;BYDAY=MO\r\nEXDATE;TZID=Europe/Berlin:20260413T093000\r\n"
    "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:x\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:series\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Team elsewhere\r\n"
    "LOCATION:Room 7\r\nRECURRENCE-ID;TZID=Europe/Berlin:20260330T093000\r\n"
    "DTSTART;TZID=Europe/Berlin:20260331T093000\r\nDTEND;TZID=Europe/Berlin:20260331T101500\r\n"
    "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:x\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:days\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Fair\r\n"
    "DTSTART;VALUE=DATE:20260630\r\nDTEND;VALUE=DATE:20260703\r\nTRANSP:TRANSPARENT\r\n"
    "RRULE:FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=30;UNTIL=20310630\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:meeting\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Review\r\n"
    "DTSTART:20260701T180000Z\r\nDTEND:20260701T190000Z\r\nCLASS:PRIVATE\r\n"
    "ORGANIZER;CN=Ann:mailto:ann@example.com\r\n"
    "ATTENDEE;CN=Bob;PARTSTAT=ACCEPTED:mailto:bob@example.com\r\n"
    "ATTENDEE;CN=Eve;ROLE=OPT-PARTICIPANT;PARTSTAT=DECLINED:mailto:eve@example.com\r\nEND:VEVENT\r\n"
    "END:VCALENDAR\r\n";

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC);
}

} // namespace

/** @short Events and contacts from files, of the sample, and by the control channel. */
class SimulatorFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contactsComeFromVCards()
    {
        const QVector<Contact> contacts = ContactFile::read(contactText);
        QCOMPARE(contacts.size(), 2);
        const Contact &ann = contacts.first();
        const QMap<QString, QString> expected { { "FileAs", "Ann Müller" }, { "LastName", "Müller" },
            { "FirstName", "Ann" }, { "MiddleName", "Maria" }, { "Title", "Dr." }, { "Suffix", "jun." },
            { "NickName", "Annie" }, { "CompanyName", "Example" }, { "Department", "Sales" },
            { "JobTitle", "Editor" }, { "MobilePhoneNumber", "1" }, { "BusinessPhoneNumber", "2" },
            { "Business2PhoneNumber", "3" }, { "HomePhoneNumber", "4" }, { "HomeFaxNumber", "5" },
            { "BusinessFaxNumber", "6" }, { "Email1Address", "a@example.com" },
            { "Email2Address", "b@example.com" }, { "BusinessAddressStreet", "1 Main St" },
            { "BusinessAddressCity", "Town" }, { "BusinessAddressState", "State" },
            { "BusinessAddressPostalCode", "123" }, { "BusinessAddressCountry", "Land" },
            { "Birthday", "1984-02-29T00:00:00.000Z" } };
        QCOMPARE(ann.texts(), expected);
        QCOMPARE(ann.categories(), QStringList({ QStringLiteral("Friends"), QStringLiteral("Büro") }));
        QCOMPARE(ann.note(), QStringLiteral("One\r\nTwo"));
        QCOMPARE(ann.picture(), QByteArray::fromBase64("iVBORw0KGgo="));
        QVERIFY(ContactFile::read("no vCard").isEmpty());
    }

    void eventsComeFromICalendars()
    {
        const QVector<Event> events = CalendarFile::read(calendarText);
        QCOMPARE(events.size(), 3);
        const Event &series = events.at(0);
        QCOMPARE(series.start, utc(2026, 3, 2, 8, 30));
        QCOMPARE(series.end, utc(2026, 3, 2, 9, 15));
        QVERIFY(series.zone.agreesWith(
            EventZone::named("Europe/Berlin", series.start), series.start, utc(2028, 1, 1)));
        QCOMPARE(series.rule->type, int(EventRule::Weekly));
        QCOMPARE(series.rule->interval, 2);
        QCOMPARE(series.rule->occurrences, 10);
        QCOMPARE(series.rule->dayOfWeek, int(EventRule::Monday));
        QCOMPARE(series.reminder, 15);
        QCOMPARE(series.exceptions.size(), 2);
        // After the change of the clocks in March.
        const EventException *moved = series.exceptionAt(utc(2026, 3, 30, 7, 30));
        QVERIFY(moved);
        QVERIFY(moved->own
            == (QSet<QString> {
                QStringLiteral("Subject"), QStringLiteral("StartTime"), QStringLiteral("EndTime") }));
        QCOMPARE(series.detailsOf(*moved).start, utc(2026, 3, 31, 7, 30));
        QVERIFY(series.exceptionAt(utc(2026, 4, 13, 7, 30))->isDeleted);

        const Event &days = events.at(1);
        QVERIFY(days.allDay);
        QCOMPARE(days.start, utc(2026, 6, 30));
        QCOMPARE(days.end, utc(2026, 7, 3));
        QCOMPARE(days.busyStatus, 0);
        QCOMPARE(days.rule->type, int(EventRule::YearlyByDay));
        QCOMPARE(days.rule->until.date(), QDate(2031, 6, 30));

        const Event &meeting = events.at(2);
        QCOMPARE(meeting.organizerEmail, QStringLiteral("ann@example.com"));
        QCOMPARE(meeting.attendees.size(), 2);
        QCOMPARE(meeting.attendees.at(0).status, 3);
        QCOMPARE(meeting.attendees.at(1).type, 2);
        QCOMPARE(meeting.sensitivity, 2);
        QVERIFY(CalendarFile::read("no calendar").isEmpty());
    }

    void aDirectoryHoldsMailEventsAndContacts()
    {
        QTemporaryDir directory;
        write(directory, QStringLiteral("all.ics"), calendarText);
        write(directory, QStringLiteral("all.vcf"), contactText);
        write(directory, QStringLiteral("Team/events.ics"), calendarText);
        write(directory, QStringLiteral("Club/people.vcf"), contactText);
        write(directory, QStringLiteral("Contacts/more.vcf"), contactText);
        Mailbox mailbox;
        QCOMPARE(MailboxDirectory::load(directory.path(), mailbox), 3 + 2 + 3 + 2 + 2);
        QCOMPARE(mailbox.itemCount(mailbox.folderOfType(CalendarFolder).id), 3);
        QCOMPARE(mailbox.itemCount(mailbox.folderOfType(ContactsFolder).id), 4);
        QCOMPARE(mailbox.itemCount(mailbox.folderOfType(UserCalendarFolder).id), 3);
        QCOMPARE(mailbox.folderByPath(QStringLiteral("Team")).type, int(UserCalendarFolder));
        QCOMPARE(mailbox.folderByPath(QStringLiteral("Club")).type, int(UserContactsFolder));
        QCOMPARE(mailbox.itemCount(mailbox.inboxId()), 0);
    }

    void theSampleHasTheEventsAndContactsThatDemonstrationsNeed()
    {
        Mailbox mailbox;
        SampleMailbox::fill(mailbox);
        bool moved = false;
        bool deleted = false;
        bool allDay = false;
        bool abroad = false;
        bool meeting = false;
        const QVector<Event> events = SampleItems::events(QDate(2026, 11, 21));
        for (const Event &event : events) {
            for (const EventException &exception : event.exceptions) {
                QVERIFY(event.hasOccurrence(exception.original));
                moved = moved || exception.own.contains(QStringLiteral("StartTime"));
                deleted = deleted || exception.isDeleted;
            }
            allDay = allDay || event.allDay;
            abroad = abroad || event.zone.offsetAt(event.start) < 0;
            meeting = meeting || event.attendees.size() > 1;
        }
        QVERIFY(moved && deleted && allDay && abroad && meeting);
        QCOMPARE(mailbox.itemCount(mailbox.folderOfType(CalendarFolder).id), events.size());
        int pictures = 0;
        const QVector<Contact> contacts = SampleItems::contacts();
        for (const Contact &contact : contacts)
            pictures += contact.picture().isEmpty() ? 0 : 1;
        QCOMPARE(pictures, 1);
        QCOMPARE(mailbox.itemCount(mailbox.folderOfType(ContactsFolder).id), contacts.size());
    }

    void theControlChannelWorksOnEventsAndContacts()
    {
        QTemporaryDir directory;
        write(directory, QStringLiteral("all.ics"), calendarText);
        write(directory, QStringLiteral("all.vcf"), contactText);
        ExchangeServer server;
        Mailbox &mailbox = server.mailbox();
        ControlChannel channel(server, nullptr);
        const QString calendar = mailbox.folderOfType(CalendarFolder).id;
        const QString added =
            channel.run(QStringLiteral("add ") + directory.filePath(QStringLiteral("all.ics")));
        const QString series = added.section(QLatin1Char(' '), 1, 1);
        QVERIFY(mailbox.value<EventItem>(series));
        QCOMPARE(channel.run(QStringLiteral("set Calendar %1 Subject \"New name\"").arg(series)),
            QStringLiteral("ok"));
        QCOMPARE(channel.run(
                     QStringLiteral("set-occurrence Calendar %1 2026-04-27 Location Elsewhere").arg(series)),
            QStringLiteral("ok"));
        QCOMPARE(channel.run(QStringLiteral("delete-occurrence Calendar %1 2026-05-11").arg(series)),
            QStringLiteral("ok"));
        // No Monday.
        QVERIFY(channel.run(QStringLiteral("delete-occurrence Calendar %1 2026-05-12").arg(series))
                    .startsWith(QLatin1String("error")));
        QVERIFY(channel.run(QStringLiteral("set Calendar %1 BusyStatus 9").arg(series))
                    .startsWith(QLatin1String("error")));
        const Event event = *mailbox.value<EventItem>(series);
        QCOMPARE(event.subject, QStringLiteral("New name"));
        QCOMPARE(event.busyStatus, 2);
        QCOMPARE(event.detailsOf(*event.exceptionAt(utc(2026, 4, 27, 7, 30))).location.name,
            QStringLiteral("Elsewhere"));
        QVERIFY(event.exceptionAt(utc(2026, 5, 11, 7, 30))->isDeleted);
        const QString shown = channel.run(QStringLiteral("show Calendar ") + series);
        QVERIFY(shown.contains(QStringLiteral("2026-04-27T07:30:00Z Location\tElsewhere\n")));
        QVERIFY(shown.contains(QStringLiteral("2026-05-11T07:30:00Z Deleted\t1\n")));
        QVERIFY(channel.run(QStringLiteral("list Calendar")).contains(QStringLiteral("New name")));

        const QString people =
            channel.run(QStringLiteral("add ") + directory.filePath(QStringLiteral("all.vcf")));
        const QString ann = people.section(QLatin1Char(' '), 1, 1);
        QCOMPARE(channel.run(QStringLiteral("set Contacts %1 MobilePhoneNumber 42").arg(ann)),
            QStringLiteral("ok"));
        QCOMPARE(
            mailbox.value<ContactItem>(ann)->text(QStringLiteral("MobilePhoneNumber")), QStringLiteral("42"));
        QVERIFY(channel.run(QStringLiteral("set Contacts %1 Nonsense 42").arg(ann))
                    .startsWith(QLatin1String("error")));
        QVERIFY(
            channel.run(QStringLiteral("show Contacts ") + ann).contains(QStringLiteral("FirstName\tAnn\n")));
        QCOMPARE(channel.run(QStringLiteral("delete Contacts ") + ann), QStringLiteral("ok"));
        QVERIFY(!mailbox.item(ann));
        QCOMPARE(mailbox.itemCount(calendar), 3);
    }

private:
    static void write(const QTemporaryDir &directory, const QString &path, const QByteArray &bytes)
    {
        const QString target = directory.filePath(path);
        QDir().mkpath(QFileInfo(target).path());
        QFile file(target);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }
};

FENNEL_REGISTER_TEST(SimulatorFilesTest)
#include "simulatorfilestest.moc"
