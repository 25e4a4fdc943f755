// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/**
 * The folder of the user's data that only programs of trust may read, in which the calendar is kept where it
 * exists. The calendar's library looks for it each time that a calendar is opened: made between two openings,
 * it would give one user two calendars. So it is made before the first.
 */
namespace PrivilegedFolder {

/** False, logged, if there is none and none can be made. */
bool make();

} // namespace PrivilegedFolder
