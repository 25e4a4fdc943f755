// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/folderdeletecommand.h"

#include "easitems/algorithms/folderdeleteresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

FolderDeleteCommand::FolderDeleteCommand(EasAccountId accountId, QObject *parent)
    : FolderCommand(accountId, parent)
{
}

QString FolderDeleteCommand::commandName() const
{
    return ProtocolUtils::CommandFolderDelete;
}

BaseProtocolCommand::ExchangeTexts FolderDeleteCommand::texts() const
{
    return { "Sending folder delete command via POST:", "Received folder delete command reply:", nullptr };
}

const char *FolderDeleteCommand::refusal() const
{
    return mServerId.isEmpty() ? "Invalid folder id" : nullptr;
}

void FolderDeleteCommand::encodeFolder(WbxmlEncoder &encoder) const
{
    encoder.appendElement(FolderHierarchy::FolderDelete, true);
    encoder.appendTextElement(FolderHierarchy::SyncKey, syncKey());
    encoder.appendTextElement(FolderHierarchy::ServerId, mServerId);
}

bool FolderDeleteCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    FolderDeleteResponseParser parser;
    return readReply(parser, body,
        { "Successfully parsed folder delete command response!",
            "Failed to parse folder delete command response!" });
}
