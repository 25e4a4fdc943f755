// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarexceptions.h"

#include "common/exchangeactivesync.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendareventreader.h"
#include "support/calendarbed.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <KCalendarCore/Recurrence>

#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

namespace {

const QTimeZone Berlin("Europe/Berlin");

QDateTime berlin(int month, int day, int hour = 9)
{
    return QDateTime(QDate(2026, month, day), QTime(hour, 0), Berlin);
}

QString text(const QDateTime &time)
{
    return dateTimeToString(time);
}

EasCalendarItem exceptionAt(const QDateTime &time)
{
    EasCalendarItem exception;
    exception.setExceptionStartTime(text(time));
    return exception;
}

EasCalendarItem deletionAt(const QDateTime &time)
{
    EasCalendarItem exception = exceptionAt(time);
    exception.setExceptionDeleted(1);
    return exception;
}

QByteArray berlinBlock()
{
    const QByteArray name("W. Europe Standard Time");
    QByteArray block(172, 0);
    for (int i = 0; i < name.size(); ++i)
        block[4 + 2 * i] = name.at(i);
    return block.toBase64();
}

EasRecurrenceContainer daily()
{
    EasRecurrenceContainer recurrence;
    recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
    recurrence.setInterval(1);
    return recurrence;
}

} // namespace

