// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/syncresponseparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

using namespace Wbxml;

SyncResponseParser::SyncResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool SyncResponseParser::ready() const
{
    // An item whose class could not be looked up has been passed over, and must not count as read.
    return WbxmlParserBase::ready() && mParsePhase == Done && !mItem.typeUnread();
}

void SyncResponseParser::parse(const QByteArray &data)
{
    mStatus = 0;
    mLimit = 0;
    mCollections.clear();
    mItem.beginReply();
    mParsePhase = data.isEmpty() ? Done : BeforeRoot;
    WbxmlParserBase::parse(data);
}

void SyncResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    if (codePage == AirSync::Sync.page) {
        startAirSyncElement(token);
    } else if (mInAppData) {
        mItem.onStartElement(codePage, token, itemServerId());
    } else if (isRootStatus(codePage, token)) {
        // This is how a server answers a Sync that it cannot read.
        mParsePhase = SyncLevel;
    } else {
        if (isFirst("element", codePage, token))
            qCWarning(eas()) << "Unexpected element, page: " << codePage << ", token: " << token;
    }
}

bool SyncResponseParser::isRootStatus(uint codePage, uint token) const
{
    return key(codePage, token) == ComposeMail::Status && mElementStack.size() == 1;
}

void SyncResponseParser::startAirSyncElement(uint token)
{
    switch (key(AirSync::Sync.page, token)) {
    case AirSync::Sync:
        mParsePhase = SyncLevel;
        break;
    case AirSync::Responses:
        mParsePhase = InResponses;
        break;
    case AirSync::Add:
        startCommand(AddKind);
        break;
    case AirSync::Change:
        startCommand(ChangeKind);
        break;
    case AirSync::Delete:
        startCommand(DeleteKind);
        break;
    case AirSync::Fetch:
        startCommand(FetchKind);
        break;
    case AirSync::SoftDelete:
        mCommandKind = SoftDeleteKind;
        break;
    case AirSync::Collection:
        mCurrentCollection.clear();
        mParsePhase = InCollection;
        break;
    case AirSync::MoreAvailable:
        qCDebug(eas()) << "MORE_AVAILABLE";
        mCurrentCollection.setMoreAvailable(true);
        break;
    case AirSync::ApplicationData:
        mInAppData = true;
        mItem.begin();
        break;
    default:
        break;
    }
}

void SyncResponseParser::startCommand(CommandKind kind)
{
    mCommandKind = kind;
    mItem.setChangeItem(kind == ChangeKind);
}

