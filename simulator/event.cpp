// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/event.h"

#include "simulator/eventfields.h"

#include <algorithm>

namespace Simulator {
namespace {

bool sameInstant(const QDateTime &one, const QDateTime &other)
{
    return one.isValid() == other.isValid() && (!one.isValid() || one == other);
}

QSet<QString> allFields()
{
    QSet<QString> names;
    for (const EventField &field : EventFields::all())
        names.insert(field.nameText());
    return names;
}

QStringList differentDetails(const EventDetails &one, const EventDetails &other, QSet<QString> fields,
    const QString &prefix = QString())
{
    fields.remove(QStringLiteral("DtStamp")); // each change has one of its own
    QStringList names;
    for (const EventField &field : EventFields::all()) {
        if (fields.contains(field.nameText()) && !field.isSame(one, other))
            names.append(prefix + field.nameText());
    }
    return names;
}

QStringList differentExceptions(const Event &one, const Event &other)
{
    QStringList names;
    for (const EventException &exception : one.exceptions) {
        const QString prefix = exception.original.toString(Qt::ISODate) + QLatin1Char(' ');
        const EventException *counterpart = other.exceptionAt(exception.original);
        if (!counterpart || counterpart->isDeleted != exception.isDeleted)
            names.append(prefix + QStringLiteral("exception"));
        else if (!exception.isDeleted)
            names += differentDetails(one.detailsOf(exception), other.detailsOf(*counterpart),
                exception.own + counterpart->own, prefix);
    }
    if (one.exceptions.size() != other.exceptions.size())
        names.append(QStringLiteral("number of exceptions"));
    return names;
}

bool agree(const Event &one, const Event &other)
{
    const int yearsOfASeries = 2;
    const QDateTime end = one.rule ? one.end.addYears(yearsOfASeries) : one.end;
    return one.zone.agreesWith(other.zone, one.start, end);
}

} // namespace

bool EventAttendee::operator==(const EventAttendee &other) const
{
    return email == other.email && name == other.name && status == other.status && type == other.type
        && sameInstant(proposedStart, other.proposedStart) && sameInstant(proposedEnd, other.proposedEnd);
}

bool EventAttachment::operator==(const EventAttachment &other) const
{
    return number == other.number && name == other.name && bytes == other.bytes
        && contentId == other.contentId && isInline == other.isInline;
}

Event Event::timed(const QString &subject, const QByteArray &ianaId, const QDateTime &wall, int minutes)
{
    const QTimeZone zone(ianaId);
    Event event;
    event.subject = subject;
    event.start = QDateTime(wall.date(), wall.time(), zone).toUTC();
    event.end = event.start.addSecs(60 * minutes);
    event.zone = EventZone::named(ianaId, event.start);
    return event;
}

Event Event::wholeDay(const QString &subject, const QDate &first, int days)
{
    Event event;
    event.subject = subject;
    event.allDay = true;
    event.start = QDateTime(first, QTime(0, 0), Qt::UTC);
    event.end = event.start.addDays(days);
    event.busyStatus = 0;
    return event;
}

EventAttachment &Event::attach(const QString &name, const QByteArray &bytes)
{
    EventAttachment attachment;
    attachment.number = ++lastAttachment;
    attachment.name = name;
    attachment.bytes = bytes;
    attachments.append(attachment);
    return attachments.last();
}

QDateTime Event::originalOn(const QDate &day) const
{
    if (allDay)
        return QDateTime(day, QTime(0, 0), Qt::UTC);
    return zone.toInstant(QDateTime(day, zone.toWall(start).time(), Qt::UTC));
}

bool Event::hasOccurrence(const QDateTime &original) const
{
    if (!rule || !original.isValid() || original < start)
        return false;
    const auto dayOf = [this](const QDateTime &time) {
        return (allDay ? time : zone.toWall(time)).date();
    };
    const QDate day = dayOf(original);
    if (originalOn(day) != original || (rule->until.isValid() && day > dayOf(rule->until)))
        return false;
    const bool isOtherCalendar = rule->calendarType > 1;
    return original == start || isOtherCalendar || rule->meets(day, dayOf(start));
}

const EventException *Event::exceptionAt(const QDateTime &original) const
{
    const auto found = std::find_if(exceptions.begin(), exceptions.end(),
        [&original](const EventException &exception) { return exception.original == original; });
    return found == exceptions.end() ? nullptr : &*found;
}

EventException &Event::exceptionFor(const QDateTime &original)
{
    auto place = std::find_if(exceptions.begin(), exceptions.end(),
        [&original](const EventException &exception) { return exception.original >= original; });
    if (place == exceptions.end() || place->original != original) {
        EventException made;
        made.original = original;
        made.details = occurrenceAt(original);
        place = exceptions.insert(place, made);
    }
    return *place;
}

void Event::deleteOccurrence(const QDate &day)
{
    EventException &exception = exceptionFor(originalOn(day));
    exception.isDeleted = true;
    exception.own.clear();
}

void Event::editOccurrence(const QDate &day, const std::function<void(EventDetails &)> &change)
{
    EventException &exception = exceptionFor(originalOn(day));
    const EventDetails before = detailsOf(exception);
    exception.details = before;
    change(exception.details);
    for (const EventField &field : EventFields::all()) {
        if (!field.isSame(before, exception.details))
            exception.own.insert(field.nameText());
    }
}

EventDetails Event::occurrenceAt(const QDateTime &original) const
{
    EventDetails details = *this;
    details.start = original;
    details.end = original.addSecs(start.secsTo(end));
    return details;
}

EventDetails Event::detailsOf(const EventException &exception) const
{
    EventDetails details = occurrenceAt(exception.original);
    for (const EventField &field : EventFields::all()) {
        if (exception.own.contains(field.nameText()))
            field.copy(exception.details, details);
    }
    return details;
}

QStringList Event::differences(const Event &other) const
{
    QStringList names = differentDetails(*this, other, allFields());
    const auto compare = [&names](bool isSame, const char *name) {
        if (!isSame)
            names.append(QLatin1String(name));
    };
    compare(uid == other.uid, "UID");
    compare(organizerName == other.organizerName, "OrganizerName");
    compare(organizerEmail == other.organizerEmail, "OrganizerEmail");
    compare(responseRequested == other.responseRequested, "ResponseRequested");
    compare(disallowNewTimeProposal == other.disallowNewTimeProposal, "DisallowNewTimeProposal");
    compare(rule == other.rule, "Recurrence");
    compare(agree(*this, other), "Timezone");
    return names + differentExceptions(*this, other);
}

} // namespace Simulator
