// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/containers/easattendeecontainer.h"
#include "easitems/containers/easbodycontainer.h"
#include "easitems/containers/easrecurrencecontainer.h"
#include "easitems/eascalendaritemcommon.h"
#include "easitems/easgeneralitem.h"
#include "easitems/easitemscommon.h"

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QStringList>

/**
 * One event, or one exception of a series, received or on its way to the server.
 *
 * It records which parameters were set, because an exception carries only what differs from its series: a
 * parameter that was set and is empty is cleared, one that was not set is inherited. A plain value.
 */
class EasCalendarItem : public EasGeneralItem
{
    Q_GADGET

public:
    enum CalendarItemParameter : int {
        AllDayEventParameter = 1,
        ExceptionStartTimeParameter = 2,
        BodyParameter = 3,
        BusyStatusParameter = 4,
        OrganizerNameParameter = 5,
        OrganizerEmailParameter = 6,
        DtStampParameter = 8,
        LocalTimestampParameter = 9,
        EndTimeParameter = 10,
        StartTimeParameter = 11,
        LocationParameter = 12,
        ReminderParameter = 13,
        SensitivityParameter = 14,
        SubjectParameter = 15,
        UidParameter = 16,
        MeetingStatusParameter = 17,
        AttachmentsParameter = 18,
        AttendeesParameter = 19,
        CategoriesParameter = 20,
        RecurrenceParameter = 21,
        ExceptionsParameter = 22,
        ExceptionDeletedParameter = 23,
        ResponseRequestedParameter = 24,
        AppointmentReplyTimeParameter = 25,
        ResponseTypeParameter = 26,
        DisallowNewTimeProposalParameter = 27,
        NativeBodyTypeParameter = 28,
        OnlineMeetingExternalLinkParameter = 29,
        OnlineMeetingConfLinkParameter = 30,
        ProposedEndTimeParameter = 31,
        ProposedStartTimeParameter = 32
    };
    Q_ENUM(CalendarItemParameter)

    /** Local timestamp of an event whose time of change is not known. */
    static constexpr quint32 InvalidTimestamp = 0xFFFFFFFF;

