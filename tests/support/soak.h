// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** A test that walks through samples in the daily run walks through all of it in the soak run
 * (FENNEL_SOAK=1). */
namespace Soak {

bool isOn();
/** How many samples to take: the first in a daily run, the second in a soak. */
int samples(int daily, int soak);

} // namespace Soak
