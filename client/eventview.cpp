// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventview.h"

#include "client/eventtime.h"
#include "client/output.h"
#include "client/textwidth.h"

#include <KCalendarCore/Recurrence>

#include <QBitArray>
#include <QJsonArray>
#include <QLocale>

namespace {

using KCalendarCore::Attendee;
using KCalendarCore::Event;
using KCalendarCore::Recurrence;

QString status(Attendee::PartStat status)
{
    switch (status) {
    case Attendee::Accepted:
        return QStringLiteral("accepted");
    case Attendee::Declined:
        return QStringLiteral("declined");
    case Attendee::Tentative:
        return QStringLiteral("tentative");
    default:
        return QStringLiteral("no answer");
    }
}

QString person(const QString &name, const QString &email)
{
    return name.isEmpty() ? email : QStringLiteral("%1 <%2>").arg(name, email);
}

/** The calendar store gives the organizer back among the attendees, as one who was never invited. */
bool isOrganizerEntry(const Event &event, const Attendee &attendee)
{
    const bool isInvited = attendee.RSVP() || attendee.role() != Attendee::ReqParticipant
        || (attendee.status() != Attendee::None && attendee.status() != Attendee::NeedsAction);
    return !isInvited && !attendee.email().isEmpty()
        && attendee.email().compare(event.organizer().email(), Qt::CaseInsensitive) == 0;
}

struct Period
{
    ushort type;
    const char *one;
    const char *many;
};

constexpr Period Periods[] = {
    { Recurrence::rDaily, "day", "days" },
    { Recurrence::rWeekly, "week", "weeks" },
    { Recurrence::rMonthlyPos, "month", "months" },
    { Recurrence::rMonthlyDay, "month", "months" },
    { Recurrence::rYearlyMonth, "year", "years" },
    { Recurrence::rYearlyDay, "year", "years" },
    { Recurrence::rYearlyPos, "year", "years" },
};

QString weekDays(const Recurrence &rule)
{
    QStringList names;
    const QBitArray days = rule.days();
    for (int day = 0; day < days.size(); ++day) {
        if (days.testBit(day))
            names.append(QLocale::c().dayName(day + 1, QLocale::ShortFormat));
    }
    return names.join(QStringLiteral(", "));
}

QString fitted(const QString &text, int width)
{
    return TextWidth::padded(TextWidth::cut(Output::printable(text.simplified()), width), width);
}

/** What stands on one day of a month. */
QStringList entriesOf(const QDate &day, const QList<EventOccurrence> &occurrences)
{
    QStringList entries;
    for (const EventOccurrence &occurrence : occurrences) {
        const bool allDay = occurrence.event->allDay();
        const QDateTime start = allDay ? occurrence.start : occurrence.start.toLocalTime();
        // What ends at midnight does not take place on the day that begins then.
        const QDateTime end = allDay ? occurrence.end : occurrence.end.toLocalTime().addMSecs(-1);
        if (start.date() > day || (end.date() < day && start.date() != day))
            continue;
        const bool showsTime = !allDay && start.date() == day;
        entries.append(
            (showsTime ? start.toString(QStringLiteral("HH:mm ")) : QString()) + occurrence.event->summary());
    }
    return entries;
}

} // namespace

QJsonObject EventView::describe(const EventOccurrence &occurrence, const EventStore &store)
{
    const Event::Ptr &event = occurrence.event;
    return {
        { QStringLiteral("id"), EventStore::shortId(event) },
        { QStringLiteral("start"), EventTime::text(occurrence.start, event->allDay()) },
        { QStringLiteral("end"), EventTime::text(occurrence.end, event->allDay()) },
        { QStringLiteral("allDay"), event->allDay() },
        { QStringLiteral("repeats"), event->recurs() || event->hasRecurrenceId() },
        { QStringLiteral("changed"), event->hasRecurrenceId() },
        { QStringLiteral("subject"), event->summary() },
        { QStringLiteral("location"), event->location() },
        { QStringLiteral("calendar"), store.calendarName(event) },
    };
}

