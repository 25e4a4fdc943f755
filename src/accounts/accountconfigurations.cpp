// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountconfigurations.h"

#include "application/account/easaccount.h"
#include "configurations/impls/calendaraccountconfigurationimpl.h"
#include "configurations/impls/connectionaccountconfigurationimpl.h"
#include "configurations/impls/contactsaccountconfigurationimpl.h"
#include "configurations/impls/emailaccountconfigurationimpl.h"
#include "configurations/impls/scheduleaccountconfigurationimpl.h"

AccountConfigurations::AccountConfigurations(Accounts::Account *record, EasAccount &account)
    : calendar(new CalendarAccountConfigurationImpl(record, account.id(), nullptr))
    , contacts(new ContactsAccountConfigurationImpl(record, account.id(), nullptr))
    , connection(new ConnectionAccountConfigurationImpl(record, account.id(), nullptr))
    , schedule(new ScheduleAccountConfigurationImpl(record, account.id(), nullptr))
    , email(new EmailAccountConfigurationImpl(record, account.id(), nullptr))
{
    QObject::connect(calendar.data(), &CalendarAccountConfiguration::calendarConfigurationChanged, &account,
        &EasAccount::calendarConfigurationChanged);
    QObject::connect(contacts.data(), &ContactsAccountConfiguration::contactsConfigurationChanged, &account,
        &EasAccount::contactsConfigurationChanged);
    QObject::connect(connection.data(), &ConnectionAccountConfiguration::connectionConfigurationChanged,
        &account, &EasAccount::connectionConfigurationChanged);
    QObject::connect(schedule.data(), &ScheduleAccountConfiguration::scheduleConfigurationChanged, &account,
        &EasAccount::scheduleConfigurationChanged);
}