/** Series whose occurrences are not all alike. */
class CalendarExceptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { mBed = std::make_unique<CalendarBed>(); }
    void cleanup() { mBed.reset(); }

    void aDeletedOccurrenceIsLeftOut()
    {
        EasCalendarItem item = series();
        item.setExceptions({ deletionAt(berlin(3, 27)), deletionAt(berlin(3, 30)) });
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        QVERIFY(mBed->exceptions().isEmpty());
        QCOMPARE(event->recurrence()->exDateTimes(), QList<QDateTime>({ berlin(3, 27), berlin(3, 30) }));
        QVERIFY(!event->recursAt(berlin(3, 27)));
        QVERIFY(event->recursAt(berlin(3, 28)));
        QVERIFY(!event->recursAt(berlin(3, 30))); // after the change of the clocks
        QVERIFY(event->recursAt(berlin(3, 31)));
        QCOMPARE(CalendarEventProperties::knownDeletions(*event).size(), 2);
    }

    void anExceptionInheritsWhatItDoesNotBring()
    {
        EasCalendarItem item = richSeries();
        item.setExceptions({ exceptionAt(berlin(3, 30)) });
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->exception(berlin(3, 30));
        QVERIFY(event);
        QCOMPARE(event->summary(), item.subject());
        QCOMPARE(event->location(), QStringLiteral("Room 1"));
        QCOMPARE(event->categories(), QStringList({ QStringLiteral("Work") }));
        QCOMPARE(event->description(), QStringLiteral("Text"));
        QCOMPARE(event->attendees().size(), 1);
        QCOMPARE(event->alarms().size(), 1);
        QCOMPARE(event->alarms().first()->startOffset().asSeconds(), -900);
        QCOMPARE(event->dtStart(), berlin(3, 30));
        QCOMPARE(event->dtEnd(), berlin(3, 30, 10));
        QCOMPARE(event->status(), KCalendarCore::Incidence::StatusConfirmed);
        QCOMPARE(event->secrecy(), KCalendarCore::Incidence::SecrecyPrivate);
        QCOMPARE(CalendarEventProperties::number(*event, CalendarBusyStatusParamName), 2);
        QCOMPARE(CalendarEventProperties::number(*event, CalendarResponseTypeParamName), 3);
        QCOMPARE(CalendarEventProperties::text(*event, CalendarMeetingExtLinkParamName),
            QStringLiteral("https://ext"));
        QVERIFY(!event->recurs());
    }

    void anExceptionHasItsOwnValues()
    {
        EasCalendarItem exception = exceptionAt(berlin(3, 30));
        exception.setSubject(QStringLiteral("Other"));
        exception.setLocation(QStringLiteral("Room 2"));
        exception.setCategories({});
        exception.setStartTime(text(berlin(3, 30, 14)));
        exception.setEndTime(text(berlin(3, 30, 16)));
        exception.setBodyContainerType(EasBodyContainer::HTMLBodyType);
        exception.setBodyContainerData(QStringLiteral("<p>Other</p>"));
        exception.setAttendees({});
        exception.setReminder(5);
        exception.setBusyStatus(EasCalendarItemCommon::BusyStatusFree);
        exception.setSensitivity(EasCalendarItemCommon::SensitivityNormal);
        exception.setResponseType(EasCalendarItemCommon::ResponseTypeDeclined);
        exception.setMeetingStatus(EasCalendarItemCommon::MeetingStatusCancelled);
        exception.setAppointmentReplyTime(QStringLiteral("20260101T000000Z"));
        exception.setOnlineMeetingConfLink(QStringLiteral("https://conf"));
        exception.setOnlineMeetingExternalLink(QString());
        EasCalendarItem item = richSeries();
        item.setExceptions({ exception });
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->exception(berlin(3, 30));
        QCOMPARE(event->summary(), QStringLiteral("Other"));
        QCOMPARE(event->location(), QStringLiteral("Room 2"));
        QVERIFY(event->categories().isEmpty());
        QCOMPARE(event->dtStart(), berlin(3, 30, 14));
        QCOMPARE(event->dtEnd(), berlin(3, 30, 16));
        QVERIFY(event->descriptionIsRich());
        QVERIFY(event->attendees().isEmpty());
        QCOMPARE(event->alarms().first()->startOffset().asSeconds(), -300);
        QCOMPARE(event->status(), KCalendarCore::Incidence::StatusCanceled);
        QCOMPARE(event->secrecy(), KCalendarCore::Incidence::SecrecyPublic);
        QCOMPARE(CalendarEventProperties::number(*event, CalendarBusyStatusParamName), 0);
        QCOMPARE(CalendarEventProperties::number(*event, CalendarResponseTypeParamName), 4);
        QCOMPARE(CalendarEventProperties::text(*event, CalendarMeetingConfLinkParamName),
            QStringLiteral("https://conf"));
        QVERIFY(CalendarEventProperties::text(*event, CalendarMeetingExtLinkParamName).isNull());
        // The series is as it was.
        QCOMPARE(mBed->event()->summary(), item.subject());
        QCOMPARE(mBed->event()->attendees().size(), 1);
    }

    void anEmptySubjectClears()
    {
        EasCalendarItem exception = exceptionAt(berlin(3, 30));
        exception.setSubject(QString());
        exception.setLocation(QString());
        EasCalendarItem item = richSeries();
        item.setExceptions({ exception });
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->exception(berlin(3, 30))->summary(), QString());
        QCOMPARE(mBed->exception(berlin(3, 30))->location(), QString());
    }

    void anExceptionIsReused()
    {
        EasCalendarItem exception = exceptionAt(berlin(3, 30));
        exception.setSubject(QStringLiteral("Once"));
        EasCalendarItem item = series();
        item.setExceptions({ exception });
        QVERIFY(mBed->add(item));
        exception.setSubject(QStringLiteral("Twice"));
        exception.setStartTime(text(berlin(3, 30, 20)));
        EasCalendarItem change = series();
        change.setExceptions({ exception });
        const LogCollector log;
        QVERIFY(mBed->change(change));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("Exception found, reusing it") }));
        QCOMPARE(mBed->exceptions().size(), 1);
        QCOMPARE(mBed->exception(berlin(3, 30))->summary(), QStringLiteral("Twice"));
        QCOMPARE(mBed->exception(berlin(3, 30))->dtStart(), berlin(3, 30, 20));
        QCOMPARE(mBed->exception(berlin(3, 30))->dtEnd(), berlin(3, 30, 21));
    }

    void aReusedExceptionTakesOverWhatTheSeriesKeepsOfItsAttendees()
    {
        EasCalendarItem item = series();
        item.setExceptions({ exceptionAt(berlin(3, 30)) });
        QVERIFY(mBed->add(item));
        EasAttendeeContainer bob;
        bob.setEmail(QStringLiteral("bob@example.com"));
        bob.setAttendeeStatus(EasAttendeeContainer::NotRespondedAttendeeStatus);
        item.setAttendees({ bob });
        QVERIFY(mBed->change(item));
        EasCalendarItem upload;
        QVERIFY(CalendarEventReader(mBed->device()).convert(mBed->event(), upload, true));
        QCOMPARE(upload.exceptions().size(), 1);
        QCOMPARE(upload.exceptions().constFirst().attendees().size(), 1);
        QCOMPARE(upload.exceptions().constFirst().attendees().constFirst().attendeeStatus(),
            EasAttendeeContainer::NotRespondedAttendeeStatus);
    }

    void theListOfTheServerIsTheWholeList()
    {
        EasCalendarItem item = series();
        item.setExceptions(
            { exceptionAt(berlin(3, 27)), exceptionAt(berlin(3, 30)), deletionAt(berlin(4, 1)) });
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->exceptions().size(), 2);
        // One was deleted, one is an ordinary occurrence again, and so is the one that was left out.
        EasCalendarItem change = series();
        change.setExceptions({ deletionAt(berlin(3, 27)) });
        QVERIFY(mBed->change(change));
        QVERIFY(mBed->exceptions().isEmpty());
        KCalendarCore::Incidence::List gone;
        QVERIFY(mBed->device().storage->deletedIncidences(&gone, QDateTime(), mBed->notebookUid()));
        QVERIFY2(gone.isEmpty(), "what the server deleted is no deletion of the user's");
        QCOMPARE(mBed->event()->recurrence()->exDateTimes(), QList<QDateTime>({ berlin(3, 27) }));
        QVERIFY(mBed->event()->recursAt(berlin(4, 1)));
        change.setExceptions({});
        QVERIFY(mBed->change(change));
        QVERIFY(mBed->event()->recurrence()->exDateTimes().isEmpty());
        QVERIFY(CalendarEventProperties::knownDeletions(*mBed->event()).isEmpty());
    }

    void aChangeWithoutExceptionsLeavesThem()
    {
        EasCalendarItem item = series();
        item.setExceptions({ exceptionAt(berlin(3, 27)), deletionAt(berlin(3, 28)) });
        QVERIFY(mBed->add(item));
        EasCalendarItem change = mBed->blank();
        change.setSubject(QStringLiteral("Renamed"));
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->exceptions().size(), 1);
        QCOMPARE(mBed->event()->recurrence()->exDateTimes().size(), 1);
    }

    void allDaySeriesLeaveOutDays_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("moved");
        QTest::addColumn<QString>("deleted");
        QTest::addColumn<QByteArray>("block");
        // Local midnights before and after the change of the clocks; dates alone from 16.0 on.
        QTest::addRow("in Berlin") << QStringLiteral("20260327T230000Z") << QStringLiteral("20260329T220000Z")
                                   << QStringLiteral("20260328T230000Z") << berlinBlock();
        QTest::addRow("in no zone") << QStringLiteral("20260328T000000Z")
                                    << QStringLiteral("20260330T000000Z")
                                    << QStringLiteral("20260329T000000Z") << QByteArray();
    }

    void allDaySeriesLeaveOutDays()
    {
        QFETCH(QString, first);
        QFETCH(QString, moved);
        QFETCH(QString, deleted);
        QFETCH(QByteArray, block);
        EasCalendarItem item = mBed->blank();
        item.setTimezone(block);
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        item.setStartTime(first);
        item.setEndTime(
            block.isEmpty() ? QStringLiteral("20260329T000000Z") : QStringLiteral("20260328T230000Z"));
        EasRecurrenceContainer recurrence = daily();
        recurrence.setUntil(moved);
        item.setRecurrence(recurrence);
        EasCalendarItem exception;
        exception.setExceptionStartTime(moved);
        exception.setSubject(QStringLiteral("Other"));
        EasCalendarItem deletion;
        deletion.setExceptionStartTime(deleted);
        deletion.setExceptionDeleted(1);
        item.setExceptions({ exception, deletion });
        const LogCollector log;
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        const QTimeZone zone = event->dtStart().timeZone();
        QVERIFY(event->recursOn(QDate(2026, 3, 28), zone));
        QCOMPARE(event->recurrence()->exDates(), KCalendarCore::DateList({ QDate(2026, 3, 29) }));
        QVERIFY(event->recursOn(QDate(2026, 3, 30), zone));
        QVERIFY(!event->recursOn(QDate(2026, 3, 31), zone));
        QCOMPARE(mBed->exceptions().size(), 1);
        const Event::Ptr other = mBed->exceptions().first();
        QCOMPARE(other->dtStart().date(), QDate(2026, 3, 30));
        QCOMPARE(other->dtEnd().date(), QDate(2026, 3, 30));
        QCOMPARE(other->recurrenceId().date(), QDate(2026, 3, 30));
        QVERIFY(other->allDay());
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("Adding exception date:") }));
    }

    void anHourOfADayAndADayOfAnHour()
    {
        EasCalendarItem day = exceptionAt(berlin(3, 30));
        day.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        day.setStartTime(text(berlin(3, 30, 0)));
        day.setEndTime(text(berlin(3, 31, 0)));
        EasCalendarItem item = series();
        item.setExceptions({ day });
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->exception(berlin(3, 30));
        QVERIFY(event->allDay());
        QCOMPARE(event->dtStart().date(), QDate(2026, 3, 30));
        QCOMPARE(event->dtEnd().date(), QDate(2026, 3, 30));
    }

    void aMomentThatIsNoOccurrenceCostsTheExceptionAlone()
    {
        EasCalendarItem item = series();
        EasCalendarItem good = exceptionAt(berlin(3, 30));
        good.setSubject(QStringLiteral("Other"));
        item.setExceptions({ exceptionAt(berlin(3, 30, 12)), good });
        const LogCollector log;
        QVERIFY(mBed->add(item));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed to dissociate exception:") }));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed to add exception:") }));
        QVERIFY(mBed->event()->recurs());
        QCOMPARE(mBed->exceptions().size(), 1);
    }

    void whatCannotBePlacedGoesUpAsItCame_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("otherRule");
        QTest::addColumn<QStringList>("starts");
        const QString moved = QStringLiteral("moved 20260330T100000Z");
        const QString deleted = QStringLiteral("deleted 20260331T100000Z");
        const QString bad = QStringLiteral("bad 20260401T070000Z");
        const int before = ProtocolVersion141;
        QTest::newRow("within its series") << before << false << QStringList { bad, deleted, moved };
        QTest::newRow("after another rule") << before << true << QStringList();
        // The server keeps what does not go up.
        QTest::newRow("where exceptions go up alone") << int(ProtocolVersion161) << false << QStringList();
    }

    void whatCannotBePlacedGoesUpAsItCame()
    {
        QFETCH(int, version);
        QFETCH(bool, otherRule);
        mBed->account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        EasCalendarItem moved = exceptionAt(berlin(3, 30, 12));
        moved.setSubject(QStringLiteral("moved"));
        moved.setStartTime(text(berlin(3, 30, 14)));
        moved.setReminder(7);
        moved.setCategories({ QStringLiteral("A, b"), QStringLiteral("c") });
        EasCalendarItem bad = exceptionAt(berlin(4, 1));
        bad.setSubject(QStringLiteral("bad"));
        bad.setStartTime(QStringLiteral("now"));
        EasCalendarItem item = series();
        item.setExceptions({ moved, deletionAt(berlin(3, 31, 12)), bad });
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        event->setLocation(QStringLiteral("An edit that has nothing to do with times"));
        if (otherRule)
            event->recurrence()->defaultRRule()->setFrequency(2);
        EasCalendarItem upload;
        QVERIFY(CalendarEventReader(mBed->device()).convert(event, upload, true));
        QStringList starts;
        const QList<EasCalendarItem> exceptions = upload.exceptions();
        for (const EasCalendarItem &exception : exceptions) {
            starts.append((exception.exceptionDeleted() ? QStringLiteral("deleted") : exception.subject())
                + QLatin1Char(' ') + exception.exceptionStartTime());
            QCOMPARE(exception.localId(), upload.localId());
            if (exception.subject() != moved.subject())
                continue;
            QCOMPARE(exception.startTime(), moved.startTime());
            QCOMPARE(exception.reminder(), 7);
            QCOMPARE(exception.categories(), moved.categories());
        }
        starts.sort();
        QTEST(starts, "starts");
    }

    void badExceptionsCostTheItem_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("line");
        QTest::addRow("no start") << QString() << QStringLiteral("No exception start time:");
        QTest::addRow("no time") << QStringLiteral("then") << QStringLiteral("Start time is invalid:");
    }

    void badExceptionsCostTheItem()
    {
        QFETCH(QString, start);
        QFETCH(QString, line);
        QVERIFY(mBed->add(series()));
        EasCalendarItem bad;
        bad.setExceptionStartTime(start);
        EasCalendarItem change = series();
        change.setSubject(QStringLiteral("Renamed"));
        change.setExceptions({ deletionAt(berlin(3, 27)), bad });
        EasCalendarItem fresh = change;
        fresh.setServerId(QStringLiteral("5:2"));
        const LogCollector log;
        QList<EasCalendarItem> added { fresh };
        QList<EasCalendarItem> updated { change };
        QVERIFY(mBed->apply(added, updated));
        QVERIFY(log.contains(QtWarningMsg, { line }));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed handling exceptions") }));
        QCOMPARE(mBed->events().size(), 1);
        QCOMPARE(mBed->event()->summary(), series().subject());
        QVERIFY(mBed->event()->recurrence()->exDateTimes().isEmpty());
    }

    void badTimesOfAnExceptionCostItAlone()
    {
        EasCalendarItem start = exceptionAt(berlin(3, 27));
        start.setStartTime(QStringLiteral("now"));
        EasCalendarItem end = exceptionAt(berlin(3, 28));
        end.setEndTime(QStringLiteral("then"));
        EasCalendarItem item = series();
        item.setExceptions({ start, end });
        const LogCollector log;
        QVERIFY(mBed->add(item));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Wrong start time:"), QStringLiteral("now") }));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Wrong end time:"), QStringLiteral("then") }));
        QVERIFY(mBed->exceptions().isEmpty());
        QVERIFY(mBed->event()->recursAt(berlin(3, 27)));
    }

    void withoutARecurrenceThereAreNoExceptions()
    {
        EasCalendarItem item = mBed->item();
        item.setExceptions({ exceptionAt(berlin(3, 27)) });
        QVERIFY(mBed->add(item));
        QVERIFY(mBed->exceptions().isEmpty());
        QVERIFY(!mBed->event()->recurs());
    }

    void exceptionsGoWithTheirSeries()
    {
        EasCalendarItem item = series();
        item.setExceptions({ exceptionAt(berlin(3, 27)), exceptionAt(berlin(3, 28)) });
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->events().size(), 3);
        QVERIFY(mBed->remove(QStringLiteral("5:1")));
        QVERIFY(mBed->events().isEmpty());
        KCalendarCore::Incidence::List deleted;
        QVERIFY(mBed->device().storage->deletedIncidences(&deleted, QDateTime(), mBed->notebookUid()));
        QVERIFY2(deleted.isEmpty(), "what the server deleted is no deletion of the user's");
    }

    void twoExceptionsOfOneMomentAreOne()
    {
        EasCalendarItem first = exceptionAt(berlin(3, 27));
        first.setSubject(QStringLiteral("First"));
        EasCalendarItem second = exceptionAt(berlin(3, 27));
        second.setSubject(QStringLiteral("Second"));
        EasCalendarItem item = series();
        item.setExceptions({ first, second });
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->exceptions().size(), 1);
        QCOMPARE(mBed->exceptions().first()->summary(), QStringLiteral("Second"));
    }

