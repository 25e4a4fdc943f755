// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/itemoperationsresponseparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

using namespace Wbxml;

ItemOperationsResponseParser::ItemOperationsResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool ItemOperationsResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mFinished;
}

void ItemOperationsResponseParser::parse(const QByteArray &data)
{
    mFinished = false;
    mStatus = 0;
    mOperation = NoOperation;
    mNested = NotNested;
    mInProperties = false;
    mPropertiesParser.reset();
    mPropertiesParser.beginReply();
    // A fetched message is there already: what comes counts as changes of it.
    mPropertiesParser.setChangeItem(true);
    mMoveItems.clear();
    mFetchItems.clear();
    mEmptyFolderItems.clear();
    WbxmlParserBase::parse(data);
}

void ItemOperationsResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    const uint tag = key(codePage, token);
    trackNested(tag, true);
    switch (tag) {
    case ItemOperations::Fetch:
        mOperation = InFetch;
        mFetchItem.clear();
        mBodyPartNumber = 0;
        mPropertiesParser.reset();
        break;
    case ItemOperations::Move:
        mOperation = InMove;
        mMoveItem.clear();
        break;
    case ItemOperations::EmptyFolderContents:
        mOperation = InEmptyFolderContents;
        mEmptyFolderItem.clear();
        break;
    case ItemOperations::Properties:
        mInProperties = true;
        break;
    default:
        if (isOfMessage(codePage, token)) {
            handlePropertiesDataStart(codePage, token);
        }
    }
}

void ItemOperationsResponseParser::onEndElement(uint codePage, uint token)
{
    const uint tag = key(codePage, token);
    switch (tag) {
    case ItemOperations::ItemOperations:
        mFinished = true;
        break;
    case ItemOperations::Fetch:
    case ItemOperations::Move:
    case ItemOperations::EmptyFolderContents:
        endOperation();
        break;
    case ItemOperations::Properties:
        mInProperties = false;
        break;
    default:
        if (isOfMessage(codePage, token)) {
            handlePropertiesDataEnd(codePage, token);
        }
    }
    trackNested(tag, false);
    WbxmlParserBase::onEndElement(codePage, token);
}

void ItemOperationsResponseParser::endOperation()
{
    if (mOperation == InFetch) {
        mFetchItem.setEmailItem(mPropertiesParser.mailItem());
        if (mBodyPartNumber != 0) {
            mFetchItem.setBodyPart(mBodyPartNumber);
        }
        mFetchItems.append(mFetchItem);
    } else if (mOperation == InMove) {
        mMoveItems.append(mMoveItem);
    } else if (mOperation == InEmptyFolderContents) {
        mEmptyFolderItems.append(mEmptyFolderItem);
    }
    mOperation = NoOperation;
}

void ItemOperationsResponseParser::trackNested(uint tag, bool isStart)
{
    Nested nested = NotNested;
    switch (tag) {
    case AirSyncBase::Body:
        nested = InBody;
        break;
    case AirSyncBase::BodyPart:
        nested = InBodyPart;
        break;
    case AirSyncBase::Attachment:
        nested = InAttachment;
        break;
    default:
        return;
    }
    mNested = isStart ? nested : NotNested;
}

bool ItemOperationsResponseParser::isOfMessage(uint codePage, uint token) const
{
    if (mOperation != InFetch || codePage == ItemOperations::Fetch.page) {
        return false;
    }
    switch (key(codePage, token)) {
    case AirSyncBase::ContentType:
        return false;
    case AirSyncBase::FileReference:
        return mNested == InAttachment;
    default:
        return mInProperties || codePage == AirSyncBase::Body.page;
    }
}

void ItemOperationsResponseParser::handlePropertiesDataStart(uint codePage, uint token)
{
    mPropertiesParser.onStartElement(codePage, token);
}

void ItemOperationsResponseParser::handlePropertiesDataContent(
    uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    mPropertiesParser.onContent(codePage, token, text, raw);
}

void ItemOperationsResponseParser::handlePropertiesDataEnd(uint codePage, uint token)
{
    mPropertiesParser.onEndElement(codePage, token);
}

void ItemOperationsResponseParser::onContent(
    uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    if (isOfMessage(codePage, token)) {
        handlePropertiesDataContent(codePage, token, text, raw);
        return;
    }
    switch (const uint tag = key(codePage, token)) {
    case ItemOperations::Status:
        setStatus(text);
        break;
    case ItemOperations::ConversationId:
        mMoveItem.setConversationId(text);
        break;
    case AirSync::CollectionId:
        setCollectionId(text);
        break;
    default:
        fetchContent(tag, text);
    }
}

void ItemOperationsResponseParser::fetchContent(uint tag, const QString &text)
{
    switch (tag) {
    case ItemOperations::Range:
        mFetchItem.setRange(text);
        break;
    case ItemOperations::Total:
        setTotal(text);
        break;
    case ItemOperations::Data:
        mFetchItem.setData(text);
        break;
    case ItemOperations::Version:
        mFetchItem.setVersion(text);
        break;
    case ItemOperations::Part:
        setPart(text);
        break;
    case AirSync::ServerId:
        mFetchItem.setServerId(text);
        break;
    case AirSync::Class:
        mFetchItem.setClass(text);
        break;
    case AirSyncBase::ContentType:
        mFetchItem.setContentType(text);
        break;
    case AirSyncBase::FileReference:
        mFetchItem.setFileReference(text);
        break;
    case Search::LongId:
        mFetchItem.setLongId(text);
        break;
    case DocumentLibrary::LinkId:
        mFetchItem.setLinkId(text);
        break;
    default:
        if (isFirst("content", tag / 256, tag % 256))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << tag / 256
                             << ", token: " << tag % 256;
    }
}

void ItemOperationsResponseParser::setStatus(const QString &text)
{
    const int status = toStatus(text);
    switch (mOperation) {
    case InFetch:
        mFetchItem.setStatus(status);
        break;
    case InMove:
        mMoveItem.setStatus(status);
        break;
    case InEmptyFolderContents:
        mEmptyFolderItem.setStatus(status);
        break;
    case NoOperation:
        mStatus = status;
        break;
    }
}

void ItemOperationsResponseParser::setTotal(const QString &text)
{
    int total = 0;
    if (stringToInt(text, total)) {
        mFetchItem.setTotal(total);
    } else {
        qCWarning(eas()) << "Cannot convert to int: " << text;
    }
}

void ItemOperationsResponseParser::setPart(const QString &text)
{
    int part = 0;
    if (!stringToInt(text, part)) {
        qCWarning(eas()) << "Cannot convert to int: " << text;
    } else if (mNested == InBody || mNested == InBodyPart) {
        mBodyPartNumber = part;
    } else {
        mFetchItem.setPart(part);
    }
}

void ItemOperationsResponseParser::setCollectionId(const QString &collectionId)
{
    if (mOperation == InEmptyFolderContents) {
        mEmptyFolderItem.setCollectionId(collectionId);
    } else {
        mFetchItem.setCollectionId(collectionId);
    }
}
