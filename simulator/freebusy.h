// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"

namespace Simulator {

/** When the user of a mailbox is free, by the events in its calendars. */
namespace FreeBusy {

/**
 * A digit for each half hour that begins between the two: 0 free, 1 tentative, 2 busy, 3 out of office. Of
 * events at the same time the highest counts; cancelled ones do not.
 */
QString merged(const Mailbox &mailbox, const QDateTime &start, const QDateTime &end);

} // namespace FreeBusy
} // namespace Simulator
