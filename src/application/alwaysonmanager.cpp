// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/alwaysonmanager.h"

AlwaysOnManager::AlwaysOnManager(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
{
}

EasAccountId AlwaysOnManager::accountId() const
{
    return mAccountId;
}

bool AlwaysOnManager::alwaysOnScheduling() const
{
    return mAlwaysOnEnabled;
}

void AlwaysOnManager::setAlwaysOnScheduling(bool enabledAlwaysOn)
{
    mAlwaysOnEnabled = enabledAlwaysOn;
}
