// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interop/eventlisting.h"

#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>

#include <algorithm>

using KCalendarCore::Alarm;
using KCalendarCore::Attendee;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

using EventListing::Listing;

constexpr int Years = 5;

void add(Listing &listing, const QString &field, const QString &value)
{
    if (!value.isEmpty())
        listing.insert(field, value);
}

QString sorted(QStringList list)
{
    list.sort();
    return list.join(QLatin1Char('|'));
}

QString moment(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ssZ"));
}

QString wall(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-ddTHH:mm"));
}

QString day(const QDateTime &time)
{
    return time.date().toString(Qt::ISODate);
}

/** What names an occurrence: the day, or the moment. */
QString mark(const Event &event, const QDateTime &time)
{
    return event.allDay() ? day(time) : moment(time);
}

QString attendees(const Event &event)
{
    QStringList lines;
    const Attendee::List list = event.attendees();
    for (const Attendee &attendee : list) {
        // The calendar store lists the organizer, too, as one who has no answer to give.
        if (attendee.email() == event.organizer().email() && attendee.status() == Attendee::None)
            continue;
        lines.append(QStringLiteral("%1 <%2> role %3 status %4")
                         .arg(attendee.name(), attendee.email())
                         .arg(attendee.role())
                         .arg(attendee.status()));
    }
    return sorted(lines);
}

QString alarms(const Event &event)
{
    QStringList lines;
    const Alarm::List list = event.alarms();
    for (const Alarm::Ptr &alarm : list) {
        if (alarm->enabled())
            lines.append(QString::number(alarm->startOffset().asSeconds()));
    }
    return sorted(lines);
}

void addTimes(Listing &listing, const Event &event, const QString &prefix)
{
    if (event.allDay()) {
        add(listing, prefix + QStringLiteral("days"),
            day(event.dtStart()) + QStringLiteral(" to ") + day(event.dtEnd()));
        return;
    }
    add(listing, prefix + QStringLiteral("start"), moment(event.dtStart()));
    add(listing, prefix + QStringLiteral("end"), moment(event.dtEnd()));
    add(listing, prefix + QStringLiteral("wall"), wall(event.dtStart()));
}

void addFields(Listing &listing, const Event &event, const QString &prefix)
{
    addTimes(listing, event, prefix);
    add(listing, prefix + QStringLiteral("summary"), event.summary());
    add(listing, prefix + QStringLiteral("location"), event.location());
    add(listing, prefix + QStringLiteral("text"), event.description());
    add(listing, prefix + QStringLiteral("categories"), sorted(event.categories()));
    add(listing, prefix + QStringLiteral("alarms"), alarms(event));
    add(listing, prefix + QStringLiteral("attendees"), attendees(event));
    add(listing, prefix + QStringLiteral("class"), QString::number(event.secrecy()));
    add(listing, prefix + QStringLiteral("time"),
        event.transparency() == Event::Opaque ? QStringLiteral("taken") : QStringLiteral("free"));
}

void addOccurrences(Listing &listing, const Event &series, const Event::List &exceptions)
{
    QStringList moments;
    QStringList walls;
    QStringList replaced;
    for (const Event::Ptr &exception : exceptions) {
        replaced.append(mark(series, exception->recurrenceId()));
        moments.append(mark(*exception, exception->dtStart()));
        if (!exception->allDay())
            walls.append(wall(exception->dtStart()));
    }
    const auto times =
        series.recurrence()->timesInInterval(series.dtStart().addDays(-1), series.dtStart().addYears(Years));
    for (const QDateTime &time : times) {
        if (replaced.contains(mark(series, time)))
            continue;
        moments.append(mark(series, time));
        if (!series.allDay())
            walls.append(wall(time.toTimeZone(series.dtStart().timeZone())));
    }
    add(listing, QStringLiteral("occurrences"), sorted(moments));
    add(listing, QStringLiteral("occurrences' wall"), sorted(walls));
}

