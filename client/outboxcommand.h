// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The command that shows what waits to be sent, tries again and takes back. */
namespace OutboxCommand {

/** Returns an exit status. */
int outbox(CommandContext &context);

} // namespace OutboxCommand
