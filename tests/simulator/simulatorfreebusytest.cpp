// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventitem.h"
#include "simulator/freebusy.h"

#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

const QByteArray Berlin = "Europe/Berlin";

/** 2026-05-04, a Monday, at that wall time in Berlin, as a moment. */
QDateTime berlin(int day, int hour, int minute = 0)
{
    return QDateTime(QDate(2026, 5, day), QTime(hour, minute), QTimeZone(Berlin)).toUTC();
}

Event at(int day, int hour, int minutes, int busyStatus)
{
    Event event = Event::timed(
        QStringLiteral("event"), Berlin, QDateTime(QDate(2026, 5, day), QTime(hour, 0)), minutes);
    event.busyStatus = busyStatus;
    return event;
}

Event daily(int day, int hour, int occurrences)
{
    Event event = at(day, hour, 60, 2);
    event.rule = EventRule();
    event.rule->occurrences = occurrences;
    return event;
}

} // namespace

/** Half hours by the events of a mailbox. */
class SimulatorFreeBusyTest : public QObject
{
    Q_OBJECT

private:
    Mailbox mMailbox;

    void place(const Event &event)
    {
        QVERIFY(
            !mMailbox.addItem(mMailbox.folderOfType(CalendarFolder).id, EventItem::make(event)).isEmpty());
    }
    QString morning(int day) const { return FreeBusy::merged(mMailbox, berlin(day, 8), berlin(day, 11)); }

private Q_SLOTS:
    void cleanup()
    {
        for (const ItemEntry &entry : mMailbox.items(mMailbox.folderOfType(CalendarFolder).id))
            mMailbox.remove(entry.serverId);
    }

    void withoutEventsEverybodyIsFree() { QCOMPARE(morning(4), QStringLiteral("000000")); }

    void aPartOfAHalfHourIsAllOfIt()
    {
        QCOMPARE(FreeBusy::merged(mMailbox, berlin(4, 8), berlin(4, 8, 40)), QStringLiteral("00"));
        place(at(4, 9, 10, 2));
        QCOMPARE(morning(4), QStringLiteral("002000"));
    }

    void theHighestCounts()
    {
        place(at(4, 8, 180, 1));
        place(at(4, 9, 60, 3));
        place(at(4, 9, 30, 2));
        place(at(4, 10, 60, 0));
        QCOMPARE(morning(4), QStringLiteral("113311"));
    }

    void eventsReachInFromBothSides()
    {
        place(at(4, 7, 90, 2));
        place(at(4, 10, 600, 3));
        QCOMPARE(morning(4), QStringLiteral("200033"));
        QCOMPARE(morning(5), QStringLiteral("000000"));
    }

    void aCancelledMeetingTakesNoTime()
    {
        Event event = at(4, 9, 60, 2);
        event.meetingStatus = 7;
        place(event);
        QCOMPARE(morning(4), QStringLiteral("000000"));
    }

    void aDayIsWholeWhereItWasMade()
    {
        Event event = Event::wholeDay(QStringLiteral("day"), QDate(2026, 5, 4));
        event.zone = EventZone::named(Berlin, berlin(4, 0));
        event.busyStatus = 3;
        place(event);
        QCOMPARE(FreeBusy::merged(mMailbox, berlin(3, 23), berlin(5, 1)),
            QStringLiteral("00") + QString(48, '3') + QStringLiteral("00"));
    }

    void aSeriesCountsOnEachOfItsDays()
    {
        place(daily(4, 9, 2));
        QCOMPARE(morning(3), QStringLiteral("000000"));
        QCOMPARE(morning(4), QStringLiteral("002200"));
        QCOMPARE(morning(5), QStringLiteral("002200"));
        QCOMPARE(morning(6), QStringLiteral("000000"));
    }

    void exceptionsCountWhereTheyAre()
    {
        Event event = daily(4, 9, 3);
        event.deleteOccurrence(QDate(2026, 5, 5));
        event.editOccurrence(QDate(2026, 5, 6), [](EventDetails &details) {
            details.start = berlin(20, 8);
            details.end = berlin(20, 9);
        });
        place(event);
        QCOMPARE(morning(4), QStringLiteral("002200"));
        QCOMPARE(morning(5), QStringLiteral("000000"));
        QCOMPARE(morning(6), QStringLiteral("000000"));
        QCOMPARE(morning(20), QStringLiteral("220000"));
    }
};

FENNEL_REGISTER_TEST(SimulatorFreeBusyTest)
#include "simulatorfreebusytest.moc"
