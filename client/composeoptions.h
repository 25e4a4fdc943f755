// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/outgoingmessage.h"

class QCommandLineParser;

/** The options that say who gets a message, what it is about and what goes along. On the stack of a command.
 */
class ComposeOptions
{
public:
    /** Adds the options; the parser outlives this object. */
    explicit ComposeOptions(QCommandLineParser &parser);

    /**
     * Adds what the options say to a message. Another exit status than success, after an error was printed,
     * if something of it cannot be sent.
     */
    int read(OutgoingMessage *outgoing) const;
    /** Whether the message is to be kept and not sent. */
    bool isDraft() const;
    /** Whether one of the options says something of the message. */
    bool saysSomething() const;

private:
    bool readAddresses(OutgoingMessage *outgoing) const;

    QCommandLineParser &mParser;
};
