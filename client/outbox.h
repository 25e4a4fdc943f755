// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/mailbox.h"

#include <QDateTime>

/**
 * The account's messages that are to go out. On the stack of a command; the mail store is open.
 *
 * The engine sends a message only when it is told to, and leaves one that it cannot send where it is, or puts
 * it into Drafts. Why the last try failed stands with the message, for whoever looks later.
 */
class Outbox
{
public:
    explicit Outbox(EasAccountId accountId);

    /** The last try to send a message; an invalid time for none. */
    struct Try
    {
        QDateTime time;
        QString error;
    };

    /** Where a message stands. */
    enum class State {
        Waiting,
        Draft,
        /** It has gone out, or is a message of another kind. */
        Other
    };

    /** What waits, oldest first. */
    QMailMessageIdList messages() const;
    static State state(const QMailMessageMetaData &message);
    static Try lastTry(const QMailMessageMetaData &message);

    /** Each is false, after an error was printed, if the store refused. */
    bool noteFailure(const QMailMessageId &id, const QString &error);
    bool moveToDrafts(const QMailMessageId &id);
    /** A message of Drafts bears the date of now then; one that waits stays as it is, so that the server
     * knows it again. */
    bool take(const QMailMessageId &id);

private:
    void place(QMailMessageMetaData &message, QMailFolder::StandardFolder folder);

    EasAccountId mAccountId;
    MailBox mBox;
};
