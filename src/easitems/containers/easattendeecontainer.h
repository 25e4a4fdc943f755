// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

/** One attendee of an event. A plain value. */
class EasAttendeeContainer
{
    Q_GADGET

public:
    enum AttendeeStatus : int {
        AttendeeStatusUnSet = -1,
        UnknownResponseAttendeeStatus = 0,
        TentativeAttendeeStatus = 2,
        AcceptAttendeeStatus = 3,
        DeclineAttendeeStatus = 4,
        NotRespondedAttendeeStatus = 5
    };
    Q_ENUM(AttendeeStatus)
    enum AttendeeType : int {
        AttendeeTypeUnSet = -1,
        RequiredAttendeeType = 1,
        OptionalAttendeeType = 2,
        ResourceAttendeeType = 3
    };
    Q_ENUM(AttendeeType)

    QString email() const { return mEmail; }
    void setEmail(const QString &email) { mEmail = email; }
    QString name() const { return mName; }
    void setName(const QString &name) { mName = name; }
    AttendeeStatus attendeeStatus() const { return mAttendeeStatus; }
    void setAttendeeStatus(AttendeeStatus attendeeStatus) { mAttendeeStatus = attendeeStatus; }
    AttendeeType attendeeType() const { return mAttendeeType; }
    void setAttendeeType(AttendeeType attendeeType) { mAttendeeType = attendeeType; }
    QDateTime proposedStartTime() const { return mProposedStartTime; }
    void setProposedStartTime(const QDateTime &proposedStartTime) { mProposedStartTime = proposedStartTime; }
    QDateTime proposedEndTime() const { return mProposedEndTime; }
    void setProposedEndTime(const QDateTime &proposedEndTime) { mProposedEndTime = proposedEndTime; }

    bool operator==(const EasAttendeeContainer &other) const;
    bool operator!=(const EasAttendeeContainer &other) const { return !(*this == other); }

    void clear() { *this = EasAttendeeContainer(); }

private:
    QString mEmail;
    QString mName;
    AttendeeStatus mAttendeeStatus = AttendeeStatusUnSet;
    AttendeeType mAttendeeType = AttendeeTypeUnSet;
    QDateTime mProposedStartTime;
    QDateTime mProposedEndTime;
};
