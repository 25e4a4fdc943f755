// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/emailcontent.h"
#include "simulator/itemshape.h"

#include <optional>

namespace Simulator {

/** Chooses, cuts and dresses the bodies of an item by the preferences of a request. */
namespace BodyShape {

/** Body, BodyPart and NativeBodyType. */
QVector<WbxmlNode> elements(const EmailContent &content, const ItemShape &shape);
/** The same of a contact or an event, which have no MIME form and no part. */
QVector<WbxmlNode> elements(const EmailBodies &texts, const ItemShape &shape);

/** The plain text of a Body that a client sent; nothing if it brings no data, which leaves the old one. */
std::optional<QString> uploadedText(const WbxmlNode &body);

} // namespace BodyShape
} // namespace Simulator
