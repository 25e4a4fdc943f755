// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendartimestamps.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarstorecontext.h"

CalendarTimestamps::CalendarTimestamps(const CalendarStoreContext &context)
    : mContext(context)
{
}

void CalendarTimestamps::markAsOwnWrite(KCalendarCore::Incidence &incidence)
{
    incidence.setLastModified(Clock::instance().currentDateTimeUtc().addSecs(-1));
}

uint CalendarTimestamps::timeToStamp(const QDateTime &time)
{
    return time.isValid() ? uint(time.toSecsSinceEpoch()) : EasDatabase::TimestampInvalid;
}

LocalQuery CalendarTimestamps::updateTimestampCache(const QString &notebookUid)
{
    if (!readStored())
        return LocalQuery::MappingFailed;
    if (!mContext.storage->loadNotebookIncidences(notebookUid))
        return LocalQuery::StoreSilent;
    enterLoaded(notebookUid);
    return LocalQuery::Answered;
}

LocalQuery CalendarTimestamps::updateTimestampCache(const QString &notebookUid, const QSet<QString> &uids)
{
    if (!readStored())
        return LocalQuery::MappingFailed;
    if (notebookUid.isEmpty())
        return LocalQuery::StoreSilent;
    for (const QString &uid : uids) {
        if (!mContext.storage->loadSeries(uid))
            return LocalQuery::StoreSilent;
    }
    enterLoaded(notebookUid);
    return LocalQuery::Answered;
}

bool CalendarTimestamps::readStored()
{
    const Lookup<QMap<QString, uint>> stored =
        EasDatabase::instance()->calendarItemUpdateTimes(mContext.accountId());
    if (stored)
        mStored = *stored;
    return bool(stored);
}

void CalendarTimestamps::enterLoaded(const QString &notebookUid)
{
    mStamps.clear();
    const KCalendarCore::Incidence::List incidences = mContext.calendar->incidences(notebookUid);
    for (const KCalendarCore::Incidence::Ptr &incidence : incidences) {
        if (!incidence->isReadOnly())
            enter(incidence);
    }
}

void CalendarTimestamps::enter(const KCalendarCore::Incidence::Ptr &incidence)
{
    const QDateTime modified = incidence->lastModified();
    if (!modified.isValid()) {
        qCWarning(eas()) << "last modified is invalid in incidence" << incidence->uid();
        return;
    }
    const uint stamp = timeToStamp(modified);
    if (stamp == EasDatabase::TimestampInvalid) {
        qCWarning(eas()) << "invalid timestamp for incidence" << incidence->uid();
        return;
    }
    const auto known = mStamps.find(incidence->uid());
    if (known == mStamps.end())
        mStamps.insert(incidence->uid(), stamp);
    else
        *known = qMax(*known, stamp);
}

uint CalendarTimestamps::eventTimestamp(const QString &uid) const
{
    return mStamps.value(uid, EasDatabase::TimestampInvalid);
}

bool CalendarTimestamps::isChanged(const QString &uid) const
{
    // Not only what is newer: a clock that was wrong may have been set back in between.
    const uint stored = storedTimestamp(uid);
    const uint current = eventTimestamp(uid);
    return stored != EasDatabase::TimestampInvalid && current != EasDatabase::TimestampInvalid
        && current != stored;
}

uint CalendarTimestamps::storedTimestamp(const QString &uid) const
{
    return mStored.value(uid, EasDatabase::TimestampInvalid);
}
