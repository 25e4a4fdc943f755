// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"

#include <QList>
#include <QStringList>

struct CalendarStoreContext;

/**
 * Gives items the stamps of their events, so that the mapping knows the state in which the server and the
 * device agree.
 */
namespace CalendarItemStamps {

/** Items whose stamp is known already keep it. False, logged, if a folder cannot be loaded. */
bool update(const CalendarStoreContext &context, const QStringList &serverFolderIds,
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated);

} // namespace CalendarItemStamps
