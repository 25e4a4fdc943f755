// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QTimeZone>

#include <optional>

namespace Simulator {

/**
 * The time zone of an event, as events carry it: an offset, names, and the yearly moments at which the clocks
 * change. A value type; as constructed it is UTC.
 *
 * Local times ("wall times") are kept in a QDateTime of spec UTC that means the hands of the clock.
 */
class EventZone
{
public:
    /** The zone with the rules that hold in the year of @p moment, and the name that Windows has for it. */
    static EventZone named(const QByteArray &ianaId, const QDateTime &moment);
    /** From Base64; nothing if that is no block. */
    static std::optional<EventZone> fromBase64(const QByteArray &text);
    QByteArray toBase64() const;

    /** Names as other servers and clients write them: translated, for display, or none. */
    EventZone withNames(const QString &standard, const QString &daylight) const;
    const QString &standardName() const { return mStandard.name; }
    /** By the name; invalid if Windows has no zone of that name. */
    QTimeZone zone() const;

    /** Seconds east of Greenwich, by the rules of the block. */
    int offsetAt(const QDateTime &instant) const;
    QDateTime toWall(const QDateTime &instant) const;
    QDateTime toInstant(const QDateTime &wall) const;
    /** Whether both give the same offsets from two days before @p from until @p to. */
    bool agreesWith(const EventZone &other, const QDateTime &from, const QDateTime &to) const;

    bool operator==(const EventZone &other) const { return toBase64() == other.toBase64(); }

private:
    /** A part of the year: what it is called, when it begins, what it adds to the bias. */
    struct Season
    {
        QString name;
        int year = 0;
        int month = 0; ///< 0: the zone has no seasons
        int weekDay = 0; ///< 0 for Sunday
        int week = 0; ///< 5 for the last one
        QTime time { 0, 0 };
        int bias = 0;

        QDateTime beginsIn(int year) const;
    };

    bool hasSeasons() const { return mStandard.month != 0 && mDaylight.month != 0; }
    /** When the clocks change in that year. */
    QVector<QDateTime> changesIn(int year) const;
    int offsetOf(const Season &season) const { return -60 * (mBias + season.bias); }
    static Season seasonFrom(
        const QTimeZone &zone, const QTimeZone::OffsetData &transition, int offsetBefore);
    static void write(QDataStream &stream, const Season &season);
    static void read(QDataStream &stream, Season &season);

    int mBias = 0; ///< minutes west of Greenwich
    Season mStandard;
    Season mDaylight;
};

} // namespace Simulator
