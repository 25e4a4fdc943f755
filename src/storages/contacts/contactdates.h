// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDate>
#include <QString>

/**
 * Birthdays and anniversaries: a moment in the protocol, a day on the device.
 *
 * Servers write the midnight of the zone in which the day was entered, so the nearest midnight tells the day.
 */
namespace ContactDates {

/** Invalid if the text is no moment. */
QDate day(const QString &text);

/** Midnight of the day as the protocol has it; empty for an invalid one. */
QString text(const QDate &day);

} // namespace ContactDates
