// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/scriptedaccount.h"

#include "configurations/calendaraccountconfiguration.h"
#include "configurations/contactsaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "configurations/scheduleaccountconfiguration.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

ScriptedConnection::ScriptedConnection(EasAccountId id)
    : ConnectionAccountConfiguration(id, nullptr)
{
}

ScriptedConnection::~ScriptedConnection() = default;

ScriptedAccount::ScriptedAccount(EasAccountId id, QObject *parent)
    : EasAccount(id, parent)
    , connection(QSharedPointer<ScriptedConnection>::create(id))
{
}

ScriptedAccount::~ScriptedAccount() = default;

void ScriptedAccount::setReady(bool isReady)
{
    ready = isReady;
    Q_EMIT readyChanged();
}

void ScriptedAccount::negotiated(const QStringList &commands)
{
    setProtocolVersion(ExchangeActiveSync::ProtocolVersion141);
    setSupportedCommands(commands);
}

QSharedPointer<CalendarAccountConfiguration> ScriptedAccount::calendarConfiguration() const
{
    return {};
}

QSharedPointer<ContactsAccountConfiguration> ScriptedAccount::contactsConfiguration() const
{
    return {};
}

QSharedPointer<EmailAccountConfiguration> ScriptedAccount::emailConfiguration() const
{
    return {};
}

QSharedPointer<ScheduleAccountConfiguration> ScriptedAccount::scheduleConfiguration() const
{
    return {};
}

QSharedPointer<ConnectionAccountConfiguration> ScriptedAccount::connectionConfiguration() const
{
    return connection;
}

QSharedPointer<MailStorage> ScriptedAccount::mailStorage() const
{
    return mails;
}

QSharedPointer<CalendarStorage> ScriptedAccount::calendarStorage() const
{
    return events;
}

QSharedPointer<ContactStorage> ScriptedAccount::contactStorage()
{
    return people;
}
