// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/calendarfile.h"

#include "simulator/plaintext.h"
#include "simulator/protocolversion.h"

#include <KCalendarCore/Event>
#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>

#include <QBitArray>

#include <algorithm>

namespace Simulator {
namespace {

using KCalendarCore::Incidence;
using KCalendarCore::RecurrenceRule;
using SourceEvent = KCalendarCore::Event::Ptr;

const int lastWeek = 5;

QDateTime dateOf(const QDateTime &time)
{
    return QDateTime(time.date(), QTime(0, 0), Qt::UTC);
}

void takeTimes(const SourceEvent &source, EventDetails &details)
{
    details.allDay = source->allDay();
    details.start = details.allDay ? dateOf(source->dtStart()) : source->dtStart().toUTC();
    // There the last day counts.
    details.end = details.allDay ? dateOf(source->dtEnd()).addDays(1) : source->dtEnd().toUTC();
}

EventAttendee attendeeFrom(const KCalendarCore::Attendee &source)
{
    using KCalendarCore::Attendee;
    EventAttendee attendee;
    attendee.email = source.email();
    attendee.name = source.name();
    attendee.type = source.role() == Attendee::OptParticipant ? 2 : 1;
    static const QMap<Attendee::PartStat, int> statuses { { Attendee::Tentative, 2 },
        { Attendee::Accepted, 3 }, { Attendee::Declined, 4 }, { Attendee::NeedsAction, 5 } };
    attendee.status = statuses.value(source.status(), 0);
    return attendee;
}

int busyStatusOf(const SourceEvent &source)
{
    if (source->transparency() == KCalendarCore::Event::Transparent)
        return 0;
    return source->status() == Incidence::StatusTentative ? 1 : 2;
}

void takeDetails(const SourceEvent &source, EventDetails &details)
{
    takeTimes(source, details);
    details.subject = source->summary();
    details.location.name = source->location();
    const QString description = source->description();
    details.body = source->descriptionIsRich() ? EmailBodies { PlainText::fromHtml(description), description }
                                               : EmailBodies { description, QString() };
    details.categories = source->categories();
    details.busyStatus = busyStatusOf(source);
    details.sensitivity = source->secrecy() == Incidence::SecrecyPrivate ? 2
        : source->secrecy() == Incidence::SecrecyConfidential            ? 3
                                                                         : 0;
    const auto alarms = source->alarms();
    details.reminder = alarms.isEmpty() ? -1 : std::max(0, -alarms.first()->startOffset().asSeconds() / 60);
    details.attendees.clear();
    const auto attendees = source->attendees();
    for (const auto &attendee : attendees)
        details.attendees.append(attendeeFrom(attendee));
    details.meetingStatus = details.attendees.isEmpty() ? 0 : 1;
    if (source->status() == Incidence::StatusCanceled)
        details.meetingStatus = 5;
}

void takeDays(const RecurrenceRule &source, EventRule &rule)
{
    const auto days = source.byDays();
    for (const RecurrenceRule::WDayPos &day : days) {
        rule.dayOfWeek |= 1 << (day.day() % 7);
        rule.weekOfMonth = day.pos() == -1 ? lastWeek : day.pos();
    }
    if (source.byMonthDays().size() == 1)
        rule.dayOfMonth = source.byMonthDays().first();
    if (source.byMonths().size() == 1)
        rule.monthOfYear = source.byMonths().first();
}

/** Nothing for rules that the protocol cannot say. */
std::optional<EventRule> ruleFrom(const RecurrenceRule &source, const QDate &first)
{
    EventRule rule;
    takeDays(source, rule);
    const bool byWeekDay = rule.dayOfWeek != 0;
    if (!byWeekDay && rule.dayOfMonth == 0)
        rule.dayOfMonth = first.day();
    if (rule.monthOfYear == 0)
        rule.monthOfYear = first.month();
    switch (source.recurrenceType()) {
    case RecurrenceRule::rDaily:
        rule.type = EventRule::Daily;
        break;
    case RecurrenceRule::rWeekly:
        rule.type = EventRule::Weekly;
        rule.dayOfWeek = byWeekDay ? rule.dayOfWeek : 1 << (first.dayOfWeek() % 7);
        rule.firstDayOfWeek = source.weekStart() % 7;
        break;
    case RecurrenceRule::rMonthly:
        rule.type = byWeekDay ? EventRule::MonthlyByWeekDay : EventRule::MonthlyByDay;
        break;
    case RecurrenceRule::rYearly:
        rule.type = byWeekDay ? EventRule::YearlyByWeekDay : EventRule::YearlyByDay;
        break;
    default:
        return std::nullopt;
    }
    rule.interval = int(source.frequency());
    rule.occurrences = std::max(0, source.duration());
    if (source.duration() == 0)
        rule.until = source.allDay() ? dateOf(source.endDt()) : source.endDt().toUTC();
    return rule;
}

void takeSeries(const SourceEvent &source, Event &event)
{
    const RecurrenceRule *rule = source->recurs() ? source->recurrence()->defaultRRuleConst() : nullptr;
    if (rule)
        event.rule = ruleFrom(*rule, source->dtStart().date());
    if (!event.rule)
        return;
    // Elements that the type does not have would not come back from a device.
    event.rule = EventRule::fromNode(event.rule->toNode(Version161), Version161, EventRule());
    const auto days = source->recurrence()->exDates();
    for (const QDate &day : days)
        event.deleteOccurrence(day);
    const auto times = source->recurrence()->exDateTimes();
    for (const QDateTime &time : times)
        event.deleteOccurrence(event.allDay ? time.date() : event.zone.toWall(time).date());
}

Event eventFrom(const SourceEvent &source)
{
    Event event;
    takeDetails(source, event);
    const QTimeZone zone = source->dtStart().timeZone();
    event.zone = EventZone::named(zone.isValid() ? zone.id() : QByteArrayLiteral("UTC"), event.start);
    event.uid = source->uid();
    event.stamp = source->lastModified().toUTC();
    if (!event.attendees.isEmpty()) {
        event.organizerName = source->organizer().name();
        event.organizerEmail = source->organizer().email();
    }
    const auto attachments = source->attachments();
    for (const auto &attachment : attachments) {
        if (attachment.isBinary())
            event.attach(attachment.label(), attachment.decodedData()).contentType =
                attachment.mimeType().toLatin1();
    }
    takeSeries(source, event);
    return event;
}

void takeException(const SourceEvent &source, Event &event)
{
    const QDateTime original = source->recurrenceId();
    const QDate day = event.allDay ? original.date() : event.zone.toWall(original).date();
    event.editOccurrence(day, [&source](EventDetails &details) {
        const QVector<EventAttachment> attachments = details.attachments;
        takeDetails(source, details);
        details.attachments = attachments;
    });
}

} // namespace

QVector<Event> CalendarFile::read(const QByteArray &text)
{
    const KCalendarCore::MemoryCalendar::Ptr calendar(new KCalendarCore::MemoryCalendar(QTimeZone::utc()));
    KCalendarCore::ICalFormat format;
    QVector<Event> events;
    if (!format.fromRawString(calendar, text))
        return events;
    const auto sources = calendar->rawEvents(KCalendarCore::EventSortStartDate);
    for (const SourceEvent &source : sources) {
        if (source->hasRecurrenceId())
            continue;
        Event event = eventFrom(source);
        const auto exceptions = calendar->eventInstances(source);
        for (const SourceEvent &exception : exceptions)
            takeException(exception, event);
        events.append(event);
    }
    return events;
}

} // namespace Simulator
