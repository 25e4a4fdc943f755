// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

namespace Simulator {

/** The reply form in which data follows the document as bytes of its own. */
namespace Multipart {

extern const char contentType[];

/** The document as part 0, then the parts that its Part elements name from 1 on. */
QByteArray join(const WbxmlNode &document, const QVector<QByteArray> &parts);
/** The parts of such a body; empty if offsets or lengths do not fit. */
QVector<QByteArray> split(const QByteArray &body);

} // namespace Multipart
} // namespace Simulator
