// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/meetingresponseresultcontainer.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QList>

/** Reads the reply of a MeetingResponse. It is ready only behind the end of the root: an empty reply is no
 * answer. */
class MeetingResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit MeetingResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** The status of the command, which stands outside of every result; 0 if there is none. */
    int status() const { return mStatus; }
    QList<MeetingResponseResultContainer> results() const { return mResults; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum ReplyState { BeforeRoot, InMeetingResponse, InResult, Done };

    void enter(ReplyState from, ReplyState to);
    bool inResult(const char *wrongState, const QString &text, const QByteArray &raw) const;
    void statusContent(const QString &text, const QByteArray &raw);

    ReplyState mReplyState = BeforeRoot;
    int mStatus = Eas::MeetingResponseStatusUndefined;
    MeetingResponseResultContainer mResult;
    QList<MeetingResponseResultContainer> mResults;
};
