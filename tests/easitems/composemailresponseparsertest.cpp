// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/composemailresponseparser.h"

#include "common/easrequeststatus.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

/** The replies to SendMail, SmartReply and SmartForward. */
class ComposeMailResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyReplyIsASuccess()
    {
        ComposeMailResponseParser parser;
        parser.parse(QByteArray());
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0);
    }

    void aStatusIsRead_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("status");
        QTest::newRow("of SendMail") << document(
            node(ComposeMail::SendMail, { node(ComposeMail::Status, "110") }))
                                     << 110;
        QTest::newRow("of SmartReply")
            << document(node(ComposeMail::SmartReply, { node(ComposeMail::Status, "150") })) << 150;
        QTest::newRow("of SmartForward")
            << document(node(ComposeMail::SmartForward, { node(ComposeMail::Status, "144") })) << 144;
        QTest::newRow("by itself") << document(node(ComposeMail::Status, "103")) << 103;
        QTest::newRow("left out") << document(node(ComposeMail::SendMail)) << 0;
    }

    void aStatusIsRead()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, status);
        ComposeMailResponseParser parser;
        parser.parse(reply);
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), status);
    }

    void aStatusThatIsNoNumberIsAnInternalError()
    {
        LogCollector log;
        ComposeMailResponseParser parser;
        parser.parse(document(node(ComposeMail::SendMail, { node(ComposeMail::Status, "sent") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), int(EasRequestStatus::RequestStatusInternalError));
        QVERIFY(log.contains(QStringLiteral("Cannot convert status to int:  \"sent\"")));
    }

    void unknownElementsAreLogged()
    {
        LogCollector log;
        ComposeMailResponseParser parser;
        parser.parse(document(node(
            ComposeMail::SendMail, { node(ComposeMail::ClientId, "7"), node(ComposeMail::Status, "119") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 119);
        QVERIFY(log.contains(QStringLiteral("Unexpected content:  \"7\"")));
        QVERIFY(log.contains(QStringLiteral("Unexpected element, page:  21 , token:  17")));
        QVERIFY(log.contains(QStringLiteral("Unhandled end element, page:  21 , token:  17")));
    }

    void anotherDocumentIsNoAnswer()
    {
        ComposeMailResponseParser parser;
        parser.parse(document(node(AirSync::Sync, { node(AirSync::Status, "1") })));
        QVERIFY(!parser.ready());
        parser.parse(document(node(AirSync::Sync, { node(ComposeMail::Status, "1") })));
        QVERIFY(!parser.ready());
    }

    void aReplyThatIsCutIsNoAnswer()
    {
        const QByteArray whole = document(node(ComposeMail::SendMail, { node(ComposeMail::Status, "110") }));
        for (int size = 1; size < whole.size(); ++size) {
            ComposeMailResponseParser parser;
            parser.parse(whole.left(size));
            QVERIFY2(!parser.ready(), qPrintable(QString::number(size)));
        }
    }

    void aParserIsUsedAgain()
    {
        ComposeMailResponseParser parser;
        parser.parse(document(node(ComposeMail::SendMail, { node(ComposeMail::Status, "110") })));
        parser.parse(QByteArray());
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0);
    }
};

FENNEL_REGISTER_TEST(ComposeMailResponseParserTest)
#include "composemailresponseparsertest.moc"
