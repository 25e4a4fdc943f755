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
 * An all-day event lasts from midnight to midnight of its zone, and its last day counts. Where the zone of a
 * server could only be guessed its midnight can be an hour or two from ours; the nearest midnight keeps the
 * day.
 */
namespace CalendarTimes {

/** Invalid if the text is no time. */
QDateTime start(const QString &text, const QTimeZone &zone, bool allDay);
QDateTime end(const QString &text, const QTimeZone &zone, bool allDay);

/** A day of a series, or of one of its exceptions, as the protocol writes it: from 16.0 on a day belongs to
 * no zone, before it begins at the midnight of the series. */
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
