// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eastimezone.h"
#include "storages/calendar/calendareventreader.h"
#include "support/calendarbed.h"
#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <KCalendarCore/OccurrenceIterator>
#include <KCalendarCore/Recurrence>

#include <QtTest>

#include <ctime>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

namespace {

/** The clock and the C library agree on the device's zone while this lives. */
class DeviceZone
{
public:
    explicit DeviceZone(const QByteArray &id)
        : mClock(QDateTime(QDate(2026, 1, 15), QTime(12, 0), Qt::UTC), QTimeZone(id))
        , mBefore(qgetenv("TZ"))
    {
        set(id);
    }
    ~DeviceZone() { set(mBefore); }
    Q_DISABLE_COPY(DeviceZone)

private:
    static void set(const QByteArray &id)
    {
        qputenv("TZ", id);
        tzset();
    }

    TestClock mClock;
    QByteArray mBefore;
};

const QList<QByteArray> zoneIds { "Europe/Berlin", "America/New_York", "Asia/Kolkata", "Australia/Sydney",
    "Pacific/Apia", "UTC" };

/** Here the clocks change at midnight, so that a day begins at one. */
const QList<QByteArray> midnightZoneIds { "Africa/Cairo", "America/Havana", "Asia/Beirut",
    "America/Santiago" };

/** Each day around a change of the clocks in one of these zones, and one day far from any. */
const QList<QDate> days { QDate(2026, 3, 7), QDate(2026, 3, 8), QDate(2026, 3, 9), QDate(2026, 3, 28),
    QDate(2026, 3, 29), QDate(2026, 3, 30), QDate(2026, 4, 4), QDate(2026, 4, 5), QDate(2026, 4, 6),
    QDate(2026, 4, 23), QDate(2026, 4, 24), QDate(2026, 4, 25), QDate(2026, 7, 1), QDate(2026, 9, 5),
    QDate(2026, 9, 6), QDate(2026, 9, 7), QDate(2026, 10, 3), QDate(2026, 10, 4), QDate(2026, 10, 5),
    QDate(2026, 10, 24), QDate(2026, 10, 25), QDate(2026, 10, 26), QDate(2026, 10, 31), QDate(2026, 11, 1),
    QDate(2026, 11, 2) };

QByteArray blockOf(const QTimeZone &zone, const QDate &day)
{
    Event event;
    event.setDtStart(QDateTime(day, QTime(12, 0), zone));
    return EasTimeZone::encode(event);
}

bool sameOffsets(const QTimeZone &one, const QTimeZone &other)
{
    for (const QDate &day : days) {
        const QDateTime moment(day, QTime(23, 30), Qt::UTC);
        if (one.offsetFromUtc(moment) != other.offsetFromUtc(moment))
            return false;
    }
    return true;
}

} // namespace

/**
 * Every kind of event under every zone of the device, on both sides of each change of the clocks: what the
 * server sent stands in the calendar at the same time, and goes back as it came.
 */
class CalendarZonesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timesStay_data()
    {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QByteArray>("server");
        for (const QByteArray &device : zoneIds) {
            for (const QByteArray &server : zoneIds)
                QTest::addRow("device in %s, event in %s", device.constData(), server.constData())
                    << device << server;
        }
        for (const QByteArray &zone : midnightZoneIds) {
            for (const QByteArray &other : { zone, QByteArray("Europe/Berlin") }) {
                QTest::addRow("device in %s, event in %s", other.constData(), zone.constData())
                    << other << zone;
            }
            QTest::addRow("device in %s, event in UTC", zone.constData()) << zone << QByteArray("UTC");
        }
    }

    void timesStay()
    {
        QFETCH(QByteArray, device);
        QFETCH(QByteArray, server);
        const LogCollector quiet;
        const DeviceZone deviceZone(device);
        CalendarBed bed;
        bed.account.setProtocolVersion(ProtocolVersion141);
        const QTimeZone zone(server);
        QList<EasCalendarItem> sent;
        for (const QDate &day : days) {
            sent.append(hour(bed, zone, day));
            sent.append(allDay(bed, zone, day));
        }
        QList<EasCalendarItem> added = sent;
        QList<EasCalendarItem> none;
        QVERIFY(bed.apply(added, none));
        QCOMPARE(added.size(), sent.size());
        CalendarStoreContext &store = bed.device();
        for (const EasCalendarItem &item : qAsConst(sent)) {
            const Event::Ptr event = store.calendar->event(bed.localId(item.serverId()));
            const QDate day = QDate::fromString(item.serverId().mid(1), Qt::ISODate);
            QCOMPARE(event->dtStart().date(), day);
            QCOMPARE(event->dtEnd().date(), event->allDay() ? day.addDays(1) : day);
            QVERIFY(event->allDay() || event->dtStart() == dateTimeFromString(item.startTime(), nullptr));
            compareWithUpload(store, event, item);
        }
    }

    void seriesKeepTheirHour_data() { timesStay_data(); }

    void seriesKeepTheirHour()
    {
        QFETCH(QByteArray, device);
        QFETCH(QByteArray, server);
        const LogCollector quiet;
        const DeviceZone deviceZone(device);
        CalendarBed bed;
        bed.account.setProtocolVersion(ProtocolVersion141);
        const QTimeZone zone(server);
        for (const bool wholeDay : { false, true }) {
            EasCalendarItem item = wholeDay ? allDay(bed, zone, days.first()) : hour(bed, zone, days.first());
            item.setServerId(wholeDay ? QStringLiteral("days") : QStringLiteral("hours"));
            EasRecurrenceContainer recurrence;
            recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
            recurrence.setInterval(1);
            recurrence.setUntil(dateTimeToString(start(zone, days.last(), wholeDay)));
            item.setRecurrence(recurrence);
            EasCalendarItem left;
            left.setExceptionStartTime(dateTimeToString(start(zone, QDate(2026, 3, 29), wholeDay)));
            left.setExceptionDeleted(1);
            EasCalendarItem moved;
            moved.setExceptionStartTime(dateTimeToString(start(zone, QDate(2026, 10, 26), wholeDay)));
            moved.setSubject(QStringLiteral("Moved"));
            item.setExceptions({ left, moved });
            QVERIFY(bed.add(item));

            CalendarStoreContext &store = bed.device();
            const Event::Ptr event = store.calendar->event(bed.localId(item.serverId()));
            const QTimeZone own = event->dtStart().timeZone();
            QVERIFY(wholeDay ? event->dtStart().timeSpec() == Qt::LocalTime : sameOffsets(own, zone));
            QCOMPARE(store.calendar->eventInstances(event).size(), 1);
            QCOMPARE(store.calendar->eventInstances(event).first()->dtStart().date(), QDate(2026, 10, 26));
            for (QDate day = days.first().addDays(-1); day <= days.last().addDays(1); day = day.addDays(1)) {
                // The calendar's library finds no occurrence on a day that does not begin at midnight.
                if (wholeDay && day.startOfDay(own).time() != QTime(0, 0))
                    continue;
                const bool expected = day >= days.first() && day <= days.last() && day != QDate(2026, 3, 29);
                const bool found =
                    wholeDay ? event->recursOn(day, own) : event->recursAt(start(zone, day, false));
                QVERIFY2(found == expected, qPrintable(day.toString(Qt::ISODate)));
            }
            compareWithUpload(store, event, item);
        }
    }

    void theHourThatComesTwice_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("start");
        const auto row = [](const char *zone, const char *start) {
            QTest::addRow("%s at %s", zone, start) << QByteArray(zone) << QString::fromLatin1(start);
        };
        row("Europe/Berlin", "20261025T003000Z");
        row("Europe/Berlin", "20261025T013000Z");
        row("America/New_York", "20261101T053000Z");
        row("America/New_York", "20261101T063000Z");
        row("Australia/Sydney", "20260404T153000Z");
        row("Australia/Sydney", "20260404T163000Z");
    }

    void theHourThatComesTwice()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, start);
        const LogCollector quiet;
        const DeviceZone deviceZone(zone);
        CalendarBed bed;
        EasCalendarItem item = bed.item();
        item.setTimezone(blockOf(QTimeZone(zone), QDate(2026, 1, 1)));
        item.setStartTime(start);
        item.setEndTime(dateTimeToString(dateTimeFromString(start, nullptr).addSecs(1800)));
        QVERIFY(bed.add(item));
        CalendarStoreContext &store = bed.device();
        const Event::Ptr event = store.calendar->event(bed.localId());
        QCOMPARE(event->dtStart(), dateTimeFromString(start, nullptr));
        compareWithUpload(store, event, item);
    }

    void daysWithoutAZone_data()
    {
        QTest::addColumn<QByteArray>("device");
        for (const QByteArray &device : zoneIds)
            QTest::addRow("device in %s", device.constData()) << device;
    }

    void daysWithoutAZone()
    {
        QFETCH(QByteArray, device);
        const LogCollector quiet;
        const DeviceZone deviceZone(device);
        CalendarBed bed;
        bed.account.setProtocolVersion(ProtocolVersion161);
        EasCalendarItem item = allDay(bed, QTimeZone::utc(), QDate(2026, 3, 29));
        item.setServerId(QStringLiteral("days"));
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
        recurrence.setInterval(1);
        recurrence.setUntil(QStringLiteral("20260410T000000Z"));
        item.setRecurrence(recurrence);
        QVERIFY(bed.add(item));
        CalendarStoreContext &store = bed.device();
        const Event::Ptr event = store.calendar->event(bed.localId(item.serverId()));
        QCOMPARE(event->dtStart().date(), QDate(2026, 3, 29));
        QCOMPARE(event->dtEnd().date(), QDate(2026, 3, 30));
        QVERIFY(event->recursOn(QDate(2026, 4, 10), event->dtStart().timeZone()));
        QVERIFY(!event->recursOn(QDate(2026, 4, 11), event->dtStart().timeZone()));
        compareWithUpload(store, event, item);
    }

    void daysOfAMidnightElsewhere_data()
    {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QByteArray>("block");
        QTest::addColumn<QByteArray>("server");
        const QByteArray berlin("Europe/Berlin");
        const QByteArray lisbon = blockOf(QTimeZone("Europe/Lisbon"), QDate(2026, 7, 9));
        for (const QByteArray &device :
            { berlin, QByteArray("America/New_York"), QByteArray("Asia/Tokyo") }) {
            QTest::addRow("no zone, device in %s", device.constData()) << device << QByteArray() << berlin;
            QTest::addRow("a block of zeros, device in %s", device.constData())
                << device << QByteArray(172, 0).toBase64() << berlin;
            QTest::addRow("an hour west, device in %s", device.constData()) << device << lisbon << berlin;
        }
    }

    /** A server that says midnight of one zone and names another, or none. */
    void daysOfAMidnightElsewhere()
    {
        QFETCH(QByteArray, device);
        QFETCH(QByteArray, block);
        QFETCH(QByteArray, server);
        const LogCollector quiet;
        const DeviceZone deviceZone(device);
        CalendarBed bed;
        bed.account.setProtocolVersion(ProtocolVersion141);
        const QTimeZone zone(server);
        EasCalendarItem item = allDay(bed, zone, QDate(2026, 7, 10));
        item.setServerId(QStringLiteral("days"));
        item.setTimezone(block);
        item.setEndTime(dateTimeToString(start(zone, QDate(2026, 7, 11), true)));
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
        recurrence.setInterval(1);
        recurrence.setUntil(dateTimeToString(start(zone, QDate(2026, 7, 14), true)));
        item.setRecurrence(recurrence);
        EasCalendarItem left;
        left.setExceptionStartTime(dateTimeToString(start(zone, QDate(2026, 7, 12), true)));
        left.setExceptionDeleted(1);
        EasCalendarItem moved;
        moved.setExceptionStartTime(dateTimeToString(start(zone, QDate(2026, 7, 13), true)));
        moved.setSubject(QStringLiteral("Other"));
        item.setExceptions({ left, moved });
        QVERIFY(bed.add(item));
        CalendarStoreContext &store = bed.device();
        const Event::Ptr event = store.calendar->event(bed.localId(item.serverId()));
        QCOMPARE(event->dtStart().date(), QDate(2026, 7, 10));
        QCOMPARE(event->dtEnd().date(), QDate(2026, 7, 10));
        QCOMPARE(shownDays(store),
            QStringList({ QStringLiteral("2026-07-10 Days"), QStringLiteral("2026-07-11 Days"),
                QStringLiteral("2026-07-13 Other"), QStringLiteral("2026-07-14 Days") }));
        compareWithUpload(store, event, item);
    }

    void aMidnightOfTheDevicesOwnZone_data()
    {
        QTest::addColumn<QByteArray>("device");
        for (const char *zone : { "Pacific/Apia", "Pacific/Tongatapu", "Pacific/Auckland",
                 "Pacific/Kiritimati", "Europe/Berlin", "America/New_York" })
            QTest::addRow("device in %s", zone) << QByteArray(zone);
    }

    void aMidnightOfTheDevicesOwnZone()
    {
        QFETCH(QByteArray, device);
        const LogCollector quiet;
        const DeviceZone deviceZone(device);
        CalendarBed bed;
        bed.account.setProtocolVersion(ProtocolVersion141);
        EasCalendarItem item = allDay(bed, QTimeZone(device), QDate(2026, 1, 20));
        item.setTimezone({});
        QVERIFY(bed.add(item));
        CalendarStoreContext &store = bed.device();
        const Event::Ptr event = store.calendar->event(bed.localId(item.serverId()));
        QCOMPARE(event->dtStart().date(), QDate(2026, 1, 20));
        QCOMPARE(event->dtEnd().date(), QDate(2026, 1, 21));
        compareWithUpload(store, event, item);
    }

    void anExceptionKeepsItsDaysWhereTheClocksArePutBack()
    {
        const LogCollector quiet;
        const DeviceZone deviceZone("Europe/Berlin");
        CalendarBed bed;
        const QTimeZone zone("Europe/Berlin");
        EasCalendarItem item = allDay(bed, zone, QDate(2026, 10, 3));
        item.setEndTime(dateTimeToString(start(zone, QDate(2026, 10, 6), true)));
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
        recurrence.setInterval(7);
        item.setRecurrence(recurrence);
        EasCalendarItem renamed;
        renamed.setExceptionStartTime(dateTimeToString(start(zone, QDate(2026, 10, 24), true)));
        renamed.setSubject(QStringLiteral("Other"));
        item.setExceptions({ renamed });
        QVERIFY(bed.add(item));
        const Event::List exceptions = bed.exceptions(item.serverId());
        QCOMPARE(exceptions.size(), 1);
        QCOMPARE(exceptions.first()->dtStart().date(), QDate(2026, 10, 24));
        QCOMPARE(exceptions.first()->dtEnd().date(), QDate(2026, 10, 26));
    }

