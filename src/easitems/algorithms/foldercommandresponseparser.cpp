// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/foldercommandresponseparser.h"

#include "application/base/logging.h"

#include <QDebug>

using namespace Wbxml;

FolderCommandResponseParser::FolderCommandResponseParser(Token root, QObject *parent)
    : WbxmlParserBase(parent)
    , mRoot(root)
{
}

bool FolderCommandResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mPosition == Position::Done;
}

void FolderCommandResponseParser::parse(const QByteArray &data)
{
    mStatus = 0;
    mSyncKey.clear();
    mServerId.clear();
    mPosition = data.isEmpty() ? Position::Done : Position::BeforeRoot;
    WbxmlParserBase::parse(data);
}

void FolderCommandResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    if (key(codePage, token) == mRoot.key())
        mPosition = Position::InRoot;
    else if (mPosition != Position::InRoot || codePage != mRoot.page)
        if (isFirst("element", codePage, token))
            qCWarning(eas()) << "Unexpected element, page: " << codePage << ", token: " << token;
}

void FolderCommandResponseParser::onEndElement(uint codePage, uint token)
{
    WbxmlParserBase::onEndElement(codePage, token);
    if (key(codePage, token) == mRoot.key())
        mPosition = Position::Done;
}

void FolderCommandResponseParser::onContent(
    uint codePage, uint token, const QString &text, const QByteArray &)
{
    switch (key(codePage, token)) {
    case FolderHierarchy::Status:
        mStatus = toStatus(text);
        break;
    case FolderHierarchy::SyncKey:
        mSyncKey = text;
        break;
    case FolderHierarchy::ServerId:
        mServerId = text;
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                             << ", token: " << token;
    }
}
