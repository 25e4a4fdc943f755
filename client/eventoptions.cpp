// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventoptions.h"

#include "client/eventtime.h"
#include "client/output.h"

#include <KCalendarCore/Alarm>
#include <KCalendarCore/Recurrence>

#include <QBitArray>
#include <QTimeZone>

namespace {

using KCalendarCore::Event;

constexpr int SecondsPerMinute = 60;
constexpr int DaysOfWeek = 7;

const auto Subject = QStringLiteral("subject");
const auto Start = QStringLiteral("start");
const auto End = QStringLiteral("end");
const auto Duration = QStringLiteral("duration");
const auto Zone = QStringLiteral("zone");
const auto Location = QStringLiteral("location");
const auto Note = QStringLiteral("note");
const auto Category = QStringLiteral("category");
const auto Reminder = QStringLiteral("reminder");
const auto AttendeeOption = QStringLiteral("attendee");
const auto Repeat = QStringLiteral("repeat");
const auto Every = QStringLiteral("every");
const auto Until = QStringLiteral("until");
const auto Count = QStringLiteral("count");
const auto Calendar = QStringLiteral("calendar");
const auto Occurrence = QStringLiteral("occurrence");

bool refuse(const QString &error)
{
    Output::error(error);
    return false;
}

QBitArray dayOf(const QDate &date)
{
    QBitArray days(DaysOfWeek);
    days.setBit(date.dayOfWeek() - 1);
    return days;
}

} // namespace

EventOptions::EventOptions(QCommandLineParser &parser, Use use)
    : mParser(parser)
{
    QStringList names { Start, End, Duration, Zone, Location, Note, Category, Reminder, AttendeeOption,
        Repeat, Every, Until, Count };
    names += use == Adding ? QStringList { Calendar } : QStringList { Subject, Occurrence };
    for (const QString &name : qAsConst(names))
        parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
}

QString EventOptions::calendar() const
{
    return saysOf(Calendar) ? mParser.value(Calendar) : QString();
}

QString EventOptions::occurrence() const
{
    return saysOf(Occurrence) ? mParser.value(Occurrence) : QString();
}

bool EventOptions::saysOf(const QString &option) const
{
    return mParser.optionNames().contains(option);
}

bool EventOptions::fitsOccurrence(const Event &event) const
{
    if (occurrence().isEmpty())
        return true;
    for (const QString &option : { Repeat, Every, Until, Count }) {
        if (mParser.isSet(option))
            return refuse(QStringLiteral("--%1 is for the whole series, not for one occurrence").arg(option));
    }
    const bool changesKind =
        mParser.isSet(Start) && EventTime::read(mParser.value(Start)).hasTime() == event.allDay();
    return !changesKind
        || refuse(QStringLiteral("an occurrence lasts whole days if its series does, and only then"));
}

bool EventOptions::saysSomething() const
{
    const QStringList given = mParser.optionNames();
    for (const QString &name : given) {
        if (name != Occurrence)
            return true;
    }
    return false;
}

std::optional<int> EventOptions::number(const QString &option, int least) const
{
    if (!mParser.isSet(option))
        return -1;
    bool isNumber = false;
    const int value = mParser.value(option).toInt(&isNumber);
    if (isNumber && value >= least)
        return value;
    refuse(QStringLiteral("--%1 needs a number of at least %2").arg(option).arg(least));
    return std::nullopt;
}

bool EventOptions::apply(Event &event, const QString &organizer) const
{
    event.startUpdates();
    if (saysOf(Subject))
        event.setSummary(mParser.value(Subject));
    if (mParser.isSet(Location))
        event.setLocation(mParser.value(Location));
    if (mParser.isSet(Note))
        event.setDescription(mParser.value(Note));
    if (mParser.isSet(Category))
        event.setCategories(mParser.values(Category));
    applyAttendees(event, organizer);
    const bool applied = applyTimes(event) && applyRepetition(event) && applyReminder(event);
    event.endUpdates();
    return applied;
}

bool EventOptions::applyTimes(Event &event) const
{
    const bool isNew = !event.dtStart().isValid();
    // What is moved keeps its length, unless it gets another one.
    Length length = isNew ? Length {}
                          : Length { event.dtStart().secsTo(event.dtEnd()),
                                event.dtStart().date().daysTo(event.dtEnd().date()) };
    const QTimeZone zone = mParser.isSet(Zone) ? QTimeZone(mParser.value(Zone).toLatin1())
        : isNew                                ? QTimeZone::systemTimeZone()
                                               : event.dtStart().timeZone();
    if (!zone.isValid())
        return refuse(QStringLiteral("there is no time zone \"%1\"").arg(mParser.value(Zone)));
    if (mParser.isSet(Start)) {
        const EventTime start = EventTime::read(mParser.value(Start));
        if (!start.isValid())
            return refuse(QStringLiteral("--start needs a day or a time, such as 2024-05-01 or "
                                         "2024-05-01T09:30"));
        if (!isNew && event.allDay() == start.hasTime())
            length = Length {};
        event.setAllDay(!start.hasTime());
        if (!moment(start, zone).isValid())
            return refuse(
                QStringLiteral("there is no such time on that day: the clocks are put forward then"));
        event.setDtStart(moment(start, zone));
    }
    if (!event.dtStart().isValid())
        return refuse(QStringLiteral("an event needs a --start"));
    return applyEnd(event, length);
}

