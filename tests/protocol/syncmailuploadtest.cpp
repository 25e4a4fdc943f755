// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/uploadscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Wbxml;
using namespace ExchangeActiveSync;
using namespace UploadScene;

namespace {

/** The fields of one mail that goes up as a change. */
QString uploaded(const EasEmailItem &item, ProtocolVersion version)
{
    SyncCommandChange change;
    change.appendEmailItem(item);
    return uploadedFields(outlined(change, version), QStringLiteral("5:1"));
}

EasEmailItem mail()
{
    EasEmailItem item;
    item.setServerId(QStringLiteral("5:1"));
    item.setLocalId(QStringLiteral("77"));
    return item;
}

} // namespace

class SyncMailUploadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReadMarkGoesAlone()
    {
        EasEmailItem item = mail();
        item.setSubject(QStringLiteral("s"));
        item.setRead(false);
        item.appendChangedField(Email::Read);
        for (const ProtocolVersion version : versions())
            QCOMPARE(uploaded(item, version), QStringLiteral("Read=0"));
        item.setRead(true);
        QCOMPARE(uploaded(item, ProtocolVersion141), QStringLiteral("Read=1"));
    }

    void anyOtherChangeCarriesTheWholeItem()
    {
        EasEmailItem item = mail();
        item.setSubject(QStringLiteral("s"));
        item.appendChangedField(Email::Read);
        item.appendChangedField(Email::Subject);
        QCOMPARE(uploaded(item, ProtocolVersion121), QStringLiteral("Subject=s,Importance=1,Read=1"));
        item.clearChangedFields();
        QCOMPARE(uploaded(item, ProtocolVersion121), QStringLiteral("Subject=s,Importance=1,Read=1"));
    }

    void aFlagThatWasRemovedIsAnEmptyElement()
    {
        EasEmailItem item = mail();
        QVERIFY(!uploaded(item, ProtocolVersion141).contains(QLatin1String("Flag")));
        EasFlagContainer flag;
        flag.setIsEmptyContainer(false);
        item.setFlag(flag);
        QCOMPARE(uploaded(item, ProtocolVersion141), QStringLiteral("Importance=1,Read=1,Flag,Categories"));
    }

    void aFlagCarriesItsTask()
    {
        EasFlagContainer flag;
        flag.setStatus(EasFlagContainer::ActiveFlagStatus);
        flag.setFlagType(QStringLiteral("Follow up"));
        flag.setCompleteTime(QStringLiteral("t1"));
        flag.setSubject(QStringLiteral("s"));
        flag.setDateCompleted(QStringLiteral("t2"));
        flag.setStartDate(QStringLiteral("t3"));
        flag.setDueDate(QStringLiteral("t4"));
        flag.setUtcStartDate(QStringLiteral("t5"));
        flag.setUtcDueDate(QStringLiteral("t6"));
        flag.setReminderSet(1);
        flag.setReminderTime(QStringLiteral("t7"));
        flag.setOrdinalDate(QStringLiteral("t8"));
        flag.setSubOrdinalDate(QStringLiteral("5"));
        EasEmailItem item = mail();
        item.setFlag(flag);
        QCOMPARE(uploaded(item, ProtocolVersion121),
            QStringLiteral(
                "Importance=1,Read=1,Flag(FlagStatus=2,FlagType=Follow up,CompleteTime=t1,Subject=s,"
                "DateCompleted=t2,StartDate=t3,DueDate=t4,UTCStartDate=t5,UTCDueDate=t6,"
                "ReminderSet=1,ReminderTime=t7,OrdinalDate=t8,SubOrdinalDate=5)"));
    }

    void categoriesNeedVersion140AndAreThenWrittenAlsoWhenEmpty()
    {
        EasEmailItem item = mail();
        item.setCategories({ QStringLiteral("Red"), QStringLiteral("Blue") });
        QCOMPARE(uploaded(item, ProtocolVersion121), QStringLiteral("Importance=1,Read=1"));
        QCOMPARE(uploaded(item, ProtocolVersion140),
            QStringLiteral("Importance=1,Read=1,Categories(Category=Red,Category=Blue)"));
        item.setCategories({});
        QCOMPARE(uploaded(item, ProtocolVersion140), QStringLiteral("Importance=1,Read=1,Categories"));
    }

    void theTextsAndMarksKeepTheirOrder()
    {
        EasEmailItem item = mail();
        item.setRecipientsTo(QStringLiteral("to"));
        item.setRecipientsCc(QStringLiteral("cc"));
        item.setFromAddress(QStringLiteral("from"));
        item.setSubject(QStringLiteral("Grüße"));
        item.setReplyTo(QStringLiteral("reply"));
        item.setDateReceived(QStringLiteral("date"));
        item.setDisplayTo(QStringLiteral("display"));
        item.setThreadTopic(QStringLiteral("topic"));
        item.setImportance(EasEmailItem::HighImportance);
        item.setMessageClass(QStringLiteral("IPM.Note"));
        item.setContentClass(QStringLiteral("content"));
        item.setInternetCPID(QStringLiteral("65001"));
        item.setSender(QStringLiteral("sender"));
        item.setLastVerbExecuted(EasEmailItem::ForwardVerb);
        item.setLastVerbExecutedTime(QStringLiteral("verbtime"));
        item.setReceivedAsBcc(true);
        item.setNativeBodyType(EasItemsCommon::HTMLNativeBodyType);
        item.setUserNotes(QStringLiteral("only received"));
        const QString common = QStringLiteral(
            "To=to,Cc=cc,From=from,Subject=Grüße,Reply-To=reply,DateReceived=date,DisplayTo=display,"
            "ThreadTopic=topic,Importance=2,Read=1,MessageClass=IPM.Note,ContentClass=content,"
            "InternetCPID=65001,");
        QCOMPARE(
            uploaded(item, ProtocolVersion121), common + QStringLiteral("ReceivedAsBcc,NativeBodyType=2"));
        QCOMPARE(uploaded(item, ProtocolVersion140),
            common
                + QStringLiteral("Sender=sender,LastVerbExecuted=3,LastVerbExecutionTime=verbtime,"
                                 "ReceivedAsBcc,NativeBodyType=2,Categories"));
        item.setLastVerbExecuted(EasEmailItem::LastVerbExecutedValues(4));
        QVERIFY(!uploaded(item, ProtocolVersion140).contains(QLatin1String("LastVerbExecuted=")));
    }

    void aBodyIsWrittenIfItsTypeIsSet()
    {
        EasEmailItem item = mail();
        EasBodyContainer body;
        body.setData(QStringLiteral("text"));
        body.setEstimatedDataSize(4);
        body.setPreview(QStringLiteral("pre"));
        item.setBody(body);
        QVERIFY(!uploaded(item, ProtocolVersion121).contains(QLatin1String("Body")));
        body.setType(EasBodyContainer::PlainTextBodyType);
        item.setBody(body);
        QCOMPARE(uploaded(item, ProtocolVersion121),
            QStringLiteral("Importance=1,Read=1,Body(Type=1,EstimatedDataSize=4,Data=text)"));
        QVERIFY(uploaded(item, ProtocolVersion140)
                    .contains(QLatin1String("Body(Type=1,EstimatedDataSize=4,Data=text,Preview=pre)")));
        body.setData(QString());
        item.setBody(body);
        QVERIFY(uploaded(item, ProtocolVersion121).contains(QLatin1String("EstimatedDataSize=4,Data)")));
    }

    void attachmentsSayWhatTheyAre()
    {
        EasAttachmentContainer plain;
        EasAttachmentContainer full;
        full.setDisplayName(QStringLiteral("a.png"));
        full.setFileReference(QStringLiteral("ref"));
        full.setMethod(EasAttachmentContainer::NormalAttachmentMethod);
        full.setEstimatedDataSize(9);
        full.setContentId(QStringLiteral("cid"));
        full.setContentLocation(QStringLiteral("loc"));
        full.setIsInline(true);
        full.setAttachmentDuration(3);
        full.setAttachmentOrder(1);
        EasEmailItem item = mail();
        item.setAttachments({ plain, full });
        QCOMPARE(uploaded(item, ProtocolVersion121),
            QStringLiteral("Importance=1,Read=1,Attachments("
                           "Attachment(FileReference,Method=0,EstimatedDataSize=0),"
                           "Attachment(DisplayName=a.png,FileReference=ref,Method=1,EstimatedDataSize=9,"
                           "ContentId=cid,ContentLocation=loc,IsInline,UmAttDuration=3,UmAttOrder=1))"));
    }

    void aMeetingRequestIsWrittenIfThereIsOne()
    {
        EasMeetingRequestContainer request;
        request.setStartTime(QStringLiteral("start"));
        request.setEndTime(QStringLiteral("end"));
        request.setDtStamp(QStringLiteral("stamp"));
        request.setInstanceType(EasMeetingRequestContainer::SingleAppointment);
        request.setLocation(QStringLiteral("room"));
        request.setOrganizer(QStringLiteral("o"));
        request.setReminder(900);
        request.setResponseRequested(1);
        request.setSensitivity(EasMeetingRequestContainer::NormalSensitivity);
        request.setBusyStatus(EasMeetingRequestContainer::BusyBusyStatus);
        request.setTimeZone(QStringLiteral("AAAA"));
        request.setGlobalObjId(QByteArray("\x04\x00\x00", 3));
        request.setMeetingMessageType(EasMeetingRequestContainer::InitialMeetingRequest);
        EasEmailItem item = mail();
        item.setMeetingRequest(request);
        QCOMPARE(uploaded(item, ProtocolVersion121), QStringLiteral("Importance=1,Read=1"));
        request.setElementValid(true);
        item.setMeetingRequest(request);
        const QString expected = QStringLiteral(
            "Importance=1,Read=1,MeetingRequest(AllDayEvent=0,StartTime=start,DTStamp=stamp,EndTime=end,"
            "InstanceType=0,Location=room,Organizer=o,Reminder=900,ResponseRequested=1,Sensitivity=0,"
            "BusyStatus=2,TimeZone=AAAA,GlobalObjId=BAAA,DisallowNewTimeProposal=0,MeetingMessageType=1)");
        QCOMPARE(uploaded(item, ProtocolVersion121), expected);
        request.setGlobalObjId("BAAA");
        item.setMeetingRequest(request);
        QVERIFY(uploaded(item, ProtocolVersion121).contains(QLatin1String("GlobalObjId=BAAA,")));
    }

    void recurrencesDependOnTheVersion()
    {
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::WeeklyRecurrence);
        recurrence.setInterval(2);
        recurrence.setUntil(QStringLiteral("until"));
        recurrence.setDayOfWeek(62);
        recurrence.setRecurrenceId(QStringLiteral("id"));
        recurrence.setFirstDayOfWeek(EasRecurrenceContainer::MondayFirstDay);
        EasEmailItem item = mail();
        item.setRecurrences({ recurrence });
        const QString common =
            QStringLiteral("Recurrence(Type=1,Interval=2,Until=until,DayOfWeek=62,RecurrenceId=id");
        QVERIFY2(uploaded(item, ProtocolVersion121).contains(common + QLatin1String(")")),
            qPrintable(uploaded(item, ProtocolVersion121)));
        QVERIFY(uploaded(item, ProtocolVersion140)
                    .contains(common + QLatin1String(",CalendarType=0,IsLeapMonth=0)")));
        QVERIFY(uploaded(item, ProtocolVersion141)
                    .contains(common + QLatin1String(",CalendarType=0,IsLeapMonth=0,FirstDayOfWeek=1)")));
    }

    void anAdditionHasAClientIdAndNoServerId()
    {
        SyncCommandAdd add;
        EasEmailItem item = mail();
        item.appendChangedField(Email::Read);
        add.setEmailItems({ item });
        QCOMPARE(outlined(add, ProtocolVersion121),
            QStringLiteral("Commands(Add(ClientId=77,ApplicationData(Importance=1,Read=1)))"));
        QCOMPARE(outlined(add, ProtocolVersion140),
            QStringLiteral("Commands(Add(Class=Email,ClientId=77,ApplicationData(Importance=1,Read=1,"
                           "Categories)))"));
    }

    void anAdditionWithoutALocalIdIsLeftOut()
    {
        const LogCollector log;
        SyncCommandAdd add;
        EasEmailItem nameless;
        add.setEmailItems({ nameless, mail() });
        QCOMPARE(outlined(add, ProtocolVersion121),
            QStringLiteral("Commands(Add(ClientId=77,ApplicationData(Importance=1,Read=1)))"));
        QVERIFY(log.contains(QtWarningMsg, { "local id shouldn't be empty for Add command" }));
    }

    void aCommandOfAnotherTypeWritesNothing()
    {
        class Odd : public SyncCommandAdd
        {
        public:
            Type type() const override { return FetchCommand; }
        } odd;
        odd.appendEmailItem(mail());
        const LogCollector log;
        QCOMPARE(outlined(odd, ProtocolVersion141), QStringLiteral("Commands"));
        QVERIFY(log.contains(QtWarningMsg, { "Wrong command type" }));
    }

    void contactsGoInTheOrderOfTheTable()
    {
        EasContactsItem contact;
        contact.setLocalId(QStringLiteral("c1"));
        contact.setNickName(QStringLiteral("nick"));
        contact.setFileAs(QStringLiteral("file"));
        contact.setBirthday(QStringLiteral("birthday"));
        contact.setAlias(QStringLiteral("only received"));
        contact.addCategory(QStringLiteral("Red"));
        EasBodyContainer body;
        body.setType(EasBodyContainer::PlainTextBodyType);
        contact.setBody(body);
        SyncCommandAdd add;
        add.setContactItems({ contact });
        QCOMPARE(outlined(add, ProtocolVersion140),
            QStringLiteral("Commands(Add(Class=Contacts,ClientId=c1,ApplicationData(Birthday=birthday,"
                           "Categories(Category=Red),FileAs=file,NickName=nick,Body(Type=1,Data))))"));
    }
};

FENNEL_REGISTER_TEST(SyncMailUploadTest)
#include "syncmailuploadtest.moc"
