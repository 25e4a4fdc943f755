// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <optional>

/**
 * When the days of an all-day event begin on the server: in which zone, and how far from midnight there. The
 * device's days have no zone, and servers name theirs wrongly or not at all; so what came stands in a
 * property of the event, and its days go up as they came.
 *
 * A plain value; main thread only.
 */
class CalendarMidnight
{
public:
    /** The start as it came, in the zone of the item; the block is the zone's text on the wire, or empty. */
    CalendarMidnight(const QDateTime &start, const QString &block);
    /** Nothing for an event of hours, and for one that did not come from a server. */
    static std::optional<CalendarMidnight> of(const KCalendarCore::Event &event);
    /** Without days the property goes. */
    static void clear(KCalendarCore::Event &event);

    void keep(KCalendarCore::Event &event) const;

    QDateTime begin(const QDate &day) const;
    QTimeZone zone() const { return mZone; }
    QString block() const { return mBlock; }

    /** The day whose midnight is nearest to a moment, in the zone in which the moment is given. A midnight of
     * the device's own zone, where the item has none, is that day: beyond +12 hours it is nearer to the day
     * before. */
    static QDate day(const QDateTime &moment);

private:
    CalendarMidnight() = default;

    QTimeZone mZone;
    qint64 mSecondsAfterMidnight = 0;
    QString mBlock;
};
