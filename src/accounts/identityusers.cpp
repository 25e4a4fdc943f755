// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/identityusers.h"

#include "accounts/base/accountrecord.h"
#include "accounts/base/accountstore.h"
#include "accounts/base/identitykeys.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <algorithm>
#include <memory>

namespace {

/** No account has this number. */
constexpr EasAccountId NoAccount = 0;

bool names(Accounts::Account *account, quint32 identity)
{
    QVector<RecordScope> scopes { RecordScope::global() };
    const Accounts::ServiceList services = account->services();
    for (const Accounts::Service &service : services)
        scopes.append(RecordScope::named(service.serviceType(), service.name()));
    const AccountRecord record(account);
    return std::any_of(scopes.cbegin(), scopes.cend(), [&](const RecordScope &scope) {
        return record.value(scope, QLatin1String(IdentityKeys::Password)).toUInt() == identity
            || record.value(scope, QLatin1String(IdentityKeys::CertificatePassphrase)).toUInt() == identity;
    });
}

} // namespace

bool IdentityUsers::anyBut(EasAccountId accountId, quint32 identity)
{
    const std::shared_ptr<Accounts::Manager> manager = AccountStore::manager();
    if (!manager)
        return true;
    const Accounts::AccountIdList all = manager->accountList();
    if (manager->lastError().type() != Accounts::Error::NoError)
        return true;
    return std::any_of(all.cbegin(), all.cend(), [&](Accounts::AccountId id) {
        if (id == accountId)
            return false;
        // Read by an object of its own: the shared one may stand at another service.
        const std::unique_ptr<Accounts::Account> account(
            Accounts::Account::fromId(manager.get(), id, nullptr));
        return !account || names(account.get(), identity);
    });
}

bool IdentityUsers::any(quint32 identity)
{
    return anyBut(NoAccount, identity);
}
