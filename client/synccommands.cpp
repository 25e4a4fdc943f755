// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/synccommands.h"

#include "client/commandcontext.h"
#include "client/daemonrequest.h"
#include "client/exitstatus.h"
#include "client/mailview.h"
#include "client/signalprinter.h"
#include "client/statustext.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QSettings>

#include <memory>

namespace {

std::unique_ptr<EasDBusInterfaceProxy> daemonProxy()
{
    return std::make_unique<EasDBusInterfaceProxy>(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus());
}

int finished(const QDBusPendingReply<> &call)
{
    QDBusPendingReply<> reply = call;
    reply.waitForFinished();
    if (!reply.isError())
        return ExitSuccess;
    Output::error(QStringLiteral("the daemon cannot be reached: %1").arg(reply.error().message()));
    return ExitUnavailable;
}

const QMap<QString, int> &services()
{
    static const QMap<QString, int> bits { { QStringLiteral("mail"), 1 }, { QStringLiteral("calendar"), 2 },
        { QStringLiteral("contacts"), 4 } };
    return bits;
}

/** The folders by local identifier; false, after an error, if one is unknown. */
bool findFolders(EasAccountId accountId, const QStringList &names, QStringList *localIds)
{
    for (const QString &name : names) {
        const QMailFolderId id = MailView::findFolder(accountId, name);
        if (!id.isValid()) {
            Output::error(QStringLiteral("there is no folder \"%1\"").arg(name));
            return false;
        }
        localIds->append(QString::number(id.toULongLong()));
    }
    return true;
}

} // namespace

int SyncCommands::sync(const CommandContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption folder(QStringLiteral("folder"), QString(), QStringLiteral("folder"));
    const QCommandLineOption service(QStringLiteral("service"), QString(), QStringLiteral("name"));
    const QCommandLineOption hierarchy(QStringLiteral("folders-only"));
    parser.addOptions({ folder, service, hierarchy });
    if (!context.parse(parser, 0, 0))
        return ExitUsage;
    const int bit = services().value(parser.value(service));
    if (parser.isSet(service) && bit == 0) {
        Output::error(QStringLiteral("--service is one of mail, calendar, contacts"));
        return ExitUsage;
    }
    const EasAccountId id = context.accountId();
    QStringList folders;
    if (id == 0 || !findFolders(id, parser.values(folder), &folders))
        return ExitNotFound;

    QElapsedTimer timer;
    timer.start();
    DaemonRequest request(id, context.showsProgress());
    const int result = request.run([&](EasDBusInterfaceProxy &daemon) {
        if (parser.isSet(hierarchy))
            return daemon.foldersSync(id);
        if (!folders.isEmpty())
            return daemon.syncFolders(id, folders);
        return bit != 0 ? daemon.syncService(id, bit) : daemon.sync(id);
    });
    if (context.output().isJson()) {
        context.output().object({ { QStringLiteral("status"), request.status() },
            { QStringLiteral("name"), StatusText::name(request.status()) },
            { QStringLiteral("milliseconds"), double(timer.elapsed()) } });
    } else if (result == ExitSuccess) {
        context.output().message(
            QStringLiteral("account %1 is in step (%2 s)").arg(id).arg(timer.elapsed() / 1000.0, 0, 'f', 1));
    }
    return result;
}

int SyncCommands::cancel(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 1, 1))
        return ExitUsage;
    bool isNumber = false;
    const qulonglong request = parser.positionalArguments().first().toULongLong(&isNumber);
    if (!isNumber) {
        Output::error(QStringLiteral("cancel needs the number of a request"));
        return ExitUsage;
    }
    const EasAccountId id = context.accountId();
    return id == 0 ? int(ExitNotFound) : finished(daemonProxy()->cancelRequest(id, request));
}

int SyncCommands::watch(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return ExitUsage;
    SignalPrinter printer(context.output());
    return printer.start() ? QCoreApplication::exec() : int(ExitUnavailable);
}

int SyncCommands::log(const CommandContext &context)
{
    static const QStringList levels { QStringLiteral("debug"), QStringLiteral("info"),
        QStringLiteral("warning"), QStringLiteral("critical") };
    QCommandLineParser parser;
    if (!context.parse(parser, 1, 1))
        return ExitUsage;
    const QString level = parser.positionalArguments().first();
    if (!levels.contains(level)) {
        Output::error(QStringLiteral("the level is one of %1").arg(levels.join(QStringLiteral(", "))));
        return ExitUsage;
    }
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
    const int result = finished(daemonProxy()->reconfig());
    if (result == ExitSuccess)
        context.output().message(QStringLiteral("the daemon logs %1 and above").arg(level));
    return result;
}

int SyncCommands::quit(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return ExitUsage;
    return finished(daemonProxy()->quit());
}
