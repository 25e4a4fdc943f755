// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that show and change the device's events; each returns an exit status. */
namespace EventCommands {

int list(const CommandContext &context);
int month(const CommandContext &context);
int show(const CommandContext &context);
int add(const CommandContext &context);
int edit(const CommandContext &context);
int remove(const CommandContext &context);
int exportCalendar(const CommandContext &context);

} // namespace EventCommands
