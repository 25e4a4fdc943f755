// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QDateTime>

class InteropBed;

/**
 * What a user does in the device's calendar to the events of EventSamples. Each of them saves, and is false
 * if it could not be done.
 */
namespace DeviceEdits {

/** Texts, times, an alarm, categories; one event is deleted. */
bool editEvents(InteropBed &bed);
/** Two occurrences become others, an exception is renamed, two occurrences are deleted. */
bool editOccurrences(InteropBed &bed);
/** Five events; the user has this address. */
bool addEvents(InteropBed &bed, const QString &address);

QDateTime at(const QDate &day, const QTime &time, const char *zone);
KCalendarCore::Event::Ptr newEvent(const QString &summary, const QDateTime &start, int minutes);
/** As changed now, which is later than the last sync. */
void stamp(InteropBed &bed, const KCalendarCore::Event::Ptr &event);

} // namespace DeviceEdits
