// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/event.h"

/** Events of each kind for a server, and pieces of uploads. */
namespace SampleEvents {

/** Mondays and Thursdays at half past nine in Berlin, over both changes of the clocks; one moved, one gone.
 */
Simulator::Event weekly();
/** Three days, each year. */
Simulator::Event wholeDay();
/** With each detail that there is; one attendee proposes another time. Far ahead, so that no filter leaves it
 * out. */
Simulator::Event meeting();

/** StartTime and EndTime of an hour on 2026-05-04, 10:00 UTC. */
QString timesXml();
/** Attachments that adds one file, of the bytes "content of NAME". */
QString fileXml(const QString &name);

} // namespace SampleEvents
