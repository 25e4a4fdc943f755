// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/mstimezoneinformation.h"

#include <QDataStream>

namespace {

constexpr int NameUnits = 32;

/** A name fills its place whether or not it is ended by a zero. */
QString readName(QDataStream &stream)
{
    QString name;
    for (int unit = 0; unit < NameUnits; ++unit) {
        quint16 character = 0;
        stream >> character;
        if (character != 0)
            name.append(QChar(character));
    }
    return stream.status() == QDataStream::Ok ? name : QString();
}

void writeName(QDataStream &stream, const QString &name)
{
    for (int unit = 0; unit < NameUnits; ++unit)
        stream << quint16(unit < name.size() ? name.at(unit).unicode() : 0);
}

} // namespace

QDateTime MSSystemTime::wallClock(int inYear) const
{
    const QTime time(hour, minute, second, milliseconds);
    const QDate first(inYear, month, 1);
    if (year != 0 || !first.isValid() || !time.isValid() || weekDay < 0 || weekDay > 6 || day < 1
        || day > LastWeek)
        return {};
    const int untilWeekDay = (weekDay + 7 - first.dayOfWeek() % 7) % 7;
    QDate date = first.addDays(untilWeekDay + 7 * (day - 1));
    if (date.month() != month)
        date = date.addDays(-7);
    return QDateTime(date, time, Qt::UTC);
}

QDataStream &operator>>(QDataStream &stream, MSSystemTime &time)
{
    return stream >> time.year >> time.month >> time.weekDay >> time.day >> time.hour >> time.minute
        >> time.second >> time.milliseconds;
}

QDataStream &operator<<(QDataStream &stream, const MSSystemTime &time)
{
    return stream << time.year << time.month << time.weekDay << time.day << time.hour << time.minute
                  << time.second << time.milliseconds;
}

QDataStream &operator>>(QDataStream &stream, MSTimeZoneInformation &information)
{
    stream >> information.bias;
    information.stdName = readName(stream);
    stream >> information.stdDate >> information.stdBias;
    information.dltName = readName(stream);
    return stream >> information.dltDate >> information.dltBias;
}

QDataStream &operator<<(QDataStream &stream, const MSTimeZoneInformation &information)
{
    stream << information.bias;
    writeName(stream, information.stdName);
    stream << information.stdDate << information.stdBias;
    writeName(stream, information.dltName);
    return stream << information.dltDate << information.dltBias;
}

QDebug operator<<(QDebug debug, const MSSystemTime &time)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "MSSystemTime{" << time.year << "-" << time.month << "-" << time.day << ", weekDay("
                    << time.weekDay << "), " << time.hour << ":" << time.minute << ":" << time.second << "."
                    << time.milliseconds << "}";
    return debug;
}

QDebug operator<<(QDebug debug, const MSTimeZoneInformation &information)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "MSTimeZoneInformation{bias:" << information.bias << ",stdName:" << information.stdName
                    << ",stdDate:" << information.stdDate << ",stdBias:" << information.stdBias
                    << ",dltName:" << information.dltName << ",dltTime:" << information.dltDate
                    << ",dltBias:" << information.dltBias << "}";
    return debug;
}
