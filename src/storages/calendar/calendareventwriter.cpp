// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventwriter.h"

#include "application/base/logging.h"
#include "easitems/eascalendaritem.h"
#include "easitems/eastimezone.h"
#include "storages/calendar/calendareventfields.h"
#include "storages/calendar/calendarorigin.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendartimes.h"
#include "storages/calendar/calendartimestamps.h"

#include <KCalendarCore/CalFormat>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** Writes into a copy first, so that a bad item leaves the event as it was. */
bool isWritable(const Event::Ptr &event, const EasCalendarItem &item, const QTimeZone &zone)
{
    const Event::Ptr copy(event->clone());
    if (!CalendarEventFields::check({ copy, item, zone }))
        return false;
    if (!item.hasExceptions() || CalendarExceptions::areAcceptable(copy, item, zone))
        return true;
    qCWarning(eas()) << "Failed handling exceptions";
    return false;
}

/** An item that brings neither start nor zone leaves the event in its own. */
QTimeZone zoneForUpdate(const Event &event, const EasCalendarItem &item)
{
    const bool bringsZone =
        !item.timezone().isEmpty() || item.parameterHasBeenChanged(EasCalendarItem::StartTimeParameter);
    return bringsZone || !event.dtStart().isValid() ? CalendarEventWriter::getTimeZone(item.timezone(), item)
                                                    : CalendarTimes::zone(event);
}

} // namespace

CalendarEventWriter::CalendarEventWriter(const CalendarStoreContext &context, Incidence::List *deleted)
    : mContext(context)
    , mExceptions(context, deleted)
{
}

QTimeZone CalendarEventWriter::getTimeZone(const QString &text, const EasCalendarItem &item)
{
    EasTimeZone zone;
    if (text.isEmpty() || !zone.parse(text.toLatin1()))
        return QTimeZone::utc();
    const QTimeZone found = zone.timeZone(item.startTime(), item.endTime());
    qCDebug(eas()) << "QTimeZone:" << found;
    return found;
}

bool CalendarEventWriter::isDeleted(const QString &uid) const
{
    if (mContext.calendar->deletedEvent(uid))
        return true;
    Incidence::List deleted;
    mContext.storage->deletedIncidences(&deleted, QDateTime());
    return std::any_of(deleted.cbegin(), deleted.cend(), [&uid](const Incidence::Ptr &incidence) {
        return incidence->uid() == uid && !incidence->hasRecurrenceId();
    });
}

bool CalendarEventWriter::storeEvent(EasCalendarItem &item, const QString &folder, bool isNew,
    const QMap<QString, QString> &mapping, bool &skipped) const
{
    skipped = false;
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    if (item.serverId().isEmpty()) {
        qCWarning(eas()) << "Unable to store item: no serverId associated with item:" << item.localId();
        return false;
    }
    return isNew ? addEvent(item, folder) : updateEvent(item, folder, mapping, skipped);
}

bool CalendarEventWriter::addEvent(EasCalendarItem &item, const QString &folder) const
{
    const QTimeZone zone = getTimeZone(item.timezone(), item);
    const Event::Ptr event(new Event);
    event->setUid(KCalendarCore::CalFormat::createUniqueId());
    if (!isWritable(event, item, zone))
        return false;
    event->startUpdates();
    if (item.createdTimestamp() != 0)
        event->setCreated(QDateTime::fromMSecsSinceEpoch(item.createdTimestamp(), Qt::UTC));
    CalendarOrigin::setServerId(*event, mContext.accountId(), item.serverId());
    CalendarEventFields::write({ event, item, zone });
    event->endUpdates();
    if (!mContext.calendar->addEvent(event, folder)) {
        qCWarning(eas()) << "Failed to add event" << item.serverId();
        return false;
    }
    item.setLocalId(event->uid());
    event->startUpdates();
    const bool written = writeExceptions(event, item, folder, zone);
    event->endUpdates();
    CalendarTimestamps::markAsOwnWrite(*event);
    if (written)
        return true;
    mContext.calendar->deleteEventInstances(event);
    mContext.calendar->deleteEvent(event);
    return false;
}

bool CalendarEventWriter::updateEvent(
    EasCalendarItem &item, const QString &folder, const QMap<QString, QString> &mapping, bool &skipped) const
{
    const auto localId = mapping.constFind(item.serverId());
    if (localId == mapping.constEnd()) {
        qCWarning(eas()) << "Unable to store item: mapping (" << mapping.size() << ") doesn't contain"
                         << item.serverId() << ", no localId associated with item:" << item.localId();
        return false;
    }
    const Event::Ptr event = mContext.calendar->event(*localId);
    if (!event && isDeleted(*localId)) {
        skipped = true;
        qCInfo(eas()) << "Skipping update of already-deleted event:" << item.localId()
                      << "with server id:" << item.serverId() << "and local id:" << *localId;
        return true;
    }
    if (!event) {
        qCWarning(eas()) << "Cannot update non-existent event:" << item.serverId()
                         << "with local id:" << *localId;
        return false;
    }
    item.setLocalId(*localId);
    const QTimeZone zone = zoneForUpdate(*event, item);
    if (!isWritable(event, item, zone))
        return false;
    event->startUpdates();
    CalendarEventFields::write({ event, item, zone });
    const bool written = writeExceptions(event, item, folder, zone);
    event->endUpdates();
    CalendarTimestamps::markAsOwnWrite(*event);
    return written;
}

bool CalendarEventWriter::writeExceptions(
    const Event::Ptr &event, const EasCalendarItem &item, const QString &folder, const QTimeZone &zone) const
{
    if (!item.parameterHasBeenChanged(EasCalendarItem::ExceptionsParameter))
        return true;
    CalendarExceptions::clear(event);
    if (!event->recurs())
        return mExceptions.removeExceptions(event);
    if (mExceptions.handleExceptions(event, item, folder, zone))
        return true;
    qCWarning(eas()) << "Failed handling exceptions";
    return false;
}
