// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTimeZone>

/** A day, or a moment of a day, as people write it: "2024-05-01", "2024-05-01T09:30" or with a blank. */
class EventTime
{
public:
    static EventTime read(const QString &text);

    bool isValid() const { return mDate.isValid(); }
    bool hasTime() const { return mTime.isValid(); }
    QDate date() const { return mDate; }
    /** Midnight for a day. */
    QDateTime in(const QTimeZone &zone) const;
    /** Whether a start, shown in the zone of the device, is this one; a day means any time of it. */
    bool isAt(const QDateTime &start, bool allDay) const;

    /** As read() takes it; in the zone of the device, a day alone for an event that lasts whole days. */
    static QString text(const QDateTime &time, bool allDay);
    /** The end of the occurrence that starts at a moment; the last day of an event that lasts whole days. */
    static QDateTime endOf(const KCalendarCore::Event::Ptr &event, const QDateTime &start);

private:
    QDate mDate;
    QTime mTime;
};
