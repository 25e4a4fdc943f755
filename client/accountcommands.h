// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands "account ..." and "password"; each returns an exit status. */
namespace AccountCommands {

int add(const CommandContext &context);
int list(const CommandContext &context);
int show(const CommandContext &context);
int enable(const CommandContext &context);
int disable(const CommandContext &context);
int remove(const CommandContext &context);
int password(const CommandContext &context);

} // namespace AccountCommands