    QString exceptionStartTime() const { return mExceptionStartTime; }
    void setExceptionStartTime(const QString &exceptionStartTime)
    {
        set(mExceptionStartTime, exceptionStartTime, ExceptionStartTimeParameter);
    }
    QString organizerName() const { return mOrganizerName; }
    void setOrganizerName(const QString &organizerName)
    {
        set(mOrganizerName, organizerName, OrganizerNameParameter);
    }
    QString organizerEmail() const { return mOrganizerEmail; }
    void setOrganizerEmail(const QString &organizerEmail)
    {
        set(mOrganizerEmail, organizerEmail, OrganizerEmailParameter);
    }
    QString dtStamp() const { return mDtStamp; }
    void setDtStamp(const QString &dtStamp) { set(mDtStamp, dtStamp, DtStampParameter); }
    QString endTime() const { return mEndTime; }
    void setEndTime(const QString &endTime) { set(mEndTime, endTime, EndTimeParameter); }
    QString proposedEndTime() const { return mProposedEndTime; }
    void setProposedEndTime(const QString &proposedEndTime)
    {
        set(mProposedEndTime, proposedEndTime, ProposedEndTimeParameter);
    }
    QString location() const { return mLocation; }
    void setLocation(const QString &location) { set(mLocation, location, LocationParameter); }
    QString subject() const { return mSubject; }
    void setSubject(const QString &subject) { set(mSubject, subject, SubjectParameter); }
    QString startTime() const { return mStartTime; }
    void setStartTime(const QString &startTime) { set(mStartTime, startTime, StartTimeParameter); }
    QString proposedStartTime() const { return mProposedStartTime; }
    void setProposedStartTime(const QString &proposedStartTime)
    {
        set(mProposedStartTime, proposedStartTime, ProposedStartTimeParameter);
    }
    QString uid() const { return mUid; }
    void setUid(const QString &uid) { set(mUid, uid, UidParameter); }
    QString appointmentReplyTime() const { return mAppointmentReplyTime; }
    void setAppointmentReplyTime(const QString &appointmentReplyTime)
    {
        set(mAppointmentReplyTime, appointmentReplyTime, AppointmentReplyTimeParameter);
    }
    QString onlineMeetingConfLink() const { return mOnlineMeetingConfLink; }
    void setOnlineMeetingConfLink(const QString &onlineMeetingConfLink)
    {
        set(mOnlineMeetingConfLink, onlineMeetingConfLink, OnlineMeetingConfLinkParameter);
    }
    QString onlineMeetingExternalLink() const { return mOnlineMeetingExternalLink; }
    void setOnlineMeetingExternalLink(const QString &onlineMeetingExternalLink)
    {
        set(mOnlineMeetingExternalLink, onlineMeetingExternalLink, OnlineMeetingExternalLinkParameter);
    }
    QList<EasAttachmentContainer> attachments() const { return mAttachments; }
    void setAttachments(const QList<EasAttachmentContainer> &attachments)
    {
        set(mAttachments, attachments, AttachmentsParameter);
    }
    QList<EasAttendeeContainer> attendees() const { return mAttendees; }
    void setAttendees(const QList<EasAttendeeContainer> &attendees)
    {
        set(mAttendees, attendees, AttendeesParameter);
    }
    QStringList categories() const { return mCategories; }
    void setCategories(const QStringList &categories) { set(mCategories, categories, CategoriesParameter); }
    QList<EasCalendarItem> exceptions() const { return mExceptions; }
    void setExceptions(const QList<EasCalendarItem> &exceptions)
    {
        set(mExceptions, exceptions, ExceptionsParameter);
    }
    EasCalendarItemCommon::AllDayEvent allDayEvent() const { return mAllDayEvent; }
    void setAllDayEvent(EasCalendarItemCommon::AllDayEvent allDayEvent)
    {
        set(mAllDayEvent, allDayEvent, AllDayEventParameter);
    }
    EasCalendarItemCommon::BusyStatus busyStatus() const { return mBusyStatus; }
    void setBusyStatus(EasCalendarItemCommon::BusyStatus busyStatus)
    {
        set(mBusyStatus, busyStatus, BusyStatusParameter);
    }
    EasCalendarItemCommon::Sensitivity sensitivity() const { return mSensitivity; }
    void setSensitivity(EasCalendarItemCommon::Sensitivity sensitivity)
    {
        set(mSensitivity, sensitivity, SensitivityParameter);
    }
    EasCalendarItemCommon::MeetingStatus meetingStatus() const { return mMeetingStatus; }
    void setMeetingStatus(EasCalendarItemCommon::MeetingStatus meetingStatus)
    {
        set(mMeetingStatus, meetingStatus, MeetingStatusParameter);
    }
    EasCalendarItemCommon::ResponseType responseType() const { return mResponseType; }
    void setResponseType(EasCalendarItemCommon::ResponseType responseType)
    {
        set(mResponseType, responseType, ResponseTypeParameter);
    }
    EasItemsCommon::TBoolean responseRequested() const { return mResponseRequested; }
    void setResponseRequested(EasItemsCommon::TBoolean responseRequested)
    {
        set(mResponseRequested, responseRequested, ResponseRequestedParameter);
    }
    EasItemsCommon::TBoolean disallowNewTimeProposal() const { return mDisallowNewTimeProposal; }
    void setDisallowNewTimeProposal(EasItemsCommon::TBoolean disallowNewTimeProposal)
    {
        set(mDisallowNewTimeProposal, disallowNewTimeProposal, DisallowNewTimeProposalParameter);
    }
    EasItemsCommon::NativeBodyType nativeBodyType() const { return mNativeBodyType; }
    void setNativeBodyType(EasItemsCommon::NativeBodyType nativeBodyType)
    {
        set(mNativeBodyType, nativeBodyType, NativeBodyTypeParameter);
    }
    int reminder() const { return mReminder; }
    void setReminder(int reminder) { set(mReminder, reminder, ReminderParameter); }
    quint32 localTimestamp() const { return mLocalTimestamp; }
    void setLocalTimestamp(quint32 localTimestamp)
    {
        set(mLocalTimestamp, localTimestamp, LocalTimestampParameter);
    }
    EasRecurrenceContainer recurrence() const { return mRecurrence; }
    void setRecurrence(const EasRecurrenceContainer &recurrence)
    {
        set(mRecurrence, recurrence, RecurrenceParameter);
    }

