// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/output.h"
#include "common/easaccountid.h"

#include <QStringList>

class QCommandLineOption;
class QCommandLineParser;

/**
 * What every command of the command line gets: its arguments, the output and the account that is meant.
 * A value on the stack of main().
 */
class CommandContext
{
public:
    struct Options
    {
        bool json = false;
        bool progress = false;
        QString account;
    };

    CommandContext(const QString &name, const QStringList &arguments, const Options &options);

    const Output &output() const { return mOutput; }
    /** On a terminal, or where it was asked for; never with JSON. */
    bool showsProgress() const { return mShowsProgress; }

    /**
     * Parses the arguments; wrong ones are explained on standard error and give false. The parser's own
     * options must be there already; positional arguments are counted against the two limits (-1: any).
     */
    bool parse(QCommandLineParser &parser, int minimum, int maximum) const;

    /** The account named by --account (number or name), or the only one. 0, after an error, if none. */
    EasAccountId accountId() const;

private:
    QString mName;
    QStringList mArguments;
    Output mOutput;
    QString mAccount;
    bool mShowsProgress;
};
