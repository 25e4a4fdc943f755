// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/mailbox.h"

#include "simulator/email.h"

#include <QMutexLocker>
#include <QSet>

#include <algorithm>
#include <map>
#include <vector>

namespace Simulator {
namespace {

struct FolderContent
{
    MailFolder folder;
    std::map<qint64, ItemEntry> items; ///< by the number in the server identifier
    bool isReadOnly = false;
};

} // namespace

class Mailbox::Data
{
public:
    std::vector<FolderContent> folders; ///< parents before what lies in them
    int nextFolder = 1;
    qint64 nextItem = 1;
    OutOfOffice outOfOffice;

    FolderContent *content(const QString &id)
    {
        const auto found = std::find_if(folders.begin(), folders.end(),
            [&id](const FolderContent &entry) { return entry.folder.id == id; });
        return found == folders.end() ? nullptr : &*found;
    }

    /** The folder that holds the item, or null. */
    FolderContent *holder(const QString &serverId)
    {
        FolderContent *found = content(serverId.section(QLatin1Char(':'), 0, 0));
        return found && found->items.count(number(serverId)) ? found : nullptr;
    }

    static qint64 number(const QString &serverId)
    {
        return serverId.section(QLatin1Char(':'), 1).toLongLong();
    }
    static QString serverId(const FolderContent &content, qint64 number)
    {
        return QStringLiteral("%1:%2").arg(content.folder.id).arg(number);
    }

    bool isBelow(QString id, const QString &ancestor)
    {
        while (const FolderContent *entry = content(id)) {
            if (id == ancestor)
                return true;
            id = entry->folder.parentId;
        }
        return false;
    }
};

Mailbox::Mailbox()
    : d(new Data)
{
    addFolder(QStringLiteral("Inbox"), InboxFolder);
    addFolder(QStringLiteral("Drafts"), DraftsFolder);
    addFolder(QStringLiteral("Deleted Items"), DeletedItemsFolder);
    addFolder(QStringLiteral("Sent Items"), SentItemsFolder);
    addFolder(QStringLiteral("Outbox"), OutboxFolder);
    addFolder(QStringLiteral("Calendar"), CalendarFolder);
    addFolder(QStringLiteral("Contacts"), ContactsFolder);
    addFolder(QStringLiteral("Tasks"), TasksFolder);
}

Mailbox::~Mailbox() = default;

void Mailbox::tellChanged() const
{
    if (mOnChanged)
        mOnChanged();
}

QString Mailbox::addFolder(const QString &name, int type, const QString &parentId)
{
    const QMutexLocker lock(&mMutex);
    if (parentId != QLatin1String("0") && !d->content(parentId))
        return QString();
    const QString id = QString::number(d->nextFolder++);
    d->folders.push_back({ { id, parentId, name, type }, {}, false });
    tellChanged();
    return id;
}

bool Mailbox::renameFolder(const QString &id, const QString &name)
{
    const QMutexLocker lock(&mMutex);
    FolderContent *content = d->content(id);
    if (content)
        content->folder.name = name;
    tellChanged();
    return content;
}

bool Mailbox::moveFolder(const QString &id, const QString &parentId)
{
    const QMutexLocker lock(&mMutex);
    FolderContent *content = d->content(id);
    if (!content || d->isBelow(parentId, id) || (parentId != QLatin1String("0") && !d->content(parentId)))
        return false;
    content->folder.parentId = parentId;
    // The sub-tree goes to the end in its own order, so that it comes after its new parent.
    QSet<QString> moved;
    for (const FolderContent &entry : d->folders) {
        if (d->isBelow(entry.folder.id, id))
            moved.insert(entry.folder.id);
    }
    std::stable_partition(d->folders.begin(), d->folders.end(),
        [&moved](const FolderContent &entry) { return !moved.contains(entry.folder.id); });
    tellChanged();
    return true;
}

bool Mailbox::setReadOnly(const QString &id, bool isReadOnly)
{
    const QMutexLocker lock(&mMutex);
    FolderContent *content = d->content(id);
    if (content)
        content->isReadOnly = isReadOnly;
    return content;
}

bool Mailbox::isReadOnly(const QString &id) const
{
    const QMutexLocker lock(&mMutex);
    const FolderContent *content = d->content(id);
    return content && content->isReadOnly;
}

bool Mailbox::removeFolder(const QString &id)
{
    const QMutexLocker lock(&mMutex);
    if (!d->content(id))
        return false;
    QSet<QString> removed;
    for (const FolderContent &entry : d->folders) {
        if (d->isBelow(entry.folder.id, id))
            removed.insert(entry.folder.id);
    }
    const auto first = std::remove_if(d->folders.begin(), d->folders.end(),
        [&removed](const FolderContent &entry) { return removed.contains(entry.folder.id); });
    d->folders.erase(first, d->folders.end());
    tellChanged();
    return true;
}

QVector<MailFolder> Mailbox::folders() const
{
    const QMutexLocker lock(&mMutex);
    QVector<MailFolder> result;
    for (const FolderContent &entry : d->folders)
        result.append(entry.folder);
    return result;
}

MailFolder Mailbox::folder(const QString &id) const
{
    const QMutexLocker lock(&mMutex);
    const FolderContent *content = d->content(id);
    return content ? content->folder : MailFolder();
}

MailFolder Mailbox::folderByPath(const QString &path) const
{
    const QMutexLocker lock(&mMutex);
    MailFolder current;
    current.id = QStringLiteral("0");
    const QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &name : names) {
        const auto found =
            std::find_if(d->folders.begin(), d->folders.end(), [&](const FolderContent &entry) {
                return entry.folder.parentId == current.id && entry.folder.name == name;
            });
        if (found == d->folders.end())
            return MailFolder();
        current = found->folder;
    }
    return names.isEmpty() ? MailFolder() : current;
}

