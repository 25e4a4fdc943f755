// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/event.h"
#include "simulator/itemshape.h"

namespace Simulator {

/** What writing and reading the details of an event depends on. */
struct EventContext
{
    int version = 0;
    EventZone zone;
    ItemShape shape; ///< for writing
    int *lastAttachment = nullptr; ///< for reading
};

/**
 * A detail of an event: its element, the versions that have it, and the ways between the two.
 *
 * The one table of them serves the series and its exceptions, replies and uploads.
 */
struct EventField
{
    /** What becomes of it when an upload leaves it out. */
    enum Absence { Removed, Kept };
    /** Who may set it. */
    enum Owner { Anyone, Server, DeviceUntil141 };

    const char *name; ///< as EventException::own has it
    const char *element;
    const char *elementFrom160; ///< null: the same
    int firstVersion;
    Absence absence;
    Owner owner;
    bool (*read)(const WbxmlNode &node, EventDetails &details, const EventContext &context);
    /** Of an event without the detail it may be none. */
    QVector<WbxmlNode> (*write)(
        const QString &element, const EventDetails &details, const EventContext &context);
    void (*copy)(const EventDetails &from, EventDetails &to);
    bool (*isSame)(const EventDetails &one, const EventDetails &other);

    QString nameText() const { return QLatin1String(name); }
    QString elementAt(int version) const;
};

namespace EventFields {

/** In the order of replies; what others are read by comes before them. */
const QVector<EventField> &all();
const EventField *named(const QString &name);
/** The field whose element has that name at that version, or null. */
const EventField *ofElement(const QString &element, int version);

/** A time on the wire. All-day events begin at midnight of their zone, from 16.0 on they have dates alone. */
QString wireTime(const QDateTime &time, bool allDay, const EventContext &context);
/** The way back; invalid if the text is no time. The time of day of an all-day event is left to the caller.
 */
QDateTime modelTime(const QString &text, bool allDay, const EventContext &context);

} // namespace EventFields
} // namespace Simulator
