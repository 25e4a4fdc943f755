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

Lookup<Existence> search(
    Accounts::Manager &manager, const Accounts::AccountIdList &all, EasAccountId except, quint32 identity)
{
    for (const Accounts::AccountId id : all) {
        if (id == except)
            continue;
        // Read by an object of its own: the shared one may stand at another service.
        const std::unique_ptr<Accounts::Account> account(Accounts::Account::fromId(&manager, id, nullptr));
        if (!account)
            return Lookup<Existence>::unread();
        if (names(account.get(), identity))
            return Existence::Present;
    }
    return Existence::Missing;
}

} // namespace

Lookup<Existence> IdentityUsers::anyBut(EasAccountId accountId, quint32 identity)
{
    const std::shared_ptr<Accounts::Manager> manager = AccountStore::manager();
    const Accounts::AccountIdList all = manager ? manager->accountList() : Accounts::AccountIdList();
    // The manager's latest error may be an old one; a list that has the account could be read.
    return all.contains(Accounts::AccountId(accountId)) ? search(*manager, all, accountId, identity)
                                                        : Lookup<Existence>::unread();
}

Lookup<Existence> IdentityUsers::any(quint32 identity)
{
    const std::shared_ptr<Accounts::Manager> manager = AccountStore::manager();
    const Accounts::AccountIdList all = manager ? manager->accountList() : Accounts::AccountIdList();
    return manager && manager->lastError().type() == Accounts::Error::NoError
        ? search(*manager, all, NoAccount, identity)
        : Lookup<Existence>::unread();
}
