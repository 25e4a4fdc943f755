// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/synccommand.h"
#include "protocol/elements/synccommanddelete.h"
#include "protocol/foldersynccommand.h"
#include "protocol/moveitemscommand.h"
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

/** A command whose body can be built and whose reply can be read without an exchange. */
template <class Command> class Opened : public Command
{
public:
    Opened()
        : Command(Account)
    {
    }

    bool body(QString *outline, ExchangeActiveSync::ProtocolVersion version)
    {
        FakeAccount account(Account);
        account.setProtocolVersion(version);
        QByteArray bytes;
        const bool encoded = Command::encodeBody(account, &bytes);
        *outline = WbxmlDocument::outline(bytes);
        return encoded;
    }

    bool read(const QByteArray &reply) { return Command::parseReply(nullptr, reply); }
    QString name() const { return Command::commandName(); }
};

SyncCollection collection(const char *id)
{
    SyncCollection collection;
    collection.setId(QString::fromUtf8(id));
    collection.setSyncKey(QStringLiteral("7"));
    collection.setGetChanges(true);
    return collection;
}

} // namespace

/** The commands of a synchronisation: what they send and what they keep of a reply. */
class SyncCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSyncWithoutGlobalSettingsEndsWithItsCollections()
    {
        Opened<SyncCommand> command;
        command.addCollection(collection("5"));
        command.addCollections({ collection("6") });
        QString body;
        QVERIFY(command.body(&body, ExchangeActiveSync::ProtocolVersion141));
        QCOMPARE(body,
            QStringLiteral("Sync(Collections(Collection(SyncKey=7,CollectionId=5,GetChanges=1),"
                           "Collection(SyncKey=7,CollectionId=6,GetChanges=1)))"));
        QCOMPARE(command.name(), QStringLiteral("Sync"));
    }

    void globalSettingsFollowTheCollections()
    {
        Opened<SyncCommand> command;
        command.setWait(5);
        command.setHeartbeatInterval(60);
        command.setWindowSize(100);
        command.setPartial(true);
        QString body;
        QVERIFY(command.body(&body, ExchangeActiveSync::ProtocolVersion141));
        QCOMPARE(body, QStringLiteral("Sync(Wait=5,HeartbeatInterval=60,WindowSize=100,Partial)"));
        command.addCollection(collection("5"));
        QVERIFY(command.body(&body, ExchangeActiveSync::ProtocolVersion141));
        QVERIFY(body.endsWith(
            QLatin1String("GetChanges=1)),Wait=5,HeartbeatInterval=60,WindowSize=100,Partial)")));
        command.clearCollections();
        QVERIFY(command.collections().isEmpty());
    }

    void aReplyIsJoinedWithWhatWasSent()
    {
        Opened<SyncCommand> command;
        SyncCollection sent = collection("5");
        sent.appendCommand(new SyncCommandDelete);
        sent.setQueryTime(1234);
        command.addCollections({ sent, collection("6") });
        const auto answered = [](const char *id) {
            return node(AirSync::Collection,
                { node(AirSync::SyncKey, "8"), node(AirSync::CollectionId, id), node(AirSync::Status, "1") });
        };
        QVERIFY(command.read(document(node(AirSync::Sync,
            { node(AirSync::Status, "1"), node(AirSync::Collections, { answered("5"), answered("9") }) }))));
        QCOMPARE(command.status(), 1);
        const QList<SyncCollection> results = command.responseCollections();
        QCOMPARE(results.size(), 2);
        QCOMPARE(results.first().commands(), sent.commands());
        QCOMPARE(results.first().queryTime(), qint64(1234));
        QCOMPARE(results.first().syncKey(), QStringLiteral("8"));
        QVERIFY(results.last().commands().isEmpty());
        QCOMPARE(results.last().queryTime(), qint64(0));
    }

    void aReplyWithMoreCollectionsThanWereAskedForIsRefused()
    {
        Opened<SyncCommand> command;
        command.addCollections({ collection("5") });
        const WbxmlNode answered = node(AirSync::Collection,
            { node(AirSync::SyncKey, "8"), node(AirSync::CollectionId, "5"), node(AirSync::Status, "1") });
        QVERIFY(command.read(document(node(AirSync::Sync, { node(AirSync::Collections, { answered }) }))));
        QVERIFY(!command.read(
            document(node(AirSync::Sync, { node(AirSync::Collections, { answered, answered }) }))));
        QVERIFY(command.responseCollections().isEmpty());
    }

    void anEmptyReplyIsASuccessWithoutCollections()
    {
        Opened<SyncCommand> command;
        QVERIFY(command.read(document(node(AirSync::Sync, { node(AirSync::Status, "12") }))));
        QCOMPARE(command.status(), 12);
        QVERIFY(command.read({}));
        QCOMPARE(command.status(), 0);
        QVERIFY(command.responseCollections().isEmpty());
    }

    void aReplyThatCannotBeReadIsAFailure()
    {
        const LogCollector log;
        Opened<SyncCommand> sync;
        QVERIFY(!sync.read("<html>"));
        QVERIFY(log.contains(QStringLiteral("Failed to parse sync command response!")));
        Opened<FolderSyncCommand> folderSync;
        QVERIFY(!folderSync.read("<html>"));
        QVERIFY(log.contains(QStringLiteral("Failed to parse folder sync command response!")));
        Opened<MoveItemsCommand> moveItems;
        QVERIFY(!moveItems.read({}));
        QVERIFY(log.contains(QStringLiteral("Failed to parse move items command response")));
    }

    void aFolderSyncSendsItsKeyAlone()
    {
        Opened<FolderSyncCommand> command;
        command.setSyncKey(QStringLiteral("0"));
        for (const auto version :
            { ExchangeActiveSync::ProtocolVersion120, ExchangeActiveSync::ProtocolVersion161 }) {
            QString body;
            QVERIFY(command.body(&body, version));
            QCOMPARE(body, QStringLiteral("FolderSync(SyncKey=0)"));
        }
        QCOMPARE(command.name(), QStringLiteral("FolderSync"));
    }

    void aFolderSyncWithoutAKeyIsNotSent()
    {
        const LogCollector log;
        Opened<FolderSyncCommand> command;
        QString body;
        QVERIFY(!command.body(&body, ExchangeActiveSync::ProtocolVersion141));
        QVERIFY(log.contains(QStringLiteral("No sync key")));
    }

    void aFolderSyncTakesItsResultsOver()
    {
        Opened<FolderSyncCommand> command;
        command.setSyncKey(QStringLiteral("0"));
        const auto folder = [](const char *id) {
            return QVector<WbxmlNode> { node(FolderHierarchy::ServerId, id) };
        };
        QVERIFY(command.read(document(node(FolderHierarchy::FolderSync,
            { node(FolderHierarchy::Status, "1"), node(FolderHierarchy::SyncKey, "k1"),
                node(FolderHierarchy::Changes,
                    { node(FolderHierarchy::Add, folder("1")), node(FolderHierarchy::Update, folder("2")),
                        node(FolderHierarchy::Delete, folder("3")) }) }))));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.syncKey(), QStringLiteral("k1"));
        QCOMPARE(command.addedItems().size(), 1);
        QCOMPARE(command.updatedItems().size(), 1);
        QCOMPARE(command.deletedItems(), QStringList { "3" });
    }

    void aFolderSyncKeepsItsKeyIfTheReplyHasNone()
    {
        Opened<FolderSyncCommand> command;
        command.setSyncKey(QStringLiteral("k1"));
        QVERIFY(command.read({}));
        QCOMPARE(command.syncKey(), QStringLiteral("k1"));
        QCOMPARE(command.status(), 0);
        QVERIFY(command.read(
            document(node(FolderHierarchy::FolderSync, { node(FolderHierarchy::Status, "9") }))));
        QCOMPARE(command.syncKey(), QStringLiteral("k1"));
        QCOMPARE(command.status(), 9);
    }

    void movesGoUpInTheirOrder()
    {
        Opened<MoveItemsCommand> command;
        command.appendMoveItem(
            MoveContainer(QStringLiteral("5:1"), QStringLiteral("5"), QStringLiteral("6")));
        command.appendMoveItem(
            MoveContainer(QStringLiteral("5:2"), QStringLiteral("5"), QStringLiteral("7")));
        QString body;
        QVERIFY(command.body(&body, ExchangeActiveSync::ProtocolVersion141));
        QCOMPARE(body,
            QStringLiteral("MoveItems(Move(SrcMsgId=5:1,SrcFldId=5,DstFldId=6),"
                           "Move(SrcMsgId=5:2,SrcFldId=5,DstFldId=7))"));
        QCOMPARE(command.name(), QStringLiteral("MoveItems"));
    }

    void movingNothingIsNotSent()
    {
        const LogCollector log;
        Opened<MoveItemsCommand> command;
        command.appendMoveItem(MoveContainer());
        command.clearMoveItems();
        QString body;
        QVERIFY(!command.body(&body, ExchangeActiveSync::ProtocolVersion141));
        QVERIFY(log.contains(QStringLiteral("MoveItems is empty, cannot begin")));
    }

    void theAnswersToMovesAreTakenOver()
    {
        Opened<MoveItemsCommand> command;
        QVERIFY(command.read(document(node(Move::MoveItems,
            { node(Move::Response, { node(Move::SrcMsgId, "5:1"), node(Move::Status, "3") }) }))));
        QCOMPARE(command.status(), 3);
        QCOMPARE(command.moveItemsResponses().size(), 1);
        const LogCollector log;
        QVERIFY(!command.read({}));
        QVERIFY(command.moveItemsResponses().isEmpty());
    }
};

FENNEL_REGISTER_TEST(SyncCommandTest)
#include "synccommandtest.moc"
