// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <KCalendarCore/Event>

#include <QString>

/**
 * Which item of the server an event was made for, as the event itself tells.
 *
 * The mapping database is written after the store. An event that came from the server and has no row there
 * was left by an interruption: it would pass for one that the user made, and come a second time as well.
 */
namespace CalendarOrigin {

void setServerId(KCalendarCore::Event &event, EasAccountId accountId, const QString &serverId);
/**
 * Empty for an event that did not come from the account's server, be it a copy that the user made of one or
 * an event that the user moved here from another account.
 */
QString serverId(const KCalendarCore::Event &event, EasAccountId accountId);

} // namespace CalendarOrigin
