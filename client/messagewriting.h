// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/composeoptions.h"
#include "client/mailselection.h"
#include "client/messagetext.h"

/**
 * What the commands that write a message share: the options for it, the account that it is from, and the way
 * from what the user said to a message that is sent or kept. On the stack of a command.
 */
class MessageWriting
{
public:
    explicit MessageWriting(CommandContext &context);

    MailSelection &mail() { return mMail; }
    /** Whether an option says something of the message. */
    bool saysSomething() const { return mOptions.saysSomething() || mText.isGiven(); }
    /** Parses the arguments and opens the store of an account that can send. False if the command is to end
     * with exitStatus(). */
    bool open(int fewestArguments, int mostArguments);
    int exitStatus() const { return mExitStatus; }

    /** Adds what the user says, writes the text in front of an earlier one, and sends the message or keeps
     * it. */
    int finish(OutgoingMessage outgoing, const QString &earlier = QString());

private:
    CommandContext &mContext;
    MailSelection mMail;
    ComposeOptions mOptions;
    MessageText mText;
    int mExitStatus = ExitSuccess;
};
