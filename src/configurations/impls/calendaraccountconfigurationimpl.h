// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/calendaraccountconfiguration.h"
#include "configurations/impls/recordconfiguration.h"

struct CalendarSettings
{
    bool enabled = false;
    int syncPastTime = 0;
    QString calendarName;
    bool firstSyncCompleted = false;
};

using CalendarRecordConfiguration = RecordConfiguration<CalendarAccountConfiguration, CalendarSettings>;

/** The settings of the calendar service in the account store. */
class CalendarAccountConfigurationImpl : public CalendarRecordConfiguration
{
    Q_OBJECT

public:
    CalendarAccountConfigurationImpl(Accounts::Account *account, EasAccountId accountId, QObject *parent);

    bool enabled() const override;
    int syncPastTime() const override;
    QString calendarName() const override;
    bool firstSyncCompleted() const override;
    void setFirstSyncCompleted(bool completed) override;

private:
    void updateConfiguration();
};
