// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands around accounts that are kept in step by themselves; each returns an exit status. */
namespace PushCommands {

int on(CommandContext &context);
int off(CommandContext &context);
int status(CommandContext &context);

} // namespace PushCommands
