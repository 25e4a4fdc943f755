// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountcommands.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/credentials.h"
#include "client/exitstatus.h"
#include "client/passwordinput.h"

#include <QCommandLineParser>
#include <QMap>
#include <QUrl>

namespace {

const QCommandLineOption PasswordDescriptor(QStringLiteral("password-fd"),
    QStringLiteral("Read the password from this descriptor."), QStringLiteral("n"));

const QMap<QString, QString> &folderPolicies()
{
    static const QMap<QString, QString> policies {
        { QStringLiteral("all"), QStringLiteral("ignore-flags") },
        { QStringLiteral("inbox"), QStringLiteral("inbox-only") },
        { QStringLiteral("marked"), QStringLiteral("follow-flags") },
    };
    return policies;
}

bool readPassword(const QCommandLineParser &parser, const QString &userName, QString *password)
{
    QString error;
    bool isNumber = true;
    const bool read = parser.isSet(PasswordDescriptor)
        ? PasswordInput::fromDescriptor(parser.value(PasswordDescriptor).toInt(&isNumber), password, &error)
        : PasswordInput::fromTerminal(QStringLiteral("Password for %1: ").arg(userName), password, &error);
    if (!read || !isNumber)
        Output::error(isNumber ? error : QStringLiteral("--password-fd needs a number"));
    return read && isNumber;
}

/** Takes the address apart; the path is always the protocol's own. */
bool readServer(const QString &text, NewAccount *account)
{
    const QUrl url(text.contains(QLatin1String("://")) ? text : QStringLiteral("https://") + text);
    const bool http = url.scheme() == QLatin1String("http");
    if (!url.isValid() || url.host().isEmpty() || (!http && url.scheme() != QLatin1String("https"))) {
        Output::error(QStringLiteral("\"%1\" is no server address; give HOST, HOST:PORT or a URL").arg(text));
        return false;
    }
    account->server = url.host();
    account->secure = !http;
    account->port = url.port(http ? 80 : 443);
    return true;
}

/** What is left of all services; false, after an error, if one is unknown or none is left. */
bool readServices(const QStringList &without, NewAccount *account)
{
    account->services = AccountDirectory::serviceNames();
    for (const QString &name : without) {
        if (!AccountDirectory::serviceNames().contains(name)) {
            Output::error(QStringLiteral("--without is one of %1")
                              .arg(AccountDirectory::serviceNames().join(QStringLiteral(", "))));
            return false;
        }
        account->services.removeAll(name);
    }
    if (account->services.isEmpty())
        Output::error(QStringLiteral("an account without any service does nothing"));
    return !account->services.isEmpty();
}

/** The account that the command names behind its name, or the one that is meant without. */
EasAccountId namedAccount(
    const CommandContext &context, const QCommandLineParser &parser, const AccountDirectory &directory)
{
    const QString named = parser.positionalArguments().value(0);
    return named.isEmpty() ? context.accountId() : directory.find(named);
}

int switchAccount(const CommandContext &context, bool enabled)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 1))
        return ExitUsage;
    AccountDirectory directory;
    const EasAccountId id = namedAccount(context, parser, directory);
    if (id == 0)
        return ExitNotFound;
    if (!directory.setEnabled(id, enabled))
        return ExitFailure;
    context.output().message(QStringLiteral("account %1 %2")
                                 .arg(id)
                                 .arg(enabled ? QStringLiteral("enabled") : QStringLiteral("disabled")));
    return ExitSuccess;
}

} // namespace

