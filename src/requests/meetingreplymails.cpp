// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/meetingreplymails.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "requests/sentmessage.h"
#include "storages/mailstorage.h"

#include <algorithm>

MeetingReplyMails::MeetingReplyMails(const QList<MeetingAnswer> &answers)
{
    for (const MeetingAnswer &answer : answers)
        mReplies.append({ answer, answer.replyMessageId != 0 ? State::Waiting : State::Sent });
}

quint64 MeetingReplyMails::takeNext(const EasAccount &account)
{
    for (Reply &reply : mReplies) {
        if (reply.state != State::Waiting)
            continue;
        if (updateCalendarPart(account, reply.answer))
            return reply.answer.replyMessageId;
        qCWarning(eas()) << "Failed updating the meeting response calendar part";
        reply.state = State::Failed;
    }
    return 0;
}

bool MeetingReplyMails::updateCalendarPart(const EasAccount &account, const MeetingAnswer &answer)
{
    const QSharedPointer<MailStorage> mails = account.mailStorage();
    if (!mails) {
        qCCritical(eas()) << "No email storage for account:" << account.id()
                          << ". Cannot check/update calendar response part";
        return false;
    }
    if (!account.calendarStorage()) {
        qCCritical(eas()) << "No calendar storage for account:" << account.id()
                          << ". Cannot update calendar response part";
        return false;
    }
    return answer.isAboutEvent() ? mails->updateCalendarResponsePart(
               answer.replyMessageId, answer.requestEventId, answer.userResponse, answer.occurrence())
                                 : mails->updateCalendarResponsePart(answer.replyMessageId,
                                     answer.requestMessageId, answer.userResponse, answer.occurrence());
}

void MeetingReplyMails::markSent(quint64 replyMessageId)
{
    for (Reply &reply : mReplies) {
        if (reply.answer.replyMessageId == replyMessageId)
            reply.state = State::Sent;
    }
}

bool MeetingReplyMails::giveWayToServer(const EasAccount &account)
{
    bool haveAllGone = true;
    for (Reply &reply : mReplies) {
        if (reply.state != State::Waiting)
            continue;
        const SentMessage message(account.id(), reply.answer.replyMessageId);
        haveAllGone = message.settle(&account, MailStorage::SentCopy::OnServer) && haveAllGone;
        reply.state = State::Sent;
    }
    return haveAllGone;
}

bool MeetingReplyMails::hasFailed() const
{
    return std::any_of(
        mReplies.begin(), mReplies.end(), [](const Reply &reply) { return reply.state == State::Failed; });
}

QList<quint64> MeetingReplyMails::answeredInvitations() const
{
    QList<quint64> messages;
    for (const Reply &reply : mReplies) {
        if (reply.state == State::Sent && reply.answer.requestMessageId != 0)
            messages.append(reply.answer.requestMessageId);
    }
    return messages;
}