private:
    /** Each day of July on which a calendar shows something, and what. */
    static QStringList shownDays(const CalendarStoreContext &store)
    {
        QStringList days;
        KCalendarCore::OccurrenceIterator occurrence(*store.calendar,
            QDateTime(QDate(2026, 7, 1), QTime(0, 0)), QDateTime(QDate(2026, 7, 31), QTime(0, 0)));
        while (occurrence.hasNext()) {
            occurrence.next();
            days.append(occurrence.occurrenceStartDate().date().toString(Qt::ISODate) + QLatin1Char(' ')
                + occurrence.incidence()->summary());
        }
        days.sort();
        return days;
    }

    static QDateTime start(const QTimeZone &zone, const QDate &day, bool wholeDay)
    {
        return wholeDay ? day.startOfDay(zone) : QDateTime(day, QTime(22, 30), zone);
    }

    static EasCalendarItem hour(const CalendarBed &bed, const QTimeZone &zone, const QDate &day)
    {
        EasCalendarItem item = bed.blank(QLatin1Char('h') + day.toString(Qt::ISODate));
        item.setTimezone(blockOf(zone, day));
        item.setStartTime(dateTimeToString(start(zone, day, false)));
        item.setEndTime(dateTimeToString(start(zone, day, false).addSecs(3600)));
        return item;
    }

    /** Two days, so that a change of the clocks can lie between them. */
    static EasCalendarItem allDay(const CalendarBed &bed, const QTimeZone &zone, const QDate &day)
    {
        EasCalendarItem item = bed.blank(QLatin1Char('d') + day.toString(Qt::ISODate));
        item.setSubject(QStringLiteral("Days"));
        item.setTimezone(blockOf(zone, day));
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        item.setStartTime(dateTimeToString(start(zone, day, true)));
        item.setEndTime(dateTimeToString(start(zone, day.addDays(2), true)));
        return item;
    }

    static void compareWithUpload(
        const CalendarStoreContext &store, const Event::Ptr &event, const EasCalendarItem &sent)
    {
        event->setLocation(QStringLiteral("An edit that has nothing to do with times"));
        EasCalendarItem item;
        QVERIFY(CalendarEventReader(store).convert(event, item, true));
        QCOMPARE(item.startTime(), sent.startTime());
        QCOMPARE(item.endTime(), sent.endTime());
        QCOMPARE(item.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent,
            sent.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent);
        QCOMPARE(item.recurrence().until(), sent.recurrence().until());
        QCOMPARE(item.timezone().isEmpty(), sent.timezone().isEmpty());
        QCOMPARE(item.recurrence().type(), sent.recurrence().type());
        QStringList sentStarts;
        QStringList starts;
        for (const EasCalendarItem &exception : sent.exceptions())
            sentStarts.append(exception.exceptionStartTime());
        for (const EasCalendarItem &exception : item.exceptions())
            starts.append(exception.exceptionStartTime());
        sentStarts.sort();
        starts.sort();
        QCOMPARE(starts, sentStarts);
        EasTimeZone before;
        EasTimeZone after;
        if (sent.timezone().isEmpty()) {
            QCOMPARE(item.timezone(), QString());
        } else {
            QVERIFY(before.parse(sent.timezone().toLatin1()) && after.parse(item.timezone().toLatin1()));
            QVERIFY(sameOffsets(before.timeZone(sent.startTime(), sent.endTime()),
                after.timeZone(item.startTime(), item.endTime())));
        }
    }
};

FENNEL_REGISTER_TEST(CalendarZonesTest)
#include "calendarzonestest.moc"
