// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/synccommands.h"

#include "client/cancellation.h"
#include "client/commandcontext.h"
#include "client/daemonproxy.h"
#include "client/folderdirectory.h"
#include "client/requestrun.h"
#include "client/signalprinter.h"
#include "client/syncsummary.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QSettings>

#include <memory>

namespace {

const QCommandLineOption FolderOption(QStringLiteral("folder"), QString(), QStringLiteral("folder"));
const QCommandLineOption KindOption(
    QStringLiteral("kind"), QString(), QStringLiteral("kind"), QStringLiteral("mail"));
const QCommandLineOption ServiceOption(QStringLiteral("service"), QString(), QStringLiteral("name"));
const QCommandLineOption HierarchyOption(QStringLiteral("folders-only"));

/** A call without a result; the exit status. */
template <class Call> int tell(Call call)
{
    const std::unique_ptr<EasDBusInterfaceProxy> daemon = DaemonProxy::create();
    QDBusPendingReply<> reply = call(*daemon);
    reply.waitForFinished();
    return reply.isError() ? DaemonProxy::unreachable(reply.error()) : int(ExitSuccess);
}

/** What is to be brought in step, by the options of the command. */
class SyncScope
{
public:
    explicit SyncScope(QCommandLineParser &parser)
        : mParser(parser)
    {
        parser.addOptions({ FolderOption, KindOption, ServiceOption, HierarchyOption });
    }

    /** False, after an error was printed, if the options make no sense. */
    bool read()
    {
        const int given = int(mParser.isSet(FolderOption)) + int(mParser.isSet(ServiceOption))
            + int(mParser.isSet(HierarchyOption));
        if (given > 1) {
            Output::error(QStringLiteral("give one of --folder, --service and --folders-only"));
            return false;
        }
        if (mParser.isSet(ServiceOption)) {
            const QString service = mParser.value(ServiceOption);
            if (!CommandContext::isOneOf(service, FolderDirectory::kinds(), QStringLiteral("--service")))
                return false;
            mServices = 1 << FolderDirectory::kinds().indexOf(service);
        }
        return FolderDirectory::kindOf(mParser.value(KindOption), &mKind);
    }

    /** The folders of the account by the names that were given; the exit status. */
    int findFolders(EasAccountId account)
    {
        if (!mParser.isSet(FolderOption))
            return ExitSuccess;
        FolderDirectory directory(account, mKind);
        if (!directory.open())
            return ExitUnavailable;
        const QStringList names = mParser.values(FolderOption);
        for (const QString &name : names) {
            const LocalFolder *const folder = directory.find(name);
            if (!folder)
                return ExitNotFound;
            mFolders.append(folder->id);
        }
        return ExitSuccess;
    }
    bool namesFolders() const { return mParser.isSet(FolderOption); }

    QDBusPendingReply<qulonglong> call(EasDBusInterfaceProxy &daemon, EasAccountId account) const
    {
        if (mParser.isSet(HierarchyOption))
            return daemon.foldersSync(account);
        if (!mFolders.isEmpty())
            return daemon.syncFolders(account, mFolders);
        return mServices != 0 ? daemon.syncService(account, mServices) : daemon.sync(account);
    }

private:
    QCommandLineParser &mParser;
    FolderDirectory::Kind mKind = FolderDirectory::Mail;
    QStringList mFolders;
    int mServices = 0;
};

} // namespace

int SyncCommands::sync(CommandContext &context)
{
    QCommandLineParser parser;
    SyncScope scope(parser);
    if (!context.parse(parser, 0, 0))
        return context.exitStatus();
    if (!scope.read())
        return ExitUsage;
    QList<EasAccountId> accounts;
    const int selected = context.selectAccounts(&accounts);
    if (selected != ExitSuccess)
        return selected;
    const int enabled = context.requireEnabled(accounts);
    if (enabled != ExitSuccess)
        return enabled;
    if (scope.namesFolders() && accounts.size() > 1) {
        Output::error(QStringLiteral("--folder needs --account, as there are several accounts"));
        return ExitUsage;
    }
    const int found = scope.findFolders(accounts.first());
    if (found != ExitSuccess)
        return found;

    SyncSummary summary(context);
    RequestRun run(context);
    for (const EasAccountId account : qAsConst(accounts)) {
        summary.begin(account);
        run.add(account,
            [&scope, account](EasDBusInterfaceProxy &daemon) { return scope.call(daemon, account); });
    }
    const int result = run.exec();
    for (const DaemonRequest *request : run.requests())
        summary.end(*request);
    summary.print();
    return result;
}

int SyncCommands::cancel(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 1, 1))
        return context.exitStatus();
    bool isNumber = false;
    const qulonglong request = parser.positionalArguments().first().toULongLong(&isNumber);
    if (!isNumber || request == 0) {
        Output::error(QStringLiteral("cancel needs the number of a request"));
        return ExitUsage;
    }
    EasAccountId account = 0;
    const int selected = context.selectAccount(&account);
    if (selected != ExitSuccess)
        return selected;
    const int result = Cancellation(account, request).exec();
    if (result == ExitSuccess)
        context.output().done(QStringLiteral("request %1 cancelled").arg(request),
            { { QStringLiteral("request"), QString::number(request) } });
    return result;
}

int SyncCommands::watch(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return context.exitStatus();
    SignalPrinter printer(context.output());
    if (!printer.start())
        return ExitUnavailable;
    // The bus answers behind the wish to listen, so nothing is missed from here on.
    Output::note(DaemonProxy::isDaemonRunning()
            ? QStringLiteral("watching the daemon; an interrupt (Ctrl-C) ends it")
            : QStringLiteral("watching; the daemon does not run, its signals come when it does"));
    return QCoreApplication::exec();
}

int SyncCommands::log(CommandContext &context)
{
    static const QStringList levels { QStringLiteral("debug"), QStringLiteral("info"),
        QStringLiteral("warning"), QStringLiteral("critical") };
    QCommandLineParser parser;
    if (!context.parse(parser, 1, 1))
        return context.exitStatus();
    const QString level = parser.positionalArguments().first();
    if (!CommandContext::isOneOf(level, levels, QStringLiteral("the level")))
        return ExitUsage;
    QSettings settings(QSettings::UserScope, QStringLiteral("eas-fennel"), QStringLiteral("eas-fennel"));
    settings.beginGroup(QStringLiteral("logging"));
    for (const char *category : { "Fennel.eas", "Fennel.easwbxml", "Fennel.easnetwork" })
        settings.setValue(QLatin1String(category), level.left(1));
    settings.endGroup();
    settings.sync();
    if (settings.status() != QSettings::NoError) {
        Output::error(QStringLiteral("cannot write %1").arg(settings.fileName()));
        return ExitFailure;
    }
    const int result = tell([](EasDBusInterfaceProxy &daemon) { return daemon.reconfig(); });
    if (result == ExitSuccess)
        context.output().done(QStringLiteral("the daemon logs %1 and above").arg(level),
            { { QStringLiteral("level"), level } });
    return result;
}

int SyncCommands::quit(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return context.exitStatus();
    // A call would start it.
    if (QDBusConnection::sessionBus().isConnected() && !DaemonProxy::isDaemonRunning()) {
        context.output().done(QStringLiteral("the daemon does not run"));
        return ExitSuccess;
    }
    const int result = tell([](EasDBusInterfaceProxy &daemon) { return daemon.quit(); });
    if (result == ExitSuccess)
        context.output().done(QStringLiteral("the daemon ends; it starts again with the next call"));
    return result;
}
