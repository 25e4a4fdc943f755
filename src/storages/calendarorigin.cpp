// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendarorigin.h"

#include "application/easdatabase.h"
#include "application/logging.h"
#include "storages/calendarattachmentservice.h"
#include "storages/calendareventproperties.h"
#include "storages/calendarstorecontext.h"

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

const QString originName = QStringLiteral("X-FENNEL-EAS-ORIGIN");

} // namespace

void CalendarOrigin::setServerId(Event &event, const QString &serverId)
{
    CalendarEventProperties::setText(event, originName, event.uid() + QLatin1Char(' ') + serverId);
}

QString CalendarOrigin::serverId(const Event &event)
{
    const QString origin = CalendarEventProperties::text(event, originName);
    const QString ownUid = event.uid() + QLatin1Char(' ');
    return origin.startsWith(ownUid) ? origin.mid(ownUid.size()) : QString();
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
        if (!event || event->hasRecurrenceId() || known.contains(event->uid()) || serverId(*event).isEmpty())
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
