// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTimeZone>

/**
 * What an event says, field by field, in one form for events of the device and those that CalDAV tells, to be
 * compared.
 *
 * Times stand there as moments and as wall time, a series as each of its occurrences in the five years after
 * its start, an exception with all that it shows. The server's protocol knows no status of events, only
 * whether they take time.
 */
namespace EventListing {

using Listing = QMap<QString, QString>;

/** An event or a series and its exceptions. */
Listing of(const KCalendarCore::Event::Ptr &event, const KCalendarCore::Event::List &exceptions);

/**
 * The event that an iCalendar holds; empty if it holds none. Times in no zone are told in the user's zone,
 * and what an exception leaves out is that of its series.
 */
Listing ofText(const QString &iCalendar, const QTimeZone &userZone);

/** The same moments, told in another zone. */
void moveToZone(const KCalendarCore::Event::Ptr &event, const QTimeZone &zone);

/** A line for each field that is not the same, with the place where they begin to differ. */
QStringList differences(const QString &name, const Listing &device, const Listing &server);

} // namespace EventListing
