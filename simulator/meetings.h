// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/event.h"
#include "simulator/mailbox.h"

#include <optional>

namespace Simulator {

/** What invitations and answers to them make of a mailbox. */
namespace Meetings {

enum Response { Accepted = 1, Tentative = 2, Declined = 3 };

/** An answer of the user. */
struct Answer
{
    int response = Accepted;
    QDateTime instance; ///< original start of the occurrence; invalid: the whole meeting
};

/** What an answer has done. */
struct Outcome
{
    QString calendarId; ///< the event in the calendar; empty after a refusal of the whole meeting
    Event meeting; ///< as it was answered
};

/**
 * A message has arrived. An invitation stands in the calendar at once, tentatively and without an answer,
 * once for each meeting; a cancellation marks its event.
 */
void arrive(Mailbox &mailbox, const QString &serverId);

/** The user answers an invitation, which goes to Deleted Items, or an event; nothing if it is neither. */
std::optional<Outcome> answer(Mailbox &mailbox, const QString &serverId, const Answer &answer);

/** What the server sends the organizer for the user. */
struct Reply
{
    QString address; ///< of the user
    QString comment;
    QString proposedStart; ///< "20240502T093000Z"; empty: none
    QString proposedEnd;
};
QByteArray replyMail(const Event &meeting, const Answer &answer, const Reply &reply);

} // namespace Meetings
} // namespace Simulator
