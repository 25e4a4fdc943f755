// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The command that tells when people are free. */
namespace AvailabilityCommand {

int show(CommandContext &context);

} // namespace AvailabilityCommand
