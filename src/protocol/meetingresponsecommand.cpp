// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/meetingresponsecommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "easitems/algorithms/meetingresponseparser.h"
#include "easitems/containers/easbodycontainer.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {

void appendUnlessEmpty(WbxmlEncoder &encoder, Token tag, const QString &text)
{
    if (!text.isEmpty())
        encoder.appendTextElement(tag, text);
}

/** A time in the short form, which is the only one that servers take here. */
QString withoutSeparators(QString time)
{
    return time.remove(QLatin1Char('-')).remove(QLatin1Char(':'));
}

} // namespace

MeetingResponseCommand::MeetingResponseCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
}

QString MeetingResponseCommand::commandName() const
{
    return ProtocolUtils::CommandMeetingResponse;
}

BaseProtocolCommand::ExchangeTexts MeetingResponseCommand::texts() const
{
    return { "Sending meeting response command via POST:", "Received meeting response command reply:",
        "Network error: " };
}

void MeetingResponseCommand::appendRequest(const MeetingResponseRequestContainer &request)
{
    mRequests.append(request);
}

void MeetingResponseCommand::appendRequests(const QList<MeetingResponseRequestContainer> &requests)
{
    mRequests.append(requests);
}

bool MeetingResponseCommand::encodeBody(EasAccount &account, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(MeetingResponse::MeetingResponse, true);
    for (const MeetingResponseRequestContainer &request : qAsConst(mRequests))
        encodeRequest(encoder, request, account.protocolVersion());
    *body = encoder.encoded();
    return true;
}

void MeetingResponseCommand::encodeRequest(WbxmlEncoder &encoder,
    const MeetingResponseRequestContainer &request, ExchangeActiveSync::ProtocolVersion version) const
{
    encoder.appendElement(MeetingResponse::Request, true);
    encoder.appendIntElement(MeetingResponse::UserResponse, uint(request.userResponse()));
    if (version >= ExchangeActiveSync::ProtocolVersion141)
        appendUnlessEmpty(encoder, MeetingResponse::InstanceId, request.instanceId());
    if (request.longId().isEmpty()) {
        appendUnlessEmpty(encoder, MeetingResponse::CollectionId, request.collectionId());
        appendUnlessEmpty(encoder, MeetingResponse::RequestId, request.requestId());
    } else {
        encoder.appendTextElement(Search::LongId, request.longId());
    }
    if (version >= ExchangeActiveSync::ProtocolVersion160 && request.isResponseWanted())
        encodeResponse(encoder, version);
    encoder.setCurrentNodeToParent();
}

void MeetingResponseCommand::encodeResponse(
    WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    encoder.appendElement(MeetingResponse::SendResponse, true);
    if (!mOptions.newTimeComment.isEmpty()) {
        encoder.appendElement(AirSyncBase::Body, true);
        encoder.appendIntElement(AirSyncBase::Type, EasBodyContainer::PlainTextBodyType);
        encoder.appendTextElement(AirSyncBase::Data, mOptions.newTimeComment);
        encoder.setCurrentNodeToParent();
    }
    if (version >= ExchangeActiveSync::ProtocolVersion161) {
        appendUnlessEmpty(
            encoder, MeetingResponse::ProposedStartTime, withoutSeparators(mOptions.newStartTime));
        appendUnlessEmpty(encoder, MeetingResponse::ProposedEndTime, withoutSeparators(mOptions.newEndTime));
    }
    encoder.setCurrentNodeToParent();
}

bool MeetingResponseCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    mResults.clear();
    MeetingResponseParser parser;
    parser.parse(body);
    const bool says = parser.status() != Eas::MeetingResponseStatusUndefined || !parser.results().isEmpty();
    if (!parser.ready() || !says) {
        qCCritical(eas()) << "Failed to parse meeting response command response";
        return false;
    }
    qCDebug(eas()) << "Successfully parsed meeting response command response";
    mResults = parser.results();
    setStatus(parser.status() != Eas::MeetingResponseStatusUndefined ? parser.status()
                                                                     : Eas::MeetingResponseStatusSuccess);
    if (status() != Eas::MeetingResponseStatusSuccess)
        qCWarning(eas()) << "Meeting response command response was error!";
    return true;
}
