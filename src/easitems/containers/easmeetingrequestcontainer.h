// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easrecurrencecontainer.h"

#include <QByteArray>
#include <QList>

/** The meeting that an invitation, a cancellation or a reply is about. A plain value. */
class EasMeetingRequestContainer
{
    Q_GADGET

public:
    enum InstanceType : int {
        UndefinedInstanceType = -1,
        SingleAppointment = 0,
        MasterRecurringAppointment = 1,
        RecurringAppointmentInstance = 2,
        RecurringAppointmentException = 3,
        OrphanInstance = 4
    };
    Q_ENUM(InstanceType)
    enum Sensitivity : int {
        UndefinedSensitivity = -1,
        NormalSensitivity = 0,
        PersonalSensitivity = 1,
        PrivateSensitivity = 2,
        ConfidentialSensitivity = 3
    };
    Q_ENUM(Sensitivity)
    enum BusyStatus : int {
        UndefinedBusyStatus = -1,
        FreeBusyStatus = 0,
        TentativeBusyStatus = 1,
        BusyBusyStatus = 2,
        OutOfOfficeBusyStatus = 3,
        WorkingElsewhereBusyStatus = 4
    };
    Q_ENUM(BusyStatus)
    enum MeetingMessageType : int {
        UndefinedMeetingMessageType = -1,
        SilentUpdate = 0,
        InitialMeetingRequest = 1,
        FullUpdate = 2,
        InformationalUpdate = 3,
        OutdatedRequest = 4,
        DelegatorsCopy = 5,
        DelegatedRequest = 6
    };
    Q_ENUM(MeetingMessageType)

    bool elementValid() const { return mElementValid; }
    void setElementValid(bool elementValid) { mElementValid = elementValid; }
    quint8 allDayEvent() const { return mAllDayEvent; }
    void setAllDayEvent(quint8 allDayEvent) { mAllDayEvent = allDayEvent; }
    quint8 responseRequested() const { return mResponseRequested; }
    void setResponseRequested(quint8 responseRequested) { mResponseRequested = responseRequested; }
    quint8 disallowNewTimeProposal() const { return mDisallowNewTimeProposal; }
    void setDisallowNewTimeProposal(quint8 disallowNewTimeProposal)
    {
        mDisallowNewTimeProposal = disallowNewTimeProposal;
    }
    QString recurrenceId() const { return mRecurrenceId; }
    void setRecurrenceId(const QString &recurrenceId) { mRecurrenceId = recurrenceId; }
    QString startTime() const { return mStartTime; }
    void setStartTime(const QString &startTime) { mStartTime = startTime; }
    QString dtStamp() const { return mDtStamp; }
    void setDtStamp(const QString &dtStamp) { mDtStamp = dtStamp; }
    QString endTime() const { return mEndTime; }
    void setEndTime(const QString &endTime) { mEndTime = endTime; }
    QString proposedStartTime() const { return mProposedStartTime; }
    void setProposedStartTime(const QString &proposedStartTime) { mProposedStartTime = proposedStartTime; }
    QString proposedEndTime() const { return mProposedEndTime; }
    void setProposedEndTime(const QString &proposedEndTime) { mProposedEndTime = proposedEndTime; }
    QString location() const { return mLocation; }
    void setLocation(const QString &location) { mLocation = location; }
    QString organizer() const { return mOrganizer; }
    void setOrganizer(const QString &organizer) { mOrganizer = organizer; }
    QString timeZone() const { return mTimeZone; }
    void setTimeZone(const QString &timeZone) { mTimeZone = timeZone; }
    InstanceType instanceType() const { return mInstanceType; }
    void setInstanceType(InstanceType instanceType) { mInstanceType = instanceType; }
    Sensitivity sensitivity() const { return mSensitivity; }
    void setSensitivity(Sensitivity sensitivity) { mSensitivity = sensitivity; }
    BusyStatus busyStatus() const { return mBusyStatus; }
    void setBusyStatus(BusyStatus busyStatus) { mBusyStatus = busyStatus; }
    int reminder() const { return mReminder; }
    void setReminder(int reminder) { mReminder = reminder; }
    MeetingMessageType meetingMessageType() const { return mMeetingMessageType; }
    void setMeetingMessageType(MeetingMessageType meetingMessageType)
    {
        mMeetingMessageType = meetingMessageType;
    }
    QByteArray globalObjId() const { return mGlobalObjId; }
    void setGlobalObjId(const QByteArray &globalObjId) { mGlobalObjId = globalObjId; }
    QByteArray calendarMessageId() const { return mCalendarMessageId; }
    void setCalendarMessageId(const QByteArray &calendarMessageId) { mCalendarMessageId = calendarMessageId; }
    QList<EasRecurrenceContainer> recurrences() const { return mRecurrences; }
    void setRecurrences(const QList<EasRecurrenceContainer> &recurrences) { mRecurrences = recurrences; }

    void clear() { *this = EasMeetingRequestContainer(); }

private:
    bool mElementValid = false;
    quint8 mAllDayEvent = 0;
    quint8 mResponseRequested = 0;
    quint8 mDisallowNewTimeProposal = 0;
    QString mRecurrenceId;
    QString mStartTime;
    QString mDtStamp;
    QString mEndTime;
    QString mProposedStartTime;
    QString mProposedEndTime;
    QString mLocation;
    QString mOrganizer;
    QString mTimeZone;
    InstanceType mInstanceType = UndefinedInstanceType;
    Sensitivity mSensitivity = UndefinedSensitivity;
    BusyStatus mBusyStatus = UndefinedBusyStatus;
    int mReminder = -1;
    MeetingMessageType mMeetingMessageType = UndefinedMeetingMessageType;
    QByteArray mGlobalObjId;
    QByteArray mCalendarMessageId;
    QList<EasRecurrenceContainer> mRecurrences;
};