    EasBodyContainer body() const { return mBody; }
    void setBody(const EasBodyContainer &body) { set(mBody, body, BodyParameter); }
    void setBodyContainerType(EasBodyContainer::BodyType type);
    void setBodyContainerData(const QString &data);
    void setBodyContainerEstimatedDataSize(int size);
    void setBodyContainerTruncated(bool truncated);
    void clearBodyContainer() { mBody.clear(); }

    /** The Base64 text of the time zone as it came. */
    QString timezone() const { return mTimezone; }
    void setTimezone(const QByteArray &timezone) { mTimezone = QString::fromUtf8(timezone); }

    /** 0 or 1; any other value is refused. */
    quint8 exceptionDeleted() const { return mExceptionDeleted; }
    void setExceptionDeleted(uint deleted);

    bool itemChanged() const { return mItemChanged; }
    void setItemChanged(bool changed) { mItemChanged = changed; }
    qint64 createdTimestamp() const { return mCreatedTimestamp; }
    void setCreatedTimestamp(qint64 timestamp) { mCreatedTimestamp = timestamp; }

    void appendException(const EasCalendarItem &exception);
    bool hasExceptions() const { return !mExceptions.isEmpty(); }

    QList<CalendarItemParameter> changedParameters() const { return mChangedParameters; }
    bool parameterHasBeenChanged(CalendarItemParameter parameter) const;

    void clear() { *this = EasCalendarItem(); }

private:
    void markChanged(CalendarItemParameter parameter);
    template <class Value> void set(Value &member, const Value &value, CalendarItemParameter parameter)
    {
        markChanged(parameter);
        member = value;
    }

    EasBodyContainer mBody;
    QString mTimezone;
    QString mExceptionStartTime;
    QString mOrganizerName;
    QString mOrganizerEmail;
    QString mDtStamp;
    QString mEndTime;
    QString mProposedEndTime;
    QString mLocation;
    QString mSubject;
    QString mStartTime;
    QString mProposedStartTime;
    QString mUid;
    QString mAppointmentReplyTime;
    QString mOnlineMeetingConfLink;
    QString mOnlineMeetingExternalLink;
    QList<EasAttachmentContainer> mAttachments;
    QList<EasAttendeeContainer> mAttendees;
    QStringList mCategories;
    QList<EasCalendarItem> mExceptions;
    EasCalendarItemCommon::AllDayEvent mAllDayEvent = EasCalendarItemCommon::AllDayEventUndefined;
    EasCalendarItemCommon::BusyStatus mBusyStatus = EasCalendarItemCommon::BusyStatusUndefined;
    EasCalendarItemCommon::Sensitivity mSensitivity = EasCalendarItemCommon::SensitivityUndefined;
    EasCalendarItemCommon::MeetingStatus mMeetingStatus = EasCalendarItemCommon::MeetingStatusUndefined;
    EasCalendarItemCommon::ResponseType mResponseType = EasCalendarItemCommon::ResponseTypeUndefined;
    EasItemsCommon::TBoolean mResponseRequested = EasItemsCommon::TUndefined;
    EasItemsCommon::TBoolean mDisallowNewTimeProposal = EasItemsCommon::TUndefined;
    EasItemsCommon::NativeBodyType mNativeBodyType = EasItemsCommon::NativeBodyTypeUnspecified;
    int mReminder = -1;
    quint32 mLocalTimestamp = InvalidTimestamp;
    EasRecurrenceContainer mRecurrence;
    quint8 mExceptionDeleted = 0;
    bool mItemChanged = false;
    qint64 mCreatedTimestamp = 0;
    QList<CalendarItemParameter> mChangedParameters;
};
