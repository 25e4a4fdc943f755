// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"

#include <KCalendarCore/Event>

#include <QDateTime>
#include <QString>
#include <QTimeZone>

/**
 * Between the times of an item and those of an event.
 *
 * An all-day event of the device has days and no zone: clock time, from the beginning of its first day to the
 * beginning of its last. On the wire days are midnights of some zone, which can be an hour or two from where
 * they should be, as the zone of a server can only be guessed; the nearest midnight keeps the day.
 */
namespace CalendarTimes {

/** The beginning of a day in the form in which the device has all-day events and names their occurrences. */
QDateTime clockTime(const QDate &day);

/** Invalid if the text is no time. */
QDateTime start(const QString &text, const QTimeZone &zone, bool allDay);
QDateTime end(const QString &text, const QTimeZone &zone, bool allDay);

/** The zone of the item that the event was made of. */
QTimeZone zone(const KCalendarCore::Event &event);

/** A day of a series, or of one of its exceptions, as the protocol writes it: from 16.0 on a day belongs to
 * no zone, before it begins when the server says that it does, or at midnight of the zone of the series. */
QString dayText(
    const KCalendarCore::Event &series, const QDate &day, ExchangeActiveSync::ProtocolVersion version);
/** The start of an event; series is the event itself or, for an exception, its series. */
QString startText(const KCalendarCore::Event &event, const KCalendarCore::Event &series,
    ExchangeActiveSync::ProtocolVersion version);
/** The same with the end: an all-day event ends with its last day, in the protocol with the beginning of the
 * day after. */
QString endText(const KCalendarCore::Event &event, const KCalendarCore::Event &series,
    ExchangeActiveSync::ProtocolVersion version);

} // namespace CalendarTimes
