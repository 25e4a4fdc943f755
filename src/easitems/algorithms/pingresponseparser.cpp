// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/pingresponseparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmltokens.h"

using namespace Wbxml;

namespace {

int toNumber(const QString &text)
{
    int number = 0;
    if (!ParserBase::stringToInt(text, number))
        qCWarning(eas()) << "Cannot convert to int: " << text;
    return number;
}

} // namespace

PingResponseParser::PingResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool PingResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mPingState == AfterPing;
}

void PingResponseParser::reset()
{
    mPingState = BeforePing;
    mStatus = Eas::PingStatusUndefined;
    mHeartbeatInterval = 0;
    mMaxFolders = 0;
    mFolders.clear();
}

void PingResponseParser::parse(const QByteArray &data)
{
    reset();
    WbxmlParserBase::parse(data);
}

void PingResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    if (key(codePage, token) == Ping::Ping && mPingState == BeforePing)
        mPingState = InPing;
}

void PingResponseParser::onEndElement(uint codePage, uint token)
{
    if (key(codePage, token) == Ping::Ping && mPingState == InPing)
        mPingState = AfterPing;
    WbxmlParserBase::onEndElement(codePage, token);
}

void PingResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &)
{
    switch (key(codePage, token)) {
    case Ping::Ping:
    case Ping::Folders:
    case Ping::Id:
    case Ping::Class:
        break;
    case Ping::Status:
        mStatus = toStatus(text);
        break;
    case Ping::HeartbeatInterval:
        mHeartbeatInterval = toNumber(text);
        break;
    case Ping::Folder:
        mFolders.append(text);
        break;
    case Ping::MaxFolders:
        mMaxFolders = toNumber(text);
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                             << ", token: " << token;
    }
}
