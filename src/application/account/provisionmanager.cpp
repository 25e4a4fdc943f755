// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/provisionmanager.h"

ProvisionManager::ProvisionManager(EasAccount *account, QObject *parent)
    : QObject(parent)
    , mAccount(account)
{
}

ProvisionManager::~ProvisionManager() = default;

EasAccount *ProvisionManager::account() const
{
    return mAccount;
}
