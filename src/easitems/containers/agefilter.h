// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/** How old the items of a collection may be, as a sync asks for them and as a server's policies allow them.
 */
class AgeFilter
{
    Q_GADGET

public:
    enum FilterType : int {
        FilterUnset = -1,
        NoFilter = 0,
        FilterOneDay = 1,
        FilterThreeDays = 2,
        FilterOneWeek = 3,
        FilterTwoWeeks = 4,
        FilterOneMonth = 5,
        FilterThreeMonths = 6,
        FilterSixMonths = 7,
        FilterIncompleteTasks = 8
    };
    Q_ENUM(FilterType)
};
