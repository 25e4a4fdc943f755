// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/calendareventfield.h"

/** The rows of the table of event fields that have to do with time. */
namespace CalendarEventTimes {

CalendarEventField allDay();
CalendarEventField start();
CalendarEventField end();
CalendarEventField proposedStart();
CalendarEventField proposedEnd();
CalendarEventField reminder();

} // namespace CalendarEventTimes
