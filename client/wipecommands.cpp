// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/wipecommands.h"

#include "accounts/waitingidentities.h"
#include "client/accountdirectory.h"
#include "client/commandcontext.h"

#include <QCommandLineParser>

#include <algorithm>

namespace {

struct StateName
{
    AccountDirectory::Wipe state;
    const char *name;
    const char *text;
};

constexpr StateName StateNames[] = {
    { AccountDirectory::Wipe::None, "none", "none was ordered" },
    { AccountDirectory::Wipe::Ordered, "ordered", "ordered, waiting for the acknowledgement" },
    { AccountDirectory::Wipe::WaitsForSignOn, "waits-for-sign-on", "waits for the sign-on service" },
    { AccountDirectory::Wipe::Running, "running", "under way" },
};

const StateName &nameOf(AccountDirectory::Wipe state)
{
    return *std::find_if(std::cbegin(StateNames), std::cend(StateNames),
        [state](const StateName &name) { return name.state == state; });
}

QJsonObject describe(const AccountDirectory &accounts, EasAccountId id)
{
    const QJsonObject account = accounts.describe(id);
    const StateName &state = nameOf(accounts.wipe(id));
    return { { QStringLiteral("id"), account.value(QStringLiteral("id")) },
        { QStringLiteral("name"), account.value(QStringLiteral("name")) },
        { QStringLiteral("wipe"), QString::fromLatin1(state.name) },
        { QStringLiteral("text"), QString::fromLatin1(state.text) } };
}

/** In order; false if they cannot be read. */
bool readWaiting(QList<quint32> *identities)
{
    const Lookup<WaitingIdentities::Identities> waiting = WaitingIdentities().all();
    if (!waiting)
        return false;
    *identities = waiting->values();
    std::sort(identities->begin(), identities->end());
    return true;
}

void print(Output &output, const QJsonArray &rows, const QList<quint32> &identities)
{
    if (rows.isEmpty())
        output.message(QStringLiteral("There is no account."));
    else
        output.rows({ { "id", "ID" }, { "name", "NAME" }, { "text", "WIPE" } }, rows);
    if (identities.isEmpty())
        return;
    QStringList numbers;
    for (const quint32 identity : identities)
        numbers.append(QString::number(identity));
    output.message(
        QStringLiteral("The sign-on service still has to remove what wiped accounts have left there: "
                       "%1. The daemon tries again at each start.")
            .arg(numbers.join(QStringLiteral(", "))));
}

} // namespace

int WipeCommands::status(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 1))
        return context.exitStatus();
    context.nameAccount(parser.positionalArguments().value(0));
    const AccountDirectory &accounts = context.accounts();
    if (!accounts.usable())
        return ExitUnavailable;
    // A disabled account is wiped, too.
    QList<EasAccountId> ids = accounts.accounts();
    if (context.namesAccount()) {
        EasAccountId id = 0;
        const int selected = context.selectAccount(&id);
        if (selected != ExitSuccess)
            return selected;
        ids = { id };
    }
    QList<quint32> identities;
    if (!readWaiting(&identities)) {
        Output::error(QStringLiteral("the list of identities that wiped accounts have left cannot be read"));
        return ExitFailure;
    }
    QJsonArray rows;
    for (const EasAccountId id : qAsConst(ids))
        rows.append(describe(accounts, id));
    if (!context.output().isJson()) {
        print(context.output(), rows, identities);
        return ExitSuccess;
    }
    QJsonArray numbers;
    for (const quint32 identity : qAsConst(identities))
        numbers.append(QString::number(identity));
    context.output().object(
        {}, { { QStringLiteral("accounts"), rows }, { QStringLiteral("identities"), numbers } });
    return ExitSuccess;
}
