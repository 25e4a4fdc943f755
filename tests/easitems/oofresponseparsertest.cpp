// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/oofresponseparser.h"

#include "common/easrequeststatus.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmlbytes.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

QByteArray reply(const QVector<WbxmlNode> &settings)
{
    return document(node(Settings::Settings,
        { node(Settings::Status, "1"),
            node(Settings::Oof, { node(Settings::Status, "1"), node(Settings::Get, settings) }) }));
}

WbxmlNode message(Token wrapper, const char *enabled, const char *text)
{
    return node(Settings::OofMessage,
        { node(wrapper), node(Settings::Enabled, enabled), node(Settings::ReplyMessage, text),
            node(Settings::BodyType, "Text") });
}

} // namespace

/** Out-of-office settings as a server sends them. */
class OofResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingIsRead()
    {
        OofResponseParser parser;
        parser.parse(
            reply({ node(Settings::OofState, "2"), node(Settings::StartTime, "2026-05-01T08:00:00.000Z"),
                node(Settings::EndTime, "2026-05-08T16:30:00.000Z"),
                message(Settings::AppliesToInternal, "1", "On leave"),
                message(Settings::AppliesToExternalKnown, "1", "Away, known"),
                message(Settings::AppliesToExternalUnknown, "0", "Away, unknown") }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 1);
        QVERIFY(parser.hasSettings());
        QCOMPARE(parser.getOofState(), 2);
        QCOMPARE(parser.getOofStartTime(), QDateTime(QDate(2026, 5, 1), QTime(8, 0), Qt::UTC));
        QCOMPARE(parser.getOofEndTime(), QDateTime(QDate(2026, 5, 8), QTime(16, 30), Qt::UTC));
        const QList<OofMessageItem> messages = parser.getOofResponseMessages();
        QCOMPARE(messages.size(), 3);
        for (int i = 0; i < messages.size(); ++i) {
            QCOMPARE(messages.at(i).messageType(), i + 1);
            QCOMPARE(messages.at(i).enabled(), i < 2);
            QCOMPARE(messages.at(i).bodyType(), QStringLiteral("Text"));
        }
        QCOMPARE(messages.at(1).replyMessage(), QStringLiteral("Away, known"));
    }

    void aMessageBeginsWithoutTheOneBefore()
    {
        OofResponseParser parser;
        parser.parse(reply({ message(Settings::AppliesToInternal, "1", "On leave"),
            node(Settings::OofMessage, { node(Settings::AppliesToExternalKnown) }) }));
        const OofMessageItem last = parser.getOofResponseMessages().value(1);
        QCOMPARE(last.messageType(), int(OofMessageItem::KnownExternalMessage));
        QVERIFY(!last.enabled());
        QCOMPARE(last.replyMessage(), QString());
        QCOMPARE(last.bodyType(), QString());
    }

    void theFirstFailureIsTheStatus_data()
    {
        QTest::addColumn<QString>("whole");
        QTest::addColumn<QString>("part");
        QTest::addColumn<int>("status");
        QTest::newRow("both succeed") << "1"
                                      << "1" << 1;
        QTest::newRow("the part fails") << "1"
                                        << "3" << 3;
        QTest::newRow("the command fails") << "2" << QString() << 2;
        QTest::newRow("both fail") << "4"
                                   << "3" << 4;
        QTest::newRow("no status at all") << QString() << QString() << 0;
        QTest::newRow("the part alone") << QString() << "5" << 5;
        QTest::newRow("no number") << "good" << QString()
                                   << int(EasRequestStatus::RequestStatusInternalError);
    }

    void theFirstFailureIsTheStatus()
    {
        QFETCH(QString, whole);
        QFETCH(QString, part);
        QVector<WbxmlNode> children;
        if (!whole.isEmpty())
            children.append(node(Settings::Status, whole));
        if (!part.isEmpty())
            children.append(node(Settings::Oof, { node(Settings::Status, part) }));
        OofResponseParser parser;
        parser.parse(document(node(Settings::Settings, children)));
        QVERIFY(parser.ready());
        QTEST(parser.status(), "status");
        QVERIFY(!parser.hasSettings());
    }

    void aReplyOfSomethingElseIsNoAnswer_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("an empty one") << QByteArray();
        QTest::newRow("another root") << document(node(Ping::Ping, { node(Ping::Status, "1") }));
        const QByteArray whole = reply({ node(Settings::OofState, "1") });
        QTest::newRow("a cut one") << whole.left(whole.size() - 3);
    }

    void aReplyOfSomethingElseIsNoAnswer()
    {
        QFETCH(QByteArray, body);
        OofResponseParser parser;
        parser.parse(body);
        QVERIFY(!parser.ready());
    }

    void whatIsNotExpectedIsLogged()
    {
        LogCollector log;
        OofResponseParser parser;
        parser.parse(reply({ node(Settings::OofState, "on"), node(AirSync::Class, "Email") }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.getOofState(), 0);
        QVERIFY(log.contains(QStringLiteral("Cannot convert to int:  \"on\"")));
        QVERIFY(log.contains(QStringLiteral("Unexpected page:  0 , token:  16 , content:  \"Email\"")));
    }

    void timesThatAreNoneAreInvalid()
    {
        OofResponseParser parser;
        parser.parse(reply({ node(Settings::OofState, "1"), node(Settings::StartTime, "soon") }));
        QVERIFY(parser.ready());
        QVERIFY(!parser.getOofStartTime().isValid());
        QVERIFY(!parser.getOofEndTime().isValid());
    }

    void messagesWithoutAnEndAreRefused()
    {
        QByteArray body = WbxmlBytes::document("0012 45 49 47"); // Settings, Oof, Get
        for (int i = 0; i < 100000; ++i)
            body += WbxmlBytes::hex("4D 0E 01");
        body += WbxmlBytes::hex("01 01 01");
        LogCollector log;
        OofResponseParser parser;
        parser.parse(body);
        QVERIFY(!parser.ready());
        QCOMPARE(parser.getOofResponseMessages().size(), 16);
        QVERIFY(log.contains(QStringLiteral("Refused a reply:")));
    }

    void aParserIsUsedAgain()
    {
        OofResponseParser parser;
        parser.parse(
            reply({ node(Settings::OofState, "2"), node(Settings::StartTime, "2026-05-01T08:00:00.000Z"),
                message(Settings::AppliesToInternal, "1", "On leave") }));
        parser.parse(document(node(Settings::Settings, { node(Settings::Status, "3") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 3);
        QVERIFY(!parser.hasSettings());
        QCOMPARE(parser.getOofState(), 0);
        QVERIFY(!parser.getOofStartTime().isValid());
        QVERIFY(parser.getOofResponseMessages().isEmpty());
    }
};

FENNEL_REGISTER_TEST(OofResponseParserTest)
#include "oofresponseparsertest.moc"
