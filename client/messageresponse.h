// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/outgoingmessage.h"

/**
 * What a reply to a message, or a forward of it, begins with: who gets it, what it is called, and how the
 * message itself goes along. On the stack of a command.
 *
 * The server adds a message that it has; otherwise, or as a whole, the text stands below the new one and the
 * files of a forward go along from the device.
 */
class MessageResponse
{
public:
    /** The source with its content; self: who answers. */
    MessageResponse(const QMailMessage &source, const QMailAddress &self);

    /** Whether the server has the message, so that it can add it. */
    bool isOnServer() const;
    void setWhole(bool isWhole) { mIsWhole = isWhole; }
    /** Whether something that goes along from the device is not there yet. */
    bool lacksContent(bool isForward) const;

    OutgoingMessage reply(bool toAll) const;
    OutgoingMessage forward() const;
    /** What is to stand below the text of a reply or a forward; empty where the server adds it. */
    QString quotation() const;
    QString forwardedText() const;

private:
    bool isSourceAdded() const { return !mIsWhole && isOnServer(); }
    OutgoingMessage begun(QMailMessage::ResponseType type) const;
    QList<QMailAddress> sender() const;
    bool isSelf(const QMailAddress &address) const;

    QMailMessage mSource;
    QMailAddress mSelf;
    bool mIsWhole = false;
};
