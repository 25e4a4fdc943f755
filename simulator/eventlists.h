// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/eventfields.h"

namespace Simulator {

/** The details of an event that are lists, as EventField wants them. */
namespace EventLists {

bool readAttendees(const WbxmlNode &node, EventDetails &details, const EventContext &context);
QVector<WbxmlNode> writeAttendees(
    const QString &element, const EventDetails &details, const EventContext &context);

bool readCategories(const WbxmlNode &node, EventDetails &details, const EventContext &context);
QVector<WbxmlNode> writeCategories(
    const QString &element, const EventDetails &details, const EventContext &context);

/** An upload adds and deletes. */
bool readAttachments(const WbxmlNode &node, EventDetails &details, const EventContext &context);
QVector<WbxmlNode> writeAttachments(
    const QString &element, const EventDetails &details, const EventContext &context);

} // namespace EventLists
} // namespace Simulator
