// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contactstorageimpl.h"

#include "application/easaccount.h"
#include "application/logging.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easfolderitem.h"

namespace {

/** False, with a log line, if there is anything that would have to be kept. */
bool nothingToKeep(EasAccountId accountId, const char *what, int count)
{
    if (count == 0)
        return true;
    qCWarning(eas()) << "There is no contact store:" << what << count << "refused, account" << accountId;
    return false;
}

} // namespace

ContactStorageImpl::ContactStorageImpl(EasAccount &account, QObject *parent)
    : ContactStorage(parent)
    , mAccountId(account.id())
{
}

ContactStorageImpl::~ContactStorageImpl() = default;

bool ContactStorageImpl::cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds)
{
    Q_UNUSED(accountIds)
    return true;
}

bool ContactStorageImpl::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted)
{
    Q_UNUSED(added)
    Q_UNUSED(changed)
    Q_UNUSED(deleted)
    return true;
}

bool ContactStorageImpl::updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
    QList<EasContactsItem> &changed, const QStringList &deleted)
{
    Q_UNUSED(folderServerId)
    return nothingToKeep(mAccountId, "contacts", added.size() + changed.size() + deleted.size());
}

bool ContactStorageImpl::cleanUpFolder(const EasFolderItem &folder)
{
    Q_UNUSED(folder)
    return true;
}

bool ContactStorageImpl::queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
    QList<EasContactsItem> *changed, QStringList *deletedServerIds)
{
    Q_UNUSED(folder)
    Q_UNUSED(added)
    Q_UNUSED(changed)
    Q_UNUSED(deletedServerIds)
    return true;
}

bool ContactStorageImpl::uploadedLocalChanges(
    const QStringList &addedLocalIds, const QStringList &changedLocalIds, const QStringList &deletedLocalIds)
{
    return nothingToKeep(mAccountId, "uploaded contacts",
        addedLocalIds.size() + changedLocalIds.size() + deletedLocalIds.size());
}

void ContactStorageImpl::setFailedLocalChangesIds(const QStringList &localIds)
{
    Q_UNUSED(localIds)
}

void ContactStorageImpl::onSyncCompleted(EasAccountId accountId, qulonglong requestId, int status)
{
    Q_UNUSED(requestId)
    qCDebug(eas()) << "syncCompleted"
                   << "status" << status << "for account" << accountId;
}
