// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/moveitemsresponseparser.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

class MoveItemsResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachMessageHasItsAnswer()
    {
        MoveItemsResponseParser parser;
        parser.parse(document(node(Move::MoveItems,
            { node(Move::Response,
                  { node(Move::SrcMsgId, "5:1"), node(Move::Status, "3"), node(Move::DstMsgId, "6:1") }),
                node(Move::Response, { node(Move::SrcMsgId, "5:2"), node(Move::Status, "7") }) })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 3);
        QCOMPARE(parser.responses().size(), 2);
        QCOMPARE(parser.responses().first().sourceMessageId(), QStringLiteral("5:1"));
        QCOMPARE(parser.responses().first().destinationMessageId(), QStringLiteral("6:1"));
        QCOMPARE(parser.responses().first().status(), 3);
        QCOMPARE(parser.responses().last().status(), 7);
        QVERIFY(parser.responses().last().destinationMessageId().isEmpty());
    }

    void aStatusOutsideOfTheAnswersIsThatOfTheCommand()
    {
        MoveItemsResponseParser parser;
        parser.parse(document(node(Move::MoveItems, { node(Move::Status, "154") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 154);
        QVERIFY(parser.responses().isEmpty());
    }

    void anEmptyReplyIsNoAnswer()
    {
        MoveItemsResponseParser parser;
        parser.parse({});
        QVERIFY(!parser.ready());
    }

    void whatIsNotExpectedIsLoggedAndIgnored()
    {
        const LogCollector log;
        MoveItemsResponseParser parser;
        parser.parse(document(node(Move::MoveItems,
            { node(Move::SrcMsgId, "stray"), node(AirSync::Status, "1"), node(Move::SrcFldId, "x"),
                node(Move::Response,
                    { node(Move::Status, "many"), node(Move::SrcMsgId, "5:1"),
                        node(Move::Response, { node(Move::SrcMsgId, "nested") }) }) })));
        QVERIFY(parser.ready());
        QVERIFY(log.contains(QtWarningMsg, { "Wrong state: " }));
        QVERIFY(log.contains(QtWarningMsg, { "Wrong code page: ", "0", ", token: ", "14", ", state: " }));
        QVERIFY(log.contains(QtWarningMsg, { "No conversion to int: ", "many" }));
        QVERIFY(log.contains(
            QtWarningMsg, { "Unexpected content: ", "x", ", codePage: ", "5", ", token: ", "8" }));
    }

    void aTruncatedReplyIsNotReady()
    {
        const LogCollector log;
        const QByteArray whole =
            document(node(Move::MoveItems, { node(Move::Response, { node(Move::SrcMsgId, "5:1") }) }));
        for (int size = 0; size < whole.size(); ++size) {
            MoveItemsResponseParser parser;
            parser.parse(whole.left(size));
            QVERIFY2(!parser.ready(), qPrintable(QString::number(size)));
        }
    }
};

FENNEL_REGISTER_TEST(MoveItemsResponseParserTest)
#include "moveitemsresponseparsertest.moc"
