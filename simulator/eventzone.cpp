// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventzone.h"

#include <QDataStream>

#include <algorithm>

namespace Simulator {
namespace {

const int blockSize = 172;
const int nameLength = 32;
const int lastWeek = 5;

bool isLastOfItsMonth(const QDate &date)
{
    return date.addDays(7).month() != date.month();
}

/** The transition of that kind in the year; of several the last one. */
std::optional<QTimeZone::OffsetData> transitionIn(const QTimeZone &zone, int year, bool daylight)
{
    const QDateTime begin(QDate(year, 1, 1), QTime(0, 0), Qt::UTC);
    const auto transitions = zone.transitions(begin, begin.addYears(1).addSecs(-1));
    std::optional<QTimeZone::OffsetData> found;
    for (const QTimeZone::OffsetData &transition : transitions) {
        if ((transition.daylightTimeOffset != 0) == daylight)
            found = transition;
    }
    return found;
}

/** The hands of the clock at which the change happens. */
QDateTime wallOf(const QTimeZone::OffsetData &transition, int offsetBefore)
{
    return transition.atUtc.toUTC().addSecs(offsetBefore);
}

void writeName(QDataStream &stream, const QString &name)
{
    for (int i = 0; i < nameLength; ++i)
        stream << quint16(i < name.size() ? name.at(i).unicode() : 0);
}

QString readName(QDataStream &stream)
{
    QString name;
    for (int i = 0; i < nameLength; ++i) {
        quint16 unit = 0;
        stream >> unit;
        name.append(QChar(unit));
    }
    return name.section(QChar(0), 0, 0);
}

} // namespace

QDateTime EventZone::Season::beginsIn(int inYear) const
{
    if (year != 0)
        return QDateTime(QDate(inYear, month, std::clamp(week, 1, 31)), time, Qt::UTC);
    const int qtDay = weekDay == 0 ? 7 : weekDay;
    QDate day(inYear, month, 1);
    day = day.addDays((qtDay - day.dayOfWeek() + 7) % 7 + 7 * (std::clamp(week, 1, lastWeek) - 1));
    return QDateTime(day.month() == month ? day : day.addDays(-7), time, Qt::UTC);
}

EventZone::Season EventZone::seasonFrom(
    const QTimeZone &zone, const QTimeZone::OffsetData &transition, int offsetBefore)
{
    const QDateTime wall = wallOf(transition, offsetBefore);
    const QDate date = wall.date();
    Season season;
    season.name = QString::fromLatin1(QTimeZone::ianaIdToWindowsId(zone.id()));
    season.month = date.month();
    season.weekDay = date.dayOfWeek() % 7;
    season.time = wall.time();
    // The fourth week may be the last one by chance; other years tell.
    bool isLast = isLastOfItsMonth(date);
    const int yearsToLookAt = 6;
    for (int year = date.year() + 1; isLast && year <= date.year() + yearsToLookAt; ++year) {
        const auto next = transitionIn(zone, year, transition.daylightTimeOffset != 0);
        isLast = !next || isLastOfItsMonth(wallOf(*next, offsetBefore).date());
    }
    season.week = isLast ? lastWeek : (date.day() + 6) / 7;
    return season;
}

EventZone EventZone::named(const QByteArray &ianaId, const QDateTime &moment)
{
    const QTimeZone zone(ianaId);
    const int year = moment.toUTC().date().year();
    const auto standard = transitionIn(zone, year, false);
    const auto daylight = transitionIn(zone, year, true);
    EventZone result;
    if (standard && daylight) {
        result.mBias = -standard->offsetFromUtc / 60;
        result.mStandard = seasonFrom(zone, *standard, daylight->offsetFromUtc);
        result.mDaylight = seasonFrom(zone, *daylight, standard->offsetFromUtc);
        result.mDaylight.bias = -(daylight->offsetFromUtc - standard->offsetFromUtc) / 60;
    } else {
        result.mBias = -zone.offsetFromUtc(moment) / 60;
    }
    const QString name = QString::fromLatin1(QTimeZone::ianaIdToWindowsId(ianaId));
    return result.withNames(name, name);
}

EventZone EventZone::withNames(const QString &standard, const QString &daylight) const
{
    EventZone result = *this;
    result.mStandard.name = standard.left(nameLength);
    result.mDaylight.name = daylight.left(nameLength);
    return result;
}

QTimeZone EventZone::zone() const
{
    const QByteArray id = QTimeZone::windowsIdToDefaultIanaId(mStandard.name.toLatin1());
    return id.isEmpty() ? QTimeZone() : QTimeZone(id);
}

void EventZone::write(QDataStream &stream, const Season &season)
{
    writeName(stream, season.name);
    for (const int value : { season.year, season.month, season.weekDay, season.week, season.time.hour(),
             season.time.minute(), season.time.second(), season.time.msec() })
        stream << qint16(value);
    stream << qint32(season.bias);
}

void EventZone::read(QDataStream &stream, Season &season)
{
    season.name = readName(stream);
    qint16 values[8] = {};
    for (qint16 &value : values)
        stream >> value;
    season.year = values[0];
    season.month = std::clamp<int>(values[1], 0, 12);
    season.weekDay = values[2] % 7;
    season.week = values[3];
    season.time = QTime(values[4], values[5], values[6], values[7]);
    qint32 bias = 0;
    stream >> bias;
    season.bias = bias;
}

std::optional<EventZone> EventZone::fromBase64(const QByteArray &text)
{
    const QByteArray block = QByteArray::fromBase64(text);
    if (block.size() != blockSize)
        return std::nullopt;
    QDataStream stream(block);
    stream.setByteOrder(QDataStream::LittleEndian);
    EventZone zone;
    qint32 bias = 0;
    stream >> bias;
    zone.mBias = bias;
    read(stream, zone.mStandard);
    read(stream, zone.mDaylight);
    return zone;
}

QByteArray EventZone::toBase64() const
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << qint32(mBias);
    write(stream, mStandard);
    write(stream, mDaylight);
    return block.toBase64();
}

