// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventstore.h"

#include "client/eventtime.h"
#include "client/output.h"
#include "common/exchangeactivesync.h"
#include "common/privilegedfolder.h"

#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>
#include <KCalendarCore/OccurrenceIterator>

#include <QCryptographicHash>

#include <algorithm>

using KCalendarCore::Event;

namespace {

mKCal::ExtendedStorage::Ptr storageOf(const mKCal::ExtendedCalendar::Ptr &calendar)
{
    PrivilegedFolder::make();
    return mKCal::ExtendedCalendar::defaultStorage(calendar);
}

} // namespace

EventStore::EventStore(EasAccountId accountId)
    : mAccountId(accountId)
    , mCalendar(new mKCal::ExtendedCalendar(QTimeZone::systemTimeZone()))
    , mStorage(storageOf(mCalendar))
{
}

bool EventStore::open()
{
    bool opened = mStorage && mStorage->open();
    const mKCal::Notebook::List own = opened ? calendars() : mKCal::Notebook::List();
    for (const mKCal::Notebook::Ptr &notebook : own)
        opened = opened && mStorage->loadNotebookIncidences(notebook->uid());
    if (!opened)
        Output::error(QStringLiteral("the calendar store cannot be opened"));
    return opened;
}

mKCal::Notebook::List EventStore::calendars() const
{
    mKCal::Notebook::List own;
    const mKCal::Notebook::List all = mStorage->notebooks();
    for (const mKCal::Notebook::Ptr &notebook : all) {
        if (notebook->account() == QString::number(mAccountId)
            && notebook->pluginName() == ExchangeActiveSync::ExchangeCalendarPluginName)
            own.append(notebook);
    }
    std::sort(
        own.begin(), own.end(), [](const mKCal::Notebook::Ptr &left, const mKCal::Notebook::Ptr &right) {
            return left->name() < right->name();
        });
    return own;
}

mKCal::Notebook::Ptr EventStore::calendar(const QString &name) const
{
    const mKCal::Notebook::List own = calendars();
    if (name.isEmpty() && own.size() == 1)
        return own.first();
    for (const mKCal::Notebook::Ptr &notebook : own) {
        if (notebook->uid() == name || notebook->name().compare(name, Qt::CaseInsensitive) == 0)
            return notebook;
    }
    if (own.isEmpty())
        Output::error(QStringLiteral("there is no calendar; fennel-easctl sync brings them"));
    else
        Output::error(name.isEmpty() ? QStringLiteral("there are several calendars; name one with --calendar")
                                     : QStringLiteral("there is no calendar \"%1\"").arg(name));
    return {};
}

int EventStore::count(const mKCal::Notebook::Ptr &calendar) const
{
    const Event::List events = mCalendar->rawEvents();
    return int(std::count_if(events.cbegin(), events.cend(), [&](const Event::Ptr &event) {
        return !event->hasRecurrenceId() && mCalendar->notebook(event) == calendar->uid();
    }));
}

QString EventStore::calendarName(const Event::Ptr &event) const
{
    const mKCal::Notebook::Ptr notebook = mStorage->notebook(mCalendar->notebook(event));
    return notebook ? notebook->name() : QString();
}

QString EventStore::shortId(const Event::Ptr &event)
{
    constexpr int Digits = 8;
    const QByteArray hash = QCryptographicHash::hash(event->uid().toUtf8(), QCryptographicHash::Sha1);
    return QString::fromLatin1(hash.toHex().left(Digits));
}

Event::Ptr EventStore::find(const QString &id) const
{
    const Event::List events = mCalendar->rawEvents();
    for (const Event::Ptr &event : events) {
        if (!event->hasRecurrenceId() && (event->uid() == id || shortId(event) == id))
            return event;
    }
    Output::error(QStringLiteral("there is no event %1").arg(id));
    return {};
}

QList<EventOccurrence> EventStore::occurrences(
    const QDate &first, const QDate &last, const mKCal::Notebook::Ptr &calendar) const
{
    QList<EventOccurrence> found;
    KCalendarCore::OccurrenceIterator iterator(*mCalendar, first.startOfDay(), last.endOfDay());
    while (iterator.hasNext()) {
        iterator.next();
        const Event::Ptr event = iterator.incidence().dynamicCast<Event>();
        if (!event || (calendar && mCalendar->notebook(event) != calendar->uid()))
            continue;
        QDateTime start = iterator.occurrenceStartDate();
        const bool isSingle = !event->recurs() && !event->hasRecurrenceId();
        found.append({ event, start, EventTime::endOf(event, start),
            isSingle ? QDateTime() : iterator.recurrenceId() });
    }
    std::sort(found.begin(), found.end(), [](const EventOccurrence &left, const EventOccurrence &right) {
        return left.start != right.start ? left.start < right.start
                                         : left.event->summary() < right.event->summary();
    });
    return found;
}

