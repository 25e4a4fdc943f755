// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

/** From the arguments of the program to the end of a command. */
namespace CommandRunner {

/** Runs the command that the arguments name, without the program's own; the exit status. */
int run(QStringList arguments);

} // namespace CommandRunner
