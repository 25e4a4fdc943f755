// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/foldercreaterequest.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"
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

// Statuses of this command alone
constexpr int NameExists = 2;
constexpr int RecipientFolder = 3;
constexpr int NoParent = 5;

constexpr RequestStatusTable::Row refusalRows[] = {
    { Eas::FolderSyncStatusUndefined, QtWarningMsg, "Undefined FolderCreate status. Something went wrong.",
        RequestVerb::Refuse },
    { NameExists, QtWarningMsg,
        "Folder with a name \"%1\" already exists on a server, need to request a new name",
        RequestVerb::Refuse },
    { RecipientFolder, QtWarningMsg, "Parent folder is a recipient information folder", RequestVerb::Refuse },
    { NoParent, QtWarningMsg, "Invalid parent folder id.", RequestVerb::Refuse },
    { Eas::FolderSyncStatusWrongSyncKey, QtWarningMsg, "wrong sync key, need to resync account",
        RequestVerb::Refuse },
    { Eas::FolderSyncStatusWrongRequest, QtWarningMsg,
        "Sent a bad request. Tried to create a default folder?", RequestVerb::Refuse },
    { Eas::FolderSyncStatusCodeUnknown, QtWarningMsg, "Unusual back-end issue on the server.",
        RequestVerb::Refuse },
};
static_assert(RequestStatusTable(refusalRows).namesEachStatusOnce());

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
        "FolderCreate command is null",
        { "Failed to create calendar folder", "Failed to create contact folder",
            "Failed to create mail folder" },
        "failed to update created folder in EAS DB",
    };
    return texts;
}

RequestStatusTable FolderCreateRequest::refusals() const
{
    return RequestStatusTable(refusalRows);
}

QString FolderCreateRequest::refusedSubject(int) const
{
    return mDisplayName;
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
