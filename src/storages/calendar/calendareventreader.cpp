// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventreader.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/eastimezone.h"
#include "storages/calendar/calendareventfields.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarmidnight.h"
#include "storages/calendar/calendaroccurrence.h"
#include "storages/calendar/calendarreceivedrule.h"
#include "storages/calendar/calendarrecurrence.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimes.h"

using KCalendarCore::Event;

CalendarEventReader::CalendarEventReader(const CalendarStoreContext &context)
    : mContext(context)
{
}

CalendarEventReader::CalendarEventReader(
    const CalendarStoreContext &context, const QMap<QString, QString> &serverIds)
    : mContext(context)
    , mServerIds(serverIds)
{
}

Lookup<QString> CalendarEventReader::serverIdOf(const QString &uid) const
{
    return mServerIds ? Lookup<QString>(mServerIds->value(uid))
                      : EasDatabase::instance()->localToServerCalendarId(mContext.accountId(), uid);
}

bool CalendarEventReader::convert(const Event::Ptr &event, EasCalendarItem &item, bool withExceptions) const
{
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    if (event->uid().isEmpty()) {
        qCWarning(eas()) << "No UID";
        return false;
    }
    const Lookup<QString> serverId = serverIdOf(event->uid());
    if (!serverId)
        return false;
    if (serverId->isEmpty())
        qCDebug(eas()) << "No server ID:" << event->uid();
    item.setServerId(*serverId);
    item.setLocalId(event->uid());
    item.setLocalStorageAccountId(mContext.accountId());
    CalendarEventFields::read({ *event, *event, mContext.protocolVersion(), item });
    const auto midnight = CalendarMidnight::of(*event);
    item.setTimezone(midnight ? midnight->block().toLatin1() : EasTimeZone::encode(*event));
    return !event->recurs() || applySeries(event, item, withExceptions);
}

bool CalendarEventReader::applySeries(
    const Event::Ptr &event, EasCalendarItem &item, bool withExceptions) const
{
    if (!event->recurrence()) {
        qCWarning(eas()) << "source event's recurrence is null";
        return false;
    }
    if (!CalendarRecurrence::applyRecurrence(event, item, false)) {
        qCWarning(eas()) << "Failed encoding recurrence";
        return false;
    }
    applyLastDay(*event, item);
    if (!withExceptions)
        return true;
    const Event::List exceptions = mContext.calendar->eventInstances(event);
    for (const Event::Ptr &exception : exceptions) {
        // Servers refuse a series for an exception that a change of its rule has left behind.
        if (!CalendarOccurrence(event, exception->recurrenceId()).isOfRules()) {
            qCWarning(eas()) << "exception of no occurrence stays on the device:" << event->uid()
                             << exception->recurrenceId();
            continue;
        }
        if (!applyException(event, exception, false, item, false)) {
            qCWarning(eas()) << "failed to apply exception" << event->uid();
            return false;
        }
    }
    applyDeletions(event, item);
    if (mContext.exceptionsGoInSeries())
        applyReceived(event, item);
    return true;
}

void CalendarEventReader::applyReceived(const Event::Ptr &event, EasCalendarItem &item) const
{
    QSet<QString> known;
    const QList<EasCalendarItem> exceptions = item.exceptions();
    for (const EasCalendarItem &exception : exceptions)
        known.insert(exception.exceptionStartTime());
    const QList<EasCalendarItem> received = CalendarReceivedRule(event).exceptions();
    for (EasCalendarItem exception : received) {
        exception.setServerId(item.serverId());
        exception.setLocalId(item.localId());
        if (!known.contains(exception.exceptionStartTime()))
            item.appendException(exception);
    }
}

void CalendarEventReader::applyLastDay(const Event &event, EasCalendarItem &item) const
{
    EasRecurrenceContainer recurrence = item.recurrence();
    if (!event.allDay() || recurrence.until().isEmpty())
        return;
    // The rule has a day without a zone; the series ends at its midnight where it is.
    const QDate last = event.recurrence()->defaultRRuleConst()->endDt().date();
    recurrence.setUntil(CalendarTimes::dayText(event, last, mContext.protocolVersion()));
    item.setRecurrence(recurrence);
}

void CalendarEventReader::applyDeletions(const Event::Ptr &event, EasCalendarItem &item) const
{
    // To a server that does not have the series, what it was told in another folder is new.
    const QStringList known =
        item.serverId().isEmpty() ? QStringList() : CalendarEventProperties::knownDeletions(*event);
    const QList<CalendarOccurrence> deletions = CalendarOccurrence::excludedFrom(event);
    for (const CalendarOccurrence &deletion : deletions) {
        const bool isKnown = known.contains(deletion.key());
        // An exception event at an excluded moment is what the device shows.
        if ((isKnown && !mContext.exceptionsGoInSeries())
            || mContext.calendar->event(event->uid(), deletion.recurrenceId()))
            continue;
        EasCalendarItem exception;
        exception.setServerId(item.serverId());
        exception.setLocalId(item.localId());
        exception.setItemChanged(!isKnown);
        exception.setExceptionDeleted(1);
        exception.setExceptionStartTime(deletion.wire(mContext.protocolVersion()));
        item.appendException(exception);
    }
}

bool CalendarEventReader::applyException(const Event::Ptr &series, const Event::Ptr &event, bool deleted,
    EasCalendarItem &item, bool changed) const
{
    if (!event->recurrenceId().isValid()) {
        qCWarning(eas()) << "No recurrence ID:" << event->uid();
        return false;
    }
    const QString start = CalendarOccurrence(series, event->recurrenceId()).wire(mContext.protocolVersion());
    if (start.isEmpty()) {
        qCWarning(eas()) << "No recurrence string:" << event->uid();
        return false;
    }
    QList<EasCalendarItem> exceptions = item.exceptions();
    for (EasCalendarItem &known : exceptions) {
        if (known.exceptionStartTime() != start)
            continue;
        known.setItemChanged(true);
        item.setExceptions(exceptions);
        qCDebug(eas()) << "exception" << start << "already applied to the calendar item" << item.localId();
        return true;
    }
    EasCalendarItem exception;
    exception.setItemChanged(changed);
    exception.setExceptionDeleted(deleted ? 1 : 0);
    exception.setExceptionStartTime(start);
    exception.setServerId(item.serverId());
    exception.setLocalId(item.localId());
    CalendarEventFields::readException({ *event, *series, mContext.protocolVersion(), exception });
    exception.setUid(item.uid());
    if (mContext.exceptionsGoInSeries()) // Otherwise they are its own.
        exception.setAttachments(item.attachments());
    item.appendException(exception);
    return true;
}
