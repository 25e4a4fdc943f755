// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/meetingresponseparser.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

QByteArray reply(const QVector<WbxmlNode> &fields)
{
    return document(node(MeetingResponse::MeetingResponse, fields));
}

} // namespace

class MeetingResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachAnswerHasItsResult()
    {
        MeetingResponseParser parser;
        parser.parse(
            reply({ node(MeetingResponse::Result,
                        { node(MeetingResponse::RequestId, "5:1"), node(MeetingResponse::Status, "1"),
                            node(MeetingResponse::CalendarId, "8:7") }),
                node(MeetingResponse::Result,
                    { node(Search::LongId, "long"), node(MeetingResponse::Status, "2") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0);
        QCOMPARE(parser.results().size(), 2);
        QCOMPARE(parser.results().first().requestId(), QStringLiteral("5:1"));
        QCOMPARE(parser.results().first().calendarId(), QStringLiteral("8:7"));
        QCOMPARE(parser.results().first().status(), Eas::MeetingResponseStatusSuccess);
        QCOMPARE(parser.results().last().longId(), QStringLiteral("long"));
        QCOMPARE(parser.results().last().status(), Eas::MeetingResponseStatusInvalidMeetingRequest);
        QVERIFY(parser.results().last().requestId().isEmpty());
        QVERIFY(parser.results().last().calendarId().isEmpty());
    }

    void aStatusOutsideOfTheResultsIsThatOfTheCommand()
    {
        const LogCollector log;
        MeetingResponseParser parser;
        parser.parse(reply({ node(MeetingResponse::Status, "142") }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 142);
        QVERIFY(parser.results().isEmpty());
        QVERIFY(log.texts(QtWarningMsg).isEmpty());
    }

    void aParserCanBeUsedAgain()
    {
        MeetingResponseParser parser;
        parser.parse(reply({ node(MeetingResponse::Status, "142"),
            node(MeetingResponse::Result, { node(MeetingResponse::Status, "1") }) }));
        parser.parse(reply({}));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0);
        QVERIFY(parser.results().isEmpty());
    }

    void whatStandsOutsideOfAResultIsLogged_data()
    {
        QTest::addColumn<uint>("page");
        QTest::addColumn<uint>("token");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, Token tag, const char *text) {
            QTest::newRow(name) << uint(tag.page) << uint(tag.token) << QString::fromLatin1(text);
        };
        row("long id", Search::LongId, "received long id element content in wrong state");
        row("calendar id", MeetingResponse::CalendarId,
            "received calendar id element content in wrong state");
        row("request id", MeetingResponse::RequestId, "received request id element content in wrong state");
    }

    void whatStandsOutsideOfAResultIsLogged()
    {
        QFETCH(uint, page);
        QFETCH(uint, token);
        QFETCH(QString, text);
        const LogCollector log;
        MeetingResponseParser parser;
        parser.parse(reply({ node(Token { quint8(page), quint8(token) }, "stray"),
            node(MeetingResponse::Result, { node(MeetingResponse::Status, "1") }) }));
        QVERIFY(parser.ready());
        QVERIFY(log.contains(QtWarningMsg, { text, "content:", "stray", "buffer:" }));
        QCOMPARE(parser.results().size(), 1);
        QVERIFY(parser.results().first().requestId().isEmpty());
    }

    void aStatusOfAnotherRootIsLogged()
    {
        const LogCollector log;
        MeetingResponseParser parser;
        parser.parse(document(node(AirSync::Sync, { node(MeetingResponse::Status, "1") })));
        QVERIFY(!parser.ready());
        QCOMPARE(parser.status(), 0);
        QVERIFY(log.contains(
            QtWarningMsg, { "received status element content in wrong state", "content:", "1", "buffer:" }));
    }

    void aStatusThatIsNoNumberIsAFailure()
    {
        const LogCollector log;
        MeetingResponseParser parser;
        parser.parse(reply({ node(MeetingResponse::Result, { node(MeetingResponse::Status, "accepted") }) }));
        QVERIFY(parser.ready());
        QVERIFY(parser.results().first().status() != Eas::MeetingResponseStatusSuccess);
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to int: ", "accepted" }));
    }

    void unknownElementsAreLoggedOnceAndPassedOver()
    {
        const LogCollector log;
        MeetingResponseParser parser;
        parser.parse(reply({ node(MeetingResponse::Result,
            { node(AirSync::Status, "7"), node(MeetingResponse::InstanceId, "2024-05-01T10:00:00.000Z"),
                node(MeetingResponse::Status, "1") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.results().first().status(), Eas::MeetingResponseStatusSuccess);
        QVERIFY(log.contains(QtWarningMsg, { "unexpected element content. cpage:", "0", "token:", "14" }));
        QCOMPARE(log.texts(QtWarningMsg).size(), 1);
    }

    void anEmptyReplyIsNoAnswer()
    {
        MeetingResponseParser parser;
        parser.parse({});
        QVERIFY(!parser.ready());
    }

    void aTruncatedReplyIsNotReady()
    {
        const LogCollector log;
        const QByteArray whole = reply({ node(MeetingResponse::Result,
            { node(MeetingResponse::RequestId, "5:1"), node(MeetingResponse::Status, "1") }) });
        for (int size = 0; size < whole.size(); ++size) {
            MeetingResponseParser parser;
            parser.parse(whole.left(size));
            QVERIFY2(!parser.ready(), qPrintable(QString::number(size)));
        }
    }
};

FENNEL_REGISTER_TEST(MeetingResponseParserTest)
#include "meetingresponseparsertest.moc"
