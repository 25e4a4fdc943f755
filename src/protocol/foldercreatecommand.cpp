// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/foldercreatecommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/foldercreateresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

FolderCreateCommand::FolderCreateCommand(EasAccountId accountId, QObject *parent)
    : FolderCommand(accountId, parent)
{
}

QString FolderCreateCommand::commandName() const
{
    return ProtocolUtils::CommandFolderCreate;
}

BaseProtocolCommand::ExchangeTexts FolderCreateCommand::texts() const
{
    return { "Sending folder create command via POST:", "Received folder create command reply:", nullptr };
}

const char *FolderCreateCommand::refusal() const
{
    const bool creatable = mType == EasFolderItem::UserCreatedMailFolder
        || mType == EasFolderItem::UserCreatedCalendarFolder
        || mType == EasFolderItem::UserCreatedContactsFolder;
    if (!creatable)
        return "Only creation of UserCreatedMail, UserCreatedCalendar or UserCreatedContacts folders is "
               "supported";
    return mParentId.isEmpty() ? "Invalid parent folder id" : nullptr;
}

void FolderCreateCommand::encodeFolder(WbxmlEncoder &encoder) const
{
    encoder.appendElement(FolderHierarchy::FolderCreate, true);
    encoder.appendTextElement(FolderHierarchy::SyncKey, syncKey());
    encoder.appendTextElement(FolderHierarchy::ParentId, mParentId);
    encoder.appendTextElement(FolderHierarchy::DisplayName, mDisplayName);
    encoder.appendTextElement(FolderHierarchy::Type, QString::number(mType));
}

bool FolderCreateCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    FolderCreateResponseParser parser;
    const bool read = readReply(parser, body,
        { "Successfully parsed folder create command response!",
            "Failed to parse folder create command response!" });
    if (!read)
        return false;
    mServerId = parser.serverId();
    qCDebug(eas()) << "ServerId:" << mServerId;
    return true;
}
