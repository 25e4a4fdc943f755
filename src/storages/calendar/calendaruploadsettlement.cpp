// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaruploadsettlement.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendarattachmentuploads.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarstorecontext.h"

#include <algorithm>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

CalendarUploadSettlement::CalendarUploadSettlement(const CalendarStoreContext &context)
    : mContext(context)
{
}

bool CalendarUploadSettlement::settle(const QList<EasCalendarItem> &added,
    const QList<EasCalendarItem> &updated, const QStringList &deletedServerIds)
{
    if (!readDeleted() || !collectGone(deletedServerIds))
        return false;
    bool changed = false;
    for (const EasCalendarItem &item : added + updated) {
        if (!settleAttachments(item))
            return false;
    }
    for (const EasCalendarItem &item : added)
        changed =
            (mContext.exceptionsGoInSeries() ? settleDeletions(item) : forgetDeletions(item)) || changed;
    for (const EasCalendarItem &item : updated)
        changed = settleDeletions(item) || changed;
    if (changed && !mContext.storage->save()) {
        qCWarning(eas()) << "Failed to save";
        return false;
    }
    return purge();
}

bool CalendarUploadSettlement::readDeleted()
{
    if (mContext.storage->deletedIncidences(&mDeleted))
        return true;
    qCWarning(eas()) << "Failed to query deleted items";
    return false;
}

bool CalendarUploadSettlement::settleAttachments(const EasCalendarItem &item) const
{
    const Event::Ptr series = mContext.calendar->event(item.localId());
    if (!series || mContext.exceptionsGoInSeries())
        return true;
    const QList<EasCalendarItem> sent = item.exceptions();
    return CalendarAttachmentUploads::settle(CalendarAttachmentService::eventKey(*series), item.attachments())
        && std::all_of(sent.cbegin(), sent.cend(), [this, &series](const EasCalendarItem &exception) {
               return exception.attachments().isEmpty() || settleExceptionFiles(series, exception);
           });
}

bool CalendarUploadSettlement::settleExceptionFiles(
    const Event::Ptr &series, const EasCalendarItem &sentException) const
{
    const Event::List exceptions = mContext.calendar->eventInstances(series);
    for (const Event::Ptr &exception : exceptions) {
        const CalendarOccurrence occurrence(series, exception->recurrenceId());
        if (occurrence.wire(mContext.protocolVersion()) == sentException.exceptionStartTime()
            && !CalendarAttachmentUploads::settle(
                CalendarAttachmentService::eventKey(*exception), sentException.attachments()))
            return false;
    }
    return true;
}

QList<CalendarOccurrence> CalendarUploadSettlement::sentDeletions(
    const Event::Ptr &series, const EasCalendarItem &item, Incidence::List &exceptions) const
{
    QSet<QString> sent;
    const QList<EasCalendarItem> parts = item.exceptions();
    for (const EasCalendarItem &part : parts) {
        if (part.exceptionDeleted() == 1)
            sent.insert(part.exceptionStartTime());
    }
    QList<CalendarOccurrence> occurrences;
    if (sent.isEmpty())
        return occurrences;
    const QList<CalendarOccurrence> excluded = CalendarOccurrence::excludedFrom(series);
    for (const CalendarOccurrence &occurrence : excluded) {
        if (sent.contains(occurrence.wire(mContext.protocolVersion())))
            occurrences.append(occurrence);
    }
    for (const Incidence::Ptr &exception : mDeleted) {
        if (exception->uid() != series->uid() || !exception->hasRecurrenceId())
            continue;
        const CalendarOccurrence occurrence(series, exception->recurrenceId());
        if (!sent.contains(occurrence.wire(mContext.protocolVersion())))
            continue;
        occurrences.append(occurrence);
        exceptions.append(exception);
    }
    return occurrences;
}

bool CalendarUploadSettlement::forgetDeletions(const EasCalendarItem &item) const
{
    const Event::Ptr series = mContext.calendar->event(item.localId());
    if (!series || CalendarEventProperties::knownDeletions(*series).isEmpty())
        return false;
    const QDateTime modified = series->lastModified();
    series->startUpdates();
    CalendarEventProperties::setKnownDeletions(*series, {});
    series->endUpdates();
    series->setLastModified(modified);
    return true;
}

bool CalendarUploadSettlement::settleDeletions(const EasCalendarItem &item)
{
    const Event::Ptr series = mContext.calendar->event(item.localId());
    if (!series || !series->recurs())
        return false;
    Incidence::List exceptions;
    const QList<CalendarOccurrence> deletions = sentDeletions(series, item, exceptions);
    const QStringList known = CalendarEventProperties::knownDeletions(*series);
    QStringList keys;
    for (const CalendarOccurrence &occurrence : CalendarOccurrence::excludedFrom(series)) {
        if (known.contains(occurrence.key()))
            keys.append(occurrence.key());
    }
    for (const CalendarOccurrence &deletion : deletions)
        keys.append(deletion.key());
    keys.removeDuplicates();
    keys.sort();
    mGoneExceptions += exceptions;
    if (exceptions.isEmpty() && keys == known)
        return false;
    const QDateTime modified = series->lastModified();
    series->startUpdates();
    for (const CalendarOccurrence &deletion : deletions) {
        // The user may have made another exception there in the meantime.
        if (!deletion.isExcluded() && !mContext.calendar->event(series->uid(), deletion.recurrenceId()))
            deletion.exclude();
    }
    CalendarEventProperties::setKnownDeletions(*series, keys);
    series->endUpdates();
    series->setLastModified(modified);
    return true;
}

bool CalendarUploadSettlement::collectGone(const QStringList &deletedServerIds)
{
    if (deletedServerIds.isEmpty())
        return true;
    const Lookup<QMap<QString, QString>> localIds =
        EasDatabase::instance()->serverToLocalCalendarIds(mContext.accountId());
    if (!localIds)
        return false;
    QSet<QString> uids;
    for (const QString &serverId : deletedServerIds) {
        if (localIds->contains(serverId))
            uids.insert(localIds->value(serverId));
    }
    for (const Incidence::Ptr &incidence : qAsConst(mDeleted)) {
        if (uids.contains(incidence->uid()))
            mGoneEvents.append(incidence);
    }
    return true;
}

bool CalendarUploadSettlement::purge()
{
    // While its rows stay, an event that comes back under the same identifier would pass for one without its
    // files.
    if (!CalendarAttachmentService::forget(mGoneEvents))
        return false;
    const Incidence::List gone = mGoneExceptions + mGoneEvents;
    if (!gone.isEmpty() && !mContext.storage->purgeDeletedIncidences(gone))
        qCWarning(eas()) << "cannot erase what was deleted";
    return true;
}
