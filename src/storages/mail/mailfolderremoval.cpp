// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderremoval.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/mail/mailfolderchanges.h"
#include "storages/mail/mailstorecontext.h"
#include "storages/mail/mailunsent.h"

#include <qmailfolderkey.h>
#include <qmailmessagekey.h>

#include <vector>

struct MailFolderRemoval::Plan
{
    QMailFolderIdList removed;
    /** Folders of the server that lose their parent. */
    QMailFolderIdList kept;
};

MailFolderRemoval::MailFolderRemoval(const MailStoreContext &context, MailFolderChanges &changes)
    : mContext(context)
    , mChanges(changes)
{
}

bool MailFolderRemoval::remove(const QMailFolderIdList &ids) const
{
    if (ids.isEmpty())
        return true;
    Plan plan { ids, {} };
    if (!findDescendants(&plan) || !moveToRoot(plan.kept) || !returnMovedMessages(plan.removed)
        || !MailUnsent::rescue(
            *mContext.store, mContext.mailAccountId, QMailMessageKey::parentFolderId(plan.removed)))
        return false;
    mChanges.setOwnRemoval(plan.removed);
    return mContext.store->removeFolders(
        QMailFolderKey::parentAccountId(mContext.mailAccountId) & QMailFolderKey::id(plan.removed),
        QMailStore::NoRemovalRecord);
}

bool MailFolderRemoval::findDescendants(Plan *plan) const
{
    const auto localToServer = EasDatabase::instance()->localToServerFolderIds(mContext.accountId());
    if (!localToServer)
        return false;
    // The store removes what the key says and leaves children behind, without a parent.
    for (int i = 0; i < plan->removed.size(); ++i) {
        const QMailFolderIdList children =
            mContext.store->queryFolders(QMailFolderKey::parentFolderId(plan->removed.at(i)));
        for (const QMailFolderId &child : children) {
            if (plan->removed.contains(child))
                continue;
            const bool isOfServer = localToServer->contains(QString::number(child.toULongLong()));
            (isOfServer ? plan->kept : plan->removed).append(child);
        }
    }
    return true;
}

bool MailFolderRemoval::moveToRoot(const QMailFolderIdList &ids) const
{
    for (const QMailFolderId &id : ids) {
        QMailFolder folder = mContext.store->folder(id);
        folder.setParentFolderId(QMailFolderId());
        if (!mContext.store->updateFolder(&folder)) {
            qCCritical(eas()) << "failed to move a folder away from its removed parent:" << id.toULongLong();
            return false;
        }
    }
    return true;
}

bool MailFolderRemoval::returnMovedMessages(const QMailFolderIdList &removed) const
{
    const QMailMessageIdList ids = mContext.store->queryMessages(
        QMailMessageKey::parentAccountId(mContext.mailAccountId) & QMailMessageKey::parentFolderId(removed)
        & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::NotEqual));
    std::vector<QMailMessageMetaData> messages;
    for (const QMailMessageId &id : ids) {
        QMailMessageMetaData message = mContext.store->messageMetaData(id);
        const QMailFolderId onServer = message.previousParentFolderId();
        // A message whose folder on the server goes as well goes with it.
        if (removed.contains(onServer) || !mContext.store->folder(onServer).id().isValid())
            continue;
        message.setParentFolderId(onServer);
        message.setPreviousParentFolderId(QMailFolderId());
        messages.push_back(message);
    }
    if (messages.empty())
        return true;
    QList<QMailMessageMetaData *> pointers;
    for (QMailMessageMetaData &message : messages)
        pointers.append(&message);
    if (mContext.store->updateMessages(pointers)) {
        qCInfo(eas()) << "returned moved messages from removed folders:" << pointers.size();
        return true;
    }
    qCCritical(eas()) << "failed to return moved messages from removed folders:" << pointers.size();
    return false;
}
