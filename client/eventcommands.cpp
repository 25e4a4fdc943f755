// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventcommands.h"

#include "client/accountdirectory.h"
#include "client/eventoptions.h"
#include "client/eventstore.h"
#include "client/eventtime.h"
#include "client/eventview.h"
#include "client/inputfile.h"
#include "client/outputfile.h"
#include "client/selection.h"

namespace {

using KCalendarCore::Event;

const auto NextSync = QStringLiteral("; the next sync tells the server");

const QCommandLineOption CalendarOption(QStringLiteral("calendar"), QString(), QStringLiteral("name"));
const QCommandLineOption OccurrenceOption(QStringLiteral("occurrence"), QString(), QStringLiteral("start"));

/** A command's account, its calendars, and the event that it names. */
class EventSelection : public Selection<EventStore>
{
public:
    using Selection::Selection;

    /** The calendar that is named; null for none, which means all. */
    bool selectCalendar(const QString &name, mKCal::Notebook::Ptr *calendar);
    /** The event that the argument names, and one time at which it takes place. */
    bool selectEvent(const QString &occurrenceStart, EventOccurrence *occurrence);
};

bool EventSelection::selectCalendar(const QString &name, mKCal::Notebook::Ptr *calendar)
{
    if (name.isEmpty())
        return true;
    *calendar = store().calendar(name);
    return *calendar || fail(ExitNotFound);
}

bool EventSelection::selectEvent(const QString &occurrenceStart, EventOccurrence *occurrence)
{
    const Event::Ptr event = store().find(argument());
    if (!event)
        return fail(ExitNotFound);
    *occurrence = occurrenceStart.isEmpty()
        ? EventOccurrence { event, event->dtStart(), event->dtEnd(), QDateTime() }
        : store().occurrence(event, occurrenceStart);
    return occurrence->event || fail(ExitNotFound);
}

QJsonArray rowsOf(const QList<EventOccurrence> &occurrences, const EventStore &store)
{
    QJsonArray rows;
    for (const EventOccurrence &occurrence : occurrences)
        rows.append(EventView::describe(occurrence, store));
    return rows;
}

} // namespace

int EventCommands::list(CommandContext &context)
{
    constexpr int DaysAhead = 30;
    EventSelection events(context);
    const QString from = QStringLiteral("from");
    const QString to = QStringLiteral("to");
    events.parser().addOptions({ CalendarOption, { from, QString(), QStringLiteral("day") },
        { to, QString(), QStringLiteral("day") } });
    if (!events.open(0, 0))
        return events.exitStatus();
    QDate first = QDate::currentDate();
    if (events.parser().isSet(from) && !EventTime::readDay(events.parser().value(from), from, &first))
        return ExitUsage;
    QDate last = first.addDays(DaysAhead);
    if (events.parser().isSet(to) && !EventTime::readDay(events.parser().value(to), to, &last))
        return ExitUsage;
    if (last < first) {
        Output::error(QStringLiteral("--to is before --from"));
        return ExitUsage;
    }
    mKCal::Notebook::Ptr calendar;
    if (!events.selectCalendar(events.parser().value(CalendarOption), &calendar))
        return events.exitStatus();
    context.output().rows(
        { { "id", "ID" }, { "start", "START" }, { "end", "END" }, { "repeats", "REPEATS" },
            { "subject", "SUBJECT" }, { "location", "LOCATION" }, { "calendar", "CALENDAR" } },
        rowsOf(events.store().occurrences(first, last, calendar), events.store()));
    return ExitSuccess;
}

int EventCommands::month(CommandContext &context)
{
    EventSelection events(context);
    events.parser().addOption(CalendarOption);
    if (!events.open(0, 1))
        return events.exitStatus();
    QDate day = QDate::currentDate();
    if (!events.argument().isEmpty())
        day = QDate::fromString(events.argument().left(7) + QStringLiteral("-01"), Qt::ISODate);
    if (!day.isValid()) {
        Output::error(QStringLiteral("\"%1\" is no month; give one such as 2024-05").arg(events.argument()));
        return ExitUsage;
    }
    mKCal::Notebook::Ptr calendar;
    if (!events.selectCalendar(events.parser().value(CalendarOption), &calendar))
        return events.exitStatus();
    const QDate first(day.year(), day.month(), 1);
    const QList<EventOccurrence> occurrences =
        events.store().occurrences(first, first.addDays(first.daysInMonth() - 1), calendar);
    if (context.output().isJson()) {
        context.output().rows({}, rowsOf(occurrences, events.store()));
        return ExitSuccess;
    }
    constexpr int UsualWidth = 80;
    const int width = Output::terminalWidth();
    const QStringList lines = EventView::month(first, occurrences, width > 0 ? width : UsualWidth);
    for (const QString &line : lines)
        context.output().message(line);
    return ExitSuccess;
}

