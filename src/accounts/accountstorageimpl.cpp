// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountstorageimpl.h"

#include "accounts/base/accountrecord.h"
#include "accounts/base/accountstore.h"
#include "accounts/base/wipekeys.h"
#include "accounts/easaccountimpl.h"
#include "accounts/identitycleanup.h"
#include "accounts/schedulercalls.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QTimer>

#include <algorithm>
#include <limits>

namespace {
const QString providerName = QStringLiteral("fenneleas");
}

AccountStorageImpl::AccountStorageImpl(const StorageCreator &storages, QObject *parent)
    : AccountStorage(parent)
    , mStorages(storages)
    , mManager(AccountStore::manager())
    , mEmailManager(AccountStore::manager(QStringLiteral("e-mail")))
{
    if (isUsable())
        connectManagers();
    connectDatabase();
    QTimer::singleShot(0, this, &AccountStorageImpl::initializeAccounts);
}

AccountStorageImpl::~AccountStorageImpl()
{
    // The records that the objects use belong to the managers.
    qDeleteAll(mAccounts);
}

QList<EasAccountId> AccountStorageImpl::accounts() const
{
    return mAccounts.keys();
}

EasAccount *AccountStorageImpl::account(EasAccountId id) const
{
    return mAccounts.value(id, nullptr);
}

int AccountStorageImpl::enabledAccountsCount() const
{
    // The engine stays for a wipe, too.
    return static_cast<int>(std::count_if(mAccounts.cbegin(), mAccounts.cend(),
        [](const EasAccount *account) { return account->enabled() || account->isRemoteWipeRequested(); }));
}

bool AccountStorageImpl::isReady() const
{
    return mReady;
}

void AccountStorageImpl::findAccount(EasAccountId id)
{
    if (isUsable() && !mAccounts.contains(id) && id <= std::numeric_limits<Accounts::AccountId>::max())
        onAccountCreated(static_cast<uint>(id));
}

void AccountStorageImpl::connectManagers()
{
    connect(mManager.get(), &Accounts::Manager::accountCreated, this, &AccountStorageImpl::onAccountCreated);
    connect(mManager.get(), &Accounts::Manager::accountRemoved, this, &AccountStorageImpl::onAccountRemoved);
    connect(mManager.get(), &Accounts::Manager::accountUpdated, this, &AccountStorageImpl::onAccountUpdated);
    connect(mEmailManager.get(), &Accounts::Manager::accountUpdated, this,
        &AccountStorageImpl::onEmailAccountUpdated);
    // Only this signal tells that an account was switched on or off.
    connect(mEmailManager.get(), &Accounts::Manager::enabledEvent, this, &AccountStorageImpl::onEnabledEvent);
}

void AccountStorageImpl::connectDatabase()
{
    // The database object comes and goes, so each signal asks for the one of the moment.
    connect(this, &AccountStorage::accountAdded, this,
        [](EasAccountId id) { EasDatabase::instance()->onAccountAdded(id); });
    connect(this, &AccountStorage::accountDeleted, this,
        [](EasAccountId id) { EasDatabase::instance()->onAccountDeleted(id); });
}

bool AccountStorageImpl::isEasAccount(EasAccountId id) const
{
    const Accounts::Account *record = accountRecord(id);
    return record && record->providerName() == providerName;
}

Accounts::Account *AccountStorageImpl::accountRecord(EasAccountId id) const
{
    Accounts::Account *record = mManager->account(static_cast<Accounts::AccountId>(id));
    if (!record)
        qCWarning(eas()) << "Can't get account " << id << ". Error:" << mManager->lastError().message();
    else
        record->selectService();
    return record;
}

void AccountStorageImpl::createAccount(Accounts::Account *record, EasAccountId id)
{
    EasAccount *account = new EasAccountImpl(record, id, mStorages, this);
    mAccounts.insert(id, account);
    connect(account, &EasAccount::readyChanged, this, &AccountStorageImpl::updateReady);
}

