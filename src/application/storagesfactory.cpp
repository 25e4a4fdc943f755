// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/storagesfactory.h"

#include "storages/accountstorageimpl.h"
#include "storages/calendar/calendarstorageimpl.h"
#include "storages/contacts/contactstorageimpl.h"
#include "storages/mail/mailstorageimpl.h"

AccountStorage *StoragesFactory::createAccountStorage(QObject *parent)
{
    return new AccountStorageImpl(parent);
}

MailStorage *StoragesFactory::createMailStorage(EasAccount *account, QObject *parent)
{
    return new MailStorageImpl(account, parent);
}

CalendarStorage *StoragesFactory::createCalendarStorage(EasAccount &account, QObject *parent)
{
    return new CalendarStorageImpl(account, parent);
}

ContactStorage *StoragesFactory::createContactStorage(EasAccount &account, QObject *parent)
{
    return new ContactStorageImpl(account, parent);
}

// Every store gets its turn, whether or not another one failed.

bool StoragesFactory::cleanUpDeletedAccounts(const QList<EasAccountId> &accounts)
{
    const bool mail = MailStorageImpl::cleanUpDeletedAccounts(accounts);
    const bool calendar = CalendarStorageImpl::cleanUpDeletedAccounts(accounts);
    const bool contacts = ContactStorageImpl::cleanUpDeletedAccounts(accounts);
    return mail && calendar && contacts;
}

bool StoragesFactory::cleanUpAccounts(const QList<EasAccountId> &accounts)
{
    const bool mail = MailStorageImpl::cleanUpAccounts(accounts);
    const bool calendar = CalendarStorageImpl::cleanUpDeletedAccounts(accounts);
    const bool contacts = ContactStorageImpl::cleanUpDeletedAccounts(accounts);
    return mail && calendar && contacts;
}
