// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/icalhandles.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

/**
 * Texts of others on their way into the iCalendar library, and its documents on their way out.
 *
 * The library reads whatever it is given, however large and however deep; it ends a text at its first NUL,
 * and writes some values as they are. So what comes in is bounded and cleaned before the library sees it.
 */
namespace ICalText {

/** Characters, lines and components of a document that is read; as many components may stand in one another.
 */
constexpr int LargestDocument = 1024 * 1024;
constexpr int MostLines = 20000;
constexpr int MostComponents = 200;

/** Null, with a log line, for a document that passes the bounds or is no iCalendar. */
ICalComponent parsed(const QString &text);
QString written(const ICalComponent &document);

/** A text of one or more lines, without other control characters. */
QByteArray lines(const QString &text);
/** Each run of control characters is one blank. */
QByteArray singleLine(const QString &text);

/** A time in UTC; the null time for an invalid one. */
icaltimetype utcTime(const QDateTime &time);
icaltimetype day(const QDate &date);

} // namespace ICalText