int EventZone::offsetAt(const QDateTime &instant) const
{
    if (!hasSeasons())
        return offsetOf(mStandard);
    const int standardOffset = offsetOf(mStandard);
    const int daylightOffset = offsetOf(mDaylight);
    const QDateTime utc = instant.toUTC();
    const int year = utc.addSecs(standardOffset).date().year();
    const QDateTime daylightBegins = mDaylight.beginsIn(year).addSecs(-standardOffset);
    const QDateTime standardBegins = mStandard.beginsIn(year).addSecs(-daylightOffset);
    const bool isDaylight = daylightBegins < standardBegins ? utc >= daylightBegins && utc < standardBegins
                                                            : utc >= daylightBegins || utc < standardBegins;
    return isDaylight ? daylightOffset : standardOffset;
}

QDateTime EventZone::toWall(const QDateTime &instant) const
{
    return instant.toUTC().addSecs(offsetAt(instant));
}

QDateTime EventZone::toInstant(const QDateTime &wall) const
{
    // A time that comes twice is the first one, a time that is skipped moves on with the clock.
    const QDateTime byDaylight = wall.addSecs(-offsetOf(mDaylight));
    if (hasSeasons() && offsetAt(byDaylight) == offsetOf(mDaylight))
        return byDaylight;
    return wall.addSecs(-offsetOf(mStandard));
}

QVector<QDateTime> EventZone::changesIn(int year) const
{
    if (!hasSeasons())
        return {};
    return { mDaylight.beginsIn(year).addSecs(-offsetOf(mStandard)),
        mStandard.beginsIn(year).addSecs(-offsetOf(mDaylight)) };
}

bool EventZone::agreesWith(const EventZone &other, const QDateTime &from, const QDateTime &to) const
{
    const QDateTime begin = from.toUTC().addDays(-2);
    QVector<QDateTime> moments { begin, to.toUTC() };
    for (int year = begin.date().year(); year <= to.toUTC().date().year(); ++year) {
        for (const QDateTime &change : changesIn(year) + other.changesIn(year))
            moments += { change.addSecs(-1), change };
    }
    return std::all_of(moments.begin(), moments.end(), [&](const QDateTime &moment) {
        return moment < begin || moment > to || offsetAt(moment) == other.offsetAt(moment);
    });
}

} // namespace Simulator
