// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/mailbox.h"

class CommandContext;

/** A message of the user's that was kept, or that waits in the Outbox. On the stack of a command. */
class Draft
{
public:
    Draft(CommandContext &context, EasAccountId accountId, const QMailMessageId &id);

    /** False, after an error was printed, if it cannot be read, is a message of another kind, or nobody would
     * get it. */
    bool isSendable() const;
    /** Whether it came from the server, and not whole. */
    bool lacksContent() const;

    /**
     * Has it stand in the Outbox, a draft of the server as a message of its own in place of the draft. An
     * invalid identifier, after an error was printed, if the store refused.
     */
    QMailMessageId moveToOutbox() const;

private:
    bool isOfServer() const { return !mMessage.serverUid().isEmpty(); }
    QMailMessageId replace() const;

    CommandContext &mContext;
    EasAccountId mAccountId;
    QMailMessage mMessage;
};