private:
    /** Each day at nine in Berlin, from before the change of the clocks. */
    EasCalendarItem series() const
    {
        EasCalendarItem item = mBed->blank();
        item.setSubject(QStringLiteral("Daily"));
        item.setTimezone(berlinBlock());
        item.setStartTime(text(berlin(3, 26)));
        item.setEndTime(text(berlin(3, 26, 10)));
        item.setRecurrence(daily());
        return item;
    }

    EasCalendarItem richSeries() const
    {
        EasCalendarItem item = series();
        EasAttendeeContainer attendee;
        attendee.setEmail(QStringLiteral("bob@example.com"));
        item.setAttendees({ attendee });
        item.setLocation(QStringLiteral("Room 1"));
        item.setCategories({ QStringLiteral("Work") });
        item.setBodyContainerType(EasBodyContainer::PlainTextBodyType);
        item.setBodyContainerData(QStringLiteral("Text"));
        item.setReminder(15);
        item.setBusyStatus(EasCalendarItemCommon::BusyStatusBusy);
        item.setSensitivity(EasCalendarItemCommon::SensitivityPrivate);
        item.setResponseType(EasCalendarItemCommon::ResponseTypeAccepted);
        item.setOnlineMeetingExternalLink(QStringLiteral("https://ext"));
        return item;
    }

    std::unique_ptr<CalendarBed> mBed;
};

FENNEL_REGISTER_TEST(CalendarExceptionsTest)
#include "calendarexceptionstest.moc"
