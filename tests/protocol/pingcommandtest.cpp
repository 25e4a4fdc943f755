// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/pingcommand.h"

#include "common/easrequeststatus.h"
#include "easitems/algorithms/pingresponseparser.h"
#include "protocol/base/eas.h"
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

class OpenedPing : public PingCommand
{
public:
    OpenedPing()
        : PingCommand(Account)
    {
    }

    using PingCommand::commandName;
    using PingCommand::longestWait;
    using PingCommand::texts;

    QString body()
    {
        FakeAccount account(Account);
        QByteArray bytes;
        return PingCommand::encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes) : QString();
    }

    bool read(const QByteArray &reply) { return PingCommand::parseReply(nullptr, reply); }
};

QByteArray reply(const QVector<WbxmlNode> &fields)
{
    return document(node(Ping::Ping, fields));
}

} // namespace

/** A Ping on the wire. */
class PingCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theServerIsToldWhatToWatch()
    {
        OpenedPing command;
        command.setHeartbeatInterval(300);
        command.setFolders({ PingFolderItem(QStringLiteral("5"), PingFolderItem::Email),
            PingFolderItem(QStringLiteral("8:1"), PingFolderItem::Calendar),
            PingFolderItem(QStringLiteral("9"), PingFolderItem::Contacts),
            PingFolderItem(QStringLiteral("7"), PingFolderItem::Tasks) });
        QCOMPARE(command.body(),
            QStringLiteral("Ping(HeartbeatInterval=300,Folders(Folder(Id=5,Class=Email),"
                           "Folder(Id=8:1,Class=Calendar),Folder(Id=9,Class=Contacts),"
                           "Folder(Id=7,Class=Tasks)))"));
        QCOMPARE(command.commandName(), QStringLiteral("Ping"));
        QCOMPARE(command.texts().sending, "Sending ping command via POST:");
    }

    void aClassCanBeNamed()
    {
        PingFolderItem folder;
        folder.setId(QStringLiteral("3"));
        folder.setClass(QStringLiteral("Notes"));
        OpenedPing command;
        command.setHeartbeatInterval(60);
        command.setFolders({ folder });
        QCOMPARE(
            command.body(), QStringLiteral("Ping(HeartbeatInterval=60,Folders(Folder(Id=3,Class=Notes)))"));
    }

    void withoutFoldersTheServerGoesByThoseItKnows()
    {
        LogCollector log;
        OpenedPing command;
        command.setHeartbeatInterval(300);
        QCOMPARE(command.body(), QStringLiteral("Ping(HeartbeatInterval=300)"));
        QVERIFY(log.texts(QtWarningMsg).contains(QStringLiteral("mFolders is empty !")));
    }

    void aHeartbeatOfNothingIsLeftOut_data()
    {
        QTest::addColumn<int>("heartbeat");
        QTest::newRow("0") << 0;
        QTest::newRow("below 0") << -1;
    }

    void aHeartbeatOfNothingIsLeftOut()
    {
        QFETCH(int, heartbeat);
        OpenedPing command;
        command.setHeartbeatInterval(heartbeat);
        command.setFolders({ PingFolderItem(QStringLiteral("5"), PingFolderItem::Email) });
        QCOMPARE(command.body(), QStringLiteral("Ping(Folders(Folder(Id=5,Class=Email)))"));
    }

    void theServerIsGivenUpAMinuteAfterTheHeartbeat()
    {
        OpenedPing command;
        command.setHeartbeatInterval(300);
        QCOMPARE(command.longestWait(), 360000);
        // The server chooses, up to the longest there is.
        command.setHeartbeatInterval(0);
        QCOMPARE(command.longestWait(), 3600000);
    }

    void theFoldersThatChangedAreRead()
    {
        OpenedPing command;
        command.setHeartbeatInterval(300);
        QVERIFY(command.read(reply({ node(Ping::Status, "2"),
            node(Ping::Folders, { node(Ping::Folder, "5"), node(Ping::Folder, "8:1") }) })));
        QCOMPARE(command.status(), int(Eas::ChangesOccurred));
        QCOMPARE(command.responseFolders(), QStringList({ QStringLiteral("5"), QStringLiteral("8:1") }));
        // Of the last answer, even where it says nothing.
        QCOMPARE(command.heartbeatInterval(), 0);
        QCOMPARE(command.maxFolders(), 0);
    }

    void theLimitsOfTheServerAreRead()
    {
        OpenedPing command;
        QVERIFY(command.read(reply({ node(Ping::Status, "5"), node(Ping::HeartbeatInterval, "480") })));
        QCOMPARE(command.status(), int(Eas::HeartbeatIntervalIsOutsideOfRange));
        QCOMPARE(command.heartbeatInterval(), 480);
        QVERIFY(command.read(reply({ node(Ping::Status, "6"), node(Ping::MaxFolders, "20") })));
        QCOMPARE(command.status(), int(Eas::TooManyNumberOfFoldersToMonitor));
        QCOMPARE(command.maxFolders(), 20);
        QCOMPARE(command.heartbeatInterval(), 0);
    }

    void anEmptyReplyIsNoAnswer()
    {
        OpenedPing command;
        QVERIFY(!command.read(QByteArray()));
    }

    void aReplyOfSomethingElseIsNoAnswer()
    {
        OpenedPing command;
        QVERIFY(!command.read(document(node(AirSync::Sync, { node(AirSync::Status, "4") }))));
    }

    void textsThatAreNoNumbersAreLogged()
    {
        LogCollector log;
        PingResponseParser parser;
        parser.parse(reply({ node(Ping::Status, "2"), node(Ping::HeartbeatInterval, "soon"),
            node(Ping::MaxFolders, "many") }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.heartbeatInterval(), 0);
        QCOMPARE(parser.maxFolders(), 0);
        QVERIFY(log.contains(QStringLiteral("Cannot convert to int:  \"soon\"")));
        QVERIFY(log.contains(QStringLiteral("Cannot convert to int:  \"many\"")));
    }

    void aStatusThatIsNoNumberIsAnInternalError()
    {
        LogCollector log;
        PingResponseParser parser;
        parser.parse(reply({ node(Ping::Status, "good") }));
        QCOMPARE(int(parser.status()), int(EasRequestStatus::RequestStatusInternalError));
        QVERIFY(log.contains(QStringLiteral("Cannot convert to int:")));
    }

    void foreignElementsAreLogged()
    {
        LogCollector log;
        PingResponseParser parser;
        parser.parse(reply({ node(Ping::Status, "1"), node(AirSync::Class, "Email") }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), Eas::HeartbeatIntervalExpiredBeforeAnyChangesOccurred);
        QVERIFY(log.contains(QStringLiteral("Unexpected content:  \"Email\" , codePage:  0 , token:  16")));
    }

    void aParserIsUsedAgain()
    {
        PingResponseParser parser;
        QCOMPARE(parser.state(), PingResponseParser::BeforePing);
        parser.parse(reply({ node(Ping::Status, "2"), node(Ping::Folders, { node(Ping::Folder, "5") }) }));
        QCOMPARE(parser.state(), PingResponseParser::AfterPing);
        parser.parse(reply({ node(Ping::Status, "1") }));
        QCOMPARE(parser.folders(), QStringList());
        parser.reset();
        QCOMPARE(parser.state(), PingResponseParser::BeforePing);
        QCOMPARE(parser.status(), Eas::PingStatusUndefined);
    }
};

FENNEL_REGISTER_TEST(PingCommandTest)
#include "pingcommandtest.moc"
