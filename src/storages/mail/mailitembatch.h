// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailmessagechanges.h"
#include "storages/mail/mailmessagewriter.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include <qmailid.h>

#include <map>
#include <memory>
#include <vector>

struct MailStoreContext;
class EasEmailItem;
class QMailMessage;

/**
 * Writes the items of one reply to the store: added, changed, removed, moved, found.
 *
 * The store is written before the mapping database, so after a crash or a failure the server's answer comes
 * again and meets messages that are there already. Such a message has no mapping; it is adopted: it takes the
 * item's content and keeps its id and what the user did with it meanwhile. Nothing is doubled, nothing fails
 * for ever on the store's rule that a server uid stands once in an account.
 */
class MailItemBatch
{
public:
    explicit MailItemBatch(const MailStoreContext &context);

    /**
     * Stores new messages and writes their local ids into the items. An item that the user has deleted in the
     * meantime keeps an empty local id; one that occurs twice is taken once and leaves the list.
     */
    bool addEmailItems(QList<EasEmailItem> &items);
    bool updateEmailItems(const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal);
    bool deleteEmailItems(const QStringList &serverIds, const QMap<QString, QString> &serverToLocal);
    bool deleteEmailItems(const QMailMessageIdList &ids);

    /** Removes what the latest addEmailItems() made; messages that were there before stay. */
    void rollBackAddedEmailItems(QList<EasEmailItem> &items);

    /** After a server-side move: new server ids, and no pending move any more. */
    bool updateMovedEmails(const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal);

    /** Stores search hits as temporary messages; ids come in the order of the items. */
    bool addSearchResults(QList<EasEmailItem> &items, QList<quint64> &ids);

    /** After an upload: what the item says about reading is now known to the server. */
    bool successfullyUpdatedEmails(const QList<EasEmailItem> &items);

private:
    using Messages = std::vector<std::unique_ptr<QMailMessage>>;

    QHash<QString, QMailMessageId> storedMessages(const QList<EasEmailItem> &items) const;
    QSet<QString> deletedByUser() const;
    bool isMapped(const QString &serverUid) const;
    bool hasFolder(const EasEmailItem &item) const;
    bool canAdopt(const QMailMessage &stored, const EasEmailItem &item) const;
    void adopt(QMailMessage &fresh, const QMailMessage &stored) const;
    bool prepareItem(
        const EasEmailItem &item, const QMailMessageId &stored, std::unique_ptr<QMailMessage> *message) const;
    bool store(const Messages &messages);
    bool update(const std::map<QMailMessageId, QMailMessage> &messages) const;
    QMailMessageId movedMessage(const EasEmailItem &item, const QMap<QString, QString> &serverToLocal) const;
    bool finishMove(QMailMessage &message, const EasEmailItem &item) const;
    bool removeEarlierHits(const QStringList &serverUids) const;

    const MailStoreContext &mContext;
    MailMessageWriter mWriter;
    MailMessageChanges mChanges;
    QSet<QMailMessageId> mAdopted;
};
