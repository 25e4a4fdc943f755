// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

/** The out-of-office settings of a mailbox; a plain value that crosses threads. */
class EasOofContainer
{
public:
    bool oofEnabled() const { return mOofEnabled; }
    void setOofEnabled(bool enabled) { mOofEnabled = enabled; }
    bool timeRangeEnabled() const { return mTimeRangeEnabled; }
    void setTimeRangeEnabled(bool enabled) { mTimeRangeEnabled = enabled; }
    QDateTime startTime() const { return mStartTime; }
    void setStartTime(const QDateTime &time) { mStartTime = time; }
    QDateTime endTime() const { return mEndTime; }
    void setEndTime(const QDateTime &time) { mEndTime = time; }
    bool internalMessageEnabled() const { return mInternalMessageEnabled; }
    void setInternalMessageEnabled(bool enabled) { mInternalMessageEnabled = enabled; }
    QString internalMessage() const { return mInternalMessage; }
    void setInternalMessage(const QString &message) { mInternalMessage = message; }
    bool externalMessageEnabled() const { return mExternalMessageEnabled; }
    void setExternalMessageEnabled(bool enabled) { mExternalMessageEnabled = enabled; }
    bool externalMessageToAnyone() const { return mExternalMessageToAnyone; }
    void setExternalMessageToAnyone(bool enabled) { mExternalMessageToAnyone = enabled; }
    QString externalMessage() const { return mExternalMessage; }
    void setExternalMessage(const QString &message) { mExternalMessage = message; }

private:
    bool mOofEnabled = false;
    bool mTimeRangeEnabled = false;
    QDateTime mStartTime;
    QDateTime mEndTime;
    bool mInternalMessageEnabled = false;
    QString mInternalMessage;
    bool mExternalMessageEnabled = false;
    bool mExternalMessageToAnyone = false;
    QString mExternalMessage;
};

Q_DECLARE_METATYPE(EasOofContainer)
