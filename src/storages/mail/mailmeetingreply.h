// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"

#include <QDateTime>
#include <QString>

struct MailStoreContext;
class CalendarStorage;

/**
 * The calendar part of the message with which the user answers an invitation: what the calendar storage makes
 * of the invitation's own iCalendar data. An object of the moment; main thread only.
 */
class MailMeetingReply
{
public:
    /** An occurrence is named by its original start; without a valid one the answer is about all. */
    MailMeetingReply(const MailStoreContext &context, quint64 replyMessageId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence);

    bool answerMessage(quint64 invitationId) const;
    /** An event of the calendar storage, by its local identifier. */
    bool answerEvent(const QString &eventId) const;

private:
    QString invitationData(quint64 invitationId) const;
    bool mergeICalIntoResponsePart(
        const CalendarStorage &calendar, const QString &requestData, bool allowMissingMethod) const;

    const MailStoreContext &mContext;
    const quint64 mReplyMessageId;
    const EasItemsCommon::UserResponseType mResponse;
    const QDateTime mOccurrence;
};
