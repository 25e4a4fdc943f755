// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarorigin.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarstorecontext.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

const QString originName = QStringLiteral("X-FENNEL-EAS-ORIGIN");

/** A copy has another uid; what was moved into the calendar of another account keeps its own. */
QString ownPrefix(const Event &event, EasAccountId accountId)
{
    return QStringLiteral("%1 %2 ").arg(event.uid()).arg(accountId);
}

} // namespace

void CalendarOrigin::setServerId(Event &event, EasAccountId accountId, const QString &serverId)
{
    CalendarEventProperties::setText(event, originName, ownPrefix(event, accountId) + serverId);
}

QString CalendarOrigin::serverId(const Event &event, EasAccountId accountId)
{
    const QString origin = CalendarEventProperties::text(event, originName);
    const QString prefix = ownPrefix(event, accountId);
    return origin.startsWith(prefix) ? origin.mid(prefix.size()) : QString();
}

bool CalendarOrigin::removeStrays(const CalendarStoreContext &context, const QString &notebookUid)
{
    EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> known = database->localToServerCalendarIds(context.accountId());
    if (database->lookupFailed())
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
        if (!event || event->hasRecurrenceId() || known.contains(event->uid())
            || serverId(*event, context.accountId()).isEmpty())
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
