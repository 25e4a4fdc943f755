// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/recordconfiguration.h"

#include "accounts/base/accountstore.h"

#include <Accounts/Manager>

std::shared_ptr<Accounts::Manager> followServiceSettings(QObject *context, const QString &serviceType,
    EasAccountId accountId, const std::function<void()> &changed)
{
    // Only a manager of the service's own type reports that one of its keys was written.
    auto manager = AccountStore::manager(serviceType);
    if (!manager)
        return nullptr;
    QObject::connect(manager.get(), &Accounts::Manager::accountUpdated, context,
        [accountId, changed](Accounts::AccountId updated) {
            if (updated == accountId)
                changed();
        });
    return manager;
}
