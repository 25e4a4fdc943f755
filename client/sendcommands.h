// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that write mail and send it; each returns an exit status. */
namespace SendCommands {

int send(CommandContext &context);
int reply(CommandContext &context);
int forward(CommandContext &context);

} // namespace SendCommands
