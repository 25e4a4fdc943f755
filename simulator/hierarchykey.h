// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/command.h"

namespace Simulator {

/** The hierarchy key of a device, as all commands about folders take it up and hand it on. */
namespace HierarchyKey {

enum class Check {
    Current, ///< the device knows what HierarchyState::known says
    Repeated, ///< it lost the answer to this very request: HierarchyState::lastReply
    Unknown,
};

/** With the key before the last one, and another request, the state goes back to what it was then. */
Check takeUp(const CommandContext &context);

/** The next key, once the state has become what the device will know with it. */
QString handOn(const CommandContext &context, const QVector<MailFolder> &known);

/** Keeps the answer for when its request comes again. */
CommandReply kept(const CommandContext &context, const WbxmlNode &reply);

} // namespace HierarchyKey
} // namespace Simulator
