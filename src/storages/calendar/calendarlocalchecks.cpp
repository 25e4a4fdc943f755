// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarlocalchecks.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendartimestamps.h"

using KCalendarCore::Incidence;

namespace {

bool isUploadable(const Incidence::Ptr &incidence, const char *text, const char *withoutUid)
{
    const char *reason = nullptr;
    if (incidence->type() != Incidence::TypeEvent)
        reason = "due to non-event type";
    else if (incidence->isReadOnly())
        reason = "due to read-only";
    else if (incidence->uid().isEmpty())
        reason = withoutUid;
    if (reason)
        qCDebug(eas()) << text << incidence->uid() << reason;
    return !reason;
}

} // namespace

CalendarLocalChecks::CalendarLocalChecks(const CalendarTimestamps &timestamps)
    : mTimestamps(timestamps)
{
}

bool CalendarLocalChecks::isCandidate(const Incidence::Ptr &incidence)
{
    return isUploadable(incidence, "Skipping locally added item:", "due to empty local id");
}

bool CalendarLocalChecks::checkNewLocalItem(const Incidence::Ptr &incidence) const
{
    const char text[] = "Skipping locally added item:";
    if (!isCandidate(incidence))
        return false;
    const uint stamp = mTimestamps.storedTimestamp(incidence->uid());
    if (stamp == EasDatabase::TimestampInvalid)
        return true;
    const bool unchanged = stamp == mTimestamps.eventTimestamp(incidence->uid());
    if (!incidence->recurrenceId().isValid()) {
        if (unchanged)
            qCDebug(eas()) << text << incidence->uid() << "due to modified timestamp match";
    } else if (!unchanged) {
        qCDebug(eas()) << "Updated exception:" << incidence->uid()
                       << "recurrenceId=" << incidence->recurrenceId();
    }
    return !unchanged;
}

bool CalendarLocalChecks::checkUpdatedLocalItem(const Incidence::Ptr &incidence) const
{
    if (!isUploadable(incidence, "Skipping locally updated item:", "due to empty UID"))
        return false;
    const uint stamp = mTimestamps.storedTimestamp(incidence->uid());
    if (stamp == EasDatabase::TimestampInvalid) {
        qCCritical(eas()) << "No timestamp in DB for locally updated item:" << incidence->uid();
        return false;
    }
    if (stamp == mTimestamps.eventTimestamp(incidence->uid())) {
        qCDebug(eas()) << "No local updates detected for locally updated item:" << incidence->uid();
        return false;
    }
    return true;
}

bool CalendarLocalChecks::checkDeletedLocalItem(const Incidence::Ptr &incidence) const
{
    if (!isUploadable(incidence, "Skipping locally deleted item:", "due to empty UID"))
        return false;
    if (mTimestamps.storedTimestamp(incidence->uid()) == EasDatabase::TimestampInvalid) {
        qCCritical(eas()) << "No timestamp in DB for locally deleted item:" << incidence->uid();
        return false;
    }
    return true;
}
