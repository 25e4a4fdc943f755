// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that talk to the daemon about itself and its requests; each returns an exit status. */
namespace SyncCommands {

int sync(const CommandContext &context);
int cancel(const CommandContext &context);
int watch(const CommandContext &context);
int log(const CommandContext &context);
int quit(const CommandContext &context);

} // namespace SyncCommands
