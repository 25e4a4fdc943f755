// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/peoplecommand.h"

#include "client/commandcontext.h"
#include "client/daemonproxy.h"
#include "client/directorylistener.h"
#include "client/picturefolder.h"
#include "client/requestrun.h"
#include "client/searchanswer.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>

#include <memory>

namespace {

constexpr int UsualLimit = 100;
constexpr int HighestLimit = 1000;

/** What the arguments say. */
struct Wanted
{
    QString text;
    int limit = 0;
    /** Null if the pictures are not wanted as files. */
    QString pictures;
    EasAccountId account = 0;
};

/** The exit status. */
int read(CommandContext &context, Wanted *wanted)
{
    QCommandLineParser parser;
    const QCommandLineOption pictures(QStringLiteral("pictures"), QString(), QStringLiteral("folder"));
    const QString limit = QStringLiteral("limit");
    parser.addOption(pictures);
    parser.addOption(QCommandLineOption(limit, QString(), QStringLiteral("number")));
    if (!context.parse(parser, 1, -1))
        return context.exitStatus();
    const std::optional<int> number = CommandContext::number(parser, limit, UsualLimit, 1, HighestLimit);
    if (!number)
        return ExitUsage;
    wanted->text = parser.positionalArguments().join(QLatin1Char(' '));
    wanted->limit = *number;
    if (parser.isSet(pictures))
        wanted->pictures = parser.value(pictures);
    const int selected = context.selectAccount(&wanted->account);
    return selected == ExitSuccess ? context.requireEnabled({ wanted->account }) : selected;
}

QJsonObject describePerson(const GalItem &person)
{
    return {
        { QStringLiteral("name"), person.displayName() },
        { QStringLiteral("email"), person.emailAddress() },
        { QStringLiteral("firstName"), person.firstName() },
        { QStringLiteral("lastName"), person.lastName() },
        { QStringLiteral("alias"), person.alias() },
        { QStringLiteral("company"), person.company() },
        { QStringLiteral("title"), person.title() },
        { QStringLiteral("office"), person.office() },
        { QStringLiteral("phone"), person.phone() },
        { QStringLiteral("mobile"), person.mobilePhone() },
        { QStringLiteral("homePhone"), person.homePhone() },
        { QStringLiteral("picture"), person.pictureData() },
    };
}

Columns personColumns(bool withFiles)
{
    Columns columns { { "name", "NAME" }, { "email", "ADDRESS" }, { "company", "COMPANY" },
        { "title", "TITLE" }, { "office", "OFFICE" }, { "phone", "PHONE" }, { "mobile", "MOBILE" } };
    if (withFiles)
        columns.append(Column { "pictureFile", "PICTURE" });
    return columns;
}

/** Has the daemon run, which is started by the first call that it gets; the exit status. */
int wakeDaemon(EasAccountId account)
{
    const std::unique_ptr<EasDBusInterfaceProxy> daemon = DaemonProxy::create();
    QDBusPendingReply<int> version = daemon->protocolVersion(account);
    version.waitForFinished();
    return version.isError() ? DaemonProxy::unreachable(version.error()) : int(ExitSuccess);
}

void print(CommandContext &context, const QList<GalItem> &people, PictureFolder *folder)
{
    QJsonArray rows;
    for (const GalItem &person : people) {
        QJsonObject row = describePerson(person);
        if (folder) {
            row.remove(QStringLiteral("picture"));
            row[QStringLiteral("pictureFile")] = folder->write(person);
        }
        rows.append(row);
    }
    context.output().rows(personColumns(folder), rows);
}

/** Has the daemon search, and prints what comes; the exit status. */
int ask(CommandContext &context, const Wanted &wanted, DirectoryListener &listener, PictureFolder *folder)
{
    RequestRun run(context);
    const DaemonRequest &request = run.add(wanted.account, [&wanted](EasDBusInterfaceProxy &daemon) {
        return daemon.searchGAL(wanted.account, wanted.text, 0, wanted.limit - 1, false, false);
    });
    const SearchAnswer answer(run, request);
    const int result = run.exec();
    if (result != ExitSuccess)
        return result;
    const QList<GalItem> people = listener.people(request.requestId(), answer.matches());
    print(context, people, folder);
    const int missing = answer.matches().size() - people.size();
    if (missing > 0) {
        Output::error(QStringLiteral("%1 of the people that were found did not arrive").arg(missing));
        return ExitUnavailable;
    }
    if (int(answer.count()) > people.size())
        Output::note(QStringLiteral("%1 of %2 people; a larger --limit shows the others")
                         .arg(people.size())
                         .arg(answer.count()));
    return folder && folder->hasFailed() ? ExitFailure : ExitSuccess;
}

} // namespace

int PeopleCommand::people(CommandContext &context)
{
    Wanted wanted;
    int status = read(context, &wanted);
    if (status != ExitSuccess)
        return status;
    PictureFolder folder(wanted.pictures);
    if (!wanted.pictures.isNull() && !folder.open())
        return ExitFailure;
    status = wakeDaemon(wanted.account);
    if (status != ExitSuccess)
        return status;
    DirectoryListener listener;
    if (!listener.listen()) {
        Output::error(
            QStringLiteral("the daemon cannot be reached beside the bus, where it tells of people"));
        return ExitUnavailable;
    }
    return ask(context, wanted, listener, wanted.pictures.isNull() ? nullptr : &folder);
}
