// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/exitstatus.h"
#include "client/output.h"
#include "common/easaccountid.h"

#include <QList>
#include <QStringList>

#include <memory>
#include <optional>

class AccountDirectory;
class QCommandLineParser;
struct Command;

/**
 * What every command of the command line gets: its arguments, the output and the accounts. Owned by the
 * command line, for one command.
 */
class CommandContext
{
public:
    struct Options
    {
        bool json = false;
        bool progress = false;
        /** As it was named; null for no name. */
        QString account;
    };

    CommandContext(const Command &command, const QStringList &arguments, const Options &options);
    ~CommandContext();
    Q_DISABLE_COPY(CommandContext)

    Output &output() { return mOutput; }
    /** On a terminal, or where it was asked for; never with JSON. */
    bool showsProgress() const;

    /**
     * Parses the arguments; the parser has the command's own options already. The positional arguments are
     * counted against the two limits (-1: any). False, with exitStatus() set, if the command is not to go on:
     * wrong arguments were explained.
     */
    bool parse(QCommandLineParser &parser, int fewest, int most);
    int exitStatus() const { return mExitStatus; }

    /**
     * The number that an option was given, or the fallback without it. Nothing, after an error, if it is no
     * number between the two.
     */
    static std::optional<int> number(
        const QCommandLineParser &parser, const QString &option, int fallback, int least, int most);
    /** Whether the text is one of the words, of which an error tells. */
    static bool isOneOf(const QString &text, const QStringList &words, const QString &what);

    AccountDirectory &accounts();
    /** Whether one was named. */
    bool namesAccount() const { return !mOptions.account.isNull(); }
    /** An account that stands behind the command, in place of --account; an empty text names none. */
    void nameAccount(const QString &account);
    /** The account that was named, or the only one. Another status than success tells of an error. */
    int selectAccount(EasAccountId *id);
    /** The account that was named or is the only one, else all that are enabled; the exit status. */
    int selectAccounts(QList<EasAccountId> *ids);
    /** Another status than success, after an error, if one of them is disabled. */
    int requireEnabled(const QList<EasAccountId> &ids);

private:
    bool stop(int exitStatus);
    bool refuse(const QString &error);

    const Command &mCommand;
    QStringList mArguments;
    Options mOptions;
    Output mOutput;
    std::unique_ptr<AccountDirectory> mAccounts;
    int mExitStatus = ExitSuccess;
};
