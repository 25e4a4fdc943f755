// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/foldercommands.h"

#include "client/folderdirectory.h"
#include "client/question.h"
#include "client/requestrun.h"
#include "client/selection.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/easrequeststatus.h"

namespace {

const auto RootFolder = QStringLiteral("0");

const auto NameRefused = QStringLiteral("The server refused the name or the place of the folder.");
const auto OwnFolderRefused = QStringLiteral(
    "The server refused it. Folders of its own, such as the Inbox, can be neither renamed nor deleted.");

const QCommandLineOption KindOption(
    QStringLiteral("kind"), QString(), QStringLiteral("mail|calendar|contacts"), QStringLiteral("mail"));

/** A command's account and its folders of one kind. */
class FolderSelection : public Selection<FolderDirectory>
{
public:
    explicit FolderSelection(CommandContext &context)
        : Selection(context)
    {
        parser().addOption(KindOption);
    }

    FolderDirectory::Kind kind() const { return mKind; }

    /** As in Selection, of the kind that the option names. */
    bool openKind(int fewestArguments, int mostArguments);
    bool find(const QString &folder, LocalFolder *found);
    /** False, after an error, if the name is taken beside the folders of this parent. */
    bool isFree(const QString &name, const QString &parentPath);
    /** Has the server do it, and says so; or what it means that it refused. */
    int run(const DaemonRequest::Call &call, const QString &refused, const QString &done,
        const QJsonObject &facts);

private:
    FolderDirectory::Kind mKind = FolderDirectory::Mail;
};

bool FolderSelection::openKind(int fewestArguments, int mostArguments)
{
    if (!parse(fewestArguments, mostArguments))
        return false;
    if (!FolderDirectory::kindOf(parser().value(KindOption), &mKind))
        return fail(ExitUsage);
    return openStore(mKind);
}

bool FolderSelection::find(const QString &folder, LocalFolder *found)
{
    const LocalFolder *const known = store().find(folder);
    if (!known)
        return fail(ExitNotFound);
    *found = *known;
    return true;
}

bool FolderSelection::isFree(const QString &name, const QString &parentPath)
{
    const QString path = parentPath.isEmpty() ? name : parentPath + QLatin1Char('/') + name;
    for (const LocalFolder &folder : store().folders()) {
        if (folder.path.compare(path, Qt::CaseInsensitive) == 0)
            return fail(ExitFailure, QStringLiteral("there is a folder \"%1\" already").arg(path));
    }
    return true;
}

int FolderSelection::run(
    const DaemonRequest::Call &call, const QString &refused, const QString &done, const QJsonObject &facts)
{
    RequestRun run(context());
    run.add(account(), call);
    run.setExplanation(EasRequestStatus::RequestStatusBadRequest, refused);
    const int result = run.exec();
    context().output().addFacts(run.first().describe());
    if (result == ExitSuccess)
        context().output().done(done, facts);
    return result;
}

/** Whether the user means it; asked on a terminal only. */
bool isConfirmed(const FolderDirectory &directory, const LocalFolder &folder)
{
    int items = folder.items;
    int below = 0;
    for (const LocalFolder &other : directory.folders()) {
        if (other.path.startsWith(folder.path + QLatin1Char('/'))) {
            items += other.items;
            ++below;
        }
    }
    return Question::confirm(
        QStringLiteral("Delete \"%1\" with %2 folder(s) below and %3 item(s) in all, here and "
                       "on the server?")
            .arg(folder.path)
            .arg(below)
            .arg(items));
}

} // namespace

