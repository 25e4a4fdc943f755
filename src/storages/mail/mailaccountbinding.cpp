// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailaccountbinding.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/mail/mailfolderadapter.h"
#include "storages/mail/mailfolderremoval.h"
#include "storages/mail/mailfolderrepair.h"
#include "storages/mail/mailmessagerepair.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailaccount.h>

MailAccountBinding::MailAccountBinding(
    MailStoreContext &context, MailFolderAdapter &folders, MailFolderChanges &changes)
    : mContext(context)
    , mFolders(folders)
    , mChanges(changes)
{
}

bool MailAccountBinding::isBound() const
{
    return mContext.mailAccountId.isValid();
}

void MailAccountBinding::bindOnce()
{
    if (!isBound())
        bind();
}

void MailAccountBinding::bind()
{
    EasDatabase *database = EasDatabase::instance();
    mContext.mailAccountId = mContext.store->account(QMailAccountId(mContext.accountId())).id();
    if (mContext.mailAccountId.isValid()) {
        database->setEmailAccountId(mContext.accountId(), mContext.mailAccountId.toULongLong());
        repairFolders();
        MailMessageRepair::removeStrays(mContext);
        MailMessageRepair::purgeStaleRemovals(mContext);
    } else {
        const QMailAccountId older(database->emailAccountId(mContext.accountId()).valueOr(0));
        if (older.isValid())
            mContext.mailAccountId = mContext.store->account(older).id();
    }
    if (!mContext.mailAccountId.isValid())
        return;
    mFolders.allowFolderCreation();
    mFolders.updateUserCreatedFoldersStatus();
}

bool MailAccountBinding::find()
{
    // The store tells of a new account once; what could not be read then may be readable now.
    bindOnce();
    if (isBound())
        return true;
    qCCritical(eas()) << "there is no mail account for account" << mContext.accountId();
    return false;
}

void MailAccountBinding::repairFolders()
{
    MailFolderRepair repair = MailFolderRepair::find(mContext);
    qCInfo(eas()) << "Need to add" << repair.added.size() << ", update" << repair.updated.size()
                  << "and remove" << repair.removed.size() << "email folders";
    if (repair.isEmpty())
        return;
    if (!MailFolderRemoval(mContext, mChanges).remove(repair.removed))
        qCWarning(eas()) << "failed to remove folders";
    if (repair.added.isEmpty() && repair.updated.isEmpty())
        return;
    if (!mFolders.updateFolders(repair.added, repair.updated, {})) {
        qCWarning(eas()) << "failed to update folders";
        return;
    }
    if (!repair.save(mContext))
        qCWarning(eas()) << "failed to update folder items";
}
