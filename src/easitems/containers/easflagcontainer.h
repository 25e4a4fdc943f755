// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * Follow-up flag of a message. Received ones carry status, type and time of completion; the other fields are
 * filled on the device and go out with the message. A container that is not empty and has no field set stands
 * for a flag that was taken away. A plain value.
 */
class EasFlagContainer
{
    Q_GADGET

public:
    enum FlagStatus : int {
        UndefinedFlagStatus = -1,
        ClearedFlagStatus = 0,
        CompleteFlagStatus = 1,
        ActiveFlagStatus = 2
    };
    Q_ENUM(FlagStatus)

    QString subject() const { return mSubject; }
    void setSubject(const QString &subject) { mSubject = subject; }
    QString flagType() const { return mFlagType; }
    void setFlagType(const QString &flagType)
    {
        mFlagType = flagType;
        mIsEmptyContainer = false;
    }
    QString dateCompleted() const { return mDateCompleted; }
    void setDateCompleted(const QString &dateCompleted) { mDateCompleted = dateCompleted; }
    QString completeTime() const { return mCompleteTime; }
    void setCompleteTime(const QString &completeTime)
    {
        mCompleteTime = completeTime;
        mIsEmptyContainer = false;
    }
    QString startDate() const { return mStartDate; }
    void setStartDate(const QString &startDate) { mStartDate = startDate; }
    QString dueDate() const { return mDueDate; }
    void setDueDate(const QString &dueDate) { mDueDate = dueDate; }
    QString utcStartDate() const { return mUtcStartDate; }
    void setUtcStartDate(const QString &utcStartDate) { mUtcStartDate = utcStartDate; }
    QString utcDueDate() const { return mUtcDueDate; }
    void setUtcDueDate(const QString &utcDueDate) { mUtcDueDate = utcDueDate; }
    QString reminderTime() const { return mReminderTime; }
    void setReminderTime(const QString &reminderTime) { mReminderTime = reminderTime; }
    QString ordinalDate() const { return mOrdinalDate; }
    void setOrdinalDate(const QString &ordinalDate) { mOrdinalDate = ordinalDate; }
    QString subOrdinalDate() const { return mSubOrdinalDate; }
    void setSubOrdinalDate(const QString &subOrdinalDate) { mSubOrdinalDate = subOrdinalDate; }
    FlagStatus status() const { return mStatus; }
    void setStatus(FlagStatus status)
    {
        mStatus = status;
        mIsEmptyContainer = false;
    }
    quint8 reminderSet() const { return mReminderSet; }
    void setReminderSet(quint8 reminderSet) { mReminderSet = reminderSet; }
    bool isEmptyContainer() const { return mIsEmptyContainer; }
    void setIsEmptyContainer(bool isEmptyContainer) { mIsEmptyContainer = isEmptyContainer; }

    void clear() { *this = EasFlagContainer(); }

private:
    QString mSubject;
    QString mFlagType;
    QString mDateCompleted;
    QString mCompleteTime;
    QString mStartDate;
    QString mDueDate;
    QString mUtcStartDate;
    QString mUtcDueDate;
    QString mReminderTime;
    QString mOrdinalDate;
    QString mSubOrdinalDate;
    FlagStatus mStatus = UndefinedFlagStatus;
    quint8 mReminderSet = 0;
    bool mIsEmptyContainer = true;
};
