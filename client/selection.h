// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/commandcontext.h"

#include <QCommandLineParser>

#include <memory>

/**
 * What a command on the things of one account starts with: its arguments, the account, and the opened store
 * that keeps the things. Commands add their options to the parser and open; a false answer means that the
 * command is to end with exitStatus(), an error has been printed.
 *
 * A store is made from the account and what else open() is given, and has a bool open() that prints an error.
 * On the stack of a command.
 */
template <class Store> class Selection
{
public:
    explicit Selection(CommandContext &context)
        : mContext(context)
    {
    }
    Q_DISABLE_COPY(Selection)

    QCommandLineParser &parser() { return mParser; }
    QStringList arguments() const { return mParser.positionalArguments(); }
    QString argument(int index = 0) const { return arguments().value(index); }
    EasAccountId account() const { return mAccount; }
    Store &store() { return *mStore; }
    int exitStatus() const { return mExitStatus; }

    bool open(int fewestArguments, int mostArguments)
    {
        return parse(fewestArguments, mostArguments) && openStore();
    }
    bool parse(int fewestArguments, int mostArguments)
    {
        return mContext.parse(mParser, fewestArguments, mostArguments) || fail(mContext.exitStatus());
    }
    template <class... Arguments> bool openStore(Arguments... arguments)
    {
        const int found = mContext.selectAccount(&mAccount);
        if (found != ExitSuccess)
            return fail(found);
        mStore = std::make_unique<Store>(mAccount, arguments...);
        return mStore->open() || fail(ExitUnavailable);
    }

protected:
    bool fail(int exitStatus, const QString &error = QString())
    {
        if (!error.isEmpty())
            Output::error(error);
        mExitStatus = exitStatus;
        return false;
    }
    CommandContext &context() { return mContext; }

private:
    CommandContext &mContext;
    QCommandLineParser mParser;
    EasAccountId mAccount = 0;
    std::unique_ptr<Store> mStore;
    int mExitStatus = ExitSuccess;
};
