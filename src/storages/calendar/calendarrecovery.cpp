// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarrecovery.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendarorigin.h"
#include "storages/calendar/calendarstorecontext.h"

#include <algorithm>
#include <iterator>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

CalendarRecovery::CalendarRecovery(const CalendarStoreContext &context)
    : mContext(context)
{
}

bool CalendarRecovery::readMapping()
{
    const Lookup<QMap<QString, QString>> mapping =
        EasDatabase::instance()->serverToLocalCalendarIds(mContext.accountId());
    if (mapping)
        mMapping = *mapping;
    return bool(mapping);
}

bool CalendarRecovery::load(const QString &notebookUid, const QString &collectionId)
{
    if (mContext.storage->loadNotebookIncidences(notebookUid)
        && (!mDeletedBefore.isEmpty() || mContext.storage->deletedIncidences(&mDeletedBefore, QDateTime()))) {
        qCDebug(eas()) << "Loaded notebook incidences for collection" << collectionId;
        return true;
    }
    qCCritical(eas()) << "Cant load notebook incidences for collection" << collectionId;
    return false;
}

CalendarRecovery::State CalendarRecovery::stateOf(const QString &serverId, const QString &notebookUid)
{
    const auto localId = mMapping.constFind(serverId);
    if (localId == mMapping.constEnd())
        return State::Unknown;
    if (!mContext.calendar->event(*localId)) {
        if (isDeleted(*localId))
            return State::Deleted;
        if (!mContext.storage->loadSeries(*localId))
            qCWarning(eas()) << "cannot look for an event in the other calendars:" << *localId;
    }
    if (!mContext.calendar->event(*localId))
        return State::Purged;
    if (mContext.calendar->notebook(*localId) != notebookUid)
        return State::Moved;
    return isEdited(*localId, notebookUid) ? State::Edited : State::Stored;
}

bool CalendarRecovery::isDeleted(const QString &localId) const
{
    return std::any_of(mDeletedBefore.cbegin(), mDeletedBefore.cend(), [&](const Incidence::Ptr &incidence) {
        return incidence->uid() == localId && !incidence->hasRecurrenceId();
    });
}

bool CalendarRecovery::isEdited(const QString &localId, const QString &notebookUid)
{
    auto timestamps = mTimestamps.find(notebookUid);
    if (timestamps == mTimestamps.end()) {
        timestamps = mTimestamps.emplace(notebookUid, CalendarTimestamps(mContext)).first;
        if (!timestamps->second.updateTimestampCache(notebookUid))
            qCWarning(eas()) << "Cant load notebook incidences for collection" << notebookUid;
    }
    return timestamps->second.isChanged(localId);
}

Incidence::List CalendarRecovery::deletedParts(const QString &localId) const
{
    Incidence::List parts;
    std::copy_if(mDeletedBefore.cbegin(), mDeletedBefore.cend(), std::back_inserter(parts),
        [&localId](const Incidence::Ptr &incidence) { return incidence->uid() == localId; });
    return parts;
}

bool CalendarRecovery::removeStrays(const CalendarStoreContext &context, const QString &notebookUid)
{
    EasDatabase *database = EasDatabase::instance();
    const Lookup<QMap<QString, QString>> known = database->localToServerCalendarIds(context.accountId());
    if (!known)
        return false;
    // Rows of attachments come before their event, which an interruption may have kept from being stored.
    database->deleteStrayCalendarAttachments();
    context.calendar->close();
    if (!context.storage->loadNotebookIncidences(notebookUid))
        return false;
    Incidence::List strays;
    const Incidence::List incidences = context.calendar->incidences(notebookUid);
    for (const Incidence::Ptr &incidence : incidences) {
        const Event::Ptr event = incidence.dynamicCast<Event>();
        if (!event || event->hasRecurrenceId() || known->contains(event->uid())
            || CalendarOrigin::serverId(*event, context.accountId()).isEmpty())
            continue;
        qCWarning(eas()) << "Removing an event that was stored and not recorded:" << event->uid();
        strays.append(event);
        strays += context.calendar->instances(event);
        context.calendar->deleteEventInstances(event);
        if (!context.calendar->deleteEvent(event))
            return false;
    }
    if (strays.isEmpty())
        return true;
    if (!context.storage->save(mKCal::ExtendedStorage::PurgeDeleted))
        return false;
    CalendarAttachmentService::forget(strays);
    // The calendar goes on to list by notebook what was deleted from it.
    context.calendar->close();
    return true;
}
