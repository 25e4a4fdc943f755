// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>

namespace Waiting {

/**
 * Lets events happen until the condition holds; false if it does not in time. The condition is looked at
 * after each round of events, so it has to become true by one. Unlike the test library's own, this never
 * sleeps while events are there: a request is many of them.
 */
bool until(const std::function<bool()> &condition, int milliseconds);

} // namespace Waiting
