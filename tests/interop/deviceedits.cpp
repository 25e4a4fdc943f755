// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interop/deviceedits.h"

#include "interop/interopbed.h"
#include "support/devicecalendar.h"

using KCalendarCore::Event;

namespace {

void setAlarm(const Event::Ptr &event, int minutes)
{
    event->clearAlarms();
    const auto alarm = event->newAlarm();
    alarm->setType(KCalendarCore::Alarm::Display);
    alarm->setStartOffset(KCalendarCore::Duration(-minutes * 60));
    alarm->setEnabled(true);
}

} // namespace

QDateTime DeviceEdits::at(const QDate &day, const QTime &time, const char *zone)
{
    return QDateTime(day, time, QTimeZone(zone));
}

Event::Ptr DeviceEdits::newEvent(const QString &summary, const QDateTime &start, int minutes)
{
    const Event::Ptr event(new Event);
    event->setSummary(summary);
    event->setDtStart(start);
    event->setDtEnd(start.addSecs(minutes * 60));
    return event;
}

void DeviceEdits::stamp(InteropBed &bed, const Event::Ptr &event)
{
    event->setLastModified(bed.clock().currentDateTimeUtc());
}

bool DeviceEdits::editEvents(InteropBed &bed)
{
    DeviceCalendar device;
    const auto texts = device.withSummary(QStringLiteral("winter (Europe/Berlin)"));
    const auto series = device.withSummary(QStringLiteral("days (Europe/Berlin)"));
    const auto later = device.withSummary(QStringLiteral("summer over midnight (Australia/Sydney)"));
    const auto days = device.withSummary(QStringLiteral("two weeks (Europe/Berlin)"));
    const auto meeting = device.withSummary(QStringLiteral("meeting (Europe/Berlin)"));
    const auto gone = device.withSummary(QStringLiteral("moment (Europe/Berlin)"));
    if (!texts || !series || !later || !days || !meeting || !gone)
        return false;
    texts->setSummary(QStringLiteral("Edited; 会議, \"here\""));
    texts->setLocation(QStringLiteral("Straße 7, Zürich"));
    texts->setDescription(QStringLiteral("One\nTwo; ěšč, 🎉"), false);
    texts->setCategories(QStringList { QStringLiteral("Büro"), QStringLiteral("Work") });
    setAlarm(texts, 25);
    series->setSummary(QStringLiteral("Renamed series"));
    later->setDtStart(later->dtStart().addSecs(3600));
    later->setDtEnd(later->dtEnd().addSecs(5400));
    days->setDtEnd(days->dtEnd().addDays(1));
    meeting->setCategories(QStringList { QStringLiteral("Edited") });
    for (const Event::Ptr &event : { texts, series, later, days, meeting })
        stamp(bed, event);
    return device.calendar->deleteEvent(gone) && device.storage->save();
}

bool DeviceEdits::editOccurrences(InteropBed &bed)
{
    DeviceCalendar device;
    const QString notebook = device.notebookOf(bed.accountId());
    const auto fridays = device.withSummary(QStringLiteral("last Fridays (Europe/Berlin)"));
    const auto weeks = device.withSummary(QStringLiteral("other weeks (Europe/Berlin)"));
    const auto rows = device.withSummary(QStringLiteral("rows (Europe/Berlin)"));
    const auto holidays = device.withSummary(QStringLiteral("holidays (Europe/Berlin)"));
    if (!fridays || !weeks || !rows || !holidays)
        return false;
    const auto moved = device.occurrence(fridays, QDate(2030, 3, 29));
    const auto dayLater = device.occurrence(holidays, QDate(2030, 12, 2));
    const auto renamed =
        device.calendar->event(rows->uid(), at(QDate(2030, 3, 25), QTime(18, 0), "Europe/Berlin"));
    if (!moved || !renamed || !dayLater)
        return false;
    moved->setSummary(QStringLiteral("Moved here"));
    moved->setDtStart(moved->dtStart().addSecs(7200));
    moved->setDtEnd(moved->dtEnd().addSecs(7200));
    renamed->setSummary(QStringLiteral("Once 一度"));
    renamed->setLocation(QStringLiteral("Garden"));
    dayLater->setDtStart(dayLater->dtStart().addDays(1));
    dayLater->setDtEnd(dayLater->dtEnd().addDays(1));
    if (!device.calendar->addEvent(moved, notebook) || !device.calendar->addEvent(dayLater, notebook))
        return false;
    weeks->recurrence()->addExDateTime(at(QDate(2030, 11, 18), QTime(16, 0), "Europe/Berlin"));
    holidays->recurrence()->addExDate(QDate(2031, 1, 6));
    for (const Event::Ptr &event : { moved, renamed, dayLater, weeks, holidays })
        stamp(bed, event);
    return device.storage->save();
}

