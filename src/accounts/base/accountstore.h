// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

#include <memory>

namespace Accounts {
class Manager;
}

/**
 * Where the process gets the managers of the platform's account store: one for each service type and thread,
 * shared by all that ask for it, so that the database is not opened anew for each of them.
 *
 * Before it connects to its database the account library opens and closes the file, and the close drops every
 * lock that the process holds on it. Another program that ends then believes itself the last one, and removes
 * the write-ahead log of a database that is still in use: from there on the two write past each other. So
 * the first manager comes with a guard, see AccountStoreGuard.
 */
class AccountStore
{
public:
    /**
     * The manager for a service type, or for all services without one. Null, after a log line, if the store
     * cannot be used. It lives on the calling thread, as long as somebody there holds it.
     */
    static std::shared_ptr<Accounts::Manager> manager(const QString &serviceType = QString());
};