QDateTime EventOptions::moment(const EventTime &time, const QTimeZone &zone) const
{
    // A time is that of the device, as events are listed, or of the zone that is named with it.
    const bool isOfDevice = time.hasTime() && !mParser.isSet(Zone);
    return isOfDevice ? time.in(QTimeZone::systemTimeZone()).toTimeZone(zone) : time.in(zone);
}

bool EventOptions::applyEnd(Event &event, const Length &length) const
{
    if (mParser.isSet(End) && mParser.isSet(Duration))
        return refuse(QStringLiteral("give --end or --duration, not both"));
    const std::optional<int> minutes = number(Duration, 0);
    if (!minutes)
        return false;
    if (*minutes >= 0 && event.allDay())
        return refuse(QStringLiteral("--duration needs a --start with a time"));
    QDateTime end =
        event.allDay() ? event.dtStart().addDays(length.days) : event.dtStart().addSecs(length.seconds);
    if (*minutes >= 0)
        end = event.dtStart().addSecs(*minutes * SecondsPerMinute);
    if (mParser.isSet(End)) {
        const EventTime wanted = EventTime::read(mParser.value(End));
        if (!wanted.isValid() || wanted.hasTime() == event.allDay())
            return refuse(event.allDay() ? QStringLiteral("--end needs the last day, as --start is a day")
                                         : QStringLiteral("--end needs a time, as --start has one"));
        end = moment(wanted, event.dtStart().timeZone());
        if (!end.isValid())
            return refuse(
                QStringLiteral("there is no such time on that day: the clocks are put forward then"));
    }
    if (end < event.dtStart())
        return refuse(QStringLiteral("an event cannot end before it starts"));
    event.setDtEnd(end);
    return true;
}

bool EventOptions::applyRepetition(Event &event) const
{
    const std::optional<int> every = number(Every, 1);
    const std::optional<int> count = number(Count, 1);
    if (!every || !count)
        return false;
    if (!mParser.isSet(Repeat)) {
        const bool isRuleOnly = mParser.isSet(Every) || mParser.isSet(Until) || mParser.isSet(Count);
        return !isRuleOnly || refuse(QStringLiteral("--every, --until and --count need --repeat"));
    }
    const QString period = mParser.value(Repeat);
    KCalendarCore::Recurrence *const rule = event.recurrence();
    rule->clear();
    const int frequency = qMax(1, *every);
    const QDate day = event.dtStart().date();
    if (period == QLatin1String("daily")) {
        rule->setDaily(frequency);
    } else if (period == QLatin1String("weekly")) {
        rule->setWeekly(frequency, dayOf(day));
    } else if (period == QLatin1String("monthly")) {
        rule->setMonthly(frequency);
        rule->addMonthlyDate(short(day.day()));
    } else if (period == QLatin1String("yearly")) {
        rule->setYearly(frequency);
        rule->addYearlyMonth(short(day.month()));
        rule->addYearlyDate(day.day());
    } else if (period != QLatin1String("never")) {
        return refuse(QStringLiteral("--repeat is one of daily, weekly, monthly, yearly, never"));
    }
    if (period == QLatin1String("never"))
        return true;
    if (mParser.isSet(Until) && *count > 0)
        return refuse(QStringLiteral("give --until or --count, not both"));
    if (*count > 0)
        rule->setDuration(*count);
    if (mParser.isSet(Until)) {
        const EventTime until = EventTime::read(mParser.value(Until));
        if (!until.isValid() || until.date() < day)
            return refuse(QStringLiteral("--until needs a day that is not before the start"));
        if (event.allDay())
            rule->setEndDate(until.date());
        else // the whole day counts
            rule->setEndDateTime(QDateTime(until.date(), QTime(23, 59, 59), event.dtStart().timeZone()));
    }
    return true;
}

bool EventOptions::applyReminder(Event &event) const
{
    if (!mParser.isSet(Reminder))
        return true;
    const bool isNone = mParser.value(Reminder) == QLatin1String("none");
    const std::optional<int> minutes = isNone ? std::optional<int>(0) : number(Reminder, 0);
    if (!minutes)
        return false;
    event.clearAlarms();
    if (isNone)
        return true;
    const KCalendarCore::Alarm::Ptr alarm = event.newAlarm();
    alarm->setDisplayAlarm(event.summary());
    alarm->setStartOffset(KCalendarCore::Duration(-*minutes * SecondsPerMinute));
    alarm->setEnabled(true);
    return true;
}

void EventOptions::applyAttendees(Event &event, const QString &organizer) const
{
    if (!mParser.isSet(AttendeeOption))
        return;
    event.clearAttendees();
    event.setOrganizer(KCalendarCore::Person(QString(), organizer));
    const QStringList addresses = mParser.values(AttendeeOption);
    for (const QString &address : addresses)
        event.addAttendee(KCalendarCore::Attendee(QString(), address, true));
}
