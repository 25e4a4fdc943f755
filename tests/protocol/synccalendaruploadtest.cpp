// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/uploadscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

using namespace Wbxml;
using namespace ExchangeActiveSync;
using namespace UploadScene;

namespace {

QString changed(const EasCalendarItem &item, ProtocolVersion version)
{
    SyncCommandChange change;
    change.setCalendarItems({ item });
    return outlined(change, version);
}

/** The fields of one event that goes up as a change. */
QString uploaded(const EasCalendarItem &item, ProtocolVersion version)
{
    return uploadedFields(changed(item, version), QStringLiteral("9:1"));
}

EasCalendarItem plainEvent()
{
    EasCalendarItem item;
    item.setServerId(QStringLiteral("9:1"));
    item.setLocalId(QStringLiteral("e1"));
    item.setStartTime(QStringLiteral("20240501T080000Z"));
    item.setEndTime(QStringLiteral("20240501T090000Z"));
    return item;
}

EasBodyContainer body(const QString &text)
{
    EasBodyContainer body;
    body.setType(EasBodyContainer::PlainTextBodyType);
    body.setData(text);
    body.setEstimatedDataSize(text.size());
    body.setPreview(QStringLiteral("pre"));
    return body;
}

EasAttendeeContainer attendee()
{
    EasAttendeeContainer attendee;
    attendee.setEmail(QStringLiteral("b@example.com"));
    attendee.setName(QStringLiteral("Bob"));
    return attendee;
}

EasRecurrenceContainer weekly()
{
    EasRecurrenceContainer recurrence;
    recurrence.setType(EasRecurrenceContainer::WeeklyRecurrence);
    recurrence.setInterval(1);
    recurrence.setDayOfWeek(8);
    return recurrence;
}

EasCalendarItem fullEvent()
{
    EasCalendarItem item = plainEvent();
    item.setTimezone("AAAA");
    item.setAllDayEvent(EasCalendarItemCommon::NotAllDayEvent);
    item.setBody(body(QStringLiteral("text")));
    item.setBusyStatus(EasCalendarItemCommon::BusyStatusBusy);
    item.setOrganizerName(QStringLiteral("Alice"));
    item.setOrganizerEmail(QStringLiteral("a@example.com"));
    item.setDtStamp(QStringLiteral("20240401T000000Z"));
    item.setLocation(QStringLiteral("Raum 1"));
    item.setReminder(0);
    item.setSensitivity(EasCalendarItemCommon::SensitivityPrivate);
    item.setSubject(QStringLiteral("Grüße"));
    item.setUid(QStringLiteral("uid1"));
    item.setMeetingStatus(EasCalendarItemCommon::MeetingStatusMeeting);
    item.setResponseRequested(EasItemsCommon::TTrue);
    EasAttendeeContainer second = attendee();
    second.setEmail(QStringLiteral("c@example.com"));
    second.setName(QString());
    second.setAttendeeStatus(EasAttendeeContainer::AcceptAttendeeStatus);
    second.setAttendeeType(EasAttendeeContainer::OptionalAttendeeType);
    item.setAttendees({ attendee(), second });
    item.setCategories({ QStringLiteral("Red"), QStringLiteral("Blue") });
    item.setRecurrence(weekly());
    // What only comes down
    item.setResponseType(EasCalendarItemCommon::ResponseTypeAccepted);
    item.setAppointmentReplyTime(QStringLiteral("reply"));
    item.setOnlineMeetingConfLink(QStringLiteral("conf"));
    item.setOnlineMeetingExternalLink(QStringLiteral("ext"));
    item.setDisallowNewTimeProposal(EasItemsCommon::TTrue);
    item.setProposedStartTime(QStringLiteral("proposed"));
    item.setNativeBodyType(EasItemsCommon::PlainTextNativeBodyType);
    return item;
}

EasCalendarItem exceptionAt(const char *start)
{
    EasCalendarItem exception;
    exception.setExceptionStartTime(QString::fromLatin1(start));
    exception.setSubject(QStringLiteral("moved"));
    exception.setStartTime(QStringLiteral("20240508T100000Z"));
    exception.setEndTime(QStringLiteral("20240508T110000Z"));
    return exception;
}

} // namespace

