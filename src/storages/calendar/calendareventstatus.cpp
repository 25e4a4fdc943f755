// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventstatus.h"

#include "common/exchangeactivesync.h"
#include "storages/calendar/calendareventproperties.h"

using namespace ExchangeActiveSync;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** A value of the server, and what the device makes of it. */
struct DeviceValue
{
    int serverValue;
    int deviceValue;
};

/** For a value of the device the first row that has it goes up. */
const DeviceValue busyStatuses[] = {
    { EasCalendarItemCommon::BusyStatusFree, Incidence::StatusNone },
    { EasCalendarItemCommon::BusyStatusTentative, Incidence::StatusTentative },
    { EasCalendarItemCommon::BusyStatusBusy, Incidence::StatusConfirmed },
    { EasCalendarItemCommon::BusyStatusOutOfOffice, Incidence::StatusConfirmed },
};

const DeviceValue sensitivities[] = {
    { EasCalendarItemCommon::SensitivityNormal, Incidence::SecrecyPublic },
    { EasCalendarItemCommon::SensitivityPersonal, Incidence::SecrecyPublic },
    { EasCalendarItemCommon::SensitivityPrivate, Incidence::SecrecyPrivate },
    { EasCalendarItemCommon::SensitivityConfidential, Incidence::SecrecyConfidential },
};

/** The device's value for one of the server; the fallback for one that is not in the table. */
template <std::size_t Count> int deviceValue(const DeviceValue (&table)[Count], int serverValue, int fallback)
{
    for (const DeviceValue &row : table) {
        if (row.serverValue == serverValue)
            return row.deviceValue;
    }
    return fallback;
}

/** The stored value if the device still has what it stands for, otherwise the first one that does. */
template <std::size_t Count>
int agreedValue(const DeviceValue (&table)[Count], Event &event, const QString &property, int deviceValue)
{
    const int stored = CalendarEventProperties::number(event, property);
    int fromDevice = -1;
    bool storedIsKnown = false;
    for (const DeviceValue &row : table) {
        storedIsKnown = storedIsKnown || row.serverValue == stored;
        if (row.deviceValue != deviceValue)
            continue;
        if (row.serverValue == stored)
            return stored;
        if (fromDevice == -1)
            fromDevice = row.serverValue;
    }
    // A value without a counterpart on the device cannot disagree with it.
    if (stored != -1 && !storedIsKnown)
        return stored;
    if (stored != -1)
        CalendarEventProperties::setNumber(event, property, -1);
    return fromDevice;
}

} // namespace

void CalendarEventStatus::setBusyStatus(Event &event, EasCalendarItemCommon::BusyStatus busyStatus)
{
    CalendarEventProperties::setNumber(event, CalendarBusyStatusParamName, busyStatus);
    event.setStatus(Incidence::Status(deviceValue(busyStatuses, busyStatus, event.status())));
}

void CalendarEventStatus::setSensitivity(Event &event, EasCalendarItemCommon::Sensitivity sensitivity)
{
    CalendarEventProperties::setNumber(event, CalendarSensitivityParamName, sensitivity);
    event.setSecrecy(Incidence::Secrecy(deviceValue(sensitivities, sensitivity, Incidence::SecrecyPublic)));
}

void CalendarEventStatus::setMeetingStatus(Event &event, EasCalendarItemCommon::MeetingStatus meetingStatus)
{
    CalendarEventProperties::setNumber(event, CalendarMeetingStatusParamName, meetingStatus);
    constexpr int noMeeting = EasCalendarItemCommon::MeetingStatusNoMeeting;
    constexpr int noMeetingReceived = 2;
    if (meetingStatus == noMeeting || meetingStatus == noMeetingReceived) {
        // No meeting, so nothing is called off; but the event may still be tentative or take one's time.
        const int busy = CalendarEventProperties::number(event, CalendarBusyStatusParamName);
        event.setStatus(Incidence::Status(deviceValue(busyStatuses, busy, Incidence::StatusNone)));
    } else if (meetingStatus == EasCalendarItemCommon::MeetingStatusCancelled
        || meetingStatus == EasCalendarItemCommon::MeetingStatusCancelledAndReceived) {
        event.setStatus(Incidence::StatusCanceled);
    }
}

EasCalendarItemCommon::BusyStatus CalendarEventStatus::convertBusyStatus(Event &event)
{
    // A meeting that is off has that for its status, and its time is as it was.
    if (event.status() == Incidence::StatusCanceled)
        return EasCalendarItemCommon::BusyStatus(
            CalendarEventProperties::number(event, CalendarBusyStatusParamName));
    return EasCalendarItemCommon::BusyStatus(
        agreedValue(busyStatuses, event, CalendarBusyStatusParamName, event.status()));
}

EasCalendarItemCommon::Sensitivity CalendarEventStatus::convertSensitivity(Event &event)
{
    return EasCalendarItemCommon::Sensitivity(
        agreedValue(sensitivities, event, CalendarSensitivityParamName, event.secrecy()));
}
