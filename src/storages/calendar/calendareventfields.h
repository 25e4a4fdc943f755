// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/calendareventfield.h"

#include <QVector>

/**
 * The fields of an event of the device, each written down once: how it gets there, how it goes up, what an
 * exception inherits and what a whole item clears by leaving it out. Only exceptions themselves have a class
 * of their own. Main thread only.
 */
namespace CalendarEventFields {

/** In the order of writing: whether a time is a day, what a rule starts with, what a status was before. */
const QVector<CalendarEventField> &all();

/** Writes what the item brings of the fields that it can be refused for; false at the first that makes no
 * sense. */
bool check(const CalendarFieldWriting &writing);
/** Writes all that the item brings. */
bool write(const CalendarFieldWriting &writing);
/** Writes what an exception brings; the rest is that of its series. */
bool writeException(const CalendarFieldWriting &writing, const KCalendarCore::Event &series);

void read(const CalendarFieldReading &reading);
void readException(const CalendarFieldReading &reading);

/**
 * A changed event comes whole, and a value that it has no more is simply not there: no element says that the
 * place, the reminder or the series is gone. An item that brings its times and its stamp is such a whole one;
 * the values that it leaves out are cleared in it, so that they are written like all others. Any other item
 * changes only what it brings.
 */
void completeWholeItem(EasCalendarItem &item, ExchangeActiveSync::ProtocolVersion version);

} // namespace CalendarEventFields
