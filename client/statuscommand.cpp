// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/statuscommand.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/daemonproxy.h"
#include "client/folderdirectory.h"
#include "client/mailbox.h"
#include "client/outbox.h"

#include <QCommandLineParser>

namespace {

QString stateOf(const QJsonObject &account)
{
    if (!account.value(QStringLiteral("enabled")).toBool())
        return QStringLiteral("disabled");
    return account.value(QStringLiteral("blocked")).toBool() ? QStringLiteral("blocked")
                                                             : QStringLiteral("ready");
}

/** Adds up the folders of one kind; the exit status. */
int count(EasAccountId account, FolderDirectory::Kind kind, int *items, int *unread)
{
    FolderDirectory directory(account, kind);
    if (!directory.open())
        return ExitUnavailable;
    for (const LocalFolder &folder : directory.folders()) {
        *items += folder.items;
        *unread += folder.unread;
    }
    return ExitSuccess;
}

/** What is known of an account; the exit status. */
int describe(const AccountDirectory &accounts, EasAccountId id, QJsonObject *row)
{
    const QJsonObject account = accounts.describe(id);
    for (const char *key : { "id", "name", "server" })
        (*row)[QLatin1String(key)] = account.value(QLatin1String(key));
    (*row)[QStringLiteral("state")] = stateOf(account);
    const QJsonArray services = account.value(QStringLiteral("services")).toArray();
    int unread = 0;
    for (const QString &kind : FolderDirectory::kinds()) {
        int items = 0;
        if (services.contains(kind)) {
            const int counted =
                count(id, FolderDirectory::Kind(FolderDirectory::kinds().indexOf(kind)), &items, &unread);
            if (counted != ExitSuccess)
                return counted;
        }
        (*row)[kind] = items;
    }
    (*row)[QStringLiteral("unread")] = unread;
    MailBox box(id);
    const bool hasMail = services.contains(QStringLiteral("mail"));
    if (hasMail && !box.open())
        return ExitUnavailable;
    (*row)[QStringLiteral("mailWaiting")] = hasMail ? box.waiting() : 0;
    (*row)[QStringLiteral("outbox")] = hasMail ? Outbox(id).messages().size() : 0;
    return ExitSuccess;
}

void tellOfUnsent(Output &output, const QJsonArray &accounts)
{
    for (const QJsonValue &value : accounts) {
        const QJsonObject account = value.toObject();
        const int unsent = account.value(QStringLiteral("outbox")).toInt();
        if (unsent > 0)
            output.message(
                QStringLiteral("%1 message(s) in the Outbox; see fennel-easctl --account %2 mail outbox.")
                    .arg(unsent)
                    .arg(account.value(QStringLiteral("id")).toString()));
    }
}

} // namespace

int StatusCommand::print(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return context.exitStatus();
    AccountDirectory &accounts = context.accounts();
    if (!accounts.usable())
        return ExitUnavailable;
    QJsonArray rows;
    const QList<EasAccountId> all = accounts.accounts();
    for (const EasAccountId id : all) {
        QJsonObject row;
        const int described = describe(accounts, id, &row);
        if (described != ExitSuccess)
            return described;
        rows.append(row);
    }
    const bool isRunning = DaemonProxy::isDaemonRunning();
    if (context.output().isJson()) {
        context.output().object(
            {}, { { QStringLiteral("accounts"), rows }, { QStringLiteral("daemonRuns"), isRunning } });
        return ExitSuccess;
    }
    if (rows.isEmpty())
        context.output().message(
            QStringLiteral("There is no account; add one with fennel-easctl account add."));
    else
        context.output().rows(
            { { "id", "ID" }, { "name", "NAME" }, { "state", "STATE" }, { "server", "SERVER" },
                { "mail", "MAIL" }, { "unread", "UNREAD" }, { "mailWaiting", "WAITING" },
                { "calendar", "EVENTS" }, { "contacts", "CONTACTS" } },
            rows);
    tellOfUnsent(context.output(), rows);
    context.output().message(isRunning ? QStringLiteral("The daemon runs.")
                                       : QStringLiteral("The daemon does not run; the next sync starts it."));
    return ExitSuccess;
}
