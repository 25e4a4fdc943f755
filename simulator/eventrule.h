// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

#include <QDateTime>

#include <optional>

namespace Simulator {

/** How an event repeats, in the terms of the protocol. A value type. */
struct EventRule
{
    enum Type {
        Daily = 0,
        Weekly = 1,
        MonthlyByDay = 2,
        MonthlyByWeekDay = 3,
        YearlyByDay = 5,
        YearlyByWeekDay = 6
    };
    enum Days {
        Sunday = 1,
        Monday = 2,
        Tuesday = 4,
        Wednesday = 8,
        Thursday = 16,
        Friday = 32,
        Saturday = 64
    };

    int type = Daily;
    int interval = 1;
    int occurrences = 0; ///< 0: not counted
    QDateTime until; ///< UTC, the start of the last one; invalid: without an end
    int dayOfWeek = 0; ///< a set of @ref Days
    int dayOfMonth = 0;
    int weekOfMonth = 0; ///< 5: the last one
    int monthOfYear = 0;
    int calendarType = 0;
    int firstDayOfWeek = -1; ///< 0 for Sunday

    bool operator==(const EventRule &other) const;
    bool operator!=(const EventRule &other) const { return !(*this == other); }

    /** Whether the series has an occurrence that begins on @p day when the first one does on @p first. The
     * number of occurrences does not count here. */
    bool meets(const QDate &day, const QDate &first) const;

    WbxmlNode toNode(int version) const;
    /**
     * Nothing if elements that the type needs are missing or others are too many. What the version cannot say
     * is as in @p before.
     */
    static std::optional<EventRule> fromNode(const WbxmlNode &node, int version, const EventRule &before);
};

} // namespace Simulator
