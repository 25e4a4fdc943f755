// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** Whether an address of a session bus is known. Asking for a connection without one would try to start a
 * bus. */
bool sessionBusIsThere();
