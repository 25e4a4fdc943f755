// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/mstimezoneinformation.h"

#include <QByteArrayList>
#include <QTimeZone>

/**
 * Looks through all zones of the system for those that a block without a known name can mean.
 *
 * The dates of a hostile item bound nothing: at most ten years of changes are looked at. A value for one
 * search, made on the stack; main thread only.
 */
class TimeZoneSearch
{
public:
    /** The period is the item's. */
    TimeZoneSearch(const MSTimeZoneInformation &information, const QDateTime &from, const QDateTime &to);

    /** Zones that have the block's offset at this moment, and change by its biases within the period. */
    QByteArrayList zonesByBias() const;

    /** Of these zones the one to take: the first, but for a block without changes the first whose clocks do
     * not change in the coming year, if there is one. */
    QByteArray choice(const QByteArrayList &zones) const;

    /** Zones whose clocks change to the minute as the block says, over a year from the start. */
    QByteArrayList zonesByRule() const;

private:
    struct Change
    {
        QDateTime at;
        qint64 offset;
    };

    bool hasChanges() const;
    bool changesByBias(const QTimeZone &zone) const;
    bool changesByRule(const QTimeZone &zone, const QList<Change> &expected) const;
    QList<Change> changesOfRule() const;
    qint64 standardOffset() const;
    qint64 daylightOffset() const;

    const MSTimeZoneInformation &mInformation;
    QDateTime mFrom;
    QDateTime mTo;
    QDateTime mRuleFrom;
    QDateTime mRuleTo;
};
