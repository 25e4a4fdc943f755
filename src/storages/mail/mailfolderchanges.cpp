// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderchanges.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easfolderitem.h"

#include <qmailfolder.h>

namespace {

QString idText(const QMailFolderId &id)
{
    return id.isValid() ? QString::number(id.toULongLong()) : QString();
}

QString texts(const QMailFolderIdList &ids)
{
    QStringList list;
    for (const QMailFolderId &id : ids)
        list.append(idText(id));
    return list.join(QStringLiteral(", "));
}

EasFolderItem::FolderType typeOfFolder(quint64 status)
{
    if (status & QMailFolder::Incoming)
        return EasFolderItem::DefaultInboxFolder;
    if (status & QMailFolder::Drafts)
        return EasFolderItem::DefaultDraftsFolder;
    if (status & QMailFolder::Trash)
        return EasFolderItem::DefaultDeletedItemsFolder;
    if (status & QMailFolder::Sent)
        return EasFolderItem::DefaultSentItemsFolder;
    if (status & QMailFolder::Outgoing)
        return EasFolderItem::DefaultOutboxFolder;
    return EasFolderItem::UserCreatedMailFolder;
}

} // namespace

MailFolderChanges::MailFolderChanges(const MailStoreContext &context)
    : mContext(context)
{
}

void MailFolderChanges::setOwnAddition(const QMailFolderId &id)
{
    mOwnAdditions.insert(id);
    mAdded.removeAll(id);
}

void MailFolderChanges::setOwnRemoval(const QMailFolderIdList &ids)
{
    for (const QMailFolderId &id : ids)
        mOwnRemovals.insert(id);
}

bool MailFolderChanges::foldersAdded(const QMailFolderIdList &ids)
{
    if (ids.isEmpty())
        qCWarning(eas()) << "foldersAdded received with an empty ids list";
    qCDebug(eas()) << "ids =" << texts(ids);
    bool added = false;
    for (const QMailFolderId &id : ids) {
        if (mAdded.contains(id) || mOwnAdditions.contains(id))
            continue;
        const QMailFolder folder = mContext.store->folder(id);
        if (!folder.id().isValid() || folder.parentAccountId() != mContext.mailAccountId)
            continue;
        mAdded.append(id);
        added = true;
    }
    return added;
}

bool MailFolderChanges::foldersRemoved(const QMailFolderIdList &ids)
{
    if (ids.isEmpty())
        qCWarning(eas()) << "foldersRemoved received with an empty ids list";
    // Told while the rows cannot be read, a removal is found again by the repair at the next start.
    const QMap<QString, QString> localToServer =
        EasDatabase::instance()->localToServerFolderIds(mContext.accountId()).valueOr({});
    bool removed = false;
    for (const QMailFolderId &id : ids) {
        mAdded.removeAll(id);
        if (mOwnRemovals.contains(id))
            continue;
        const QString serverId = localToServer.value(idText(id));
        if (serverId.isEmpty()) {
            qCWarning(eas()) << "server id is not found for local id" << idText(id);
        } else if (!mRemovedServerIds.contains(serverId)) {
            mRemovedServerIds.append(serverId);
            removed = true;
        }
    }
    return removed;
}

QList<EasFolderItem> MailFolderChanges::addedFolders() const
{
    QList<EasFolderItem> items;
    for (const QMailFolderId &id : mAdded)
        items.append(folderItemFromFolderId(id));
    return items;
}

void MailFolderChanges::purgeAddedFolders()
{
    mAdded.clear();
}

QStringList MailFolderChanges::deletedFolders() const
{
    return mRemovedServerIds;
}

void MailFolderChanges::purgeDeletedFolders()
{
    mRemovedServerIds.clear();
}

EasFolderItem MailFolderChanges::folderItemFromFolderId(const QMailFolderId &id) const
{
    EasFolderItem item;
    const QMailFolder folder = id.isValid() ? mContext.store->folder(id) : QMailFolder();
    if (!folder.id().isValid()) {
        qCWarning(eas()) << "local folder id is invalid";
        return item;
    }
    item.setLocalId(idText(folder.id()));
    item.setLocalStorageAccountId(folder.parentAccountId().toULongLong());
    // "0" is the root where folders are created on the server.
    item.setLocalParentId(QString::number(folder.parentFolderId().toULongLong()));
    item.setDisplayName(folder.displayName());
    item.setType(typeOfFolder(folder.status()));
    return item;
}
