// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that show and change the device's contacts; each returns an exit status. */
namespace ContactCommands {

int list(CommandContext &context);
int show(CommandContext &context);
int add(CommandContext &context);
int edit(CommandContext &context);
int remove(CommandContext &context);
int exportCards(CommandContext &context);
int importCards(CommandContext &context);

} // namespace ContactCommands