void SyncResponseParser::onEndElement(uint codePage, uint token)
{
    if (codePage == AirSync::Sync.page) {
        endAirSyncElement(token);
    } else if (mInAppData) {
        mItem.onEndElement(codePage, token);
    } else if (isRootStatus(codePage, token)) {
        mParsePhase = Done;
    } else {
        if (isFirst("end", codePage, token))
            qCWarning(eas()) << "Unhandled end element, page: " << codePage << ", token: " << token;
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void SyncResponseParser::endAirSyncElement(uint token)
{
    switch (key(AirSync::Sync.page, token)) {
    case AirSync::Sync:
        mParsePhase = Done;
        break;
    case AirSync::Responses:
        // A collection may go on behind its responses.
        mParsePhase = InCollection;
        break;
    case AirSync::Add:
        endCommand(AddKind);
        break;
    case AirSync::Change:
        endCommand(ChangeKind);
        break;
    case AirSync::Delete:
        endCommand(DeleteKind);
        break;
    case AirSync::SoftDelete:
        takeDeletion();
        break;
    case AirSync::Collection:
        mCollections.append(mCurrentCollection);
        mCurrentCollection.clear();
        mParsePhase = SyncLevel;
        break;
    case AirSync::ApplicationData:
        takeItem();
        mInAppData = false;
        break;
    default:
        break;
    }
}

void SyncResponseParser::endCommand(CommandKind kind)
{
    if (mParsePhase != InResponses) {
        if (kind == DeleteKind)
            takeDeletion();
        return;
    }
    switch (kind) {
    case AddKind:
        mCurrentCollection.appendAirSyncResponseAddedItem(mCurrentAdd);
        mCurrentAdd.clear();
        break;
    case ChangeKind:
        mCurrentCollection.appendAirSyncResponseChangedItem(mCurrentChange);
        mCurrentChange.clear();
        break;
    case DeleteKind:
        mCurrentCollection.appendAirSyncResponseDeletedItem(mCurrentDelete);
        mCurrentDelete.clear();
        break;
    default:
        break;
    }
}

void SyncResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    if (codePage == AirSync::Sync.page) {
        airSyncContent(token, text);
    } else if (mInAppData) {
        mItem.onContent(codePage, token, text, raw, itemServerId());
    } else if (isRootStatus(codePage, token)) {
        statusContent(text);
    } else {
        if (isFirst("page", codePage, token))
            qCWarning(eas()) << "Unexpected page: " << codePage << ", token: " << token
                             << ", content: " << text;
    }
}

void SyncResponseParser::airSyncContent(uint token, const QString &text)
{
    switch (key(AirSync::Sync.page, token)) {
    case AirSync::SyncKey:
        qCDebug(eas()) << "SYNC_KEY = " << text;
        mCurrentCollection.setSyncKey(text);
        break;
    case AirSync::ClientId:
        if (mParsePhase == InResponses && mCommandKind == AddKind) {
            qCDebug(eas()) << "CLIENT_ID " << text;
            mCurrentAdd.setClientId(text);
        }
        break;
    case AirSync::ServerId:
        serverIdContent(text);
        break;
    case AirSync::Status:
        statusContent(text);
        break;
    case AirSync::Class:
        classContent(text);
        break;
    case AirSync::CollectionId:
        qCDebug(eas()) << "COLLECTION_ID = " << text;
        mCurrentCollection.setId(text);
        break;
    case AirSync::ApplicationData:
        break;
    case AirSync::Limit:
        limitContent(text);
        break;
    default:
        if (isFirst("content", AirSync::Sync.page, token))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << AirSync::Sync.page
                             << ", token: " << token;
    }
}

void SyncResponseParser::serverIdContent(const QString &serverId)
{
    if (mParsePhase == InResponses && mCommandKind == AddKind) {
        mCurrentAdd.setServerId(serverId);
    } else if (mParsePhase == InResponses && mCommandKind == ChangeKind) {
        mCurrentChange.setServerId(serverId);
    } else if (mParsePhase == InResponses && mCommandKind == DeleteKind) {
        mCurrentDelete.setServerId(serverId);
    } else {
        mCurrentServerId = serverId;
    }
}

void SyncResponseParser::statusContent(const QString &text)
{
    const auto status = static_cast<uint>(toStatus(text, "Cannot convert to uint: "));
    if (mParsePhase == InCollection) {
        mCurrentCollection.setStatus(status);
    } else if (mParsePhase == SyncLevel) {
        mStatus = status;
    } else if (mParsePhase == InResponses && mCommandKind == AddKind) {
        mCurrentAdd.setStatus(status);
    } else if (mParsePhase == InResponses && mCommandKind == ChangeKind) {
        mCurrentChange.setStatus(status);
    } else if (mParsePhase == InResponses && mCommandKind == DeleteKind) {
        mCurrentDelete.setStatus(status);
    }
}

void SyncResponseParser::classContent(const QString &itemClass)
{
    if (mParsePhase == InCollection) {
        qCDebug(eas()) << "CLASS = " << itemClass;
        mCurrentCollection.setClass(itemClass);
    } else if (mParsePhase == InResponses && mCommandKind == AddKind) {
        qCDebug(eas()) << "CmdAdd CLASS = " << itemClass;
        mCurrentAdd.setClass(itemClass);
    } else if (mParsePhase == InResponses && mCommandKind == ChangeKind) {
        qCDebug(eas()) << "CmdChange CLASS = " << itemClass;
        mCurrentChange.setClass(itemClass);
    }
}

void SyncResponseParser::limitContent(const QString &text)
{
    if (stringToInt(text, mLimit)) {
        qCDebug(eas()) << "MORE_LIMIT = " << mLimit;
    } else {
        qCWarning(eas()) << "Cannot convert to int: " << text;
    }
}

QString SyncResponseParser::itemServerId() const
{
    if (mParsePhase == InResponses && mCommandKind == AddKind)
        return mCurrentAdd.serverId();
    if (mParsePhase == InResponses && mCommandKind == ChangeKind)
        return mCurrentChange.serverId();
    if (mParsePhase == InResponses && mCommandKind == DeleteKind)
        return mCurrentDelete.serverId();
    return mCurrentServerId;
}

SyncItemParser::Use SyncResponseParser::use() const
{
    if (mCommandKind == FetchKind)
        return SyncItemParser::Use::Fetched;
    // What a server adds to its answer about an upload is no item of its own.
    if (mParsePhase == InResponses)
        return SyncItemParser::Use::Ignored;
    if (mCommandKind == AddKind)
        return SyncItemParser::Use::Added;
    return mCommandKind == ChangeKind ? SyncItemParser::Use::Changed : SyncItemParser::Use::Ignored;
}

void SyncResponseParser::takeItem()
{
    mItem.end(mCurrentCollection, use(), mCurrentServerId);
    // The identifier of a deletion is taken with the deletion's own end.
    if (mCommandKind != DeleteKind && mCommandKind != SoftDeleteKind)
        mCurrentServerId.clear();
}

void SyncResponseParser::takeDeletion()
{
    if (!mCurrentServerId.isEmpty())
        mCurrentCollection.appendDeletedIds(mCurrentServerId);
    mCurrentServerId.clear();
}
