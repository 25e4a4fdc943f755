// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/calendarappdataparser.h"
#include "easitems/fields/calendarfields.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::node;

namespace {

void feed(CalendarAppDataParser &parser, const WbxmlNode &item)
{
    parser.onStartElement(item.tag.page, item.tag.token);
    if (!item.text.isEmpty())
        parser.onContent(item.tag.page, item.tag.token, item.text, item.text.toUtf8());
    for (const WbxmlNode &child : item.children)
        feed(parser, child);
    parser.onEndElement(item.tag.page, item.tag.token);
}

EasCalendarItem read(const QVector<WbxmlNode> &fields)
{
    CalendarAppDataParser parser;
    for (const WbxmlNode &field : fields)
        feed(parser, field);
    return parser.calendarItem();
}

EasCalendarItem readException(const QVector<WbxmlNode> &fields)
{
    return read({ node(Calendar::Exceptions, { node(Calendar::Exception, fields) }) }).exceptions().value(0);
}

} // namespace

class CalendarAppDataParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { mLog.reset(new LogCollector); }
    void cleanup() { mLog.reset(); }

    void anEventIsReadWhole()
    {
        const EasCalendarItem item = read({ node(Calendar::Timezone, "AAAA"),
            node(Calendar::AllDayEvent, "1"), node(Calendar::BusyStatus, "2"),
            node(Calendar::OrganizerName, "O"), node(Calendar::OrganizerEmail, "o@example.org"),
            node(Calendar::DtStamp, "stamp"), node(Calendar::StartTime, "start"),
            node(Calendar::EndTime, "end"), node(Calendar::Location, "room"), node(Calendar::Reminder, "15"),
            node(Calendar::Sensitivity, "2"), node(Calendar::Subject, "s"), node(Calendar::UID, "uid"),
            node(Calendar::MeetingStatus, "3"), node(Calendar::ResponseRequested, "1"),
            node(Calendar::DisallowNewTimeProposal, "0"), node(Calendar::ResponseType, "3"),
            node(Calendar::AppointmentReplyTime, "reply"), node(Calendar::OnlineMeetingConfLink, "conf"),
            node(Calendar::OnlineMeetingExternalLink, "ext"), node(AirSyncBase::NativeBodyType, "1"),
            node(AirSyncBase::Body,
                { node(AirSyncBase::Type, "1"), node(AirSyncBase::Data, "text"),
                    node(AirSyncBase::EstimatedDataSize, "4"), node(AirSyncBase::Truncated, "1") }),
            node(Calendar::Categories, { node(Calendar::Category, "Red"), node(Calendar::Category, "Blue") }),
            node(Calendar::Attendees,
                { node(Calendar::Attendee,
                    { node(Calendar::Email, "a@example.org"), node(Calendar::Name, "A"),
                        node(Calendar::AttendeeStatus, "3"), node(Calendar::AttendeeType, "1") }) }),
            node(Calendar::Recurrence,
                { node(Calendar::Type, "1"), node(Calendar::Interval, "2"), node(Calendar::DayOfWeek, "62"),
                    node(Calendar::Until, "until"), node(Calendar::FirstDayOfWeek, "1") }),
            node(AirSyncBase::Attachments,
                { node(AirSyncBase::Attachment,
                    { node(AirSyncBase::DisplayName, "a.txt"), node(AirSyncBase::FileReference, "ref"),
                        node(AirSyncBase::EstimatedDataSize, "9"),
                        node(AirSyncBase::ClientId, "cid") }) }) });
        QCOMPARE(item.timezone(), QStringLiteral("AAAA"));
        QCOMPARE(int(item.allDayEvent()), 1);
        QCOMPARE(int(item.busyStatus()), 2);
        QCOMPARE(item.organizerEmail(), QStringLiteral("o@example.org"));
        QCOMPARE(item.startTime(), QStringLiteral("start"));
        QCOMPARE(item.endTime(), QStringLiteral("end"));
        QCOMPARE(item.location(), QStringLiteral("room"));
        QCOMPARE(item.reminder(), 15);
        QCOMPARE(int(item.sensitivity()), 2);
        QCOMPARE(item.uid(), QStringLiteral("uid"));
        QCOMPARE(int(item.meetingStatus()), 3);
        QCOMPARE(item.responseRequested(), EasItemsCommon::TTrue);
        QCOMPARE(item.disallowNewTimeProposal(), EasItemsCommon::TFalse);
        QCOMPARE(int(item.responseType()), 3);
        QCOMPARE(item.onlineMeetingConfLink(), QStringLiteral("conf"));
        QCOMPARE(item.onlineMeetingExternalLink(), QStringLiteral("ext"));
        QCOMPARE(item.body().data(), QStringLiteral("text"));
        QCOMPARE(item.body().estimatedDataSize(), 4);
        QVERIFY(item.body().truncated());
        QVERIFY(item.parameterHasBeenChanged(EasCalendarItem::BodyParameter));
        QCOMPARE(item.categories(), (QStringList { "Red", "Blue" }));
        QCOMPARE(item.attendees().size(), 1);
        QCOMPARE(int(item.attendees().first().attendeeStatus()), 3);
        QCOMPARE(int(item.recurrence().type()), 1);
        QCOMPARE(item.recurrence().dayOfWeek(), 62);
        QCOMPARE(int(item.recurrence().firstDayOfWeek()), 1);
        QCOMPARE(item.attachments().size(), 1);
        QCOMPARE(item.attachments().first().displayName(), QStringLiteral("a.txt"));
        QCOMPARE(item.attachments().first().estimatedDataSize(), 9);
        QCOMPARE(item.attachments().first().clientId(), QStringLiteral("cid"));
        QVERIFY(mLog->lines().isEmpty());
    }

    void anEmptySubjectInAnExceptionClearsTheOneOfTheSeries()
    {
        EasCalendarItem exception = readException({ node(Calendar::Subject), node(Calendar::Location) });
        QVERIFY(exception.parameterHasBeenChanged(EasCalendarItem::SubjectParameter));
        QVERIFY(exception.parameterHasBeenChanged(EasCalendarItem::LocationParameter));
        QVERIFY(exception.subject().isEmpty());
        exception = readException({ node(Calendar::StartTime, "start") });
        QVERIFY(!exception.parameterHasBeenChanged(EasCalendarItem::SubjectParameter));
        QVERIFY(!exception.parameterHasBeenChanged(EasCalendarItem::LocationParameter));
    }

    void theFieldsOfAnExceptionStayInIt()
    {
        const EasCalendarItem item = read({ node(Calendar::Subject, "series"),
            node(Calendar::Exceptions,
                { node(Calendar::Exception,
                      { node(Calendar::ExceptionStartTime, "t1"), node(Calendar::Subject, "one"),
                          node(AirSyncBase::Body,
                              { node(AirSyncBase::Type, "2"), node(AirSyncBase::Data, "text"),
                                  node(AirSyncBase::EstimatedDataSize, "77"),
                                  node(AirSyncBase::Truncated, "1"), node(AirSyncBase::Preview, "te") }),
                          node(Calendar::Categories, { node(Calendar::Category, "Red") }),
                          node(AirSyncBase::Location, { node(AirSyncBase::DisplayName, "room") }),
                          node(AirSyncBase::Attachments,
                              { node(AirSyncBase::Attachment, { node(AirSyncBase::DisplayName, "a") }) }),
                          node(Calendar::MeetingStatus, "5") }),
                    node(Calendar::Exception,
                        { node(AirSyncBase::InstanceId, "t2"), node(Calendar::Deleted, "1") }) }) });
        QCOMPARE(item.subject(), QStringLiteral("series"));
        QVERIFY(item.body().isEmpty());
        QVERIFY(item.categories().isEmpty());
        QVERIFY(item.location().isEmpty());
        QVERIFY(item.attachments().isEmpty());
        QCOMPARE(int(item.meetingStatus()), -1);
        QCOMPARE(item.exceptions().size(), 2);
        const EasCalendarItem first = item.exceptions().first();
        QCOMPARE(first.exceptionStartTime(), QStringLiteral("t1"));
        QCOMPARE(first.subject(), QStringLiteral("one"));
        QCOMPARE(first.body().type(), EasBodyContainer::HTMLBodyType);
        QCOMPARE(first.body().data(), QStringLiteral("text"));
        QCOMPARE(first.body().estimatedDataSize(), 77);
        QVERIFY(first.body().truncated());
        QCOMPARE(first.body().preview(), QStringLiteral("te"));
        QCOMPARE(first.categories(), QStringList { "Red" });
        QCOMPARE(first.location(), QStringLiteral("room"));
        QCOMPARE(first.attachments().size(), 1);
        QCOMPARE(int(first.meetingStatus()), 5);
        QCOMPARE(item.exceptions().last().exceptionStartTime(), QStringLiteral("t2"));
        QCOMPARE(int(item.exceptions().last().exceptionDeleted()), 1);
        QVERIFY(item.exceptions().last().subject().isEmpty());
    }

    void everySharedFieldGoesToTheLevelWhereItStands()
    {
        for (const auto &field : CalendarFields::itemFields().fields()) {
            if (!field.take)
                continue;
            const EasCalendarItem alone = read({ node(field.tag, "1") });
            QCOMPARE(alone.changedParameters().size(), 1);
            const EasCalendarItem series =
                read({ node(Calendar::Exceptions, { node(Calendar::Exception, { node(field.tag, "1") }) }) });
            QCOMPARE(series.changedParameters(),
                QList<EasCalendarItem::CalendarItemParameter> { EasCalendarItem::ExceptionsParameter });
            QCOMPARE(series.exceptions().first().changedParameters(), alone.changedParameters());
        }
        QVERIFY(mLog->lines().isEmpty());
    }

    void theFieldsOfASeriesAreItsOwnAlsoInsideAnException()
    {
        for (const auto &field : CalendarFields::seriesFields().fields()) {
            if (!field.take)
                continue;
            const EasCalendarItem alone = read({ node(field.tag, "1") });
            const EasCalendarItem series =
                read({ node(Calendar::Exceptions, { node(Calendar::Exception, { node(field.tag, "1") }) }) });
            QVERIFY(series.exceptions().first().changedParameters().isEmpty());
            QCOMPARE(series.changedParameters().mid(0, alone.changedParameters().size()),
                alone.changedParameters());
            QCOMPARE(series.timezone(), alone.timezone());
        }
    }

    void eachExceptionStartsEmpty()
    {
        const EasCalendarItem series = read({ node(Calendar::Exceptions,
            { node(Calendar::Exception,
                  { node(Calendar::ExceptionStartTime, "t1"), node(Calendar::Subject, "one"),
                      node(Calendar::Attendees,
                          { node(Calendar::Attendee, { node(Calendar::Email, "a@example.org") }) }),
                      node(Calendar::Categories, { node(Calendar::Category, "Red") }) }),
                node(Calendar::Exception,
                    { node(Calendar::ExceptionStartTime, "t2"), node(Calendar::Attendees),
                        node(Calendar::Categories) }) }) });
        QCOMPARE(series.exceptions().size(), 2);
        QCOMPARE(series.exceptions().first().attendees().size(), 1);
        const EasCalendarItem second = series.exceptions().last();
        QVERIFY(second.subject().isEmpty());
        // Empty lists are said to be empty, and not left to the series.
        QVERIFY(second.attendees().isEmpty());
        QVERIFY(second.parameterHasBeenChanged(EasCalendarItem::AttendeesParameter));
        QVERIFY(second.categories().isEmpty());
        QVERIFY(second.parameterHasBeenChanged(EasCalendarItem::CategoriesParameter));
        QVERIFY(series.attendees().isEmpty());
        QVERIFY(!series.parameterHasBeenChanged(EasCalendarItem::AttendeesParameter));
    }

    void deletedIsZeroOrOne()
    {
        QCOMPARE(int(readException({ node(Calendar::Deleted, "2") }).exceptionDeleted()), 0);
        QVERIFY(mLog->contains(QtCriticalMsg, { "Tried to set deleted value to", "2" }));
    }

    void aLocationIsATextOrAStructure()
    {
        QCOMPARE(read({ node(Calendar::Location, "room") }).location(), QStringLiteral("room"));
        QCOMPARE(read({ node(AirSyncBase::Location, { node(AirSyncBase::DisplayName, "room") }) }).location(),
            QStringLiteral("room"));
    }

    void recurrenceNumbersOutOfRangeAreRefused()
    {
        const auto recurrence = [](Token tag, const char *value) {
            return read({ node(Calendar::Recurrence, { node(tag, value) }) }).recurrence();
        };
        QCOMPARE(recurrence(Calendar::WeekOfMonth, "6").weekOfMonth(), 0);
        QVERIFY(mLog->contains(QtCriticalMsg, { "Tried to set WeekOfMonth value to", "6" }));
        QCOMPARE(recurrence(Calendar::DayOfWeek, "127").dayOfWeek(), 127);
        QCOMPARE(recurrence(Calendar::DayOfWeek, "128").dayOfWeek(), 0);
    }

    void aProposedTimeIsOfTheEventAndOfTheAttendee()
    {
        const EasCalendarItem item = read({ node(Calendar::Attendees,
            { node(
                Calendar::Attendee, { node(MeetingResponse::ProposedStartTime, "20240501T100000Z") }) }) });
        QCOMPARE(item.proposedStartTime(), QStringLiteral("20240501T100000Z"));
        QCOMPARE(item.attendees().first().proposedStartTime().toUTC(),
            QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC));
    }

    void badNumbersAreLoggedAndLeaveTheField()
    {
        const EasCalendarItem item = read({ node(Calendar::BusyStatus, "very"),
            node(Calendar::ResponseRequested, "please"), node(Calendar::Subject, "s") });
        QCOMPARE(int(item.busyStatus()), -1);
        QVERIFY(!item.parameterHasBeenChanged(EasCalendarItem::BusyStatusParameter));
        QCOMPARE(item.responseRequested(), EasItemsCommon::TUndefined);
        QCOMPARE(item.subject(), QStringLiteral("s"));
        QVERIFY(mLog->contains(QtWarningMsg, { "Cannot convert to uint: ", "very" }));
        QVERIFY(mLog->contains(QtWarningMsg, { "Cannot convert to bool: ", "please" }));
    }

    void whatIsUnknownIsLogged()
    {
        read({ node(Email::Subject, "s") });
        QVERIFY(
            mLog->contains(QtWarningMsg, { "unhandled field:", "s", ", codePage", "2", ", token", "20" }));
    }

    void resetForgetsTheEvent()
    {
        CalendarAppDataParser parser;
        feed(parser, node(Calendar::Subject, "s"));
        parser.onStartElement(Calendar::Exceptions.page, Calendar::Exceptions.token);
        parser.reset();
        feed(parser, node(Calendar::StartTime, "start"));
        QVERIFY(parser.calendarItem().subject().isEmpty());
        QCOMPARE(parser.calendarItem().startTime(), QStringLiteral("start"));
    }

private:
    QScopedPointer<LogCollector> mLog;
};

FENNEL_REGISTER_TEST(CalendarAppDataParserTest)
#include "calendarappdataparsertest.moc"
