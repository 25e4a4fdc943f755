// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/wholeitem.h"

#include <atomic>

namespace Simulator {
namespace {

std::atomic<quint64> lastSerial { 0 };

} // namespace

WholeItem::WholeItem()
    : mState { { QStringLiteral("Content"), QByteArray::number(++lastSerial) } }
{
}

} // namespace Simulator