/** Events on their way to the server, at each version. */
class SyncCalendarUploadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEventGoesUpWhole_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("fields");
        const auto below14 = QStringLiteral(
            "TimeZone=AAAA,AllDayEvent=0,Body(Type=1,Data=text),BusyStatus=2,OrganizerName=Alice,"
            "OrganizerEmail=a@example.com,DTStamp=20240401T000000Z,EndTime=20240501T090000Z,Location=Raum 1,"
            "Reminder=0,Sensitivity=2,Subject=Grüße,StartTime=20240501T080000Z,UID=uid1,MeetingStatus=1,"
            "Attendees(Attendee(Email=b@example.com,Name=Bob),"
            "Attendee(Email=c@example.com,Status=3,Type=2)),"
            "Categories(Category=Red,Category=Blue),Recurrence(Type=1,Interval=1,DayOfWeek=8)");
        QString at140 = below14;
        at140.replace(QStringLiteral("Data=text)"), QStringLiteral("Data=text,Preview=pre)"))
            .replace(
                QStringLiteral("MeetingStatus=1,"), QStringLiteral("MeetingStatus=1,ResponseRequested=1,"))
            .replace(
                QStringLiteral("DayOfWeek=8)"), QStringLiteral("DayOfWeek=8,CalendarType=0,IsLeapMonth=0)"));
        const auto from160 = QStringLiteral(
            "TimeZone=AAAA,AllDayEvent=0,Body(Type=1,Data=text,Preview=pre),BusyStatus=2,"
            "EndTime=20240501T090000Z,Location(DisplayName=Raum 1),Reminder=0,Sensitivity=2,Subject=Grüße,"
            "StartTime=20240501T080000Z,MeetingStatus=1,ResponseRequested=1,"
            "Attendees(Attendee(Email=b@example.com,Name=Bob,Type=1),"
            "Attendee(Email=c@example.com,Type=2)),Categories(Category=Red,Category=Blue),"
            "Recurrence(Type=1,Interval=1,DayOfWeek=8,CalendarType=0,IsLeapMonth=0)");
        QTest::newRow("12.0") << int(ProtocolVersion120) << below14;
        QTest::newRow("12.1") << int(ProtocolVersion121) << below14;
        QTest::newRow("14.0") << int(ProtocolVersion140) << at140;
        QTest::newRow("14.1") << int(ProtocolVersion141) << at140;
        QTest::newRow("16.0") << int(ProtocolVersion160) << from160;
        QTest::newRow("16.1") << int(ProtocolVersion161) << from160;
    }

    void anEventGoesUpWhole()
    {
        QFETCH(int, version);
        QFETCH(QString, fields);
        // A list, so that a failure shows the first difference.
        QCOMPARE(uploaded(fullEvent(), ProtocolVersion(version)).split(QLatin1Char(',')),
            fields.split(QLatin1Char(',')));
    }

    void whatIsNotSetIsNotSent()
    {
        EasCalendarItem item;
        item.setServerId(QStringLiteral("9:1"));
        for (const ProtocolVersion version : versions())
            QCOMPARE(uploaded(item, version), QStringLiteral("EndTime,StartTime"));
    }

    void anAdditionHasAClassFrom140On()
    {
        SyncCommandAdd add;
        add.setCalendarItems({ plainEvent() });
        const QString fields = QStringLiteral(
            "ClientId=e1,ApplicationData(EndTime=20240501T090000Z,StartTime=20240501T080000Z)))");
        for (const ProtocolVersion version : versions())
            QCOMPARE(outlined(add, version),
                QStringLiteral("Commands(Add(")
                    + (version >= ProtocolVersion140 ? QStringLiteral("Class=Calendar,") : QString())
                    + fields);
    }

    void anAdditionWithoutALocalIdIsLeftOut()
    {
        const LogCollector log;
        EasCalendarItem nameless = plainEvent();
        nameless.setLocalId(QString());
        SyncCommandAdd add;
        add.setCalendarItems({ nameless });
        QCOMPARE(outlined(add, ProtocolVersion141), QStringLiteral("Commands"));
        QVERIFY(log.contains(QtWarningMsg, { "local id shouldn't be empty for Add command" }));
    }

    void anAllDayEventHasNoZoneFrom160On()
    {
        EasCalendarItem item = plainEvent();
        item.setTimezone("AAAA");
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        for (const ProtocolVersion version : versions()) {
            QCOMPARE(uploaded(item, version).startsWith(QStringLiteral("TimeZone=AAAA,AllDayEvent=1,")),
                version < ProtocolVersion160);
            QVERIFY(uploaded(item, version).contains(QStringLiteral("AllDayEvent=1,")));
        }
    }

    void aBodyWithoutTextIsAnEmptyElement()
    {
        EasCalendarItem item = plainEvent();
        item.setBody(body(QString()));
        QVERIFY(uploaded(item, ProtocolVersion121).startsWith(QStringLiteral("Body(Type=1,Data),")));
    }

    void theFirstDayOfTheWeekNeeds141()
    {
        EasCalendarItem item = plainEvent();
        EasRecurrenceContainer recurrence = weekly();
        recurrence.setFirstDayOfWeek(EasRecurrenceContainer::SundayFirstDay);
        item.setRecurrence(recurrence);
        for (const ProtocolVersion version : versions())
            QCOMPARE(uploaded(item, version).contains(QStringLiteral("FirstDayOfWeek=0")),
                version >= ProtocolVersion141);
    }

    void aRecurrenceKeepsTheOrderOfItsFields()
    {
        EasCalendarItem item = plainEvent();
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::YearlyNthDayRecurrence);
        recurrence.setOccurrences(3);
        recurrence.setInterval(2);
        recurrence.setWeekOfMonth(5);
        recurrence.setDayOfWeek(127);
        recurrence.setMonthOfYear(2);
        recurrence.setDayOfMonth(31);
        recurrence.setUntil(QStringLiteral("until"));
        recurrence.setLeapMonth(1);
        item.setRecurrence(recurrence);
        QVERIFY(uploaded(item, ProtocolVersion140)
                    .endsWith(QStringLiteral("Recurrence(Type=6,Occurrences=3,Interval=2,WeekOfMonth=5,"
                                             "DayOfWeek=127,MonthOfYear=2,DayOfMonth=31,Until=until,"
                                             "CalendarType=0,IsLeapMonth=1)")));
    }

    void exceptionsStayInTheirSeriesBelow160()
    {
        EasCalendarItem item = plainEvent();
        EasCalendarItem full = exceptionAt("20240508T080000Z");
        full.setItemChanged(true);
        full.setBody(body(QStringLiteral("other")));
        full.setLocation(QStringLiteral("Raum 2"));
        full.setCategories({ QStringLiteral("Green") });
        full.setSensitivity(EasCalendarItemCommon::SensitivityNormal);
        full.setBusyStatus(EasCalendarItemCommon::BusyStatusFree);
        full.setAllDayEvent(EasCalendarItemCommon::NotAllDayEvent);
        full.setDtStamp(QStringLiteral("stamp"));
        full.setReminder(30);
        full.setMeetingStatus(EasCalendarItemCommon::MeetingStatusMeeting);
        full.setAttendees({ attendee() });
        full.setUid(QStringLiteral("of the series"));
        full.setOrganizerEmail(QStringLiteral("of the series"));
        EasCalendarItem deleted;
        deleted.setExceptionStartTime(QStringLiteral("20240515T080000Z"));
        deleted.setExceptionDeleted(1);
        item.setExceptions({ full, deleted });
        const auto expected = QStringLiteral(
            "EndTime=20240501T090000Z,StartTime=20240501T080000Z,"
            "Exceptions(Exception(ExceptionStartTime=20240508T080000Z,Subject=moved,"
            "StartTime=20240508T100000Z,EndTime=20240508T110000Z,Body(Type=1,Data=other%1),Location=Raum 2,"
            "Categories(Category=Green),Sensitivity=0,BusyStatus=0,AllDayEvent=0,DTStamp=stamp,Reminder=30,"
            "MeetingStatus=1,Attendees(Attendee(Email=b@example.com,Name=Bob))),"
            "Exception(ExceptionStartTime=20240515T080000Z,ExceptionDeleted=1))");
        for (const ProtocolVersion version : { ProtocolVersion120, ProtocolVersion121 })
            QCOMPARE(uploaded(item, version).split(QLatin1Char(',')),
                expected.arg(QString()).split(QLatin1Char(',')));
        for (const ProtocolVersion version : { ProtocolVersion140, ProtocolVersion141 })
            QCOMPARE(uploaded(item, version), expected.arg(QStringLiteral(",Preview=pre")));
    }

    void changedExceptionsAreChangesOfTheirOwnFrom160On()
    {
        EasCalendarItem item = plainEvent();
        EasCalendarItem moved = exceptionAt("20240508T080000Z");
        moved.setItemChanged(true);
        moved.setRecurrence(weekly());
        item.setExceptions({ moved, exceptionAt("20240515T080000Z") });
        for (const ProtocolVersion version : { ProtocolVersion160, ProtocolVersion161 })
            QCOMPARE(changed(item, version),
                QStringLiteral("Commands(Change(ServerId=9:1,ApplicationData(EndTime=20240501T090000Z,"
                               "StartTime=20240501T080000Z)),"
                               "Change(ServerId=9:1,InstanceId=20240508T080000Z,"
                               "ApplicationData(EndTime=20240508T110000Z,Subject=moved,"
                               "StartTime=20240508T100000Z)))"));
    }

    void exceptionsOfANewSeriesWaitFrom160On()
    {
        EasCalendarItem item = plainEvent();
        EasCalendarItem moved = exceptionAt("20240508T080000Z");
        moved.setItemChanged(true);
        item.setExceptions({ moved });
        SyncCommandAdd add;
        add.setCalendarItems({ item });
        QVERIFY(!outlined(add, ProtocolVersion161).contains(QStringLiteral("20240508")));
        QVERIFY(outlined(add, ProtocolVersion141).contains(QStringLiteral("Exceptions(Exception(")));
    }

    void anExceptionWithoutTimesLeavesThemToItsSeries()
    {
        EasCalendarItem item = plainEvent();
        EasCalendarItem renamed;
        renamed.setExceptionStartTime(QStringLiteral("20240508T080000Z"));
        renamed.setSubject(QStringLiteral("new"));
        renamed.setItemChanged(true);
        item.setExceptions({ renamed });
        QVERIFY(changed(item, ProtocolVersion141)
                    .contains(QStringLiteral("Exception(ExceptionStartTime=20240508T080000Z,Subject=new)")));
        QVERIFY(changed(item, ProtocolVersion161).contains(QStringLiteral("ApplicationData(Subject=new)")));
    }

    void attachmentsGoUpFrom160On()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("a b.txt"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("content");
        file.close();
        EasAttachmentContainer fresh;
        fresh.setDisplayName(QStringLiteral("a b.txt"));
        fresh.setClientId(QStringLiteral("client"));
        fresh.setContentId(QStringLiteral("cid"));
        EasAttachmentContainer gone;
        gone.setFileReference(QStringLiteral("ref"));
        gone.setDisplayName(QStringLiteral("old.txt"));
        EasAttachmentContainer unchanged = gone;
        unchanged.setContentId(QStringLiteral("known"));
        EasCalendarItem item = plainEvent();
        for (const QString &location : { path, QUrl::fromLocalFile(path).toString() }) {
            fresh.setContentLocation(location);
            item.setAttachments({ fresh, gone, unchanged });
            for (const ProtocolVersion version : { ProtocolVersion160, ProtocolVersion161 })
                QVERIFY(uploaded(item, version)
                            .endsWith(QStringLiteral(
                                "Attachments(Add(DisplayName=a b.txt,ClientId=client,ContentId=cid,"
                                "Content=content,Method=1),Delete(FileReference=ref))")));
        }
        for (const ProtocolVersion version : { ProtocolVersion120, ProtocolVersion141 })
            QVERIFY(!uploaded(item, version).contains(QStringLiteral("Attachments")));
    }

    void aFileThatHasVanishedIsLoggedAndTheEventGoesOn()
    {
        EasAttachmentContainer vanished;
        vanished.setContentLocation(QStringLiteral("/nowhere/file.txt"));
        vanished.setMethod(EasAttachmentContainer::EmbeddedMessageMethod);
        EasCalendarItem item = plainEvent();
        item.setAttachments({ vanished });
        const LogCollector log;
        SyncCommandAdd add;
        add.setCalendarItems({ item });
        QVERIFY(outlined(add, ProtocolVersion161)
                    .endsWith(
                        QStringLiteral("StartTime=20240501T080000Z,Attachments(Add(Content,Method=5)))))")));
        QVERIFY(log.contains(QtWarningMsg, { "Error opening attachment content file", "/nowhere/file.txt" }));
    }
};

FENNEL_REGISTER_TEST(SyncCalendarUploadTest)
#include "synccalendaruploadtest.moc"
