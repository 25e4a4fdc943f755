// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTimeZone>

/**
 * A day, or a moment of a day, as people write it: "2024-05-01", "2024-05-01T09:30" or with a blank, and
 * "today", "tomorrow" or "yesterday" in place of the date.
 */
class EventTime
{
public:
    /** Also as programs write it, with seconds and an offset ("2024-05-01T09:30:00+02:00"). */
    static EventTime read(const QString &text);
    /** A day that an option was given; false after an error was printed. */
    static bool readDay(const QString &text, const QString &option, QDate *day);

    bool isValid() const { return mDate.isValid(); }
    bool hasTime() const { return mTime.isValid(); }
    QDate date() const { return mDate; }
    /** Midnight for a day. */
    QDateTime in(const QTimeZone &zone) const;
    /** Whether a start, shown in the zone of the device, is this one; a day means any time of it. */
    bool isAt(const QDateTime &start, bool allDay) const;

    /** For programs; in the zone of the device, a day alone for an event that lasts whole days. */
    static QString text(const QDateTime &time, bool allDay);
    /** The end of the occurrence that starts at a moment; the last day of an event that lasts whole days. */
    static QDateTime endOf(const KCalendarCore::Event::Ptr &event, const QDateTime &start);

private:
    QDate mDate;
    QTime mTime;
};
