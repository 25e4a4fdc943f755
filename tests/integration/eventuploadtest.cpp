// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/devicecalendar.h"
#include "support/sampleevents.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include "simulator/protocolversion.h"

#include <QtTest>

using Simulator::Event;
using Simulator::Override;

namespace {

constexpr int MoreThanOneWindow = 150;

} // namespace

/** @short What the user does to the calendar reaches the server once, whatever comes between. */
class EventUploadTest : public QObject
{
    Q_OBJECT

private:
    static void versions()
    {
        QTest::addColumn<QString>("version");
        for (const int version : Simulator::protocolVersions())
            QTest::newRow(qPrintable(Simulator::versionText(version))) << Simulator::versionText(version);
    }

    static int uploads(SyncTestBed &bed)
    {
        int count = 0;
        const auto requests = bed.server().requests(QStringLiteral("Sync"));
        for (const auto &request : requests)
            count += request.document.has(QStringLiteral("Collections/Collection/Commands")) ? 1 : 0;
        return count;
    }

    static bool nothingMoreGoesUp(SyncTestBed &bed)
    {
        bed.clock().advance(5000);
        const int before = uploads(bed);
        return bed.sync() == 0 && uploads(bed) == before;
    }

    /** As of now, which is later than the last sync. */
    static void stamp(SyncTestBed &bed, const KCalendarCore::Event::Ptr &event)
    {
        event->setLastModified(bed.clock().currentDateTimeUtc());
    }

    static bool addOnDevice(SyncTestBed &bed, const QString &summary)
    {
        bed.clock().advance(5000);
        DeviceCalendar device;
        const KCalendarCore::Event::Ptr event(new KCalendarCore::Event);
        event->setSummary(summary);
        event->setDtStart(QDateTime(QDate(2036, 3, 17), QTime(18, 30), QTimeZone("Europe/Berlin")));
        event->setDtEnd(event->dtStart().addSecs(3600));
        if (!device.calendar->addEvent(event, device.notebookOf(bed.accountId())))
            return false;
        event->setCreated(bed.clock().currentDateTimeUtc());
        stamp(bed, event);
        return device.storage->save();
    }

    /** Six days; the second has a subject of its own, the third is left out. */
    static bool addSeriesOnDevice(SyncTestBed &bed)
    {
        if (!addOnDevice(bed, QStringLiteral("Series")))
            return false;
        DeviceCalendar device;
        const KCalendarCore::Event::Ptr series = device.series(bed.accountId()).constFirst();
        series->recurrence()->setDaily(1);
        series->recurrence()->setDuration(6);
        series->recurrence()->addExDateTime(series->dtStart().addDays(2));
        const KCalendarCore::Event::Ptr exception =
            device.occurrence(series, series->dtStart().date().addDays(1));
        exception->setSummary(QStringLiteral("Moved"));
        device.calendar->addEvent(exception, device.notebookOf(bed.accountId()));
        exception->setCreated(bed.clock().currentDateTimeUtc());
        stamp(bed, exception);
        stamp(bed, series);
        return device.storage->save();
    }

    static QString seriesOnDevice(SyncTestBed &bed)
    {
        DeviceCalendar device;
        const KCalendarCore::Event::List all = device.series(bed.accountId());
        if (all.size() != 1)
            return QStringLiteral("%1 events").arg(all.size());
        const KCalendarCore::Event::Ptr series = all.constFirst();
        const KCalendarCore::Event::List exceptions = device.calendar->eventInstances(series);
        QStringList parts;
        for (const KCalendarCore::Event::Ptr &exception : exceptions)
            parts.append(exception->summary());
        if (!series->recursAt(series->dtStart().addDays(2)))
            parts.append(QStringLiteral("without the third"));
        return parts.join(QStringLiteral(", "));
    }

    static QString occurrencesOf(const Event &event)
    {
        QStringList parts;
        for (const auto &exception : event.exceptions) {
            if (!exception.isDeleted)
                parts.append(event.detailsOf(exception).subject);
        }
        for (const auto &exception : event.exceptions) {
            if (exception.isDeleted)
                parts.append(QStringLiteral("without the third"));
        }
        return parts.join(QStringLiteral(", "));
    }

