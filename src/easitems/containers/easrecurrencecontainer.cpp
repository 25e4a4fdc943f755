// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/containers/easrecurrencecontainer.h"

#include "application/base/logging.h"

#include <QDebug>

namespace {

bool withinRange(int value, uint largest, const char *refusal)
{
    if (uint(value) <= largest) {
        return true;
    }
    qCCritical(eas()) << refusal << value;
    return false;
}

} // namespace

void EasRecurrenceContainer::setLeapMonth(int leapMonth)
{
    if (withinRange(leapMonth, 1, "Tried to set LeapMonth value to")) {
        mLeapMonth = quint8(leapMonth);
    }
}

void EasRecurrenceContainer::setWeekOfMonth(int weekOfMonth)
{
    if (withinRange(weekOfMonth, 5, "Tried to set WeekOfMonth value to")) {
        mWeekOfMonth = weekOfMonth;
    }
}

void EasRecurrenceContainer::setDayOfMonth(int dayOfMonth)
{
    if (withinRange(dayOfMonth, 31, "Tried to set DayOfMonth value to")) {
        mDayOfMonth = dayOfMonth;
    }
}

void EasRecurrenceContainer::setDayOfWeek(int dayOfWeek)
{
    if (withinRange(dayOfWeek, 127, "Tried to set DayOfWeek value to")) {
        mDayOfWeek = dayOfWeek;
    }
}

void EasRecurrenceContainer::setMonthOfYear(int monthOfYear)
{
    if (withinRange(monthOfYear, 12, "Tried to set MonthOfYear value to")) {
        mMonthOfYear = monthOfYear;
    }
}