int FolderCommands::list(CommandContext &context)
{
    FolderSelection folders(context);
    if (!folders.openKind(0, 0))
        return folders.exitStatus();
    QJsonArray rows = folders.store().describe();
    if (context.output().isJson()) {
        context.output().rows({}, rows);
        return ExitSuccess;
    }
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        QJsonObject folder = row->toObject();
        folder[QStringLiteral("tree")] =
            QString(2 * folder.value(QStringLiteral("depth")).toInt(), QChar(0x00B7))
            + folder.value(QStringLiteral("name")).toString();
        *row = folder;
    }
    const Columns mail { { "id", "ID" }, { "items", "MESSAGES" }, { "unread", "UNREAD" },
        { "tree", "FOLDER" } };
    const Columns others { { "tree", "FOLDER" }, { "items", "ITEMS" }, { "id", "ID" } };
    context.output().rows(folders.kind() == FolderDirectory::Mail ? mail : others, rows);
    return ExitSuccess;
}

int FolderCommands::create(CommandContext &context)
{
    FolderSelection folders(context);
    const QCommandLineOption parentOption(QStringLiteral("parent"), QString(), QStringLiteral("folder"));
    folders.parser().addOption(parentOption);
    LocalFolder parent;
    parent.id = RootFolder;
    if (!folders.openKind(1, 1))
        return folders.exitStatus();
    if (folders.parser().isSet(parentOption) && !folders.find(folders.parser().value(parentOption), &parent))
        return folders.exitStatus();
    const QString name = folders.argument();
    if (name.isEmpty()) {
        Output::error(QStringLiteral("a folder needs a name"));
        return ExitUsage;
    }
    if (!folders.isFree(name, parent.path))
        return folders.exitStatus();
    return folders.run(
        [&](EasDBusInterfaceProxy &daemon) {
            return daemon.createFolder(folders.account(), name, parent.id, uint(folders.kind()));
        },
        NameRefused, QStringLiteral("folder \"%1\" created").arg(name), { { QStringLiteral("name"), name } });
}

int FolderCommands::rename(CommandContext &context)
{
    FolderSelection folders(context);
    const QCommandLineOption parentOption(QStringLiteral("parent"), QString(), QStringLiteral("folder"));
    const QCommandLineOption root(QStringLiteral("to-root"));
    folders.parser().addOptions({ parentOption, root });
    LocalFolder folder;
    LocalFolder parent; // without an identifier it stays where it is
    if (!folders.openKind(2, 2) || !folders.find(folders.argument(0), &folder))
        return folders.exitStatus();
    if (folders.parser().isSet(root) && folders.parser().isSet(parentOption)) {
        Output::error(QStringLiteral("give --parent or --to-root, not both"));
        return ExitUsage;
    }
    if (folders.parser().isSet(root))
        parent.id = RootFolder;
    else if (folders.parser().isSet(parentOption)
        && !folders.find(folders.parser().value(parentOption), &parent))
        return folders.exitStatus();
    return folders.run(
        [&](EasDBusInterfaceProxy &daemon) {
            return daemon.updateFolder(folders.account(), folder.id, parent.id, folders.argument(1));
        },
        OwnFolderRefused,
        QStringLiteral("folder \"%1\" is now \"%2\"").arg(folders.argument(0), folders.argument(1)),
        { { QStringLiteral("id"), folder.id }, { QStringLiteral("name"), folders.argument(1) } });
}

int FolderCommands::remove(CommandContext &context)
{
    FolderSelection folders(context);
    const QCommandLineOption yes(QStringLiteral("yes"));
    folders.parser().addOption(yes);
    LocalFolder folder;
    if (!folders.openKind(1, 1) || !folders.find(folders.argument(0), &folder))
        return folders.exitStatus();
    if (!folders.parser().isSet(yes) && !isConfirmed(folders.store(), folder)) {
        Output::error(QStringLiteral("nothing was deleted"));
        return ExitCancelled;
    }
    return folders.run(
        [&](EasDBusInterfaceProxy &daemon) { return daemon.deleteFolder(folders.account(), folder.id); },
        OwnFolderRefused, QStringLiteral("folder \"%1\" deleted").arg(folder.path),
        { { QStringLiteral("id"), folder.id } });
}
