// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The command that answers invitations; returns an exit status. */
namespace RespondCommand {

int run(CommandContext &context);

} // namespace RespondCommand
