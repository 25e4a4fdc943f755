// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarlocalquery.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentuploads.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendareventreader.h"
#include "storages/calendar/calendarlocalchecks.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendaroccurrencedeletions.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

QString instanceKey(const Incidence::Ptr &incidence)
{
    return incidence->uid() + QLatin1Char('/')
        + QString::number(CalendarTimestamps::timeToStamp(incidence->recurrenceId()));
}

/** A copy: reading an event for upload may take properties off it that have become wrong. */
Event::Ptr copyOf(const Incidence::Ptr &incidence)
{
    return Event::Ptr(static_cast<Event *>(incidence->clone()));
}

} // namespace

CalendarLocalQuery::CalendarLocalQuery(const CalendarStoreContext &context,
    const CalendarTimestamps &timestamps, CalendarOccurrenceDeletions &deletions,
    CalendarAttachmentUploads &attachments, const QString &serverFolderId, const QString &notebookUid)
    : mContext(context)
    , mTimestamps(timestamps)
    , mDeletions(deletions)
    , mAttachments(attachments)
    , mServerFolderId(serverFolderId)
    , mNotebookUid(notebookUid)
{
}

bool CalendarLocalQuery::ask(const QDateTime &after)
{
    if (!mContext.storage->insertedIncidences(&mInsertedIncidences, after, mNotebookUid)) {
        qCWarning(eas()) << "Failed to query new items";
        return false;
    }
    if (!mContext.storage->modifiedIncidences(&mModifiedIncidences, after, mNotebookUid)) {
        qCWarning(eas()) << "Failed to query updated items";
        return false;
    }
    if (!mContext.storage->deletedIncidences(&mDeletedIncidences, QDateTime(), mNotebookUid)) {
        qCWarning(eas()) << "Failed to query deleted items";
        return false;
    }
    return true;
}

bool CalendarLocalQuery::evaluate()
{
    const EasDatabase *database = EasDatabase::instance();
    mServerIds = database->localToServerCalendarIds(mContext.accountId());
    if (database->lookupFailed())
        return false;
    evaluateInserted();
    evaluateModified();
    evaluateOverlooked();
    evaluateDeleted();
    logCounts();
    processExceptionsChanges(mAddedExceptions, false);
    processExceptionsChanges(mUpdatedExceptions, false);
    processExceptionsChanges(mDeletedExceptions, true);
    expectDeletions();
    return !mLookupFailed;
}

void CalendarLocalQuery::evaluateInserted()
{
    const CalendarLocalChecks checks(mTimestamps);
    for (const Incidence::Ptr &incidence : qAsConst(mInsertedIncidences)) {
        mSeen.insert(instanceKey(incidence));
        if (!checks.checkNewLocalItem(incidence)) {
            qCDebug(eas()) << "No local updates detected for locally added item:" << incidence->uid();
            continue;
        }
        takeChanged(incidence);
    }
}

void CalendarLocalQuery::evaluateModified()
{
    const CalendarLocalChecks checks(mTimestamps);
    for (const Incidence::Ptr &incidence : qAsConst(mModifiedIncidences)) {
        if (!mServerIds.contains(incidence->uid()))
            continue; // Never taken by the server: found among the overlooked.
        mSeen.insert(instanceKey(incidence));
        if (checks.checkUpdatedLocalItem(incidence))
            takeChanged(incidence);
        else
            qCDebug(eas()) << "No local updates detected for:" << incidence->uid();
    }
}

void CalendarLocalQuery::evaluateOverlooked()
{
    const Incidence::List incidences = mContext.calendar->incidences(mNotebookUid);
    for (const Incidence::Ptr &incidence : incidences) {
        if (incidence->type() != Incidence::TypeEvent || incidence->isReadOnly()
            || mSeen.contains(instanceKey(incidence)))
            continue;
        if (mTimestamps.isChanged(incidence->uid()) || !mServerIds.contains(incidence->uid())) {
            qCInfo(eas()) << "earlier local change is still to be uploaded:" << incidence->uid();
            takeChanged(copyOf(incidence));
        }
    }
}

