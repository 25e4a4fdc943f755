// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QSharedPointer>

class CalendarStorage;
class ContactStorage;
class EasAccount;
class MailStorage;
class StorageCreator;

/**
 * The stores of one account, from their making until nothing may be put into them any more.
 *
 * Belongs to the account object, which outlives it as the creator does. Main thread only.
 */
class AccountStores
{
public:
    AccountStores(EasAccount &account, const StorageCreator &creator);
    ~AccountStores();
    Q_DISABLE_COPY(AccountStores)

    void openCalendar();
    /** Makes the mail store, or drops it. */
    void setMailEnabled(bool enabled);
    /** Drops all stores for good; whoever holds one keeps it for the length of a call. */
    void close();

    /** Null while the account's mail service is disabled. */
    QSharedPointer<MailStorage> mail() const { return mMail; }
    QSharedPointer<CalendarStorage> calendar() const { return mCalendar; }
    /** Made at the first call. All three are null once the stores are closed. */
    QSharedPointer<ContactStorage> contacts();

private:
    EasAccount &mAccount;
    const StorageCreator &mCreator;
    QSharedPointer<MailStorage> mMail;
    QSharedPointer<CalendarStorage> mCalendar;
    QSharedPointer<ContactStorage> mContacts;
    bool mClosed = false;
};
