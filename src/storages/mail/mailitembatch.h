// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailmessagechanges.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <qmailid.h>

struct MailStoreContext;
class EasEmailItem;

/**
 * Writes the items of one reply to the store: added, changed, removed.
 *
 * The store is written before the mapping database, so after a crash or a failure the server's answer comes
 * again and meets messages that are there already. Which they are, MailRecognition says; such a message is
 * adopted. Owned by the mail storage; main thread only.
 */
class MailItemBatch
{
public:
    explicit MailItemBatch(const MailStoreContext &context);

    /**
     * All three in this order; after a failure what was added is taken out again. Added items get their
     * folders and their messages by local ids; items that have to be stored anew move among them.
     */
    bool updateEmails(QList<EasEmailItem> &added, QList<EasEmailItem> &changed, const QStringList &deleted);

    /**
     * Stores new messages and writes their local ids into the items. An item that the user has deleted in the
     * meantime keeps an empty local id; one that occurs twice is taken once and leaves the list.
     */
    bool addEmailItems(QList<EasEmailItem> &items);

    /**
     * Items that came once more as new and whose message is in the store no more, though they have rows:
     * they move from the changed to the added, and their rows go. False if the mapping fails.
     */
    bool takeLostItems(QList<EasEmailItem> &changed, QList<EasEmailItem> &added) const;

    bool updateEmailItems(const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal);

    /** serverToLocal: all rows; a message may have two, and goes with the last. */
    bool deleteEmailItems(const QStringList &serverIds, const QMap<QString, QString> &serverToLocal);
    bool deleteEmailItems(const QMailMessageIdList &ids);

    /** Removes what the latest addEmailItems() made; messages that were there before stay. */
    void rollBackAddedEmailItems(QList<EasEmailItem> &items);

    /** After an upload: what the item says about reading is now known to the server. */
    bool successfullyUpdatedEmails(const QList<EasEmailItem> &items);

private:
    bool setFolders(QList<EasEmailItem> &items) const;
    bool applyToStored(
        const QList<EasEmailItem> &added, const QList<EasEmailItem> &changed, const QStringList &deleted);

    const MailStoreContext &mContext;
    MailMessageChanges mChanges;
    QSet<QMailMessageId> mAdopted;
};
