// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contactstorage.h"

ContactStorage::ContactStorage(QObject *parent)
    : QObject(parent)
{
}

ContactStorage::~ContactStorage() = default;
