// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderadapter.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easfolderitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailfolderadder.h"
#include "storages/mail/mailfolderids.h"
#include "storages/mail/mailfolderkind.h"
#include "storages/mail/mailfolderremoval.h"
#include "storages/mail/mailheadertext.h"
#include "storages/mail/mailstorecontext.h"
#include "storages/mail/mailunsent.h"

#include <qmailaccount.h>
#include <qmailfolder.h>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>

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
    std::optional<QMailAccount> account = mailAccount();
    MailFolderAdder adder(mContext, mChanges, *known);
    if (!account || !adder.add(*account, added)) {
        qCCritical(eas()) << "failed to add folder items";
        adder.rollBack(added);
        return false;
    }
    QMap<QString, QString> serverToLocal = *known;
    // A folder may have been moved below one that is new in the same reply.
    for (const EasFolderItem &item : qAsConst(added)) {
        if (!item.localId().isEmpty())
            serverToLocal.insert(item.serverId(), item.localId());
    }
    if (!updateFolderItems(changed, serverToLocal)) {
        qCCritical(eas()) << "failed to update folder items";
        adder.rollBack(added);
        return false;
    }
    if (!deleteFolderItems(deleted, serverToLocal)) {
        qCCritical(eas()) << "failed to delete folder items";
        adder.rollBack(added);
        return false;
    }
    return true;
}

bool MailFolderAdapter::updateFolderItems(
    const QList<EasFolderItem> &items, const QMap<QString, QString> &serverToLocal)
{
    for (const EasFolderItem &item : items) {
        const QString localId = serverToLocal.value(item.serverId());
        if (localId.isEmpty() || !item.isEmail())
            continue;
        QMailFolder folder = mContext.store->folder(MailFolderIds::fromText(localId));
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
            const MailFolderKind *const kind = MailFolderKind::of(item.type());
            if (kind && kind->isStandard())
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
    const QMailFolderId parent = MailFolderIds::fromText(serverToLocal.value(item.serverParentId()));
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
        const QMailFolderId id = MailFolderIds::fromText(serverToLocal.value(serverId));
        if (id.isValid())
            ids.append(id);
        else
            qCWarning(eas()) << "local id is not found for a server id" << serverId;
    }
    return MailFolderRemoval(mContext, mChanges).remove(ids);
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
        QMailFolder folder = mContext.store->folder(MailFolderIds::fromText(item.localId()));
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
            EasDatabase::instance()->folderItemByLocalId(mContext.accountId(), MailFolderIds::text(id));
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
    const QMailFolderId id = MailFolderIds::fromText(item.localId());
    if (!id.isValid()) {
        qCWarning(eas()) << "invalid folder id" << item.localId();
        return true;
    }
    // What the user has just moved here is in another folder on the server, and what was written here is in
    // none; the server would send neither again.
    const QMailMessageKey key = QMailMessageKey::parentFolderId(id)
        & QMailMessageKey::parentAccountId(mContext.mailAccountId)
        & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::Equal)
        & ~MailUnsent::key(mContext.mailAccountId);
    if (mContext.store->removeMessages(key, QMailStore::NoRemovalRecord))
        return true;
    qCWarning(eas()) << "failed to remove messages in folder" << item.localId();
    return false;
}
