// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QDateTime>
#include <QString>
#include <qmailaddress.h>
#include <qmailid.h>

/** The meeting that an answer is about. */
struct AnsweredMeeting
{
    /** The message with the invitation; invalid for an event. */
    QMailMessageId message;
    /** The identifier of an event; empty for a message. */
    QString event;
    QMailAddress organizer;
    QString subject;
    /** By the rule of its series; invalid for the whole meeting. */
    QDateTime occurrence;

    /** As the bus has it. */
    qlonglong instanceId() const { return occurrence.isValid() ? occurrence.toSecsSinceEpoch() : 0; }
};

/** Finds meetings by what the user calls them. On the stack of a command. */
class MeetingSearch
{
public:
    explicit MeetingSearch(EasAccountId accountId)
        : mAccountId(accountId)
    {
    }

    /** A message with an invitation by its number, or else an event; with the start of an occurrence that one
     * alone. The exit status; another one than success comes after an error was printed. */
    int find(const QString &argument, const QString &occurrenceStart, AnsweredMeeting *meeting) const;

private:
    bool findInvitation(const QString &number, AnsweredMeeting *meeting, QString *iCalendar) const;
    int findEvent(const QString &id, const QString &occurrenceStart, AnsweredMeeting *meeting) const;

    const EasAccountId mAccountId;
};
