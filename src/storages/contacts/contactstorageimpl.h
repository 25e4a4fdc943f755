// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/contacts/contactlocalchanges.h"
#include "storages/contacts/contactrecovery.h"
#include "storages/contacts/contactstorecontext.h"
#include "storages/contactstorage.h"

#include <QTimer>

#include <memory>

class ContactsAccountConfiguration;
class ContactsObserver;
class EasAccount;

/**
 * The contact store of one account, a thin front: ContactFolders, ContactItemBatch, ContactLocalChanges and
 * ContactRecovery do the work. Pictures are files that contacts name. Owned by the account.
 */
class ContactStorageImpl : public ContactStorage
{
    Q_OBJECT

public:
    ContactStorageImpl(EasAccount &account, QObject *parent);
    ~ContactStorageImpl() override;

    /** Removes what the store holds of accounts that are gone. */
    static bool cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds);

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override;
    bool updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
        QList<EasContactsItem> &changed, const QStringList &deleted) override;
    bool cleanUpFolder(const EasFolderItem &folder) override;
    LocalQuery queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
        QList<EasContactsItem> *changed, QStringList *deletedServerIds,
        UploadBudget *budget = nullptr) override;
    bool uploadedLocalChanges(const QStringList &addedLocalIds, const QStringList &changedLocalIds,
        const QStringList &deletedLocalIds) override;
    void setFailedLocalChangesIds(const QStringList &localIds) override;
    bool expectAll(const EasFolderItem &folder) override;
    bool allReceived(const QString &folderServerId) override;
    bool unchanged(const QString &folderServerId) override;

public Q_SLOTS:
    void onSyncCompleted(EasAccountId accountId, qulonglong requestId, int status) override;

private Q_SLOTS:
    void onLocalChangesAvailable(const QList<QString> &serverFolderIds);
    void onContactsConfigurationChanged(EasAccountId accountId);
    void tellLocalChanges();

private:
    /** Whether the user's changes go to the server at all. */
    bool uploadsChanges() const;
    void initializeObserver();
    void releaseObserver();
    bool openStore();
    /** Opens the store if the start could not. */
    bool storeAvailable();

    EasAccount &mAccount;
    ContactStoreContext mContext;
    ContactLocalChanges mLocalChanges;
    ContactRecovery mRecovery;
    std::unique_ptr<ContactsObserver> mObserver;
    /** Folders that the store has told of, by server identifiers. */
    QStringList mTouchedFolders;
    /** Runs out once the engine has finished what it is writing. */
    QTimer mTellTimer;
};
