// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/requestmanager.h"

#include <QHash>
#include <QPointer>

class AccountStorage;

/**
 * Stands in for the request manager where only its accounts matter: those of a storage, or single ones. It
 * has no service thread. There is one a process, which stays until the end.
 */
class AccountRegistry : public RequestManager
{
    Q_OBJECT

public:
    /** Makes it the process's request manager at the first call, and forgets what an earlier test put in. */
    static AccountRegistry *fresh();

    EasAccount *account(EasAccountId accountId) const override;

    void add(EasAccount *account);
    void setStorage(AccountStorage *storage);

private:
    AccountRegistry();

    QHash<EasAccountId, QPointer<EasAccount>> mAccounts;
    QPointer<AccountStorage> mStorage;
};