bool CalendarLocalQuery::isOlderPart(const Incidence::Ptr &incidence) const
{
    // A series and its exceptions have one stamp. If it is behind, it is not because of each of them.
    const uint stored = mTimestamps.storedTimestamp(incidence->uid());
    return stored != EasDatabase::TimestampInvalid
        && CalendarTimestamps::timeToStamp(incidence->lastModified()) <= stored
        && mTimestamps.eventTimestamp(incidence->uid()) > stored;
}

void CalendarLocalQuery::takeChanged(const Incidence::Ptr &incidence)
{
    if (isOlderPart(incidence))
        return;
    const bool isNew = !mServerIds.contains(incidence->uid());
    if (!incidence->recurrenceId().isValid()) {
        insertItem(incidence.staticCast<Event>(), isNew);
    } else if (isNew) {
        qCDebug(eas()) << "New exception:" << incidence->uid();
        mAddedExceptions.append(incidence);
    } else {
        qCDebug(eas()) << "Updated exception:" << incidence->uid();
        mUpdatedExceptions.append(incidence);
    }
}

void CalendarLocalQuery::insertItem(const Event::Ptr &event, bool isNew)
{
    if (isNew)
        qCDebug(eas()) << "new item:" << event->uid();
    EasCalendarItem item;
    if (!makeItem(event, true, item)) {
        qCWarning(eas()) << "failed to convert new item:" << event->uid();
        return;
    }
    // Its exceptions stay behind: to the next search, whoever makes it, each of them is a change.
    if (isNew && !mContext.exceptionsGoInSeries() && item.hasExceptions())
        item.setLocalTimestamp(stampBefore(event->uid()));
    (isNew ? mAdded : mUpdated).insert(event->uid(), item);
}

uint CalendarLocalQuery::stampBefore(const QString &uid) const
{
    uint oldest = mTimestamps.eventTimestamp(uid);
    if (const Event::Ptr series = mContext.calendar->event(uid)) {
        const Event::List parts = Event::List { series } + mContext.calendar->eventInstances(series);
        for (const Event::Ptr &part : parts)
            oldest = qMin(oldest, CalendarTimestamps::timeToStamp(part->lastModified()));
    }
    return qMax(1U, oldest) - 1;
}

bool CalendarLocalQuery::makeItem(const Event::Ptr &event, bool withExceptions, EasCalendarItem &item)
{
    if (!CalendarEventReader(mContext).convert(event, item, withExceptions)) {
        mLookupFailed = mLookupFailed || EasDatabase::instance()->lookupFailed();
        return false;
    }
    item.setItemChanged(true);
    item.setCollectionId(mServerFolderId);
    // Of the state that goes up: an edit while the upload is under way has another one.
    item.setLocalTimestamp(mTimestamps.eventTimestamp(event->uid()));
    mAttachments.applyAttachments(event, item);
    return true;
}

void CalendarLocalQuery::evaluateDeleted()
{
    const CalendarLocalChecks checks(mTimestamps);
    for (const Incidence::Ptr &incidence : qAsConst(mDeletedIncidences)) {
        // The store keeps what was deleted before the server knew it, and after it had learnt of it.
        if (!mServerIds.contains(incidence->uid()))
            continue;
        if (!checks.checkDeletedLocalItem(incidence)) {
            qCDebug(eas()) << "No local updates detected for deleted item:" << incidence->uid();
            continue;
        }
        if (incidence->recurrenceId().isValid()) {
            mDeletedExceptions.append(incidence);
        } else if (mContext.calendar->event(incidence->uid())) {
            qCDebug(eas()) << "deleted item is there again:" << incidence->uid();
        } else {
            const QString serverId = mServerIds.value(incidence->uid());
            if (serverId.isEmpty())
                qCWarning(eas()) << "No server ID for uid" << incidence->uid();
            else
                mDeleted.append(serverId);
            mDeletedUids.append(incidence->uid());
        }
    }
}

