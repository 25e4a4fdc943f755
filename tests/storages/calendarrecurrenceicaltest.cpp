// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarrecurrence.h"

#include "easitems/eascalendaritem.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <KCalendarCore/Recurrence>

#include <QtTest>

#include <libical/ical.h>

#include <cstdio>
#include <random>

using KCalendarCore::Event;
using KCalendarCore::RecurrenceRule;
using Recurrence = EasRecurrenceContainer;

namespace {

constexpr int RulesPerSeed = 100;
constexpr int MostOccurrences = 30;
constexpr int YearsToLookAt = 12;

/** A rule as a server may send it, with the start of its series. */
struct ServerRule
{
    QDateTime start;
    Recurrence recurrence;

    QString text() const
    {
        return QStringLiteral("%1 %2: type %3 every %4 times %5 until '%6' days %7 week %8 day %9 month %10")
            .arg(start.toString(QStringLiteral("yyyy-MM-dd hh:mm")),
                QString::fromLatin1(start.timeZone().id()))
            .arg(recurrence.type())
            .arg(recurrence.interval())
            .arg(recurrence.occurrences())
            .arg(recurrence.until())
            .arg(recurrence.dayOfWeek())
            .arg(recurrence.weekOfMonth())
            .arg(recurrence.dayOfMonth())
            .arg(recurrence.monthOfYear());
    }
};

class RuleMaker
{
public:
    explicit RuleMaker(uint seed)
        : mRandom(seed)
    {
    }

