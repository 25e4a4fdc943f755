// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "easitems/eascalendaritem.h"

#include <KCalendarCore/Event>

#include <QMap>

#include <optional>

struct CalendarStoreContext;

/**
 * Makes an item for upload from an event of the device.
 *
 * An exception is an item inside that of its series. Occurrences that the series' exception dates exclude are
 * deleted exceptions of it; up to 14.1 an upload replaces all exceptions, later only what is new goes up.
 */
class CalendarEventReader
{
public:
    /** Server identifiers are looked up in the mapping. */
    explicit CalendarEventReader(const CalendarStoreContext &context);
    /** With those of one folder, by local identifiers. */
    CalendarEventReader(const CalendarStoreContext &context, const QMap<QString, QString> &serverIds);

    /** The item has no server id if the mapping does not know the event. False, logged, if it cannot go up.
     */
    bool convert(const KCalendarCore::Event::Ptr &event, EasCalendarItem &item, bool withExceptions) const;

    /**
     * Adds an exception to the item of its series, or marks the one that is there. A deleted one stands for
     * an occurrence that is to vanish; changed ones go up on their own from 16.0 on.
     */
    bool applyException(const KCalendarCore::Event::Ptr &series, const KCalendarCore::Event::Ptr &event,
        bool deleted, EasCalendarItem &item, bool changed) const;

private:
    bool applySeries(
        const KCalendarCore::Event::Ptr &event, EasCalendarItem &item, bool withExceptions) const;
    /** The end of an all-day series is the start of its last day. */
    void applyLastDay(const KCalendarCore::Event &event, EasCalendarItem &item) const;
    /** Exceptions that the device has no place for: an upload that left them out would remove them. */
    void applyReceived(const KCalendarCore::Event::Ptr &event, EasCalendarItem &item) const;
    void applyDeletions(const KCalendarCore::Event::Ptr &event, EasCalendarItem &item) const;

    Lookup<QString> serverIdOf(const QString &uid) const;

    const CalendarStoreContext &mContext;
    std::optional<QMap<QString, QString>> mServerIds;
};
