// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The command about wipes that servers have ordered; it returns an exit status. */
namespace WipeCommands {

int status(CommandContext &context);

} // namespace WipeCommands
