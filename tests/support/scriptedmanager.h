// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/networkmanager.h"
#include "application/requestmanager.h"
#include "storages/accountstorage.h"
#include "support/fakeaccount.h"

#include <QHash>
#include <QPointer>

/** A table of scripted accounts. */
class ScriptedAccountStorage : public AccountStorage
{
    Q_OBJECT

public:
    explicit ScriptedAccountStorage(QObject *parent = nullptr);
    ~ScriptedAccountStorage() override;

    FakeAccount *add(EasAccountId id);
    void remove(EasAccountId id);
    /** The account is gone, but nobody has been told so. */
    void forget(EasAccountId id);
    void becomeReady();

    QList<EasAccountId> accounts() const override { return mAccounts.keys(); }
    EasAccount *account(EasAccountId id) const override { return mAccounts.value(id); }
    int enabledAccountsCount() const override;
    bool isReady() const override { return isReadyNow; }

    bool isReadyNow = true;

private:
    QMap<EasAccountId, FakeAccount *> mAccounts;
};

/** The network without a session, as it is when the device's network library knows none. */
class SessionlessNetwork : public NetworkManager
{
    Q_OBJECT

public:
    using NetworkManager::NetworkManager;

    QNetworkSession *networkSession(EasAccountId) override { return nullptr; }
    bool isOnline() const override { return online; }

    bool online = true;
};

/**
 * The request manager without a service thread, over scripted accounts or over those that a test has made. It
 * is the process's instance from install() until uninstall(). With `network` set, that one stands in for the
 * real network manager.
 */
class ScriptedManager : public RequestManager
{
    Q_OBJECT

public:
    static ScriptedManager *install();
    static void uninstall();

    ~ScriptedManager() override;

    NetworkManager *networkManager() override { return network ? network : RequestManager::networkManager(); }
    EasAccount *account(EasAccountId id) const override;
    FakeAccount *addAccount(EasAccountId id) { return storage->add(id); }
    /** An account of the test's own, found by its identifier as long as it lives. */
    void present(EasAccount *account) { mPresented.insert(account->id(), account); }
    /** The accounts are those of this storage, as long as it lives. */
    void present(AccountStorage *accounts) { mPresentedStorage = accounts; }

    NetworkManager *network = nullptr;
    ScriptedAccountStorage *storage = nullptr;

private:
    ScriptedManager();

    QHash<EasAccountId, QPointer<EasAccount>> mPresented;
    QPointer<AccountStorage> mPresentedStorage;
};
