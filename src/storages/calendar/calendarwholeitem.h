// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class EasCalendarItem;

/**
 * A changed event comes whole, and a value that it has no more is simply not there: no element says that the
 * place, the reminder or the series is gone. An item that brings its times and its stamp is such a whole one;
 * the values that it leaves out are cleared in it, so that they are written like all others. Any other item
 * changes only what it brings.
 */
namespace CalendarWholeItem {

bool isWhole(const EasCalendarItem &item);
/** Versions before 16.0 say nothing of attachments. */
void complete(EasCalendarItem &item, bool withAttachments);

} // namespace CalendarWholeItem
