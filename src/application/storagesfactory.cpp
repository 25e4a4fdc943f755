// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/storagesfactory.h"

#include "accounts/accountstorageimpl.h"
#include "storages/calendar/calendarstorageimpl.h"
#include "storages/contacts/contactstorageimpl.h"
#include "storages/mail/mailstorageimpl.h"
#include "storages/storagecreator.h"

namespace {

class PlatformStorages : public StorageCreator
{
public:
    MailStorage *createMailStorage(EasAccount *account, QObject *parent) const override
    {
        return StoragesFactory::createMailStorage(account, parent);
    }
    CalendarStorage *createCalendarStorage(EasAccount &account, QObject *parent) const override
    {
        return StoragesFactory::createCalendarStorage(account, parent);
    }
    ContactStorage *createContactStorage(EasAccount &account, QObject *parent) const override
    {
        return StoragesFactory::createContactStorage(account, parent);
    }
};

} // namespace

const StorageCreator &StoragesFactory::storageCreator()
{
    static const PlatformStorages creator;
    return creator;
}

AccountStorage *StoragesFactory::createAccountStorage(QObject *parent)
{
    return new AccountStorageImpl(storageCreator(), parent);
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
