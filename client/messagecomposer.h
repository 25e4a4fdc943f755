// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/outgoingmessage.h"
#include "common/easaccountid.h"

#include <qmailfolder.h>

class CommandContext;

/**
 * Makes the messages of an account that are to go out, in the form in which the engine takes them from the
 * device's mail store. On the stack of a command; the store is open.
 */
class MessageComposer
{
public:
    MessageComposer(CommandContext &context, EasAccountId accountId);

    /** Who the account's messages are from; null if the account does not say. */
    QMailAddress from() const { return mFrom; }

    /**
     * Puts the message into the store, into the Outbox, from where the engine sends it, or into Drafts. An
     * invalid identifier, after an error was printed and with nothing stored, if a file cannot be read or the
     * store refuses.
     */
    QMailMessageId store(const OutgoingMessage &outgoing, QMailFolder::StandardFolder place) const;

    /** The same for a message as it was written elsewhere, which the store has and keeps. */
    QMailMessageId storeCopy(const QMailMessage &written, QMailFolder::StandardFolder place) const;

private:
    QMailMessage headed(const OutgoingMessage &outgoing) const;
    void addOwnHeaders(QMailMessage &message) const;
    QMailMessageId add(QMailMessage &message, QMailFolder::StandardFolder place) const;

    EasAccountId mAccountId;
    QMailAddress mFrom;
};
