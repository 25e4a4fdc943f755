// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/accountreader.h"

#include "accounts/base/accountstore.h"
#include "application/account/easaccount.h"
#include "application/base/logging.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <algorithm>
#include <limits>

std::unique_ptr<Accounts::Account> AccountReader::storedAccount(qulonglong accountId)
{
    // A fresh object each time: it is read from the store, where another thread may have written meanwhile.
    std::unique_ptr<Accounts::Account> account;
    if (!mAccountsManager)
        mAccountsManager = AccountStore::manager();
    if (mAccountsManager && accountId <= std::numeric_limits<Accounts::AccountId>::max())
        account.reset(Accounts::Account::fromId(
            mAccountsManager.get(), static_cast<Accounts::AccountId>(accountId), nullptr));
    if (!account)
        qCCritical(eas()) << "Cannot allocate account object";
    return account;
}

int AccountReader::protocolVersion(qulonglong accountId)
{
    const auto account = storedAccount(accountId);
    if (!account)
        return ExchangeActiveSync::ProtocolVersionUnknown;
    const QString versions = account->valueAsString(QStringLiteral("last_known_versions"));
    int largest = ExchangeActiveSync::ProtocolVersionUnknown;
    for (const QString &version : versions.split(QLatin1Char(','), Qt::SkipEmptyParts))
        largest = std::max<int>(largest, EasAccount::toProtocolVersion(version.toLatin1()));
    return largest;
}

QString AccountReader::emailAddress(qulonglong accountId)
{
    const auto account = storedAccount(accountId);
    if (!account)
        return {};
    account->selectService();
    return account->valueAsString(QStringLiteral("connection/emailaddress"));
}
