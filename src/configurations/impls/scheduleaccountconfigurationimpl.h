// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/impls/recordconfiguration.h"
#include "configurations/scheduleaccountconfiguration.h"

struct ScheduleSettings
{
    bool enabled = false;
    int offPeakSchedule = 0;
    int peakSchedule = 0;
    int peakDays = 0;
    int peakStartTime = 0;
    int peakEndTime = 0;
};

using ScheduleRecordConfiguration = RecordConfiguration<ScheduleAccountConfiguration, ScheduleSettings>;

/** The schedule of the mail service in the account store. */
class ScheduleAccountConfigurationImpl : public ScheduleRecordConfiguration
{
    Q_OBJECT

public:
    ScheduleAccountConfigurationImpl(Accounts::Account *account, EasAccountId accountId, QObject *parent);

    bool enabled() const override;
    int offPeakSchedule() const override;
    int peakSchedule() const override;
    int peakDays() const override;
    int peakStartTime() const override;
    int peakEndTime() const override;

private:
    void updateConfiguration();
};
