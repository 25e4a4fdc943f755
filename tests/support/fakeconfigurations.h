// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/calendaraccountconfiguration.h"
#include "configurations/contactsaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"

/** Settings of the mail service that live in memory. */
class FakeEmailConfiguration : public EmailAccountConfiguration
{
public:
    explicit FakeEmailConfiguration(EasAccountId id)
        : EmailAccountConfiguration(id, nullptr)
    {
    }

    bool enabled() const override { return isEnabled; }
    bool conversationMode() const override { return false; }
    bool saveInSentItems() const override { return savesSent; }
    bool signatureEnabled() const override { return false; }
    bool firstSyncCompleted() const override { return true; }
    void setFirstSyncCompleted(bool) override {}
    QString signature() const override { return QString(); }
    int previewSize() const override { return preview; }
    int syncPastTime() const override { return pastTime; }
    QString emailAddress() const override { return QStringLiteral("alice@example.com"); }

    bool isEnabled = true;
    bool savesSent = true;
    int preview = 100;
    int pastTime = 0;
};

/** Settings of the calendar service that live in memory. */
class FakeCalendarConfiguration : public CalendarAccountConfiguration
{
public:
    explicit FakeCalendarConfiguration(EasAccountId id)
        : CalendarAccountConfiguration(id, nullptr)
    {
    }

    bool enabled() const override { return isEnabled; }
    int syncPastTime() const override { return pastTime; }
    QString calendarName() const override { return QString(); }
    bool firstSyncCompleted() const override { return true; }
    void setFirstSyncCompleted(bool) override {}

    bool isEnabled = true;
    int pastTime = 0;
};

/** Settings of the contacts service that live in memory. */
class FakeContactsConfiguration : public ContactsAccountConfiguration
{
public:
    explicit FakeContactsConfiguration(EasAccountId id)
        : ContactsAccountConfiguration(id, nullptr)
    {
    }

    bool enabled() const override { return isEnabled; }
    bool syncLocalContacts() const override { return uploads; }
    bool firstSyncCompleted() const override { return true; }
    void setFirstSyncCompleted(bool) override {}

    bool isEnabled = true;
    bool uploads = true;
};
