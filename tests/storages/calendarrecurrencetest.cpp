// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarrecurrence.h"

#include "storages/calendar/calendareventfield.h"

#include "easitems/eascalendaritem.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <KCalendarCore/Recurrence>

#include <QtTest>

using KCalendarCore::Event;
using KCalendarCore::RecurrenceRule;
using Recurrence = EasRecurrenceContainer;
using WDayPos = RecurrenceRule::WDayPos;

Q_DECLARE_METATYPE(std::function<void(RecurrenceRule &)>)
Q_DECLARE_METATYPE(EasRecurrenceContainer)

namespace {

constexpr int Sunday = 1;
constexpr int Monday = 2;
constexpr int Wednesday = 8;

// A Wednesday.
const QDateTime Start(QDate(2026, 3, 4), QTime(9, 0), QTimeZone("Europe/Berlin"));

Event::Ptr eventAt(const QDateTime &start)
{
    Event::Ptr event(new Event);
    event->setDtStart(start);
    return event;
}

Recurrence recurrence(Recurrence::RecurrenceType type, int dayOfWeek = 0, int weekOfMonth = 0,
    int dayOfMonth = 0, int monthOfYear = 0)
{
    Recurrence result;
    result.setType(type);
    result.setInterval(1);
    result.setDayOfWeek(dayOfWeek);
    result.setWeekOfMonth(weekOfMonth);
    result.setDayOfMonth(dayOfMonth);
    result.setMonthOfYear(monthOfYear);
    return result;
}

bool handled(const Event::Ptr &event, const Recurrence &recurrence)
{
    return CalendarRecurrence::handleRecurrence(event, recurrence, QTimeZone("Europe/Berlin"));
}

const RecurrenceRule &ruleOf(const Event::Ptr &event)
{
    return *event->recurrence()->rRules().first();
}

QString text(const QList<WDayPos> &days)
{
    QStringList texts;
    for (const WDayPos &day : days)
        texts.append(QStringLiteral("%1:%2").arg(day.pos()).arg(day.day()));
    return texts.join(QLatin1Char(' '));
}

/** Every field that a recurrence has on the wire. */
QString text(const Recurrence &r)
{
    return QStringLiteral("type %1 every %2 times %3 until '%4' days %5 week %6 day %7 month %8")
        .arg(r.type())
        .arg(r.interval())
        .arg(r.occurrences())
        .arg(r.until())
        .arg(r.dayOfWeek())
        .arg(r.weekOfMonth())
        .arg(r.dayOfMonth())
        .arg(r.monthOfYear());
}

Event::Ptr eventWithRule(RecurrenceRule::PeriodType type, const QList<WDayPos> &days = {},
    const QList<int> &monthDays = {}, const QList<int> &months = {})
{
    const Event::Ptr event = eventAt(Start);
    auto *rule = new RecurrenceRule;
    rule->setRecurrenceType(type);
    rule->setFrequency(1);
    rule->setStartDt(Start);
    rule->setByDays(days);
    rule->setByMonthDays(monthDays);
    rule->setByMonths(months);
    event->recurrence()->addRRule(rule);
    return event;
}

/** The recurrence of a local event, or a default one if it could not be read. */
Recurrence read(const Event::Ptr &event, bool allDayFix = false)
{
    EasCalendarItem item;
    CalendarRecurrence::applyRecurrence(event, item, allDayFix);
    return item.recurrence();
}

} // namespace

