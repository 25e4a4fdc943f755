// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/baseaccountconfiguration.h"

/** Settings of an account's calendar service. */
class CalendarAccountConfiguration : public BaseAccountConfiguration
{
    Q_OBJECT

public:
    using BaseAccountConfiguration::BaseAccountConfiguration;

    virtual bool enabled() const = 0;
    /** The value of the protocol's FilterType: how far back events are kept on the device. */
    virtual int syncPastTime() const = 0;
    virtual QString calendarName() const = 0;
    virtual bool firstSyncCompleted() const = 0;
    virtual void setFirstSyncCompleted(bool completed) = 0;

Q_SIGNALS:
    void calendarConfigurationChanged(EasAccountId accountId);
};
