// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/devicecalendar.h"
#include "support/sampleevents.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include "simulator/protocolversion.h"

#include <QtTest>

using Simulator::Event;

/** @short Events go from the server to the device and back. */
class EventSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnrelatedEditLeavesTheRestOfAnEventAlone_data() { versions(); }
    void anUnrelatedEditLeavesTheRestOfAnEventAlone()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        QVector<QPair<QString, Event>> placed;
        Event weekly = SampleEvents::weekly();
        weekly.exceptions.first().details.subject = QStringLiteral("Team, later");
        Event abroad = SampleEvents::wholeDay();
        abroad.subject = QStringLiteral("Fair abroad");
        abroad.zone = Simulator::EventZone::named("America/New_York", abroad.start);
        for (const Event &event : { weekly, SampleEvents::wholeDay(), abroad, SampleEvents::meeting() }) {
            const QString id = bed.place(event);
            placed.append({ id, *bed.serverEvent(id) });
        }
        QCOMPARE(bed.sync(), 0);
        {
            DeviceCalendar device;
            QCOMPARE(device.calendar->rawEvents().size(), 7);
            for (const auto &entry : qAsConst(placed)) {
                const auto event = device.withSummary(entry.second.subject);
                QVERIFY2(event, qPrintable(entry.second.subject));
                bed.clock().advance(5000);
                event->setCategories(QStringList { QStringLiteral("Edited") });
                event->setLastModified(bed.clock().currentDateTimeUtc());
            }
            QVERIFY(device.storage->save());
        }
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        for (const auto &entry : qAsConst(placed)) {
            QCOMPARE(bed.serverEvent(entry.first)->differences(entry.second).join(QLatin1Char(' ')),
                QStringLiteral("Categories"));
        }
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void aSeriesOfTheDeviceReachesTheServerWithItsOccurrences_data() { versions(); }
    void aSeriesOfTheDeviceReachesTheServerWithItsOccurrences()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        {
            DeviceCalendar device;
            const auto series = newSeries();
            QVERIFY(device.calendar->addEvent(series, device.notebookOf(bed.accountId())));
            stamp(bed, series);
            const auto moved = device.occurrence(series, QDate(2036, 3, 31));
            QVERIFY(moved);
            moved->setSummary(QStringLiteral("Moved"));
            moved->setDtStart(moved->dtStart().addSecs(3600));
            moved->setDtEnd(moved->dtEnd().addSecs(3600));
            QVERIFY(device.calendar->addEvent(moved, device.notebookOf(bed.accountId())));
            stamp(bed, moved);
            series->recurrence()->addExDateTime(at(QDate(2036, 4, 14)));
            stamp(bed, series);
            QVERIFY(device.storage->save());
        }
        settle(bed);
        QCOMPARE(bed.serverEvents().size(), 1);
        const Event event = bed.serverEvents().first();
        Event expected = Event::timed(
            QStringLiteral("Class"), "Europe/Berlin", QDateTime(QDate(2036, 3, 17), QTime(18, 30)), 90);
        expected.uid = event.uid;
        expected.location.name = QStringLiteral("Hall");
        expected.reminder = 30;
        expected.busyStatus = 0; // an event without a status does not say that it takes time
        expected.rule = Simulator::EventRule();
        expected.rule->type = Simulator::EventRule::Weekly;
        expected.rule->dayOfWeek = Simulator::EventRule::Monday;
        expected.rule->occurrences = 8;
        expected.editOccurrence(QDate(2036, 3, 31), [](Simulator::EventDetails &details) {
            details.subject = QStringLiteral("Moved");
            details.start = details.start.addSecs(3600);
            details.end = details.end.addSecs(3600);
        });
        expected.deleteOccurrence(QDate(2036, 4, 14));
        QCOMPARE(event.differences(expected).join(QLatin1Char(' ')), QString());
        const int uploads = uploadCount(bed);
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(uploadCount(bed), uploads);
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void anOccurrenceIsEditedAndAnotherDeletedOnTheDevice_data() { versions(); }
    void anOccurrenceIsEditedAndAnotherDeletedOnTheDevice()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString id = bed.place(SampleEvents::weekly());
        bed.editEvent(id, [](Event &event) { event.exceptions.clear(); });
        Event expected = *bed.serverEvent(id);
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        {
            DeviceCalendar device;
            const auto series = device.withSummary(expected.subject);
            QVERIFY(series);
            const auto edited = device.occurrence(series, QDate(2026, 12, 7));
            QVERIFY(edited);
            edited->setSummary(QStringLiteral("Once"));
            QVERIFY(device.calendar->addEvent(edited, device.notebookOf(bed.accountId())));
            stamp(bed, edited);
            series->recurrence()->addExDateTime(
                QDateTime(QDate(2026, 12, 10), series->dtStart().time(), series->dtStart().timeZone()));
            stamp(bed, series);
            QVERIFY(device.storage->save());
        }
        settle(bed);
        expected.editOccurrence(QDate(2026, 12, 7),
            [](Simulator::EventDetails &details) { details.subject = QStringLiteral("Once"); });
        expected.deleteOccurrence(QDate(2026, 12, 10));
        QCOMPARE(bed.serverEvent(id)->differences(expected).join(QLatin1Char(' ')), QString());
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void deletionsGoBothWays()
    {
        SyncTestBed bed({ QStringLiteral("14.1") }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString meeting = bed.place(SampleEvents::meeting());
        const QString weekly = bed.place(SampleEvents::weekly());
        bed.place(SampleEvents::wholeDay());
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        {
            DeviceCalendar device;
            QVERIFY(device.calendar->deleteIncidence(device.withSummary(SampleEvents::meeting().subject)));
            QVERIFY(device.storage->save());
        }
        QVERIFY(bed.mailbox().remove(weekly));
        settle(bed);
        QVERIFY(!bed.serverEvent(meeting));
        QCOMPARE(bed.serverEvents().size(), 1);
        DeviceCalendar device;
        // The fair, with one other occurrence.
        QCOMPARE(device.calendar->rawEvents().size(), 2);
        QCOMPARE(bed.server().failures(), QStringList());
    }

private:
    static void versions()
    {
        QTest::addColumn<QString>("version");
        for (const int version : Simulator::protocolVersions())
            QTest::newRow(qPrintable(Simulator::versionText(version))) << Simulator::versionText(version);
    }

    static QDateTime at(const QDate &day)
    {
        return QDateTime(day, QTime(18, 30), QTimeZone("Europe/Berlin"));
    }

    static KCalendarCore::Event::Ptr newSeries()
    {
        const KCalendarCore::Event::Ptr series(new KCalendarCore::Event);
        series->setSummary(QStringLiteral("Class"));
        series->setLocation(QStringLiteral("Hall"));
        series->setDtStart(at(QDate(2036, 3, 17)));
        series->setDtEnd(series->dtStart().addSecs(90 * 60));
        const auto alarm = series->newAlarm();
        alarm->setType(KCalendarCore::Alarm::Display);
        alarm->setStartOffset(KCalendarCore::Duration(-30 * 60));
        alarm->setEnabled(true);
        series->recurrence()->setWeekly(1);
        series->recurrence()->setDuration(8);
        return series;
    }

    /** As of now, which is later than the last sync. */
    static void stamp(SyncTestBed &bed, const KCalendarCore::Event::Ptr &event)
    {
        event->setCreated(bed.clock().currentDateTimeUtc());
        event->setLastModified(bed.clock().currentDateTimeUtc());
    }

    /** Syncs until what had to wait for something else is through as well. */
    static void settle(SyncTestBed &bed)
    {
        for (int i = 0; i < 3; ++i) {
            bed.clock().advance(5000);
            QCOMPARE(bed.sync(), 0);
        }
    }

    static int uploadCount(SyncTestBed &bed)
    {
        int count = 0;
        const auto requests = bed.server().requests();
        for (const auto &request : requests)
            count += request.document.has(QStringLiteral("Collections/Collection/Commands")) ? 1 : 0;
        return count;
    }
};

FENNEL_REGISTER_TEST(EventSyncTest)
#include "eventsynctest.moc"
