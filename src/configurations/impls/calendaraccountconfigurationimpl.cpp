// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/calendaraccountconfigurationimpl.h"

namespace {

const QString serviceType = QStringLiteral("sync");
constexpr char firstSyncCompletedKey[] = "firstSyncCompleted";

const QVector<SettingRow<CalendarSettings>> &rows()
{
    static const QVector<SettingRow<CalendarSettings>> table {
        { "enabled", &CalendarSettings::enabled },
        { "sync_past_time", &CalendarSettings::syncPastTime },
        { "name", &CalendarSettings::calendarName },
        { firstSyncCompletedKey, &CalendarSettings::firstSyncCompleted },
    };
    return table;
}

} // namespace

CalendarAccountConfigurationImpl::CalendarAccountConfigurationImpl(
    Accounts::Account *account, EasAccountId accountId, QObject *parent)
    : CalendarRecordConfiguration(account, accountId,
        RecordScope::named(serviceType, QStringLiteral("fenneleas-calendars")), rows(), parent)
{
    if (serviceFound())
        qCDebug(eas()) << "calendar service found" << accountId;
    updateConfiguration();
    follow([this] { updateConfiguration(); });
}

bool CalendarAccountConfigurationImpl::enabled() const
{
    return values().enabled;
}

int CalendarAccountConfigurationImpl::syncPastTime() const
{
    return values().syncPastTime;
}

QString CalendarAccountConfigurationImpl::calendarName() const
{
    return values().calendarName;
}

bool CalendarAccountConfigurationImpl::firstSyncCompleted() const
{
    return values().firstSyncCompleted;
}

void CalendarAccountConfigurationImpl::setFirstSyncCompleted(bool completed)
{
    writeSetting(firstSyncCompletedKey, completed, Q_FUNC_INFO);
    updateConfiguration();
}

void CalendarAccountConfigurationImpl::updateConfiguration()
{
    if (refresh())
        Q_EMIT calendarConfigurationChanged(accountId());
}
