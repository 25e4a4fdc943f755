// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QHash>
#include <QStringList>

struct CalendarStoreContext;

/**
 * The deleted occurrences that are on their way to the server.
 *
 * Once the server has taken them, the series remembers that it knows them, so that they do not go up again.
 * An exception that was deleted leaves an exception date behind: to the server its occurrence is gone, and
 * without it the device would show what the series itself has there.
 */
class CalendarOccurrenceDeletions
{
public:
    explicit CalendarOccurrenceDeletions(const CalendarStoreContext &context);

    /** What an upload of this series says; what was expected of it before is forgotten. */
    void expect(
        const KCalendarCore::Event::Ptr &series, const KCalendarCore::Incidence::List &deletedExceptions);

    /**
     * Notes in the series, which are loaded, what the server has acknowledged. True if something is to be
     * saved. The times of change stay as they are.
     */
    bool settle(const QStringList &uids);
    /** After the save: erases the settled exceptions from what the store remembers as deleted. */
    bool purge();

private:
    struct Expected
    {
        QStringList keys;
        KCalendarCore::Incidence::List exceptions;
    };

    bool settleSeries(const KCalendarCore::Event::Ptr &series, const Expected &expected) const;

    const CalendarStoreContext &mContext;
    QHash<QString, Expected> mExpected;
    KCalendarCore::Incidence::List mSettled;
};
