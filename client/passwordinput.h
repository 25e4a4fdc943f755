// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * Reads a password where nobody looks on: from a descriptor, from a program's output, or from the terminal
 * without echo. An interrupt
 * on a terminal leaves it as it was.
 */
namespace PasswordInput {

enum class Outcome { Read, Failed, Interrupted };

/** Reads up to the first line end; fails, with a reason, if the descriptor cannot be read or gives nothing.
 */
Outcome fromDescriptor(int descriptor, QString *password, QString *error);

/** Runs a command of the shell, which may talk to the terminal, and takes the first line of its output;
 * fails, with a reason, if it gives nothing or ends with another status than 0. */
Outcome fromCommand(const QString &command, QString *password, QString *error);

/** Asks on the terminal; fails, with a reason, if there is none. */
Outcome fromTerminal(const QString &prompt, QString *password, QString *error);

} // namespace PasswordInput
