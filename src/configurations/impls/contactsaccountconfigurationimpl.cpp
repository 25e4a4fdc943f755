// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/contactsaccountconfigurationimpl.h"

namespace {

const QString serviceType = QStringLiteral("sync");
constexpr char firstSyncCompletedKey[] = "firstSyncCompleted";

const QVector<SettingRow<ContactsSettings>> &rows()
{
    static const QVector<SettingRow<ContactsSettings>> table {
        { "enabled", &ContactsSettings::enabled },
        { "sync_local", &ContactsSettings::syncLocalContacts },
        { firstSyncCompletedKey, &ContactsSettings::firstSyncCompleted },
    };
    return table;
}

} // namespace

ContactsAccountConfigurationImpl::ContactsAccountConfigurationImpl(
    Accounts::Account *account, EasAccountId accountId, QObject *parent)
    : ContactsRecordConfiguration(account, accountId,
        RecordScope::named(serviceType, QStringLiteral("fenneleas-contacts")), rows(), parent)
{
    if (serviceFound())
        qCDebug(eas()) << "contacts service found" << accountId;
    updateConfiguration();
    follow([this] { updateConfiguration(); });
}

bool ContactsAccountConfigurationImpl::enabled() const
{
    return values().enabled;
}

bool ContactsAccountConfigurationImpl::syncLocalContacts() const
{
    return values().syncLocalContacts;
}

bool ContactsAccountConfigurationImpl::firstSyncCompleted() const
{
    return values().firstSyncCompleted;
}

void ContactsAccountConfigurationImpl::setFirstSyncCompleted(bool completed)
{
    writeSetting(firstSyncCompletedKey, completed, Q_FUNC_INFO);
    updateConfiguration();
}

void ContactsAccountConfigurationImpl::updateConfiguration()
{
    if (refresh())
        Q_EMIT contactsConfigurationChanged(accountId());
}
