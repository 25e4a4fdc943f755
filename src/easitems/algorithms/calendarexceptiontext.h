// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"

#include <QByteArray>
#include <QList>

/**
 * Exceptions of a series as bytes: those fields that an upload of the series has, in the form of the wire.
 */
namespace CalendarExceptionText {

QByteArray encode(const QList<EasCalendarItem> &exceptions);
/** Empty, logged, for bytes that encode() has not made. */
QList<EasCalendarItem> decode(const QByteArray &bytes);

} // namespace CalendarExceptionText
