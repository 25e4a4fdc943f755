// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/recordconfiguration.h"

#include <Accounts/Manager>

void followServiceSettings(QObject *context, const QString &serviceType, EasAccountId accountId,
    const std::function<void()> &changed)
{
    // Only a manager of the service's own type reports that one of its keys was written.
    const auto *manager = new Accounts::Manager(serviceType, context);
    QObject::connect(manager, &Accounts::Manager::accountUpdated, context,
        [accountId, changed](Accounts::AccountId updated) {
            if (updated == accountId)
                changed();
        });
}
