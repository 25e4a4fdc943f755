// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/foldercreaterequest.h"

#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldercreatecommand.h"

#include <algorithm>
#include <iterator>

namespace {

struct KindOfFolder
{
    uint kind;
    EasFolderItem::FolderType type;
};

constexpr KindOfFolder KindsOfFolders[] = {
    { 0, EasFolderItem::UserCreatedMailFolder },
    { 1, EasFolderItem::UserCreatedCalendarFolder },
    { 2, EasFolderItem::UserCreatedContactsFolder },
};

} // namespace

FolderCreateRequest::FolderCreateRequest(EasAccountId accountId, const QString &parentLocalId,
    const QString &displayName, uint kind, quint64 requestId, QObject *parent)
    : FolderManagementRequest(accountId, requestId, parent)
    , mParentLocalId(parentLocalId)
    , mDisplayName(displayName)
    , mKind(kind)
{
}

QString FolderCreateRequest::commandName() const
{
    return ProtocolUtils::CommandFolderCreate;
}

const FolderManagementRequest::Texts &FolderCreateRequest::texts() const
{
    static const Texts texts {
        "Undefined FolderCreate status. Something went wrong.",
        "Sent a bad request. Tried to create a default folder?",
        "wrong sync key, need to resync account",
        "FolderCreate command is null",
        { "Failed to create calendar folder", "Failed to create contact folder",
            "Failed to create mail folder" },
        "failed to update created folder in EAS DB",
    };
    return texts;
}

Request::StatusRows FolderCreateRequest::refusals()
{
    return {
        refusal(
            2, "Folder with a name", mDisplayName, "already exists on a server, need to request a new name"),
        refusal(3, "Parent folder is a recipient information folder"),
        refusal(5, "Invalid parent folder id."),
        refusal(12, "Unusual back-end issue on the server."),
    };
}

bool FolderCreateRequest::translate()
{
    if (!acceptDisplayName(mDisplayName))
        return false;
    const auto type = std::find_if(std::begin(KindsOfFolders), std::end(KindsOfFolders),
        [this](const KindOfFolder &known) { return known.kind == mKind; });
    if (type == std::end(KindsOfFolders))
        return refuse("Unsupported custom folder type in folder create request");
    mType = type->type;
    mServerParentId = serverParentId(mParentLocalId);
    return !mServerParentId.isEmpty();
}

FolderCommand *FolderCreateRequest::createCommand()
{
    auto *const command = newCommand<FolderCreateCommand>();
    command->setType(mType);
    command->setParentId(mServerParentId);
    command->setDisplayName(mDisplayName);
    return command;
}

std::optional<FolderChanges> FolderCreateRequest::agreedChanges()
{
    const auto *const command = qobject_cast<FolderCreateCommand *>(currentCommand());
    EasFolderItem item;
    item.setServerId(command->serverId());
    item.setServerParentId(mServerParentId);
    item.setDisplayName(mDisplayName);
    item.setType(mType);
    if (!item.serverId().isEmpty())
        return FolderChanges { { item }, {}, {} };
    qCCritical(eas()) << "The server has not named the new folder";
    return std::nullopt;
}
