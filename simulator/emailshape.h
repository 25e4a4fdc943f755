// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/email.h"
#include "simulator/itemshape.h"

namespace Simulator {

/** A message as elements, each protocol version in its own way. */
namespace EmailShape {

QVector<WbxmlNode> all(const Email &email, const ItemShape &shape);
QVector<WbxmlNode> changed(const Email &email, const ItemState &known, const ItemShape &shape);

} // namespace EmailShape
} // namespace Simulator
