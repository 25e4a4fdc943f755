// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandcontext.h"

#include "client/accountdirectory.h"

#include <QCommandLineParser>

#include <unistd.h>

CommandContext::CommandContext(const QString &name, const QStringList &arguments, const Options &options)
    : mName(name)
    , mArguments(arguments)
    , mOutput(options.json)
    , mAccount(options.account)
    , mShowsProgress(!options.json && (options.progress || isatty(STDERR_FILENO)))
{
}

bool CommandContext::parse(QCommandLineParser &parser, int minimum, int maximum) const
{
    if (!parser.parse(QStringList { mName } + mArguments)) {
        Output::error(QStringLiteral("%1: %2").arg(mName, parser.errorText()));
        return false;
    }
    const int count = parser.positionalArguments().size();
    if (count < minimum || (maximum >= 0 && count > maximum)) {
        Output::error(QStringLiteral("%1: wrong number of arguments; see fennel-easctl help").arg(mName));
        return false;
    }
    return true;
}

EasAccountId CommandContext::accountId() const
{
    AccountDirectory directory;
    return directory.find(mAccount);
}
