// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/accountstorage.h"

AccountStorage::AccountStorage(QObject *parent)
    : QObject(parent)
{
}

AccountStorage::~AccountStorage() = default;
