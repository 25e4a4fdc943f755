// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/emailaccountconfigurationimpl.h"

#include <Accounts/Account>

namespace {

const QString emailServiceType = QStringLiteral("e-mail");
constexpr char firstSyncCompletedKey[] = "firstSyncCompleted";
constexpr char credentialsUpdateCounterKey[] = "credentials_update_counter";
constexpr char emailAddressKey[] = "connection/emailaddress";

const QVector<SettingRow<EmailSettings>> &emailRows()
{
    static const QVector<SettingRow<EmailSettings>> rows {
        { "enabled", &EmailSettings::enabled },
        { "conversation_mode", &EmailSettings::conversationMode },
        { "save_in_sent_items", &EmailSettings::saveInSentItems },
        { "signatureEnabled", &EmailSettings::signatureEnabled },
        { firstSyncCompletedKey, &EmailSettings::firstSyncCompleted },
        { "signature", &EmailSettings::signature },
        { "preview_size", &EmailSettings::previewSize },
        { "sync_past_time", &EmailSettings::syncPastTime },
        { emailAddressKey, &EmailSettings::emailAddress, SettingForm::Native, true },
    };
    return rows;
}

} // namespace

EmailAccountConfigurationImpl::EmailAccountConfigurationImpl(
    Accounts::Account *account, EasAccountId accountId, QObject *parent)
    : EmailRecordConfiguration(
        account, accountId, RecordScope::firstOfType(emailServiceType), emailRows(), parent)
{
    if (serviceFound())
        qCDebug(eas()) << "email service found" << accountId;
    mCredentialsUpdateCounter = storedCredentialsUpdateCounter();
    updateConfiguration();
    follow([this] { onEmailAccountUpdated(); });
    watchGlobalSettings();
}

EmailAccountConfigurationImpl::~EmailAccountConfigurationImpl() = default;

bool EmailAccountConfigurationImpl::enabled() const
{
    return values().enabled;
}

bool EmailAccountConfigurationImpl::conversationMode() const
{
    return values().conversationMode;
}

bool EmailAccountConfigurationImpl::saveInSentItems() const
{
    return values().saveInSentItems;
}

bool EmailAccountConfigurationImpl::signatureEnabled() const
{
    return values().signatureEnabled;
}

bool EmailAccountConfigurationImpl::firstSyncCompleted() const
{
    return values().firstSyncCompleted;
}

void EmailAccountConfigurationImpl::setFirstSyncCompleted(bool completed)
{
    writeSetting(firstSyncCompletedKey, completed, Q_FUNC_INFO);
    updateConfiguration();
}

QString EmailAccountConfigurationImpl::signature() const
{
    return values().signature;
}

int EmailAccountConfigurationImpl::previewSize() const
{
    return values().previewSize;
}

int EmailAccountConfigurationImpl::syncPastTime() const
{
    return values().syncPastTime;
}

QString EmailAccountConfigurationImpl::emailAddress() const
{
    return values().emailAddress;
}

void EmailAccountConfigurationImpl::onEmailAccountUpdated()
{
    qCDebug(eas()) << "updating email account config" << accountId();
    updateConfiguration();
}

void EmailAccountConfigurationImpl::onCredentialsRequested()
{
    mRequestedCounter = storedCredentialsUpdateCounter();
}

void EmailAccountConfigurationImpl::updateCredentialsUpdateCounter(EasAccountId accountId)
{
    const int counter = storedCredentialsUpdateCounter();
    // Otherwise new credentials were entered on the way: what has come may be the old ones.
    if (accountId != this->accountId() || counter != mRequestedCounter)
        return;
    mCredentialsUpdateCounter = counter;
    qCDebug(eas()) << "credentials update counter:" << mCredentialsUpdateCounter;
}

void EmailAccountConfigurationImpl::updateConfiguration()
{
    const int counter = storedCredentialsUpdateCounter();
    if (counter != mCredentialsUpdateCounter) {
        mCredentialsUpdateCounter = counter;
        qCInfo(eas()) << "password changed" << accountId();
        Q_EMIT passwordChanged();
    }
    if (refresh())
        Q_EMIT emailConfigurationChanged(accountId());
}

int EmailAccountConfigurationImpl::storedCredentialsUpdateCounter() const
{
    return serviceValue(credentialsUpdateCounterKey).toInt();
}

void EmailAccountConfigurationImpl::watchGlobalSettings()
{
    // The managers report changes of services alone.
    if (!account())
        return;
    account()->selectService();
    const Accounts::Watch *watch = account()->watchKey(QLatin1String(emailAddressKey));
    connect(watch, &Accounts::Watch::notify, this, &EmailAccountConfigurationImpl::updateConfiguration);
}
