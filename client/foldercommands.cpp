// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/foldercommands.h"

#include "client/commandcontext.h"
#include "client/daemonrequest.h"
#include "client/exitstatus.h"
#include "client/folderdirectory.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>

#include <memory>

namespace {

const auto RootFolder = QStringLiteral("0");

const QCommandLineOption KindOption(
    QStringLiteral("kind"), QString(), QStringLiteral("mail|calendar|contacts"), QStringLiteral("mail"));

/** What every command on folders starts with: arguments, an account, the folders of one kind. */
class FolderSelection
{
public:
    explicit FolderSelection(const CommandContext &context)
        : mContext(context)
    {
        mParser.addOption(KindOption);
    }

    QCommandLineParser &parser() { return mParser; }
    QString argument(int index) const { return mParser.positionalArguments().value(index); }
    EasAccountId account() const { return mAccount; }
    FolderDirectory::Kind kind() const { return mKind; }
    int exitStatus() const { return mExitStatus; }

    /** False, with exitStatus() set and an error printed, if there is nothing to work on. */
    bool open(int arguments);
    bool find(const QString &folder, QString *localId);
    /** Has the server do it, and says so. */
    int run(const DaemonRequest::Call &call, const QString &done);

private:
    bool fail(int exitStatus)
    {
        mExitStatus = exitStatus;
        return false;
    }

    const CommandContext &mContext;
    QCommandLineParser mParser;
    EasAccountId mAccount = 0;
    FolderDirectory::Kind mKind = FolderDirectory::Mail;
    std::unique_ptr<FolderDirectory> mDirectory;
    int mExitStatus = ExitSuccess;
};

bool FolderSelection::open(int arguments)
{
    if (!mContext.parse(mParser, arguments, arguments)
        || !FolderDirectory::kindOf(mParser.value(KindOption), &mKind))
        return fail(ExitUsage);
    mAccount = mContext.accountId();
    if (mAccount == 0)
        return fail(ExitNotFound);
    mDirectory = std::make_unique<FolderDirectory>(mAccount, mKind);
    return mDirectory->open() || fail(ExitUnavailable);
}

bool FolderSelection::find(const QString &folder, QString *localId)
{
    *localId = mDirectory->find(folder);
    return !localId->isEmpty() || fail(ExitNotFound);
}

int FolderSelection::run(const DaemonRequest::Call &call, const QString &done)
{
    DaemonRequest request(mAccount, mContext.showsProgress());
    const int result = request.run(call);
    if (result == ExitSuccess)
        mContext.output().message(done);
    return result;
}

} // namespace

int FolderCommands::create(const CommandContext &context)
{
    FolderSelection folders(context);
    const QCommandLineOption parent(QStringLiteral("parent"), QString(), QStringLiteral("folder"));
    folders.parser().addOption(parent);
    QString parentId = RootFolder;
    if (!folders.open(1))
        return folders.exitStatus();
    if (folders.parser().isSet(parent) && !folders.find(folders.parser().value(parent), &parentId))
        return folders.exitStatus();
    return folders.run(
        [&](EasDBusInterfaceProxy &daemon) {
            return daemon.createFolder(
                folders.account(), folders.argument(0), parentId, uint(folders.kind()));
        },
        QStringLiteral("folder \"%1\" created").arg(folders.argument(0)));
}

int FolderCommands::rename(const CommandContext &context)
{
    FolderSelection folders(context);
    const QCommandLineOption parent(QStringLiteral("parent"), QString(), QStringLiteral("folder"));
    const QCommandLineOption root(QStringLiteral("to-root"));
    folders.parser().addOptions({ parent, root });
    QString folderId;
    QString parentId; // it stays where it is
    if (!folders.open(2) || !folders.find(folders.argument(0), &folderId))
        return folders.exitStatus();
    if (folders.parser().isSet(root))
        parentId = RootFolder;
    else if (folders.parser().isSet(parent) && !folders.find(folders.parser().value(parent), &parentId))
        return folders.exitStatus();
    return folders.run(
        [&](EasDBusInterfaceProxy &daemon) {
            return daemon.updateFolder(folders.account(), folderId, parentId, folders.argument(1));
        },
        QStringLiteral("folder \"%1\" is now \"%2\"").arg(folders.argument(0), folders.argument(1)));
}

int FolderCommands::remove(const CommandContext &context)
{
    FolderSelection folders(context);
    QString folderId;
    if (!folders.open(1) || !folders.find(folders.argument(0), &folderId))
        return folders.exitStatus();
    return folders.run(
        [&](EasDBusInterfaceProxy &daemon) { return daemon.deleteFolder(folders.account(), folderId); },
        QStringLiteral("folder \"%1\" deleted").arg(folders.argument(0)));
}
