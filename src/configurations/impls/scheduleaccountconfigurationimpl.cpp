// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/scheduleaccountconfigurationimpl.h"

namespace {

const QString serviceType = QStringLiteral("e-mail");

const QVector<SettingRow<ScheduleSettings>> &rows()
{
    static const QVector<SettingRow<ScheduleSettings>> table {
        { "schedule/enabled", &ScheduleSettings::enabled },
        { "schedule/off_peak_schedule", &ScheduleSettings::offPeakSchedule, SettingForm::DecimalText },
        { "schedule/peak_schedule", &ScheduleSettings::peakSchedule },
        { "schedule/peak_days", &ScheduleSettings::peakDays },
        { "schedule/peak_start_tm", &ScheduleSettings::peakStartTime },
        { "schedule/peak_end_tm", &ScheduleSettings::peakEndTime },
    };
    return table;
}

} // namespace

ScheduleAccountConfigurationImpl::ScheduleAccountConfigurationImpl(
    Accounts::Account *account, EasAccountId accountId, QObject *parent)
    : ScheduleRecordConfiguration(account, accountId, RecordScope::firstOfType(serviceType), rows(), parent)
{
    updateConfiguration();
    follow([this] { updateConfiguration(); });
}

bool ScheduleAccountConfigurationImpl::enabled() const
{
    return values().enabled;
}

int ScheduleAccountConfigurationImpl::offPeakSchedule() const
{
    return values().offPeakSchedule;
}

int ScheduleAccountConfigurationImpl::peakSchedule() const
{
    return values().peakSchedule;
}

int ScheduleAccountConfigurationImpl::peakDays() const
{
    return values().peakDays;
}

int ScheduleAccountConfigurationImpl::peakStartTime() const
{
    return values().peakStartTime;
}

int ScheduleAccountConfigurationImpl::peakEndTime() const
{
    return values().peakEndTime;
}

void ScheduleAccountConfigurationImpl::updateConfiguration()
{
    if (refresh())
        Q_EMIT scheduleConfigurationChanged(accountId());
}
