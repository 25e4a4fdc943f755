// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QString>
#include <QStringList>

/**
 * What an event of the device keeps beside its own fields: the server's values, in custom properties whose
 * names are constants of the common library.
 */
namespace CalendarEventProperties {

/** -1 if the property is absent or no number. */
int number(const KCalendarCore::Event &event, const QString &name);
/** -1 removes the property. */
void setNumber(KCalendarCore::Event &event, const QString &name, int value);

/** Null if the property is absent. */
QString text(const KCalendarCore::Event &event, const QString &name);
/** An empty text removes the property. */
void setText(KCalendarCore::Event &event, const QString &name, const QString &value);

/** The name of a property for one attendee of the event, in the few characters that a name may hold. */
QString attendeeName(const QString &name, const QString &email);

/**
 * Keys of the deleted occurrences that the server knows of. What the exception dates exclude beyond them has
 * been deleted on the device.
 */
QStringList knownDeletions(const KCalendarCore::Event &series);
void setKnownDeletions(KCalendarCore::Event &series, const QStringList &keys);

} // namespace CalendarEventProperties
