// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The out-of-office answer to one group of senders, as a Settings command carries it; a plain value. */
class OofMessageItem
{
public:
    /** Whom the answer is for. */
    enum MessageType {
        UndefinedMessage = 0,
        InternalMessage = 1,
        /** Senders outside the organisation that are among the user's contacts. */
        KnownExternalMessage = 2,
        UnknownExternalMessage = 3
    };

    int messageType() const { return mMessageType; }
    void setMessageType(int type) { mMessageType = type; }
    bool enabled() const { return mEnabled; }
    void setEnabled(bool enabled) { mEnabled = enabled; }
    QString replyMessage() const { return mReplyMessage; }
    void setReplyMessage(const QString &message) { mReplyMessage = message; }
    /** "Text" or "HTML". */
    QString bodyType() const { return mBodyType; }
    void setBodyType(const QString &type) { mBodyType = type; }
    void clear() { *this = OofMessageItem(); }

private:
    int mMessageType = UndefinedMessage;
    bool mEnabled = false;
    QString mReplyMessage;
    QString mBodyType;
};