/** Recurrences of the server as rules of an event, and back. */
class CalendarRecurrenceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTypeGoesThereAndBack_data()
    {
        QTest::addColumn<Recurrence>("sent");
        QTest::addColumn<int>("period");
        QTest::addColumn<QString>("days");
        QTest::addColumn<QList<int>>("monthDays");
        QTest::addColumn<QList<int>>("months");
        const QList<int> none;
        QTest::addRow("every day") << recurrence(Recurrence::DailyRecurrence) << 4 << QString() << none
                                   << none;
        QTest::addRow("every weekday") << recurrence(Recurrence::DailyRecurrence, 62) << 4
                                       << QStringLiteral("0:1 0:2 0:3 0:4 0:5") << none << none;
        QTest::addRow("every week on Sunday and Monday")
            << recurrence(Recurrence::WeeklyRecurrence, Sunday | Monday) << 5 << QStringLiteral("0:1 0:7")
            << none << none;
        QTest::addRow("on the 31st") << recurrence(Recurrence::MonthlyRecurrence, 0, 0, 31) << 6 << QString()
                                     << QList<int> { 31 } << none;
        QTest::addRow("on the second Wednesday")
            << recurrence(Recurrence::MonthlyNthDayRecurrence, Wednesday, 2) << 6 << QStringLiteral("2:3")
            << none << none;
        QTest::addRow("on the last Wednesday")
            << recurrence(Recurrence::MonthlyNthDayRecurrence, Wednesday, 5) << 6 << QStringLiteral("-1:3")
            << none << none;
        QTest::addRow("on March 4th") << recurrence(Recurrence::YearlyRecurrence, 0, 0, 4, 3) << 7
                                      << QString() << QList<int> { 4 } << QList<int> { 3 };
        QTest::addRow("on the last Sunday of October")
            << recurrence(Recurrence::YearlyNthDayRecurrence, Sunday, 5, 0, 10) << 7 << QStringLiteral("-1:7")
            << none << QList<int> { 10 };
    }

    void everyTypeGoesThereAndBack()
    {
        QFETCH(Recurrence, sent);
        QFETCH(QString, days);
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, sent));
        QCOMPARE(event->recurrence()->rRules().size(), 1);
        const RecurrenceRule &rule = ruleOf(event);
        QTEST(int(rule.recurrenceType()), "period");
        QCOMPARE(text(rule.byDays()), days);
        QTEST(rule.byMonthDays(), "monthDays");
        QTEST(rule.byMonths(), "months");
        QCOMPARE(rule.startDt(), Start);
        QCOMPARE(rule.duration(), -1);
        QCOMPARE(text(read(event)), text(sent));
    }

    void aMissingValueIsRefused_data()
    {
        QTest::addColumn<Recurrence>("sent");
        QTest::addColumn<QString>("line");
        const QString week = QStringLiteral("No required day-of-week or week-of-month");
        const QString day = QStringLiteral("No required day-of-month or month-of-year");
        const QString month = QStringLiteral("No required month-of-year or week-of-month");
        QTest::addRow("weekly") << recurrence(Recurrence::WeeklyRecurrence)
                                << QStringLiteral("No required day-of-week");
        QTest::addRow("monthly") << recurrence(Recurrence::MonthlyRecurrence)
                                 << QStringLiteral("No required day-of-month");
        QTest::addRow("nth day without a day")
            << recurrence(Recurrence::MonthlyNthDayRecurrence, 0, 2) << week;
        QTest::addRow("nth day without a week")
            << recurrence(Recurrence::MonthlyNthDayRecurrence, 2, 0) << week;
        QTest::addRow("yearly without a day") << recurrence(Recurrence::YearlyRecurrence, 0, 0, 0, 3) << day;
        QTest::addRow("yearly without a month")
            << recurrence(Recurrence::YearlyRecurrence, 0, 0, 4, 0) << day;
        QTest::addRow("yearly nth day without a week")
            << recurrence(Recurrence::YearlyNthDayRecurrence, 2, 0, 0, 3) << month;
        QTest::addRow("yearly nth day without a month")
            << recurrence(Recurrence::YearlyNthDayRecurrence, 2, 1, 0, 0) << month;
        QTest::addRow("type 4") << recurrence(Recurrence::RecurrenceType(4))
                                << QStringLiteral("Unknown recurrence type:");
        QTest::addRow("no type") << Recurrence() << QStringLiteral("Unknown recurrence type:");
    }

    void aMissingValueIsRefused()
    {
        QFETCH(Recurrence, sent);
        QFETCH(QString, line);
        const Event::Ptr event = eventWithRule(RecurrenceRule::rDaily);
        const LogCollector log;
        QVERIFY(!handled(event, sent));
        QVERIFY(log.contains(QtWarningMsg, { line }));
        QCOMPARE(event->recurrence()->rRules().size(), 1);
        QCOMPARE(int(ruleOf(event).recurrenceType()), int(RecurrenceRule::rDaily));
    }

    void aYearlyNthDayNeedsNoDay()
    {
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, recurrence(Recurrence::YearlyNthDayRecurrence, 0, 1, 0, 3)));
        QVERIFY(ruleOf(event).byDays().isEmpty());
    }

    void anIntervalBelowOneIsOne_data()
    {
        QTest::addColumn<int>("interval");
        QTest::addColumn<int>("frequency");
        for (const auto &row :
            { qMakePair(0, 1), qMakePair(-1, 1), qMakePair(int(0x80000000), 1), qMakePair(3, 3) })
            QTest::addRow("%d", row.first) << row.first << row.second;
    }

    void anIntervalBelowOneIsOne()
    {
        QFETCH(int, interval);
        Recurrence sent = recurrence(Recurrence::DailyRecurrence);
        sent.setInterval(interval);
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, sent));
        QTEST(int(ruleOf(event).frequency()), "frequency");
        QCOMPARE(read(event).interval(), qMax(1, interval));
    }

    void withoutCountAndEndARuleIsEndless()
    {
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, recurrence(Recurrence::DailyRecurrence)));
        QCOMPARE(ruleOf(event).duration(), -1);
        QVERIFY(!ruleOf(event).endDt().isValid());
        QVERIFY(event->recurrence()->recursAt(Start.addYears(50)));
        QCOMPARE(read(event).until(), QString());
    }

    void aCountGoesUpWithoutAnEnd()
    {
        Recurrence sent = recurrence(Recurrence::DailyRecurrence);
        sent.setOccurrences(10);
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, sent));
        QCOMPARE(ruleOf(event).duration(), 10);
        QCOMPARE(ruleOf(event).endDt(), Start.addDays(9));
        QCOMPARE(text(read(event)), text(sent));
    }

    void anEndKeepsItsMoment()
    {
        Recurrence sent = recurrence(Recurrence::WeeklyRecurrence, Wednesday);
        sent.setUntil(QStringLiteral("20260401T070000Z")); // after the change to summer time
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, sent));
        QCOMPARE(ruleOf(event).duration(), 0);
        QCOMPARE(
            ruleOf(event).endDt(), QDateTime(QDate(2026, 4, 1), QTime(9, 0), QTimeZone("Europe/Berlin")));
        QVERIFY(event->recurrence()->recursAt(Start.addDays(28)));
        QVERIFY(!event->recurrence()->recursAt(Start.addDays(35)));
        QCOMPARE(text(read(event)), text(sent));
    }

    void anUnreadableEndIsRefused()
    {
        Recurrence sent = recurrence(Recurrence::DailyRecurrence);
        sent.setUntil(QStringLiteral("soon"));
        const Event::Ptr event = eventAt(Start);
        const LogCollector log;
        QVERIFY(!handled(event, sent));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Wrong until time:"), QStringLiteral("soon") }));
        QVERIFY(!event->recurs());
    }

    void theFirstDayOfTheWeekIsToldOnly()
    {
        Recurrence sent = recurrence(Recurrence::WeeklyRecurrence, Wednesday);
        sent.setFirstDayOfWeek(Recurrence::SundayFirstDay);
        const Event::Ptr event = eventAt(Start);
        const LogCollector log;
        QVERIFY(handled(event, sent));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Unsupported 1st day-of-week:") }));
    }

    void aNewRuleReplacesAllOthers()
    {
        const Event::Ptr event = eventWithRule(RecurrenceRule::rDaily);
        auto *second = new RecurrenceRule;
        second->setRecurrenceType(RecurrenceRule::rYearly);
        event->recurrence()->addRRule(second);
        QVERIFY(handled(event, recurrence(Recurrence::WeeklyRecurrence, Wednesday)));
        QCOMPARE(event->recurrence()->rRules().size(), 1);
        QCOMPARE(int(ruleOf(event).recurrenceType()), int(RecurrenceRule::rWeekly));
    }

    void localRulesAreFixedForTheServer_data()
    {
        QTest::addColumn<Event::Ptr>("event");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("line");
        const auto expected = [](Recurrence::RecurrenceType type, int dayOfWeek, int week, int day,
                                  int month) {
            return text(recurrence(type, dayOfWeek, week, day, month));
        };
        const QString fixedWeekDay = QStringLiteral("fixed dayOfWeek");
        const QString fixedDay = QStringLiteral("fixed dayOfMonth");
        const QString fixedYear =
            QStringLiteral("byMonthDays is empty, fixing values based on the startDate");
        QTest::addRow("daily without days") << eventWithRule(RecurrenceRule::rDaily)
                                            << expected(Recurrence::DailyRecurrence, 0, 0, 0, 0) << QString();
        QTest::addRow("weekly without days")
            << eventWithRule(RecurrenceRule::rWeekly)
            << expected(Recurrence::WeeklyRecurrence, Wednesday, 0, 0, 0) << fixedWeekDay;
        QTest::addRow("monthly without days")
            << eventWithRule(RecurrenceRule::rMonthly) << expected(Recurrence::MonthlyRecurrence, 0, 0, 4, 0)
            << fixedDay;
        QTest::addRow("monthly on two days")
            << eventWithRule(RecurrenceRule::rMonthly, {}, { 1, 15 })
            << expected(Recurrence::MonthlyRecurrence, 0, 0, 4, 0) << fixedDay;
        QTest::addRow("monthly on day zero")
            << eventWithRule(RecurrenceRule::rMonthly, {}, { 0 })
            << expected(Recurrence::MonthlyRecurrence, 0, 0, 4, 0) << fixedDay;
        QTest::addRow("monthly on the last day")
            << eventWithRule(RecurrenceRule::rMonthly, {}, { -1 })
            << expected(Recurrence::MonthlyRecurrence, 0, 0, 4, 0) << fixedDay;
        QTest::addRow("yearly in a month")
            << eventWithRule(RecurrenceRule::rYearly, {}, {}, { 3 })
            << expected(Recurrence::YearlyNthDayRecurrence, Wednesday, 0, 0, 3) << fixedWeekDay;
        QTest::addRow("yearly on day zero") << eventWithRule(RecurrenceRule::rYearly, {}, { 0 }, { 3 })
                                            << expected(Recurrence::YearlyRecurrence, 0, 0, 4, 3) << fixedDay;
        QTest::addRow("yearly") << eventWithRule(RecurrenceRule::rYearly)
                                << expected(Recurrence::YearlyRecurrence, 0, 0, 4, 3) << fixedYear;
        QTest::addRow("yearly in two months")
            << eventWithRule(RecurrenceRule::rYearly, {}, {}, { 3, 9 })
            << expected(Recurrence::YearlyRecurrence, 0, 0, 4, 3) << fixedYear;
    }

    void localRulesAreFixedForTheServer()
    {
        QFETCH(Event::Ptr, event);
        QFETCH(QString, line);
        const LogCollector log;
        QTEST(text(read(event)), "expected");
        QCOMPARE(line.isEmpty() ? log.texts(QtInfoMsg).isEmpty() : log.contains(QtInfoMsg, { line }), true);
    }

    void localRulesWithoutACounterpartAreRefused_data()
    {
        QTest::addColumn<Event::Ptr>("event");
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("line");
        const WDayPos first(1, 1);
        const WDayPos second(2, 2);
        const QString days = QStringLiteral("Failed to convert days of week");
        QTest::addRow("no rule at all")
            << eventAt(Start) << int(QtWarningMsg) << QStringLiteral("Event is not recurrent:");
        QTest::addRow("different positions")
            << eventWithRule(RecurrenceRule::rMonthly, { first, second }) << int(QtCriticalMsg) << days;
        QTest::addRow("a position that has no week")
            << eventWithRule(RecurrenceRule::rMonthly, { WDayPos(-2, 1) }) << int(QtCriticalMsg) << days;
        QTest::addRow("several days of a month in a year") << eventWithRule(RecurrenceRule::rYearly, {},
            { 1, 2 }, { 3 }) << int(QtCriticalMsg) << QStringLiteral("Unexpected month-days number: 2");
        QTest::addRow("a weekday of the year") << eventWithRule(RecurrenceRule::rYearly,
            { first }) << int(QtCriticalMsg) << QStringLiteral("failed to fix yearly recurrecnce values");
        QTest::addRow("every hour") << eventWithRule(RecurrenceRule::rHourly) << int(QtWarningMsg)
                                    << QStringLiteral("Unknown type: 3");
    }

    void localRulesWithoutACounterpartAreRefused()
    {
        QFETCH(Event::Ptr, event);
        QFETCH(int, level);
        QFETCH(QString, line);
        const LogCollector log;
        EasCalendarItem item;
        QVERIFY(!CalendarRecurrence::applyRecurrence(event, item, false));
        QVERIFY(log.contains(QtMsgType(level), { line }));
        QVERIFY(!item.parameterHasBeenChanged(EasCalendarItem::RecurrenceParameter));
    }

    void anEventThatRecursByDatesAloneHasNoRule()
    {
        const Event::Ptr event = eventAt(Start);
        event->recurrence()->addRDateTime(Start.addDays(1));
        const LogCollector log;
        EasCalendarItem item;
        QVERIFY(!CalendarRecurrence::applyRecurrence(event, item, false));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("No recurrence rule") }));
    }

    void theDaysOfAMonthlyRuleAreTold()
    {
        const LogCollector log;
        read(eventWithRule(RecurrenceRule::rMonthly, {}, { 1, 15 }));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("ByDays:") }));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("ByMonthDays:"), QStringLiteral("1, 15") }));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("Setting dayOfMonth:"), QStringLiteral("4") }));
    }

    void theEndOfAnAllDaySeriesCanIncludeItsLastDay()
    {
        const Event::Ptr event = eventWithRule(RecurrenceRule::rDaily);
        event->setAllDay(true);
        const QDateTime end = QDate(2026, 3, 10).startOfDay(QTimeZone("Europe/Berlin"));
        event->recurrence()->rRules().first()->setEndDt(end);
        QCOMPARE(read(event, false).until(), QStringLiteral("20260309T230000Z"));
        QCOMPARE(read(event, true).until(), QStringLiteral("20260311T000000Z"));
        event->setAllDay(false);
        QCOMPARE(read(event, true).until(), QStringLiteral("20260309T230000Z"));
    }

    void masksAndDays()
    {
        QCOMPARE(text(CalendarRecurrence::convertDaysOfWeek(Sunday | Monday, 0)), QStringLiteral("0:1 0:7"));
        QCOMPARE(text(CalendarRecurrence::convertDaysOfWeek(127, -1)),
            QStringLiteral("-1:1 -1:2 -1:3 -1:4 -1:5 -1:6 -1:7"));
        int mask = -1;
        int pos = -1;
        QVERIFY(CalendarRecurrence::convertDaysOfWeek({}, mask, &pos));
        QCOMPARE(mask, 0);
        QCOMPARE(pos, 0);
        QVERIFY(CalendarRecurrence::convertDaysOfWeek({ WDayPos(0, 1), WDayPos(3, 7) }, mask, &pos));
        QCOMPARE(mask, Sunday | Monday);
        QCOMPARE(pos, 3);
        QVERIFY(CalendarRecurrence::convertDaysOfWeek({ WDayPos(2, 6) }, mask, nullptr));
        QCOMPARE(mask, 64);
        const LogCollector log;
        QVERIFY(!CalendarRecurrence::convertDaysOfWeek({ WDayPos(1, 1), WDayPos(2, 2) }, mask, &pos));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("failed to convert daysOfWeek"), QStringLiteral("1:1, 2:2") }));
    }

    void datesAndDays()
    {
        int value = 0;
        CalendarRecurrence::convertDateToDayOfWeek(QDate(2026, 3, 1), value);
        QCOMPARE(value, Sunday);
        CalendarRecurrence::convertDateToDayOfWeek(QDate(2026, 3, 7), value);
        QCOMPARE(value, 64);
        CalendarRecurrence::convertDateToDayOfMonth(QDate(2026, 3, 7), value);
        QCOMPARE(value, 7);
    }

    void aMonthlySeriesWithoutADayIsThatOfItsStart()
    {
        EasCalendarItem item;
        item.setRecurrence(recurrence(Recurrence::MonthlyRecurrence));
        const Event::Ptr event = eventAt(Start);
        const QTimeZone zone = Start.timeZone();
        const LogCollector log;
        QVERIFY(CalendarRecurrence::write({ event, item, zone }));
        QCOMPARE(ruleOf(event).byMonthDays(), QList<int>({ 4 }));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("fixed dayOfMonth"), QStringLiteral("4") }));
        QCOMPARE(read(event).dayOfMonth(), 4);
    }

    void whatTheRuleCannotExpressGoesBackWithIt_data()
    {
        QTest::addColumn<std::function<void(RecurrenceRule &)>>("edit");
        QTest::addColumn<bool>("isKept");
        using Edit = std::function<void(RecurrenceRule &)>;
        QTest::newRow("untouched") << Edit([](RecurrenceRule &) {}) << true;
        QTest::newRow("ended") << Edit([](RecurrenceRule &rule) { rule.setDuration(7); }) << true;
        QTest::newRow("another interval")
            << Edit([](RecurrenceRule &rule) { rule.setFrequency(3); }) << false;
        QTest::newRow("other days") << Edit([](RecurrenceRule &rule) { rule.setByDays({ WDayPos(0, 5) }); })
                                    << false;
    }

    void whatTheRuleCannotExpressGoesBackWithIt()
    {
        QFETCH(std::function<void(RecurrenceRule &)>, edit);
        QFETCH(bool, isKept);
        Recurrence sent = recurrence(Recurrence::WeeklyRecurrence, Sunday | Wednesday);
        sent.setInterval(2);
        sent.setFirstDayOfWeek(Recurrence::SundayFirstDay);
        sent.setCalendarType(Recurrence::HebrewLunarCalendar);
        sent.setLeapMonth(1);
        EasCalendarItem item;
        item.setRecurrence(sent);
        const Event::Ptr event = eventAt(Start);
        const QTimeZone zone = Start.timeZone();
        QVERIFY(CalendarRecurrence::write({ event, item, zone }));
        edit(*event->recurrence()->defaultRRule());
        const Recurrence back = read(event);
        QCOMPARE(back.firstDayOfWeek(), isKept ? Recurrence::SundayFirstDay : Recurrence::UndefinedFirstDay);
        QCOMPARE(back.calendarType(), isKept ? Recurrence::HebrewLunarCalendar : Recurrence::DefaultCalendar);
        QCOMPARE(int(back.leapMonth()), isKept ? 1 : 0);

        // Another rule of the server replaces what came with the one before.
        item.setRecurrence(recurrence(Recurrence::DailyRecurrence));
        QVERIFY(CalendarRecurrence::write({ event, item, zone }));
        QCOMPARE(read(event).firstDayOfWeek(), Recurrence::UndefinedFirstDay);
    }

    void hostileNumbersEndInTime_data()
    {
        QTest::addColumn<Recurrence>("sent");
        const int huge = 0x7FFFFFFF;
        Recurrence count = recurrence(Recurrence::WeeklyRecurrence, 127);
        count.setOccurrences(huge);
        QTest::addRow("two thousand million times") << count;
        Recurrence most = recurrence(Recurrence::WeeklyRecurrence, 127);
        most.setOccurrences(9999);
        QTest::addRow("as often as is counted") << most;
        Recurrence interval = recurrence(Recurrence::DailyRecurrence);
        interval.setInterval(huge);
        QTest::addRow("every two thousand million days") << interval;
        Recurrence years = recurrence(Recurrence::YearlyRecurrence, 0, 0, 1, 1);
        years.setInterval(huge);
        years.setOccurrences(huge);
        QTest::addRow("every two thousand million years") << years;
        Recurrence never = recurrence(Recurrence::YearlyRecurrence, 0, 0, 31, 2);
        never.setOccurrences(huge);
        QTest::addRow("on February 31st") << never;
        Recurrence last = recurrence(Recurrence::DailyRecurrence);
        last.setUntil(QStringLiteral("99991231T235959Z"));
        QTest::addRow("until the year 9999") << last;
        Recurrence negative = recurrence(Recurrence::DailyRecurrence);
        negative.setOccurrences(-huge);
        QTest::addRow("a negative count") << negative;
    }

    void hostileNumbersEndInTime()
    {
        QFETCH(Recurrence, sent);
        const Event::Ptr event = eventAt(Start);
        QVERIFY(handled(event, sent));
        QElapsedTimer timer;
        timer.start();
        const KCalendarCore::Recurrence &series = *event->recurrence();
        QCOMPARE(series.getNextDateTime(Start.addSecs(-1)), Start);
        QVERIFY(series.endDateTime().isNull() || series.endDateTime() > Start);
        const Recurrence back = read(event);
        QVERIFY2(timer.elapsed() < 60000, "a machine under load counts to ten thousand in this time");
        QCOMPARE(back.until(), sent.until());
        QCOMPARE(back.interval(), sent.interval());
        QCOMPARE(back.occurrences(), sent.occurrences() == 9999 ? 9999 : 0);
    }
};

FENNEL_REGISTER_TEST(CalendarRecurrenceTest)
#include "calendarrecurrencetest.moc"
