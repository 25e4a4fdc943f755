// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The command "status"; returns an exit status. */
namespace StatusCommand {

/** What the accounts are, what the device holds of them, and whether the daemon runs. Starts nothing. */
int print(CommandContext &context);

} // namespace StatusCommand
