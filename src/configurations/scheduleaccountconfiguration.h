// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/baseaccountconfiguration.h"

/** When an account synchronises by itself. */
class ScheduleAccountConfiguration : public BaseAccountConfiguration
{
    Q_OBJECT

public:
    using BaseAccountConfiguration::BaseAccountConfiguration;

    virtual bool enabled() const = 0;
    virtual int offPeakSchedule() const = 0;
    virtual int peakSchedule() const = 0;
    virtual int peakDays() const = 0;
    virtual int peakStartTime() const = 0;
    virtual int peakEndTime() const = 0;

Q_SIGNALS:
    void scheduleConfigurationChanged(EasAccountId accountId);
};
