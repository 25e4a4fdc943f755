// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/eventstore.h"
#include "client/table.h"

#include <QJsonObject>
#include <QStringList>

/** Events as the command line shows them. */
namespace EventView {

/** One line of a list. */
QJsonObject describe(const EventOccurrence &occurrence, const EventStore &store);
/** With people, rule, reminders and the text; what is not there is an empty text or list. */
QJsonObject describeWhole(const EventOccurrence &occurrence, const EventStore &store);

/** Each with the answer; the organizer only if invited as well. */
QStringList attendees(const KCalendarCore::Event &event);

/** What describeWhole() tells, in the order that people read it. */
const Columns &columns();

/** "every 2 weeks on Mon, Wed until 2024-12-31"; empty for an event that does not repeat. */
QString repetition(const KCalendarCore::Event &event);

/**
 * A month as a sheet of seven columns that begin with Monday: the day's number, and below it what takes place
 * then. An event of several days stands on each of them.
 */
QStringList month(const QDate &anyDay, const QList<EventOccurrence> &occurrences, int width);

} // namespace EventView
