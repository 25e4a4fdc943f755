// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/baseaccountconfiguration.h"

/** Settings of an account's mail service. */
class EmailAccountConfiguration : public BaseAccountConfiguration
{
    Q_OBJECT

public:
    using BaseAccountConfiguration::BaseAccountConfiguration;

    virtual bool enabled() const = 0;
    virtual bool conversationMode() const = 0;
    virtual bool saveInSentItems() const = 0;
    virtual bool signatureEnabled() const = 0;
    virtual bool firstSyncCompleted() const = 0;
    virtual void setFirstSyncCompleted(bool completed) = 0;
    virtual QString signature() const = 0;
    virtual int previewSize() const = 0;
    /** The value of the protocol's FilterType: how far back mail is kept on the device. */
    virtual int syncPastTime() const = 0;
    virtual QString emailAddress() const = 0;

Q_SIGNALS:
    void emailConfigurationChanged(EasAccountId accountId);
    /** The user entered new credentials. */
    void passwordChanged();
};
