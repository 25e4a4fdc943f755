// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/foldersynccustomcommand.h"

#include "application/account/easaccount.h"
#include "protocol/base/protocolutils.h"
#include "protocol/replyheaders.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QNetworkRequest>

FolderSyncCustomCommand::FolderSyncCustomCommand(
    EasAccountId accountId, ExchangeActiveSync::ProtocolVersion version, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
    , mVersion(version)
{
}

QString FolderSyncCustomCommand::versions() const
{
    return mVersions;
}

QStringList FolderSyncCustomCommand::supportedCommands() const
{
    return mSupportedCommands;
}

QString FolderSyncCustomCommand::commandName() const
{
    return ProtocolUtils::CommandFolderSync;
}

BaseProtocolCommand::ExchangeTexts FolderSyncCustomCommand::texts() const
{
    return { "Sending folder sync command with 0 key via POST:",
        "Received folder sync command for 0 key reply:", nullptr };
}

bool FolderSyncCustomCommand::prepareRequest(QNetworkRequest &request)
{
    request.setRawHeader(
        ProtocolUtils::HeaderAsProtocolVersion, EasAccount::encodedProtocolVersion(mVersion));
    return true;
}

bool FolderSyncCustomCommand::parseReply(QNetworkReply *reply, const QByteArray &)
{
    readHeaders(*reply);
    return true;
}

void FolderSyncCustomCommand::handleError(QNetworkReply::NetworkError networkError)
{
    // A server that wants to be provisioned first has taken the command, and its headers tell as much.
    if (!isToldToProvision() || !reply())
        return BaseProtocolCommand::handleError(networkError);
    readHeaders(*reply());
    if (mVersions.isEmpty())
        mVersions = QString::fromLatin1(EasAccount::encodedProtocolVersion(mVersion));
    setStatus(0);
    end(true);
}

void FolderSyncCustomCommand::readHeaders(const QNetworkReply &reply)
{
    mSupportedCommands = ReplyHeaders::supportedCommands(reply);
    mVersions = ReplyHeaders::versions(reply);
}

bool FolderSyncCustomCommand::encodeBody(EasAccount &, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Wbxml::FolderHierarchy::FolderSync, true);
    encoder.appendTextElement(Wbxml::FolderHierarchy::SyncKey, ProtocolUtils::InitialSyncKey);
    *body = encoder.encoded();
    return !body->isEmpty();
}
