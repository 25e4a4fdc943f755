// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class CommandContext;

/** People that are looked for in the server's address list. */
namespace PeopleCommand {

int people(CommandContext &context);

} // namespace PeopleCommand
