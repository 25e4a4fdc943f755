// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderadapter.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easfolderitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailfolderchanges.h"
#include "storages/mail/mailfolderremoval.h"
#include "storages/mail/mailheadertext.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailaccount.h>
#include <qmailfolder.h>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>

namespace {

struct FolderKind
{
    EasFolderItem::FolderType type;
    const quint64 &flag;
    QMailFolder::StandardFolder standardFolder; // 0: none
};

constexpr QMailFolder::StandardFolder noStandardFolder = QMailFolder::StandardFolder(0);

const FolderKind *kindOf(EasFolderItem::FolderType type)
{
    static const FolderKind kinds[] = {
        { EasFolderItem::UserCreatedGenericFolder, QMailFolder::DeletionPermitted, noStandardFolder },
        { EasFolderItem::DefaultInboxFolder, QMailFolder::Incoming, QMailFolder::InboxFolder },
        { EasFolderItem::DefaultDraftsFolder, QMailFolder::Drafts, QMailFolder::DraftsFolder },
        { EasFolderItem::DefaultDeletedItemsFolder, QMailFolder::Trash, QMailFolder::TrashFolder },
        { EasFolderItem::DefaultSentItemsFolder, QMailFolder::Sent, QMailFolder::SentFolder },
        { EasFolderItem::DefaultOutboxFolder, QMailFolder::Outgoing, QMailFolder::OutboxFolder },
        { EasFolderItem::UserCreatedMailFolder, QMailFolder::DeletionPermitted, noStandardFolder },
    };
    for (const FolderKind &kind : kinds) {
        if (kind.type == type)
            return &kind;
    }
    return nullptr;
}

QMailFolderId folderId(const QString &text)
{
    return QMailFolderId(text.toULongLong());
}

QString idText(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

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

MailFolderAdapter::MailFolderAdapter(const MailStoreContext &context, MailFolderChanges &changes)
    : mContext(context)
    , mChanges(changes)
{
}

std::optional<QMailAccount> MailFolderAdapter::mailAccount() const
{
    QMailAccount account = mContext.store->account(mContext.mailAccountId);
    if (mContext.mailAccountId.isValid() && account.id() == mContext.mailAccountId)
        return account;
    qCCritical(eas()) << "there is no mail account for account" << mContext.accountId();
    return std::nullopt;
}

bool MailFolderAdapter::updateFolders(
    QList<EasFolderItem> &added, const QList<EasFolderItem> &changed, const QStringList &deleted)
{
    const Lookup<QMap<QString, QString>> known =
        EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!known)
        return false;
    QMap<QString, QString> serverToLocal = *known;
    added = parentsFirst(added);
    for (EasFolderItem &item : added) {
        // A row may outlive its folder, which the same call adds again then.
        const QString parent = serverToLocal.value(item.serverParentId());
        if (mContext.store->folder(folderId(parent)).id().isValid())
            item.setLocalParentId(parent);
    }
    if (!addFolderItems(added, serverToLocal)) {
        qCCritical(eas()) << "failed to add folder items";
        rollBackAddedFolderItems(added);
        return false;
    }
    // A folder may have been moved below one that is new in the same reply.
    for (const EasFolderItem &item : qAsConst(added)) {
        if (!item.localId().isEmpty())
            serverToLocal.insert(item.serverId(), item.localId());
    }
    if (!updateFolderItems(changed, serverToLocal)) {
        qCCritical(eas()) << "failed to update folder items";
        rollBackAddedFolderItems(added);
        return false;
    }
    if (!deleteFolderItems(deleted, serverToLocal)) {
        qCCritical(eas()) << "failed to delete folder items";
        rollBackAddedFolderItems(added);
        return false;
    }
    return true;
}

bool MailFolderAdapter::addFolderItems(
    QList<EasFolderItem> &items, const QMap<QString, QString> &serverToLocal)
{
    mAdopted.clear();
    std::optional<QMailAccount> account = mailAccount();
    if (!account)
        return false;
    bool standardFolderSet = false;
    QMap<QString, QString> addedNow;
    QSet<QString> taken;
    for (EasFolderItem &item : items) {
        if (!item.isEmail())
            continue;
        if (!item.serverParentId().isEmpty() && item.localParentId().isEmpty())
            item.setLocalParentId(addedNow.value(item.serverParentId()));
        if (!addFolderItem(&item, presentFolder(item, serverToLocal, taken)))
            return false;
        addedNow.insert(item.serverId(), item.localId());
        taken.insert(item.localId());
        const FolderKind *kind = kindOf(item.type());
        if (kind && kind->standardFolder != noStandardFolder) {
            account->setStandardFolder(kind->standardFolder, folderId(item.localId()));
            standardFolderSet = true;
        }
    }
    return !standardFolderSet || commitStandardFolders(&*account);
}

bool MailFolderAdapter::addFolderItem(EasFolderItem *item, QMailFolderId present)
{
    const std::unique_ptr<QMailFolder> folder = mailFolderFromFolderItem(*item);
    if (!folder)
        return false;
    if (present.isValid()) {
        mAdopted.insert(present);
        mChanges.setOwnAddition(present);
        folder->setId(present);
        if (!mContext.store->updateFolder(folder.get()))
            return false;
    } else {
        if (!mContext.store->addFolder(folder.get()) || !folder->id().isValid())
            return false;
        mChanges.setOwnAddition(folder->id());
    }
    item->setLocalId(idText(folder->id()));
    item->setSavedInStorage(true);
    return true;
}

QMailFolderId MailFolderAdapter::presentFolder(
    const EasFolderItem &item, const QMap<QString, QString> &serverToLocal, const QSet<QString> &taken) const
{
    const QMailFolderId mapped = folderId(serverToLocal.value(item.serverId()));
    if (mapped.isValid() && mContext.store->folder(mapped).id().isValid())
        return mapped;
    const QList<QString> mappedIds = serverToLocal.values();
    const QMailFolderIdList ids =
        mContext.store->queryFolders(QMailFolderKey::parentAccountId(mContext.mailAccountId)
            & QMailFolderKey::parentFolderId(folderId(item.localParentId())));
    for (const QMailFolderId &id : ids) {
        const QString text = idText(id);
        if (!mappedIds.contains(text) && !taken.contains(text)
            && mContext.store->folder(id).displayName() == MailHeaderText::singleLine(item.displayName()))
            return id;
    }
    return QMailFolderId();
}

std::unique_ptr<QMailFolder> MailFolderAdapter::mailFolderFromFolderItem(const EasFolderItem &item) const
{
    const FolderKind *kind = kindOf(item.type());
    if (!kind)
        return nullptr;
    quint64 flags = kind->flag | QMailFolder::MessagesPermitted | QMailFolder::RenamePermitted
        | QMailFolder::ChildCreationPermitted;
    const QMailFolderId parentId = folderId(item.localParentId());
    if (!parentId.isValid()
        || (mContext.store->folder(parentId).status() & QMailFolder::SynchronizationEnabled))
        flags |= QMailFolder::SynchronizationEnabled;
    auto folder = std::make_unique<QMailFolder>(
        MailHeaderText::singleLine(item.displayName()), parentId, mContext.mailAccountId);
    folder->setStatus(flags, true);
    return folder;
}

bool MailFolderAdapter::commitStandardFolders(QMailAccount *account) const
{
    if (mContext.store->updateAccount(account))
        return true;
    qCCritical(eas()) << "failed to commit special folder"
                      << account->standardFolder(QMailFolder::InboxFolder).toULongLong() << "for account"
                      << mContext.mailAccountId.toULongLong();
    return false;
}

bool MailFolderAdapter::updateFolderItems(
    const QList<EasFolderItem> &items, const QMap<QString, QString> &serverToLocal)
{
    for (const EasFolderItem &item : items) {
        const QString localId = serverToLocal.value(item.serverId());
        if (localId.isEmpty() || !item.isEmail())
            continue;
        QMailFolder folder = mContext.store->folder(folderId(localId));
        if (!folder.id().isValid()) {
            qCWarning(eas()) << "invalid local folder id" << localId;
            return false;
        }
        setChangesToFolder(&folder, item, serverToLocal);
        if (!mContext.store->updateFolder(&folder))
            return false;
    }
    return true;
}

void MailFolderAdapter::setChangesToFolder(
    QMailFolder *folder, const EasFolderItem &item, const QMap<QString, QString> &serverToLocal) const
{
    if (!folder) {
        qCCritical(eas()) << "folder is null";
        return;
    }
    const QList<uint> fields = item.changedFields();
    for (const uint field : fields) {
        switch (field) {
        case Wbxml::FolderHierarchy::ParentId.key():
            setParentToFolder(folder, item, serverToLocal);
            break;
        case Wbxml::FolderHierarchy::DisplayName.key():
            folder->setDisplayName(MailHeaderText::singleLine(item.displayName()));
            break;
        case Wbxml::FolderHierarchy::Type.key(): {
            const FolderKind *kind = kindOf(item.type());
            if (kind && kind->standardFolder != noStandardFolder)
                folder->setStatus(kind->flag, true);
            break;
        }
        default:
            qCWarning(eas()) << "unhandled field:" << field;
            break;
        }
    }
}

void MailFolderAdapter::setParentToFolder(
    QMailFolder *folder, const EasFolderItem &item, const QMap<QString, QString> &serverToLocal) const
{
    if (item.serverParentId() == QLatin1String("0")) {
        qCDebug(eas()) << "Server folder id is 0, so it means it is a root folder";
        folder->setParentFolderId(QMailFolderId());
        return;
    }
    const QMailFolderId parent = folderId(serverToLocal.value(item.serverParentId()));
    if (parent.isValid())
        folder->setParentFolderId(parent);
    else
        qCWarning(eas()) << "can't find local id for a parent server id" << item.serverParentId()
                         << ". Not an email folder?";
}

bool MailFolderAdapter::deleteFolderItems(
    const QStringList &serverIds, const QMap<QString, QString> &serverToLocal)
{
    QMailFolderIdList ids;
    for (const QString &serverId : serverIds) {
        const Lookup<EasFolderItem::FolderType> type =
            EasDatabase::instance()->folderTypeByServerId(mContext.accountId(), serverId);
        if (!type)
            return false;
        if (!EasFolderItem::isEmailFolder(*type))
            continue;
        const QMailFolderId id = folderId(serverToLocal.value(serverId));
        if (id.isValid())
            ids.append(id);
        else
            qCWarning(eas()) << "local id is not found for a server id" << serverId;
    }
    return MailFolderRemoval(mContext, mChanges).remove(ids);
}

void MailFolderAdapter::rollBackAddedFolderItems(QList<EasFolderItem> &items)
{
    QMailFolderIdList ids;
    for (EasFolderItem &item : items) {
        const QMailFolderId id = folderId(item.localId());
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

void MailFolderAdapter::allowFolderCreation()
{
    std::optional<QMailAccount> account = mailAccount();
    if (!account || (account->status() & QMailAccount::CanCreateFolders))
        return;
    account->setStatus(QMailAccount::CanCreateFolders, true);
    const quint64 id = mContext.mailAccountId.toULongLong();
    if (mContext.store->updateAccount(&*account))
        qCInfo(eas()) << "Legacy account" << id << "updated. Exchange account now able to create folders.";
    else
        qCWarning(eas()) << "Legacy account" << id
                         << "was not updated. Exchange account is not able to create folders while "
                            "CanCreateFolders is not set.";
}

void MailFolderAdapter::updateUserCreatedFoldersStatus()
{
    const quint64 wanted =
        QMailFolder::DeletionPermitted | QMailFolder::RenamePermitted | QMailFolder::ChildCreationPermitted;
    const Lookup<QList<EasFolderItem>> items =
        EasDatabase::instance()->emailFolderItems(mContext.accountId());
    if (!items)
        return;
    for (const EasFolderItem &item : *items) {
        if (item.type() != EasFolderItem::UserCreatedGenericFolder
            && item.type() != EasFolderItem::UserCreatedMailFolder)
            continue;
        if (item.localId().isEmpty()) {
            qCWarning(eas()) << "local folder id is empty in EAS database, skipping.";
            continue;
        }
        QMailFolder folder = mContext.store->folder(folderId(item.localId()));
        if (!folder.id().isValid()) {
            qCWarning(eas()) << "Invalid folder id, skipping user created mail folder.";
            continue;
        }
        if ((folder.status() & wanted) == wanted)
            continue;
        folder.setStatus(wanted, true);
        if (!mContext.store->updateFolder(&folder))
            qCWarning(eas()) << "Failed to update UserCreatedMail folder" << item.localId();
    }
}

Lookup<QList<EasFolderItem>> MailFolderAdapter::foldersToSynchronize() const
{
    const std::optional<QMailAccount> account = mailAccount();
    if (!account)
        return Lookup<QList<EasFolderItem>>::unread();
    QList<EasFolderItem> items;
    const QList<QMailFolderId> ids = account->foldersToSync();
    for (const QMailFolderId &id : ids) {
        const Lookup<EasFolderItem> item =
            EasDatabase::instance()->folderItemByLocalId(mContext.accountId(), idText(id));
        if (!item)
            return Lookup<QList<EasFolderItem>>::unread();
        // A folder that the server does not know yet cannot be asked for.
        if (!item->serverId().isEmpty())
            items.append(*item);
    }
    return items;
}

bool MailFolderAdapter::cleanUpFolder(const EasFolderItem &item)
{
    if (!item.isEmail()) {
        qCWarning(eas()) << "tried to clean up non-email folder";
        return true;
    }
    const QMailFolderId id = folderId(item.localId());
    if (!id.isValid()) {
        qCWarning(eas()) << "invalid folder id" << item.localId();
        return true;
    }
    // What the user has just moved here is in another folder on the server, which would not send it again.
    const QMailMessageKey key = QMailMessageKey::parentFolderId(id)
        & QMailMessageKey::parentAccountId(mContext.mailAccountId)
        & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::Equal);
    if (mContext.store->removeMessages(key, QMailStore::NoRemovalRecord))
        return true;
    qCWarning(eas()) << "failed to remove messages in folder" << item.localId();
    return false;
}
