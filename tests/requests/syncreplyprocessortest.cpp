// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncreplyprocessor.h"
#include "protocol/synccommand.h"
#include "requests/uploadresultscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

using namespace UploadResultScene;
using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

/** A Sync that has its reply. */
class AnsweredSync : public SyncCommand
{
public:
    AnsweredSync()
        : SyncCommand(Account)
    {
    }

    bool answer(const QVector<WbxmlNode> &collections)
    {
        // One that was asked for is as good as another: only their number counts.
        QList<SyncCollection> sent;
        for (int i = 0; i < collections.size(); ++i)
            sent.append(SyncCollection());
        addCollections(sent);
        return parseReply(
            nullptr, document(node(AirSync::Sync, { node(AirSync::Collections, collections) })));
    }
};

WbxmlNode collection(const char *id, const char *status, bool more = false)
{
    QVector<WbxmlNode> fields { node(AirSync::SyncKey, "8"), node(AirSync::CollectionId, id),
        node(AirSync::Status, status) };
    if (more)
        fields.append(node(AirSync::MoreAvailable));
    return node(AirSync::Collection, fields);
}

} // namespace

/** What a reply leaves of the collections that are still to be synchronised. */
class SyncReplyProcessorTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DatabaseFixture> mDatabase;
    std::unique_ptr<FakeAccount> mAccount;
    SyncState mState;
    Attempts mAttempts;

    std::unique_ptr<SyncReplyProcessor> processed(const QVector<WbxmlNode> &collections)
    {
        AnsweredSync command;
        if (!command.answer(collections))
            return nullptr;
        auto processor = std::make_unique<SyncReplyProcessor>(*mAccount, mState, mAttempts);
        return processor->process(command) == SyncReplyProcessor::Reply::Taken ? std::move(processor)
                                                                               : nullptr;
    }

private Q_SLOTS:
    void init()
    {
        mDatabase = std::make_unique<DatabaseFixture>(DatabaseFixture::Opened);
        mAccount = std::make_unique<FakeAccount>(Account);
        mState = SyncState();
        mAttempts = Attempts();
        EasFolderItem outbox;
        outbox.setServerId(QStringLiteral("6"));
        outbox.setType(EasFolderItem::DefaultOutboxFolder);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { outbox }));
    }

    void cleanup()
    {
        mAccount.reset();
        mDatabase.reset();
    }

    void aFolderThatNobodyHandlesKeepsItsKey_data()
    {
        QTest::addColumn<bool>("more");
        QTest::newRow("and is done with") << false;
        QTest::newRow("and goes on while there is more") << true;
    }

    void aFolderThatNobodyHandlesKeepsItsKey()
    {
        QFETCH(bool, more);
        mState.collectionsToSync = mState.collectionsToRetry = QStringList(QStringLiteral("6"));
        const LogCollector log;
        const auto processor = processed({ collection("6", "1", more) });
        QVERIFY(processor);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("unhandled folder type") }));
        // Neither updated, so that its key would be stored, nor failed.
        QVERIFY(processor->updated().isEmpty());
        QVERIFY(processor->failedIds().isEmpty());
        QCOMPARE(processor->failureStatus(), 0);
        QCOMPARE(processor->moreAvailable(), more);
        QCOMPARE(mState.collectionsToSync.isEmpty(), !more);
        QVERIFY(mState.collectionsToRetry.isEmpty());
    }

    void aFailedCollectionWithoutANameIsLogged()
    {
        const LogCollector log;
        const auto processor = processed({ collection("", "8") });
        QVERIFY(processor);
        QVERIFY(log.contains(QStringLiteral("response had an empty collectionId for the collection")));
        QVERIFY(processor->failedIds().isEmpty());
        QCOMPARE(processor->failureStatus(), 8);
    }

    void aWishToRetryIsCountedUntilItIsGivenUp()
    {
        for (int attempt = 1; attempt <= 5; ++attempt) {
            mState.collectionsToSync = QStringList(QStringLiteral("6"));
            const auto processor = processed({ collection("6", "16"), collection("7", "1") });
            QVERIFY(processor);
            QCOMPARE(processor->failedIds(), QStringList(QStringLiteral("6")));
            QCOMPARE(mState.collectionsToRetry, QStringList(QStringLiteral("6")));
            QCOMPARE(mAttempts.used(), attempt);
        }
        const auto processor = processed({ collection("6", "16"), collection("7", "1") });
        QVERIFY(processor);
        QVERIFY(processor->failedIds().isEmpty());
        QVERIFY(mState.collectionsToRetry.isEmpty());
        QVERIFY(mState.collectionsToSync.isEmpty());
    }

    void aCorruptStateStopsAtOnce()
    {
        mState.collectionsToSync = QStringList(QStringLiteral("6"));
        QVERIFY(!processed({ collection("7", "3"), collection("6", "1") }));
        QCOMPARE(mState.collectionsToSync, QStringList(QStringLiteral("6")));
    }

    void tooManyCollectionsOfNoneChangeNothing()
    {
        mState.processSyncRequestInvalidSyncError();
        QVERIFY(mState.collectionsToRetry.isEmpty());
        mState.collectionsToSync = QStringList({ QStringLiteral("6"), QStringLiteral("7") });
        mState.processSyncRequestInvalidSyncError();
        mState.processSyncRequestInvalidSyncError();
        QCOMPARE(mState.collectionsToRetry, QStringList(QStringLiteral("6")));
    }
};

FENNEL_REGISTER_TEST(SyncReplyProcessorTest)
#include "syncreplyprocessortest.moc"
