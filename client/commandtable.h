// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QStringList>

class CommandContext;

/** One command of the command line. */
struct Command
{
    const char *name;
    const char *arguments;
    const char *purpose;
    int (*run)(const CommandContext &context);
};

namespace CommandTable {

const QList<Command> &commands();

/** The command that the arguments begin with, taken off them; null if there is none. */
const Command *take(QStringList &arguments);

QString help();

} // namespace CommandTable