void CalendarLocalQuery::logCounts() const
{
    qCInfo(eas()) << "addedCalendarItems=" << mAdded.size() << "updatedCalendarItems=" << mUpdated.size()
                  << "deletedCalendarItems=" << mDeleted.size();
    qCInfo(eas()) << "addedExceptions=" << mAddedExceptions.size()
                  << "updatedExceptions=" << mUpdatedExceptions.size()
                  << "deletedExceptions=" << mDeletedExceptions.size();
}

void CalendarLocalQuery::processExceptionsChanges(const Incidence::List &exceptions, bool deleted)
{
    for (const Incidence::Ptr &incidence : exceptions) {
        if (!deleted && !mContext.calendar->event(incidence->uid(), incidence->recurrenceId())) {
            qCWarning(eas()) << "exception event is null for local id" << incidence->uid()
                             << "and recurrenceId" << incidence->recurrenceId();
            continue;
        }
        applyToSeries(incidence.staticCast<Event>(), deleted);
    }
}

bool CalendarLocalQuery::applyChangedException(
    const Event::Ptr &series, const Event::Ptr &exception, bool deleted, EasCalendarItem &item)
{
    const CalendarEventReader reader(mContext);
    if (!reader.applyException(series, exception, deleted, item, true))
        return false;
    if (deleted)
        return true;
    const QString start =
        CalendarOccurrence(series, exception->recurrenceId()).wire(mContext.protocolVersion());
    QList<EasCalendarItem> exceptions = item.exceptions();
    for (EasCalendarItem &candidate : exceptions) {
        if (candidate.exceptionStartTime() == start)
            mAttachments.applyAttachments(exception, candidate);
    }
    item.setExceptions(exceptions);
    return true;
}

void CalendarLocalQuery::applyToSeries(const Event::Ptr &exception, bool deleted)
{
    const QString uid = exception->uid();
    const Event::Ptr series = mContext.calendar->event(uid);
    if (mDeletedUids.contains(uid)) {
        qCDebug(eas()) << "skipping exception of the deleted event" << uid;
        return;
    }
    if (!series) {
        qCWarning(eas()) << "event is null for local id" << uid;
        return;
    }
    const CalendarOccurrence occurrence(series, exception->recurrenceId());
    if (!occurrence.isOfRules()) {
        qCWarning(eas()) << "exception of no occurrence stays on the device:" << uid
                         << exception->recurrenceId();
        return;
    }
    if (mAdded.contains(uid)) {
        if (!applyChangedException(series, exception, deleted, mAdded[uid]))
            qCWarning(eas()) << "failed to applyException" << uid << "to calendar item";
        return;
    }
    if (mUpdated.contains(uid)) {
        if (!applyChangedException(series, exception, deleted, mUpdated[uid]))
            qCWarning(eas()) << "failed to applyException" << uid << "to updated calendar item";
        return;
    }
    if (deleted && CalendarEventProperties::knownDeletions(*series).contains(occurrence.key()))
        return;
    // Where exceptions travel within their series, those that are left out would be taken for removed.
    EasCalendarItem item;
    if (!makeItem(copyOf(series), mContext.exceptionsGoInSeries(), item) || item.serverId().isEmpty()) {
        qCWarning(eas()) << "failed to convert item:" << uid;
        return;
    }
    if (!applyChangedException(series, exception, deleted, item)) {
        qCWarning(eas()) << "failed to applyException" << uid << "to updated calendar item";
        return;
    }
    mUpdated.insert(uid, item);
}

void CalendarLocalQuery::expectDeletions()
{
    // From 16.0 on a new series goes up without its exceptions, and they follow in an upload of their own.
    const QStringList uids =
        mUpdated.keys() + (mContext.exceptionsGoInSeries() ? mAdded.keys() : QStringList());
    for (const QString &uid : uids) {
        const Event::Ptr series = mContext.calendar->event(uid);
        Incidence::List exceptions;
        for (const Incidence::Ptr &exception : qAsConst(mDeletedExceptions)) {
            if (exception->uid() == uid)
                exceptions.append(exception);
        }
        if (series)
            mDeletions.expect(series, exceptions);
    }
}
