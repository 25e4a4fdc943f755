// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountcommands.h"

#include "client/accountdirectory.h"
#include "client/accountoptions.h"
#include "client/accountsettings.h"
#include "client/commandcontext.h"
#include "client/credentials.h"
#include "client/passwordinput.h"

#include <QCommandLineParser>

namespace {

const QCommandLineOption PasswordDescriptor(QStringLiteral("password-fd"),
    QStringLiteral("Read the password from this descriptor."), QStringLiteral("n"));
const QCommandLineOption PasswordCommand(QStringLiteral("password-command"),
    QStringLiteral("Read the password from this command's output."), QStringLiteral("command"));

const Columns &columnsOfOne()
{
    static const Columns columns { { "id", "number" }, { "name", "name" }, { "address", "address" },
        { "server", "server" }, { "port", "port" }, { "secure", "encrypted" },
        { "acceptAll", "any certificate" }, { "user", "user" }, { "domain", "domain" },
        { "services", "services" }, { "folders", "mail folders" }, { "pastTime", "past time" },
        { "protocolVersion", "prefers version" }, { "versions", "server's versions" },
        { "enabled", "enabled" }, { "blocked", "blocked" } };
    return columns;
}

/** The password of the option or from the terminal; another status than success tells of an error. */
int readPassword(const QCommandLineParser &parser, const QString &userName, QString *password)
{
    QString error;
    PasswordInput::Outcome outcome = PasswordInput::Outcome::Failed;
    if (parser.isSet(PasswordDescriptor) && parser.isSet(PasswordCommand)) {
        Output::error(QStringLiteral("give one of --password-fd and --password-command"));
        return ExitUsage;
    }
    if (parser.isSet(PasswordCommand)) {
        outcome = PasswordInput::fromCommand(parser.value(PasswordCommand), password, &error);
    } else if (parser.isSet(PasswordDescriptor)) {
        const std::optional<int> descriptor =
            CommandContext::number(parser, PasswordDescriptor.names().first(), 0, 0, INT_MAX);
        if (!descriptor)
            return ExitUsage;
        outcome = PasswordInput::fromDescriptor(*descriptor, password, &error);
    } else {
        outcome =
            PasswordInput::fromTerminal(QStringLiteral("Password for %1: ").arg(userName), password, &error);
    }
    switch (outcome) {
    case PasswordInput::Outcome::Read:
        return ExitSuccess;
    case PasswordInput::Outcome::Interrupted:
        Output::error(QStringLiteral("cancelled"));
        return ExitCancelled;
    case PasswordInput::Outcome::Failed:
        break;
    }
    Output::error(error);
    return ExitFailure;
}

/** Parses, and finds the account that the command names behind its name, or the one that is meant without. */
int selectNamed(CommandContext &context, QCommandLineParser &parser, int fewest, EasAccountId *id)
{
    if (!context.parse(parser, fewest, 1))
        return context.exitStatus();
    context.nameAccount(parser.positionalArguments().value(0));
    return context.selectAccount(id);
}

QJsonObject factsOf(EasAccountId id)
{
    return { { QStringLiteral("id"), QString::number(id) } };
}

int switchAccount(CommandContext &context, bool enabled)
{
    QCommandLineParser parser;
    EasAccountId id = 0;
    const int selected = selectNamed(context, parser, 0, &id);
    if (selected != ExitSuccess)
        return selected;
    if (!context.accounts().setEnabled(id, enabled))
        return ExitFailure;
    context.output().done(QStringLiteral("account %1 %2")
                              .arg(id)
                              .arg(enabled ? QStringLiteral("enabled") : QStringLiteral("disabled")),
        factsOf(id));
    return ExitSuccess;
}

} // namespace

