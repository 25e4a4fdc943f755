// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/baseaccountconfiguration.h"

/** Settings of an account's contacts service. */
class ContactsAccountConfiguration : public BaseAccountConfiguration
{
    Q_OBJECT

public:
    using BaseAccountConfiguration::BaseAccountConfiguration;

    virtual bool enabled() const = 0;
    /** Whether what the user does to contacts on the device is uploaded. */
    virtual bool syncLocalContacts() const = 0;
    virtual bool firstSyncCompleted() const = 0;
    virtual void setFirstSyncCompleted(bool completed) = 0;

Q_SIGNALS:
    void contactsConfigurationChanged(EasAccountId accountId);
};
