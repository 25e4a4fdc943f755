// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands "account ..." and "password"; each returns an exit status. */
namespace AccountCommands {

int add(CommandContext &context);
int edit(CommandContext &context);
int list(CommandContext &context);
int show(CommandContext &context);
int enable(CommandContext &context);
int disable(CommandContext &context);
int remove(CommandContext &context);
int password(CommandContext &context);

} // namespace AccountCommands
