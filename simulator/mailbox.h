// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/item.h"
#include "simulator/outofoffice.h"

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

namespace Simulator {

/** Folder types of the protocol that a fresh mailbox has, or that tests need by name. */
enum FolderType : int {
    GenericFolder = 1,
    InboxFolder = 2,
    DraftsFolder = 3,
    DeletedItemsFolder = 4,
    SentItemsFolder = 5,
    OutboxFolder = 6,
    TasksFolder = 7,
    CalendarFolder = 8,
    ContactsFolder = 9,
    UserMailFolder = 12,
    UserCalendarFolder = 13,
    UserContactsFolder = 14,
    RecipientCacheFolder = 19,
};

struct MailFolder
{
    QString id;
    QString parentId; ///< "0" at the top
    QString name;
    int type = UserMailFolder;

    bool operator==(const MailFolder &other) const
    {
        return id == other.id && parentId == other.parentId && name == other.name && type == other.type;
    }
};

/** One line of a folder's listing. */
struct ItemEntry
{
    QString serverId;
    ItemPtr item;
};

/**
 * The mailbox of one user: folders and items, changed from code as a mail server and its other clients would.
 *
 * A server identifier is "folder:number", so that an item gets a new one when it moves. A new mailbox has the
 * folders Inbox, Drafts, Deleted Items, Sent Items, Outbox, Calendar, Contacts and Tasks. Thread-safe; each
 * call is atomic.
 */
class Mailbox
{
public:
    Mailbox();
    ~Mailbox();

    QString addFolder(
        const QString &name, int type = UserMailFolder, const QString &parentId = QStringLiteral("0"));
    bool renameFolder(const QString &id, const QString &name);
    bool moveFolder(const QString &id, const QString &parentId);
    /** Devices may read the folder and change nothing in it; each of their changes then fails. */
    bool setReadOnly(const QString &id, bool isReadOnly);
    bool isReadOnly(const QString &id) const;
    /** Removes the folder with its sub-folders and all items. */
    bool removeFolder(const QString &id);
    QVector<MailFolder> folders() const;
    MailFolder folder(const QString &id) const;
    /** By a path of names, "Inbox/Projects". */
    MailFolder folderByPath(const QString &path) const;
    /** First folder of the type; its id is empty if there is none. */
    MailFolder folderOfType(int type) const;
    QString inboxId() const { return folderOfType(InboxFolder).id; }

    /**
     * A message arrives: RFC 822 bytes as they are. @p received defaults to the date of the message. Returns
     * its server identifier, empty if there is no such folder.
     */
    QString deliver(
        const QString &folderId, const QByteArray &message, const QDateTime &received = QDateTime());
    QString addItem(const QString &folderId, const ItemPtr &item);
    bool replaceItem(const QString &serverId, const ItemPtr &item);
    bool setRead(const QString &serverId, bool read);
    /** Flag status of the protocol: 0 none, 1 complete, 2 active. */
    bool setFlag(const QString &serverId, int status);
    bool setCategories(const QString &serverId, const QStringList &categories);
    bool remove(const QString &serverId);
    /** Returns the new server identifier, empty if item or folder do not exist. */
    QString move(const QString &serverId, const QString &folderId);

    QVector<ItemEntry> items(const QString &folderId) const;
    ItemPtr item(const QString &serverId) const;
    int itemCount(const QString &folderId) const;
    /** What the item holds, "value<ContactItem>(id)"; nothing if there is none or it is of another kind. */
    template <class ItemType> std::optional<typename ItemType::Value> value(const QString &serverId) const;
    /** Changes what the item holds; false if there is none or it is of another kind. */
    template <class ItemType>
    bool edit(const QString &serverId, const std::function<void(typename ItemType::Value &)> &change);

    /** What the user lets other people know while away; devices read and change it. */
    OutOfOffice outOfOffice() const;
    void setOutOfOffice(const OutOfOffice &state);

    /** Called after each change, by whoever changed something; set before the mailbox is used. */
    void setOnChanged(const std::function<void()> &onChanged) { mOnChanged = onChanged; }

    /** Runs @p work with the mailbox standing still for all others. Of its server the work may look up
     * mailboxes; its other methods wait for commands, and these for the mailbox. */
    void atomically(const std::function<void()> &work);

private:
    class Data;
    mutable QRecursiveMutex mMutex;
    std::unique_ptr<Data> d;
    std::function<void()> mOnChanged;

    void tellChanged() const;
};

template <class ItemType>
std::optional<typename ItemType::Value> Mailbox::value(const QString &serverId) const
{
    const auto found = std::dynamic_pointer_cast<const ItemType>(item(serverId));
    return found ? std::make_optional(found->value()) : std::nullopt;
}

template <class ItemType>
bool Mailbox::edit(const QString &serverId, const std::function<void(typename ItemType::Value &)> &change)
{
    const QMutexLocker lock(&mMutex);
    auto changed = value<ItemType>(serverId);
    if (!changed)
        return false;
    change(*changed);
    return replaceItem(serverId, ItemType::make(*changed));
}

} // namespace Simulator
