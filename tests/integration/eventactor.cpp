// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/eventactor.h"

#include "integration/dice.h"
#include "simulator/eventitem.h"
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
    return QDateTime(QDate(2031, 3, 3).addDays(day), QTime(hour, 0), QTimeZone(zoneId));
}

/**
 * A rule that meets its first day and is read alike by everybody: no days that some months lack, no sets of
 * days of a month, and no Sunday in every second week.
 */
Simulator::EventRule anyRule(Dice &dice, const QDate &first)
{
    using Rule = Simulator::EventRule;
    static const QList<int> types { Rule::Daily, Rule::Weekly, Rule::MonthlyByDay, Rule::MonthlyByWeekDay,
        Rule::YearlyByDay, Rule::YearlyByWeekDay };
    const int firstBit = 1 << (first.dayOfWeek() % 7);
    Rule rule;
    rule.type = types.at(dice.below(types.size()));
    rule.interval = 1 + dice.below(2);
    rule.occurrences = Occurrences;
    if (rule.type == Rule::Weekly) {
        rule.dayOfWeek = firstBit | Rule::Wednesday;
        if (firstBit == Rule::Sunday)
            rule.interval = 1;
    } else if (rule.type == Rule::MonthlyByDay || rule.type == Rule::YearlyByDay) {
        rule.dayOfMonth = first.day();
    } else if (rule.type != Rule::Daily) {
        rule.dayOfWeek = firstBit;
        rule.weekOfMonth = (first.day() + 6) / 7;
    }
    if (rule.type == Rule::YearlyByDay || rule.type == Rule::YearlyByWeekDay)
        rule.monthOfYear = first.month();
    // A series ends before 2038, from where on tables of zones are not read alike.
    if (rule.monthOfYear != 0)
        rule.interval = 1;
    return rule;
}

/** The days of a series but for its first. */
QList<QDate> laterDays(const Simulator::EventRule &rule, const QDate &first)
{
    QList<QDate> days;
    const QDate last = first.addYears(2 * Occurrences);
    for (QDate day = first.addDays(1); day < last && days.size() < Occurrences - 1; day = day.addDays(1)) {
        if (rule.meets(day, first))
            days.append(day);
    }
    return days;
}

/** The same on the device, as one makes it there; without those that are excluded. */
QList<QDateTime> laterMoments(const DeviceEvent::Ptr &event)
{
    return event->recurrence()->timesInInterval(
        event->dtStart().addSecs(1), event->dtStart().addYears(2 * Occurrences));
}

void setRule(const DeviceEvent::Ptr &event, Dice &dice)
{
    using Rule = Simulator::EventRule;
    const QDate first = event->dtStart().date();
    const Rule rule = anyRule(dice, first);
    KCalendarCore::Recurrence &recurrence = *event->recurrence();
    // The fifth one of a month is the last one to the protocol.
    const auto position = short(rule.weekOfMonth == 5 ? -1 : rule.weekOfMonth);
    QBitArray days(7);
    for (int day = 1; day <= days.size(); ++day)
        days.setBit(day - 1, (rule.dayOfWeek & (1 << (day % 7))) != 0);
    if (rule.type == Rule::Daily) {
        recurrence.setDaily(rule.interval);
    } else if (rule.type == Rule::Weekly) {
        recurrence.setWeekly(rule.interval, days);
    } else if (rule.type == Rule::MonthlyByDay) {
        recurrence.setMonthly(rule.interval);
        recurrence.addMonthlyDate(short(rule.dayOfMonth));
    } else if (rule.type == Rule::MonthlyByWeekDay) {
        recurrence.setMonthly(rule.interval);
        recurrence.addMonthlyPos(position, days);
    } else {
        recurrence.setYearly(rule.interval);
        recurrence.addYearlyMonth(short(rule.monthOfYear));
        if (rule.type == Rule::YearlyByDay)
            recurrence.addYearlyDate(rule.dayOfMonth);
        else
            recurrence.addYearlyPos(position, days);
    }
    recurrence.setDuration(Occurrences);
}

/**
 * An event that both sides have moved, or one has moved and the other has changed, is two events from then
 * on: all of one name count as one item, in whatever order they are listed.
 */
ItemActor::State withCopies(const PimListing::Listing &listing)
{
    QMap<QString, QStringList> byName;
    for (auto event = listing.cbegin(); event != listing.cend(); ++event)
        byName[event.key().section(QLatin1String(" (copy"), 0, 0)].append(event.value());
    ItemActor::State state;
    for (auto name = byName.begin(); name != byName.end(); ++name) {
        name->sort();
        state.insert(name.key(), name->join(QStringLiteral(" and ")));
    }
    return state;
}

