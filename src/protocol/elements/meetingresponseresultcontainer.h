// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/base/eas.h"

#include <QString>

/** What the server says of one answer to an invitation. A plain value. */
class MeetingResponseResultContainer
{
public:
    QString requestId() const { return mRequestId; }
    void setRequestId(const QString &id) { mRequestId = id; }
    QString longId() const { return mLongId; }
    void setLongId(const QString &id) { mLongId = id; }
    /** The event that the server has made or changed; empty after a refusal. */
    QString calendarId() const { return mCalendarId; }
    void setCalendarId(const QString &id) { mCalendarId = id; }
    Eas::MeetingResponseStatus status() const { return mStatus; }
    void setStatus(Eas::MeetingResponseStatus status) { mStatus = status; }

private:
    QString mRequestId;
    QString mLongId;
    QString mCalendarId;
    Eas::MeetingResponseStatus mStatus = Eas::MeetingResponseStatusUndefined;
};
