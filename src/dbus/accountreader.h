// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

#include <memory>

namespace Accounts {
class Account;
class Manager;
} // namespace Accounts

/**
 * What the service thread answers from the account store by itself, without the engine, which lives on
 * another thread. Made, used and destroyed on the service thread; a store that cannot be read is tried again
 * with each call.
 */
class AccountReader
{
public:
    /** The largest version that the account's server has announced; ProtocolVersionUnknown without one. */
    int protocolVersion(qulonglong accountId);
    /** Empty for an unknown account. */
    QString emailAddress(qulonglong accountId);

private:
    std::unique_ptr<Accounts::Account> storedAccount(qulonglong accountId);

    std::shared_ptr<Accounts::Manager> mAccountsManager;
};
