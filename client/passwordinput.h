// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** Reads a password where nobody looks on: from a descriptor, or from the terminal without echo. */
namespace PasswordInput {

/** Reads up to the first line end; false, with a reason, if the descriptor cannot be read. */
bool fromDescriptor(int descriptor, QString *password, QString *error);

/** Asks on the terminal; false, with a reason, if there is none. */
bool fromTerminal(const QString &prompt, QString *password, QString *error);

} // namespace PasswordInput
