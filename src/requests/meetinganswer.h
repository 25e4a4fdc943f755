// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"

#include <QDateTime>
#include <QString>

/** How the user answers one invitation: that of a message of the store, or an event of the calendar. A plain
 * value. */
struct MeetingAnswer
{
    MeetingAnswer(EasItemsCommon::UserResponseType userResponse, quint64 requestMessageId, qint64 instanceId,
        quint64 replyMessageId)
        : requestMessageId(requestMessageId)
        , instanceId(instanceId)
        , replyMessageId(replyMessageId)
        , userResponse(userResponse)
    {
    }
    MeetingAnswer(EasItemsCommon::UserResponseType userResponse, const QString &requestEventId,
        qint64 instanceId, quint64 replyMessageId)
        : instanceId(instanceId)
        , replyMessageId(replyMessageId)
        , userResponse(userResponse)
        , requestEventId(requestEventId)
    {
    }

    bool isAboutEvent() const { return !requestEventId.isEmpty(); }
    /** The original start of the occurrence; invalid for the whole meeting. */
    QDateTime occurrence() const
    {
        return instanceId != 0 ? QDateTime::fromSecsSinceEpoch(instanceId, Qt::UTC) : QDateTime();
    }

    /** The message with the invitation; 0 for an answer to an event. */
    quint64 requestMessageId = 0;
    /** Seconds since the epoch; 0 for the whole meeting. */
    qint64 instanceId = 0;
    /** The message for the organizer; 0 for none. */
    quint64 replyMessageId = 0;
    EasItemsCommon::UserResponseType userResponse;
    /** The local identifier of the event; empty for an answer to a message. */
    QString requestEventId;
};
