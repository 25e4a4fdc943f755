// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventview.h"
#include "client/eventtime.h"
#include "support/testmain.h"

#include <QtTest>

using KCalendarCore::Event;

namespace {

EventOccurrence at(const char *subject, const QDateTime &start, const QDateTime &end, bool allDay = false)
{
    const Event::Ptr event(new Event);
    event->setSummary(QString::fromUtf8(subject));
    event->setAllDay(allDay);
    event->setDtStart(start);
    event->setDtEnd(end);
    return { event, start, end, {} };
}

QDateTime may(int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(2024, 5, day), QTime(hour, minute));
}

/** What stands in the sheet below a day's number. */
QStringList below(const QStringList &lines, int day, int column)
{
    constexpr int Columns = 7;
    const QDate date(2024, 5, day);
    const int left = (date.dayOfWeek() - 1) * (column + 1);
    QStringList found;
    bool inWeek = false;
    for (const QString &line : lines.mid(Columns - 4)) {
        const QString cell = line.mid(left, column).trimmed();
        if (inWeek && line.isEmpty())
            break;
        if (inWeek)
            found.append(cell);
        inWeek = inWeek || cell == QString::number(day);
    }
    found.removeAll(QString());
    return found;
}

} // namespace

/** How events look on paper. */
class EventViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOrganizerIsListedOnlyIfInvited()
    {
        using KCalendarCore::Attendee;
        Event event;
        event.setOrganizer(KCalendarCore::Person(QStringLiteral("Olga"), QStringLiteral("olga@example.com")));
        event.addAttendee(Attendee(QString(), QStringLiteral("bob@example.com"), true, Attendee::Accepted));
        event.addAttendee(Attendee(QStringLiteral("Olga"), QStringLiteral("Olga@example.com"), false,
            Attendee::None, Attendee::ReqParticipant));
        QCOMPARE(EventView::attendees(event), QStringList({ QStringLiteral("bob@example.com (accepted)") }));
        event.clearAttendees();
        event.addAttendee(
            Attendee(QStringLiteral("Olga"), QStringLiteral("olga@example.com"), true, Attendee::Declined));
        QCOMPARE(EventView::attendees(event),
            QStringList({ QStringLiteral("Olga <olga@example.com> (declined)") }));
    }

    void aMonthHasAColumnForEachDayOfTheWeek()
    {
        const QStringList lines = EventView::month(QDate(2024, 5, 17), {}, 80);
        QCOMPARE(lines.first(), QStringLiteral("May 2024"));
        QCOMPARE(lines.at(2).simplified(), QStringLiteral("Mon Tue Wed Thu Fri Sat Sun"));
        // The first is a Wednesday, the last a Friday.
        QCOMPARE(lines.at(3).simplified(), QStringLiteral("1 2 3 4 5"));
        QVERIFY(lines.at(3).startsWith(QString(22, QLatin1Char(' ')) + QLatin1Char('1')));
        QCOMPARE(lines.filter(QStringLiteral("31")).first().simplified(), QStringLiteral("27 28 29 30 31"));
        for (const QString &line : lines)
            QVERIFY(line.size() <= 80);
    }

    void anEventStandsOnEachOfItsDays()
    {
        const QStringList lines = EventView::month(QDate(2024, 5, 1),
            { at("Trip", may(6, 22, 30), may(8, 0, 0)), at("Lunch", may(7, 12), may(7, 13)),
                at("Fair", may(14), may(15), true), at("Now", may(21, 9), may(21, 9)) },
            140);
        const int column = (140 - 6) / 7;
        QCOMPARE(below(lines, 6, column), QStringList(QStringLiteral("22:30 Trip")));
        QCOMPARE(
            below(lines, 7, column), QStringList({ QStringLiteral("Trip"), QStringLiteral("12:00 Lunch") }));
        // It ends at midnight, when the day has not begun for it.
        QCOMPARE(below(lines, 8, column), QStringList());
        QCOMPARE(below(lines, 14, column), QStringList(QStringLiteral("Fair")));
        QCOMPARE(below(lines, 15, column), QStringList(QStringLiteral("Fair")));
        QCOMPARE(below(lines, 16, column), QStringList());
        QCOMPARE(below(lines, 21, column), QStringList(QStringLiteral("09:00 Now")));
    }

    void whatIsTooLongIsCut()
    {
        const QStringList lines = EventView::month(
            QDate(2024, 5, 1), { at("A name that fits no column\u001B[2J", may(6, 9), may(6, 10)) }, 80);
        const QString cell = below(lines, 6, 10).value(0);
        QCOMPARE(cell, QStringLiteral("09:00 A n\u2026"));
        for (const QString &line : lines)
            QVERIFY(!line.contains(QChar(0x1B)));
    }

    void aNarrowTerminalStillShowsTheTimes()
    {
        const QStringList lines =
            EventView::month(QDate(2024, 5, 1), { at("Event", may(6, 9), may(6, 10)) }, 10);
        QCOMPARE(below(lines, 6, 8), QStringList(QStringLiteral("09:00 E\u2026")));
    }

    void aRuleIsToldInWords_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("words");
        QTest::newRow("none") << 0 << QString();
        QTest::newRow("daily") << 1 << QStringLiteral("every day");
        QTest::newRow("weekly") << 2 << QStringLiteral("every 2 weeks on Mon, Wed until 2024-12-31");
        QTest::newRow("monthly") << 3 << QStringLiteral("every month, 5 times");
        QTest::newRow("yearly") << 4 << QStringLiteral("every 3 years");
    }

    void aRuleIsToldInWords()
    {
        QFETCH(int, kind);
        QFETCH(QString, words);
        const Event::Ptr event = at("S", may(6, 9), may(6, 10)).event;
        QBitArray days(7);
        days.setBit(0);
        days.setBit(2);
        switch (kind) {
        case 1:
            event->recurrence()->setDaily(1);
            break;
        case 2:
            event->recurrence()->setWeekly(2, days);
            event->recurrence()->setEndDateTime(QDateTime(QDate(2024, 12, 31), QTime(23, 59)));
            break;
        case 3:
            event->recurrence()->setMonthly(1);
            event->recurrence()->addMonthlyDate(6);
            event->recurrence()->setDuration(5);
            break;
        case 4:
            event->recurrence()->setYearly(3);
            event->recurrence()->addYearlyMonth(5);
            event->recurrence()->addYearlyDate(6);
            break;
        default:
            break;
        }
        QCOMPARE(EventView::repetition(*event), words);
    }

    void timesAreReadAsPeopleWriteThem_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("read");
        QTest::newRow("a day") << "2024-05-01"
                               << "2024-05-01 day";
        QTest::newRow("a time") << "2024-05-01T09:30"
                                << "2024-05-01 09:30";
        QTest::newRow("a blank") << " 2024-05-01 9:30 "
                                 << "2024-05-01 09:30";
        QTest::newRow("no day") << "2024-02-30"
                                << "none";
        QTest::newRow("no time") << "2024-05-01 24:30"
                                 << "none";
        QTest::newRow("half a time") << "2024-05-01T"
                                     << "none";
        QTest::newRow("nothing") << ""
                                 << "none";
    }

    void timesAreReadAsPeopleWriteThem()
    {
        QFETCH(QString, text);
        QFETCH(QString, read);
        const EventTime time = EventTime::read(text);
        QString shown = QStringLiteral("none");
        if (time.isValid())
            shown = time.hasTime() ? time.in(QTimeZone::utc()).toString(QStringLiteral("yyyy-MM-dd HH:mm"))
                                   : time.date().toString(Qt::ISODate) + QStringLiteral(" day");
        QCOMPARE(shown, read);
    }
};

FENNEL_REGISTER_TEST(EventViewTest)
#include "eventviewtest.moc"
