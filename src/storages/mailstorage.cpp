// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mailstorage.h"

MailStorage::MailStorage(EasAccount *account, QObject *parent)
    : QObject(parent)
    , mAccount(account)
{
}

MailStorage::~MailStorage() = default;

EasAccount *MailStorage::account() const
{
    return mAccount;
}
