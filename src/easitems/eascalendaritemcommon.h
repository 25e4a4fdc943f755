// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/** The enumerations of an event; the values are those of the wire, -1 means that the field is not set. */
class EasCalendarItemCommon
{
    Q_GADGET

public:
    enum AllDayEvent : int { AllDayEventUndefined = -1, NotAllDayEvent = 0, IsAllDayEvent = 1 };
    Q_ENUM(AllDayEvent)

    enum BusyStatus : int {
        BusyStatusUndefined = -1,
        BusyStatusFree = 0,
        BusyStatusTentative = 1,
        BusyStatusBusy = 2,
        BusyStatusOutOfOffice = 3,
        BusyStatusWorkingElsewhere = 4
    };
    Q_ENUM(BusyStatus)

    enum Sensitivity : int {
        SensitivityUndefined = -1,
        SensitivityNormal = 0,
        SensitivityPersonal = 1,
        SensitivityPrivate = 2,
        SensitivityConfidential = 3
    };
    Q_ENUM(Sensitivity)

    enum MeetingStatus : int {
        MeetingStatusUndefined = -1,
        MeetingStatusNoMeeting = 0,
        MeetingStatusMeeting = 1,
        MeetingStatusReceived = 3,
        MeetingStatusCancelled = 5,
        MeetingStatusCancelledAndReceived = 7
    };
    Q_ENUM(MeetingStatus)

    enum ResponseType : int {
        ResponseTypeUndefined = -1,
        ResponseTypeNone = 0,
        ResponseTypeOrganizer = 1,
        ResponseTypeTentative = 2,
        ResponseTypeAccepted = 3,
        ResponseTypeDeclined = 4,
        ResponseTypeNotResponded = 5
    };
    Q_ENUM(ResponseType)
};
