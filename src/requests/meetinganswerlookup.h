// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "protocol/elements/meetingresponserequestcontainer.h"
#include "requests/meetinganswer.h"

#include <optional>

class CalendarStorage;
class MailStorage;

/**
 * Finds what the server calls the invitations and events that the user answers. A value on the stack of a
 * request's slot; the storages must outlive it. Main thread only.
 */
class MeetingAnswerLookup
{
public:
    MeetingAnswerLookup(EasAccountId accountId, MailStorage &mails, CalendarStorage &events);

    /** Nothing, logged, if the server does not know what is answered. */
    std::optional<MeetingResponseRequestContainer> container(const MeetingAnswer &answer) const;

private:
    bool setMessage(const MeetingAnswer &answer, MeetingResponseRequestContainer &container) const;
    bool setEvent(const MeetingAnswer &answer, MeetingResponseRequestContainer &container) const;

    const EasAccountId mAccountId;
    MailStorage &mMails;
    CalendarStorage &mEvents;
};
