// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "protocol/baseprotocolcommand.h"
#include "protocol/elements/meetingresponserequestcontainer.h"
#include "protocol/elements/meetingresponseresultcontainer.h"

#include <QList>

class WbxmlEncoder;

/**
 * One MeetingResponse: tells the server how the user answers invitations.
 *
 * From 16.0 on the server writes to the organizer where a response is wanted. After a finished(true) either
 * requestResults() or, where the reply holds no result, status() says what became of it; with results and no
 * status of the whole command status() is 1.
 */
class MeetingResponseCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    /** Of all answers, as the client gave them. */
    struct Options
    {
        /** ISO 8601 in UTC. */
        QString newStartTime;
        QString newEndTime;
        QString newTimeComment;
    };

    explicit MeetingResponseCommand(EasAccountId accountId, QObject *parent = nullptr);

    void appendRequest(const MeetingResponseRequestContainer &request);
    void appendRequests(const QList<MeetingResponseRequestContainer> &requests);
    void clearRequests() { mRequests.clear(); }
    Options options() const { return mOptions; }
    void setOptions(const Options &options) { mOptions = options; }

    QList<MeetingResponseResultContainer> requestResults() const { return mResults; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    void encodeRequest(WbxmlEncoder &encoder, const MeetingResponseRequestContainer &request,
        ExchangeActiveSync::ProtocolVersion version) const;
    void encodeResponse(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

    Options mOptions;
    QList<MeetingResponseRequestContainer> mRequests;
    QList<MeetingResponseResultContainer> mResults;
};
