// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/mstimezoneinformation.h"

#include <QByteArray>
#include <QTimeZone>

namespace KCalendarCore {
class Event;
}

/**
 * The time zone of a calendar item: between the block of Windows' layout that the wire carries and the zones
 * of the system.
 *
 * A block names its zone, but in whatever language the server speaks, or not at all; then the zone is found
 * by the days on which its clocks change. A plain value; main thread only.
 */
class EasTimeZone
{
public:
    /** Reads a block of 172 bytes, or the Base64 text of one. */
    bool parse(const QByteArray &data);

    const MSTimeZoneInformation &msTimeZoneInformation() const { return mInformation; }

    /**
     * The zone that fits best, for an item between these two times (texts as the protocol writes them).
     *
     * By name where the name is one of Windows'. Otherwise the first zone of the system, in the system's
     * order, that has the block's offset now and changes by the block's biases within the item's time (for a
     * block without changes one whose clocks stay as they are is preferred); since the time of most items
     * holds no change at all, next the first whose clocks change when the block says, over a year from the
     * start. The last resort is the plain offset.
     */
    QTimeZone timeZone(const QString &startTime, const QString &endTime) const;

    /**
     * The Base64 text of the block for an event's start; empty if it needs none, because it is in UTC.
     *
     * The yearly rule is made from the changes of the year that follows, and is written only if it gives
     * exactly these; otherwise the block holds the offset of the start alone.
     */
    static QByteArray encode(const KCalendarCore::Event &event);

private:
    QTimeZone searchedZone(const QDateTime &from, const QDateTime &to) const;

    MSTimeZoneInformation mInformation;
};
