// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/moveitemsresulthandler.h"

#include "protocol/moveitemscommand.h"
#include "requests/uploadresultscene.h"
#include "support/logcollector.h"
#include "support/stubmailstorage.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

using namespace UploadResultScene;
using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

/** A mail store that notes what the mapping said when it was told of a move. */
class MoveStorage : public StubMailStorage
{
public:
    bool updateMovedEmails(const QList<EasEmailItem> &items) override
    {
        for (const EasEmailItem &item : items)
            moved.append(item.previousServerId() + QLatin1Char('>') + item.serverId());
        mapped = EasDatabase::instance()->serverToLocalEmailIds(Account)->keys();
        return accepts;
    }

    Lookup<QList<EasEmailItem>> movedEmails() override { return waiting; }
    bool deleteEmailsByLocalIds(const QList<quint64> &ids) override
    {
        removed += ids;
        return accepts;
    }

    bool accepts = true;
    QList<EasEmailItem> waiting;
    QList<quint64> removed;
    QStringList moved;
    QStringList mapped;
};

/** A MoveItems that has its reply. */
class AnsweredMove : public MoveItemsCommand
{
public:
    AnsweredMove()
        : MoveItemsCommand(Account)
    {
    }

    bool answer(const QVector<WbxmlNode> &responses)
    {
        return parseReply(nullptr, document(node(Move::MoveItems, responses)));
    }
};

WbxmlNode response(const char *source, const char *status, const char *destination = nullptr)
{
    QVector<WbxmlNode> fields { node(Move::SrcMsgId, source), node(Move::Status, status) };
    if (destination)
        fields.append(node(Move::DstMsgId, destination));
    return node(Move::Response, fields);
}

EasEmailItem mail(const char *serverId, const char *localId, const char *destination = "6")
{
    EasEmailItem item = UploadResultScene::item<EasEmailItem>(localId, serverId);
    item.setCollectionId(QStringLiteral("5"));
    item.setSourceFolderId(QStringLiteral("5"));
    item.setDestinationFolderId(QString::fromLatin1(destination));
    return item;
}

} // namespace

/** What the answers to a MoveItems do to mapping, store and the rest of the sync. */
class MoveItemsResultHandlerTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DatabaseFixture> mDatabase;
    std::unique_ptr<FakeAccount> mAccount;
    QSharedPointer<MoveStorage> mStorage;
    SyncState mState;
    bool mFolderSyncNeeded = false;
    bool mRetryMove = false;

    bool handle(const QVector<WbxmlNode> &responses, const char *destination = "6")
    {
        AnsweredMove command;
        for (const MoveContainer &move :
            MoveItemsResultHandler::moves({ mail("5:1", "1", destination), mail("5:2", "2", destination) }))
            command.appendMoveItem(move);
        if (!command.answer(responses))
            return false;
        MoveItemsResultHandler handler(*mAccount, mState);
        const bool handled = handler.handle(command);
        mFolderSyncNeeded = handler.folderSyncNeeded();
        mRetryMove = handler.retryMove();
        return handled;
    }
    static QStringList mapped() { return EasDatabase::instance()->serverToLocalEmailIds(Account)->keys(); }

