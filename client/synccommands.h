// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that talk to the daemon about itself and its requests; each returns an exit status. */
namespace SyncCommands {

int sync(CommandContext &context);
int cancel(CommandContext &context);
int watch(CommandContext &context);
int log(CommandContext &context);
int quit(CommandContext &context);

} // namespace SyncCommands
