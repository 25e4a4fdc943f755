// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/sampleevents.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include "simulator/protocolversion.h"

#include <KCalendarCore/Event>
#include <extendedcalendar.h>
#include <extendedstorage.h>

#include <QtTest>

using KCalendarCore::Incidence;
using Simulator::Event;

namespace {

/** The device's calendar as a calendar program has it. */
class DeviceCalendar
{
public:
    DeviceCalendar()
    {
        calendar = mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc());
        storage = mKCal::ExtendedCalendar::defaultStorage(calendar);
        if (!storage->open() || !storage->load())
            qFatal("the store cannot be read");
    }

    ~DeviceCalendar() { storage->close(); }

    KCalendarCore::Event::Ptr withSummary(const QString &summary) const
    {
        const auto events = calendar->rawEvents();
        for (const auto &event : events) {
            if (!event->hasRecurrenceId() && event->summary() == summary)
                return event;
        }
        return {};
    }

    mKCal::ExtendedCalendar::Ptr calendar;
    mKCal::ExtendedStorage::Ptr storage;
};

} // namespace

/** @short Events go from the server to the device and back. */
class EventSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnrelatedEditLeavesTheRestOfAnEventAlone_data()
    {
        QTest::addColumn<QString>("version");
        for (const int version : Simulator::protocolVersions())
            QTest::newRow(qPrintable(Simulator::versionText(version))) << Simulator::versionText(version);
    }

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
};

FENNEL_REGISTER_TEST(EventSyncTest)
#include "eventsynctest.moc"
