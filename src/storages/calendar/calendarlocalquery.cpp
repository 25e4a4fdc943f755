// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarlocalquery.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentuploads.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendareventreader.h"
#include "storages/calendar/calendarfreshuploads.h"
#include "storages/calendar/calendarlocalchecks.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimestamps.h"
#include "storages/uploadbudget.h"

#include <algorithm>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** A copy: reading an event for upload may take properties off it that have become wrong. */
Event::Ptr copyOf(const Incidence::Ptr &incidence)
{
    return Event::Ptr(static_cast<Event *>(incidence->clone()));
}

} // namespace

CalendarLocalQuery::CalendarLocalQuery(const CalendarStoreContext &context,
    const CalendarTimestamps &timestamps, CalendarFreshUploads &freshUploads, const QString &serverFolderId,
    const QString &notebookUid, UploadBudget *budget)
    : mContext(context)
    , mTimestamps(timestamps)
    , mFreshUploads(freshUploads)
    , mServerFolderId(serverFolderId)
    , mNotebookUid(notebookUid)
    , mBudget(budget)
{
}

bool CalendarLocalQuery::ask()
{
    if (mContext.storage->deletedIncidences(&mDeletedIncidences, QDateTime(), mNotebookUid)
        && mContext.storage->deletedIncidences(&mDeletedAnywhere, QDateTime()))
        return true;
    qCWarning(eas()) << "Failed to query deleted items";
    return false;
}

LocalQuery CalendarLocalQuery::evaluate()
{
    if (!readServerIds())
        return LocalQuery::MappingFailed;
    evaluatePresent();
    evaluateDeleted();
    evaluateMoved();
    logCounts();
    processExceptionsChanges(mAddedExceptions, false);
    processExceptionsChanges(mUpdatedExceptions, false);
    processExceptionsChanges(mDeletedExceptions, true);
    return mAnswer;
}

bool CalendarLocalQuery::readServerIds()
{
    const EasDatabase *database = EasDatabase::instance();
    const Lookup<QMap<QString, QString>> localIds = database->serverToLocalCalendarIds(mContext.accountId());
    const Lookup<QMap<QString, QString>> folders =
        database->serverCalendarIdToCollectionIds(mContext.accountId());
    if (!localIds || !folders)
        return false;
    for (auto row = localIds->cbegin(); row != localIds->cend(); ++row) {
        if (folders->value(row.key()) == mServerFolderId)
            mServerIds.insert(row.value(), row.key());
    }
    return true;
}

CalendarLocalQuery::State CalendarLocalQuery::classify(const Incidence::Ptr &incidence) const
{
    const CalendarLocalChecks checks(mTimestamps);
    if (!mServerIds.contains(incidence->uid()))
        return CalendarLocalChecks::isCandidate(incidence) ? State::New : State::Clean;
    if (mFreshUploads.isEdited(*incidence, mTimestamps.storedTimestamp(incidence->uid())))
        return State::Edited;
    return checks.checkNewLocalItem(incidence) && !isOlderPart(incidence) ? State::Edited : State::Clean;
}

void CalendarLocalQuery::evaluatePresent()
{
    const Incidence::List incidences = mContext.calendar->incidences(mNotebookUid);
    for (const Incidence::Ptr &incidence : incidences) {
        const State state = classify(incidence);
        if (state == State::Clean)
            qCDebug(eas()) << "No local updates detected for:" << incidence->uid();
        else
            takeChanged(copyOf(incidence), state == State::New);
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

void CalendarLocalQuery::takeChanged(const Incidence::Ptr &incidence, bool isNew)
{
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

bool CalendarLocalQuery::fits(const QString &uid) const
{
    return !mBudget || mBudget->take(uid);
}

void CalendarLocalQuery::insertItem(const Event::Ptr &event, bool isNew)
{
    if (!fits(event->uid()))
        return;
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
    if (!CalendarEventReader(mContext, mServerIds).convert(event, item, withExceptions))
        return false;
    item.setItemChanged(true);
    item.setCollectionId(mServerFolderId);
    // Of the state that goes up: an edit while the upload is under way has another one.
    item.setLocalTimestamp(mTimestamps.eventTimestamp(event->uid()));
    noteUpload(event->uid());
    applyAttachments(event, item);
    return true;
}

void CalendarLocalQuery::noteUpload(const QString &uid)
{
    const Event::Ptr series = mContext.calendar->event(uid);
    if (series)
        mFreshUploads.note(uid, mTimestamps.eventTimestamp(uid),
            Event::List { series } + mContext.calendar->eventInstances(series));
}

void CalendarLocalQuery::applyAttachments(const Event::Ptr &event, EasCalendarItem &item)
{
    // Up to 14.1 events of a server have no attachments.
    if (!mContext.exceptionsGoInSeries() && !CalendarAttachmentUploads::applyAttachments(event, item))
        mAnswer = LocalQuery::MappingFailed;
    if (mBudget)
        mBudget->note(item);
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
            takeDeleted(incidence->uid());
        }
    }
}

void CalendarLocalQuery::evaluateMoved()
{
    const QStringList uids = mServerIds.keys();
    for (const QString &uid : uids) {
        if (mContext.calendar->event(uid) || mDeletedUids.contains(uid))
            continue;
        if (!mContext.storage->loadSeries(uid)) {
            qCWarning(eas()) << "cannot look for an event in the other calendars:" << uid;
            if (mAnswer == LocalQuery::Answered)
                mAnswer = LocalQuery::StoreSilent;
        } else if (mContext.calendar->event(uid)) {
            qCInfo(eas()) << "event was moved to another calendar:" << uid;
            takeDeleted(uid);
        } else if (isDeletedAnywhere(uid)) {
            qCInfo(eas()) << "event was moved to another calendar and deleted there:" << uid;
            takeDeleted(uid);
        }
    }
}

bool CalendarLocalQuery::isDeletedAnywhere(const QString &uid) const
{
    return std::any_of(
        mDeletedAnywhere.cbegin(), mDeletedAnywhere.cend(), [&uid](const Incidence::Ptr &incidence) {
            return incidence->uid() == uid && !incidence->hasRecurrenceId();
        });
}

void CalendarLocalQuery::takeDeleted(const QString &uid)
{
    const QString serverId = mServerIds.value(uid);
    if (serverId.isEmpty())
        qCWarning(eas()) << "No server ID for uid" << uid;
    else
        mDeleted.append(serverId);
    mDeletedUids.append(uid);
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
    const CalendarEventReader reader(mContext, mServerIds);
    if (!reader.applyException(series, exception, deleted, item, true))
        return false;
    if (deleted)
        return true;
    const QString start =
        CalendarOccurrence(series, exception->recurrenceId()).wire(mContext.protocolVersion());
    QList<EasCalendarItem> exceptions = item.exceptions();
    for (EasCalendarItem &candidate : exceptions) {
        if (candidate.exceptionStartTime() == start)
            applyAttachments(exception, candidate);
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
    if (!fits(uid))
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