QJsonObject EventView::describeWhole(const EventOccurrence &occurrence, const EventStore &store)
{
    const Event::Ptr &event = occurrence.event;
    QJsonObject object = describe(occurrence, store);
    object[QStringLiteral("uid")] = event->uid();
    object[QStringLiteral("zone")] =
        event->allDay() ? QString() : QString::fromLatin1(event->dtStart().timeZone().id());
    object[QStringLiteral("repetition")] = repetition(*event);
    object[QStringLiteral("categories")] = QJsonArray::fromStringList(event->categories());
    QJsonArray reminders;
    const KCalendarCore::Alarm::List alarms = event->alarms();
    for (const KCalendarCore::Alarm::Ptr &alarm : alarms)
        reminders.append(-alarm->startOffset().asSeconds() / 60);
    object[QStringLiteral("reminders")] = reminders;
    object[QStringLiteral("organizer")] = person(event->organizer().name(), event->organizer().email());
    object[QStringLiteral("attendees")] = QJsonArray::fromStringList(attendees(*event));
    object[QStringLiteral("text")] = event->description();
    return object;
}

QStringList EventView::attendees(const Event &event)
{
    QStringList names;
    const Attendee::List people = event.attendees();
    for (const Attendee &attendee : people) {
        if (!isOrganizerEntry(event, attendee))
            names.append(QStringLiteral("%1 (%2)").arg(
                person(attendee.name(), attendee.email()), status(attendee.status())));
    }
    return names;
}

const Columns &EventView::columns()
{
    static const Columns columns { { "id", "number" }, { "subject", "subject" }, { "start", "start" },
        { "end", "end" }, { "zone", "time zone" }, { "allDay", "all day" }, { "repetition", "repeats" },
        { "changed", "changed" }, { "location", "location" }, { "calendar", "calendar" },
        { "categories", "categories" }, { "reminders", "minutes before" }, { "organizer", "organizer" },
        { "attendees", "attendees" }, { "uid", "identifier" }, { "text", "text" } };
    return columns;
}

QString EventView::repetition(const Event &event)
{
    if (!event.recurs())
        return {};
    const Recurrence &rule = *event.recurrence();
    QString text;
    for (const Period &period : Periods) {
        if (period.type == rule.recurrenceType())
            text = rule.frequency() == 1
                ? QStringLiteral("every %1").arg(QLatin1String(period.one))
                : QStringLiteral("every %1 %2").arg(rule.frequency()).arg(QLatin1String(period.many));
    }
    if (text.isEmpty())
        return QStringLiteral("by rules of its own");
    if (rule.recurrenceType() == Recurrence::rWeekly)
        text += QStringLiteral(" on ") + weekDays(rule);
    if (rule.duration() > 0)
        text += QStringLiteral(", %1 times").arg(rule.duration());
    else if (rule.duration() == 0)
        text += QStringLiteral(" until %1").arg(rule.endDate().toString(Qt::ISODate));
    return text;
}

QStringList EventView::month(const QDate &anyDay, const QList<EventOccurrence> &occurrences, int width)
{
    constexpr int DaysOfWeek = 7;
    constexpr int NarrowestColumn = 8;
    const int column = qMax(NarrowestColumn, (width - DaysOfWeek + 1) / DaysOfWeek);
    const QLatin1Char gap(' ');
    const QDate first(anyDay.year(), anyDay.month(), 1);
    const QDate last(anyDay.year(), anyDay.month(), anyDay.daysInMonth());

    QStringList lines { QLocale::c().toString(first, QStringLiteral("MMMM yyyy")), QString() };
    QStringList names;
    for (int day = 1; day <= DaysOfWeek; ++day)
        names.append(fitted(QLocale::c().dayName(day, QLocale::ShortFormat), column));
    lines.append(names.join(gap));
    for (QDate monday = first.addDays(1 - first.dayOfWeek()); monday <= last;
         monday = monday.addDays(DaysOfWeek)) {
        QList<QStringList> cells;
        int height = 0;
        for (int i = 0; i < DaysOfWeek; ++i) {
            const QDate day = monday.addDays(i);
            QStringList cell;
            if (day.month() == first.month())
                cell = QStringList(QString::number(day.day())) + entriesOf(day, occurrences);
            height = qMax(height, cell.size());
            cells.append(cell);
        }
        for (int row = 0; row < height; ++row) {
            QStringList parts;
            for (const QStringList &cell : qAsConst(cells))
                parts.append(fitted(cell.value(row), column));
            lines.append(parts.join(gap));
        }
        lines.append(QString());
    }
    for (QString &line : lines) {
        while (line.endsWith(gap))
            line.chop(1);
    }
    return lines;
}
