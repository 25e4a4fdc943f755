// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/foldercreateresponseparser.h"
#include "easitems/algorithms/folderdeleteresponseparser.h"
#include "protocol/foldercreatecommand.h"
#include "protocol/folderdeletecommand.h"
#include "protocol/folderupdatecommand.h"
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

template <typename Command> class Opened : public Command
{
public:
    Opened()
        : Command(Account)
    {
        Command::setSyncKey(QStringLiteral("7"));
    }

    using Command::commandName;
    using Command::texts;

    /** The body in one line; empty if there is none. */
    QString body()
    {
        FakeAccount account(Account);
        QByteArray bytes;
        return Command::encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes) : QString();
    }

    bool read(const QByteArray &reply) { return Command::parseReply(nullptr, reply); }
};

} // namespace

/** What creates, removes and renames folders, on the wire. */
class FolderCommandsTest : public QObject
{
    Q_OBJECT

private:
    static void refusesWith(const QString &body, const LogCollector &log, const char *text)
    {
        QCOMPARE(body, QString());
        QVERIFY2(log.texts(QtWarningMsg).contains(QString::fromLatin1(text)), text);
    }

private Q_SLOTS:
    void aFolderBelowTheRootIsCreated_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("for mail") << 12;
        QTest::newRow("for events") << 13;
        QTest::newRow("for contacts") << 14;
    }

    void aFolderBelowTheRootIsCreated()
    {
        QFETCH(int, type);
        Opened<FolderCreateCommand> command;
        command.setParentId(QStringLiteral("0"));
        command.setDisplayName(QStringLiteral("Pläne & more"));
        command.setType(EasFolderItem::FolderType(type));
        QCOMPARE(command.body(),
            QStringLiteral("FolderCreate(SyncKey=7,ParentId=0,DisplayName=Pläne & more,Type=%1)").arg(type));
        QCOMPARE(command.commandName(), QStringLiteral("FolderCreate"));
        QCOMPARE(command.texts().sending, "Sending folder create command via POST:");
        QCOMPARE(command.texts().received, "Received folder create command reply:");
    }

    void otherFoldersAreNotCreated_data()
    {
        QTest::addColumn<int>("type");
        for (const int type : { 1, 2, 8, 9, 11, 15, 18 })
            QTest::newRow(qPrintable(QStringLiteral("type %1").arg(type))) << type;
    }

    void otherFoldersAreNotCreated()
    {
        QFETCH(int, type);
        LogCollector log;
        Opened<FolderCreateCommand> command;
        command.setParentId(QStringLiteral("0"));
        command.setType(EasFolderItem::FolderType(type));
        refusesWith(command.body(), log,
            "Only creation of UserCreatedMail, UserCreatedCalendar or UserCreatedContacts folders is "
            "supported");
    }

    void aFolderIsNotCreatedWithoutAParentOrAKey()
    {
        LogCollector log;
        Opened<FolderCreateCommand> command;
        command.setType(EasFolderItem::UserCreatedMailFolder);
        refusesWith(command.body(), log, "Invalid parent folder id");
        command.setParentId(QStringLiteral("0"));
        command.setSyncKey(QString());
        refusesWith(command.body(), log, "No sync key");
    }

    void aFolderIsDeleted()
    {
        Opened<FolderDeleteCommand> command;
        command.setServerId(QStringLiteral("5:3"));
        QCOMPARE(command.body(), QStringLiteral("FolderDelete(SyncKey=7,ServerId=5:3)"));
        QCOMPARE(command.commandName(), QStringLiteral("FolderDelete"));
        QCOMPARE(command.texts().sending, "Sending folder delete command via POST:");
        QCOMPARE(command.texts().received, "Received folder delete command reply:");
    }

    void aFolderIsNotDeletedWithoutAnIdentifierOrAKey()
    {
        LogCollector log;
        Opened<FolderDeleteCommand> command;
        refusesWith(command.body(), log, "Invalid folder id");
        command.setServerId(QStringLiteral("5"));
        command.setSyncKey(QString());
        refusesWith(command.body(), log, "No sync key");
    }

    void aFolderIsRenamed()
    {
        Opened<FolderUpdateCommand> command;
        command.setServerId(QStringLiteral("5"));
        command.setParentId(QStringLiteral("4"));
        command.setDisplayName(QStringLiteral("New"));
        QCOMPARE(
            command.body(), QStringLiteral("FolderUpdate(SyncKey=7,ServerId=5,ParentId=4,DisplayName=New)"));
        QCOMPARE(command.commandName(), QStringLiteral("FolderUpdate"));
        QCOMPARE(command.texts().sending, "Sending folder update command via POST:");
        QCOMPARE(command.texts().received, "Received folder update command reply:");
    }

    void aFolderIsNotRenamedWithoutIdentifiersOrAKey()
    {
        LogCollector log;
        Opened<FolderUpdateCommand> command;
        command.setDisplayName(QStringLiteral("New"));
        refusesWith(command.body(), log, "Invalid folder id");
        command.setServerId(QStringLiteral("5"));
        refusesWith(command.body(), log, "Invalid parent folder id");
        command.setParentId(QStringLiteral("0"));
        command.setSyncKey(QString());
        refusesWith(command.body(), log, "No sync key");
    }

    void aReplyGivesStatusKeyAndIdentifier()
    {
        LogCollector log;
        Opened<FolderCreateCommand> command;
        QVERIFY(command.read(document(node(FolderHierarchy::FolderCreate,
            { node(FolderHierarchy::Status, "1"), node(FolderHierarchy::SyncKey, "8"),
                node(FolderHierarchy::ServerId, "12") }))));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.syncKey(), QStringLiteral("8"));
        QCOMPARE(command.serverId(), QStringLiteral("12"));
        QVERIFY(log.contains(QStringLiteral("Successfully parsed folder create command response!")));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Status:"), QStringLiteral("1"), QStringLiteral("SyncKey:"),
                QStringLiteral("8") }));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("ServerId:"), QStringLiteral("12") }));
    }

    void aRefusalKeepsTheKeyThatWasSent()
    {
        LogCollector log;
        Opened<FolderUpdateCommand> command;
        QVERIFY(command.read(
            document(node(FolderHierarchy::FolderUpdate, { node(FolderHierarchy::Status, "2") }))));
        QCOMPARE(command.status(), 2);
        QCOMPARE(command.syncKey(), QStringLiteral("7"));
        QVERIFY(log.contains(QStringLiteral("Successfully parsed folder update command response!")));
    }

    void anEmptyReplySaysNothing()
    {
        Opened<FolderDeleteCommand> command;
        QVERIFY(command.read(QByteArray()));
        QCOMPARE(command.status(), 0);
        QCOMPARE(command.syncKey(), QStringLiteral("7"));
    }

    void aReplyOfAnotherCommandIsNotRead()
    {
        LogCollector log;
        const QByteArray foreign =
            document(node(FolderHierarchy::FolderSync, { node(FolderHierarchy::Status, "1") }));
        QVERIFY(!Opened<FolderCreateCommand>().read(foreign));
        QVERIFY(!Opened<FolderDeleteCommand>().read(foreign));
        QVERIFY(!Opened<FolderUpdateCommand>().read(foreign));
        for (const char *name : { "create", "delete", "update" })
            QVERIFY(log.contains(
                QStringLiteral("Failed to parse folder %1 command response!").arg(QLatin1String(name))));
    }

    void whatIsNoDocumentIsNotRead()
    {
        LogCollector log;
        QVERIFY(!Opened<FolderDeleteCommand>().read("<html>"));
        QVERIFY(log.contains(QStringLiteral("Failed to parse folder delete command response!")));
    }

    void aParserThatIsUsedAgainForgets()
    {
        FolderCreateResponseParser parser;
        parser.parse(document(node(FolderHierarchy::FolderCreate,
            { node(FolderHierarchy::Status, "1"), node(FolderHierarchy::SyncKey, "8"),
                node(FolderHierarchy::ServerId, "12") })));
        QVERIFY(parser.ready());
        parser.parse(document(node(FolderHierarchy::FolderCreate, { node(FolderHierarchy::Status, "3") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 3);
        QCOMPARE(parser.syncKey(), QString());
        QCOMPARE(parser.serverId(), QString());
    }

    void oddContentIsLoggedAndPassedOver()
    {
        LogCollector log;
        FolderDeleteResponseParser parser;
        parser.parse(document(node(FolderHierarchy::FolderDelete,
            { node(FolderHierarchy::Status, "one"), node(AirSync::Status, "4"),
                node(FolderHierarchy::SyncKey, "8") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), -2);
        QCOMPARE(parser.syncKey(), QStringLiteral("8"));
        QVERIFY(log.contains(QStringLiteral("Cannot convert to int: ")));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Unexpected content: "), QStringLiteral(", codePage: "),
                QStringLiteral(", token: ") }));
    }
};

FENNEL_REGISTER_TEST(FolderCommandsTest)
#include "foldercommandstest.moc"
