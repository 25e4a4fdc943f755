// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QSharedPointer>

class CalendarAccountConfiguration;
class ConnectionAccountConfiguration;
class ContactsAccountConfiguration;
class EasAccount;
class EmailAccountConfigurationImpl;
class ScheduleAccountConfiguration;

namespace Accounts {
class Account;
}

/**
 * The settings of an account's services, bound to its record in the account store. A change of any but those
 * of mail is told by the account's own signal. Owned by the account; the record has to outlive it.
 */
class AccountConfigurations
{
public:
    AccountConfigurations(Accounts::Account *record, EasAccount &account);

    const QSharedPointer<CalendarAccountConfiguration> calendar;
    const QSharedPointer<ContactsAccountConfiguration> contacts;
    const QSharedPointer<ConnectionAccountConfiguration> connection;
    const QSharedPointer<ScheduleAccountConfiguration> schedule;
    /** The account has to do with a change before it tells of it. */
    const QSharedPointer<EmailAccountConfigurationImpl> email;
};
