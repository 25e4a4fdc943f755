// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/contactstorage.h"

class EasAccount;

/**
 * The contact store of one account. It keeps folders alone so far: their rows stand in the mapping database,
 * and no contact is taken or given. Contacts that reach it are refused, so that a sync fails instead of
 * losing them. Owned by the account.
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
    bool queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
        QList<EasContactsItem> *changed, QStringList *deletedServerIds) override;
    bool uploadedLocalChanges(const QStringList &addedLocalIds, const QStringList &changedLocalIds,
        const QStringList &deletedLocalIds) override;
    void setFailedLocalChangesIds(const QStringList &localIds) override;

public Q_SLOTS:
    void onSyncCompleted(EasAccountId accountId, qulonglong requestId, int status) override;

private:
    EasAccountId mAccountId;
};
