// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mailstorage.h"

#include <qmailfolder.h>
#include <qmailmessage.h>

struct MailStoreContext;

/** The user's messages that are to be sent: as they go out, and their place afterwards. The store must be
 * there. Belongs to MailStorageImpl; main thread only. */
class MailOutgoing
{
public:
    explicit MailOutgoing(const MailStoreContext &context);

    /** The message with its whole MIME text; empty, logged, if there is no such message. */
    EasEmailItem message(const QString &localId) const;
    /** The same for a server that adds the message that is answered or forwarded. Then smartMimeData() of the
     * body is set, and collection and replyToId() are what the server calls that message. */
    EasEmailItem smartMessage(const QString &localId) const;
    bool isReply(const QString &localId) const;
    bool isForward(const QString &localId) const;

    bool moveToDrafts(const QString &localId) const;
    bool settleSent(const QString &localId, MailStorage::SentCopy copy) const;
    bool wasSent(const QString &localId) const;

private:
    bool answersAs(
        const QString &localId, QMailMessage::ResponseType first, QMailMessage::ResponseType second) const;
    EasEmailItem itemOf(const QMailMessage &message) const;
    bool nameSource(EasEmailItem *item) const;
    bool takeOut(const QMailMessageMetaData &sent, MailStorage::SentCopy copy) const;
    /** False, logged, if the account has no such folder or the store refuses. */
    bool moveTo(const QMailMessageId &id, QMailFolder::StandardFolder folder) const;

    const MailStoreContext &mContext;
};
