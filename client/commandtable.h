// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QJsonArray>
#include <QList>
#include <QStringList>

class CommandContext;

/** One command of the command line. */
struct Command
{
    const char *name;
    const char *arguments;
    const char *purpose;
    int (*run)(CommandContext &context);
};

namespace CommandTable {

const QList<Command> &commands();

/** The command that the arguments begin with, taken off them; null if there is none. */
const Command *take(QStringList &arguments);
/** The commands whose words begin with these; all of them for no words. */
QList<Command> beginningWith(const QStringList &words);

/** The line that shows how a command is called. */
QString usage(const Command &command);
/** What the commands do; with the options of the program and the exit statuses if it is to be the whole. */
QString help(const QList<Command> &commands, bool isWhole);
QJsonArray describe(const QList<Command> &commands);
/** What is wrong with words that are no command, and what may have been meant. */
QString unknown(const QStringList &arguments);

} // namespace CommandTable
