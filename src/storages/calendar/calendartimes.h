// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

/**
 * The times of an item as an event has them.
 *
 * An all-day event lasts from midnight to midnight of its zone, and its last day counts. Where the zone of a
 * server could only be guessed its midnight can be an hour or two from ours; the nearest midnight keeps the
 * day.
 */
namespace CalendarTimes {

/** Invalid if the text is no time. */
QDateTime start(const QString &text, const QTimeZone &zone, bool allDay);
QDateTime end(const QString &text, const QTimeZone &zone, bool allDay);

} // namespace CalendarTimes
