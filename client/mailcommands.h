// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that show and change the device's mail; each returns an exit status. */
namespace MailCommands {

int folders(const CommandContext &context);
int list(const CommandContext &context);
int show(const CommandContext &context);
int get(const CommandContext &context);
int saveAttachment(const CommandContext &context);
int markRead(const CommandContext &context);
int markUnread(const CommandContext &context);
int move(const CommandContext &context);
int remove(const CommandContext &context);

} // namespace MailCommands
