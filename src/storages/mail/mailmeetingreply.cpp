// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmeetingreply.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "storages/calendarstorage.h"
#include "storages/mail/mailbodywriter.h"
#include "storages/mail/mailstorecontext.h"

namespace {

QSharedPointer<CalendarStorage> calendarOf(const MailStoreContext &context)
{
    QSharedPointer<CalendarStorage> calendar;
    if (context.account)
        calendar = context.account->calendarStorage();
    if (!calendar)
        qCCritical(eas()) << "No calendar storage object";
    return calendar;
}

} // namespace

MailMeetingReply::MailMeetingReply(const MailStoreContext &context, quint64 replyMessageId,
    EasItemsCommon::UserResponseType response, const QDateTime &occurrence)
    : mContext(context)
    , mReplyMessageId(replyMessageId)
    , mResponse(response)
    , mOccurrence(occurrence)
{
}

bool MailMeetingReply::answerMessage(quint64 invitationId) const
{
    qCInfo(eas()) << "Updating meeting response:" << mReplyMessageId << ", invitation:" << invitationId
                  << ", user reponse:" << mResponse;
    const QSharedPointer<CalendarStorage> calendar = calendarOf(mContext);
    const QString requestData = invitationData(invitationId);
    return calendar && !requestData.isEmpty() && mergeICalIntoResponsePart(*calendar, requestData, false);
}

bool MailMeetingReply::answerEvent(const QString &eventId) const
{
    qCInfo(eas()) << "Updating meeting response:" << mReplyMessageId << ", invitation:" << eventId
                  << ", user reponse:" << mResponse;
    const QSharedPointer<CalendarStorage> calendar = calendarOf(mContext);
    if (!calendar)
        return false;
    const QString requestData = calendar->getEventIcal(eventId, mOccurrence);
    if (requestData.isEmpty()) {
        qCWarning(eas()) << "No iCal data in invitation";
        return false;
    }
    return mergeICalIntoResponsePart(*calendar, requestData, true);
}

QString MailMeetingReply::invitationData(quint64 invitationId) const
{
    const QMailMessage invitation = mContext.store->message(QMailMessageId(invitationId));
    const std::optional<QMailMessageBody> body = MailBodyWriter::calendarBody(invitation);
    if (!body) {
        qCWarning(eas()) << "No body in calendar invitation part";
        return {};
    }
    const QString data = body->data().trimmed();
    if (data.isEmpty())
        qCWarning(eas()) << "No iCal data in invitation";
    return data;
}

bool MailMeetingReply::mergeICalIntoResponsePart(
    const CalendarStorage &calendar, const QString &requestData, bool allowMissingMethod) const
{
    const QString reply =
        calendar.encodeMeetingResponse(requestData, mResponse, allowMissingMethod, mOccurrence);
    if (reply.isEmpty())
        return false;
    QMailMessage message = mContext.store->message(QMailMessageId(mReplyMessageId));
    if (!message.id().isValid()) {
        qCWarning(eas()) << "invalid local mesage id" << mReplyMessageId;
        return false;
    }
    MailBodyWriter::setCalendarReply(message, reply.toUtf8());
    return mContext.store->updateMessage(&message);
}
