// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/knownaccounts.h"

#include "configurations/calendaraccountconfiguration.h"
#include "configurations/connectionaccountconfiguration.h"
#include "configurations/contactsaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "configurations/scheduleaccountconfiguration.h"
#include "dbus/dbusinterfacethread.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

namespace {

class Calendar : public CalendarAccountConfiguration
{
public:
    Calendar(EasAccountId accountId, bool enabled)
        : CalendarAccountConfiguration(accountId, nullptr)
        , mEnabled(enabled)
    {
    }

    bool enabled() const override { return mEnabled; }
    int syncPastTime() const override { return 0; }
    QString calendarName() const override { return {}; }
    bool firstSyncCompleted() const override { return false; }
    void setFirstSyncCompleted(bool) override {}

private:
    bool mEnabled;
};

} // namespace

KnownAccount::KnownAccount(EasAccountId id, std::optional<bool> calendarEnabled)
    : EasAccount(id, nullptr)
{
    if (calendarEnabled)
        mCalendar.reset(new Calendar(id, *calendarEnabled));
}

KnownAccount::~KnownAccount() = default;

QSharedPointer<ContactsAccountConfiguration> KnownAccount::contactsConfiguration() const
{
    return {};
}

QSharedPointer<EmailAccountConfiguration> KnownAccount::emailConfiguration() const
{
    return {};
}

QSharedPointer<ScheduleAccountConfiguration> KnownAccount::scheduleConfiguration() const
{
    return {};
}

QSharedPointer<ConnectionAccountConfiguration> KnownAccount::connectionConfiguration() const
{
    return {};
}

QSharedPointer<MailStorage> KnownAccount::mailStorage() const
{
    return {};
}

QSharedPointer<CalendarStorage> KnownAccount::calendarStorage() const
{
    return {};
}

QSharedPointer<ContactStorage> KnownAccount::contactStorage()
{
    return {};
}

ExchangeActiveSync::ProtocolVersion KnownAccount::preferredProtocolVersion() const
{
    return ExchangeActiveSync::ProtocolVersionUnknown;
}

KnownAccounts::KnownAccounts()
    : RequestManager(std::unique_ptr<DBusInterfaceThread>(), nullptr)
{
}

KnownAccounts::~KnownAccounts() = default;

KnownAccounts *KnownAccounts::install()
{
    auto *manager = new KnownAccounts;
    RequestManager::initializeInstance(manager);
    return manager;
}

KnownAccount *KnownAccounts::add(EasAccountId id, std::optional<bool> calendarEnabled)
{
    mAccounts.push_back(std::make_unique<KnownAccount>(id, calendarEnabled));
    return mAccounts.back().get();
}

QList<EasAccountId> KnownAccounts::accounts() const
{
    QList<EasAccountId> ids;
    for (const std::unique_ptr<KnownAccount> &account : mAccounts)
        ids.append(account->id());
    return ids;
}

EasAccount *KnownAccounts::account(EasAccountId accountId) const
{
    for (const std::unique_ptr<KnownAccount> &account : mAccounts) {
        if (account->id() == accountId)
            return account.get();
    }
    return nullptr;
}
