// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/folderupdatecommand.h"

#include "easitems/algorithms/folderupdateresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

FolderUpdateCommand::FolderUpdateCommand(EasAccountId accountId, QObject *parent)
    : FolderCommand(accountId, parent)
{
}

QString FolderUpdateCommand::commandName() const
{
    return ProtocolUtils::CommandFolderUpdate;
}

BaseProtocolCommand::ExchangeTexts FolderUpdateCommand::texts() const
{
    return { "Sending folder update command via POST:", "Received folder update command reply:", nullptr };
}

const char *FolderUpdateCommand::refusal() const
{
    if (mServerId.isEmpty())
        return "Invalid folder id";
    return mParentId.isEmpty() ? "Invalid parent folder id" : nullptr;
}

void FolderUpdateCommand::encodeFolder(WbxmlEncoder &encoder) const
{
    encoder.appendElement(FolderHierarchy::FolderUpdate, true);
    encoder.appendTextElement(FolderHierarchy::SyncKey, syncKey());
    encoder.appendTextElement(FolderHierarchy::ServerId, mServerId);
    encoder.appendTextElement(FolderHierarchy::ParentId, mParentId);
    encoder.appendTextElement(FolderHierarchy::DisplayName, mDisplayName);
}

bool FolderUpdateCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    FolderUpdateResponseParser parser;
    return readReply(parser, body,
        { "Successfully parsed folder update command response!",
            "Failed to parse folder update command response!" });
}
