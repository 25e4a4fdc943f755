// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that show and change the device's events; each returns an exit status. */
namespace EventCommands {

int list(CommandContext &context);
int month(CommandContext &context);
int show(CommandContext &context);
int add(CommandContext &context);
int edit(CommandContext &context);
int remove(CommandContext &context);
int exportCalendar(CommandContext &context);
int importCalendar(CommandContext &context);

} // namespace EventCommands
