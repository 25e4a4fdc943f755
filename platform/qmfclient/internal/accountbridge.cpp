// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/accountbridge.h"

#include "support/sessionbus.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QDebug>

#include <algorithm>

namespace {

const char mailServiceType[] = "e-mail";

/** Read afresh: an object that lives on learns of changes by other processes only through the event loop. */
std::unique_ptr<Accounts::Account> loaded(Accounts::Manager *manager, quint64 id)
{
    return std::unique_ptr<Accounts::Account>(
        Accounts::Account::fromId(manager, Accounts::AccountId(id), nullptr));
}

bool isForMail(const Accounts::Account &account)
{
    return !account.services(QLatin1String(mailServiceType)).isEmpty();
}

} // namespace

AccountBridge::AccountBridge()
{
    // Without a bus each call on a manager prints criticals, and its accounts are null.
    if (!sessionBusIsThere())
        return;
    auto manager = std::make_unique<Accounts::Manager>();
    if (manager->lastError().type() != Accounts::Error::NoError) {
        qWarning() << "the mail store does without the account store:" << manager->lastError().message();
        return;
    }
    mManager = std::move(manager);
    connect(mManager.get(), &Accounts::Manager::accountCreated, this, &AccountBridge::onAccountCreated);
    connect(mManager.get(), &Accounts::Manager::accountRemoved, this,
        [this](Accounts::AccountId id) { Q_EMIT accountRemoved(id); });
}

AccountBridge::~AccountBridge() = default;

void AccountBridge::onAccountCreated(quint64 id)
{
    // Whoever hears of it reads it again; an account that is never told of would never get its mail.
    const Record created = record(id);
    if (created.valid || created.unreadable)
        Q_EMIT accountCreated(id);
}

QList<quint64> AccountBridge::mailAccounts() const
{
    QList<quint64> ids;
    if (!isUsable())
        return ids;
    for (const Accounts::AccountId id : mManager->accountList()) {
        const auto account = loaded(mManager.get(), id);
        if (account && isForMail(*account))
            ids.append(id);
    }
    return ids;
}

bool AccountBridge::exists(quint64 id) const
{
    return isUsable() && mManager->accountList().contains(Accounts::AccountId(id));
}

bool AccountBridge::isGone(quint64 id) const
{
    return isUsable() && !exists(id) && !loaded(mManager.get(), id)
        && mManager->lastError().type() == Accounts::Error::AccountNotFound;
}

AccountBridge::Record AccountBridge::record(quint64 id) const
{
    Record record;
    if (id == 0 || id > std::numeric_limits<Accounts::AccountId>::max() || !exists(id))
        return record;
    const auto account = loaded(mManager.get(), id);
    if (!account) {
        qWarning() << "the mail store cannot read account" << id << mManager->lastError().message();
        record.unreadable = true;
        return record;
    }
    if (!isForMail(*account))
        return record;
    account->selectService();
    record.valid = true;
    record.name = account->displayName();
    record.folderSyncPolicy = account->value(QStringLiteral("folderSyncPolicy")).toString();
    return record;
}

quint64 AccountBridge::highestId() const
{
    quint64 highest = 0;
    if (isUsable()) {
        for (const Accounts::AccountId id : mManager->accountList())
            highest = qMax(highest, quint64(id));
    }
    return highest;
}
