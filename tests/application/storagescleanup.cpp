// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/storagescleanup.h"

#include "application/storagesfactory.h"

#include <dlfcn.h>

namespace {

StoragesCleanUp *active = nullptr;

bool passOn(const char *symbol, const QList<EasAccountId> &accounts)
{
    using Operation = bool (*)(const QList<EasAccountId> &);
    const auto operation = reinterpret_cast<Operation>(dlsym(RTLD_NEXT, symbol));
    return operation && operation(accounts);
}

} // namespace

StoragesCleanUp::StoragesCleanUp()
{
    active = this;
}

StoragesCleanUp::~StoragesCleanUp()
{
    active = nullptr;
}

bool StoragesFactory::cleanUpDeletedAccounts(const QList<EasAccountId> &accounts)
{
    if (!active)
        return passOn("_ZN15StoragesFactory22cleanUpDeletedAccountsERK5QListIyE", accounts);
    active->deleted.append(accounts);
    return active->succeeds;
}

bool StoragesFactory::cleanUpAccounts(const QList<EasAccountId> &accounts)
{
    if (!active)
        return passOn("_ZN15StoragesFactory15cleanUpAccountsERK5QListIyE", accounts);
    active->cleared.append(accounts);
    return active->succeeds;
}
