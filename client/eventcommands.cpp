// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventcommands.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/eventoptions.h"
#include "client/eventstore.h"
#include "client/eventtime.h"
#include "client/eventview.h"
#include "client/exitstatus.h"
#include "client/outputfile.h"

#include <QCommandLineParser>

#include <memory>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using KCalendarCore::Event;

const auto NextSync = QStringLiteral("; the next sync tells the server");

const QCommandLineOption CalendarOption(QStringLiteral("calendar"), QString(), QStringLiteral("name"));
const QCommandLineOption OccurrenceOption(QStringLiteral("occurrence"), QString(), QStringLiteral("start"));

/** What every command on events starts with: arguments, an account, its calendars. */
class EventSelection
{
public:
    explicit EventSelection(const CommandContext &context)
        : mContext(context)
    {
    }

    QCommandLineParser &parser() { return mParser; }
    QString argument() const { return mParser.positionalArguments().value(0); }
    EasAccountId account() const { return mAccount; }
    EventStore &store() { return *mStore; }
    int exitStatus() const { return mExitStatus; }

    /** False, with exitStatus() set and an error printed, if there is nothing to work on. */
    bool open(int fewestArguments, int mostArguments);
    /** The calendar that is named; null for none, which means all. */
    bool selectCalendar(const QString &name, mKCal::Notebook::Ptr *calendar);
    /** The event that the argument names, and one time at which it takes place. */
    bool selectEvent(const QString &occurrenceStart, EventOccurrence *occurrence);

private:
    bool fail(int exitStatus)
    {
        mExitStatus = exitStatus;
        return false;
    }

    const CommandContext &mContext;
    QCommandLineParser mParser;
    EasAccountId mAccount = 0;
    std::unique_ptr<EventStore> mStore;
    int mExitStatus = ExitSuccess;
};

bool EventSelection::open(int fewestArguments, int mostArguments)
{
    if (!mContext.parse(mParser, fewestArguments, mostArguments))
        return fail(ExitUsage);
    mAccount = mContext.accountId();
    if (mAccount == 0)
        return fail(ExitNotFound);
    mStore = std::make_unique<EventStore>(mAccount);
    return mStore->open() || fail(ExitUnavailable);
}

bool EventSelection::selectCalendar(const QString &name, mKCal::Notebook::Ptr *calendar)
{
    if (name.isEmpty())
        return true;
    *calendar = mStore->calendar(name);
    return *calendar || fail(ExitNotFound);
}

bool EventSelection::selectEvent(const QString &occurrenceStart, EventOccurrence *occurrence)
{
    const Event::Ptr event = mStore->find(argument());
    if (!event)
        return fail(ExitNotFound);
    *occurrence = occurrenceStart.isEmpty()
        ? EventOccurrence { event, event->dtStart(), event->dtEnd(), QDateTime() }
        : mStore->occurrence(event, occurrenceStart);
    return occurrence->event || fail(ExitNotFound);
}

bool readDay(const QCommandLineParser &parser, const QString &option, QDate *day)
{
    if (!parser.isSet(option))
        return true;
    *day = EventTime::read(parser.value(option)).date();
    if (!day->isValid())
        Output::error(QStringLiteral("--%1 needs a day, such as 2024-05-01").arg(option));
    return day->isValid();
}

int terminalWidth()
{
    constexpr int Usual = 80;
    winsize size {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const int columns = qEnvironmentVariableIntValue("COLUMNS");
    return columns > 0 ? columns : Usual;
}

QJsonArray rowsOf(const QList<EventOccurrence> &occurrences, const EventStore &store)
{
    QJsonArray rows;
    for (const EventOccurrence &occurrence : occurrences)
        rows.append(EventView::describe(occurrence, store));
    return rows;
}

} // namespace

int EventCommands::list(const CommandContext &context)
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
    if (!readDay(events.parser(), from, &first))
        return ExitUsage;
    QDate last = first.addDays(DaysAhead);
    if (!readDay(events.parser(), to, &last))
        return ExitUsage;
    mKCal::Notebook::Ptr calendar;
    if (!events.selectCalendar(events.parser().value(CalendarOption), &calendar))
        return events.exitStatus();
    context.output().rows({ { QStringLiteral("id"), QStringLiteral("ID") },
                              { QStringLiteral("start"), QStringLiteral("START") },
                              { QStringLiteral("end"), QStringLiteral("END") },
                              { QStringLiteral("repeats"), QStringLiteral("REPEATS") },
                              { QStringLiteral("subject"), QStringLiteral("SUBJECT") },
                              { QStringLiteral("location"), QStringLiteral("LOCATION") },
                              { QStringLiteral("calendar"), QStringLiteral("CALENDAR") } },
        rowsOf(events.store().occurrences(first, last, calendar), events.store()));
    return ExitSuccess;
}

int EventCommands::month(const CommandContext &context)
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
    const QStringList lines = EventView::month(first, occurrences, terminalWidth());
    for (const QString &line : lines)
        context.output().message(line);
    return ExitSuccess;
}

int EventCommands::show(const CommandContext &context)
{
    EventSelection events(context);
    events.parser().addOption(OccurrenceOption);
    EventOccurrence occurrence;
    if (!events.open(1, 1) || !events.selectEvent(events.parser().value(OccurrenceOption), &occurrence))
        return events.exitStatus();
    context.output().object(EventView::describeWhole(occurrence, events.store()));
    return ExitSuccess;
}

int EventCommands::add(const CommandContext &context)
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
    if (!options.apply(*event, AccountDirectory().emailAddress(events.account())))
        return ExitUsage;
    if (!events.store().add(event, calendar) || !events.store().save())
        return ExitFailure;
    if (context.output().isJson())
        context.output().object(EventView::describeWhole(
            { event, event->dtStart(), event->dtEnd(), QDateTime() }, events.store()));
    context.output().message(
        QStringLiteral("event %1 added to %2").arg(EventStore::shortId(event), calendar->name()) + NextSync);
    return ExitSuccess;
}

int EventCommands::edit(const CommandContext &context)
{
    EventSelection events(context);
    const EventOptions options(events.parser(), EventOptions::Editing);
    EventOccurrence occurrence;
    if (!events.open(1, 1) || !events.selectEvent(options.occurrence(), &occurrence))
        return events.exitStatus();
    if (!options.saysSomething()) {
        Output::error(QStringLiteral("nothing to change; see fennel-easctl help"));
        return ExitUsage;
    }
    const Event::Ptr event =
        options.occurrence().isEmpty() ? occurrence.event : events.store().exceptionFor(occurrence);
    if (!event)
        return ExitFailure;
    if (!options.apply(*event, AccountDirectory().emailAddress(events.account())))
        return ExitUsage;
    if (!events.store().save())
        return ExitFailure;
    context.output().message(QStringLiteral("event %1 changed").arg(events.argument()) + NextSync);
    return ExitSuccess;
}

int EventCommands::remove(const CommandContext &context)
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
    context.output().message(
        (start().isEmpty()
                ? QStringLiteral("event %1 deleted").arg(events.argument())
                : QStringLiteral("the occurrence of event %1 at %2 deleted").arg(events.argument(), start()))
        + NextSync);
    return ExitSuccess;
}

int EventCommands::exportCalendar(const CommandContext &context)
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
    return OutputFile::writeOrPrint(events.argument(), document, events.parser().isSet(force)) ? ExitSuccess
                                                                                               : ExitFailure;
}
