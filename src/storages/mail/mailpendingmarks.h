// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QSet>
#include <QVector>

#include <qmailid.h>

class QMailMessageKey;
struct MailStoreContext;

/**
 * Messages whose read mark the server does not know, found without a look at whole folders for each reply.
 *
 * A folder is looked at as a whole once in a sync; later questions go to what was pending then and to the
 * messages that the store has told of since. What another process changes in the middle of a sync and the
 * store tells of late is found by the next sync. Owned by the mail storage; main thread only.
 */
class MailPendingMarks
{
public:
    explicit MailPendingMarks(const MailStoreContext &context);

    /** Messages whose mark is not the one that the server knows. */
    static QMailMessageKey pending();

    /** The next question about a folder looks at all of it. */
    void lookAnew();
    /** The store has told of changes of these messages. */
    void messagesUpdated(const QMailMessageIdList &ids);

    /** Without messages whose move the server does not know: it has them under another folder's name. */
    QMailMessageIdList inFolder(const QMailFolderId &folder);

private:
    struct Look
    {
        QMailMessageIdList pending;
        /** How many of the updates the look has seen. */
        int seen = 0;
    };

    QMailMessageIdList query(const QMailFolderId &folder, const QMailMessageIdList *among) const;

    const MailStoreContext &mContext;
    QHash<QMailFolderId, Look> mLooks;
    QVector<QMailMessageId> mUpdates;
};
