// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendarstorage.h"

CalendarStorage::CalendarStorage(QObject *parent)
    : QObject(parent)
{
}

CalendarStorage::~CalendarStorage() = default;
