// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands "folders" and "folder ..."; each returns an exit status. */
namespace FolderCommands {

int list(CommandContext &context);
int create(CommandContext &context);
int rename(CommandContext &context);
int remove(CommandContext &context);

} // namespace FolderCommands
