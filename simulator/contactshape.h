// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"
#include "simulator/itemshape.h"

#include <optional>

namespace Simulator {

/** Contacts as elements, and back. */
namespace ContactShape {

QVector<WbxmlNode> elements(const Contact &contact, const ItemShape &shape);

/**
 * The contact as an upload makes it of @p before; nothing if the upload does not fit. What the upload leaves
 * out goes, but for the note, the picture and what the device does not manage.
 */
std::optional<Contact> changed(const Contact &before, const WbxmlNode &data, const UploadShape &upload);

/** Elements whose content is a text or a date, without their code page. */
QStringList textFields();

} // namespace ContactShape
} // namespace Simulator
