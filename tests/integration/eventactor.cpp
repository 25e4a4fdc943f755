// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/eventactor.h"

#include "integration/dice.h"
#include "support/devicecalendar.h"
#include "support/pimlisting.h"
#include "support/synctestbed.h"

using DeviceEvent = KCalendarCore::Event;
using ServerEvent = Simulator::Event;

namespace {

const QByteArray zoneId = QByteArrayLiteral("Europe/Berlin");
constexpr int Occurrences = 6;
// Between two devices' edits in a run no clock has to pass a second for the stores to tell them apart.
constexpr int EditInterval = 2000;

QDateTime wall(int day, int hour)
{
    return QDateTime(QDate(2036, 3, 3).addDays(day), QTime(hour, 0), QTimeZone(zoneId));
}

} // namespace

EventActor::EventActor(SyncTestBed &bed)
    : mBed(bed)
{
}

QString EventActor::newName()
{
    return QStringLiteral("event %1").arg(++mCreated);
}

ItemActor::Edit EventActor::createOnServer(Dice &dice)
{
    const QString name = newName();
    const int day = dice.below(28);
    const int kind = dice.below(3);
    ServerEvent event;
    if (kind == 0) {
        event = ServerEvent::wholeDay(name, wall(day, 0).date(), 1 + dice.below(3));
        event.zone = Simulator::EventZone::named(zoneId, event.start);
    } else {
        event =
            ServerEvent::timed(name, zoneId, QDateTime(wall(day, 0).date(), QTime(8 + dice.below(9), 0)), 45);
    }
    if (kind == 2) {
        event.rule = Simulator::EventRule();
        event.rule->occurrences = Occurrences;
    }
    mBed.place(event);
    static const QStringList kinds { QStringLiteral("days"), QStringLiteral("hours"),
        QStringLiteral("a series") };
    return { name, QStringLiteral("made, ") + kinds.at(kind) };
}

ItemActor::Edit EventActor::createOnDevice(Dice &dice, DeviceCalendar &device)
{
    const QString notebook = device.notebookOf(mBed.accountId());
    if (notebook.isEmpty())
        return {};
    const QString name = newName();
    const DeviceEvent::Ptr event(new DeviceEvent);
    event->setSummary(name);
    event->setDtStart(wall(dice.below(28), 8 + dice.below(9)));
    event->setDtEnd(event->dtStart().addSecs(3600));
    const bool isSeries = dice.oneIn(2);
    if (isSeries) {
        event->recurrence()->setDaily(1);
        event->recurrence()->setDuration(Occurrences);
    }
    device.calendar->addEvent(event, notebook);
    event->setCreated(mBed.clock().currentDateTimeUtc());
    event->setLastModified(mBed.clock().currentDateTimeUtc());
    device.storage->save();
    return { name, isSeries ? QStringLiteral("made, a series") : QStringLiteral("made") };
}

ItemActor::Edit EventActor::editServer(Dice &dice, const QSet<QString> &delicate)
{
    const auto items = mBed.mailbox().items(mBed.calendarId());
    if (items.isEmpty() || dice.oneIn(3))
        return createOnServer(dice);
    const QString id = items.at(dice.below(items.size())).serverId;
    const ServerEvent before = *mBed.serverEvent(id);
    if (delicate.contains(before.subject))
        return {};
    const QString text = QStringLiteral("s%1").arg(dice.below(1000));
    const int what = dice.below(7);
    if (what == 0) {
        mBed.mailbox().remove(id);
        return { before.subject, QStringLiteral("removed") };
    }
    const QDate day = before.start.date().addDays(1 + dice.below(Occurrences - 1));
    if ((what >= 5 && !before.rule) || (what == 4 && before.rule))
        return {};
    mBed.editEvent(id, [&](ServerEvent &event) {
        if (what == 1) {
            event.location.name = text;
        } else if (what == 2) {
            event.categories = QStringList { text, QStringLiteral("Work, abroad") };
        } else if (what == 3) {
            event.reminder = dice.below(60);
        } else if (what == 4) {
            event.end = event.end.addDays(event.allDay ? 1 : 0).addSecs(event.allDay ? 0 : 900);
        } else if (what == 5) {
            event.deleteOccurrence(day);
        } else {
            event.editOccurrence(
                day, [&](Simulator::EventDetails &details) { details.location.name = text; });
        }
    });
    return { before.subject, QStringLiteral("changed (%1, %2)").arg(what).arg(text) };
}

ItemActor::Edit EventActor::editDevice(Dice &dice, const QSet<QString> &delicate)
{
    mBed.clock().advance(EditInterval);
    const QDateTime now = mBed.clock().currentDateTimeUtc();
    DeviceCalendar device;
    const DeviceEvent::List events = device.series(mBed.accountId());
    if (events.isEmpty() || dice.oneIn(3))
        return createOnDevice(dice, device);
    // The store's order changes from run to run; a seed must give the same run.
    QStringList names;
    for (const DeviceEvent::Ptr &event : events)
        names.append(event->summary());
    names.sort();
    const QString name = dice.pick(names);
    if (delicate.contains(name))
        return {};
    const DeviceEvent::Ptr event = device.withSummary(name);
    const QString text = QStringLiteral("d%1").arg(dice.below(1000));
    const int what = dice.below(7);
    if (what == 0) {
        device.remove(event, now);
        return { name, QStringLiteral("removed") };
    }
    const QDate day = event->dtStart().date().addDays(1 + dice.below(Occurrences - 1));
    // Whether an occurrence of its own gets longer with its series is a matter of taste.
    if (what == 4 && event->recurs())
        return {};
    if (what >= 5 && (!event->recurs() || !event->recurrence()->recursOn(day, QTimeZone(zoneId))))
        return {};
    if (what == 1) {
        event->setLocation(text);
    } else if (what == 2) {
        event->setCategories(QStringList { text, QStringLiteral("Work, abroad") });
    } else if (what == 3) {
        event->clearAlarms();
        const auto alarm = event->newAlarm();
        alarm->setType(KCalendarCore::Alarm::Display);
        alarm->setStartOffset(KCalendarCore::Duration(-60 * dice.below(60)));
        alarm->setEnabled(true);
    } else if (what == 4) {
        event->setDtEnd(event->allDay() ? event->dtEnd().addDays(1) : event->dtEnd().addSecs(900));
    } else if (what == 5) {
        const QDateTime moment(day, event->dtStart().time(), event->dtStart().timeZone());
        const auto exception = device.calendar->event(event->uid(), moment);
        if (exception)
            return {};
        event->recurrence()->addExDateTime(moment);
    } else {
        const DeviceEvent::Ptr exception = device.occurrence(event, day);
        if (!exception)
            return {};
        exception->setLocation(text);
        device.calendar->addEvent(exception, device.notebookOf(mBed.accountId()));
        exception->setCreated(now);
        exception->setLastModified(now);
    }
    event->setLastModified(now);
    device.storage->save();
    return { name, QStringLiteral("changed (%1, %2)").arg(what).arg(text) };
}

ItemActor::State EventActor::serverState()
{
    return PimListing::serverEvents(mBed.mailbox());
}

ItemActor::State EventActor::deviceState()
{
    return PimListing::deviceEvents(mBed.accountId());
}
