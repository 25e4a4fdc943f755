// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventwriter.h"

#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendareventreader.h"
#include "support/calendarbed.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Attendee;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

const QString Id = QStringLiteral("5:1");

QString custom(const Event::Ptr &event, const QString &name)
{
    return CalendarEventProperties::text(*event, name);
}

/** Sets one value of an item. */
using Setting = std::function<void(EasCalendarItem &)>;

} // namespace

Q_DECLARE_METATYPE(Setting)

/** Items of the server as events of the device's calendar: each field. */
class CalendarEventWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewItemBecomesAnEvent()
    {
        EasCalendarItem item = mBed->item();
        item.setOrganizerName(QStringLiteral("Olga"));
        item.setOrganizerEmail(QStringLiteral("olga@example.com"));
        item.setLocation(QStringLiteral("Room 1"));
        item.setCategories({ QStringLiteral("Work, hard"), QStringLiteral("Blue") });
        item.setCreatedTimestamp(1700000000000);
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        QVERIFY(event);
        QCOMPARE(event->summary(), QStringLiteral("Event 5:1"));
        QCOMPARE(event->organizer().name(), QStringLiteral("Olga"));
        QCOMPARE(event->organizer().email(), QStringLiteral("olga@example.com"));
        QCOMPARE(event->location(), QStringLiteral("Room 1"));
        QCOMPARE(event->categories(), QStringList({ QStringLiteral("Work, hard"), QStringLiteral("Blue") }));
        QCOMPARE(event->created(), QDateTime::fromMSecsSinceEpoch(1700000000000, Qt::UTC));
        QCOMPARE(event->dtStart(), QDateTime(QDate(2026, 3, 4), QTime(8, 0), Qt::UTC));
        QCOMPARE(event->dtEnd(), QDateTime(QDate(2026, 3, 4), QTime(9, 0), Qt::UTC));
        QCOMPARE(custom(event, CalendarUidParamName), QStringLiteral("uid-5:1"));
        QCOMPARE(custom(event, CalendarRemoteUidParamName), QStringLiteral("uid-5:1"));
        QCOMPARE(event->uid().size(), 36);
        QVERIFY(event->alarms().isEmpty());
        QCOMPARE(mBed->device().calendar->notebook(event), mBed->notebookUid());
    }

    void theStampOfAStoredEventIsRecorded()
    {
        QVERIFY(mBed->add(mBed->item()));
        const Event::Ptr event = mBed->event();
        QCOMPARE(qint64(*EasDatabase::instance()->calendarItemUpdateTime(mBed->account.id(), event->uid())),
            event->lastModified().toSecsSinceEpoch());
    }

    void onlyWhatAChangeBringsIsWritten()
    {
        EasCalendarItem item = mBed->item();
        item.setLocation(QStringLiteral("Room 1"));
        item.setReminder(15);
        QVERIFY(mBed->add(item));
        const QString uid = mBed->event()->uid();
        EasCalendarItem change = mBed->blank();
        change.setSubject(QStringLiteral("Renamed"));
        QVERIFY(mBed->change(change));
        const Event::Ptr event = mBed->event();
        QCOMPARE(event->uid(), uid);
        QCOMPARE(event->summary(), QStringLiteral("Renamed"));
        QCOMPARE(event->location(), QStringLiteral("Room 1"));
        QCOMPARE(event->dtStart(), QDateTime(QDate(2026, 3, 4), QTime(8, 0), Qt::UTC));
        QCOMPARE(event->alarms().size(), 1);
    }

    void aChangeCanClear()
    {
        EasCalendarItem item = mBed->item();
        item.setLocation(QStringLiteral("Room 1"));
        item.setReminder(15);
        item.setCategories({ QStringLiteral("Work") });
        QVERIFY(mBed->add(item));
        EasCalendarItem change = mBed->blank();
        change.setLocation(QString());
        change.setReminder(-1);
        change.setCategories({});
        change.setUid(QString());
        QVERIFY(mBed->change(change));
        const Event::Ptr event = mBed->event();
        QCOMPARE(event->location(), QString());
        QVERIFY(event->alarms().isEmpty());
        QVERIFY(event->categories().isEmpty());
        QVERIFY(custom(event, CalendarUidParamName).isNull());
        QVERIFY(custom(event, CalendarRemoteUidParamName).isNull());
    }

    void aZoneComesFromTheItem()
    {
        EasCalendarItem item = mBed->item();
        item.setTimezone(zoneBlock(QStringLiteral("W. Europe Standard Time")));
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        QCOMPARE(event->dtStart().timeZone().id(), QByteArray("Europe/Berlin"));
        QCOMPARE(event->dtStart().time(), QTime(9, 0));
        QCOMPARE(event->dtEnd().time(), QTime(10, 0));
        EasCalendarItem later = mBed->blank();
        later.setEndTime(QStringLiteral("20260304T100000Z"));
        QVERIFY(mBed->change(later));
        QCOMPARE(
            mBed->event()->dtEnd(), QDateTime(QDate(2026, 3, 4), QTime(11, 0), QTimeZone("Europe/Berlin")));
        QCOMPARE(mBed->event()->dtEnd().timeZone().id(), QByteArray("Europe/Berlin"));
    }

    void withoutAReadableZoneThereIsUtc()
    {
        EasCalendarItem item = mBed->item();
        item.setTimezone("no block");
        const LogCollector log;
        QVERIFY(mBed->add(item));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Wrong buffer:") }));
        QCOMPARE(mBed->event()->dtStart().timeZone().id(), QByteArray("UTC"));
        QCOMPARE(CalendarEventWriter::getTimeZone(QString(), item), QTimeZone::utc());
    }

    void anAllDayEventEndsOnTheDayBefore_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QDate>("lastDay");
        const QDate day(2026, 3, 29); // the clocks change in it
        const QString berlinMidnight = QStringLiteral("20260328T230000Z");
        QTest::addRow("one day") << berlinMidnight << QStringLiteral("20260329T220000Z") << day;
        QTest::addRow("three days") << berlinMidnight << QStringLiteral("20260331T220000Z") << day.addDays(2);
        QTest::addRow("no length") << berlinMidnight << berlinMidnight << day;
        QTest::addRow("midnight an hour off")
            << QStringLiteral("20260328T220000Z") << QStringLiteral("20260329T210000Z") << day;
    }

    void anAllDayEventEndsOnTheDayBefore()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QDate, lastDay);
        EasCalendarItem item = mBed->item();
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        item.setTimezone(zoneBlock(QStringLiteral("W. Europe Standard Time")));
        item.setStartTime(start);
        item.setEndTime(end);
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        QVERIFY(event->allDay());
        QCOMPARE(event->dtStart().date(), QDate(2026, 3, 29));
        QCOMPARE(event->dtEnd().date(), lastDay);
        QCOMPARE(event->dtStart().time(), QTime(0, 0));
    }

    void anAllDayEventWithoutAZoneHasItsDates()
    {
        EasCalendarItem item = mBed->item();
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        item.setStartTime(QStringLiteral("2026-03-29T00:00:00.000Z"));
        item.setEndTime(QStringLiteral("2026-03-30T00:00:00.000Z"));
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->event()->dtStart().date(), QDate(2026, 3, 29));
        QCOMPARE(mBed->event()->dtEnd().date(), QDate(2026, 3, 29));
    }

    void aDayCanBecomeAnHour()
    {
        EasCalendarItem item = mBed->item();
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        item.setStartTime(QStringLiteral("20260329T000000Z"));
        item.setEndTime(QStringLiteral("20260330T000000Z"));
        QVERIFY(mBed->add(item));
        EasCalendarItem change = mBed->item();
        change.setAllDayEvent(EasCalendarItemCommon::NotAllDayEvent);
        QVERIFY(mBed->change(change));
        const Event::Ptr event = mBed->event();
        QVERIFY(!event->allDay());
        QCOMPARE(event->dtStart(), QDateTime(QDate(2026, 3, 4), QTime(8, 0), Qt::UTC));
        QCOMPARE(event->dtEnd(), QDateTime(QDate(2026, 3, 4), QTime(9, 0), Qt::UTC));
    }

    void bodiesKeepTheirKind_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("rich");
        QTest::addRow("plain") << 1 << false;
        QTest::addRow("HTML") << 2 << true;
        QTest::addRow("any other, which tells by its text") << -1 << true;
    }

    void bodiesKeepTheirKind()
    {
        QFETCH(int, type);
        QFETCH(bool, rich);
        EasCalendarItem item = mBed->item();
        item.setBodyContainerType(EasBodyContainer::BodyType(type));
        item.setBodyContainerData(QStringLiteral("<p>text</p>"));
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->event()->description(), QStringLiteral("<p>text</p>"));
        QCOMPARE(mBed->event()->descriptionIsRich(), rich);
    }

    void remindersAreAlarms_data()
    {
        QTest::addColumn<int>("minutes");
        QTest::addColumn<int>("seconds");
        QTest::addRow("at the start") << 0 << 0;
        QTest::addRow("a quarter of an hour before") << 15 << -900;
        QTest::addRow("longer than a number of seconds") << 0x7FFFFFFF << -0x7FFFFFFF;
    }

    void remindersAreAlarms()
    {
        QFETCH(int, minutes);
        QFETCH(int, seconds);
        EasCalendarItem item = mBed->item();
        item.setReminder(minutes);
        QVERIFY(mBed->add(item));
        const KCalendarCore::Alarm::List alarms = mBed->event()->alarms();
        QCOMPARE(alarms.size(), 1);
        QCOMPARE(alarms.first()->startOffset().asSeconds(), seconds);
        QVERIFY(alarms.first()->enabled());
        QCOMPARE(alarms.first()->type(), KCalendarCore::Alarm::Display);
    }

    void valuesWithAStatus_data()
    {
        QTest::addColumn<Setting>("setting");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("secrecy");
        const auto busy = [](int value) -> Setting {
            return [value](EasCalendarItem &item) {
                item.setBusyStatus(EasCalendarItemCommon::BusyStatus(value));
            };
        };
        const auto sensitive = [](int value) -> Setting {
            return [value](EasCalendarItem &item) {
                item.setSensitivity(EasCalendarItemCommon::Sensitivity(value));
            };
        };
        const auto meeting = [](int value) -> Setting {
            return [value](EasCalendarItem &item) {
                item.setMeetingStatus(EasCalendarItemCommon::MeetingStatus(value));
            };
        };
        const int busyStatuses[] = { 0, 1, 2, 2 };
        for (int value = 0; value < 4; ++value)
            QTest::addRow("busy %d", value) << busy(value) << CalendarBusyStatusParamName
                                            << QString::number(value) << busyStatuses[value] << 0;
        QTest::addRow("busy, unset") << busy(-1) << CalendarBusyStatusParamName << QString() << 0 << 0;
        const int secrecies[] = { 0, 0, 1, 2 };
        for (int value = 0; value < 4; ++value)
            QTest::addRow("sensitivity %d", value) << sensitive(value) << CalendarSensitivityParamName
                                                   << QString::number(value) << 0 << secrecies[value];
        QTest::addRow("sensitivity, unset")
            << sensitive(-1) << CalendarSensitivityParamName << QString() << 0 << 0;
        const int meetingStatuses[] = { 0, 0, 0, 0, 0, 5, 0, 5 };
        for (int value = 0; value < 8; ++value)
            QTest::addRow("meeting %d", value) << meeting(value) << CalendarMeetingStatusParamName
                                               << QString::number(value) << meetingStatuses[value] << 0;
        QTest::addRow("meeting, unset")
            << meeting(-1) << CalendarMeetingStatusParamName << QString() << 0 << 0;
        const Setting busyNoMeeting = [busy, meeting](EasCalendarItem &item) {
            busy(2)(item);
            meeting(0)(item);
        };
        QTest::addRow("busy and no meeting")
            << busyNoMeeting << CalendarBusyStatusParamName << QStringLiteral("2") << 2 << 0;
        const Setting busyCancelled = [busy, meeting](EasCalendarItem &item) {
            busy(2)(item);
            meeting(5)(item);
        };
        QTest::addRow("busy and called off")
            << busyCancelled << CalendarBusyStatusParamName << QStringLiteral("2") << 5 << 0;
    }

    void valuesWithAStatus()
    {
        QFETCH(Setting, setting);
        QFETCH(QString, name);
        QFETCH(QString, value);
        EasCalendarItem item = mBed->item();
        setting(item);
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        QCOMPARE(custom(event, name), value);
        QTEST(int(event->status()), "status");
        QTEST(int(event->secrecy()), "secrecy");
    }

    void plainValuesAreKept_data()
    {
        QTest::addColumn<Setting>("set");
        QTest::addColumn<Setting>("unset");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        const auto row = [](const char *title, const QString &name, const QString &value, const Setting &set,
                             const Setting &unset) {
            QTest::newRow(title) << set << unset << name << value;
        };
        using Item = EasCalendarItem &;
        const QString text = QStringLiteral("https://example.com/;a,b");
        row(
            "disallowed", CalendarDisallowCounterParamName, CalendarBoolValueTrue,
            [](Item i) { i.setDisallowNewTimeProposal(EasItemsCommon::TTrue); },
            [](Item i) { i.setDisallowNewTimeProposal(EasItemsCommon::TUndefined); });
        row(
            "allowed", CalendarDisallowCounterParamName, CalendarBoolValueFalse,
            [](Item i) { i.setDisallowNewTimeProposal(EasItemsCommon::TFalse); },
            [](Item i) { i.setDisallowNewTimeProposal(EasItemsCommon::TUndefined); });
        row(
            "reply time", CalendarAppointmentReplyTimeParamName, QStringLiteral("20260101T000000Z"),
            [](Item i) { i.setAppointmentReplyTime(QStringLiteral("20260101T000000Z")); },
            [](Item i) { i.setAppointmentReplyTime(QString()); });
        row(
            "native body type", CalendarNativeBodyTypeParamName, QStringLiteral("2"),
            [](Item i) { i.setNativeBodyType(EasItemsCommon::HTMLNativeBodyType); },
            [](Item i) { i.setNativeBodyType(EasItemsCommon::NativeBodyTypeUnspecified); });
        row(
            "response requested", CalendarResponseRequestedParamName, QStringLiteral("1"),
            [](Item i) { i.setResponseRequested(EasItemsCommon::TTrue); },
            [](Item i) { i.setResponseRequested(EasItemsCommon::TUndefined); });
        row(
            "response type", CalendarResponseTypeParamName, QStringLiteral("3"),
            [](Item i) { i.setResponseType(EasCalendarItemCommon::ResponseTypeAccepted); },
            [](Item i) { i.setResponseType(EasCalendarItemCommon::ResponseTypeUndefined); });
        row(
            "external link", CalendarMeetingExtLinkParamName, text,
            [text](Item i) { i.setOnlineMeetingExternalLink(text); },
            [](Item i) { i.setOnlineMeetingExternalLink(QString()); });
        row(
            "conference link", CalendarMeetingConfLinkParamName, text,
            [text](Item i) { i.setOnlineMeetingConfLink(text); },
            [](Item i) { i.setOnlineMeetingConfLink(QString()); });
        row(
            "proposed start", CalendarProposedStartTimeParamName, QStringLiteral("20260305T080000Z"),
            [](Item i) { i.setProposedStartTime(QStringLiteral("2026-03-05T08:00:00.000Z")); },
            [](Item i) { i.setProposedStartTime(QString()); });
        row(
            "proposed end", CalendarProposedEndTimeParamName, QStringLiteral("20260305T090000Z"),
            [](Item i) { i.setProposedEndTime(QStringLiteral("20260305T090000Z")); },
            [](Item i) { i.setProposedEndTime(QString()); });
    }

    void plainValuesAreKept()
    {
        QFETCH(Setting, set);
        QFETCH(Setting, unset);
        QFETCH(QString, name);
        EasCalendarItem item = mBed->item();
        set(item);
        QVERIFY(mBed->add(item));
        QTEST(custom(mBed->event(), name), "value");
        EasCalendarItem change = mBed->blank();
        unset(change);
        QVERIFY(mBed->change(change));
        QVERIFY(custom(mBed->event(), name).isNull());
    }

    void unreadableProposalsAreLeftOut()
    {
        EasCalendarItem item = mBed->item();
        item.setProposedStartTime(QStringLiteral("early"));
        item.setProposedEndTime(QStringLiteral("late"));
        const LogCollector log;
        QVERIFY(mBed->add(item));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("Wrong proposed start time:"), QStringLiteral("early") }));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("Wrong proposed end time:"), QStringLiteral("late") }));
        QVERIFY(custom(mBed->event(), CalendarProposedStartTimeParamName).isNull());
    }

    void attendeesHaveTheirAnswer_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("partStat");
        QTest::addRow("unset") << -1 << int(Attendee::NeedsAction);
        QTest::addRow("unknown") << 0 << int(Attendee::NeedsAction);
        QTest::addRow("tentative") << 2 << int(Attendee::Tentative);
        QTest::addRow("accepted") << 3 << int(Attendee::Accepted);
        QTest::addRow("declined") << 4 << int(Attendee::Declined);
        QTest::addRow("not responded") << 5 << int(Attendee::NeedsAction);
    }

    void attendeesHaveTheirAnswer()
    {
        QFETCH(int, status);
        EasAttendeeContainer optional;
        optional.setEmail(QStringLiteral("bob@example.com"));
        optional.setName(QStringLiteral("Bob"));
        optional.setAttendeeType(EasAttendeeContainer::OptionalAttendeeType);
        optional.setAttendeeStatus(EasAttendeeContainer::AttendeeStatus(status));
        EasAttendeeContainer required;
        required.setEmail(QStringLiteral("eve@example.com"));
        EasAttendeeContainer nobody;
        EasCalendarItem item = mBed->item();
        item.setAttendees({ optional, required, nobody });
        const LogCollector log;
        QVERIFY(mBed->add(item));
        QCOMPARE(log.count(QStringLiteral("Cannot add attendee:")), 1);
        const Attendee::List attendees = mBed->event()->attendees();
        QCOMPARE(attendees.size(), 2);
        QTEST(int(attendees.first().status()), "partStat");
        QCOMPARE(attendees.first().role(), Attendee::OptParticipant);
        QCOMPARE(attendees.first().name(), QStringLiteral("Bob"));
        QVERIFY(attendees.first().RSVP());
        QCOMPARE(attendees.last().role(), Attendee::ReqParticipant);
        QCOMPARE(attendees.last().status(), Attendee::NeedsAction);
        EasCalendarItem change = mBed->blank();
        change.setAttendees({ required });
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->event()->attendees().size(), 1);
    }

    void anAttendeeWithoutAnAddressGoesUpAgain()
    {
        EasAttendeeContainer nameOnly;
        nameOnly.setName(QStringLiteral("Room \"1\", Bob"));
        nameOnly.setAttendeeType(EasAttendeeContainer::ResourceAttendeeType);
        nameOnly.setAttendeeStatus(EasAttendeeContainer::AcceptAttendeeStatus);
        EasAttendeeContainer bob;
        bob.setEmail(QStringLiteral("bob@example.com"));
        EasCalendarItem item = mBed->item();
        item.setAttendees({ nameOnly, bob });
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->event()->attendees().size(), 1);
        EasCalendarItem upload;
        QVERIFY(CalendarEventReader(mBed->device()).convert(mBed->event(), upload, true));
        QCOMPARE(upload.attendees().size(), 2);
        const EasAttendeeContainer last = upload.attendees().constLast();
        QCOMPARE(last.name(), nameOnly.name());
        QCOMPARE(last.attendeeType(), nameOnly.attendeeType());
        QCOMPARE(last.attendeeStatus(), nameOnly.attendeeStatus());
    }

    void whatIsKeptOfAnAttendeeGoesWithTheAttendee()
    {
        EasAttendeeContainer bob;
        bob.setEmail(QStringLiteral("bob@example.com"));
        bob.setAttendeeStatus(EasAttendeeContainer::NotRespondedAttendeeStatus);
        bob.setProposedStartTime(QDateTime(QDate(2026, 3, 5), QTime(8, 0), Qt::UTC));
        EasCalendarItem item = mBed->item();
        item.setAttendees({ bob });
        QVERIFY(mBed->add(item));
        const int kept = mBed->event()->customProperties().size();
        EasCalendarItem change = mBed->blank();
        change.setAttendees({});
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->event()->customProperties().size(), kept - 2);
    }

    void refusalsAreTold()
    {
        CalendarStoreContext nowhere;
        Incidence::List deleted;
        const CalendarEventWriter lost(nowhere, &deleted);
        const LogCollector log;
        bool skipped = true;
        EasCalendarItem item = mBed->item();
        QVERIFY(!lost.storeEvent(item, mBed->notebookUid(), true, {}, skipped));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No storage") }));
        QVERIFY(!skipped);

        const CalendarEventWriter writer(mBed->device(), &deleted);
        EasCalendarItem nameless;
        QVERIFY(!writer.storeEvent(nameless, mBed->notebookUid(), true, {}, skipped));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("Unable to store item: no serverId associated with item:") }));
        QVERIFY(!writer.storeEvent(item, mBed->notebookUid(), false, {}, skipped));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Unable to store item: mapping ("), QStringLiteral(") doesn't contain"),
                QStringLiteral("5:1"), QStringLiteral(", no localId associated with item:") }));
        QVERIFY(!writer.storeEvent(
            item, mBed->notebookUid(), false, { { Id, QStringLiteral("nothing") } }, skipped));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Cannot update non-existent event:"), QStringLiteral("with local id:"),
                QStringLiteral("nothing") }));
        QVERIFY(!writer.storeEvent(item, QString(), true, {}, skipped));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed to add event") }));
    }

    void badTimesAreRefused_data()
    {
        QTest::addColumn<Setting>("setting");
        QTest::addColumn<QString>("line");
        const Setting start = [](EasCalendarItem &i) {
            i.setStartTime(QStringLiteral("now"));
        };
        const Setting end = [](EasCalendarItem &i) {
            i.setEndTime(QStringLiteral("then"));
        };
        const Setting rule = [](EasCalendarItem &i) {
            EasRecurrenceContainer recurrence;
            recurrence.setType(EasRecurrenceContainer::WeeklyRecurrence);
            i.setRecurrence(recurrence);
        };
        QTest::addRow("start") << start << QStringLiteral("Wrong start time:");
        QTest::addRow("end") << end << QStringLiteral("Wrong end time:");
        QTest::addRow("rule") << rule << QStringLiteral("Failed handling recurrence");
    }

    void badTimesAreRefused()
    {
        QFETCH(Setting, setting);
        QFETCH(QString, line);
        // A bad item costs itself alone: the one beside it is stored.
        EasCalendarItem bad = mBed->item();
        setting(bad);
        QList<EasCalendarItem> added { bad, mBed->item(QStringLiteral("5:2")) };
        QList<EasCalendarItem> none;
        const LogCollector log;
        QVERIFY(mBed->apply(added, none));
        QVERIFY(log.contains(line));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed adding calendar item:"), Id }));
        QCOMPARE(added.size(), 1);
        QCOMPARE(mBed->events().size(), 1);
        QVERIFY(mBed->localId().isEmpty());

        // It comes again once it is right.
        QVERIFY(mBed->change(mBed->item()));
        QCOMPARE(mBed->event()->summary(), QStringLiteral("Event 5:1"));

        // A bad change leaves the event as it is.
        EasCalendarItem badChange = mBed->blank();
        badChange.setSubject(QStringLiteral("Renamed"));
        setting(badChange);
        QVERIFY(mBed->change(badChange));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed updating calendar item:"), Id }));
        QCOMPARE(mBed->event()->summary(), QStringLiteral("Event 5:1"));
        QVERIFY(!mBed->event()->recurs());
    }

    void init() { mBed = std::make_unique<CalendarBed>(); }
    void cleanup() { mBed.reset(); }

private:
    /** The block of a zone by its name alone. */
    static QByteArray zoneBlock(const QString &name)
    {
        QByteArray block(172, 0);
        for (int i = 0; i < name.size(); ++i)
            block[4 + 2 * i] = name.at(i).toLatin1();
        return block.toBase64();
    }

    std::unique_ptr<CalendarBed> mBed;
};

FENNEL_REGISTER_TEST(CalendarEventWriterTest)
#include "calendareventwritertest.moc"
