// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaroccurrencedeletions.h"

#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarstorecontext.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

void exclude(const CalendarOccurrence &occurrence, const Event &series)
{
    if (series.recurs() && !occurrence.isExcluded())
        occurrence.exclude();
}

} // namespace

CalendarOccurrenceDeletions::CalendarOccurrenceDeletions(const CalendarStoreContext &context)
    : mContext(context)
{
}

void CalendarOccurrenceDeletions::expect(const Event::Ptr &series, const Incidence::List &deletedExceptions)
{
    QStringList keys;
    const QList<CalendarOccurrence> excluded = CalendarOccurrence::excludedFrom(series);
    for (const CalendarOccurrence &occurrence : excluded)
        keys.append(occurrence.key());
    for (const Incidence::Ptr &exception : deletedExceptions)
        keys.append(CalendarOccurrence(series, exception->recurrenceId()).key());
    if (keys.isEmpty()) {
        mExpected.remove(series->uid());
        return;
    }
    keys.removeDuplicates();
    keys.sort();
    mExpected.insert(series->uid(), { keys, deletedExceptions });
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
            exclude(CalendarOccurrence(series, exception->recurrenceId()), *series);
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
