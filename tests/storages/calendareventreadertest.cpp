// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventreader.h"

#include "common/exchangeactivesync.h"
#include "easitems/eastimezone.h"
#include "storages/calendar/calendarattendees.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendareventstatus.h"
#include "support/calendarscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Attendee;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

/** Events of the device as items for upload. */
class CalendarEventReaderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CalendarScene> mScene;

    EasCalendarItem converted(const Event::Ptr &event) const
    {
        EasCalendarItem item;
        const bool done = CalendarEventReader(mScene->context).convert(event, item, true);
        return done ? item : EasCalendarItem();
    }

    static Event::Ptr event() { return CalendarScene::makeEvent(QStringLiteral("event-1")); }
    static Event::Ptr series() { return CalendarScene::makeSeries(QStringLiteral("series-1")); }

private Q_SLOTS:
    void init() { mScene = std::make_unique<CalendarScene>(); }
    void cleanup() { mScene.reset(); }

    void theFieldsOfAnEvent()
    {
        const Event::Ptr event = this->event();
        event->setLocation(QStringLiteral("Room"));
        event->setDescription(QStringLiteral("Text"));
        event->setCategories(QStringList { QStringLiteral("a"), QStringLiteral("b,c") });
        event->setOrganizer(KCalendarCore::Person(QStringLiteral("Olga"), QStringLiteral("o@example.com")));
        event->newAlarm()->setStartOffset(KCalendarCore::Duration(-900));
        CalendarEventProperties::setText(*event, CalendarUidParamName, QStringLiteral("server-uid"));
        CalendarEventProperties::setText(*event, CalendarDisallowCounterParamName, CalendarBoolValueTrue);
        CalendarEventProperties::setNumber(*event, CalendarResponseRequestedParamName, 1);
        CalendarEventProperties::setNumber(*event, CalendarMeetingStatusParamName, 3);
        CalendarEventProperties::setNumber(*event, CalendarResponseTypeParamName, 5);
        CalendarEventProperties::setText(
            *event, CalendarAppointmentReplyTimeParamName, QStringLiteral("20240101T000000Z"));
        CalendarEventProperties::setText(*event, CalendarMeetingConfLinkParamName, QStringLiteral("conf:1"));
        CalendarEventProperties::setText(*event, CalendarMeetingExtLinkParamName, QStringLiteral("ext:1"));
        event->setLastModified(QDateTime(QDate(2024, 4, 1), QTime(1, 2, 3), Qt::UTC));
        QVERIFY(mScene->saveSynced(event, QStringLiteral("f1:1")));

        const EasCalendarItem item = converted(event);
        QCOMPARE(item.localId(), QStringLiteral("event-1"));
        QCOMPARE(item.serverId(), QStringLiteral("f1:1"));
        QCOMPARE(item.localStorageAccountId(), mScene->accountId());
        QCOMPARE(item.subject(), QStringLiteral("event-1"));
        QCOMPARE(item.location(), QStringLiteral("Room"));
        QCOMPARE(item.body().type(), EasBodyContainer::PlainTextBodyType);
        QCOMPARE(item.body().data(), QStringLiteral("Text"));
        QCOMPARE(item.categories(), event->categories());
        QCOMPARE(item.organizerName(), QStringLiteral("Olga"));
        QCOMPARE(item.organizerEmail(), QStringLiteral("o@example.com"));
        QCOMPARE(item.reminder(), 15);
        QCOMPARE(item.uid(), QStringLiteral("server-uid"));
        QCOMPARE(item.disallowNewTimeProposal(), EasItemsCommon::TTrue);
        QCOMPARE(item.responseRequested(), EasItemsCommon::TTrue);
        QCOMPARE(item.meetingStatus(), EasCalendarItemCommon::MeetingStatusReceived);
        QCOMPARE(item.responseType(), EasCalendarItemCommon::ResponseTypeNotResponded);
        QCOMPARE(item.appointmentReplyTime(), QStringLiteral("20240101T000000Z"));
        QCOMPARE(item.onlineMeetingConfLink(), QStringLiteral("conf:1"));
        QCOMPARE(item.onlineMeetingExternalLink(), QStringLiteral("ext:1"));
        QCOMPARE(item.allDayEvent(), EasCalendarItemCommon::NotAllDayEvent);
        QCOMPARE(item.startTime(), QStringLiteral("20240501T080000Z"));
        QCOMPARE(item.endTime(), QStringLiteral("20240501T090000Z"));
        QCOMPARE(item.dtStamp(), QStringLiteral("20240401T010203Z"));
        QCOMPARE(item.timezone(), QString::fromLatin1(EasTimeZone::encode(*event)));
        QVERIFY(!item.timezone().isEmpty());
    }

    void aNewEventHasNoServerId()
    {
        LogCollector log;
        const EasCalendarItem item = converted(event());
        QCOMPARE(item.localId(), QStringLiteral("event-1"));
        QVERIFY(item.serverId().isEmpty());
        QCOMPARE(item.uid(), QStringLiteral("event-1"));
        QCOMPARE(item.reminder(), -1);
        QCOMPARE(item.meetingStatus(), EasCalendarItemCommon::MeetingStatusUndefined);
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("No server ID:"), QStringLiteral("event-1") }));
    }

    void withoutStoreOrUidNothingIsConverted()
    {
        LogCollector log;
        const Event::Ptr nameless = event();
        nameless->setUid(QString());
        EasCalendarItem item;
        QVERIFY(!CalendarEventReader(mScene->context).convert(nameless, item, true));
        QVERIFY(log.contains(QStringLiteral("No UID")));
        const CalendarStoreContext closed;
        QVERIFY(!CalendarEventReader(closed).convert(event(), item, true));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No storage") }));
    }

    void busyStatus_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("expected");
        QTest::addColumn<bool>("kept");
        QTest::newRow("free") << 0 << int(Incidence::StatusNone) << 0 << true;
        QTest::newRow("tentative") << 1 << int(Incidence::StatusTentative) << 1 << true;
        QTest::newRow("busy") << 2 << int(Incidence::StatusConfirmed) << 2 << true;
        QTest::newRow("out of office") << 3 << int(Incidence::StatusConfirmed) << 3 << true;
        QTest::newRow("elsewhere") << 4 << int(Incidence::StatusNone) << 4 << true;
        QTest::newRow("out of office, called off") << 3 << int(Incidence::StatusCanceled) << 3 << true;
        QTest::newRow("busy, now tentative") << 2 << int(Incidence::StatusTentative) << 1 << false;
        QTest::newRow("out of office, now free") << 3 << int(Incidence::StatusNone) << 0 << false;
        QTest::newRow("tentative, now confirmed") << 1 << int(Incidence::StatusConfirmed) << 2 << false;
        QTest::newRow("made here, confirmed") << -1 << int(Incidence::StatusConfirmed) << 2 << true;
        QTest::newRow("made here, cancelled") << -1 << int(Incidence::StatusCanceled) << -1 << true;
    }

    void busyStatus()
    {
        QFETCH(int, stored);
        QFETCH(int, status);
        QFETCH(int, expected);
        QFETCH(bool, kept);
        const Event::Ptr event = this->event();
        CalendarEventProperties::setNumber(*event, CalendarBusyStatusParamName, stored);
        event->setStatus(Incidence::Status(status));
        QCOMPARE(int(CalendarEventStatus::convertBusyStatus(*event)), expected);
        QCOMPARE(CalendarEventProperties::number(*event, CalendarBusyStatusParamName), kept ? stored : -1);
    }

    void sensitivity_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("secrecy");
        QTest::addColumn<int>("expected");
        QTest::addColumn<bool>("kept");
        QTest::newRow("normal") << 0 << int(Incidence::SecrecyPublic) << 0 << true;
        QTest::newRow("personal") << 1 << int(Incidence::SecrecyPublic) << 1 << true;
        QTest::newRow("private") << 2 << int(Incidence::SecrecyPrivate) << 2 << true;
        QTest::newRow("confidential") << 3 << int(Incidence::SecrecyConfidential) << 3 << true;
        QTest::newRow("private, now public") << 2 << int(Incidence::SecrecyPublic) << 0 << false;
        QTest::newRow("personal, now private") << 1 << int(Incidence::SecrecyPrivate) << 2 << false;
        QTest::newRow("normal, now confidential") << 0 << int(Incidence::SecrecyConfidential) << 3 << false;
        QTest::newRow("made here, private") << -1 << int(Incidence::SecrecyPrivate) << 2 << true;
    }

    void sensitivity()
    {
        QFETCH(int, stored);
        QFETCH(int, secrecy);
        QFETCH(int, expected);
        QFETCH(bool, kept);
        const Event::Ptr event = this->event();
        CalendarEventProperties::setNumber(*event, CalendarSensitivityParamName, stored);
        event->setSecrecy(Incidence::Secrecy(secrecy));
        QCOMPARE(int(CalendarEventStatus::convertSensitivity(*event)), expected);
        QCOMPARE(CalendarEventProperties::number(*event, CalendarSensitivityParamName), kept ? stored : -1);
    }

    void richTextsAreHtml()
    {
        const Event::Ptr event = this->event();
        event->setDescription(QStringLiteral("<p>x</p>"), true);
        const EasCalendarItem item = converted(event);
        QCOMPARE(item.body().type(), EasBodyContainer::HTMLBodyType);
        QCOMPARE(item.body().data(), QStringLiteral("<p>x</p>"));
    }

    void allDayEventsEndOnTheNextDay_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        const QByteArray berlin("Europe/Berlin");
        const QByteArray apia("Pacific/Apia");
        QTest::newRow("14.1 Berlin") << int(ProtocolVersion141) << berlin
                                     << QStringLiteral("20240330T230000Z")
                                     << QStringLiteral("20240401T220000Z");
        QTest::newRow("16.1 Berlin") << int(ProtocolVersion161) << berlin
                                     << QStringLiteral("20240331T000000Z")
                                     << QStringLiteral("20240402T000000Z");
        QTest::newRow("14.1 Apia") << int(ProtocolVersion141) << apia << QStringLiteral("20240330T110000Z")
                                   << QStringLiteral("20240401T110000Z");
        QTest::newRow("16.0 Apia") << int(ProtocolVersion160) << apia << QStringLiteral("20240331T000000Z")
                                   << QStringLiteral("20240402T000000Z");
    }

    void allDayEventsEndOnTheNextDay()
    {
        QFETCH(int, version);
        QFETCH(QByteArray, zone);
        mScene->account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        const Event::Ptr event = this->event();
        event->setDtStart(QDateTime(QDate(2024, 3, 31), QTime(0, 0), QTimeZone(zone)));
        event->setDtEnd(QDateTime(QDate(2024, 4, 1), QTime(0, 0), QTimeZone(zone)));
        event->setAllDay(true);
        const EasCalendarItem item = converted(event);
        QCOMPARE(item.allDayEvent(), EasCalendarItemCommon::IsAllDayEvent);
        QTEST(item.startTime(), "start");
        QTEST(item.endTime(), "end");
    }

    void remindersInEachForm_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<int>("minutes");
        QTest::newRow("at the start") << 0 << 0;
        QTest::newRow("a day before") << -86400 << 1440;
        QTest::newRow("after the start, which no server knows") << 600 << 0;
    }

    void remindersInEachForm()
    {
        QFETCH(int, seconds);
        const Event::Ptr event = this->event();
        event->newAlarm()->setStartOffset(KCalendarCore::Duration(seconds));
        QTEST(converted(event).reminder(), "minutes");
        event->alarms().constFirst()->setTime(event->dtStart().addSecs(seconds));
        QTEST(converted(event).reminder(), "minutes");
    }

    void attendeesGoBothWays_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("type");
        for (const int status : { -1, 0, 2, 3, 4, 5 }) {
            for (const int type : { 1, 2, 3 })
                QTest::addRow("status %d, type %d", status, type) << status << type;
        }
    }

    void attendeesGoBothWays()
    {
        QFETCH(int, status);
        QFETCH(int, type);
        EasAttendeeContainer container;
        container.setName(QStringLiteral("Ann"));
        container.setEmail(QStringLiteral("a>?a~~@example.com")); // Base64 of it has all odd characters.
        container.setAttendeeStatus(EasAttendeeContainer::AttendeeStatus(status));
        container.setAttendeeType(EasAttendeeContainer::AttendeeType(type));
        container.setProposedStartTime(QDateTime(QDate(2024, 5, 2), QTime(8, 0), Qt::UTC));
        container.setProposedEndTime(QDateTime(QDate(2024, 5, 2), QTime(9, 0), Qt::UTC));
        const Event::Ptr event = this->event();
        event->addAttendee(CalendarAttendees::toAttendee(*event, container));
        QVERIFY(mScene->save(event));
        const Event::Ptr read = mScene->load(event->uid());
        const QList<EasAttendeeContainer> attendees = converted(read).attendees();
        QCOMPARE(attendees.size(), 1);
        QVERIFY(attendees.constFirst() == container);
    }

    void attendeeNamesHoldNoOddCharacters()
    {
        const QString name =
            CalendarEventProperties::attendeeName(QStringLiteral("X-A"), QStringLiteral("\xff\xfe\xfd~?>x"));
        QVERIFY2(
            QRegularExpression(QStringLiteral("^X-[A-Za-z0-9-]+$")).match(name).hasMatch(), qPrintable(name));
        QVERIFY(name.startsWith(QLatin1String("X-A-")));
        QCOMPARE(CalendarEventProperties::attendeeName(QStringLiteral("X-A"), QStringLiteral(">>>a")),
            QStringLiteral("X-A-Pj4--1YQ--3--3"));
        QCOMPARE(CalendarEventProperties::attendeeName(QStringLiteral("X-A"), QStringLiteral("\?\?\?")),
            QStringLiteral("X-A-Pz8--2"));
    }

    void theOrganizerIsNoAttendee()
    {
        const Event::Ptr event = this->event();
        event->setOrganizer(KCalendarCore::Person(QStringLiteral("O"), QStringLiteral("o@example.com")));
        event->addAttendee(Attendee(QStringLiteral("O"), QStringLiteral("O@example.com"), false,
            Attendee::None, Attendee::ReqParticipant));
        event->addAttendee(Attendee(QStringLiteral("A"), QStringLiteral("a@example.com"), true));
        const QList<EasAttendeeContainer> attendees = converted(event).attendees();
        QCOMPARE(attendees.size(), 1);
        QCOMPARE(attendees.constFirst().email(), QStringLiteral("a@example.com"));
    }

    void aSeriesWithExceptions()
    {
        QVERIFY(mScene->saveSynced(series(), QStringLiteral("f1:2")));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 3, QStringLiteral("moved")));
        const EasCalendarItem item = converted(mScene->load(QStringLiteral("series-1")));
        QCOMPARE(item.recurrence().type(), EasRecurrenceContainer::DailyRecurrence);
        QCOMPARE(item.recurrence().occurrences(), 10);
        QCOMPARE(item.exceptions().size(), 1);
        const EasCalendarItem exception = item.exceptions().constFirst();
        QCOMPARE(exception.exceptionStartTime(), QStringLiteral("20240504T080000Z"));
        QCOMPARE(exception.subject(), QStringLiteral("moved"));
        QCOMPARE(exception.startTime(), QStringLiteral("20240504T080000Z"));
        QCOMPARE(exception.endTime(), QStringLiteral("20240504T090000Z"));
        QCOMPARE(exception.serverId(), QStringLiteral("f1:2"));
        QCOMPARE(exception.exceptionDeleted(), quint8(0));
        QVERIFY(!exception.itemChanged());

        EasCalendarItem alone;
        QVERIFY(CalendarEventReader(mScene->context)
                    .convert(mScene->load(QStringLiteral("series-1")), alone, false));
        QVERIFY(!alone.hasExceptions());
    }

    void excludedOccurrencesAreDeletedExceptions_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<int>("count");
        QTest::newRow("all of them up to 14.1") << int(ProtocolVersion141) << 2;
        QTest::newRow("what is new from 16.0 on") << int(ProtocolVersion160) << 1;
    }

    void excludedOccurrencesAreDeletedExceptions()
    {
        QFETCH(int, version);
        QFETCH(int, count);
        mScene->account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        const Event::Ptr event = series();
        event->recurrence()->addExDateTime(event->dtStart().addDays(1));
        event->recurrence()->addExDateTime(event->dtStart().addDays(2));
        CalendarEventProperties::setKnownDeletions(*event, { QStringLiteral("20240502T080000Z") });
        QVERIFY(mScene->saveSynced(event, QStringLiteral("f1:2")));
        const EasCalendarItem item = converted(mScene->load(event->uid()));
        QCOMPARE(item.exceptions().size(), count);
        const EasCalendarItem last = item.exceptions().constLast();
        QCOMPARE(last.exceptionStartTime(), QStringLiteral("20240503T080000Z"));
        QCOMPARE(last.exceptionDeleted(), quint8(1));
        QVERIFY(last.itemChanged());
    }

    void anExceptionThatIsThereIsMarked()
    {
        LogCollector log;
        QVERIFY(mScene->saveSynced(series(), QStringLiteral("f1:2")));
        QVERIFY(mScene->addException(QStringLiteral("series-1"), 3, QStringLiteral("moved")));
        EasCalendarItem item = converted(mScene->load(QStringLiteral("series-1")));
        const Event::Ptr stored = mScene->load(QStringLiteral("series-1"));
        const Event::Ptr exception = mScene->context.calendar->eventInstances(stored).constFirst();
        QVERIFY(CalendarEventReader(mScene->context).applyException(stored, exception, false, item, true));
        QCOMPARE(item.exceptions().size(), 1);
        QVERIFY(item.exceptions().constFirst().itemChanged());
        QVERIFY(log.contains(QStringLiteral("already applied to the calendar item")));
        QVERIFY(!CalendarEventReader(mScene->context).applyException(stored, event(), false, item, true));
        QVERIFY(log.contains(QStringLiteral("No recurrence ID:")));
    }

    void anExceptionIsNamedAsItsSeriesCounts_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("seriesOfDays");
        QTest::addColumn<QString>("name");
        const int before = ProtocolVersion141;
        const int after = ProtocolVersion161;
        QTest::newRow("a day in a series of hours") << before << false << QStringLiteral("20240504T080000Z");
        QTest::newRow("the same from 16.0 on") << after << false << QStringLiteral("20240504T080000Z");
        QTest::newRow("an hour in a series of days") << before << true << QStringLiteral("20240503T220000Z");
        QTest::newRow("the same from 16.0 on") << after << true << QStringLiteral("20240504T000000Z");
    }

    void anExceptionIsNamedAsItsSeriesCounts()
    {
        QFETCH(int, version);
        QFETCH(bool, seriesOfDays);
        mScene->account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        const Event::Ptr stored = series();
        QTime time = stored->dtStart().time();
        if (seriesOfDays) {
            stored->setAllDay(true);
            stored->setDtStart(stored->dtStart().date().startOfDay(stored->dtStart().timeZone()));
            stored->setDtEnd(stored->dtStart());
            time = QTime(0, 0);
        }
        const Event::Ptr exception(stored->clone());
        exception->clearRecurrence();
        exception->setAllDay(!seriesOfDays);
        exception->setRecurrenceId(QDateTime(QDate(2024, 5, 4), time, stored->dtStart().timeZone()));
        exception->setDtStart(
            QDateTime(QDate(2024, 5, 4), QTime(seriesOfDays ? 9 : 0, 0), stored->dtStart().timeZone()));
        EasCalendarItem item;
        QVERIFY(CalendarEventReader(mScene->context).applyException(stored, exception, false, item, true));
        QTEST(item.exceptions().constFirst().exceptionStartTime(), "name");
    }
};

FENNEL_REGISTER_TEST(CalendarEventReaderTest)
#include "calendareventreadertest.moc"
