// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/accountregistry.h"

#include "application/account/easaccount.h"
#include "dbus/dbusinterfacethread.h"
#include "storages/accountstorage.h"

#include <QCoreApplication>

AccountRegistry::AccountRegistry()
    : RequestManager(std::unique_ptr<DBusInterfaceThread>(), QCoreApplication::instance())
{
    initializeInstance(this);
}

AccountRegistry *AccountRegistry::fresh()
{
    static auto *const registry = new AccountRegistry;
    registry->mAccounts.clear();
    registry->mStorage.clear();
    return registry;
}

EasAccount *AccountRegistry::account(EasAccountId accountId) const
{
    if (mStorage)
        return mStorage->account(accountId);
    return mAccounts.value(accountId);
}

void AccountRegistry::add(EasAccount *account)
{
    mAccounts.insert(account->id(), account);
}

void AccountRegistry::setStorage(AccountStorage *storage)
{
    mStorage = storage;
}
