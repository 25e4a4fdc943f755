// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandcontext.h"

#include "client/accountdirectory.h"
#include "client/commandtable.h"

#include <QCommandLineParser>

#include <algorithm>
#include <iterator>
#include <unistd.h>

namespace {

const auto Json = QStringLiteral("json");
const auto Progress = QStringLiteral("progress");
const auto Account = QStringLiteral("account");

} // namespace

CommandContext::CommandContext(const Command &command, const QStringList &arguments, const Options &options)
    : mCommand(command)
    , mArguments(arguments)
    , mOptions(options)
{
    mOutput.setJson(options.json);
}

CommandContext::~CommandContext() = default;

bool CommandContext::showsProgress() const
{
    return !mOutput.isJson() && (mOptions.progress || isatty(STDERR_FILENO));
}

bool CommandContext::stop(int exitStatus)
{
    mExitStatus = exitStatus;
    return false;
}

bool CommandContext::refuse(const QString &error)
{
    Output::error(QStringLiteral("%1: %2").arg(QLatin1String(mCommand.name), error));
    return stop(ExitUsage);
}

bool CommandContext::parse(QCommandLineParser &parser, int fewest, int most)
{
    parser.addOptions({ QCommandLineOption(Json), QCommandLineOption(Progress),
        QCommandLineOption(Account, QString(), Account) });
    const bool isParsed = parser.parse(QStringList { QLatin1String(mCommand.name) } + mArguments);
    if (parser.isSet(Json))
        mOutput.setJson(true);
    mOptions.progress = mOptions.progress || parser.isSet(Progress);
    if (parser.isSet(Account))
        mOptions.account = parser.value(Account);
    if (!isParsed)
        return refuse(parser.errorText());
    const int count = parser.positionalArguments().size();
    if (count < fewest || (most >= 0 && count > most))
        return refuse(QStringLiteral("wrong number of arguments\n") + CommandTable::usage(mCommand));
    return true;
}

std::optional<int> CommandContext::number(
    const QCommandLineParser &parser, const QString &option, int fallback, int least, int most)
{
    if (!parser.isSet(option))
        return fallback;
    bool isNumber = false;
    const int value = parser.value(option).toInt(&isNumber);
    if (isNumber && value >= least && value <= most)
        return value;
    Output::error(most == INT_MAX
            ? QStringLiteral("--%1 needs a number of at least %2").arg(option).arg(least)
            : QStringLiteral("--%1 needs a number from %2 to %3").arg(option).arg(least).arg(most));
    return std::nullopt;
}

bool CommandContext::isOneOf(const QString &text, const QStringList &words, const QString &what)
{
    if (words.contains(text))
        return true;
    Output::error(QStringLiteral("%1 is one of %2").arg(what, words.join(QStringLiteral(", "))));
    return false;
}

AccountDirectory &CommandContext::accounts()
{
    if (!mAccounts)
        mAccounts = std::make_unique<AccountDirectory>();
    return *mAccounts;
}

int CommandContext::selectAccount(EasAccountId *id)
{
    return accounts().find(mOptions.account, id);
}

void CommandContext::nameAccount(const QString &account)
{
    if (!account.isEmpty())
        mOptions.account = account;
}

int CommandContext::selectAccounts(QList<EasAccountId> *ids)
{
    const AccountDirectory &directory = accounts();
    const QList<EasAccountId> all = directory.usable() ? directory.accounts() : QList<EasAccountId>();
    if (namesAccount() || all.size() < 2) {
        EasAccountId id = 0;
        const int selected = selectAccount(&id);
        if (selected == ExitSuccess)
            ids->append(id);
        return selected;
    }
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(*ids),
        [&directory](EasAccountId id) { return directory.isEnabled(id); });
    if (!ids->isEmpty())
        return ExitSuccess;
    Output::error(QStringLiteral("all accounts are disabled; see fennel-easctl account enable"));
    return ExitFailure;
}

int CommandContext::requireEnabled(const QList<EasAccountId> &ids)
{
    const auto disabled =
        std::find_if(ids.cbegin(), ids.cend(), [this](EasAccountId id) { return !accounts().isEnabled(id); });
    if (disabled == ids.cend())
        return ExitSuccess;
    Output::error(QStringLiteral("account %1 is disabled; enable it with fennel-easctl account enable %1")
                      .arg(*disabled));
    return ExitFailure;
}
