// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/contactsaccountconfiguration.h"
#include "configurations/impls/recordconfiguration.h"

struct ContactsSettings
{
    bool enabled = false;
    bool syncLocalContacts = false;
    bool firstSyncCompleted = false;
};

using ContactsRecordConfiguration = RecordConfiguration<ContactsAccountConfiguration, ContactsSettings>;

/** The settings of the contacts service in the account store. */
class ContactsAccountConfigurationImpl : public ContactsRecordConfiguration
{
    Q_OBJECT

public:
    ContactsAccountConfigurationImpl(Accounts::Account *account, EasAccountId accountId, QObject *parent);

    bool enabled() const override;
    bool syncLocalContacts() const override;
    bool firstSyncCompleted() const override;
    void setFirstSyncCompleted(bool completed) override;

private:
    void updateConfiguration();
};
