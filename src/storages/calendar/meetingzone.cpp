// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/meetingzone.h"

#include "easitems/eastimezone.h"
#include "storages/calendar/icaltext.h"

#include <QTimeZone>

namespace {

constexpr int SecondsInMinute = 60;
/** Minutes; more than any zone has. */
constexpr int LargestBias = 24 * 60;
/** Rules hold from the beginning of the calendar library's time on. */
constexpr int FirstYear = 1970;

/** "FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU" */
QByteArray yearlyRule(const MSSystemTime &change)
{
    static constexpr const char *days[] = { "SU", "MO", "TU", "WE", "TH", "FR", "SA" };
    const int week = change.day == MSSystemTime::LastWeek ? -1 : change.day;
    return "FREQ=YEARLY;BYMONTH=" + QByteArray::number(change.month) + ";BYDAY=" + QByteArray::number(week)
        + days[change.weekDay];
}

/** A part of the year: when it begins, and the minutes to UTC before that moment and after it. */
void appendSeason(
    icalcomponent *zone, icalcomponent_kind kind, const MSSystemTime &begin, int biasBefore, int bias)
{
    const QDateTime first = begin.wallClock(FirstYear);
    icaltimetype start =
        ICalText::utcTime(first.isValid() ? first : QDate(FirstYear, 1, 1).startOfDay(Qt::UTC));
    start.zone = nullptr; // what the clocks on the wall show
    icalcomponent *const season = icalcomponent_new(kind);
    icalcomponent_add_property(season, icalproperty_new_dtstart(start));
    icalcomponent_add_property(season, icalproperty_new_tzoffsetfrom(-biasBefore * SecondsInMinute));
    icalcomponent_add_property(season, icalproperty_new_tzoffsetto(-bias * SecondsInMinute));
    if (first.isValid())
        icalcomponent_add_property(
            season, icalproperty_new_rrule(icalrecurrencetype_from_string(yearlyRule(begin).constData())));
    icalcomponent_add_component(zone, season);
}

bool isSound(const MSTimeZoneInformation &information)
{
    const auto fits = [](qint32 bias) {
        return bias >= -LargestBias && bias <= LargestBias;
    };
    return fits(information.bias) && fits(information.stdBias) && fits(information.dltBias);
}

} // namespace

namespace MeetingZone {

ICalZone createTimezoneComponent(const QString &block)
{
    EasTimeZone parsed;
    if (block.isEmpty() || !parsed.parse(block.toLatin1()))
        return nullptr;
    const MSTimeZoneInformation &information = parsed.msTimeZoneInformation();
    const QByteArray id = QTimeZone::windowsIdToDefaultIanaId(information.stdName.toUtf8());
    if (id.isEmpty() || !isSound(information))
        return nullptr;

    ICalComponent component(icalcomponent_new(ICAL_VTIMEZONE_COMPONENT));
    icalcomponent_add_property(component.get(), icalproperty_new_tzid(id.constData()));
    const int standard = information.bias + information.stdBias;
    const int daylight = information.bias + information.dltBias;
    const bool hasSeasons = information.stdDate.wallClock(FirstYear).isValid()
        && information.dltDate.wallClock(FirstYear).isValid();
    appendSeason(component.get(), ICAL_XSTANDARD_COMPONENT, hasSeasons ? information.stdDate : MSSystemTime(),
        hasSeasons ? daylight : standard, standard);
    if (hasSeasons)
        appendSeason(component.get(), ICAL_XDAYLIGHT_COMPONENT, information.dltDate, standard, daylight);

    ICalZone zone(icaltimezone_new());
    if (icaltimezone_set_component(zone.get(), component.get()) == 0)
        return nullptr;
    component.release();
    return zone;
}

} // namespace MeetingZone
