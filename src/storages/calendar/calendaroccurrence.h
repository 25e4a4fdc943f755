// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"

#include <KCalendarCore/Event>

#include <QDateTime>
#include <QList>
#include <QString>
#include <QTimeZone>

/**
 * One occurrence of a series: the series, and the moment at which its rules put the occurrence. In an all-day
 * series the day alone counts, in any other the moment, whatever zone it is given in.
 *
 * Whether days or moments count is a matter of the series, never of the exception that takes the place of the
 * occurrence. A plain value; main thread only.
 */
class CalendarOccurrence
{
public:
    CalendarOccurrence(const KCalendarCore::Event::Ptr &series, const QDateTime &moment);

    /** The occurrence that a server names; not valid if the text is no time. The zone is that of the item. */
    static CalendarOccurrence fromWire(
        const KCalendarCore::Event::Ptr &series, const QString &text, const QTimeZone &zone);
    /** Those that the exception dates of a series exclude; what a change of its rule has left behind is not
     * among them. */
    static QList<CalendarOccurrence> excludedFrom(const KCalendarCore::Event::Ptr &series);

    bool isValid() const { return mMoment.isValid(); }
    /** As an exception of the series bears it: that of a day is in clock time, since the store gives all-day
     * series back in it, and no calendar would show an exception elsewhere. */
    QDateTime recurrenceId() const { return mMoment; }
    /** The same text for the same occurrence, whatever zone the device is in. */
    QString key() const;
    /** As the protocol names the occurrence. */
    QString wire(ExchangeActiveSync::ProtocolVersion version) const;

    /** Whether the rules of the series make it, be it excluded or not. */
    bool isOfRules() const;
    /** Whether an exception date of the series excludes it. */
    bool isExcluded() const;
    void exclude() const;

    bool operator==(const CalendarOccurrence &other) const;

private:
    bool isDay() const { return mSeries->allDay(); }
    bool isAt(const QDateTime &moment) const;

    KCalendarCore::Event::Ptr mSeries;
    QDateTime mMoment;
};
