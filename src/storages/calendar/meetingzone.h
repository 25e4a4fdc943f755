// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/mstimezoneinformation.h"
#include "storages/calendar/icalhandles.h"

#include <QString>

/**
 * The time zone of an invitation as a component of its iCalendar data, made from the block that came with it.
 *
 * A block whose name is none of Windows' gives no component: nothing would tell a calendar which zone it is,
 * and times in UTC are as true.
 */
namespace MeetingZone {

/** Null for a block that cannot be read or named. */
ICalZone createTimezoneComponent(const QString &block);

} // namespace MeetingZone
