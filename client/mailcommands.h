// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that show and change the device's mail; each returns an exit status. */
namespace MailCommands {

int list(CommandContext &context);
int show(CommandContext &context);
int get(CommandContext &context);
int exportMessage(CommandContext &context);
int markRead(CommandContext &context);
int markUnread(CommandContext &context);
int move(CommandContext &context);
int remove(CommandContext &context);

} // namespace MailCommands
