// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessage.h>

/**
 * A stored message as the bytes that the server gets: lines end in CR LF, and one Bcc header stands in front,
 * by which the server delivers and which it takes off. An object of the moment.
 */
class MailOutgoingMime
{
public:
    explicit MailOutgoingMime(const QMailMessage &message);

    /** With everything in it. */
    QByteArray whole() const;

    struct Smart
    {
        QByteArray mime;
        /** Whether the server has to add the message that this one answers or forwards. */
        bool isSmart;
    };
    /** Without the message that it answers or forwards, if that is a part of it. */
    Smart smart() const;

    /** The Bcc header with its continuation lines, each ending in CR LF; empty without one. */
    static QByteArray bccHeader(const QMailMessage &message);

private:
    static QByteArray rendered(const QMailMessage &message);
    bool isMeetingResponse() const;

    const QMailMessage &mMessage;
};
