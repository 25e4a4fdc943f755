// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarorigin.h"

#include "storages/calendar/calendareventproperties.h"

using KCalendarCore::Event;

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
