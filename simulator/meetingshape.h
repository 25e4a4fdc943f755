// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/itemshape.h"

namespace Simulator {

/** The MeetingRequest of a message from its iCalendar part. */
namespace MeetingShape {

WbxmlNode element(const QByteArray &calendar, const ItemShape &shape);

} // namespace MeetingShape
} // namespace Simulator
