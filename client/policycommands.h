// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** The command around the policies of a server; returns an exit status. */
namespace PolicyCommands {

int show(CommandContext &context);

} // namespace PolicyCommands