int EventCommands::show(CommandContext &context)
{
    EventSelection events(context);
    events.parser().addOption(OccurrenceOption);
    EventOccurrence occurrence;
    if (!events.open(1, 1) || !events.selectEvent(events.parser().value(OccurrenceOption), &occurrence))
        return events.exitStatus();
    context.output().object(EventView::columns(), EventView::describeWhole(occurrence, events.store()));
    return ExitSuccess;
}

int EventCommands::add(CommandContext &context)
{
    EventSelection events(context);
    const EventOptions options(events.parser(), EventOptions::Adding);
    if (!events.open(1, 1))
        return events.exitStatus();
    const mKCal::Notebook::Ptr calendar = events.store().calendar(options.calendar());
    if (!calendar)
        return ExitNotFound;
    const Event::Ptr event(new Event);
    event->setSummary(events.argument());
    if (!options.apply(*event, context.accounts().emailAddress(events.account())))
        return ExitUsage;
    // Without a status it would take no time in the eyes of other people, as a day such as a birthday does.
    if (!event->allDay())
        event->setStatus(Event::StatusConfirmed);
    if (!events.store().add(event, calendar) || !events.store().save())
        return ExitFailure;
    context.output().done(
        QStringLiteral("event %1 added to %2").arg(EventStore::shortId(event), calendar->name()) + NextSync,
        EventView::describeWhole({ event, event->dtStart(), event->dtEnd(), QDateTime() }, events.store()));
    return ExitSuccess;
}

int EventCommands::edit(CommandContext &context)
{
    EventSelection events(context);
    const EventOptions options(events.parser(), EventOptions::Editing);
    EventOccurrence occurrence;
    if (!events.open(1, 1) || !events.selectEvent(options.occurrence(), &occurrence))
        return events.exitStatus();
    if (!options.fitsOccurrence(*occurrence.event))
        return ExitUsage;
    if (!options.saysSomething()) {
        Output::error(QStringLiteral("nothing to change; see fennel-easctl help event edit"));
        return ExitUsage;
    }
    const Event::Ptr event =
        options.occurrence().isEmpty() ? occurrence.event : events.store().exceptionFor(occurrence);
    if (!event)
        return ExitFailure;
    if (!options.apply(*event, context.accounts().emailAddress(events.account())))
        return ExitUsage;
    if (!events.store().save())
        return ExitFailure;
    context.output().done(QStringLiteral("event %1 changed").arg(events.argument()) + NextSync,
        EventView::describeWhole({ event, event->dtStart(), event->dtEnd(), QDateTime() }, events.store()));
    return ExitSuccess;
}

int EventCommands::remove(CommandContext &context)
{
    EventSelection events(context);
    events.parser().addOption(OccurrenceOption);
    EventOccurrence occurrence;
    const auto start = [&events] {
        return events.parser().value(OccurrenceOption);
    };
    if (!events.open(1, 1) || !events.selectEvent(start(), &occurrence))
        return events.exitStatus();
    const bool removed = start().isEmpty() ? events.store().remove(occurrence.event)
                                           : events.store().removeOccurrence(occurrence);
    if (!removed)
        Output::error(QStringLiteral("the event cannot be deleted"));
    if (!removed || !events.store().save())
        return ExitFailure;
    context.output().done(
        (start().isEmpty()
                ? QStringLiteral("event %1 deleted").arg(events.argument())
                : QStringLiteral("the occurrence of event %1 at %2 deleted").arg(events.argument(), start()))
            + NextSync,
        { { QStringLiteral("id"), events.argument() } });
    return ExitSuccess;
}

int EventCommands::exportCalendar(CommandContext &context)
{
    EventSelection events(context);
    const QCommandLineOption force(QStringLiteral("force"));
    events.parser().addOptions({ CalendarOption, force });
    if (!events.open(0, 1))
        return events.exitStatus();
    mKCal::Notebook::Ptr calendar;
    if (!events.selectCalendar(events.parser().value(CalendarOption), &calendar))
        return events.exitStatus();
    const QByteArray document = events.store().toICalendar(calendar).toUtf8();
    return OutputFile(context.output(), events.parser().isSet(force))
        .write(events.argument(), document, "text/calendar");
}

int EventCommands::importCalendar(CommandContext &context)
{
    EventSelection events(context);
    events.parser().addOption(CalendarOption);
    if (!events.open(1, 1))
        return events.exitStatus();
    const mKCal::Notebook::Ptr calendar = events.store().calendar(events.parser().value(CalendarOption));
    if (!calendar)
        return ExitNotFound;
    QByteArray document;
    if (!InputFile::read(events.argument(), &document))
        return ExitFailure;
    const std::optional<int> count = events.store().addICalendar(QString::fromUtf8(document), calendar);
    if (!count || !events.store().save())
        return ExitFailure;
    context.output().done(
        QStringLiteral("%1 event(s) added to %2").arg(*count).arg(calendar->name()) + NextSync,
        { { QStringLiteral("count"), *count } });
    return ExitSuccess;
}