EventOccurrence EventStore::occurrence(const Event::Ptr &event, const QString &start) const
{
    const EventTime wanted = EventTime::read(start);
    if (wanted.isValid()) {
        const QList<EventOccurrence> near = occurrences(wanted.date().addDays(-1), wanted.date().addDays(1));
        for (const EventOccurrence &occurrence : near) {
            if (occurrence.event->uid() == event->uid() && occurrence.recurrenceId.isValid()
                && wanted.isAt(occurrence.start, occurrence.event->allDay()))
                return occurrence;
        }
    }
    Output::error(QStringLiteral("\"%1\" has no occurrence at %2").arg(event->summary(), start));
    return {};
}

bool EventStore::add(const Event::Ptr &event, const mKCal::Notebook::Ptr &calendar)
{
    return mCalendar->addEvent(event, calendar->uid());
}

Event::Ptr EventStore::exceptionFor(const EventOccurrence &occurrence)
{
    if (occurrence.event->hasRecurrenceId())
        return occurrence.event;
    const Event::Ptr exception =
        mCalendar->dissociateSingleOccurrence(occurrence.event, occurrence.recurrenceId).dynamicCast<Event>();
    if (exception && mCalendar->addEvent(exception, mCalendar->notebook(occurrence.event)))
        return exception;
    Output::error(QStringLiteral("the occurrence cannot be changed on its own"));
    return {};
}

Event::Ptr EventStore::seriesOf(const Event::Ptr &event) const
{
    return event->hasRecurrenceId() ? mCalendar->event(event->uid()) : event;
}

bool EventStore::remove(const Event::Ptr &event)
{
    return mCalendar->deleteEvent(event);
}

bool EventStore::removeOccurrence(const EventOccurrence &occurrence)
{
    const Event::Ptr series = seriesOf(occurrence.event);
    if (!series)
        return false;
    // Without the exception the occurrence of the rule would show again.
    if (series->allDay())
        series->recurrence()->addExDate(occurrence.recurrenceId.date());
    else
        series->recurrence()->addExDateTime(occurrence.recurrenceId);
    return !occurrence.event->hasRecurrenceId() || mCalendar->deleteEvent(occurrence.event);
}

bool EventStore::save()
{
    if (mStorage->save())
        return true;
    Output::error(QStringLiteral("the calendar store refused the change"));
    return false;
}

std::optional<int> EventStore::addICalendar(const QString &text, const mKCal::Notebook::Ptr &calendar)
{
    const KCalendarCore::MemoryCalendar::Ptr read(
        new KCalendarCore::MemoryCalendar(QTimeZone::systemTimeZone()));
    KCalendarCore::ICalFormat format;
    if (!format.fromString(read, text) || read->rawEvents().isEmpty()) {
        Output::error(QStringLiteral("what was given holds no events in iCalendar"));
        return std::nullopt;
    }
    Event::List events = read->rawEvents();
    // Series before their exceptions, which need them.
    std::stable_partition(
        events.begin(), events.end(), [](const Event::Ptr &event) { return !event->hasRecurrenceId(); });
    int count = 0;
    for (const Event::Ptr &event : qAsConst(events)) {
        if (mCalendar->event(event->uid(), event->recurrenceId())) {
            Output::note(QStringLiteral("\"%1\" is there already").arg(event->summary()));
            continue;
        }
        const Event::Ptr copy(event->clone());
        if (!mCalendar->addEvent(copy, calendar->uid())) {
            Output::error(QStringLiteral("the event \"%1\" cannot be added").arg(event->summary()));
            return std::nullopt;
        }
        ++count;
    }
    return count;
}

QString EventStore::toICalendar(const mKCal::Notebook::Ptr &calendar) const
{
    return KCalendarCore::ICalFormat().toString(
        mCalendar.staticCast<KCalendarCore::Calendar>(), calendar ? calendar->uid() : QString());
}
