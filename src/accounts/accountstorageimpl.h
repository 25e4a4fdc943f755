// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/accountstorage.h"

#include <QHash>

#include <memory>

namespace Accounts {
class Account;
class Manager;
} // namespace Accounts

class StorageCreator;

/**
 * The table of accounts bound to the platform's account store.
 *
 * An account gets its object once it is enabled and keeps it until the platform removes the account. Without
 * a session bus the account store cannot be read: that is logged, and the table stays empty.
 */
class AccountStorageImpl : public AccountStorage
{
    Q_OBJECT

public:
    /** The creator makes the stores of the accounts, and has to outlive them. */
    AccountStorageImpl(const StorageCreator &storages, QObject *parent);
    ~AccountStorageImpl() override;

    QList<EasAccountId> accounts() const override;
    EasAccount *account(EasAccountId id) const override;
    int enabledAccountsCount() const override;
    bool isReady() const override;
    void findAccount(EasAccountId id) override;

private Q_SLOTS:
    void initializeAccounts();
    void updateReady();
    void onAccountCreated(uint id);
    void onAccountRemoved(uint id);
    void onAccountUpdated(uint id);
    void onEmailAccountUpdated(uint id);
    void onEnabledEvent(uint id);

private:
    bool isUsable() const { return mManager && mEmailManager; }
    void connectManagers();
    void connectDatabase();
    void resumeWipes();
    void cleanUpDatabase();
    bool isEasAccount(EasAccountId id) const;
    /** The record of an account; null, after a log line, if it cannot be had. */
    Accounts::Account *accountRecord(EasAccountId id) const;
    void createAccount(Accounts::Account *record, EasAccountId id);

    const StorageCreator &mStorages;
    // Null if the account store cannot be used.
    std::shared_ptr<Accounts::Manager> mManager;
    std::shared_ptr<Accounts::Manager> mEmailManager;
    QHash<EasAccountId, EasAccount *> mAccounts;
    bool mReady = false;
};