/** The device says by the status whether an event takes time. */
Event::Ptr withTransparency(const Event::Ptr &event)
{
    const Event::Ptr copy(event->clone());
    copy->setTransparency(event->status() == Incidence::StatusNone ? Event::Transparent : Event::Opaque);
    return copy;
}

void tellInZone(const Event::Ptr &event, const QTimeZone &zone)
{
    if (!event->allDay() && event->dtStart().timeZone() == QTimeZone::utc())
        EventListing::moveToZone(event, zone);
}

void inherit(const Event::Ptr &exception, const Event::Ptr &series)
{
    if (exception->description().isEmpty())
        exception->setDescription(series->description());
    if (exception->location().isEmpty())
        exception->setLocation(series->location());
    if (exception->categories().isEmpty())
        exception->setCategories(series->categories());
    if (exception->alarms().isEmpty()) {
        const Alarm::List alarms = series->alarms();
        for (const Alarm::Ptr &alarm : alarms)
            exception->addAlarm(Alarm::Ptr(new Alarm(*alarm)));
    }
    if (exception->attendees().isEmpty())
        exception->setAttendees(series->attendees());
}

QString around(const QString &text, int place)
{
    constexpr int before = 22;
    constexpr int length = 90;
    return text.mid(qMax(0, place - before), length);
}

Listing listed(const Event::Ptr &event, const Event::List &exceptions)
{
    Listing listing;
    addFields(listing, *event, QString());
    add(listing, QStringLiteral("organizer"), event->organizer().email());
    if (!event->recurs())
        return listing;
    addOccurrences(listing, *event, exceptions);
    for (const Event::Ptr &exception : exceptions)
        addFields(
            listing, *exception, QStringLiteral("on %1: ").arg(mark(*event, exception->recurrenceId())));
    return listing;
}

} // namespace

EventListing::Listing EventListing::of(const Event::Ptr &event, const Event::List &exceptions)
{
    Event::List copies;
    for (const Event::Ptr &exception : exceptions)
        copies.append(withTransparency(exception));
    return listed(withTransparency(event), copies);
}

EventListing::Listing EventListing::ofText(const QString &iCalendar, const QTimeZone &userZone)
{
    const KCalendarCore::MemoryCalendar::Ptr calendar(new KCalendarCore::MemoryCalendar(QTimeZone::utc()));
    if (!KCalendarCore::ICalFormat().fromString(calendar, iCalendar))
        return {};
    const Event::List events = calendar->rawEvents();
    for (const Event::Ptr &event : events) {
        if (event->hasRecurrenceId())
            continue;
        const Event::List exceptions = calendar->eventInstances(event);
        for (const Event::Ptr &exception : exceptions) {
            tellInZone(exception, userZone);
            inherit(exception, event);
        }
        tellInZone(event, userZone);
        return listed(event, exceptions);
    }
    return {};
}

void EventListing::moveToZone(const Event::Ptr &event, const QTimeZone &zone)
{
    const QDateTime end = event->dtEnd();
    event->setDtStart(event->dtStart().toTimeZone(zone));
    event->setDtEnd(end.toTimeZone(zone));
}

QStringList EventListing::differences(const QString &name, const Listing &device, const Listing &server)
{
    QStringList lines;
    QStringList fields = device.keys() + server.keys();
    fields.removeDuplicates();
    for (const QString &field : qAsConst(fields)) {
        const QString here = device.value(field);
        const QString there = server.value(field);
        if (here == there)
            continue;
        const auto [first, second] = std::mismatch(here.cbegin(), here.cend(), there.cbegin(), there.cend());
        Q_UNUSED(second)
        const int place = int(first - here.cbegin());
        lines.append(QStringLiteral("%1 %2: device \"%3\", server \"%4\"")
                         .arg(name, field, around(here, place), around(there, place)));
    }
    return lines;
}
