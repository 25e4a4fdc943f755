// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "accounts/accountconfigurations.h"
#include "accounts/accountstores.h"
#include "accounts/base/accountrecord.h"
#include "application/account/easaccount.h"

class AccountCredentials;
class RemoteWipe;
class StorageCreator;

/**
 * The binding of an account to the platform: settings from the account store, secrets from the sign-on
 * service, stores from the creator that it is given.
 *
 * It is not ready while a sign-on flow runs. Credentials come asynchronously: whoever needs to know that they
 * have arrived listens to credentialsChanged(). Owned by the account storage.
 */
class EasAccountImpl : public EasAccount
{
    Q_OBJECT

public:
    /** The creator has to outlive the account. */
    EasAccountImpl(
        Accounts::Account *account, EasAccountId id, const StorageCreator &storages, QObject *parent);
    ~EasAccountImpl() override;

    void setAlwaysOn(bool on) override;
    /** The account's own switch; whether its mail is synchronised stands in emailConfiguration(). */
    bool enabled() const override;
    QString userName() const override;
    QString password() const override;
    QString serverAddress() const override;
    int serverConflictPolicy() const override;
    QString sslCertificatePassword() const override;
    QSharedPointer<CalendarAccountConfiguration> calendarConfiguration() const override;
    QSharedPointer<ContactsAccountConfiguration> contactsConfiguration() const override;
    QSharedPointer<EmailAccountConfiguration> emailConfiguration() const override;
    QSharedPointer<ScheduleAccountConfiguration> scheduleConfiguration() const override;
    QSharedPointer<ConnectionAccountConfiguration> connectionConfiguration() const override;
    QSharedPointer<MailStorage> mailStorage() const override;
    QSharedPointer<CalendarStorage> calendarStorage() const override;
    QSharedPointer<ContactStorage> contactStorage() override;
    QString deviceId() const override;
    ExchangeActiveSync::ProtocolVersion preferredProtocolVersion() const override;
    QString policyKey() const override;
    void setPolicyKey(const QString &policyKey) override;
    QDateTime lastSyncTime(Service service) const override;
    void setLastSyncTime(Service services, const QDateTime &time) override;
    bool firstSyncCompleted() const override;
    void setFirstSyncCompleted(bool completed) override;
    QStringList lastKnownVersions() const override;
    void setLastKnownVersions(const QStringList &versions) override;
    QStringList lastKnownSupportedCommands() const override;
    void setLastKnownSupportedCommands(const QStringList &commands) override;
    ProvisionManager *provisionManager() override;
    bool remoteWipeRequested() override;
    void remoteWipeAcknowledged() override;
    bool isRemoteWipeRequested() const override;
    bool isReady() const override;
    void credentialsNeedUpdate() override;
    bool isCredentialsNeedUpdate() override;

public Q_SLOTS:
    void onAuthenticationFailedError() override;
    /** Fetches password and passphrase anew; does nothing while a flow for the password runs. */
    void retrieveCredentials();

private Q_SLOTS:
    void onEmailConfigurationChanged(EasAccountId accountId);
    void onPasswordReceived();
    void onEnabledChanged(const QString &serviceName);
    void onRemoteWipeOrdered();
    void onRemoteWipeBegun();

private:
    void initialize();
    void connectEmailConfiguration();
    void connectCredentials();
    void connectRemoteWipe();

    QVariant globalValue(const char *key) const;
    void setGlobalValue(const char *key, const QVariant &value);
    /** Into the mail service's part of the record. */
    void writeMailValues(const AccountRecord::Values &values);

    AccountRecord mRecord;
    AccountCredentials *mCredentials;
    RemoteWipe *mRemoteWipe;
    ProvisionManager *mProvisionManager = nullptr;
    const AccountConfigurations mConfigurations;
    AccountStores mStores;
};
