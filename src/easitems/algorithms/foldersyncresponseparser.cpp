// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/foldersyncresponseparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

using namespace Wbxml;

FolderSyncResponseParser::FolderSyncResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool FolderSyncResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mPosition == Done;
}

void FolderSyncResponseParser::parse(const QByteArray &data)
{
    mStatus = 0;
    mItems = 0;
    mSyncKey.clear();
    mItem.clear();
    mAddedItems.clear();
    mUpdatedItems.clear();
    mDeletedItems.clear();
    mPosition = data.isEmpty() ? Done : BeforeRoot;
    WbxmlParserBase::parse(data);
}

void FolderSyncResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    if (codePage != FolderHierarchy::FolderSync.page) {
        if (isFirst("element", codePage, token))
            qCWarning(eas()) << "Unexpected element, page: " << codePage << ", token: " << token;
        return;
    }
    start(key(codePage, token));
}

void FolderSyncResponseParser::start(uint tag)
{
    switch (tag) {
    case FolderHierarchy::FolderSync:
        mPosition = Top;
        break;
    case FolderHierarchy::Changes:
        mPosition = InChanges;
        break;
    case FolderHierarchy::Add:
        startItem(InAdd);
        break;
    case FolderHierarchy::Update:
        startItem(InUpdate);
        break;
    case FolderHierarchy::Delete:
        startItem(InDelete);
        break;
    default:
        break;
    }
}

void FolderSyncResponseParser::startItem(Position position)
{
    mItem.clear();
    mPosition = position;
}

void FolderSyncResponseParser::onEndElement(uint codePage, uint token)
{
    WbxmlParserBase::onEndElement(codePage, token);
    if (codePage != FolderHierarchy::FolderSync.page) {
        if (isFirst("end", codePage, token))
            qCWarning(eas()) << "Unhandled end element, page: " << codePage << ", token: " << token;
        return;
    }
    end(key(codePage, token));
}

void FolderSyncResponseParser::end(uint tag)
{
    switch (tag) {
    case FolderHierarchy::FolderSync:
        mPosition = Done;
        break;
    case FolderHierarchy::Changes:
        mPosition = Top;
        break;
    case FolderHierarchy::Add:
        mAddedItems.append(mItem);
        endItem();
        break;
    case FolderHierarchy::Update:
        mUpdatedItems.append(mItem);
        endItem();
        break;
    case FolderHierarchy::Delete:
        mDeletedItems.append(mItem.serverId());
        endItem();
        break;
    default:
        break;
    }
}

void FolderSyncResponseParser::endItem()
{
    if (++mItems > MaxItems)
        refuse("more changes of folders than a mailbox has");
    mItem.clear();
    mPosition = InChanges;
}

void FolderSyncResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &)
{
    if (codePage != FolderHierarchy::FolderSync.page) {
        if (isFirst("page", codePage, token))
            qCWarning(eas()) << "Unexpected page: " << codePage << ", token: " << token
                             << ", content: " << text;
        return;
    }
    switch (const uint tag = key(codePage, token)) {
    case FolderHierarchy::DisplayName:
        mItem.setDisplayName(text);
        markChanged(tag);
        break;
    case FolderHierarchy::ServerId:
        mItem.setServerId(text);
        markChanged(tag);
        break;
    case FolderHierarchy::ParentId:
        mItem.setServerParentId(text);
        markChanged(tag);
        break;
    case FolderHierarchy::Type:
        typeContent(text);
        break;
    case FolderHierarchy::Status:
        mStatus = toStatus(text);
        break;
    case FolderHierarchy::SyncKey:
        mSyncKey = text;
        break;
    case FolderHierarchy::Count:
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                             << ", token: " << token;
    }
}

void FolderSyncResponseParser::typeContent(const QString &text)
{
    int type = 0;
    if (!stringToInt(text, type)) {
        qCWarning(eas()) << "Wrong type: " << text;
        return;
    }
    if (type < EasFolderItem::UserCreatedGenericFolder
        || type > EasFolderItem::RecipientInformationCacheFolder) {
        qCWarning(eas()) << "Cannot convert to int: " << text;
    } else {
        mItem.setType(EasFolderItem::FolderType(type));
    }
    markChanged(FolderHierarchy::Type);
}

void FolderSyncResponseParser::markChanged(uint tag)
{
    if (mPosition == InUpdate) {
        mItem.appendChangedField(tag);
    }
}
