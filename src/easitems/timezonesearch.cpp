// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/timezonesearch.h"

#include "application/base/clock.h"

#include <algorithm>

namespace {

constexpr int LongestPeriodYears = 10;
/** A change on some weekday comes up to a week later in the year than the year before. */
constexpr int LatestChangeDays = 14;
/** Windows writes midnight as a moment before it. */
constexpr qint64 ToleranceSeconds = 60;

/** Loaded once: reading the file of each zone anew is most of the cost of a search. */
const QVector<QTimeZone> &systemZones()
{
    static const QVector<QTimeZone> zones = [] {
        QVector<QTimeZone> loaded;
        const QList<QByteArray> ids = QTimeZone::availableTimeZoneIds();
        loaded.reserve(ids.size());
        for (const QByteArray &id : ids)
            loaded.append(QTimeZone(id));
        return loaded;
    }();
    return zones;
}

qint64 secondsFromMinutes(qint64 minutes)
{
    return 60 * minutes;
}

} // namespace

TimeZoneSearch::TimeZoneSearch(
    const MSTimeZoneInformation &information, const QDateTime &from, const QDateTime &to)
    : mInformation(information)
    , mFrom(from)
    , mTo(from.isValid() && to.isValid() ? qMin(to, from.addYears(LongestPeriodYears)) : to)
    , mRuleFrom(from.isValid() ? from : Clock::instance().currentDateTimeUtc())
    , mRuleTo(mRuleFrom.addYears(1).addDays(LatestChangeDays))
{
}

qint64 TimeZoneSearch::standardOffset() const
{
    return -secondsFromMinutes(qint64(mInformation.bias) + mInformation.stdBias);
}

qint64 TimeZoneSearch::daylightOffset() const
{
    return -secondsFromMinutes(qint64(mInformation.bias) + mInformation.dltBias);
}

QByteArrayList TimeZoneSearch::zonesByBias() const
{
    const QDateTime now = Clock::instance().currentDateTimeUtc();
    QByteArrayList found;
    for (const QTimeZone &zone : systemZones()) {
        if (zone.offsetFromUtc(now) == -secondsFromMinutes(mInformation.bias) && changesByBias(zone))
            found.append(zone.id());
    }
    return found;
}

bool TimeZoneSearch::changesByBias(const QTimeZone &zone) const
{
    if (!hasChanges())
        return true;
    const bool wantsStandard = mInformation.stdDate.month != 0;
    const bool wantsDaylight = mInformation.dltDate.month != 0;
    bool stdMatch = false;
    bool dltMatch = false;
    const QTimeZone::OffsetDataList transitions = zone.transitions(mFrom, mTo);
    for (const QTimeZone::OffsetData &transition : transitions) {
        if (transition.daylightTimeOffset == 0) {
            const qint64 minutes = -(transition.standardTimeOffset / 60);
            stdMatch |= qint64(mInformation.bias) - mInformation.stdBias == minutes;
        } else {
            dltMatch |= mInformation.dltBias == -(transition.daylightTimeOffset / 60);
        }
    }
    return (!wantsStandard || stdMatch) && (!wantsDaylight || dltMatch);
}

bool TimeZoneSearch::hasChanges() const
{
    return mInformation.stdDate.month != 0 || mInformation.dltDate.month != 0;
}

QByteArray TimeZoneSearch::choice(const QByteArrayList &zones) const
{
    if (!hasChanges()) {
        const QDateTime now = Clock::instance().currentDateTimeUtc();
        for (const QByteArray &id : zones) {
            if (QTimeZone(id).transitions(now, now.addYears(1)).isEmpty())
                return id;
        }
    }
    return zones.first();
}

QByteArrayList TimeZoneSearch::zonesByRule() const
{
    const QList<Change> expected = changesOfRule();
    QByteArrayList found;
    if (expected.isEmpty())
        return found;
    for (const QTimeZone &zone : systemZones()) {
        if (changesByRule(zone, expected))
            found.append(zone.id());
    }
    return found;
}

QList<TimeZoneSearch::Change> TimeZoneSearch::changesOfRule() const
{
    QList<Change> changes;
    const auto append = [&](const QDateTime &wallClock, qint64 before, qint64 after) {
        const QDateTime at = wallClock.addSecs(-before);
        if (at.isValid() && at >= mRuleFrom && at <= mRuleTo)
            changes.append({ at, after });
    };
    // A change can lie in another year of UTC than of the wall.
    for (int year = mRuleFrom.date().year() - 1; year <= mRuleTo.date().year() + 1; ++year) {
        append(mInformation.stdDate.wallClock(year), daylightOffset(), standardOffset());
        append(mInformation.dltDate.wallClock(year), standardOffset(), daylightOffset());
    }
    std::sort(changes.begin(), changes.end(), [](const Change &a, const Change &b) { return a.at < b.at; });
    return changes;
}

bool TimeZoneSearch::changesByRule(const QTimeZone &zone, const QList<Change> &expected) const
{
    // The offset first: it spares the changes of most zones.
    const QTimeZone::OffsetData atEnd = zone.offsetData(mRuleTo);
    if (atEnd.offsetFromUtc != expected.last().offset)
        return false;
    const QTimeZone::OffsetDataList transitions = zone.transitions(mRuleFrom, mRuleTo);
    return std::equal(transitions.cbegin(), transitions.cend(), expected.cbegin(), expected.cend(),
        [](const QTimeZone::OffsetData &transition, const Change &change) {
            return transition.offsetFromUtc == change.offset
                && qAbs(transition.atUtc.secsTo(change.at)) <= ToleranceSeconds;
        });
}
