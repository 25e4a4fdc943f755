// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/folderupdaterequest.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"
#include "protocol/folderupdatecommand.h"
#include "protocol/wbxml/wbxmltokens.h"

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
        "Undefined FolderUpdate status. Something went wrong.",
        "Sent a bad request. Tried to update a default folder?",
        "Wrong sync key, need to resync account",
        "FolderUpdate command is null",
        { "Failed to update calendar folder", "Failed to update contacts folder",
            "Failed to update mail folder" },
        "failed to update changed folder in EAS DB",
    };
    return texts;
}

Request::StatusRows FolderUpdateRequest::refusals()
{
    return {
        refusal(
            2, "Folder with a name", mDisplayName, "already exists on a server, need to request a new name"),
        refusal(3, "Folder id is a special folder."),
        refusal(4, "Folder does not exist:", mServerId),
        refusal(5, "Parent folder does not exist:", mServerParentId),
    };
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
