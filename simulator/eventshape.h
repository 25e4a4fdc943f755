// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/event.h"
#include "simulator/itemshape.h"

namespace Simulator {

/** Events as elements, each protocol version in its own way. */
namespace EventShape {

QVector<WbxmlNode> elements(const Event &event, const ItemShape &shape);

} // namespace EventShape
} // namespace Simulator
