// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands that create, rename and delete folders on the server; each returns an exit status. */
namespace FolderCommands {

int create(const CommandContext &context);
int rename(const CommandContext &context);
int remove(const CommandContext &context);

} // namespace FolderCommands
