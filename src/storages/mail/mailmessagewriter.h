// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailfolder.h>

#include <QHash>
#include <QString>

#include <memory>

struct MailStoreContext;
class EasEmailItem;
class QMailMessage;

/**
 * Builds messages of the mail store from items that came from the server. An object of the moment: it asks
 * the store for a folder once, however many of the items are in it.
 */
class MailMessageWriter
{
public:
    explicit MailMessageWriter(const MailStoreContext &context);

    /**
     * A new message for the item, or the stored one that its local id names, as it stands.
     *
     * Null, with a log line, if a meeting's calendar part cannot be asked for. Nothing is written to the
     * store.
     */
    std::unique_ptr<QMailMessage> mailMessageFromEmailItem(const EasEmailItem &item) const;

    /** The folder as the store has it; invalid if it has none of that number. */
    QMailFolder folder(const QMailFolderId &id) const;

    /** The store's name for an item: its server id, or its long id if it is a search result. */
    static QString serverUid(const EasEmailItem &item);

private:
    void setRecipients(QMailMessage &message, const EasEmailItem &item) const;
    bool setMeeting(QMailMessage &message, const EasEmailItem &item) const;
    bool addCalendarPart(QMailMessage &message, const EasEmailItem &item) const;
    void copyFolderFlags(QMailMessage &message) const;

    const MailStoreContext &mContext;
    mutable QHash<QMailFolderId, QMailFolder> mFolders;
};
