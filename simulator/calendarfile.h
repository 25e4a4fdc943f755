// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/event.h"

namespace Simulator {

/** An iCalendar file as events. */
namespace CalendarFile {

/** All events of the file with their exceptions, by their start; what is no iCalendar gives none. */
QVector<Event> read(const QByteArray &text);

} // namespace CalendarFile
} // namespace Simulator
