// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"
#include "storages/calendar/icalhandles.h"

#include <QDateTime>
#include <QString>

/**
 * The iCalendar reply to an invitation: what the organizer's calendar needs in order to know how this
 * attendee has answered, and nothing else of the invitation.
 *
 * A value for one use; main thread only.
 */
class MeetingReply
{
public:
    /** The address is that of the attendee who answers. */
    MeetingReply(const QString &address, EasItemsCommon::UserResponseType response);

    /** The answer is about one occurrence of a series, by its original start; of days the date counts. */
    void setOccurrence(const QDateTime &original) { mOccurrence = original; }
    /** Events of the store are no messages, and have no method. */
    void allowMissingMethod(bool isAllowed) { mMayLackMethod = isAllowed; }

    /** The document, or an empty text, with the reason in the log, for what is no invitation. */
    QString encode(const QString &requestData) const;

private:
    ICalComponent answeredEvent(icalcomponent *event) const;
    /** Makes of a series the occurrence that the answer is about: without that, it would be about them all.
     */
    void narrow(icalcomponent *event) const;
    icalproperty *attendee() const;

    QString mAddress;
    EasItemsCommon::UserResponseType mResponse;
    QDateTime mOccurrence;
    bool mMayLackMethod = false;
};
