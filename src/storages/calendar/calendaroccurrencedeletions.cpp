// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaroccurrencedeletions.h"

#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarstorecontext.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

QStringList keysOf(const Event &series, const QList<QDateTime> &starts)
{
    QStringList keys;
    for (const QDateTime &start : starts)
        keys.append(CalendarEventProperties::occurrenceKey(series, start));
    return keys;
}

void exclude(const Event::Ptr &series, const QDateTime &start)
{
    const QStringList excluded = keysOf(*series, CalendarEventProperties::deletedOccurrences(*series));
    if (!series->recurs() || excluded.contains(CalendarEventProperties::occurrenceKey(*series, start)))
        return;
    if (series->allDay())
        series->recurrence()->addExDate(start.date());
    else
        series->recurrence()->addExDateTime(start);
}

} // namespace

CalendarOccurrenceDeletions::CalendarOccurrenceDeletions(const CalendarStoreContext &context)
    : mContext(context)
{
}

void CalendarOccurrenceDeletions::expect(const Event &series, const Incidence::List &deletedExceptions)
{
    QList<QDateTime> starts = CalendarEventProperties::deletedOccurrences(series);
    for (const Incidence::Ptr &exception : deletedExceptions)
        starts.append(exception->recurrenceId());
    if (starts.isEmpty()) {
        mExpected.remove(series.uid());
        return;
    }
    QStringList keys = keysOf(series, starts);
    keys.removeDuplicates();
    keys.sort();
    mExpected.insert(series.uid(), { keys, deletedExceptions });
}

bool CalendarOccurrenceDeletions::settle(const QStringList &uids)
{
    bool changed = false;
    for (const QString &uid : uids) {
        const auto expected = mExpected.find(uid);
        if (expected == mExpected.end())
            continue;
        const Event::Ptr series = mContext.calendar->event(uid);
        if (series)
            changed = settleSeries(series, *expected) || changed;
        mSettled += expected->exceptions;
        mExpected.erase(expected);
    }
    return changed;
}

bool CalendarOccurrenceDeletions::settleSeries(const Event::Ptr &series, const Expected &expected) const
{
    if (expected.exceptions.isEmpty() && CalendarEventProperties::knownDeletions(*series) == expected.keys)
        return false;
    const QDateTime modified = series->lastModified();
    series->startUpdates();
    for (const Incidence::Ptr &exception : expected.exceptions) {
        // The user may have made another exception there in the meantime.
        if (!mContext.calendar->event(series->uid(), exception->recurrenceId()))
            exclude(series, exception->recurrenceId());
    }
    CalendarEventProperties::setKnownDeletions(*series, expected.keys);
    series->endUpdates();
    series->setLastModified(modified);
    return true;
}

bool CalendarOccurrenceDeletions::purge()
{
    const Incidence::List settled = mSettled;
    mSettled.clear();
    return settled.isEmpty() || mContext.storage->purgeDeletedIncidences(settled);
}
