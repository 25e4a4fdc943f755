// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/baseaccountconfiguration.h"

BaseAccountConfiguration::BaseAccountConfiguration(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
{
}

BaseAccountConfiguration::~BaseAccountConfiguration() = default;

EasAccountId BaseAccountConfiguration::accountId() const
{
    return mAccountId;
}
