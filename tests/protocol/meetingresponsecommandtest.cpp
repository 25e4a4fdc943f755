// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/meetingresponsecommand.h"

#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = 1;

class OpenedMeetingResponse : public MeetingResponseCommand
{
public:
    OpenedMeetingResponse()
        : MeetingResponseCommand(Account)
    {
    }

    using MeetingResponseCommand::commandName;
    using MeetingResponseCommand::texts;

    QString body(ExchangeActiveSync::ProtocolVersion version)
    {
        FakeAccount account(Account);
        account.setProtocolVersion(version);
        QByteArray bytes;
        return encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes) : QString();
    }

    bool read(const QVector<WbxmlNode> &fields)
    {
        return parseReply(nullptr, document(node(MeetingResponse::MeetingResponse, fields)));
    }
    bool readNothing() { return parseReply(nullptr, {}); }
};

MeetingResponseRequestContainer answer(bool isResponseWanted = false)
{
    MeetingResponseRequestContainer request;
    request.setUserResponse(EasItemsCommon::UserResponseTentativelyAccepted);
    request.setCollectionId(QStringLiteral("5"));
    request.setRequestId(QStringLiteral("5:1"));
    request.setInstanceId(QStringLiteral("2024-05-01T10:00:00.000Z"));
    request.setResponseWanted(isResponseWanted);
    return request;
}

const MeetingResponseCommand::Options Everything { QStringLiteral("2024-05-02T10:00:00Z"),
    QStringLiteral("2024-05-02T11:00:00Z"), QStringLiteral("rather on\nThursday") };

} // namespace

/** A MeetingResponse on the wire. */
class MeetingResponseCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aVersionSaysWhatAnAnswerConsistsOf_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("expected");
        const QString frame = QStringLiteral("MeetingResponse(Request(UserResponse=2,%1))");
        const QString ids = QStringLiteral("CollectionId=5,RequestId=5:1");
        const QString instance = QStringLiteral("InstanceId=2024-05-01T10:00:00.000Z,");
        const QString comment = QStringLiteral("Body(Type=1,Data=rather on\nThursday)");
        QTest::newRow("12.0") << int(ExchangeActiveSync::ProtocolVersion120) << frame.arg(ids);
        QTest::newRow("12.1") << int(ExchangeActiveSync::ProtocolVersion121) << frame.arg(ids);
        QTest::newRow("14.0") << int(ExchangeActiveSync::ProtocolVersion140) << frame.arg(ids);
        QTest::newRow("14.1") << int(ExchangeActiveSync::ProtocolVersion141) << frame.arg(instance + ids);
        QTest::newRow("16.0") << int(ExchangeActiveSync::ProtocolVersion160)
                              << frame.arg(instance + ids + ",SendResponse(" + comment + ")");
        QTest::newRow("16.1")
            << int(ExchangeActiveSync::ProtocolVersion161)
            << frame.arg(instance + ids + ",SendResponse(" + comment
                   + ",ProposedStartTime=20240502T100000Z,ProposedEndTime=20240502T110000Z)");
    }

    void aVersionSaysWhatAnAnswerConsistsOf()
    {
        QFETCH(int, version);
        QFETCH(QString, expected);
        OpenedMeetingResponse command;
        command.appendRequest(answer(true));
        command.setOptions(Everything);
        QCOMPARE(command.body(ExchangeActiveSync::ProtocolVersion(version)), expected);
    }

    void aResponseGoesOutOnlyWhereItIsWanted()
    {
        OpenedMeetingResponse command;
        command.appendRequests({ answer(), answer(true) });
        const QString ids =
            QStringLiteral("UserResponse=2,InstanceId=2024-05-01T10:00:00.000Z,CollectionId=5,RequestId=5:1");
        QCOMPARE(command.body(ExchangeActiveSync::ProtocolVersion161),
            "MeetingResponse(Request(" + ids + "),Request(" + ids + ",SendResponse))");
        command.clearRequests();
        QCOMPARE(command.body(ExchangeActiveSync::ProtocolVersion161), QStringLiteral("MeetingResponse"));
    }

    void aMessageWithoutAFolderGoesByItsLongId()
    {
        MeetingResponseRequestContainer request = answer();
        request.setLongId(QStringLiteral("long"));
        OpenedMeetingResponse command;
        command.appendRequest(request);
        QCOMPARE(command.body(ExchangeActiveSync::ProtocolVersion140),
            QStringLiteral("MeetingResponse(Request(UserResponse=2,LongId=long))"));
    }

    void theWholeMeetingHasNoInstance()
    {
        MeetingResponseRequestContainer request = answer();
        request.setInstanceId({});
        OpenedMeetingResponse command;
        command.appendRequest(request);
        QCOMPARE(command.body(ExchangeActiveSync::ProtocolVersion141),
            QStringLiteral("MeetingResponse(Request(UserResponse=2,CollectionId=5,RequestId=5:1))"));
    }

    void hostileCommentsStayText()
    {
        MeetingResponseCommand::Options options;
        options.newTimeComment = QStringLiteral("a</Data>\r\nBcc: x@example.org %1 \u202e")
            + QString(4096, QLatin1Char('n')) + QLatin1Char('\n');
        OpenedMeetingResponse command;
        command.setOptions(options);
        command.appendRequest(answer(true));
        const QString body = command.body(ExchangeActiveSync::ProtocolVersion160);
        QVERIFY(body.startsWith(QStringLiteral("MeetingResponse(Request(")));
        QVERIFY(body.contains("SendResponse(Body(Type=1,Data=" + options.newTimeComment + "))"));
    }

    void theResultsAreTheServersAnswer()
    {
        OpenedMeetingResponse command;
        QVERIFY(command.read({ node(MeetingResponse::Result,
            { node(MeetingResponse::RequestId, "5:1"), node(MeetingResponse::Status, "3") }) }));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.requestResults().size(), 1);
        QCOMPARE(command.requestResults().first().status(), Eas::MeetingResponseStatusServerMailboxError);
        QCOMPARE(command.commandName(), QStringLiteral("MeetingResponse"));
        QCOMPARE(command.texts().sending, "Sending meeting response command via POST:");
        QCOMPARE(command.texts().received, "Received meeting response command reply:");
        QCOMPARE(command.texts().replyError, "Network error: ");
    }

    void aStatusOfTheCommandIsAnError()
    {
        const LogCollector log;
        OpenedMeetingResponse command;
        QVERIFY(command.read({ node(MeetingResponse::Status, "111") }));
        QCOMPARE(command.status(), 111);
        QVERIFY(command.requestResults().isEmpty());
        QVERIFY(log.contains(QtDebugMsg, { "Successfully parsed meeting response command response" }));
        QVERIFY(log.contains(QtWarningMsg, { "Meeting response command response was error!" }));
    }

    void aReplyThatSaysNothingIsNoAnswer()
    {
        const LogCollector log;
        OpenedMeetingResponse command;
        QVERIFY(!command.read({}));
        QVERIFY(!command.readNothing());
        QVERIFY(log.contains(QtCriticalMsg, { "Failed to parse meeting response command response" }));
    }

    void resultsOfAnEarlierReplyAreForgotten()
    {
        OpenedMeetingResponse command;
        QVERIFY(command.read({ node(MeetingResponse::Result, { node(MeetingResponse::Status, "1") }) }));
        QVERIFY(command.read({ node(MeetingResponse::Status, "111") }));
        QVERIFY(command.requestResults().isEmpty());
    }
};

FENNEL_REGISTER_TEST(MeetingResponseCommandTest)
#include "meetingresponsecommandtest.moc"
