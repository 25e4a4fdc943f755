// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Incidence>

class CalendarTimestamps;

/**
 * Whether what the store reports as new, modified or deleted is a change of the user's that the server is to
 * learn of. The engine's own writes show there, too.
 *
 * The timestamps have to be those of the incidence's notebook.
 */
class CalendarLocalChecks
{
public:
    explicit CalendarLocalChecks(const CalendarTimestamps &timestamps);

    /** Whether it may go up at all. */
    static bool isCandidate(const KCalendarCore::Incidence::Ptr &incidence);

    bool checkNewLocalItem(const KCalendarCore::Incidence::Ptr &incidence) const;
    bool checkUpdatedLocalItem(const KCalendarCore::Incidence::Ptr &incidence) const;
    bool checkDeletedLocalItem(const KCalendarCore::Incidence::Ptr &incidence) const;

private:
    const CalendarTimestamps &mTimestamps;
};
