// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/meetingresponseparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmltokens.h"

using namespace Wbxml;

MeetingResponseParser::MeetingResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool MeetingResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mReplyState == Done;
}

void MeetingResponseParser::parse(const QByteArray &data)
{
    mReplyState = BeforeRoot;
    mStatus = Eas::MeetingResponseStatusUndefined;
    mResult = {};
    mResults.clear();
    WbxmlParserBase::parse(data);
}

void MeetingResponseParser::enter(ReplyState from, ReplyState to)
{
    if (mReplyState == from)
        mReplyState = to;
}

void MeetingResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    switch (key(codePage, token)) {
    case MeetingResponse::MeetingResponse:
        enter(BeforeRoot, InMeetingResponse);
        break;
    case MeetingResponse::Result:
        mResult = {};
        enter(InMeetingResponse, InResult);
        break;
    default:
        break;
    }
}

void MeetingResponseParser::onEndElement(uint codePage, uint token)
{
    switch (key(codePage, token)) {
    case MeetingResponse::MeetingResponse:
        enter(InMeetingResponse, Done);
        break;
    case MeetingResponse::Result:
        if (mReplyState == InResult)
            mResults.append(mResult);
        enter(InResult, InMeetingResponse);
        break;
    default:
        break;
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void MeetingResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    switch (key(codePage, token)) {
    case MeetingResponse::MeetingResponse:
    case MeetingResponse::Result:
    case MeetingResponse::InstanceId: // of the request
        break;
    case Search::LongId:
        if (inResult("received long id element content in wrong state", text, raw))
            mResult.setLongId(text);
        break;
    case MeetingResponse::CalendarId:
        if (inResult("received calendar id element content in wrong state", text, raw))
            mResult.setCalendarId(text);
        break;
    case MeetingResponse::RequestId:
        if (inResult("received request id element content in wrong state", text, raw))
            mResult.setRequestId(text);
        break;
    case MeetingResponse::Status:
        statusContent(text, raw);
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "unexpected element content. cpage:" << codePage << "token:" << token;
    }
}

bool MeetingResponseParser::inResult(const char *wrongState, const QString &text, const QByteArray &raw) const
{
    if (mReplyState != InResult)
        qCWarning(eas()) << wrongState << "content:" << text << "buffer:" << raw;
    return mReplyState == InResult;
}

void MeetingResponseParser::statusContent(const QString &text, const QByteArray &raw)
{
    if (mReplyState == InMeetingResponse)
        mStatus = toStatus(text);
    else if (inResult("received status element content in wrong state", text, raw))
        mResult.setStatus(static_cast<Eas::MeetingResponseStatus>(toStatus(text)));
}
