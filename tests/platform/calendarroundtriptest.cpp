// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"
#include "support/testmain.h"

#include <KCalendarCore/Todo>

#include <QBitArray>
#include <QTimeZone>
#include <QtTest>

using namespace CalendarFixture;
using KCalendarCore::Alarm;
using KCalendarCore::Attachment;
using KCalendarCore::Attendee;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

Q_DECLARE_METATYPE(QTimeZone)

/** Whatever an event holds comes back from the store as it was saved. */
class CalendarRoundTripTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    std::unique_ptr<CalendarStore> mStore;

    Event::Ptr saved(const Event::Ptr &event)
    {
        if (!mStore->calendar->addEvent(event, notebookUid) || !mStore->storage->save())
            return Event::Ptr();
        CalendarStore other(mFolder.filePath(QStringLiteral("db")));
        other.storage->load();
        return other.event(event->uid(), event->recurrenceId());
    }

private Q_SLOTS:
    void init()
    {
        mStore = std::make_unique<CalendarStore>(mFolder.filePath(QStringLiteral("db")));
        QVERIFY(mStore->opened);
        addNotebook(*mStore);
    }

    void cleanup()
    {
        mStore.reset();
        QVERIFY(QDir(mFolder.path()).removeRecursively() && QDir().mkpath(mFolder.path()));
    }

    void anEventWithEverything()
    {
        const Event::Ptr event = makeSeries(QStringLiteral("everything"));
        event->setDescription(QStringLiteral("plain; text, with \\ and\n\ttab"), false);
        event->setLocation(QStringLiteral("Room; 1, \"x\""));
        event->setStatus(Incidence::StatusTentative);
        event->setSecrecy(Incidence::SecrecyConfidential);
        event->setTransparency(Event::Transparent);
        event->setPriority(4);
        event->setRevision(7);
        event->setUrl(QUrl(QStringLiteral("https://example.com/a?b=c")));
        event->setOrganizer(KCalendarCore::Person(QStringLiteral("Örg"), QStringLiteral("o@example.com")));
        Attendee attendee(QStringLiteral("Ann, \"A\""), QStringLiteral("a@example.com"), true,
            Attendee::Tentative, Attendee::OptParticipant);
        event->addAttendee(attendee);
        const Alarm::Ptr alarm = event->newAlarm();
        alarm->setEnabled(true);
        alarm->setType(Alarm::Display);
        alarm->setStartOffset(KCalendarCore::Duration(-900));
        event->recurrence()->addExDateTime(event->dtStart().addDays(2));
        event->recurrence()->addExDate(QDate(2024, 5, 5));
        event->setCreated(utc(1000000000));
        event->setLastModified(utc(1100000000));

        const Event::Ptr read = saved(event);
        QVERIFY(read);
        QCOMPARE(event->lastModified(), utc(1100000000));
        QCOMPARE(read->created(), utc(1000000000));
        QCOMPARE(read->lastModified(), utc(1100000000));
        // The organizer comes back as an attendee as well.
        KCalendarCore::Attendee::List attendees = read->attendees();
        QCOMPARE(attendees.size(), 2);
        const KCalendarCore::Attendee organizer = attendees.takeLast();
        QCOMPARE(organizer.email(), event->organizer().email());
        QCOMPARE(organizer.status(), KCalendarCore::Attendee::None);
        QVERIFY(!organizer.RSVP());
        read->setAttendees(attendees);
        read->setLastModified(event->lastModified());
        QVERIFY(*read == *event);
        QCOMPARE(read->alarms().size(), 1);
        QCOMPARE(read->alarms().constFirst()->startOffset().asSeconds(), -900);
        QCOMPARE(read->recurrence()->exDateTimes(), event->recurrence()->exDateTimes());
        QCOMPARE(read->recurrence()->exDates(), event->recurrence()->exDates());
        QCOMPARE(mStore->calendar->notebook(event), notebookUid);
    }

    void timesKeepTheirZones_data()
    {
        QTest::addColumn<QDateTime>("time");
        const QDate day(2024, 1, 15);
        const QTime time(1, 30, 20);
        QTest::newRow("zone with summer time") << QDateTime(day, time, QTimeZone("America/New_York"));
        QTest::newRow("zone without summer time") << QDateTime(day, time, QTimeZone("Asia/Kolkata"));
        QTest::newRow("zone with a sign in its name") << QDateTime(day, time, QTimeZone("Etc/GMT+3"));
        QTest::newRow("UTC") << QDateTime(day, time, Qt::UTC);
        QTest::newRow("zone UTC") << QDateTime(day, time, QTimeZone::utc());
        QTest::newRow("offset") << QDateTime(day, time, Qt::OffsetFromUTC, 5400);
        QTest::newRow("zone of an offset") << QDateTime(day, time, QTimeZone(-4500));
        QTest::newRow("clock time") << QDateTime(day, time, Qt::LocalTime);
    }

    void timesKeepTheirZones()
    {
        QFETCH(QDateTime, time);
        const Event::Ptr event = makeEvent(QStringLiteral("zone-event"));
        event->setDtStart(time);
        event->setDtEnd(time.addSecs(60));
        const Event::Ptr read = saved(event);
        QVERIFY(read);
        QCOMPARE(read->dtStart(), time);
        QCOMPARE(read->dtStart().timeSpec(), time.timeSpec());
        QCOMPARE(read->dtStart().timeZone().id(), time.timeZone().id());
        QCOMPARE(read->dtEnd().timeZone().id(), time.timeZone().id());
        QCOMPARE(read->dtEnd(), time.addSecs(60));
    }

    void aDifferentZoneForTheEnd()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("two-zones"));
        event->setDtEnd(QDateTime(QDate(2024, 5, 1), QTime(9, 0), QTimeZone("America/Sao_Paulo")));
        const Event::Ptr read = saved(event);
        QCOMPARE(read->dtStart().timeZone().id(), QByteArray("Europe/Berlin"));
        QCOMPARE(read->dtEnd().timeZone().id(), QByteArray("America/Sao_Paulo"));
        QCOMPARE(read->dtEnd(), event->dtEnd());
    }

    void anAllDayEventKeepsItsDatesInClockTime()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("all-day-event"));
        event->setDtStart(QDateTime(QDate(2024, 5, 1), QTime(0, 0), QTimeZone("Pacific/Apia")));
        event->setDtEnd(QDateTime(QDate(2024, 5, 3), QTime(0, 0), QTimeZone("Pacific/Apia")));
        event->setAllDay(true);
        const Event::Ptr read = saved(event);
        QVERIFY(read->allDay());
        QCOMPARE(read->dtStart().date(), QDate(2024, 5, 1));
        QCOMPARE(read->dtEnd().date(), QDate(2024, 5, 3));
        QCOMPARE(read->dtStart().timeSpec(), Qt::LocalTime);
        QCOMPARE(read->dtEnd().timeSpec(), Qt::LocalTime);
    }

    void anEventWithoutEnd()
    {
        const Event::Ptr event(new Event);
        event->setUid(QStringLiteral("endless-event"));
        event->setDtStart(berlin(QDate(2024, 5, 1)));
        const Event::Ptr read = saved(event);
        QVERIFY(!read->hasEndDate());
        QCOMPARE(read->dtEnd(), event->dtStart());
    }

    void categoriesWithCommas()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("categories"));
        const QStringList categories { QStringLiteral("a,b"), QStringLiteral("c \\ d"), QStringLiteral("e;f"),
            QStringLiteral("ü") };
        event->setCategories(categories);
        QCOMPARE(saved(event)->categories(), categories);
    }

    void richAndPlainTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isRich");
        QTest::newRow("rich") << QStringLiteral("<p>a &lt; b</p>") << true;
        QTest::newRow("plain") << QStringLiteral("a < b") << false;
        QTest::newRow("plain that looks rich") << QStringLiteral("<p>a</p>") << false;
        QTest::newRow("line ends of both kinds") << QStringLiteral("a\r\nb\nc\rd") << false;
        QTest::newRow("blanks at both ends") << QStringLiteral("  a \n ") << false;
        QTest::newRow("a line that closes the component") << QStringLiteral("a\nEND:VEVENT\nb") << false;
        QTest::newRow("control characters") << QStringLiteral("a\x01\x1f"
                                                              "b")
                                            << false;
        QTest::newRow("beyond the first plane") << QString::fromUtf8("\xf0\x9f\x98\x80 x") << false;
        QTest::newRow("a long line") << QString(100000, QLatin1Char('x')) << false;
    }

    void richAndPlainTexts()
    {
        QFETCH(QString, text);
        QFETCH(bool, isRich);
        const Event::Ptr event = makeEvent(QStringLiteral("text-event"));
        event->setDescription(text, isRich);
        event->setSummary(text, isRich);
        event->setLocation(text, isRich);
        const Event::Ptr read = saved(event);
        QVERIFY(read);
        QCOMPARE(read->description(), text);
        QCOMPARE(read->descriptionIsRich(), isRich);
        QCOMPARE(read->summary(), text);
        QCOMPARE(read->location(), text);
    }

    void customProperties()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("properties"));
        event->setNonKDECustomProperty("X-PLAIN", QStringLiteral("value"));
        event->setNonKDECustomProperty("X-EMPTY", QStringLiteral(""));
        event->setNonKDECustomProperty("X-LINES", QStringLiteral("a;b,\nc\r\n\td\\"));
        event->setCustomProperty("APP", "KEY", QStringLiteral("own"));
        event->setNonKDECustomProperty("X_NOT_A_NAME", QStringLiteral("dropped"));
        const Event::Ptr read = saved(event);
        QCOMPARE(read->nonKDECustomProperty("X-PLAIN"), QStringLiteral("value"));
        QVERIFY(!read->nonKDECustomProperty("X-EMPTY").isNull());
        QVERIFY(read->nonKDECustomProperty("X-OTHER").isNull());
        QCOMPARE(read->nonKDECustomProperty("X-LINES"), QStringLiteral("a;b,\nc\r\n\td\\"));
        QCOMPARE(read->customProperty("APP", "KEY"), QStringLiteral("own"));
        QCOMPARE(read->customProperties(), event->customProperties());
    }

    void attachments()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("attachments"));
        Attachment binary(QByteArray("aGVsbG8AAQI="), QStringLiteral("image/png"));
        binary.setLabel(QStringLiteral("la\"bel, x"));
        binary.setShowInline(true);
        Attachment link(QStringLiteral("x-mkcal-attachment:?a=b%20c&name=d%26e"), QStringLiteral("text/x-a"));
        link.setLabel(QStringLiteral("d&e"));
        Attachment local(QStringLiteral("file:///tmp/a%20b.txt"));
        local.setLocal(true);
        event->addAttachment(binary);
        event->addAttachment(link);
        event->addAttachment(local);
        event->addAttachment(link); // Not compared with what is there.
        const Attachment::List read = saved(event)->attachments();
        QCOMPARE(read.size(), 4);
        QVERIFY(read.at(0).isBinary());
        QCOMPARE(read.at(0).decodedData(), QByteArray("hello\0\1\2", 8));
        QCOMPARE(read.at(0).size(), 8u);
        QVERIFY(read == event->attachments());
    }

    void attendeesWithTheirOwnProperties()
    {
        const Event::Ptr event = makeEvent(QStringLiteral("attendees"));
        Attendee attendee(QStringLiteral("B"), QStringLiteral("b@example.com"), false, Attendee::Declined,
            Attendee::ReqParticipant);
        attendee.customProperties().setNonKDECustomProperty("X-OWN", QStringLiteral("1"));
        event->addAttendee(attendee);
        event->addAttendee(Attendee(QStringLiteral("No address"), QStringLiteral("nowhere"), true));
        const Attendee::List read = saved(event)->attendees();
        QCOMPARE(read.size(), 2);
        QCOMPARE(read.at(0).status(), Attendee::Declined);
        QCOMPARE(read.at(0).customProperties().nonKDECustomProperty("X-OWN"), QStringLiteral("1"));
        QCOMPARE(read.at(1).email(), QStringLiteral("nowhere"));
    }

    void recurrenceRules_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("each second week with a count") << 0;
        QTest::newRow("last Friday of the month until a moment") << 1;
        QTest::newRow("each year without end") << 2;
    }

    void recurrenceRules()
    {
        QFETCH(int, kind);
        const Event::Ptr event = makeEvent(QStringLiteral("recurrence"));
        auto *rule = new KCalendarCore::RecurrenceRule;
        rule->setStartDt(event->dtStart());
        rule->setFrequency(2);
        if (kind == 0) {
            rule->setRecurrenceType(KCalendarCore::RecurrenceRule::rWeekly);
            rule->setByDays({ KCalendarCore::RecurrenceRule::WDayPos(0, 1),
                KCalendarCore::RecurrenceRule::WDayPos(0, 3) });
            rule->setDuration(9);
        } else if (kind == 1) {
            rule->setRecurrenceType(KCalendarCore::RecurrenceRule::rMonthly);
            rule->setByDays({ KCalendarCore::RecurrenceRule::WDayPos(-1, 5) });
            rule->setEndDt(event->dtStart().addYears(1));
        } else {
            rule->setRecurrenceType(KCalendarCore::RecurrenceRule::rYearly);
            rule->setDuration(-1);
        }
        event->recurrence()->addRRule(rule);
        const QDateTime end = event->dtStart().addYears(5);
        const auto expected = event->recurrence()->timesInInterval(event->dtStart(), end);
        const Event::Ptr read = saved(event);
        QCOMPARE(read->recurrence()->rRules().size(), 1);
        QCOMPARE(read->recurrence()->defaultRRuleConst()->duration(), rule->duration());
        QCOMPARE(read->recurrence()->timesInInterval(event->dtStart(), end), expected);
    }

    void toDosAreKeptToo()
    {
        const KCalendarCore::Todo::Ptr todo(new KCalendarCore::Todo);
        todo->setUid(QStringLiteral("to-do-1"));
        todo->setSummary(QStringLiteral("Do"));
        todo->setDtDue(berlin(QDate(2024, 5, 1)));
        QVERIFY(mStore->calendar->addIncidence(todo, notebookUid));
        QVERIFY(mStore->storage->save());
        mStore->reload();
        const Incidence::Ptr read = mStore->calendar->incidence(todo->uid());
        QVERIFY(read);
        QCOMPARE(read->type(), Incidence::TypeTodo);
        QCOMPARE(read->summary(), QStringLiteral("Do"));
    }
};

FENNEL_REGISTER_TEST(CalendarRoundTripTest)
#include "calendarroundtriptest.moc"
