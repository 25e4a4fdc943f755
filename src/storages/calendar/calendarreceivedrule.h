// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"

#include <KCalendarCore/Event>

#include <QJsonObject>
#include <QList>

/**
 * What a server says about a series and the device's rule cannot express: the first day of the week, the kind
 * of calendar, and exceptions at moments that are no occurrences to the device. It stands in a property of
 * the series and goes up again, since an upload replaces what it leaves out.
 *
 * It holds as long as the rule is the one that it came with; the end of the series does not matter to it. A
 * value for one use; main thread only.
 */
class CalendarReceivedRule
{
public:
    explicit CalendarReceivedRule(const KCalendarCore::Event::Ptr &series);

    /** Of a rule that has just been written into the series; what was kept before is forgotten. */
    void keep(const EasRecurrenceContainer &recurrence);
    void keepExceptions(const QList<EasCalendarItem> &exceptions);

    /** Completes a recurrence that has been read from the series. */
    void complete(EasRecurrenceContainer &recurrence) const;
    /** None if the series starts at another time since. */
    QList<EasCalendarItem> exceptions() const;

private:
    QString rule() const;
    QString ruleAndStart() const;
    void store() const;

    KCalendarCore::Event::Ptr mSeries;
    QJsonObject mKept;
};
