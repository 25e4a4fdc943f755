// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "easitems/fields/fieldtable.h"

/** The fields of an event and of what is nested in it. */
namespace CalendarFields {

/** What a series and its exceptions both have. */
const FieldTable<EasCalendarItem> &itemFields();
/** What only the event as a whole has. */
const FieldTable<EasCalendarItem> &seriesFields();
/** What only an exception has. */
const FieldTable<EasCalendarItem> &exceptionFields();
/** What of an event goes up, in the order of the wire. */
const FieldTable<EasCalendarItem> &uploadedFields();
/** What of an exception goes up inside its series, in the order of the wire. */
const FieldTable<EasCalendarItem> &uploadedExceptionFields();
const FieldTable<EasBodyContainer> &bodyFields();
const FieldTable<EasBodyContainer> &uploadedBodyFields();
const FieldTable<EasRecurrenceContainer> &recurrenceFields();
const FieldTable<EasAttendeeContainer> &attendeeFields();
const FieldTable<EasAttachmentContainer> &attachmentFields();

} // namespace CalendarFields