bool DeviceEdits::addEvents(InteropBed &bed, const QString &address)
{
    DeviceCalendar device;
    const QString notebook = device.notebookOf(bed.accountId());
    const auto single =
        newEvent(QStringLiteral("Added: 新"), at(QDate(2030, 7, 3), QTime(9, 30), "America/New_York"), 45);
    single->setLocation(QStringLiteral("Café"));
    single->setDescription(QStringLiteral("A\nB"), false);
    single->setCategories(QStringList { QStringLiteral("Work") });
    single->setSecrecy(KCalendarCore::Incidence::SecrecyPrivate);
    single->setStatus(KCalendarCore::Incidence::StatusConfirmed);
    setAlarm(single, 5);
    const auto days =
        newEvent(QStringLiteral("Added days"), at(QDate(2030, 3, 30), QTime(0, 0), "Europe/Berlin"), 0);
    days->setAllDay(true);
    days->setDtEnd(days->dtStart().addDays(2));
    const auto meeting =
        newEvent(QStringLiteral("Added meeting"), at(QDate(2030, 5, 6), QTime(15, 0), "Europe/Berlin"), 60);
    meeting->setOrganizer(KCalendarCore::Person(QString(), address));
    meeting->addAttendee(KCalendarCore::Attendee(QStringLiteral("Žofie"), QStringLiteral("zofie@example.com"),
        true, KCalendarCore::Attendee::Accepted, KCalendarCore::Attendee::OptParticipant));
    meeting->addAttendee(KCalendarCore::Attendee(QStringLiteral("Max"), QStringLiteral("max@example.com"),
        true, KCalendarCore::Attendee::NeedsAction, KCalendarCore::Attendee::ReqParticipant));
    const auto monthly =
        newEvent(QStringLiteral("Added months"), at(QDate(2030, 1, 29), QTime(8, 0), "Europe/Berlin"), 30);
    monthly->recurrence()->setMonthly(1);
    monthly->recurrence()->addMonthlyPos(-1, 2);
    monthly->recurrence()->setDuration(14);
    const auto series =
        newEvent(QStringLiteral("Added weeks"), at(QDate(2030, 3, 18), QTime(18, 30), "Europe/Berlin"), 90);
    series->recurrence()->setWeekly(1);
    series->recurrence()->setEndDateTime(at(QDate(2030, 12, 9), QTime(18, 30), "Europe/Berlin"));
    for (const Event::Ptr &event : { single, days, meeting, monthly, series }) {
        if (!device.calendar->addEvent(event, notebook))
            return false;
    }
    const auto moved = device.occurrence(series, QDate(2030, 3, 25));
    if (!moved)
        return false;
    moved->setSummary(QStringLiteral("Added but moved"));
    moved->setDtStart(moved->dtStart().addDays(1));
    moved->setDtEnd(moved->dtEnd().addDays(1));
    if (!device.calendar->addEvent(moved, notebook))
        return false;
    series->recurrence()->addExDateTime(at(QDate(2030, 11, 4), QTime(18, 30), "Europe/Berlin"));
    for (const Event::Ptr &event : { single, days, meeting, monthly, series, moved }) {
        event->setCreated(bed.clock().currentDateTimeUtc());
        stamp(bed, event);
    }
    return device.storage->save();
}
