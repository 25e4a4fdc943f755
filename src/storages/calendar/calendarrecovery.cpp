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

bool CalendarRecovery::readMapping(const QStringList &serverIds)
{
    const Lookup<QMap<QString, QString>> mapping =
        EasDatabase::instance()->serverToLocalCalendarIds(mContext.accountId(), serverIds);
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

std::optional<CalendarRecovery::State> CalendarRecovery::stateOf(
    const QString &serverId, const QString &notebookUid)
{
    const auto localId = mMapping.constFind(serverId);
    if (localId == mMapping.constEnd())
        return State::Unknown;
    if (!mContext.calendar->event(*localId)) {
        if (isDeleted(*localId))
            return State::Deleted;
        if (!mContext.storage->loadSeries(*localId)) {
            // Taken for purged, it would be made a second time.
            qCWarning(eas()) << "cannot look for an event in the other calendars:" << *localId;
            return std::nullopt;
        }
    }
    if (!mContext.calendar->event(*localId))
        return State::Purged;
    if (mContext.calendar->notebook(*localId) != notebookUid)
        return State::Moved;
    return editState(*localId, notebookUid);
}

bool CalendarRecovery::isDeleted(const QString &localId) const
{
    return std::any_of(mDeletedBefore.cbegin(), mDeletedBefore.cend(), [&](const Incidence::Ptr &incidence) {
        return incidence->uid() == localId && !incidence->hasRecurrenceId();
    });
}

std::optional<CalendarRecovery::State> CalendarRecovery::editState(
    const QString &localId, const QString &notebookUid)
{
    auto known = mTimestamps.find(notebookUid);
    if (known == mTimestamps.end()) {
        CalendarTimestamps timestamps(mContext);
        if (timestamps.updateTimestampCache(notebookUid) != LocalQuery::Answered) {
            // Taken for untouched, the user's edit would be lost.
            qCWarning(eas()) << "Cant load notebook incidences for collection" << notebookUid;
            return std::nullopt;
        }
        known = mTimestamps.emplace(notebookUid, timestamps).first;
    }
    return known->second.isChanged(localId) ? State::Edited : State::Stored;
}

Incidence::List CalendarRecovery::deletedParts(const QString &localId) const
{
    Incidence::List parts;
    std::copy_if(mDeletedBefore.cbegin(), mDeletedBefore.cend(), std::back_inserter(parts),
        [&localId](const Incidence::Ptr &incidence) { return incidence->uid() == localId; });
    return parts;
}

LocalQuery CalendarRecovery::removeStrays(const CalendarStoreContext &context, const QString &notebookUid)
{
    EasDatabase *database = EasDatabase::instance();
    const Lookup<QMap<QString, QString>> known = database->localToServerCalendarIds(context.accountId());
    // Rows of attachments come before their event, which an interruption may have kept from being stored.
    if (!known || !database->deleteStrayCalendarAttachments())
        return LocalQuery::MappingFailed;
    context.calendar->close();
    if (!context.storage->loadNotebookIncidences(notebookUid))
        return LocalQuery::StoreSilent;
    Event::List strays;
    const Incidence::List incidences = context.calendar->incidences(notebookUid);
    for (const Incidence::Ptr &incidence : incidences) {
        const Event::Ptr event = incidence.dynamicCast<Event>();
        if (event && !event->hasRecurrenceId() && !known->contains(event->uid())
            && !CalendarOrigin::serverId(*event, context.accountId()).isEmpty())
            strays.append(event);
    }
    return erase(context, strays);
}

LocalQuery CalendarRecovery::erase(const CalendarStoreContext &context, const Event::List &strays)
{
    Incidence::List parts;
    for (const Event::Ptr &event : strays) {
        qCWarning(eas()) << "Removing an event that was stored and not recorded:" << event->uid();
        parts.append(event);
        parts += context.calendar->instances(event);
        context.calendar->deleteEventInstances(event);
        if (!context.calendar->deleteEvent(event))
            return LocalQuery::StoreSilent;
    }
    if (parts.isEmpty())
        return LocalQuery::Answered;
    if (!context.storage->save(mKCal::ExtendedStorage::PurgeDeleted))
        return LocalQuery::StoreSilent;
    // The calendar goes on to list by notebook what was deleted from it.
    context.calendar->close();
    return CalendarAttachmentService::forget(parts) ? LocalQuery::Answered : LocalQuery::MappingFailed;
}
