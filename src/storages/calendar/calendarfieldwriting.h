// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QTimeZone>

class EasCalendarItem;

/**
 * One item's fields on their way into an event, by a table whose order matters: whether a time is a day, what
 * a rule starts with, what a status was before. Only what the item brings is written; its exceptions are not
 * among it. Made for one call.
 */
struct CalendarFieldWriting
{
    /** Those that an item can be refused for, with what they depend on, or all. */
    enum Fields { CheckedFields, AllFields };

    const KCalendarCore::Event::Ptr &event;
    const EasCalendarItem &item;
    const QTimeZone &zone;

    /** False, logged, at the first field that makes no sense. */
    bool write(Fields which) const;
};