/** The other of the account's two calendars, once the device has both. */
QString otherNotebook(const DeviceCalendar &device, EasAccountId accountId, const QString &notebook)
{
    const QStringList notebooks = device.notebooksOf(accountId);
    for (const QString &other : notebooks) {
        if (other != notebook)
            return other;
    }
    return QString();
}

void moveOnDevice(
    DeviceCalendar &device, const DeviceEvent::Ptr &event, const QString &notebook, const QDateTime &now)
{
    const DeviceEvent::List parts = DeviceEvent::List { event } + device.calendar->eventInstances(event);
    for (const DeviceEvent::Ptr &part : parts) {
        device.calendar->setNotebook(part, notebook);
        part->setLastModified(now);
    }
}

} // namespace

EventActor::EventActor(SyncTestBed &bed)
    : mBed(bed)
    , mFolders { bed.calendarId(),
        bed.mailbox().addFolder(QStringLiteral("Second"), Simulator::UserCalendarFolder) }
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
        event.rule = anyRule(dice, event.start.date());
    }
    mBed.mailbox().addItem(dice.pick(mFolders), Simulator::EventItem::make(event));
    static const QStringList kinds { QStringLiteral("days"), QStringLiteral("hours"),
        QStringLiteral("a series") };
    return { name, QStringLiteral("made, ") + kinds.at(kind) };
}

ItemActor::Edit EventActor::createOnDevice(Dice &dice, DeviceCalendar &device)
{
    const QString notebook = dice.pick(device.notebooksOf(mBed.accountId()));
    if (notebook.isEmpty())
        return {};
    const QString name = newName();
    const DeviceEvent::Ptr event(new DeviceEvent);
    event->setSummary(name);
    event->setDtStart(wall(dice.below(28), 8 + dice.below(9)));
    event->setDtEnd(event->dtStart().addSecs(3600));
    const bool isSeries = dice.oneIn(2);
    if (isSeries)
        setRule(event, dice);
    device.calendar->addEvent(event, notebook);
    event->setCreated(mBed.clock().currentDateTimeUtc());
    event->setLastModified(mBed.clock().currentDateTimeUtc());
    device.storage->save();
    return { name, isSeries ? QStringLiteral("made, a series") : QStringLiteral("made") };
}

ItemActor::Edit EventActor::editServer(Dice &dice, const QSet<QString> &delicate)
{
    const QString folder = dice.pick(mFolders);
    const auto items = mBed.mailbox().items(folder);
    if (items.isEmpty() || dice.oneIn(3))
        return createOnServer(dice);
    const QString id = items.at(dice.below(items.size())).serverId;
    const ServerEvent before = *mBed.serverEvent(id);
    if (delicate.contains(before.subject))
        return {};
    const QString text = QStringLiteral("s%1").arg(dice.below(1000));
    const int what = dice.below(8);
    if (what == 0) {
        mBed.mailbox().remove(id);
        return { before.subject, QStringLiteral("removed") };
    }
    if (what == 7) {
        mBed.mailbox().move(id, mFolders.at(folder == mFolders.constFirst() ? 1 : 0));
        return { before.subject, QStringLiteral("moved to the other calendar") };
    }
    const int occurrence = dice.below(Occurrences - 1);
    const QDate day = before.rule ? laterDays(*before.rule, before.start.date()).value(occurrence) : QDate();
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
    const int what = dice.below(8);
    if (what == 0) {
        device.remove(event, now);
        return { name, QStringLiteral("removed") };
    }
    const QString notebook = device.calendar->notebook(event);
    if (what == 7) {
        const QString other = otherNotebook(device, mBed.accountId(), notebook);
        if (other.isEmpty())
            return {};
        moveOnDevice(device, event, other, now);
        device.storage->save();
        return { name, QStringLiteral("moved to the other calendar") };
    }
    const int occurrence = dice.below(Occurrences - 1);
    const QDateTime moment = event->recurs() ? laterMoments(event).value(occurrence) : QDateTime();
    // Whether an occurrence of its own gets longer with its series is a matter of taste.
    if (what == 4 && event->recurs())
        return {};
    if (what >= 5 && !moment.isValid())
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
        const auto exception = device.calendar->event(event->uid(), moment);
        if (exception)
            return {};
        event->recurrence()->addExDateTime(moment);
    } else {
        const DeviceEvent::Ptr exception = device.occurrence(event, moment.date());
        if (!exception)
            return {};
        exception->setLocation(text);
        device.calendar->addEvent(exception, notebook);
        exception->setCreated(now);
        exception->setLastModified(now);
    }
    event->setLastModified(now);
    device.storage->save();
    return { name, QStringLiteral("changed (%1, %2)").arg(what).arg(text) };
}

ItemActor::State EventActor::serverState()
{
    return withCopies(PimListing::serverEvents(mBed.mailbox()));
}

ItemActor::State EventActor::deviceState()
{
    return withCopies(PimListing::deviceEvents(mBed.accountId()));
}
