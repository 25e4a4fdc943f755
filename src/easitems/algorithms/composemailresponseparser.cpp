// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/composemailresponseparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmltokens.h"

using namespace Wbxml;

namespace {

/** A server that could not read the request may answer with a bare status. */
bool isKnown(uint key)
{
    return key == ComposeMail::SendMail || key == ComposeMail::SmartForward || key == ComposeMail::SmartReply
        || key == ComposeMail::Status;
}

} // namespace

ComposeMailResponseParser::ComposeMailResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool ComposeMailResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mHasAnswer;
}

void ComposeMailResponseParser::parse(const QByteArray &data)
{
    mStatus = 0;
    mHasAnswer = data.isEmpty();
    WbxmlParserBase::parse(data);
}

void ComposeMailResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    if (!isKnown(key(codePage, token)) && isFirst("element", codePage, token))
        qCWarning(eas()) << "Unexpected element, page: " << codePage << ", token: " << token;
}

void ComposeMailResponseParser::onEndElement(uint codePage, uint token)
{
    WbxmlParserBase::onEndElement(codePage, token);
    const bool known = isKnown(key(codePage, token));
    if (!known && isFirst("end", codePage, token))
        qCWarning(eas()) << "Unhandled end element, page: " << codePage << ", token: " << token;
    mHasAnswer = known && mElementStack.isEmpty();
}

void ComposeMailResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &)
{
    if (key(codePage, token) == ComposeMail::Status)
        mStatus = toStatus(text, "Cannot convert status to int: ");
    else if (isFirst("content", codePage, token))
        qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                         << ", token: " << token;
}
