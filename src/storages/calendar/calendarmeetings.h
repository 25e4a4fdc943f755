// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QDateTime>
#include <QString>

struct CalendarStoreContext;

/**
 * The events of the store that answers to invitations are about: the whole meeting, or one of its occurrences
 * by its original start. Of an all-day series an occurrence is the midnight of its day in the device's zone.
 *
 * An object of the moment; main thread only.
 */
class CalendarMeetings
{
public:
    explicit CalendarMeetings(const CalendarStoreContext &context);

    /** As iCalendar data; empty if there is no such event. An occurrence that is as its series says comes as
     * the series. */
    QString iCal(const QString &localId, const QDateTime &occurrence) const;

    /** How the protocol names the occurrence that starts then; one that the user or the organizer has moved
     * goes by its original start. Empty if there is no such event. */
    QString instanceId(const QString &localId, const QDateTime &start) const;

private:
    KCalendarCore::Event::Ptr series(const QString &localId) const;
    KCalendarCore::Event::Ptr exceptionThatStarts(
        const KCalendarCore::Event::Ptr &series, const QDateTime &start) const;

    const CalendarStoreContext &mContext;
};
