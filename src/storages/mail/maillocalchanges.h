// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

struct MailStoreContext;
class EasEmailItem;
class MailPendingMarks;
class QMailMessageMetaData;

/** Finds what the user changed: all of it stands in the store's own flags and records, with no journal. */
class MailLocalChanges
{
public:
    MailLocalChanges(const MailStoreContext &context, MailPendingMarks &marks);

    QList<EasEmailItem> addedEmails(const QString &localFolderId) const;

    /**
     * Messages whose read mark differs from what the server knows, with that mark and their names alone. Not
     * those that the server knows nothing of, or has in another folder.
     */
    QList<EasEmailItem> updatedEmails(const QString &localFolderId) const;

    /**
     * Messages that the user moved. A move that the mapping already knows (it was interrupted between mapping
     * and store) is finished here and not reported again.
     */
    QList<EasEmailItem> movedEmails() const;

    /** Server ids of messages that the user deleted from the folder. */
    QStringList deletedEmails(const QString &localFolderId) const;

private:
    /**
     * Finishes a move that the mapping knows, and names in the item what is still to be told of the message;
     * true if nothing is.
     */
    bool settleMove(QMailMessageMetaData &message, EasEmailItem &item, const QString &mapped) const;

    const MailStoreContext &mContext;
    MailPendingMarks &mMarks;
};
