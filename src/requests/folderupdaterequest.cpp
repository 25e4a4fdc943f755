// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/folderupdaterequest.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/folderupdatecommand.h"
#include "protocol/wbxml/wbxmltokens.h"

namespace {

// Statuses of this command alone
constexpr int NameExists = 2;
constexpr int SystemFolder = 3;
constexpr int NoFolder = 4;
constexpr int NoParent = 5;

constexpr RequestStatusTable::Row refusalRows[] = {
    { Eas::FolderSyncStatusUndefined, QtWarningMsg, "Undefined FolderUpdate status. Something went wrong.",
        RequestVerb::Refuse },
    { NameExists, QtWarningMsg,
        "Folder with a name \"%1\" already exists on a server, need to request a new name",
        RequestVerb::Refuse },
    { SystemFolder, QtWarningMsg, "Folder id is a special folder.", RequestVerb::Refuse },
    { NoFolder, QtWarningMsg, "Folder does not exist: \"%1\"", RequestVerb::Refuse },
    { NoParent, QtWarningMsg, "Parent folder does not exist: \"%1\"", RequestVerb::Refuse },
    { Eas::FolderSyncStatusWrongSyncKey, QtWarningMsg, "Wrong sync key, need to resync account",
        RequestVerb::Refuse },
    { Eas::FolderSyncStatusWrongRequest, QtWarningMsg,
        "Sent a bad request. Tried to update a default folder?", RequestVerb::Refuse },
};
static_assert(RequestStatusTable(refusalRows).namesEachStatusOnce());

} // namespace

FolderUpdateRequest::FolderUpdateRequest(EasAccountId accountId, const QString &folderLocalId,
    const QString &parentLocalId, const QString &displayName, quint64 requestId, QObject *parent)
    : FolderManagementRequest(accountId, requestId, parent)
    , mFolderLocalId(folderLocalId)
    , mParentLocalId(parentLocalId)
    , mDisplayName(displayName)
{
}

QString FolderUpdateRequest::commandName() const
{
    return ProtocolUtils::CommandFolderUpdate;
}

const FolderManagementRequest::Texts &FolderUpdateRequest::texts() const
{
    static const Texts texts {
        "FolderUpdate command is null",
        { "Failed to update calendar folder", "Failed to update contacts folder",
            "Failed to update mail folder" },
        "failed to update changed folder in EAS DB",
    };
    return texts;
}

RequestStatusTable FolderUpdateRequest::refusals() const
{
    return RequestStatusTable(refusalRows);
}

QString FolderUpdateRequest::refusedSubject(int status) const
{
    if (status == NameExists)
        return mDisplayName;
    return status == NoParent ? mServerParentId : mServerId;
}

bool FolderUpdateRequest::translate()
{
    if (!acceptDisplayName(mDisplayName))
        return false;
    mServerId = serverFolderId(mFolderLocalId);
    if (mServerId.isEmpty())
        return false;
    mServerParentId = mParentLocalId.isEmpty() ? presentParentId() : serverParentId(mParentLocalId);
    return !mServerParentId.isEmpty();
}

QString FolderUpdateRequest::presentParentId()
{
    const char *const failure = "failed to find the present parent of the folder";
    const Lookup<QMap<QString, QString>> parents =
        EasDatabase::instance()->serverFolderParentIds(accountId());
    if (!parents) {
        qCCritical(eas()) << failure;
        completeWith(RequestStatusInternalError);
        return QString();
    }
    const QString parentId = parents->value(mServerId);
    if (parentId.isEmpty())
        refuse(failure);
    return parentId;
}

FolderCommand *FolderUpdateRequest::createCommand()
{
    auto *const command = newCommand<FolderUpdateCommand>();
    command->setServerId(mServerId);
    command->setParentId(mServerParentId);
    command->setDisplayName(mDisplayName);
    return command;
}

std::optional<FolderChanges> FolderUpdateRequest::agreedChanges()
{
    EasFolderItem item;
    item.setServerId(mServerId);
    item.setServerParentId(mServerParentId);
    item.setDisplayName(mDisplayName);
    item.appendChangedField(Wbxml::FolderHierarchy::ParentId.key());
    item.appendChangedField(Wbxml::FolderHierarchy::DisplayName.key());
    return FolderChanges { {}, { item }, {} };
}
