// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritemcommon.h"

#include <KCalendarCore/Event>

/**
 * The server's busy status, sensitivity and meeting status as the status and the secrecy of an event have
 * them. The device knows fewer values; the server's own stands in a property, and goes back to it as long as
 * the event has what the value stands for.
 *
 * An unset value removes its property.
 */
namespace CalendarEventStatus {

void setBusyStatus(KCalendarCore::Event &event, EasCalendarItemCommon::BusyStatus busyStatus);
void setSensitivity(KCalendarCore::Event &event, EasCalendarItemCommon::Sensitivity sensitivity);
/** To be set after the busy status, whose place in the event's status it takes when the meeting is off. */
void setMeetingStatus(KCalendarCore::Event &event, EasCalendarItemCommon::MeetingStatus meetingStatus);

/** The server's value as it was stored, unless the event has got another status on the device since; then
 * the property is removed. */
EasCalendarItemCommon::BusyStatus convertBusyStatus(KCalendarCore::Event &event);
/** The same with the event's secrecy. */
EasCalendarItemCommon::Sensitivity convertSensitivity(KCalendarCore::Event &event);

} // namespace CalendarEventStatus
