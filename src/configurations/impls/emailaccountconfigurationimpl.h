// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/emailaccountconfiguration.h"
#include "configurations/impls/recordconfiguration.h"

struct EmailSettings
{
    bool enabled = false;
    bool conversationMode = false;
    bool saveInSentItems = false;
    bool signatureEnabled = false;
    bool firstSyncCompleted = false;
    QString signature;
    int previewSize = 0;
    int syncPastTime = 0;
    QString emailAddress;
};

using EmailRecordConfiguration = RecordConfiguration<EmailAccountConfiguration, EmailSettings>;

/** The settings of the mail service in the account store; it also notices when the user enters credentials.
 */
class EmailAccountConfigurationImpl : public EmailRecordConfiguration
{
    Q_OBJECT

public:
    EmailAccountConfigurationImpl(Accounts::Account *account, EasAccountId accountId, QObject *parent);
    ~EmailAccountConfigurationImpl() override;

    bool enabled() const override;
    bool conversationMode() const override;
    bool saveInSentItems() const override;
    bool signatureEnabled() const override;
    bool firstSyncCompleted() const override;
    void setFirstSyncCompleted(bool completed) override;
    QString signature() const override;
    int previewSize() const override;
    int syncPastTime() const override;
    QString emailAddress() const override;

public Q_SLOTS:
    /** The account begins to fetch its credentials. */
    void onCredentialsRequested();
    /** They have come: the counter that they belong to needs no announcement any more. */
    void updateCredentialsUpdateCounter(EasAccountId accountId);

private Q_SLOTS:
    void onEmailAccountUpdated();

private:
    void updateConfiguration();
    int storedCredentialsUpdateCounter() const;
    void watchGlobalSettings();

    int mCredentialsUpdateCounter = 0;
    int mRequestedCounter = 0;
};
