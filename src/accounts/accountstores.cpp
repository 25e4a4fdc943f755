// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountstores.h"

#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"
#include "storages/storagecreator.h"

AccountStores::AccountStores(EasAccount &account, const StorageCreator &creator)
    : mAccount(account)
    , mCreator(creator)
{
}

AccountStores::~AccountStores() = default;

void AccountStores::openCalendar()
{
    if (!mClosed)
        mCalendar.reset(mCreator.createCalendarStorage(mAccount, nullptr));
}

void AccountStores::setMailEnabled(bool enabled)
{
    if (!enabled)
        mMail.reset();
    else if (!mMail && !mClosed)
        mMail.reset(mCreator.createMailStorage(&mAccount, nullptr));
}

void AccountStores::close()
{
    mClosed = true;
    mMail.reset();
    mCalendar.reset();
    mContacts.reset();
}

QSharedPointer<ContactStorage> AccountStores::contacts()
{
    if (!mContacts && !mClosed)
        mContacts.reset(mCreator.createContactStorage(mAccount, nullptr));
    return mContacts;
}
