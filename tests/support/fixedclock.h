// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/clock.h"

/** The time stands still, in a zone of the test's choice; installed while it lives. */
class FixedClock : public Clock
{
public:
    explicit FixedClock(const QDateTime &now, const QTimeZone &zone = QTimeZone::utc())
        : now(now.toUTC())
        , zone(zone)
    {
        Clock::setInstance(this);
    }
    ~FixedClock() override { Clock::setInstance(nullptr); }
    Q_DISABLE_COPY(FixedClock)

    QDateTime currentDateTimeUtc() const override { return now; }
    QTimeZone timeZone() const override { return zone; }

    QDateTime now;
    QTimeZone zone;
};