MailFolder Mailbox::folderOfType(int type) const
{
    const QMutexLocker lock(&mMutex);
    const auto found = std::find_if(d->folders.begin(), d->folders.end(),
        [type](const FolderContent &entry) { return entry.folder.type == type; });
    return found == d->folders.end() ? MailFolder() : found->folder;
}

QString Mailbox::deliver(const QString &folderId, const QByteArray &message, const QDateTime &received)
{
    return addItem(folderId, Email::fromMessage(message, received));
}

QString Mailbox::addItem(const QString &folderId, const ItemPtr &item)
{
    const QMutexLocker lock(&mMutex);
    FolderContent *content = d->content(folderId);
    if (!content || !item)
        return QString();
    const qint64 number = d->nextItem++;
    const QString serverId = Data::serverId(*content, number);
    content->items.emplace(number, ItemEntry { serverId, item });
    tellChanged();
    return serverId;
}

bool Mailbox::replaceItem(const QString &serverId, const ItemPtr &item)
{
    const QMutexLocker lock(&mMutex);
    FolderContent *content = d->holder(serverId);
    if (!content || !item)
        return false;
    content->items[Data::number(serverId)].item = item;
    tellChanged();
    return true;
}

bool Mailbox::setRead(const QString &serverId, bool read)
{
    const QMutexLocker lock(&mMutex);
    const auto email = std::dynamic_pointer_cast<const Email>(item(serverId));
    return email && replaceItem(serverId, email->withRead(read));
}

bool Mailbox::setFlag(const QString &serverId, int status)
{
    const QMutexLocker lock(&mMutex);
    const auto email = std::dynamic_pointer_cast<const Email>(item(serverId));
    return email && replaceItem(serverId, email->withFlagStatus(status));
}

bool Mailbox::setCategories(const QString &serverId, const QStringList &categories)
{
    const QMutexLocker lock(&mMutex);
    const auto email = std::dynamic_pointer_cast<const Email>(item(serverId));
    return email && replaceItem(serverId, email->withCategories(categories));
}

bool Mailbox::remove(const QString &serverId)
{
    const QMutexLocker lock(&mMutex);
    FolderContent *content = d->holder(serverId);
    if (!content || content->items.erase(Data::number(serverId)) == 0)
        return false;
    tellChanged();
    return true;
}

QString Mailbox::move(const QString &serverId, const QString &folderId)
{
    const QMutexLocker lock(&mMutex);
    const ItemPtr moved = item(serverId);
    if (!moved || !d->content(folderId))
        return QString();
    remove(serverId);
    return addItem(folderId, moved);
}

QVector<ItemEntry> Mailbox::items(const QString &folderId) const
{
    const QMutexLocker lock(&mMutex);
    QVector<ItemEntry> result;
    if (const FolderContent *content = d->content(folderId)) {
        result.reserve(int(content->items.size()));
        for (const auto &entry : content->items)
            result.append(entry.second);
    }
    return result;
}

ItemPtr Mailbox::item(const QString &serverId) const
{
    const QMutexLocker lock(&mMutex);
    const FolderContent *content = d->holder(serverId);
    return content ? content->items.at(Data::number(serverId)).item : nullptr;
}

int Mailbox::itemCount(const QString &folderId) const
{
    const QMutexLocker lock(&mMutex);
    const FolderContent *content = d->content(folderId);
    return content ? int(content->items.size()) : 0;
}

OutOfOffice Mailbox::outOfOffice() const
{
    const QMutexLocker lock(&mMutex);
    return d->outOfOffice;
}

void Mailbox::setOutOfOffice(const OutOfOffice &state)
{
    const QMutexLocker lock(&mMutex);
    d->outOfOffice = state;
}

void Mailbox::atomically(const std::function<void()> &work)
{
    const QMutexLocker lock(&mMutex);
    work();
}

} // namespace Simulator