private Q_SLOTS:
    void init()
    {
        mDatabase = std::make_unique<DatabaseFixture>(DatabaseFixture::Opened);
        mAccount = std::make_unique<FakeAccount>(Account);
        mStorage = QSharedPointer<MoveStorage>::create();
        mAccount->mails = mStorage;
        mState = SyncState();
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { mail("5:1", "1"), mail("5:2", "2") }));
    }

    void cleanup()
    {
        mAccount.reset();
        mDatabase.reset();
    }

    void aMessageIsMovedInTheMappingBeforeTheStore()
    {
        QVERIFY(handle({ response("5:1", "3", "6:1"), response("5:2", "3", "6:2") }));
        const QStringList renamed { QStringLiteral("6:1"), QStringLiteral("6:2") };
        QCOMPARE(mStorage->moved, QStringList({ QStringLiteral("5:1>6:1"), QStringLiteral("5:2>6:2") }));
        QCOMPARE(mStorage->mapped, renamed);
        QCOMPARE(mapped(), renamed);
        QCOMPARE(mState.movedServerIds, QStringList({ QStringLiteral("5:1"), QStringLiteral("5:2") }));
    }

    void aMappingThatRefusesLeavesTheStoreAlone()
    {
        mDatabase->refuse("UPDATE", "emails");
        const LogCollector log;
        QVERIFY(!handle({ response("5:1", "3", "6:1") }));
        QVERIFY(log.contains(QStringLiteral("items are not updated in Eas DB")));
        QCOMPARE(mStorage->moved, QStringList());
        QCOMPARE(mState.movedServerIds, QStringList());
    }

    void aStoreThatRefusesFailsTheMove()
    {
        mStorage->accepts = false;
        const LogCollector log;
        QVERIFY(!handle({ response("5:1", "3", "6:1") }));
        QVERIFY(log.contains(QStringLiteral("items are not updated in MailStorage")));
        QCOMPARE(mapped(), QStringList({ QStringLiteral("5:2"), QStringLiteral("6:1") }));
    }

    void oneMessageIsLockedAndTheOtherIsMoved()
    {
        QVERIFY(handle({ response("5:1", "7"), response("5:2", "3", "6:2") }));
        QVERIFY(mRetryMove);
        QVERIFY(!mFolderSyncNeeded);
        QCOMPARE(mapped(), QStringList({ QStringLiteral("5:1"), QStringLiteral("6:2") }));
    }

    void anUnknownSourceIsSynchronisedAgainFirst()
    {
        QVERIFY(handle({ response("5:1", "1"), response("5:2", "1") }));
        QVERIFY(mFolderSyncNeeded);
        QCOMPARE(mState.collectionsToRetry, QStringList(QStringLiteral("5")));
    }

    void aMessageThatNeitherSideKnowsIsRemoved()
    {
        // Its folder has begun anew since the user moved it, and the server has it somewhere else.
        QVERIFY(EasDatabase::instance()->deleteEmailItems(Account, { QStringLiteral("5:2") }));
        mStorage->waiting = { mail("5:1", "1"), mail("5:2", "2") };
        QVERIFY(handle({ response("5:1", "1"), response("5:2", "1") }));
        QCOMPARE(mStorage->removed, QList<quint64>({ 2 }));
        mStorage->accepts = false;
        QVERIFY(!handle({ response("5:2", "1") }));
    }

    void anUnknownDestinationBringsTheFolders()
    {
        QVERIFY(handle({ response("5:1", "2") }));
        QVERIFY(mFolderSyncNeeded);
        QCOMPARE(mState.collectionsToRetry, QStringList());
    }

    void theSameFolderTwiceIsAMoveToTheOldName()
    {
        QVERIFY(handle({ response("5:1", "4") }, "5"));
        QCOMPARE(mStorage->moved, QStringList(QStringLiteral("5:1>5:1")));
    }

    void anAnswerThatNamesNoMessageMovesNone()
    {
        const LogCollector log;
        QVERIFY(handle({ response("5:1", "3"), response("5:9", "3", "6:9") }));
        QVERIFY(log.contains(QStringLiteral("the server has not named the moved message")));
        // The second message has no answer at all.
        QVERIFY(log.contains(QStringLiteral("unknown source message id")));
        QCOMPARE(mStorage->moved, QStringList());
    }

    void aMessageThatWasMovedTwiceGoesUpOnce()
    {
        const QList<MoveContainer> moves =
            MoveItemsResultHandler::moves({ mail("5:1", "1"), mail("5:1", "1"), mail("5:2", "2") });
        QCOMPARE(moves.size(), 2);
        QCOMPARE(moves.first().sourceMessageId(), QStringLiteral("5:1"));
        QCOMPARE(moves.last().sourceMessageId(), QStringLiteral("5:2"));
    }
};

FENNEL_REGISTER_TEST(MoveItemsResultHandlerTest)
#include "moveitemsresulthandlertest.moc"
