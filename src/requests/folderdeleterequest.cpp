// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/folderdeleterequest.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/folderdeletecommand.h"

#include <QMap>

namespace {

// Statuses of this command alone
constexpr int SystemFolder = 2;
/** What servers really answer. */
constexpr int SystemFolderToo = 3;
constexpr int NoFolder = 4;

constexpr RequestStatusTable::Row refusalRows[] = {
    { Eas::FolderSyncStatusUndefined, QtWarningMsg, "Undefined FolderDelete status. Something went wrong.",
        RequestVerb::Refuse },
    { SystemFolder, QtWarningMsg, "Folder id is a special folder.", RequestVerb::Refuse },
    { SystemFolderToo, QtWarningMsg, "Folder id is a special folder.", RequestVerb::Refuse },
    { NoFolder, QtWarningMsg, "Folder does not exist: \"%1\"", RequestVerb::Refuse },
    { Eas::FolderSyncStatusWrongSyncKey, QtWarningMsg, "wrong sync key, need to resync account",
        RequestVerb::Refuse },
    { Eas::FolderSyncStatusWrongRequest, QtWarningMsg,
        "Sent a bad request. Tried to delete a default folder?", RequestVerb::Refuse },
};
static_assert(RequestStatusTable(refusalRows).namesEachStatusOnce());

} // namespace

FolderDeleteRequest::FolderDeleteRequest(
    EasAccountId accountId, const QString &folderLocalId, quint64 requestId, QObject *parent)
    : FolderManagementRequest(accountId, requestId, parent)
    , mFolderLocalId(folderLocalId)
{
}

QString FolderDeleteRequest::commandName() const
{
    return ProtocolUtils::CommandFolderDelete;
}

const FolderManagementRequest::Texts &FolderDeleteRequest::texts() const
{
    static const Texts texts {
        "FolderDelete command is null",
        { "Failed to delete calendar folder", "Failed to delete contacts folder",
            "Failed to delete mail folder" },
        "failed to update deleted folder in EAS DB",
    };
    return texts;
}

RequestStatusTable FolderDeleteRequest::refusals() const
{
    return RequestStatusTable(refusalRows);
}

QString FolderDeleteRequest::refusedSubject(int) const
{
    return mServerId;
}

bool FolderDeleteRequest::translate()
{
    mServerId = serverFolderId(mFolderLocalId);
    return !mServerId.isEmpty();
}

FolderCommand *FolderDeleteRequest::createCommand()
{
    auto *const command = newCommand<FolderDeleteCommand>();
    command->setServerId(mServerId);
    return command;
}

std::optional<FolderChanges> FolderDeleteRequest::agreedChanges()
{
    // The server deletes what is below the folder, too, and may never mention it.
    const Lookup<QMap<QString, QString>> parents =
        EasDatabase::instance()->serverFolderParentIds(accountId());
    if (!parents) {
        qCCritical(eas()) << "failed to read folders from EAS DB";
        return std::nullopt;
    }
    QStringList deleted { mServerId };
    for (int i = 0; i < deleted.size(); ++i) {
        const QStringList children = parents->keys(deleted.at(i));
        for (const QString &child : children) {
            if (!deleted.contains(child))
                deleted.append(child);
        }
    }
    return FolderChanges { {}, {}, deleted };
}
