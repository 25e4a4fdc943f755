// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QVariant>

/** Values as they come with a signal of the bus. */
namespace BusValue {

/**
 * The value without the wrappings of the bus, at any depth: maps have texts as keys, arrays and structures
 * are lists.
 */
QVariant plain(const QVariant &value);

} // namespace BusValue
