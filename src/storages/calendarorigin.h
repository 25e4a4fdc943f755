// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QString>

struct CalendarStoreContext;

/**
 * Which item of the server an event was made for, as the event itself tells.
 *
 * The mapping database is written after the store. An event that came from the server and has no row there
 * was left by an interruption: it would pass for one that the user made, and come a second time as well.
 */
namespace CalendarOrigin {

void setServerId(KCalendarCore::Event &event, const QString &serverId);
/** Empty for an event that did not come from the server, and for a copy that the user made of one. */
QString serverId(const KCalendarCore::Event &event);

/** Erases the events of a notebook that an interruption left; the server sends them again. */
bool removeStrays(const CalendarStoreContext &context, const QString &notebookUid);

} // namespace CalendarOrigin
