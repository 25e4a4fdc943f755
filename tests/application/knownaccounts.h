// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/account/easaccount.h"
#include "application/requestmanager.h"

#include <memory>
#include <optional>
#include <vector>

/** An account of which only the calendar service and the times of synchronisation matter. */
class KnownAccount : public EasAccount
{
    Q_OBJECT

public:
    /** `calendar` without value: the account has no calendar configuration. */
    KnownAccount(EasAccountId id, std::optional<bool> calendarEnabled);
    ~KnownAccount() override;

    bool enabled() const override { return true; }
    QString userName() const override { return {}; }
    QString password() const override { return {}; }
    QString serverAddress() const override { return {}; }
    int serverConflictPolicy() const override { return 0; }
    QString sslCertificatePassword() const override { return {}; }
    QSharedPointer<CalendarAccountConfiguration> calendarConfiguration() const override { return mCalendar; }
    QSharedPointer<ContactsAccountConfiguration> contactsConfiguration() const override;
    QSharedPointer<EmailAccountConfiguration> emailConfiguration() const override;
    QSharedPointer<ScheduleAccountConfiguration> scheduleConfiguration() const override;
    QSharedPointer<ConnectionAccountConfiguration> connectionConfiguration() const override;
    QSharedPointer<MailStorage> mailStorage() const override;
    QSharedPointer<CalendarStorage> calendarStorage() const override;
    QSharedPointer<ContactStorage> contactStorage() override;
    ExchangeActiveSync::ProtocolVersion preferredProtocolVersion() const override;
    QString policyKey() const override { return {}; }
    void setPolicyKey(const QString &) override {}
    bool firstSyncCompleted() const override { return mFirstSyncCompleted; }
    void setFirstSyncCompleted(bool completed) override { mFirstSyncCompleted = completed; }
    QStringList lastKnownVersions() const override { return {}; }
    void setLastKnownVersions(const QStringList &) override {}
    QStringList lastKnownSupportedCommands() const override { return {}; }
    void setLastKnownSupportedCommands(const QStringList &) override {}
    ProvisionManager *provisionManager() override { return nullptr; }
    bool remoteWipeRequested() override { return false; }
    void remoteWipeAcknowledged() override {}
    bool isRemoteWipeRequested() const override { return false; }
    void credentialsNeedUpdate() override {}
    bool isCredentialsNeedUpdate() override { return false; }

public Q_SLOTS:
    void onAuthenticationFailedError() override {}

private:
    QSharedPointer<CalendarAccountConfiguration> mCalendar;
    bool mFirstSyncCompleted = true;
};

/** Stands in for the request manager, with accounts that a test makes; RequestManager owns it. */
class KnownAccounts : public RequestManager
{
    Q_OBJECT

public:
    KnownAccounts();
    ~KnownAccounts() override;

    /** Puts a new stand-in in; RequestManager::releaseInstance() takes it out. */
    static KnownAccounts *install();

    KnownAccount *add(EasAccountId id, std::optional<bool> calendarEnabled = true);

    QList<EasAccountId> accounts() const override;
    EasAccount *account(EasAccountId accountId) const override;

private:
    std::vector<std::unique_ptr<KnownAccount>> mAccounts;
};