    static bool editOnDevice(SyncTestBed &bed, const QString &summary, const QString &location)
    {
        bed.clock().advance(5000);
        DeviceCalendar device;
        const KCalendarCore::Event::Ptr event = device.withSummary(summary);
        if (!event)
            return false;
        event->setLocation(location);
        stamp(bed, event);
        return device.storage->save();
    }

    static bool removeOnDevice(const QString &summary)
    {
        DeviceCalendar device;
        const KCalendarCore::Event::Ptr event = device.withSummary(summary);
        return event && device.calendar->deleteEvent(event) && device.storage->save();
    }

    static QStringList subjects(SyncTestBed &bed)
    {
        QStringList result;
        const QVector<Event> events = bed.serverEvents();
        for (const Event &event : events)
            result.append(event.subject);
        result.sort();
        return result;
    }

    static QStringList deviceSubjects()
    {
        QStringList result;
        const DeviceCalendar device;
        const KCalendarCore::Event::List events = device.calendar->rawEvents();
        for (const KCalendarCore::Event::Ptr &event : events) {
            if (!event->hasRecurrenceId())
                result.append(event->summary());
        }
        result.sort();
        return result;
    }

private Q_SLOTS:
    void oneOfEachKind_data() { versions(); }
    void oneOfEachKind()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString edited = bed.place(SampleEvents::meeting());
        Event deleted = SampleEvents::meeting();
        deleted.subject = QStringLiteral("To be deleted");
        deleted.uid.clear();
        bed.place(deleted);
        QCOMPARE(bed.sync(), 0);
        QVERIFY(addOnDevice(bed, QStringLiteral("New here")));
        QVERIFY(editOnDevice(bed, SampleEvents::meeting().subject, QStringLiteral("Elsewhere")));
        QVERIFY(removeOnDevice(QStringLiteral("To be deleted")));
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        QStringList expected { SampleEvents::meeting().subject, QStringLiteral("New here") };
        expected.sort();
        QCOMPARE(subjects(bed), expected);
        QCOMPARE(deviceSubjects(), expected);
        QCOMPARE(bed.serverEvent(edited)->location.name, QStringLiteral("Elsewhere"));
        QVERIFY(nothingMoreGoesUp(bed));
        bed.restartEngine();
        QVERIFY(nothingMoreGoesUp(bed));
        QCOMPARE(deviceSubjects(), expected);
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void aNewSeriesKeepsItsOccurrences_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("keyIsStored");
        for (const char *version : { "16.0", "16.1" }) {
            QTest::addRow("%s", version) << QString::fromLatin1(version) << true;
            QTest::addRow("%s, without the key", version) << QString::fromLatin1(version) << false;
        }
    }

    void aNewSeriesKeepsItsOccurrences()
    {
        QFETCH(QString, version);
        QFETCH(bool, keyIsStored);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sync(), 0);
        QVERIFY(addSeriesOnDevice(bed));
        EasFolderItem before =
            *EasDatabase::instance()->folderItemByServerId(bed.accountId(), bed.calendarId());

        // The series goes up, but mail that does not come keeps its occurrences from following.
        for (int number = 0; number < MoreThanOneWindow; ++number)
            bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QString::number(number)));
        bed.server().overrideNext(QStringLiteral("Sync"), Override());
        for (int attempt = 0; attempt < 10; ++attempt) // More often than a request is repeated.
            bed.server().overrideNext(QStringLiteral("Sync"), Override::httpStatus(500));
        QVERIFY(bed.sync() != 0);
        bed.server().clearScript();
        if (!keyIsStored) {
            before.appendChangedField(Wbxml::AirSync::SyncKey.key());
            QVERIFY(EasDatabase::instance()->updateFolderItems(bed.accountId(), { before }));
        }
        bed.restartEngine();
        for (int round = 0; round < 3; ++round) {
            bed.clock().advance(5000);
            QCOMPARE(bed.sync(), 0);
        }
        const QVector<Event> events = bed.serverEvents();
        QCOMPARE(events.size(), 1);
        QCOMPARE(seriesOnDevice(bed), QStringLiteral("Moved, without the third"));
        QCOMPARE(occurrencesOf(events.constFirst()), QStringLiteral("Moved, without the third"));
        QVERIFY(nothingMoreGoesUp(bed));
    }

    void aLostAnswerDoublesNothing_data() { versions(); }
    void aLostAnswerDoublesNothing()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sync(), 0);
        QVERIFY(addOnDevice(bed, QStringLiteral("New here")));
        bed.clock().advance(5000);
        bed.server().overrideNext(QStringLiteral("Sync"), Override::drop());
        bed.sync();
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(subjects(bed), QStringList { QStringLiteral("New here") });
        QCOMPARE(deviceSubjects(), QStringList { QStringLiteral("New here") });
        QVERIFY(nothingMoreGoesUp(bed));
    }

    void aRefusedEventGoesUpLater()
    {
        SyncTestBed bed({ QStringLiteral("14.1") }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString id = bed.place(SampleEvents::meeting());
        QCOMPARE(bed.sync(), 0);
        QVERIFY(editOnDevice(bed, SampleEvents::meeting().subject, QStringLiteral("Elsewhere")));
        bed.clock().advance(5000);
        bed.server().overrideNext(QStringLiteral("Sync"), Override::itemStatus(6, id));
        QCOMPARE(bed.sync(), 0);
        QVERIFY(bed.serverEvent(id)->location.name != QLatin1String("Elsewhere"));
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(bed.serverEvent(id)->location.name, QStringLiteral("Elsewhere"));
        QVERIFY(nothingMoreGoesUp(bed));
    }

    void anEventThatGoesInTheSecondOfItsCreation_data()
    {
        QTest::addColumn<bool>("hasGoneUp");
        QTest::newRow("before it has gone up") << false;
        QTest::newRow("after it has gone up") << true;
    }

    void anEventThatGoesInTheSecondOfItsCreation()
    {
        QFETCH(bool, hasGoneUp);
        SyncTestBed bed({ QStringLiteral("14.1") }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sync(), 0);
        bed.clock().stop();
        QVERIFY(addOnDevice(bed, QStringLiteral("Short")));
        if (hasGoneUp) {
            QCOMPARE(bed.sync(), 0);
            QCOMPARE(subjects(bed), QStringList { QStringLiteral("Short") });
        }
        {
            DeviceCalendar device;
            QVERIFY(
                device.remove(device.withSummary(QStringLiteral("Short")), bed.clock().currentDateTimeUtc()));
        }
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(subjects(bed), QStringList());
        QVERIFY(nothingMoreGoesUp(bed));
        QCOMPARE(subjects(bed), QStringList());
        QCOMPARE(deviceSubjects(), QStringList());
    }

    void aDeletedExceptionGoesUp_data() { versions(); }
    void aDeletedExceptionGoesUp()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString id = bed.place(SampleEvents::weekly());
        Event expected = *bed.serverEvent(id);
        QCOMPARE(bed.sync(), 0);
        QDateTime original;
        {
            DeviceCalendar device;
            const KCalendarCore::Event::Ptr series = device.withSummary(SampleEvents::weekly().subject);
            const KCalendarCore::Event::List exceptions = device.calendar->eventInstances(series);
            QVERIFY(!exceptions.isEmpty());
            original = exceptions.constFirst()->recurrenceId();
            QVERIFY(device.calendar->deleteEvent(exceptions.constFirst()));
            QVERIFY(device.storage->save());
        }
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        expected.deleteOccurrence(original.date());
        QCOMPARE(bed.serverEvent(id)->differences(expected).join(QLatin1Char(' ')), QString());
        QVERIFY(nothingMoreGoesUp(bed));
        QCOMPARE(bed.serverEvent(id)->differences(expected).join(QLatin1Char(' ')), QString());
        const DeviceCalendar device;
        QVERIFY(!device.withSummary(SampleEvents::weekly().subject)->recursAt(original));
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void afterAResyncNothingIsThereTwice_data() { versions(); }
    void afterAResyncNothingIsThereTwice()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        bed.place(SampleEvents::weekly());
        bed.place(SampleEvents::wholeDay());
        QCOMPARE(bed.sync(), 0);
        const int events = DeviceCalendar().calendar->rawEvents().size();
        QVERIFY(addOnDevice(bed, QStringLiteral("New here")));
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        bed.server().overrideNext(QStringLiteral("Sync"), Override::collectionStatus(3, bed.calendarId()), 1);
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(DeviceCalendar().calendar->rawEvents().size(), events + 1);
        QCOMPARE(bed.serverEvents().size(), 3);
        QVERIFY(nothingMoreGoesUp(bed));
    }
};

FENNEL_REGISTER_TEST(EventUploadTest)
#include "eventuploadtest.moc"
