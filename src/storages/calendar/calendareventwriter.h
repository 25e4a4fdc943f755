// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/calendarexceptions.h"

#include <KCalendarCore/Event>

#include <QMap>
#include <QString>
#include <QTimeZone>

struct CalendarStoreContext;
class EasCalendarItem;

/**
 * Writes an item of the server into an event of the device's calendar.
 *
 * The fields go over in the order of a table, each only if the item brings it. An item that cannot be
 * understood is refused before the event is touched. The notebook has to be loaded; nothing is saved here.
 * Main thread only.
 */
class CalendarEventWriter
{
public:
    /** Exceptions that an update deletes are appended to the list, to be purged after the save. */
    CalendarEventWriter(const CalendarStoreContext &context, KCalendarCore::Incidence::List *deleted);

    /**
     * Stores one item in a notebook; the mapping leads from server to local identifiers. A new event's
     * identifier is written into the item. An update of an event that the user has deleted sets skipped.
     */
    bool storeEvent(EasCalendarItem &item, const QString &folder, bool isNew,
        const QMap<QString, QString> &mapping, bool &skipped) const;

    /** UTC for an item without a zone, and for one whose zone cannot be read. */
    static QTimeZone getTimeZone(const QString &text, const EasCalendarItem &item);

private:
    /** Whether the store knows the event as deleted, by this process or another. */
    bool isDeleted(const QString &uid) const;
    bool addEvent(EasCalendarItem &item, const QString &folder) const;
    bool updateEvent(EasCalendarItem &item, const QString &folder, const QMap<QString, QString> &mapping,
        bool &skipped) const;
    bool writeExceptions(const KCalendarCore::Event::Ptr &event, const EasCalendarItem &item,
        const QString &folder, const QTimeZone &zone) const;

    const CalendarStoreContext &mContext;
    CalendarExceptions mExceptions;
};
