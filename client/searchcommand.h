// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** Mail that is looked for on the server. */
namespace SearchCommand {

int search(CommandContext &context);

} // namespace SearchCommand
