// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands about the answers that a server gives in the user's absence. */
namespace AwayCommands {

int show(CommandContext &context);
int set(CommandContext &context);
int off(CommandContext &context);

} // namespace AwayCommands
