// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eastimezone.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/timezonesearch.h"

#include <KCalendarCore/Event>
#include <KCalendarCore/RecurrenceRule>

#include <QDataStream>

using KCalendarCore::RecurrenceRule;

namespace {

constexpr int LastWeekOfRule = -1;
/** In so many years a day of the week falls on a date that tells the fourth week from the last one. */
constexpr int YearsThatTellLastWeek = 7;

/** A change on some weekday comes up to a week later in the year than the year before. */
constexpr int LatestChangeDays = 14;

/** Offsets of the system's zones stay far within this. */
constexpr int LargestOffset = 14 * 3600;

/** One of a year's two changes of the clocks. */
struct ClockChange
{
    QTimeZone::OffsetData transition;
    /** The moment as the clocks showed it before they were changed. */
    QDateTime wallClock;
    bool daylight;
    int week = 0;
};

bool isDaylight(const QTimeZone::OffsetData &transition)
{
    return transition.daylightTimeOffset != 0;
}

int weekdayInMonth(const QDate &date, bool &last)
{
    if (!date.isValid())
        return 0;
    const int week = (date.day() + 6) / 7;
    last = date.addDays(7).month() != date.month();
    qCInfo(eas()) << "Checked date:" << date << ", week-of-month:" << week << ", last:" << last;
    return week;
}

bool checkTransitionsForRule(
    const QTimeZone::OffsetDataList &transitions, const RecurrenceRule &rule, bool daylight, bool strict)
{
    if (transitions.isEmpty()) {
        qCCritical(eas()) << "No transitions";
        return false;
    }
    bool expectDaylight = isDaylight(transitions.first());
    QDateTime cursor = transitions.first().atUtc.addSecs(-1);
    for (const QTimeZone::OffsetData &transition : transitions) {
        if (isDaylight(transition) != expectDaylight)
            return false;
        if (expectDaylight == daylight) {
            cursor = rule.getNextDate(cursor);
            if (cursor != transition.atUtc) {
                const QMessageLogger log(QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC);
                (strict ? log.warning(eas()) : log.info(eas()))
                    << "Check failed (rule):" << transition.atUtc << "does not match (expected):" << cursor;
                return false;
            }
        }
        expectDaylight = !expectDaylight;
    }
    return true;
}

void setWeek(RecurrenceRule &rule, const QDate &date, int week)
{
    rule.setByDays({ RecurrenceRule::WDayPos(week, short(date.dayOfWeek())) });
}

/** Read in the wall's time: west and east of Greenwich, UTC can be on another day than the rule. */
void setYearlyRule(RecurrenceRule &rule, const QDateTime &wallClock)
{
    const QTime time = wallClock.time();
    rule.setReadOnly(false);
    rule.setRecurrenceType(RecurrenceRule::rYearly);
    rule.setFrequency(1);
    rule.setStartDt(wallClock);
    rule.setBySeconds({ time.second() });
    rule.setByMinutes({ time.minute() });
    rule.setByHours({ time.hour() });
    rule.setByMonths({ wallClock.date().month() });
}

/**
 * Finds the week of the month on which the change always falls. The year alone cannot tell the fourth week
 * from the last one; the later years do.
 */
bool proveWeek(
    const QTimeZone::OffsetDataList &transitions, const QTimeZone::OffsetDataList &later, ClockChange &change)
{
    const QDate date = change.wallClock.date();
    bool last = false;
    change.week = weekdayInMonth(date, last);
    if (change.week == MSSystemTime::LastWeek && last)
        change.week = LastWeekOfRule;

    RecurrenceRule rule;
    setYearlyRule(rule, change.wallClock);
    setWeek(rule, date, change.week);
    const bool strict = change.week == LastWeekOfRule || !last;
    const bool holdsThisYear = checkTransitionsForRule(transitions, rule, change.daylight, strict);
    if (strict) {
        if (!holdsThisYear)
            qCWarning(eas()) << "DST transitions check failed";
        return holdsThisYear;
    }
    if (holdsThisYear && checkTransitionsForRule(later, rule, change.daylight, false))
        return true;

    setWeek(rule, date, LastWeekOfRule);
    const bool lastHolds = holdsThisYear ? checkTransitionsForRule(later, rule, change.daylight, false)
                                         : checkTransitionsForRule(transitions, rule, change.daylight, true);
    if (lastHolds)
        change.week = LastWeekOfRule;
    else if (!holdsThisYear)
        qCWarning(eas()) << (change.daylight ? "DST transitions check failed"
                                             : "STD transitions check failed");
    return holdsThisYear || lastHolds;
}

MSSystemTime systemTime(const ClockChange &change)
{
    const QDate date = change.wallClock.date();
    const QTime time = change.wallClock.time();
    MSSystemTime result;
    result.month = qint16(date.month());
    result.weekDay = qint16(date.dayOfWeek() % 7);
    result.day = qint16(change.week == LastWeekOfRule ? MSSystemTime::LastWeek : change.week);
    result.hour = qint16(time.hour());
    result.minute = qint16(time.minute());
    result.second = qint16(time.second());
    result.milliseconds = qint16(time.msec());
    return result;
}

/** Fills the biases and dates if the changes of a year follow a yearly rule. */
bool checkTransitions(const QTimeZone::OffsetDataList &transitions, const QTimeZone::OffsetDataList &later,
    MSTimeZoneInformation &information)
{
    if (transitions.isEmpty()) {
        qCInfo(eas()) << "No transitions";
        return false;
    }
    if (transitions.size() < 2) {
        qCWarning(eas()) << "Too few transitions";
        return false;
    }
    if (isDaylight(transitions.at(0)) == isDaylight(transitions.at(1))) {
        qCWarning(eas()) << "Unexpected transition types";
        return false;
    }
    const QTimeZone::OffsetData std = transitions.at(isDaylight(transitions.at(0)) ? 1 : 0);
    const QTimeZone::OffsetData dst = transitions.at(isDaylight(transitions.at(0)) ? 0 : 1);
    ClockChange toStandard { std, std.atUtc.toOffsetFromUtc(dst.offsetFromUtc), false };
    ClockChange toDaylight { dst, dst.atUtc.toOffsetFromUtc(std.offsetFromUtc), true };
    if (!proveWeek(transitions, later, toStandard) || !proveWeek(transitions, later, toDaylight))
        return false;

    information.bias = -(std.offsetFromUtc / 60);
    information.stdBias = 0;
    information.dltBias = std.offsetFromUtc / 60 - dst.offsetFromUtc / 60;
    information.stdDate = systemTime(toStandard);
    information.dltDate = systemTime(toDaylight);
    return true;
}

QByteArray toBlock(const MSTimeZoneInformation &information)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << information;
    return block;
}

