// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QString>

/** The two ways to write a moment: for programs, and for people. */
namespace TimeText {

/** ISO 8601 in the zone of the device, with its offset: "2024-05-01T09:30:00+02:00"; empty if invalid. */
QString forPrograms(const QDateTime &time);
/** "2024-05-01 09:30" in the zone of the device. */
QString forPeople(const QDateTime &time);
/** A text as it is, but a moment that was written for programs as people read it. */
QString readable(const QString &text);
/** A moment that was written for programs: "09:30:15" if it is of today, else as people read it. */
QString brief(const QString &text);

} // namespace TimeText