    ServerRule next()
    {
        static const QList<QByteArray> zones { "Europe/Berlin", "America/New_York", "Asia/Kolkata",
            "Australia/Sydney", "Pacific/Apia", "UTC" };
        static const QList<Recurrence::RecurrenceType> types { Recurrence::DailyRecurrence,
            Recurrence::WeeklyRecurrence, Recurrence::MonthlyRecurrence, Recurrence::MonthlyNthDayRecurrence,
            Recurrence::YearlyRecurrence, Recurrence::YearlyNthDayRecurrence };
        ServerRule rule;
        // Not in the hours that a change of the clocks can leave out.
        rule.start = QDateTime(QDate(2020, 1, 1).addDays(upTo(0, 3650)), QTime(upTo(5, 22), upTo(0, 59)),
            QTimeZone(zones.at(upTo(0, zones.size() - 1))));
        Recurrence &recurrence = rule.recurrence;
        recurrence.setType(types.at(upTo(0, types.size() - 1)));
        recurrence.setInterval(upTo(0, 3) == 0 ? upTo(2, 6) : 1);
        setDays(recurrence);
        if (upTo(0, 2) == 0)
            recurrence.setOccurrences(upTo(1, 50));
        else if (upTo(0, 1) == 0)
            recurrence.setUntil(
                rule.start.addDays(upTo(0, 2000)).toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")));
        return rule;
    }

private:
    // The standard's distributions differ between libraries; a remainder does not.
    int upTo(int least, int most) { return least + int(mRandom() % uint(most - least + 1)); }

    void setDays(Recurrence &recurrence)
    {
        switch (recurrence.type()) {
        case Recurrence::DailyRecurrence:
            recurrence.setDayOfWeek(upTo(0, 2) == 0 ? 62 : 0);
            break;
        case Recurrence::WeeklyRecurrence:
            recurrence.setDayOfWeek(upTo(1, 127));
            break;
        case Recurrence::MonthlyRecurrence:
            recurrence.setDayOfMonth(upTo(1, 31));
            break;
        case Recurrence::MonthlyNthDayRecurrence:
            recurrence.setDayOfWeek(upTo(0, 3) == 0 ? upTo(1, 127) : 1 << upTo(0, 6));
            recurrence.setWeekOfMonth(upTo(1, 5));
            break;
        case Recurrence::YearlyRecurrence:
            recurrence.setDayOfMonth(upTo(1, 31));
            recurrence.setMonthOfYear(upTo(1, 12));
            break;
        default:
            recurrence.setDayOfWeek(1 << upTo(0, 6));
            recurrence.setWeekOfMonth(upTo(1, 5));
            recurrence.setMonthOfYear(upTo(1, 12));
        }
    }

    std::mt19937 mRandom;
};

QStringList expandedByCalendar(const ServerRule &rule)
{
    const Event::Ptr event(new Event);
    event->setDtStart(rule.start);
    if (!CalendarRecurrence::handleRecurrence(event, rule.recurrence, rule.start.timeZone()))
        return { QStringLiteral("refused") };
    const RecurrenceRule &own = *event->recurrence()->rRules().first();
    const QDateTime end = rule.start.addYears(YearsToLookAt);
    QStringList times;
    QDateTime time = own.getNextDate(rule.start.addSecs(-1));
    while (time.isValid() && time < end && times.size() < MostOccurrences) {
        times.append(time.toString(QStringLiteral("yyyyMMdd'T'HHmmss")));
        time = own.getNextDate(time);
    }
    return times;
}

/** The same rule as the text of RFC 5545, made from the protocol's description alone. */
QString icalRule(const ServerRule &rule)
{
    static const char *const frequencies[] = { "DAILY", "WEEKLY", "MONTHLY", "MONTHLY", "", "YEARLY",
        "YEARLY" };
    static const char *const days[] = { "SU", "MO", "TU", "WE", "TH", "FR", "SA" };
    const Recurrence &r = rule.recurrence;
    QStringList parts { QStringLiteral("FREQ=") + QLatin1String(frequencies[r.type()]),
        QStringLiteral("INTERVAL=%1").arg(r.interval()) };
    QStringList weekDays;
    const int week = r.weekOfMonth() == 5 ? -1 : r.weekOfMonth();
    for (int day = 0; day < 7; ++day) {
        if (r.dayOfWeek() & (1 << day))
            weekDays.append((week != 0 ? QString::number(week) : QString()) + QLatin1String(days[day]));
    }
    if (!weekDays.isEmpty())
        parts.append(QStringLiteral("BYDAY=") + weekDays.join(QLatin1Char(',')));
    if (r.dayOfMonth() != 0)
        parts.append(QStringLiteral("BYMONTHDAY=%1").arg(r.dayOfMonth()));
    if (r.monthOfYear() != 0)
        parts.append(QStringLiteral("BYMONTH=%1").arg(r.monthOfYear()));
    if (r.occurrences() != 0)
        parts.append(QStringLiteral("COUNT=%1").arg(r.occurrences()));
    return parts.join(QLatin1Char(';'));
}

/** Expanded in the time of the wall, where a rule of the protocol lives. */
QStringList expandedByLibical(const ServerRule &rule)
{
    const auto floating = [](const QDateTime &time) {
        return icaltime_from_string(
            time.toString(QStringLiteral("yyyyMMdd'T'HHmmss")).toLatin1().constData());
    };
    icalrecurrencetype recurrence = icalrecurrencetype_from_string(icalRule(rule).toLatin1().constData());
    if (!rule.recurrence.until().isEmpty()) {
        QDateTime until =
            QDateTime::fromString(rule.recurrence.until(), QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
        until.setTimeSpec(Qt::UTC);
        recurrence.until = floating(until.toTimeZone(rule.start.timeZone()));
    }
    const icaltimetype start = floating(rule.start);
    const icaltimetype end = floating(rule.start.addYears(YearsToLookAt));
    QStringList times;
    icalrecur_iterator *iterator = icalrecur_iterator_new(recurrence, start);
    if (iterator == nullptr)
        return { QStringLiteral("refused") };
    icaltimetype time = icalrecur_iterator_next(iterator);
    while (
        !icaltime_is_null_time(time) && icaltime_compare(time, end) < 0 && times.size() < MostOccurrences) {
        if (icaltime_compare(time, start) >= 0)
            times.append(QString::fromLatin1(icaltime_as_ical_string(time)));
        time = icalrecur_iterator_next(iterator);
    }
    icalrecur_iterator_free(iterator);
    return times;
}

/** No year has this day. libical refuses such a rule; ours has no occurrence. */
bool neverOccurs(const ServerRule &rule)
{
    const int month = rule.recurrence.monthOfYear();
    return rule.recurrence.type() == Recurrence::YearlyRecurrence
        && rule.recurrence.dayOfMonth() > QDate(2020, month, 1).daysInMonth();
}

/**
 * libical 3.0 passes over the first week of a rule that skips weeks if only its Sunday, the last day of the
 * week, is left.
 */
bool beginsOnSundayAlone(const ServerRule &rule)
{
    constexpr int sunday = 1;
    const Recurrence &r = rule.recurrence;
    const int weekDay = rule.start.date().dayOfWeek();
    return r.type() == Recurrence::WeeklyRecurrence && r.interval() > 1 && weekDay != Qt::Sunday
        && (r.dayOfWeek() & sunday) && (r.dayOfWeek() >> weekDay) == 0;
}

/** Counts days, for rules that the other library gets wrong. */
QStringList weeksByCounting(const ServerRule &rule)
{
    const Recurrence &r = rule.recurrence;
    const auto weekOf = [](const QDate &date) {
        return (date.toJulianDay() - date.dayOfWeek() + 1) / 7;
    };
    QDateTime until = QDateTime::fromString(r.until(), QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    until.setTimeSpec(Qt::UTC);
    const QDateTime end = rule.start.addYears(YearsToLookAt);
    const int most = r.occurrences() != 0 ? qMin(r.occurrences(), MostOccurrences) : MostOccurrences;
    QStringList times;
    for (QDateTime time = rule.start; time < end && times.size() < most; time = time.addDays(1)) {
        const QDate date = time.date();
        const bool due = (r.dayOfWeek() & (1 << (date.dayOfWeek() % 7)))
            && (weekOf(date) - weekOf(rule.start.date())) % r.interval() == 0;
        if (due && !(until.isValid() && time > until))
            times.append(time.toString(QStringLiteral("yyyyMMdd'T'HHmmss")));
    }
    return times;
}

QStringList expectedOccurrences(const ServerRule &rule)
{
    if (neverOccurs(rule))
        return {};
    return beginsOnSundayAlone(rule) ? weeksByCounting(rule) : expandedByLibical(rule);
}

} // namespace

/** Two thousand random rules of a server: our rules have the occurrences that another library gives them. */
class CalendarRecurrenceIcalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void occurrencesAreTheSame_data()
    {
        QTest::addColumn<uint>("seed");
        for (uint seed = 1; seed <= 20; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }

    void occurrencesAreTheSame()
    {
        QFETCH(uint, seed);
        const LogCollector quiet;
        RuleMaker maker(seed);
        int occurrences = 0;
        int explained = 0;
        for (int index = 0; index < RulesPerSeed; ++index) {
            const ServerRule rule = maker.next();
            const QStringList expected = expectedOccurrences(rule);
            const QStringList found = expandedByCalendar(rule);
            occurrences += found.size();
            explained += expected != expandedByLibical(rule) ? 1 : 0;
            QVERIFY2(found == expected,
                qPrintable(
                    QStringLiteral("seed %1, rule %2: %3\nexpected %4\nfound    %5")
                        .arg(seed)
                        .arg(index)
                        .arg(rule.text(), expected.join(QLatin1Char(' ')), found.join(QLatin1Char(' ')))));
        }
        std::printf("seed %u: %d rules, %d occurrences, %d rules told apart\n", seed, RulesPerSeed,
            occurrences, explained);
        QVERIFY2(explained < 5, "the other library is right about nearly all rules");
        QVERIFY(occurrences > RulesPerSeed);
    }
};

FENNEL_REGISTER_TEST(CalendarRecurrenceIcalTest)
#include "calendarrecurrenceicaltest.moc"