/** What follows the bracket of a display name such as "(UTC+01:00) Amsterdam, Berlin". */
QByteArray shortName(const QByteArray &name)
{
    return name.startsWith("(UTC") ? name.mid(name.indexOf(')') + 1).trimmed() : name;
}

} // namespace

bool EasTimeZone::parse(const QByteArray &data)
{
    const QByteArray block = data.size() == MSTimeZoneInformation::Size ? data : QByteArray::fromBase64(data);
    if (block.size() != MSTimeZoneInformation::Size) {
        constexpr int shownBytes = 2 * MSTimeZoneInformation::Size; // a server decides how long it is
        qCCritical(eas()) << "Wrong buffer:" << block.left(shownBytes).toHex();
        return false;
    }
    QDataStream stream(block);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream >> mInformation;
    if (stream.status() != QDataStream::Ok) {
        qCCritical(eas()) << "Failed reading:" << block.toHex();
        return false;
    }
    return true;
}

QTimeZone EasTimeZone::timeZone(const QString &startTime, const QString &endTime) const
{
    const QByteArray name = mInformation.stdName.toUtf8();
    QByteArray iana = QTimeZone::windowsIdToDefaultIanaId(name);
    if (iana.isEmpty())
        iana = QTimeZone::windowsIdToDefaultIanaId(shortName(name));
    // isTimeZoneIdAvailable() asks the system's list, which leaves out "Etc/GMT+2" and its like.
    const QTimeZone named = iana.isEmpty() ? QTimeZone() : QTimeZone(iana);
    if (named.isValid())
        return named;
    return searchedZone(ExchangeActiveSync::dateTimeFromString(startTime, nullptr),
        ExchangeActiveSync::dateTimeFromString(endTime, nullptr));
}

QTimeZone EasTimeZone::searchedZone(const QDateTime &from, const QDateTime &to) const
{
    const TimeZoneSearch search(mInformation, from, to);
    QByteArrayList found = search.zonesByBias();
    if (found.isEmpty())
        found = search.zonesByRule();
    if (found.isEmpty()) {
        qCInfo(eas()) << "No match for named time zone" << mInformation.stdName
                      << ", fall back to offset-based time zone";
        const qint64 offset = -60 * qint64(mInformation.bias);
        return qAbs(offset) <= LargestOffset ? QTimeZone(int(offset)) : QTimeZone::utc();
    }
    const QByteArray choice = search.choice(found);
    if (found.size() > 1) {
        qCInfo(eas()) << "Multiple matches for time zone" << mInformation.stdName << ", using first match"
                      << choice;
    }
    return QTimeZone(choice);
}

QByteArray EasTimeZone::encode(const KCalendarCore::Event &event)
{
    const QDateTime start = event.dtStart();
    if (!start.isValid()) {
        qCInfo(eas()) << "No start time";
        return {};
    }
    const QTimeZone zone = start.timeZone();
    if (!zone.isValid()) {
        qCCritical(eas()) << "Unsupported timezone for start time";
        return {};
    }
    if (zone == QTimeZone::utc()) {
        qCInfo(eas()) << "Start time is in UTC";
        return {};
    }
    MSTimeZoneInformation information;
    information.stdName = QString::fromUtf8(QTimeZone::ianaIdToWindowsId(zone.id()));
    information.dltName = information.stdName;
    const QDateTime from = start.toUTC();
    QTimeZone::OffsetDataList transitions = zone.transitions(from, from.addYears(1));
    if (transitions.size() == 1)
        transitions = zone.transitions(from, from.addYears(1).addDays(LatestChangeDays));
    const QTimeZone::OffsetDataList later = zone.transitions(from, from.addYears(YearsThatTellLastWeek));
    if (!checkTransitions(transitions, later, information))
        information.bias = -(zone.offsetFromUtc(from) / 60);
    qCInfo(eas()) << "Encoded timezone:" << information;
    return toBlock(information).toBase64();
}
