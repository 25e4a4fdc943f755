// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QDebug>
#include <QString>

class QDataStream;

/**
 * A day and a time of day in the layout of Windows. As part of a time zone it names the day of each year on
 * which the clocks change, and what they show in that moment. A plain value.
 */
struct MSSystemTime
{
    /** Stands in `day` for the last week of the month. */
    static constexpr qint16 LastWeek = 5;

    /** 0 for a rule that holds every year. */
    qint16 year = 0;
    /** 1 to 12; 0 where the clocks never change. */
    qint16 month = 0;
    /** 0 for Sunday to 6 for Saturday. */
    qint16 weekDay = 0;
    /** Which such day of the month: 1 to 4, or LastWeek. */
    qint16 day = 0;
    qint16 hour = 0;
    qint16 minute = 0;
    qint16 second = 0;
    qint16 milliseconds = 0;

    /** The moment of a yearly rule as the clocks on the wall show it (spelt in UTC); invalid if there is
     * none. */
    QDateTime wallClock(int inYear) const;
};

/** A time zone in the layout of Windows: an offset, and the two days of the year on which it changes. A plain
 * value. */
struct MSTimeZoneInformation
{
    /** Bytes of the block that goes over the wire. */
    static constexpr int Size = 172;

    /** Minutes from local standard time to UTC: negative east of Greenwich. */
    qint32 bias = 0;
    QString stdName;
    MSSystemTime stdDate;
    /** Added to the bias in standard time. */
    qint32 stdBias = 0;
    QString dltName;
    MSSystemTime dltDate;
    /** Added to the bias in daylight time. */
    qint32 dltBias = 0;
};

QDataStream &operator>>(QDataStream &stream, MSSystemTime &time);
QDataStream &operator<<(QDataStream &stream, const MSSystemTime &time);
/** The stream has to be little endian. */
QDataStream &operator>>(QDataStream &stream, MSTimeZoneInformation &information);
QDataStream &operator<<(QDataStream &stream, const MSTimeZoneInformation &information);

QDebug operator<<(QDebug debug, const MSSystemTime &time);
QDebug operator<<(QDebug debug, const MSTimeZoneInformation &information);
