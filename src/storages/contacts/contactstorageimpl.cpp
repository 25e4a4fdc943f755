// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstorageimpl.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/contactsaccountconfiguration.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactfolders.h"
#include "storages/contacts/contactitembatch.h"
#include "storages/contacts/contactsobserver.h"
#include "storages/contacts/contactstoremanager.h"

#include <utility>

QTCONTACTS_USE_NAMESPACE

ContactStorageImpl::ContactStorageImpl(EasAccount &account, QObject *parent)
    : ContactStorage(parent)
    , mAccount(account)
    , mLocalChanges(mContext)
    , mRecovery(mContext)
{
    mContext.accountId = account.id();
    mTellTimer.setSingleShot(true);
    connect(&mTellTimer, &QTimer::timeout, this, &ContactStorageImpl::tellLocalChanges);
    openStore();
    initializeObserver();
    connect(&account, &EasAccount::contactsConfigurationChanged, this,
        &ContactStorageImpl::onContactsConfigurationChanged);
}

ContactStorageImpl::~ContactStorageImpl() = default;

bool ContactStorageImpl::cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds)
{
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    if (!manager) {
        qCCritical(eas()) << "The contact manager is not initialized";
        return false;
    }
    bool succeeded = true;
    for (const EasAccountId accountId : accountIds) {
        ContactStoreContext context;
        context.manager = manager.get();
        context.accountId = accountId;
        const ContactFolders folders(context);
        bool complete = false;
        const QList<QContactCollection> collections = folders.collections(&complete);
        for (const QContactCollection &collection : collections) {
            if (folders.removeCollection(collection))
                continue;
            complete = false;
            qCCritical(eas()) << "unable to delete contact collection: " << collection.id()
                              << " for removed account: " << accountId;
        }
        complete = complete && ContactAvatars(accountId).removeAll();
        succeeded = complete && succeeded;
    }
    return succeeded;
}

bool ContactStorageImpl::openStore()
{
    mContext.manager = ContactStoreManager::create(this);
    if (!mContext.manager)
        return false;
    mRecovery.repair();
    return true;
}

bool ContactStorageImpl::storeAvailable()
{
    if (mContext.manager)
        return true;
    // What hindered the start may be over.
    if (openStore()) {
        initializeObserver();
        return true;
    }
    qCCritical(eas()) << "The contact manager is not initialized";
    return false;
}

void ContactStorageImpl::initializeObserver()
{
    const QSharedPointer<ContactsAccountConfiguration> configuration = mAccount.contactsConfiguration();
    if (!configuration) {
        qCWarning(eas()) << "ContactsAccountConfiguration is null";
        return;
    }
    if (!configuration->enabled() || mObserver || !mContext.manager)
        return;
    mObserver = std::make_unique<ContactsObserver>(
        mContext.accountId, ContactStoreContext::applicationName(), *mContext.manager, nullptr);
    connect(mObserver.get(), &ContactsObserver::localChangesAvailable, this,
        &ContactStorageImpl::onLocalChangesAvailable);
}

void ContactStorageImpl::releaseObserver()
{
    mObserver.reset();
}

void ContactStorageImpl::onContactsConfigurationChanged(EasAccountId accountId)
{
    qCDebug(eas()) << "contacts configuration changed for account " << accountId;
    if (accountId != mContext.accountId)
        return;
    const QSharedPointer<ContactsAccountConfiguration> configuration = mAccount.contactsConfiguration();
    if (configuration && configuration->enabled())
        initializeObserver();
    else
        releaseObserver();
}

void ContactStorageImpl::onLocalChangesAvailable(const QList<QString> &serverFolderIds)
{
    for (const QString &serverId : serverFolderIds) {
        if (!mTouchedFolders.contains(serverId))
            mTouchedFolders.append(serverId);
    }
    // The store tells of the engine's own writes, too. Whose a change is shows when the mapping knows of it.
    mTellTimer.start(0);
}

bool ContactStorageImpl::uploadsChanges() const
{
    const QSharedPointer<ContactsAccountConfiguration> configuration = mAccount.contactsConfiguration();
    return configuration && configuration->enabled() && configuration->syncLocalContacts();
}

void ContactStorageImpl::tellLocalChanges()
{
    const QStringList touched = std::exchange(mTouchedFolders, {});
    if (!uploadsChanges() || !mContext.manager)
        return;
    const auto localIds = EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId);
    if (!localIds)
        return; // the changes keep their flags, and the next sync finds them
    QStringList folders;
    for (const QString &serverId : touched) {
        EasFolderItem folder;
        folder.setServerId(serverId);
        const QString localId = localIds->value(serverId);
        if (!localId.isEmpty() && !folders.contains(localId) && mLocalChanges.hasChanges(folder))
            folders.append(localId);
    }
    if (folders.isEmpty())
        return;
    qCDebug(eas()) << "Changes available in folders: " << folders.join(QStringLiteral(", "));
    Q_EMIT changesAvailable(folders);
}

bool ContactStorageImpl::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted)
{
    if (!storeAvailable())
        return false;
    return mRecovery.repairFolders() && ContactFolders(mContext).updateFolders(added, changed, deleted);
}

bool ContactStorageImpl::updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
    QList<EasContactsItem> &changed, const QStringList &deleted)
{
    if (added.isEmpty() && changed.isEmpty() && deleted.isEmpty())
        return true;
    if (!storeAvailable() || !ContactItemBatch(mContext).updateItems(folderServerId, added, changed, deleted))
        return false;
    for (const QList<EasContactsItem> &items : { added, changed }) {
        for (const EasContactsItem &item : items)
            mRecovery.named({ item.localId() });
    }
    return true;
}

bool ContactStorageImpl::cleanUpFolder(const EasFolderItem &folder)
{
    return storeAvailable() && ContactFolders(mContext).cleanUpFolder(folder);
}

LocalQuery ContactStorageImpl::queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
    QList<EasContactsItem> *changed, QStringList *deletedServerIds, UploadBudget *budget)
{
    return storeAvailable() ? mLocalChanges.queryChanges(folder, added, changed, deletedServerIds, budget)
                            : LocalQuery::StoreSilent;
}

bool ContactStorageImpl::uploadedLocalChanges(
    const QStringList &addedLocalIds, const QStringList &changedLocalIds, const QStringList &deletedLocalIds)
{
    if (!storeAvailable()
        || !mLocalChanges.uploadedLocalChanges(addedLocalIds, changedLocalIds, deletedLocalIds))
        return false;
    mRecovery.uploaded(addedLocalIds);
    mRecovery.named(changedLocalIds);
    return true;
}

bool ContactStorageImpl::expectAll(const EasFolderItem &folder)
{
    return storeAvailable() && mRecovery.expectAll(folder.serverId());
}

bool ContactStorageImpl::allReceived(const QString &folderServerId)
{
    return storeAvailable() && mRecovery.allReceived(folderServerId);
}

bool ContactStorageImpl::unchanged(const QString &folderServerId)
{
    return !mLocalChanges.awaits(folderServerId) || mRecovery.isSentAnew(folderServerId)
        || allReceived(folderServerId);
}

// What failed keeps its flag in the store, and goes up again.
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
