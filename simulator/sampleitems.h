// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"
#include "simulator/event.h"

namespace Simulator {

/** Events and contacts as people have them, for demonstrations. */
namespace SampleItems {

/**
 * Around that day: a weekly series with an occurrence that is moved and one that is deleted, an all-day
 * event, one in another time zone, a meeting with attendees.
 */
QVector<Event> events(const QDate &today);
/** One of them has a picture. The resources have to be there. */
QVector<Contact> contacts();

} // namespace SampleItems
} // namespace Simulator
