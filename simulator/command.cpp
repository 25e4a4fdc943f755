// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"

#include "simulator/protocolversion.h"

namespace Simulator {

const QVector<CommandEntry> &commandTable()
{
    static const QVector<CommandEntry> table {
        { "Sync", handleSync, "AirSync:Sync", Version161 },
        { "SendMail", handleSendMail, "ComposeMail:SendMail", Version161 },
        { "SmartForward", handleSmartForward, "ComposeMail:SmartForward", Version161 },
        { "SmartReply", handleSmartReply, "ComposeMail:SmartReply", Version161 },
        { "GetAttachment", handleGetAttachment, nullptr, Version121 },
        { "FolderSync", handleFolderSync, "FolderHierarchy:FolderSync", Version161 },
        { "FolderCreate", handleFolderCreate, "FolderHierarchy:FolderCreate", Version161 },
        { "FolderDelete", handleFolderDelete, "FolderHierarchy:FolderDelete", Version161 },
        { "FolderUpdate", handleFolderUpdate, "FolderHierarchy:FolderUpdate", Version161 },
        { "MoveItems", handleMoveItems, "Move:MoveItems", Version161 },
        { "MeetingResponse", handleMeetingResponse, "MeetingResponse:MeetingResponse", Version161 },
        { "Search", handleSearch, "Search:Search", Version161 },
        { "Find", handleFind, "Find:Find", Version161 },
        { "Ping", handlePing, "Ping:Ping", Version161 },
        { "ItemOperations", handleItemOperations, "ItemOperations:ItemOperations", Version161 },
        { "ResolveRecipients", handleResolveRecipients, "ResolveRecipients:ResolveRecipients", Version161 },
        { "Settings", handleSettings, "Settings:Settings", Version161 },
        { "Provision", handleProvision, "Provision:Provision", Version161 },
    };
    return table;
}

} // namespace Simulator
