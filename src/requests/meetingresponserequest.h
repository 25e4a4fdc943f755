// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/meetingresponsecommand.h"
#include "requests/commandrequest.h"
#include "requests/meetinganswer.h"
#include "requests/meetingreplymails.h"

#include <QList>

/**
 * Answers invitations: tells the server, then sends the organizers the messages that the caller has made for
 * them, and removes the invitations.
 *
 * From 16.0 on the server writes to the organizers, in place of these messages. An answer that the server has
 * taken stands, whatever becomes of its message; the request then ends with a failure, and the invitation
 * stays. Queued and owned by the RequestManager. Main thread only.
 */
class MeetingResponseRequest : public CommandRequest
{
    Q_OBJECT

public:
    using RequestData = MeetingAnswer;

    MeetingResponseRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

    /** An answer to the invitation of a message, to the whole or (seconds since the epoch) to one occurrence
     * by its original start; replyMessageId is the message for the organizer, 0 for none. Only before the
     * start; what is wrong with the arguments is logged, and nothing is added. */
    void appendRequest(EasItemsCommon::UserResponseType userResponse, quint64 requestMessageId,
        qint64 instanceId, quint64 replyMessageId);
    /** The same for an event of the calendar, by its local identifier. */
    void appendRequestEvent(EasItemsCommon::UserResponseType userResponse, const QString &requestEventId,
        qint64 instanceId, quint64 replyMessageId);
    void clearRequests() { mAnswers.clear(); }
    MeetingResponseCommand::Options options() const { return mOptions; }
    void setOptions(const MeetingResponseCommand::Options &options) { mOptions = options; }

public Q_SLOTS:
    void resumeRequest(bool success) override;
    void retrySend() override;

protected:
    void startRequest() override;
    void reportRequestCompleted() override;
    QString commandName() const override;
    void onCommandFinished(bool success) override;

private:
    enum class State {
        NotStarted,
        Answering, ///< a MeetingResponse is under way
        SendingReplies ///< a SendMail is
    };

    void append(const RequestData &answer);
    void startMeetingResponseCommand();
    bool appendContainers(MeetingResponseCommand &command);
    void processMeetingResponseFinished(bool success);
    /** Whether the server has taken all answers; if not, the request has ended or waits for its retry. */
    bool takeResults(const MeetingResponseCommand &command);
    void startReplies();
    void startSendMailCommand();
    void processSendMailFinished(bool success);
    void finishReplies();
    bool deleteAllResponseEmails();

    State mState = State::NotStarted;
    MeetingResponseCommand::Options mOptions;
    QList<RequestData> mAnswers;
    MeetingReplyMails mReplies;
};
