// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarattendees.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "storages/calendar/calendareventproperties.h"

#include <QJsonArray>
#include <QJsonDocument>

using KCalendarCore::Attendee;
using KCalendarCore::Event;

namespace {

struct StatusPair
{
    EasAttendeeContainer::AttendeeStatus status;
    Attendee::PartStat partStat;
};

const StatusPair statuses[] = {
    { EasAttendeeContainer::TentativeAttendeeStatus, Attendee::Tentative },
    { EasAttendeeContainer::AcceptAttendeeStatus, Attendee::Accepted },
    { EasAttendeeContainer::DeclineAttendeeStatus, Attendee::Declined },
};

const QString statusName = QStringLiteral("X-FENNEL-EAS-ATTENDEE-STATUS");

/** Attendees whom the server names without an address: the device cannot hold them, and they go up again. */
const QString withoutAddressName = QStringLiteral("X-FENNEL-EAS-ATTENDEES-WITHOUT-ADDRESS");

template <typename Function> void forEachProperty(const QString &email, const Function &function)
{
    for (const QString &name : { statusName, ExchangeActiveSync::CalendarProposedStartTimeParamName,
             ExchangeActiveSync::CalendarProposedEndTimeParamName })
        function(CalendarEventProperties::attendeeName(name, email));
}

/** The attendees with their properties, which would stay behind. */
void clear(Event &event)
{
    const Attendee::List attendees = event.attendees();
    for (const Attendee &attendee : attendees) {
        forEachProperty(attendee.email(),
            [&event](const QString &name) { CalendarEventProperties::setText(event, name, QString()); });
    }
    event.clearAttendees();
}

Attendee::PartStat partStatOf(EasAttendeeContainer::AttendeeStatus status)
{
    for (const StatusPair &pair : statuses) {
        if (pair.status == status)
            return pair.partStat;
    }
    return Attendee::NeedsAction;
}

/** Which of the server's words for "no answer" it was, if it came from there. */
EasAttendeeContainer::AttendeeStatus statusOf(const Event &event, const Attendee &attendee)
{
    for (const StatusPair &pair : statuses) {
        if (pair.partStat == attendee.status())
            return pair.status;
    }
    return EasAttendeeContainer::AttendeeStatus(CalendarEventProperties::number(
        event, CalendarEventProperties::attendeeName(statusName, attendee.email())));
}

void setTime(Event &event, const QString &name, const QString &email, const QDateTime &time)
{
    CalendarEventProperties::setText(event, CalendarEventProperties::attendeeName(name, email),
        ExchangeActiveSync::dateTimeToString(time));
}

QDateTime time(const Event &event, const QString &name, const QString &email)
{
    return ExchangeActiveSync::dateTimeFromString(
        CalendarEventProperties::text(event, CalendarEventProperties::attendeeName(name, email)), nullptr);
}

} // namespace

void CalendarAttendees::set(Event &event, const QList<EasAttendeeContainer> &attendees)
{
    clear(event);
    QJsonArray withoutAddress;
    for (const EasAttendeeContainer &container : attendees) {
        const Attendee attendee = toAttendee(event, container);
        if (!attendee.isNull()) {
            event.addAttendee(attendee);
            continue;
        }
        qCWarning(eas()) << "Cannot add attendee:" << container.name() << container.email();
        if (!container.name().isEmpty())
            withoutAddress.append(QJsonArray {
                container.name(), int(container.attendeeStatus()), int(container.attendeeType()) });
    }
    CalendarEventProperties::setText(event, withoutAddressName,
        withoutAddress.isEmpty()
            ? QString()
            : QString::fromUtf8(QJsonDocument(withoutAddress).toJson(QJsonDocument::Compact)));
}

QList<EasAttendeeContainer> CalendarAttendees::of(const Event &event)
{
    QList<EasAttendeeContainer> containers;
    const Attendee::List attendees = event.attendees();
    for (const Attendee &attendee : attendees) {
        if (!isOrganizer(event, attendee))
            containers.append(toContainer(event, attendee));
    }
    const QString kept = CalendarEventProperties::text(event, withoutAddressName);
    const QJsonArray withoutAddress = QJsonDocument::fromJson(kept.toUtf8()).array();
    for (const QJsonValue &value : withoutAddress) {
        EasAttendeeContainer container;
        container.setName(value.toArray().at(0).toString());
        container.setAttendeeStatus(EasAttendeeContainer::AttendeeStatus(value.toArray().at(1).toInt()));
        container.setAttendeeType(EasAttendeeContainer::AttendeeType(value.toArray().at(2).toInt()));
        containers.append(container);
    }
    return containers;
}

void CalendarAttendees::inherit(const Event &series, Event &exception)
{
    clear(exception);
    const auto takeOver = [&series, &exception](const QString &name) {
        CalendarEventProperties::setText(exception, name, CalendarEventProperties::text(series, name));
    };
    const Attendee::List attendees = series.attendees();
    for (const Attendee &attendee : attendees) {
        exception.addAttendee(attendee);
        forEachProperty(attendee.email(), takeOver);
    }
    takeOver(withoutAddressName);
}

Attendee CalendarAttendees::toAttendee(Event &event, const EasAttendeeContainer &container)
{
    if (container.email().isEmpty())
        return Attendee();
    const bool optional = container.attendeeType() == EasAttendeeContainer::OptionalAttendeeType;
    const Attendee::PartStat partStat = partStatOf(container.attendeeStatus());
    Attendee attendee(container.name(), container.email(), true, partStat,
        optional ? Attendee::OptParticipant : Attendee::ReqParticipant);
    if (container.attendeeType() == EasAttendeeContainer::ResourceAttendeeType)
        attendee.setCuType(Attendee::Resource);
    CalendarEventProperties::setNumber(event,
        CalendarEventProperties::attendeeName(statusName, container.email()),
        partStat == Attendee::NeedsAction ? int(container.attendeeStatus()) : -1);
    setTime(event, ExchangeActiveSync::CalendarProposedStartTimeParamName, container.email(),
        container.proposedStartTime());
    setTime(event, ExchangeActiveSync::CalendarProposedEndTimeParamName, container.email(),
        container.proposedEndTime());
    return attendee;
}

EasAttendeeContainer CalendarAttendees::toContainer(const Event &event, const Attendee &attendee)
{
    EasAttendeeContainer container;
    container.setName(attendee.name());
    container.setEmail(attendee.email());
    container.setAttendeeStatus(statusOf(event, attendee));
    if (attendee.cuType() == Attendee::Resource)
        container.setAttendeeType(EasAttendeeContainer::ResourceAttendeeType);
    else if (attendee.role() == Attendee::OptParticipant)
        container.setAttendeeType(EasAttendeeContainer::OptionalAttendeeType);
    else
        container.setAttendeeType(EasAttendeeContainer::RequiredAttendeeType);
    container.setProposedStartTime(
        time(event, ExchangeActiveSync::CalendarProposedStartTimeParamName, attendee.email()));
    container.setProposedEndTime(
        time(event, ExchangeActiveSync::CalendarProposedEndTimeParamName, attendee.email()));
    return container;
}

bool CalendarAttendees::isOrganizer(const Event &event, const Attendee &attendee)
{
    const bool nothingAsked = !attendee.RSVP() && attendee.role() == Attendee::ReqParticipant
        && (attendee.status() == Attendee::None || attendee.status() == Attendee::NeedsAction);
    return nothingAsked && !attendee.email().isEmpty()
        && attendee.email().compare(event.organizer().email(), Qt::CaseInsensitive) == 0;
}
