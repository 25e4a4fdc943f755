// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/synccommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "easitems/algorithms/syncresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/elements/synccommandbase.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QDebug>

using namespace Wbxml;

namespace {

QList<SyncCommandBase::Type> types(const QList<QSharedPointer<SyncCommandBase>> &commands)
{
    QList<SyncCommandBase::Type> types;
    for (const auto &command : commands) {
        types.append(command->type());
    }
    return types;
}

void appendIfSet(WbxmlEncoder &encoder, Token tag, uint value)
{
    if (value != 0) {
        encoder.appendIntElement(tag, value);
    }
}

} // namespace

SyncCommand::SyncCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
}

void SyncCommand::addCollection(const SyncCollection &collection)
{
    mCollections.append(collection);
}

void SyncCommand::addCollections(const QList<SyncCollection> &collections)
{
    mCollections.append(collections);
}

void SyncCommand::clearCollections()
{
    mCollections.clear();
}

QList<SyncCollection> SyncCommand::collections() const
{
    return mCollections;
}

QList<SyncCollection> SyncCommand::responseCollections() const
{
    return mResponseCollections;
}

QString SyncCommand::commandName() const
{
    return ProtocolUtils::CommandSync;
}

BaseProtocolCommand::ExchangeTexts SyncCommand::texts() const
{
    return {
        "Sending sync command via POST:", "Received sync command reply:", "Sync command response is error!"
    };
}

bool SyncCommand::encodeBody(EasAccount &account, QByteArray *body)
{
    *body = encodedBody(account.protocolVersion());
    return true;
}

QByteArray SyncCommand::encodedBody(ExchangeActiveSync::ProtocolVersion version) const
{
    WbxmlEncoder encoder;
    WBXMLTreeNode *const root = encoder.appendElement(AirSync::Sync, true);
    if (!mCollections.isEmpty()) {
        encoder.appendElement(AirSync::Collections, true);
        for (const SyncCollection &collection : mCollections) {
            collection.encode(encoder, version);
        }
    }
    encoder.setCurrentNode(root);
    appendIfSet(encoder, AirSync::Wait, mWait);
    appendIfSet(encoder, AirSync::HeartbeatInterval, mHeartbeatInterval);
    appendIfSet(encoder, AirSync::WindowSize, mWindowSize);
    if (mPartial) {
        encoder.appendElement(AirSync::Partial);
    }
    return encoder.encoded();
}

bool SyncCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    mResponseCollections.clear();
    SyncResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse sync command response!";
        return false;
    }
    qCDebug(eas()) << "Successfully parsed sync command response!";
    setStatus(int(parser.status()));
    qCDebug(eas()) << "status:" << parser.status() << "limit:" << parser.limit();
    const QList<SyncCollection> collections = parser.collections();
    if (collections.size() > mCollections.size()) {
        qCCritical(eas()) << "Refused a reply with more collections than were asked for:"
                          << collections.size();
        return false;
    }
    mResponseCollections = collections;
    joinSentCollections();
    return true;
}

void SyncCommand::joinSentCollections()
{
    for (SyncCollection &response : mResponseCollections) {
        const int sent = mCollections.indexOf(response);
        if (sent >= 0) {
            response.appendCommands(mCollections.at(sent).commands());
            response.setGetChanges(mCollections.at(sent).getChanges());
            response.setQueryTime(mCollections.at(sent).queryTime());
        }
        qCDebug(eas()) << "Got response collection:" << response.id()
                       << "-> with commands:" << types(response.commands());
    }
}
