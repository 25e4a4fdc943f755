// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/meetinganswer.h"

#include <QList>

class EasAccount;

/**
 * The messages with which the organizers hear of answers: which of them has gone, which cannot go, which is
 * next. A part of the request; main thread only.
 */
class MeetingReplyMails
{
public:
    MeetingReplyMails() = default;
    explicit MeetingReplyMails(const QList<MeetingAnswer> &answers);

    /** Makes the calendar part of the next message and gives its number in the store; 0 if none is left. A
     * message that gets none is passed over, and has failed. */
    quint64 takeNext(const EasAccount &account);
    void markSent(quint64 replyMessageId);
    /** The server writes in their place; false, logged, if one of them is still in the Outbox. */
    bool giveWayToServer(const EasAccount &account);

    bool hasFailed() const;
    /** The messages with the invitations whose answers have gone out whole. */
    QList<quint64> answeredInvitations() const;

private:
    enum class State { Waiting, Sent, Failed };
    struct Reply
    {
        MeetingAnswer answer;
        State state;
    };

    static bool updateCalendarPart(const EasAccount &account, const MeetingAnswer &answer);

    QList<Reply> mReplies;
};
