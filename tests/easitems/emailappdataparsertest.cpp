// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/emailappdataparser.h"
#include "easitems/fields/emailfields.h"
#include "easitems/fields/sharedfields.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QMetaProperty>
#include <QtTest>

#include <functional>

using namespace Wbxml;

namespace {

using Reader = std::function<QVariant(const EasEmailItem &)>;

/** One field of a reply: its element, the elements around it, and where its value is found afterwards. */
struct FieldRow
{
    const char *name;
    Token tag;
    QVector<Token> around;
    QString text;
    QVariant value;
    Reader read;
    /** What is logged for a text that is no number; null where any text will do. */
    const char *refusal;
};

template <auto Container, auto Field> Reader of()
{
    return [](const EasEmailItem &item) {
        return QVariant((((item.*Container)()).*Field)());
    };
}

template <auto Container, auto Field> Reader numberOf()
{
    return [](const EasEmailItem &item) {
        return QVariant(int((((item.*Container)()).*Field)()));
    };
}

template <auto Field> Reader itself()
{
    return [](const EasEmailItem &item) {
        return QVariant((item.*Field)());
    };
}

template <auto Field> Reader numberItself()
{
    return [](const EasEmailItem &item) {
        return QVariant(int((item.*Field)()));
    };
}

template <auto Field> Reader attachmentText()
{
    return [](const EasEmailItem &item) {
        return QVariant((item.attachments().value(0).*Field)());
    };
}

template <auto Field> Reader attachmentNumber()
{
    return [](const EasEmailItem &item) {
        return QVariant(int((item.attachments().value(0).*Field)()));
    };
}

template <auto Field> Reader recurrenceText()
{
    return [](const EasEmailItem &item) {
        return QVariant((item.recurrences().value(0).*Field)());
    };
}

template <auto Field> Reader recurrenceNumber()
{
    return [](const EasEmailItem &item) {
        return QVariant(int((item.recurrences().value(0).*Field)()));
    };
}

using Mail = EasEmailItem;
using Body = EasBodyContainer;
using Part = EasBodyPartContainer;
using Attachment = EasAttachmentContainer;
using Flag = EasFlagContainer;
using Meeting = EasMeetingRequestContainer;
using Recurrence = EasRecurrenceContainer;

const QVector<Token> InBody { AirSyncBase::Body };
const QVector<Token> InPart { AirSyncBase::BodyPart };
const QVector<Token> InAttachment { AirSyncBase::Attachments, AirSyncBase::Attachment };
const QVector<Token> InFlag { Email::Flag };
const QVector<Token> InMeeting { Email::MeetingRequest };
const QVector<Token> InRecurrence { Email::Recurrences, Email::Recurrence };

constexpr char NoUint[] = "Cannot convert to uint:";
constexpr char NoInt[] = "Cannot convert to int:";
constexpr char NoBool[] = "Cannot convert to bool:";

QList<FieldRow> mailRows()
{
    return {
        { "DateReceived", Email::DateReceived, {}, "2024-05-01T10:00:00.000Z", "2024-05-01T10:00:00.000Z",
            itself<&Mail::dateReceived>(), nullptr },
        { "DisplayTo", Email::DisplayTo, {}, "Bob", "Bob", itself<&Mail::displayTo>(), nullptr },
        { "Importance", Email::Importance, {}, "2", 2, numberItself<&Mail::importance>(), NoUint },
        { "MessageClass", Email::MessageClass, {}, "IPM.Note", "IPM.Note", itself<&Mail::messageClass>(),
            nullptr },
        { "Subject", Email::Subject, {}, "Grüße", "Grüße", itself<&Mail::subject>(), nullptr },
        { "Read", Email::Read, {}, "0", false, itself<&Mail::read>(), NoBool },
        { "To", Email::To, {}, "b@example.org", "b@example.org", itself<&Mail::recipientsTo>(), nullptr },
        { "CC", Email::Cc, {}, "c@example.org", "c@example.org", itself<&Mail::recipientsCc>(), nullptr },
        { "From", Email::From, {}, "a@example.org", "a@example.org", itself<&Mail::fromAddress>(), nullptr },
        { "ReplyTo", Email::ReplyTo, {}, "r@example.org", "r@example.org", itself<&Mail::replyTo>(),
            nullptr },
        { "ThreadTopic", Email::ThreadTopic, {}, "topic", "topic", itself<&Mail::threadTopic>(), nullptr },
        { "InternetCPID", Email::InternetCPID, {}, "65001", "65001", itself<&Mail::internetCPID>(), nullptr },
        { "ContentClass", Email::ContentClass, {}, "urn:content-classes:message",
            "urn:content-classes:message", itself<&Mail::contentClass>(), nullptr },
        { "NativeBodyType", AirSyncBase::NativeBodyType, {}, "2", 2, numberItself<&Mail::nativeBodyType>(),
            NoUint },
        { "UmCallerID", Email2::UmCallerID, {}, "+1", "+1", itself<&Mail::callerId>(), nullptr },
        { "UmUserNotes", Email2::UmUserNotes, {}, "notes", "notes", itself<&Mail::userNotes>(), nullptr },
        { "ConversationId", Email2::ConversationId, {}, "raw", QByteArray("raw"),
            itself<&Mail::conversationId>(), nullptr },
        { "ConversationIndex", Email2::ConversationIndex, {}, "raw", QByteArray("raw"),
            itself<&Mail::conversationIndex>(), nullptr },
        { "LastVerbExecuted", Email2::LastVerbExecuted, {}, "3", 3, numberItself<&Mail::lastVerbExecuted>(),
            NoUint },
        { "LastVerbExecutionTime", Email2::LastVerbExecutionTime, {}, "20240501T100000Z", "20240501T100000Z",
            itself<&Mail::lastVerbExecutedTime>(), nullptr },
        { "ReceivedAsBcc", Email2::ReceivedAsBcc, {}, "1", true, itself<&Mail::receivedAsBcc>(), NoBool },
        { "Sender", Email2::Sender, {}, "s@example.org", "s@example.org", itself<&Mail::sender>(), nullptr },
        { "AccountId", Email2::AccountId, {}, "sub", "sub", itself<&Mail::accountId>(), nullptr },
        { "IsDraft", Email2::IsDraft, {}, "1", true, itself<&Mail::isDraft>(), NoUint },
        { "IsDraft of 0", Email2::IsDraft, {}, "0", true, itself<&Mail::isDraft>(), NoUint },
        { "Category", Email::Category, { Email::Categories }, "Red", QStringList { "Red" },
            itself<&Mail::categories>(), nullptr },
    };
}

QList<FieldRow> bodyRows()
{
    return {
        { "Type of a body", AirSyncBase::Type, InBody, "2", 2, numberOf<&Mail::body, &Body::type>(), NoUint },
        { "Data of a body", AirSyncBase::Data, InBody, "text", "text", of<&Mail::body, &Body::data>(),
            nullptr },
        { "EstimatedDataSize of a body", AirSyncBase::EstimatedDataSize, InBody, "17", 17,
            of<&Mail::body, &Body::estimatedDataSize>(), NoInt },
        { "Truncated of a body", AirSyncBase::Truncated, InBody, "1", true,
            of<&Mail::body, &Body::truncated>(), NoBool },
        { "Preview of a body", AirSyncBase::Preview, InBody, "pre", "pre", of<&Mail::body, &Body::preview>(),
            nullptr },
        { "Type of a body part", AirSyncBase::Type, InPart, "2", 2, numberOf<&Mail::bodyPart, &Part::type>(),
            NoUint },
        { "Data of a body part", AirSyncBase::Data, InPart, "text", "text",
            of<&Mail::bodyPart, &Part::data>(), nullptr },
        { "EstimatedDataSize of a body part", AirSyncBase::EstimatedDataSize, InPart, "17", 17,
            of<&Mail::bodyPart, &Part::estimatedDataSize>(), NoInt },
        { "Truncated of a body part", AirSyncBase::Truncated, InPart, "1", true,
            of<&Mail::bodyPart, &Part::truncated>(), NoBool },
        { "Preview of a body part", AirSyncBase::Preview, InPart, "pre", "pre",
            of<&Mail::bodyPart, &Part::preview>(), nullptr },
        { "Status of a body part", AirSyncBase::Status, InPart, "176", 176,
            numberOf<&Mail::bodyPart, &Part::status>(), NoUint },
        { "EstimatedDataSize of an attachment", AirSyncBase::EstimatedDataSize, InAttachment, "17", 17,
            attachmentNumber<&Attachment::estimatedDataSize>(), NoInt },
        { "DisplayName", AirSyncBase::DisplayName, InAttachment, "a.txt", "a.txt",
            attachmentText<&Attachment::displayName>(), nullptr },
        { "FileReference", AirSyncBase::FileReference, InAttachment, "ref", "ref",
            attachmentText<&Attachment::fileReference>(), nullptr },
        { "Method", AirSyncBase::Method, InAttachment, "5", 5, attachmentNumber<&Attachment::method>(),
            NoUint },
        { "ContentId", AirSyncBase::ContentId, InAttachment, "cid", "cid",
            attachmentText<&Attachment::contentId>(), nullptr },
        { "ContentLocation", AirSyncBase::ContentLocation, InAttachment, "loc", "loc",
            attachmentText<&Attachment::contentLocation>(), nullptr },
        { "IsInline", AirSyncBase::IsInline, InAttachment, "1", 1, attachmentNumber<&Attachment::isInline>(),
            NoBool },
        { "UmAttDuration", Email2::UmAttDuration, InAttachment, "5", 0,
            attachmentNumber<&Attachment::attachmentDuration>(), nullptr },
        { "UmAttOrder", Email2::UmAttOrder, InAttachment, "5", 0,
            attachmentNumber<&Attachment::attachmentOrder>(), nullptr },
        { "Status of a flag", Email::Status, InFlag, "2", 2, numberOf<&Mail::flag, &Flag::status>(), NoUint },
        { "FlagType", Email::FlagType, InFlag, "Follow up", "Follow up", of<&Mail::flag, &Flag::flagType>(),
            nullptr },
        { "CompleteTime", Email::CompleteTime, InFlag, "now", "now", of<&Mail::flag, &Flag::completeTime>(),
            nullptr },
    };
}

QList<FieldRow> meetingRows()
{
    constexpr auto Request = &Mail::meetingRequest;
    return {
        { "AllDayEvent", Email::AllDayEvent, InMeeting, "1", 1, numberOf<Request, &Meeting::allDayEvent>(),
            NoUint },
        { "DTStamp", Email::DtStamp, InMeeting, "t", "t", of<Request, &Meeting::dtStamp>(), nullptr },
        { "EndTime", Email::EndTime, InMeeting, "t", "t", of<Request, &Meeting::endTime>(), nullptr },
        { "InstanceType", Email::InstanceType, InMeeting, "3", 3, numberOf<Request, &Meeting::instanceType>(),
            NoUint },
        { "BusyStatus", Email::BusyStatus, InMeeting, "2", 2, numberOf<Request, &Meeting::busyStatus>(),
            NoUint },
        { "Location", Email::Location, InMeeting, "room", "room", of<Request, &Meeting::location>(),
            nullptr },
        { "Organizer", Email::Organizer, InMeeting, "o", "o", of<Request, &Meeting::organizer>(), nullptr },
        { "RecurrenceId of a request", Email::RecurrenceId, InMeeting, "t", "t",
            of<Request, &Meeting::recurrenceId>(), nullptr },
        { "RecurrenceId of a recurrence", Email::RecurrenceId, InRecurrence, "t", "t",
            recurrenceText<&Recurrence::recurrenceId>(), nullptr },
        { "Reminder", Email::Reminder, InMeeting, "900", 900, of<Request, &Meeting::reminder>(), NoInt },
        { "ResponseRequested", Email::ResponseRequested, InMeeting, "1", 1,
            numberOf<Request, &Meeting::responseRequested>(), NoUint },
        { "Recurrence_Type", Email::Type, InRecurrence, "2", 2, recurrenceNumber<&Recurrence::type>(),
            NoUint },
        { "Recurrence_Until", Email::Until, InRecurrence, "t", "t", recurrenceText<&Recurrence::until>(),
            nullptr },
        { "Recurrence_Occurrences", Email::Occurrences, InRecurrence, "4", 4,
            recurrenceNumber<&Recurrence::occurrences>(), NoInt },
        { "Recurrence_Interval", Email::Interval, InRecurrence, "4", 4,
            recurrenceNumber<&Recurrence::interval>(), NoInt },
        { "Recurrence_DayOfWeek", Email::DayOfWeek, InRecurrence, "127", 127,
            recurrenceNumber<&Recurrence::dayOfWeek>(), NoInt },
        { "Recurrence_DayOfMonth", Email::DayOfMonth, InRecurrence, "4", 4,
            recurrenceNumber<&Recurrence::dayOfMonth>(), NoInt },
        { "Recurrence_WeekOfMonth", Email::WeekOfMonth, InRecurrence, "4", 4,
            recurrenceNumber<&Recurrence::weekOfMonth>(), NoInt },
        { "Recurrence_MonthOfYear", Email::MonthOfYear, InRecurrence, "4", 4,
            recurrenceNumber<&Recurrence::monthOfYear>(), NoInt },
        { "StartTime", Email::StartTime, InMeeting, "t", "t", of<Request, &Meeting::startTime>(), nullptr },
        { "Sensitivity", Email::Sensitivity, InMeeting, "2", 2, numberOf<Request, &Meeting::sensitivity>(),
            NoUint },
        { "TimeZone", Email::TimeZone, InMeeting, "AAAA", "AAAA", of<Request, &Meeting::timeZone>(),
            nullptr },
        { "GlobalObjId", Email::GlobalObjId, InMeeting, "BAAA", QByteArray("BAAA"),
            of<Request, &Meeting::globalObjId>(), nullptr },
        { "DisallowNewTimeProposal", Email::DisallowNewTimeProposal, InMeeting, "7", 1,
            numberOf<Request, &Meeting::disallowNewTimeProposal>(), NoUint },
        { "UID of a meeting", Calendar::UID, InMeeting, "uid", QByteArray("uid"),
            of<Request, &Meeting::calendarMessageId>(), nullptr },
        { "ProposedStartTime", MeetingResponse::ProposedStartTime, InMeeting, "t", "t",
            of<Request, &Meeting::proposedStartTime>(), nullptr },
        { "ProposedEndTime", MeetingResponse::ProposedEndTime, InMeeting, "t", "t",
            of<Request, &Meeting::proposedEndTime>(), nullptr },
        { "CalendarType", Email2::CalendarType, InRecurrence, "1", 1,
            recurrenceNumber<&Recurrence::calendarType>(), NoUint },
        { "IsLeapMonth", Email2::IsLeapMonth, InRecurrence, "1", 1,
            recurrenceNumber<&Recurrence::leapMonth>(), NoUint },
        { "FirstDayOfWeek", Email2::FirstDayOfWeek, InRecurrence, "1", 1,
            recurrenceNumber<&Recurrence::firstDayOfWeek>(), NoUint },
        { "MeetingMessageType", Email2::MeetingMessageType, InMeeting, "2", 2,
            numberOf<Request, &Meeting::meetingMessageType>(), NoUint },
    };
}

QList<FieldRow> allRows()
{
    return mailRows() + bodyRows() + meetingRows();
}

void start(EmailAppDataParser &parser, Token tag)
{
    parser.onStartElement(tag.page, tag.token);
}

void end(EmailAppDataParser &parser, Token tag)
{
    parser.onEndElement(tag.page, tag.token);
}

void element(EmailAppDataParser &parser, Token tag, const QString &text)
{
    start(parser, tag);
    parser.onContent(tag.page, tag.token, text, text.toUtf8());
    end(parser, tag);
}

void field(EmailAppDataParser &parser, const QVector<Token> &around, Token tag, const QString &text)
{
    for (const Token outer : around)
        start(parser, outer);
    element(parser, tag, text);
    for (int i = around.size() - 1; i >= 0; --i)
        end(parser, around.at(i));
}

} // namespace

class EmailAppDataParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldLandsWhereItBelongs_data() { rowsAsData(); }

    void everyFieldLandsWhereItBelongs()
    {
        QFETCH(int, row);
        const FieldRow expected = allRows().at(row);
        const LogCollector log;
        EmailAppDataParser parser;
        field(parser, expected.around, expected.tag, expected.text);
        QCOMPARE(expected.read(parser.mailItem()), expected.value);
        QVERIFY(parser.mailItem().changedFields().isEmpty());
        QVERIFY2(log.lines().isEmpty(), qPrintable(log.texts().join(QLatin1Char('\n'))));
    }

    void aChangeRecordsTheKeyOfTheField_data() { rowsAsData(); }

    void aChangeRecordsTheKeyOfTheField()
    {
        QFETCH(int, row);
        const FieldRow expected = allRows().at(row);
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        field(parser, expected.around, expected.tag, expected.text);
        QCOMPARE(parser.mailItem().changedFields(), QList<uint> { expected.tag.key() });
    }

    void aBadNumberIsLoggedAndLeavesNothing_data()
    {
        QTest::addColumn<int>("row");
        const QList<FieldRow> rows = allRows();
        for (int i = 0; i < rows.size(); ++i) {
            if (rows.at(i).refusal)
                QTest::newRow(rows.at(i).name) << i;
        }
    }

    void aBadNumberIsLoggedAndLeavesNothing()
    {
        QFETCH(int, row);
        const FieldRow expected = allRows().at(row);
        EmailAppDataParser untouched;
        for (const Token outer : expected.around)
            start(untouched, outer);
        for (int i = expected.around.size() - 1; i >= 0; --i)
            end(untouched, expected.around.at(i));

        const LogCollector log;
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        field(parser, expected.around, expected.tag, QStringLiteral("many"));
        QVERIFY(log.contains(QtWarningMsg, { QLatin1String(expected.refusal), QStringLiteral("many") }));
        QCOMPARE(expected.read(parser.mailItem()), expected.read(untouched.mailItem()));
        QVERIFY(parser.mailItem().changedFields().isEmpty());
    }

    void everyFieldOfTheTablesHasARow()
    {
        QSet<uint> tested;
        for (const FieldRow &row : allRows())
            tested.insert(row.tag.key());
        const auto check = [&](const auto &table) {
            for (const auto &one : table.fields()) {
                if (one.take)
                    QVERIFY2(tested.contains(one.tag.key()), qPrintable(QString::number(one.tag.key(), 16)));
            }
        };
        check(EmailFields::itemFields());
        check(EmailFields::bodyFields());
        check(EmailFields::bodyPartFields());
        check(EmailFields::flagFields());
        check(EmailFields::meetingRequestFields());
        check(EmailFields::recurrenceFields());
        check(SharedFields::attachmentFields());
    }

    void anItemThatSaysNothingIsRead()
    {
        EmailAppDataParser parser;
        element(parser, Email::Subject, QStringLiteral("s"));
        QVERIFY(parser.mailItem().read());
    }

    void recurrencesGoToTheMeetingRequestOrToTheItem()
    {
        EmailAppDataParser parser;
        start(parser, Email::MeetingRequest);
        field(parser, InRecurrence, Email::Interval, QStringLiteral("3"));
        end(parser, Email::MeetingRequest);
        QCOMPARE(parser.mailItem().meetingRequest().recurrences().size(), 1);
        QCOMPARE(parser.mailItem().meetingRequest().recurrences().first().interval(), 3);
        QVERIFY(parser.mailItem().recurrences().isEmpty());
        QVERIFY(parser.mailItem().meetingRequest().elementValid());

        parser.reset();
        field(parser, InRecurrence, Email::Interval, QStringLiteral("4"));
        QCOMPARE(parser.mailItem().recurrences().size(), 1);
        QCOMPARE(parser.mailItem().recurrences().first().interval(), 4);
        QVERIFY(!parser.mailItem().meetingRequest().elementValid());
    }

    void aMeetingOfALaterVersionHasItsPlaceInAStructure()
    {
        EmailAppDataParser parser;
        const LogCollector log;
        start(parser, Email::MeetingRequest);
        start(parser, AirSyncBase::Location);
        element(parser, AirSyncBase::DisplayName, QStringLiteral("Room 1"));
        end(parser, AirSyncBase::Location);
        end(parser, Email::MeetingRequest);
        QCOMPARE(parser.mailItem().meetingRequest().location(), QStringLiteral("Room 1"));
        QVERIFY(log.lines().isEmpty());
    }

    void thePlaceOfAMeetingIsNoChangeOfAttachments()
    {
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        start(parser, Email::MeetingRequest);
        field(parser, { AirSyncBase::Location }, AirSyncBase::DisplayName, QStringLiteral("Room 1"));
        end(parser, Email::MeetingRequest);
        QCOMPARE(parser.mailItem().changedFields(), QList<uint> { Email::Location.key() });
    }

    void whatBelongsToAnAttachmentIsNoChangeOutsideOfOne()
    {
        const LogCollector log;
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        field(parser, { AirSyncBase::Location }, AirSyncBase::DisplayName, QStringLiteral("Room 1"));
        element(parser, AirSyncBase::Data, QStringLiteral("text"));
        QVERIFY(parser.mailItem().changedFields().isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { "unhandled field:", "Room 1" }));
    }

    void aListThatComesEmptyIsAChange_data()
    {
        QTest::addColumn<uint>("page");
        QTest::addColumn<uint>("token");
        for (const Token tag : { AirSyncBase::Attachments, Email::Categories, Email::Flag })
            QTest::addRow("%u:%u", uint(tag.page), uint(tag.token)) << uint(tag.page) << uint(tag.token);
    }
    void aListThatComesEmptyIsAChange()
    {
        QFETCH(uint, page);
        QFETCH(uint, token);
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        parser.onStartElement(page, token);
        parser.onEndElement(page, token);
        element(parser, Email::Read, QStringLiteral("1"));
        QCOMPARE(parser.mailItem().changedFields(), (QList<uint> { page * 256 + token, Email::Read.key() }));
        QVERIFY(parser.mailItem().attachments().isEmpty());
    }

    void theFieldsOfARecurrenceOfAMeetingAreItsOwn()
    {
        EmailAppDataParser parser;
        start(parser, Email::MeetingRequest);
        start(parser, Email::Recurrences);
        start(parser, Email::Recurrence);
        element(parser, Email::Interval, QStringLiteral("3"));
        element(parser, Email::RecurrenceId, QStringLiteral("t"));
        end(parser, Email::Recurrence);
        end(parser, Email::Recurrences);
        end(parser, Email::MeetingRequest);
        const EasMeetingRequestContainer request = parser.mailItem().meetingRequest();
        QCOMPARE(request.recurrences().value(0).interval(), 3);
        QCOMPARE(request.recurrenceId(), QStringLiteral("t"));
    }

    void aMeetingIdentifierMayBeOpaqueBytes()
    {
        const QByteArray id("\x04\x00\x00\x00\x82\xFF", 6);
        EmailAppDataParser parser;
        start(parser, Email::MeetingRequest);
        parser.onContent(Email::GlobalObjId.page, Email::GlobalObjId.token, QString::fromUtf8(id), id);
        end(parser, Email::MeetingRequest);
        QCOMPARE(parser.mailItem().meetingRequest().globalObjId(), id);
    }

    void aSizeOutsideOfEverythingIsDroppedButRecorded()
    {
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        element(parser, AirSyncBase::EstimatedDataSize, QStringLiteral("17"));
        QCOMPARE(parser.mailItem().changedFields(), QList<uint> { AirSyncBase::EstimatedDataSize.key() });
        QCOMPARE(parser.mailItem().body().estimatedDataSize(), 0);
        QVERIFY(parser.mailItem().attachments().isEmpty());
    }

    void aFlagWithOnlyATimeOfCompletionIsNotEmpty()
    {
        EmailAppDataParser parser;
        field(parser, InFlag, Email::CompleteTime, QStringLiteral("t"));
        QVERIFY(!parser.mailItem().flag().isEmptyContainer());
        parser.reset();
        start(parser, Email::Flag);
        end(parser, Email::Flag);
        QVERIFY(parser.mailItem().flag().isEmptyContainer());
    }

    void aTaskFieldOfAFlagIsLoggedAndTheRestIsRead()
    {
        const LogCollector log;
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        start(parser, Email::Flag);
        element(parser, Tasks::DueDate, QStringLiteral("t"));
        element(parser, Email::FlagType, QStringLiteral("Follow up"));
        end(parser, Email::Flag);
        QVERIFY(log.contains(QStringLiteral("unhandled field:")));
        QVERIFY(log.contains(QtWarningMsg, { "unhandled field:", "t", ", codePage", "9", ", token", "12" }));
        QCOMPARE(parser.mailItem().flag().flagType(), QStringLiteral("Follow up"));
        QCOMPARE(parser.mailItem().changedFields(), QList<uint> { Email::FlagType.key() });
    }

    void severalAttachmentsAndCategoriesKeepTheirOrder()
    {
        EmailAppDataParser parser;
        start(parser, AirSyncBase::Attachments);
        for (const QString &name : { QStringLiteral("one"), QStringLiteral("two") }) {
            start(parser, AirSyncBase::Attachment);
            element(parser, AirSyncBase::DisplayName, name);
            end(parser, AirSyncBase::Attachment);
        }
        end(parser, AirSyncBase::Attachments);
        start(parser, Email::Categories);
        element(parser, Email::Category, QStringLiteral("Red"));
        element(parser, Email::Category, QStringLiteral("Blue"));
        end(parser, Email::Categories);
        QCOMPARE(parser.mailItem().attachments().size(), 2);
        QCOMPARE(parser.mailItem().attachments().at(0).displayName(), QStringLiteral("one"));
        QCOMPARE(parser.mailItem().attachments().at(1).displayName(), QStringLiteral("two"));
        QCOMPARE(parser.mailItem().categories(), (QStringList { "Red", "Blue" }));
    }

    void resetStartsANewItemAndKeepsWhetherItIsAChange()
    {
        EmailAppDataParser parser;
        parser.setChangeItem(true);
        element(parser, Email::Subject, QStringLiteral("s"));
        start(parser, Email::MeetingRequest);
        parser.reset();
        QVERIFY(parser.isChangeItem());
        QVERIFY(parser.mailItem().subject().isEmpty());
        QVERIFY(parser.mailItem().changedFields().isEmpty());
        field(parser, InRecurrence, Email::RecurrenceId, QStringLiteral("t"));
        QCOMPARE(parser.mailItem().recurrences().size(), 1);
    }

    void anUnknownElementIsLogged()
    {
        const LogCollector log;
        EmailAppDataParser parser;
        start(parser, Contacts::FileAs);
        QVERIFY(log.contains(QtWarningMsg, { "unhandled field:", ", codePage", "1", ", token", "30" }));
    }

private:
    void rowsAsData()
    {
        QTest::addColumn<int>("row");
        const QList<FieldRow> rows = allRows();
        for (int i = 0; i < rows.size(); ++i)
            QTest::newRow(rows.at(i).name) << i;
    }
};

FENNEL_REGISTER_TEST(EmailAppDataParserTest)
#include "emailappdataparsertest.moc"
