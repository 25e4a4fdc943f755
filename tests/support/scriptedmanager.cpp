// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/scriptedmanager.h"

#include "dbus/dbusinterfacethread.h"

#include <algorithm>

ScriptedAccountStorage::ScriptedAccountStorage(QObject *parent)
    : AccountStorage(parent)
{
}

ScriptedAccountStorage::~ScriptedAccountStorage() = default;

FakeAccount *ScriptedAccountStorage::add(EasAccountId id)
{
    auto *const account = new FakeAccount(id, this);
    mAccounts.insert(id, account);
    return account;
}

void ScriptedAccountStorage::forget(EasAccountId id)
{
    if (FakeAccount *const account = mAccounts.take(id))
        account->deleteLater();
}

void ScriptedAccountStorage::remove(EasAccountId id)
{
    forget(id);
    Q_EMIT accountDeleted(id);
}

void ScriptedAccountStorage::becomeReady()
{
    isReadyNow = true;
    Q_EMIT ready();
}

int ScriptedAccountStorage::enabledAccountsCount() const
{
    return static_cast<int>(std::count_if(
        mAccounts.cbegin(), mAccounts.cend(), [](const FakeAccount *account) { return account->enabled(); }));
}

ScriptedManager::ScriptedManager()
    : RequestManager(std::unique_ptr<DBusInterfaceThread>(), nullptr)
    , storage(new ScriptedAccountStorage)
{
    setAccountStorage(storage);
}

ScriptedManager::~ScriptedManager() = default;

EasAccount *ScriptedManager::account(EasAccountId id) const
{
    if (EasAccount *const presented = mPresented.value(id))
        return presented;
    return mPresentedStorage ? mPresentedStorage->account(id) : RequestManager::account(id);
}

ScriptedManager *ScriptedManager::install()
{
    auto *const manager = new ScriptedManager;
    RequestManager::initializeInstance(manager);
    return manager;
}

void ScriptedManager::uninstall()
{
    RequestManager::releaseInstance();
}
