// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/emailcontent.h"
#include "simulator/itemshape.h"

namespace Simulator {

/** Chooses, cuts and dresses the bodies of a message by the preferences of a request. */
namespace BodyShape {

/** Body, BodyPart and NativeBodyType. */
QVector<WbxmlNode> elements(const EmailContent &content, const ItemShape &shape);

} // namespace BodyShape
} // namespace Simulator
