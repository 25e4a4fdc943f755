// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/email.h"
#include "simulator/itemshape.h"

namespace Simulator {

/** A message as elements, each protocol version in its own way. */
namespace EmailShape {

QVector<WbxmlNode> all(const Email &email, const ItemShape &shape);
QVector<WbxmlNode> changed(const Email &email, const ItemState &known, const ItemShape &shape);

/** How attachments are named in fetches: the item and the attachment's number. */
QString fileReference(const QString &serverId, int attachment);
struct FileReference
{
    QString serverId;
    int attachment = -1;
};
FileReference parseFileReference(const QString &reference);

} // namespace EmailShape
} // namespace Simulator
