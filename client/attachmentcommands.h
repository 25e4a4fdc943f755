// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The commands on the parts of messages; each returns an exit status. */
namespace AttachmentCommands {

int save(CommandContext &context);

} // namespace AttachmentCommands
