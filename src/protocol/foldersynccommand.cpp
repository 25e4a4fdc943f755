// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/foldersynccommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/foldersyncresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QDebug>

using namespace Wbxml;

FolderSyncCommand::FolderSyncCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
}

QString FolderSyncCommand::commandName() const
{
    return ProtocolUtils::CommandFolderSync;
}

BaseProtocolCommand::ExchangeTexts FolderSyncCommand::texts() const
{
    return { "Sending folder sync command via POST:", "Received folder sync command reply:", nullptr };
}

bool FolderSyncCommand::encodeBody(EasAccount &, QByteArray *body)
{
    if (mSyncKey.isEmpty()) {
        qCWarning(eas()) << "No sync key";
        return false;
    }
    WbxmlEncoder encoder;
    encoder.appendElement(FolderHierarchy::FolderSync, true);
    encoder.appendTextElement(FolderHierarchy::SyncKey, mSyncKey);
    *body = encoder.encoded();
    return true;
}

bool FolderSyncCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    FolderSyncResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse folder sync command response!";
        return false;
    }
    qCDebug(eas()) << "Successfully parsed folder sync command response!";
    setStatus(parser.status());
    if (!parser.syncKey().isEmpty()) {
        mSyncKey = parser.syncKey();
    }
    mAddedItems = parser.addedItems();
    mUpdatedItems = parser.updatedItems();
    mDeletedItems = parser.deletedItems();
    return true;
}
