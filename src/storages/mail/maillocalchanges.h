// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "easitems/emailserverid.h"

#include <QList>
#include <QString>
#include <QStringList>

struct MailStoreContext;
class EasEmailItem;
class MailPendingMarks;
class QMailMessageMetaData;

/** Finds what the user changed: all of it stands in the store's own flags and records, with no journal.
 * Unread where the mapping cannot tell what the server calls it. */
class MailLocalChanges
{
public:
    MailLocalChanges(const MailStoreContext &context, MailPendingMarks &marks);

    Lookup<QList<EasEmailItem>> addedEmails(const QString &localFolderId) const;

    /**
     * Messages whose read mark differs from what the server knows, with that mark and their names alone. Not
     * those that the server knows nothing of, or has in another folder.
     */
    Lookup<QList<EasEmailItem>> updatedEmails(const QString &localFolderId) const;

    /**
     * Messages that the user moved. A move that the mapping already knows (it was interrupted between mapping
     * and store) is finished here and not reported again.
     */
    Lookup<QList<EasEmailItem>> movedEmails() const;

    /** Server ids of messages that the user deleted from the folder. */
    Lookup<QList<KeptEmailId>> deletedEmails(const QString &localFolderId) const;

private:
    /** Whether nothing is to be told of a message's place any more. */
    enum class Settled { No, Yes };

    /** Finishes a move that the mapping knows, and names in the item what is still to be told of the message.
     */
    Lookup<Settled> settleMove(
        QMailMessageMetaData &message, EasEmailItem &item, const QString &mapped) const;

    const MailStoreContext &mContext;
    MailPendingMarks &mMarks;
};