int AccountCommands::add(const CommandContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption server(QStringLiteral("server"), QString(), QStringLiteral("address"));
    const QCommandLineOption user(QStringLiteral("user"), QString(), QStringLiteral("name"));
    const QCommandLineOption domain(QStringLiteral("domain"), QString(), QStringLiteral("name"));
    const QCommandLineOption name(QStringLiteral("name"), QString(), QStringLiteral("text"));
    const QCommandLineOption folders(
        QStringLiteral("folders"), QString(), QStringLiteral("which"), QStringLiteral("all"));
    const QCommandLineOption version(
        QStringLiteral("protocol-version"), QString(), QStringLiteral("version"));
    const QCommandLineOption past(
        QStringLiteral("past-time"), QString(), QStringLiteral("0-8"), QStringLiteral("0"));
    const QCommandLineOption acceptAll(QStringLiteral("accept-all-certificates"));
    const QCommandLineOption without(QStringLiteral("without"), QString(), QStringLiteral("service"));
    parser.addOptions(
        { server, user, domain, name, folders, version, past, acceptAll, without, PasswordDescriptor });
    if (!context.parse(parser, 1, 1))
        return ExitUsage;

    NewAccount account;
    account.emailAddress = parser.positionalArguments().first();
    account.name = parser.isSet(name) ? parser.value(name) : account.emailAddress;
    account.userName = parser.isSet(user) ? parser.value(user) : account.emailAddress;
    account.domain = parser.value(domain);
    account.protocolVersion = parser.value(version);
    account.pastTime = parser.value(past).toInt();
    account.acceptAllCertificates = parser.isSet(acceptAll);
    account.folderPolicy = folderPolicies().value(parser.value(folders));
    if (account.folderPolicy.isEmpty()) {
        Output::error(QStringLiteral("--folders is one of all, inbox, marked"));
        return ExitUsage;
    }
    if (!readServices(parser.values(without), &account))
        return ExitUsage;
    const QString address =
        parser.isSet(server) ? parser.value(server) : account.emailAddress.section(QLatin1Char('@'), 1);
    if (!readServer(address, &account))
        return ExitUsage;

    AccountDirectory directory;
    if (!directory.usable())
        return ExitUnavailable;
    QString password;
    if (!readPassword(parser, account.userName, &password))
        return ExitFailure;
    account.credentialsId = Credentials::store(0, account.name, account.userName, password);
    if (account.credentialsId == 0)
        return ExitUnavailable;
    const EasAccountId id = directory.add(account);
    if (id == 0)
        return ExitFailure;
    if (context.output().isJson())
        context.output().object(directory.describe(id));
    context.output().message(QStringLiteral("account %1 added").arg(id));
    return ExitSuccess;
}

int AccountCommands::list(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return ExitUsage;
    AccountDirectory directory;
    if (!directory.usable())
        return ExitUnavailable;
    QJsonArray rows;
    const QList<EasAccountId> ids = directory.accounts();
    for (const EasAccountId id : ids)
        rows.append(directory.describe(id));
    context.output().rows(
        { { QStringLiteral("id"), QStringLiteral("ID") }, { QStringLiteral("name"), QStringLiteral("NAME") },
            { QStringLiteral("server"), QStringLiteral("SERVER") },
            { QStringLiteral("services"), QStringLiteral("SERVICES") },
            { QStringLiteral("enabled"), QStringLiteral("ENABLED") },
            { QStringLiteral("blocked"), QStringLiteral("BLOCKED") } },
        rows);
    return ExitSuccess;
}

int AccountCommands::show(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 1))
        return ExitUsage;
    AccountDirectory directory;
    const EasAccountId id = namedAccount(context, parser, directory);
    if (id == 0)
        return ExitNotFound;
    context.output().object(directory.describe(id));
    return ExitSuccess;
}

int AccountCommands::enable(const CommandContext &context)
{
    return switchAccount(context, true);
}

int AccountCommands::disable(const CommandContext &context)
{
    return switchAccount(context, false);
}

int AccountCommands::remove(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 1, 1))
        return ExitUsage;
    AccountDirectory directory;
    const EasAccountId id = directory.find(parser.positionalArguments().first());
    if (id == 0)
        return ExitNotFound;
    const quint32 credentials = directory.credentialsId(id);
    if (!directory.remove(id))
        return ExitFailure;
    context.output().message(QStringLiteral("account %1 removed").arg(id));
    return Credentials::remove(credentials) ? ExitSuccess : ExitFailure;
}

int AccountCommands::password(const CommandContext &context)
{
    QCommandLineParser parser;
    parser.addOption(PasswordDescriptor);
    if (!context.parse(parser, 0, 1))
        return ExitUsage;
    AccountDirectory directory;
    const EasAccountId id = namedAccount(context, parser, directory);
    if (id == 0)
        return ExitNotFound;
    QString password;
    if (!readPassword(parser, directory.userName(id), &password))
        return ExitFailure;
    const quint32 credentials = Credentials::store(
        directory.credentialsId(id), QStringLiteral("Exchange"), directory.userName(id), password);
    if (credentials == 0)
        return ExitUnavailable;
    if (!directory.credentialsChanged(id, credentials))
        return ExitFailure;
    context.output().message(QStringLiteral("password of account %1 stored").arg(id));
    return ExitSuccess;
}
