// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/storechanges.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

StoreChanges::StoreChanges(QObject *parent)
    : QObject(parent)
{
}

void StoreChanges::watch(EasAccount &account)
{
    if (const auto contacts = account.contactStorage())
        connect(contacts.data(), &ContactStorage::changesAvailable, this, &StoreChanges::changed,
            Qt::UniqueConnection);
    else
        qCWarning(eas()) << "contacts storage is null for account" << account.id();
    if (const auto calendar = account.calendarStorage())
        connect(calendar.data(), &CalendarStorage::changesAvailable, this, &StoreChanges::changed,
            Qt::UniqueConnection);
    else
        qCWarning(eas()) << "No calendar storage for account:" << account.id();
    // The mail store comes and goes with the service.
    if (const auto mail = account.mailStorage())
        connect(
            mail.data(), &MailStorage::messagesChanged, this, &StoreChanges::changed, Qt::UniqueConnection);
}