int AccountCommands::add(CommandContext &context)
{
    QCommandLineParser parser;
    const AccountOptions options(parser);
    parser.addOptions({ PasswordDescriptor, PasswordCommand });
    if (!context.parse(parser, 1, 1))
        return context.exitStatus();
    AccountSettings settings;
    if (!options.read(&settings) || !options.complete(parser.positionalArguments().first(), &settings))
        return ExitUsage;
    AccountDirectory &directory = context.accounts();
    if (!directory.usable())
        return ExitUnavailable;
    if (!directory.canAdd(settings))
        return ExitFailure;
    QString password;
    const int read = readPassword(parser, *settings.userName, &password);
    if (read != ExitSuccess)
        return read;
    const quint32 credentials = Credentials::store(0, *settings.name, *settings.userName, password);
    if (credentials == 0)
        return ExitUnavailable;
    const EasAccountId id = directory.add(settings, credentials);
    if (id == 0) {
        // A password without an account would stay for ever.
        Credentials::remove(credentials);
        return ExitFailure;
    }
    context.output().done(QStringLiteral("account %1 added").arg(id), directory.describe(id));
    return ExitSuccess;
}

int AccountCommands::edit(CommandContext &context)
{
    QCommandLineParser parser;
    const AccountOptions options(parser);
    EasAccountId id = 0;
    const int selected = selectNamed(context, parser, 0, &id);
    if (selected != ExitSuccess)
        return selected;
    AccountSettings settings;
    if (!options.read(&settings))
        return ExitUsage;
    if (!context.accounts().edit(id, settings))
        return ExitFailure;
    context.output().done(QStringLiteral("account %1 changed").arg(id), context.accounts().describe(id));
    return ExitSuccess;
}

int AccountCommands::list(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return context.exitStatus();
    const AccountDirectory &directory = context.accounts();
    if (!directory.usable())
        return ExitUnavailable;
    QJsonArray rows;
    const QList<EasAccountId> ids = directory.accounts();
    for (const EasAccountId id : ids)
        rows.append(directory.describe(id));
    context.output().rows(
        { { "id", "ID" }, { "name", "NAME" }, { "server", "SERVER" }, { "services", "SERVICES" },
            { "enabled", "ENABLED" }, { "blocked", "BLOCKED" } },
        rows);
    return ExitSuccess;
}

int AccountCommands::show(CommandContext &context)
{
    QCommandLineParser parser;
    EasAccountId id = 0;
    const int selected = selectNamed(context, parser, 0, &id);
    if (selected == ExitSuccess)
        context.output().object(columnsOfOne(), context.accounts().describe(id));
    return selected;
}

int AccountCommands::enable(CommandContext &context)
{
    return switchAccount(context, true);
}

int AccountCommands::disable(CommandContext &context)
{
    return switchAccount(context, false);
}

int AccountCommands::remove(CommandContext &context)
{
    QCommandLineParser parser;
    EasAccountId id = 0;
    const int selected = selectNamed(context, parser, 1, &id);
    if (selected != ExitSuccess)
        return selected;
    const quint32 credentials = context.accounts().credentialsId(id);
    if (!context.accounts().remove(id))
        return ExitFailure;
    if (!Credentials::remove(credentials)) {
        Output::error(
            QStringLiteral("account %1 is removed, but its password is still in the sign-on service")
                .arg(id));
        return ExitFailure;
    }
    context.output().done(QStringLiteral("account %1 removed").arg(id), factsOf(id));
    return ExitSuccess;
}

int AccountCommands::password(CommandContext &context)
{
    QCommandLineParser parser;
    parser.addOptions({ PasswordDescriptor, PasswordCommand });
    EasAccountId id = 0;
    const int selected = selectNamed(context, parser, 0, &id);
    if (selected != ExitSuccess)
        return selected;
    AccountDirectory &directory = context.accounts();
    QString password;
    const int read = readPassword(parser, directory.userName(id), &password);
    if (read != ExitSuccess)
        return read;
    const quint32 credentials = Credentials::store(
        directory.credentialsId(id), QStringLiteral("Exchange"), directory.userName(id), password);
    if (credentials == 0)
        return ExitUnavailable;
    if (!directory.credentialsChanged(id, credentials))
        return ExitFailure;
    context.output().done(QStringLiteral("password of account %1 stored").arg(id), factsOf(id));
    return ExitSuccess;
}
