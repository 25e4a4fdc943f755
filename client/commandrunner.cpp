// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandrunner.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/commandtable.h"
#include "client/completion.h"

#include <QCoreApplication>

namespace {

/** For shells, so it stands in no help. */
const auto Complete = QStringLiteral("--complete");

bool isHelp(const QString &word)
{
    return word == QLatin1String("help") || word == QLatin1String("--help") || word == QLatin1String("-h");
}

/** The options before the command, taken off the arguments; what is wrong with them, if anything. */
QString takeOptions(QStringList &arguments, CommandContext::Options *options)
{
    const auto account = QStringLiteral("--account");
    while (!arguments.isEmpty() && arguments.first().startsWith(QLatin1Char('-'))) {
        const QString word = arguments.first();
        if (isHelp(word) || word == QLatin1String("--version") || word == Complete)
            break;
        arguments.removeFirst();
        if (word == QLatin1String("--json"))
            options->json = true;
        else if (word == QLatin1String("--progress"))
            options->progress = true;
        else if (word == account && !arguments.isEmpty())
            options->account = arguments.takeFirst();
        else if (word.startsWith(account + QLatin1Char('=')))
            options->account = word.mid(account.size() + 1);
        else if (word == account)
            return QStringLiteral("--account needs the number or name of an account");
        else
            return QStringLiteral("there is no option \"%1\"").arg(word);
    }
    return {};
}

int withoutCommand(const CommandContext::Options &options, int (*print)(Output &, const QStringList &),
    const QStringList &arguments)
{
    Output output;
    output.setJson(options.json);
    return output.finish(print(output, arguments));
}

int printHelp(Output &output, const QStringList &arguments)
{
    const QList<Command> meant = CommandTable::beginningWith(arguments);
    if (meant.isEmpty()) {
        Output::error(CommandTable::unknown(arguments));
        return ExitUsage;
    }
    if (output.isJson())
        output.rows({}, CommandTable::describe(meant));
    else
        output.message(CommandTable::help(meant, arguments.isEmpty()));
    return ExitSuccess;
}

bool asksForHelp(const QStringList &arguments)
{
    return arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"));
}

int printUsage(Output &output, const QStringList &usage)
{
    output.done(usage.first());
    return ExitSuccess;
}

int printVersion(Output &output, const QStringList & /* arguments */)
{
    const QString version = QCoreApplication::applicationVersion();
    output.addFacts({ { QStringLiteral("version"), version } });
    output.message(QStringLiteral("fennel-easctl ") + version);
    return ExitSuccess;
}

/** How accounts can be named in a word; an account store that does not work has none. */
QStringList accountWords()
{
    QStringList words;
    const AccountDirectory directory;
    const QList<EasAccountId> ids = directory.accounts();
    for (const EasAccountId id : ids)
        words +=
            QStringList { QString::number(id), directory.emailAddress(id).section(QLatin1Char('@'), 0, 0) };
    return words;
}

int printCompletion(Output &output, const QStringList &words)
{
    const QStringList candidates = Completion::candidates(words, &accountWords);
    for (const QString &word : candidates)
        output.message(word);
    return ExitSuccess;
}

int printError(Output & /* output */, const QStringList &error)
{
    Output::error(error.join(QLatin1Char(' ')));
    return ExitUsage;
}

} // namespace

int CommandRunner::run(QStringList arguments)
{
    CommandContext::Options options;
    const QString wrong = takeOptions(arguments, &options);
    if (!wrong.isEmpty())
        return withoutCommand(options, &printError, { wrong });
    const QString first = arguments.value(0);
    if (isHelp(first))
        return withoutCommand(options, &printHelp, arguments.mid(1));
    if (first == Complete)
        return withoutCommand(options, &printCompletion, arguments.mid(1));
    if (first == QLatin1String("--version"))
        return withoutCommand(options, &printVersion, {});
    const Command *const command = CommandTable::take(arguments);
    if (!command)
        return withoutCommand(options, &printError, { CommandTable::unknown(arguments) });
    if (asksForHelp(arguments)) {
        // Before the command begins, so that none does what it was asked to explain.
        options.json = options.json || arguments.contains(QStringLiteral("--json"));
        return withoutCommand(options, &printUsage, { CommandTable::usage(*command) });
    }
    CommandContext context(*command, arguments, options);
    return context.output().finish(command->run(context));
}
