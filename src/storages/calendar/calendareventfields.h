// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritemcommon.h"
#include "easitems/easitemscommon.h"

#include <KCalendarCore/Event>

class EasAttachmentContainer;
class EasAttendeeContainer;
class EasBodyContainer;

/**
 * Single values of an item as a series or an exception of the device has them. Values that the device cannot
 * tell apart stand in a custom property as well, so that an upload gives back what came.
 */
namespace CalendarEventFields {

/** An alarm so many minutes before the start; none below 0. */
void applyReminder(const KCalendarCore::Event::Ptr &event, int minutes);
void convertBody(const KCalendarCore::Event::Ptr &event, const EasBodyContainer &body);

/** Unset values remove their property and leave the rest. */
void setBusyStatus(KCalendarCore::Event &event, EasCalendarItemCommon::BusyStatus busyStatus);
void setSensitivity(KCalendarCore::Event &event, EasCalendarItemCommon::Sensitivity sensitivity);
/** To be set after the busy status, whose place in the event's status it takes when the meeting is off. */
void setMeetingStatus(KCalendarCore::Event &event, EasCalendarItemCommon::MeetingStatus meetingStatus);
void setDisallowNewTimeProposal(KCalendarCore::Event &event, EasItemsCommon::TBoolean disallow);

void setAttendees(KCalendarCore::Event &event, const QList<EasAttendeeContainer> &attendees);

/** The server's files, in the event and in the mapping; an exception has its recurrence id by then. */
void setAttachments(const KCalendarCore::Event::Ptr &event, const QList<EasAttachmentContainer> &attachments);

} // namespace CalendarEventFields
