// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/moveitemsresponseparser.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

using namespace Wbxml;

MoveItemsResponseParser::MoveItemsResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool MoveItemsResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mState == Done;
}

void MoveItemsResponseParser::parse(const QByteArray &data)
{
    mState = BeforeRoot;
    mStatus = Eas::MoveItemsStatusSuccess;
    mResponse.clear();
    mResponses.clear();
    WbxmlParserBase::parse(data);
}

void MoveItemsResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    switch (key(codePage, token)) {
    case Move::MoveItems:
        enter(BeforeRoot, InMoveItems, codePage, token);
        break;
    case Move::Response:
        mResponse.clear();
        enter(InMoveItems, InResponse, codePage, token);
        break;
    default:
        if (codePage != Move::MoveItems.page) {
            qCWarning(eas()) << "Wrong code page: " << codePage << ", token: " << token
                             << ", state: " << int(mState);
        }
    }
}

void MoveItemsResponseParser::onEndElement(uint codePage, uint token)
{
    switch (key(codePage, token)) {
    case Move::MoveItems:
        enter(InMoveItems, Done, codePage, token);
        break;
    case Move::Response:
        if (mState == InResponse) {
            mResponses.append(mResponse);
        }
        mResponse.clear();
        enter(InResponse, InMoveItems, codePage, token);
        break;
    default:
        break;
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void MoveItemsResponseParser::enter(State from, State to, uint codePage, uint token)
{
    if (mState != from) {
        qCWarning(eas()) << "Wrong state: " << int(mState) << ", codePage: " << codePage
                         << ", token: " << token;
        return;
    }
    mState = to;
}

void MoveItemsResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &)
{
    if (codePage != Move::MoveItems.page) {
        qCWarning(eas()) << "Wrong code page: " << codePage << ", token: " << token
                         << ", state: " << int(mState);
        return;
    }
    switch (key(codePage, token)) {
    case Move::SrcMsgId:
        if (inResponse()) {
            mResponse.setSourceMessageId(text);
        }
        break;
    case Move::DstMsgId:
        if (inResponse()) {
            mResponse.setDestinationMessageId(text);
        }
        break;
    case Move::Status:
        statusContent(text);
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                             << ", token: " << token;
    }
}

bool MoveItemsResponseParser::inResponse() const
{
    if (mState != InResponse) {
        qCWarning(eas()) << "Wrong state: " << int(mState);
    }
    return mState == InResponse;
}

void MoveItemsResponseParser::statusContent(const QString &text)
{
    const int status = toStatus(text, "No conversion to int: ");
    if (mState == InResponse)
        mResponse.setStatus(status);
    else
        mStatus = status;
}
