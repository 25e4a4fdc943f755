// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easattendeecontainer.h"

#include <KCalendarCore/Event>

/**
 * Between the attendees of an item and those of an event. What the device's attendee has no room for stands
 * in custom properties of the event: proposed times, and an answer that the device does not tell from none.
 */
namespace CalendarAttendees {

/** Replaces those of the event; one without an address stands in a property alone, logged. */
void set(KCalendarCore::Event &event, const QList<EasAttendeeContainer> &attendees);
/** Without the organizer, whom some stores list as well. */
QList<EasAttendeeContainer> of(const KCalendarCore::Event &event);
/** Gives an exception those of its series. */
void inherit(const KCalendarCore::Event &series, KCalendarCore::Event &exception);

/** Null for an attendee without an address; the event gets the properties. */
KCalendarCore::Attendee toAttendee(KCalendarCore::Event &event, const EasAttendeeContainer &container);
EasAttendeeContainer toContainer(const KCalendarCore::Event &event, const KCalendarCore::Attendee &attendee);
/** Whether this is the entry that some stores make of the organizer, who was not invited as an attendee. */
bool isOrganizer(const KCalendarCore::Event &event, const KCalendarCore::Attendee &attendee);

} // namespace CalendarAttendees