void AccountStorageImpl::initializeAccounts()
{
    if (isUsable()) {
        const Accounts::AccountIdList enabled = mEmailManager->accountListEnabled();
        for (const Accounts::AccountId id : enabled) {
            if (!isEasAccount(id) || mAccounts.contains(id))
                continue;
            Accounts::Account *record = accountRecord(id);
            if (!record || !record->enabled())
                continue;
            createAccount(record, id);
            qCInfo(eas()) << "initialized EAS account with id" << id;
        }
        resumeWipes();
        cleanUpDatabase();
        (new IdentityCleanUp(this))->start();
    }
    qCInfo(eas()) << "Storage is initialized";
    updateReady();
}

void AccountStorageImpl::resumeWipes()
{
    // An account that was switched off after the order is wiped all the same.
    const Accounts::AccountIdList all = mManager->accountList();
    for (const Accounts::AccountId id : all) {
        if (mAccounts.contains(id) || !isEasAccount(id))
            continue;
        Accounts::Account *const record = accountRecord(id);
        if (record
            && AccountRecord(record)
                   .value(RecordScope::global(), QLatin1String(WipeKeys::Requested))
                   .toBool())
            createAccount(record, id);
    }
}

void AccountStorageImpl::cleanUpDatabase()
{
    // Disabled accounts are known too: what is kept of them stays. A list that could not be read must not
    // pass for an empty one.
    const Accounts::AccountIdList all = mManager->accountList();
    const Accounts::Error error = mManager->lastError();
    if (error.type() != Accounts::Error::NoError) {
        qCWarning(eas()) << "The accounts could not be listed, nothing is cleaned up. Error:" << error.type()
                         << error.message();
        return;
    }
    QList<EasAccountId> known;
    for (const Accounts::AccountId id : all)
        known.append(id);
    if (!EasDatabase::instance()->cleanUp(known))
        qCWarning(eas()) << "failed to clean up DBs";
}

void AccountStorageImpl::updateReady()
{
    const bool allReady = std::all_of(
        mAccounts.cbegin(), mAccounts.cend(), [](const EasAccount *account) { return account->isReady(); });
    if (!allReady || mReady)
        return;
    mReady = true;
    qCInfo(eas()) << "All accounts ready";
    Q_EMIT ready();
}

void AccountStorageImpl::onAccountCreated(uint id)
{
    qCInfo(eas()) << "received account created: " << id;
    if (!isEasAccount(id))
        return;
    Accounts::Account *record = accountRecord(id);
    if (!record)
        return;
    if (!record->enabled()) {
        qCInfo(eas()) << "account" << id << "disabled";
        return;
    }
    if (mAccounts.contains(id))
        return;
    createAccount(record, id);
    qCInfo(eas()) << "created EAS account with id" << id;
    updateReady();
    Q_EMIT accountAdded(id);
}

void AccountStorageImpl::onAccountRemoved(uint id)
{
    qCInfo(eas()) << "received account removed: " << id;
    SchedulerCalls::forget(id);
    EasAccount *account = mAccounts.take(id);
    if (!account)
        return;
    account->disconnect(this);
    account->deleteLater();
    Q_EMIT accountDeleted(id);
    updateReady();
}

void AccountStorageImpl::onAccountUpdated(uint id)
{
    if (!isEasAccount(id))
        return;
    qCDebug(eas()) << "received account" << id << "updated";
    const Accounts::Account *record = accountRecord(id);
    if (record && record->enabled() && !mAccounts.contains(id))
        onAccountCreated(id);
    else
        Q_EMIT accountUpdated(id);
}

void AccountStorageImpl::onEmailAccountUpdated(uint id)
{
    qCDebug(eas()) << "account" << id << "updated";
    // The account store reports updates through this manager alone.
    onAccountUpdated(id);
}

void AccountStorageImpl::onEnabledEvent(uint id)
{
    onAccountUpdated(id);
}
