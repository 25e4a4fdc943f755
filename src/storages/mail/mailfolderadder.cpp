// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderadder.h"

#include "application/base/logging.h"
#include "easitems/easfolderitem.h"
#include "storages/mail/mailfolderchanges.h"
#include "storages/mail/mailfolderids.h"
#include "storages/mail/mailfolderkind.h"
#include "storages/mail/mailfolderremoval.h"
#include "storages/mail/mailheadertext.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailaccount.h>
#include <qmailfolder.h>
#include <qmailfolderkey.h>

namespace {

/** Each folder behind its parent, as far as that is in the list; folders in a circle stay as they come. */
QList<EasFolderItem> parentsFirst(const QList<EasFolderItem> &items)
{
    QHash<QString, int> unplaced;
    for (int i = items.size() - 1; i >= 0; --i)
        unplaced.insert(items.at(i).serverId(), i);
    QList<EasFolderItem> ordered;
    for (const EasFolderItem &item : items) {
        QList<int> chain;
        for (QString id = item.serverId(); unplaced.contains(id);
             id = items.at(chain.last()).serverParentId())
            chain.append(unplaced.take(id));
        while (!chain.isEmpty())
            ordered.append(items.at(chain.takeLast()));
    }
    return ordered;
}

} // namespace

MailFolderAdder::MailFolderAdder(
    const MailStoreContext &context, MailFolderChanges &changes, const QMap<QString, QString> &serverToLocal)
    : mContext(context)
    , mChanges(changes)
    , mServerToLocal(serverToLocal)
{
}

bool MailFolderAdder::add(QMailAccount &account, QList<EasFolderItem> &items)
{
    items = parentsFirst(items);
    setParents(items);
    bool isStandardFolderSet = false;
    QHash<QString, QString> addedNow;
    for (EasFolderItem &item : items) {
        if (!item.isEmail())
            continue;
        if (!item.serverParentId().isEmpty() && item.localParentId().isEmpty())
            item.setLocalParentId(addedNow.value(item.serverParentId()));
        if (!addItem(item))
            return false;
        addedNow.insert(item.serverId(), item.localId());
        const MailFolderKind *const kind = MailFolderKind::of(item.type());
        if (kind && kind->isStandard()) {
            account.setStandardFolder(kind->standardFolder, MailFolderIds::fromText(item.localId()));
            isStandardFolderSet = true;
        }
    }
    return !isStandardFolderSet || commitStandardFolders(account);
}

void MailFolderAdder::setParents(QList<EasFolderItem> &items) const
{
    for (EasFolderItem &item : items) {
        // A row may outlive its folder, which the same call adds again then.
        const QString parent = mServerToLocal.value(item.serverParentId());
        if (mContext.store->folder(MailFolderIds::fromText(parent)).id().isValid())
            item.setLocalParentId(parent);
    }
}

bool MailFolderAdder::addItem(EasFolderItem &item)
{
    const std::unique_ptr<QMailFolder> folder = mailFolderOf(item);
    if (!folder)
        return false;
    const QMailFolderId adopted = present(item);
    if (adopted.isValid()) {
        mAdopted.insert(adopted);
        mChanges.setOwnAddition(adopted);
        folder->setId(adopted);
        if (!mContext.store->updateFolder(folder.get()))
            return false;
    } else {
        if (!mContext.store->addFolder(folder.get()) || !folder->id().isValid())
            return false;
        mChanges.setOwnAddition(folder->id());
    }
    item.setLocalId(MailFolderIds::text(folder->id()));
    item.setSavedInStorage(true);
    return true;
}

QMailFolderId MailFolderAdder::present(const EasFolderItem &item)
{
    const QMailFolderId mapped = MailFolderIds::fromText(mServerToLocal.value(item.serverId()));
    if (mapped.isValid() && mContext.store->folder(mapped).id().isValid())
        return mapped;
    if (!mStrays)
        findStrays();
    const Place place(MailFolderIds::fromText(item.localParentId()).toULongLong(),
        MailHeaderText::singleLine(item.displayName()));
    // Each of them is one folder of the server's.
    return mStrays->take(place);
}

void MailFolderAdder::findStrays()
{
    QSet<QString> mapped;
    for (const QString &localId : mServerToLocal)
        mapped.insert(localId);
    mStrays.emplace();
    const QMailFolderIdList ids =
        mContext.store->queryFolders(QMailFolderKey::parentAccountId(mContext.mailAccountId));
    for (const QMailFolderId &id : ids) {
        if (mapped.contains(MailFolderIds::text(id)))
            continue;
        const QMailFolder folder = mContext.store->folder(id);
        mStrays->insert(Place(folder.parentFolderId().toULongLong(), folder.displayName()), id);
    }
}

std::unique_ptr<QMailFolder> MailFolderAdder::mailFolderOf(const EasFolderItem &item) const
{
    const MailFolderKind *const kind = MailFolderKind::of(item.type());
    if (!kind)
        return nullptr;
    quint64 flags = kind->flag | QMailFolder::MessagesPermitted | QMailFolder::RenamePermitted
        | QMailFolder::ChildCreationPermitted;
    const QMailFolderId parentId = MailFolderIds::fromText(item.localParentId());
    if (!parentId.isValid()
        || (mContext.store->folder(parentId).status() & QMailFolder::SynchronizationEnabled))
        flags |= QMailFolder::SynchronizationEnabled;
    auto folder = std::make_unique<QMailFolder>(
        MailHeaderText::singleLine(item.displayName()), parentId, mContext.mailAccountId);
    folder->setStatus(flags, true);
    return folder;
}

bool MailFolderAdder::commitStandardFolders(QMailAccount &account) const
{
    if (mContext.store->updateAccount(&account))
        return true;
    qCCritical(eas()) << "failed to commit special folder"
                      << account.standardFolder(QMailFolder::InboxFolder).toULongLong() << "for account"
                      << mContext.mailAccountId.toULongLong();
    return false;
}

void MailFolderAdder::rollBack(QList<EasFolderItem> &items) const
{
    QMailFolderIdList ids;
    for (EasFolderItem &item : items) {
        const QMailFolderId id = MailFolderIds::fromText(item.localId());
        if (!item.isEmail() || !id.isValid())
            continue;
        if (!mAdopted.contains(id))
            ids.append(id);
        item.setLocalId(QString());
        item.setSavedInStorage(false);
    }
    if (!MailFolderRemoval(mContext, mChanges).remove(ids))
        qCCritical(eas()) << "failed to remove added items";
}
