// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/testmain.h"

using Simulator::Override;
using Simulator::WbxmlNode;
using namespace StatusScene;

namespace {

int collectionsOf(const Simulator::RecordedRequest &sync)
{
    return sync.document.all(QStringLiteral("Collections/Collection")).size();
}

/** Makes a collection of a reply say that there is more; with a serial number under a key of its own. */
void announceMore(WbxmlNode &collection, int serial)
{
    collection.removeAll(QStringLiteral("MoreAvailable"));
    if (serial > 0) {
        collection.find(QStringLiteral("SyncKey"))->setText(QStringLiteral("key-%1").arg(serial));
        collection.find(QStringLiteral("Status"))->setText(QStringLiteral("1"));
        collection.removeAll(QStringLiteral("Commands"));
    }
    collection.children().insert(3, WbxmlNode(QStringLiteral("AirSync:MoreAvailable")));
}

} // namespace

/** @short What the status of a collection or of an item in a Sync leads to. */
class CollectionStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCollectionIsAnsweredOnceWith_data();
    void aCollectionIsAnsweredOnceWith();
    void aCollectionIsAnsweredForEverWith_data();
    void aCollectionIsAnsweredForEverWith();
    void allCollectionsAreAnsweredForEverWith_data();
    void allCollectionsAreAnsweredForEverWith();
    void aLostKeyStopsTheHandlingOfTheOthers();
    void aRestartForgetsWhatWasToBeRepeated();
    void aReadMarkIsAnsweredWith_data();
    void aReadMarkIsAnsweredWith();
    void aDeleteIsAnsweredWith_data();
    void aDeleteIsAnsweredWith();
    void aReplyWithoutResponsesAcknowledgesAll();
    void oneOfTwoChangesIsAcknowledged();
    void aServerThatOnlySaysMoreIsLeft_data();
    void aServerThatOnlySaysMoreIsLeft();
    void anEmptyReplyToTheFirstSyncIsCounted();
    void anEmptyReplyToTheFirstSyncIsAskedAgain();
    void aFolderThatIsNeverAnsweredIsLeftOut();
    void aCollectionWithoutAKeyDoesNotHoldUpTheOthers();
    void anEmptyReplyToALaterSyncMeansNoChange();
    void keysForACollectionNobodyAskedForAreCounted();
    void oneCollectionThatIsTooManyIsRepeatedAsItWas();
    void aCollectionThatGoesWhileItIsRepeatedDoesNotStopTheOthers();

private:
    static void answerCollection(const QString &id, SyncTestBed &bed, int times);
};

void CollectionStatusTest::answerCollection(const QString &id, SyncTestBed &bed, int times)
{
    QFETCH(int, code);
    endsAsTheRowSays(bed, "Sync", Override::collectionStatus(code, id), times, [&bed] { return bed.sync(); });
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::aCollectionIsAnsweredOnceWith_data()
{
    columns();
    row("an invalid key, and the account starts again", 3, 0,
        "Invalid or mismatched synchronization key or synchronization state corrupted on server", 3);
    row("a protocol error, which is the end", 4, 4,
        "protocol error. We should check request and send it again", 1);
    row("a full mailbox, which is the end", 9, -6, "user should free disk space on the server before retry",
        1);
    row("an incomplete request, which is the end", 13, 13,
        "Sync request command is not complete for collection", 1);
    row("an invalid wait, which is the end", 14, 14, "Invalid Wait or HeartbeatInterval values", 1);
    row("too many collections, and the first goes alone", 15, 0, "Too many collections in SyncRequest", 2);
    row("a wish to retry, and it goes again", 16, 0, "we should retry our sync request for collection", 2);
    row("a status without a rule, which is the end", 8, 8, "can't handle results for collections:", 1);
}

void CollectionStatusTest::aCollectionIsAnsweredOnceWith()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    answerCollection(bed.mailbox().inboxId(), bed, Once);
}

void CollectionStatusTest::aCollectionIsAnsweredForEverWith_data()
{
    columns();
    // Once with its key, then with the others and the initial key, then alone.
    row("an invalid key", 3, 3, "no more attempts, failing request", 8);
    row("too many collections", 15, 15, "can't handle results for collections:", 6);
    row("a wish to retry, and it is given up", 16, 0, "we should retry our sync request for collection", 6);
}

void CollectionStatusTest::aCollectionIsAnsweredForEverWith()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    answerCollection(bed.mailbox().inboxId(), bed, ForEver);
}

void CollectionStatusTest::allCollectionsAreAnsweredForEverWith_data()
{
    columns();
    row("too many collections", 15, 15, "can't handle results for collections:", 6);
    row("a protocol error", 4, 4, "can't handle results for collections:", 1);
}

void CollectionStatusTest::allCollectionsAreAnsweredForEverWith()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    answerCollection(QString(), bed, ForEver);
}

void CollectionStatusTest::aLostKeyStopsTheHandlingOfTheOthers()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.mailbox().deliver(bed.mailbox().folderOfType(Simulator::SentItemsFolder).id,
        SyncTestBed::message(QStringLiteral("sent")));
    const QString drafts = bed.mailbox().folderOfType(Simulator::DraftsFolder).id;
    bed.server().overrideNext(QStringLiteral("Sync"), Override::edited([drafts](WbxmlNode &reply) {
        WbxmlNode *collections = reply.find(QStringLiteral("Collections"));
        QVERIFY(collections);
        WbxmlNode lost(QStringLiteral("AirSync:Collection"));
        lost.append(QStringLiteral("SyncKey"), QStringLiteral("0"));
        lost.append(QStringLiteral("CollectionId"), drafts);
        lost.append(QStringLiteral("Status"), 3);
        QVector<WbxmlNode> answered { lost };
        for (const WbxmlNode &collection : collections->children()) {
            if (collection.text(QStringLiteral("CollectionId")) != drafts)
                answered.append(collection);
        }
        collections->children() = answered;
    }));
    const LogCollector log;

    QCOMPARE(bed.sync(), 0);

    // All mail was fetched again: of no collection of that reply was the key kept.
    QCOMPARE(count(bed, "FolderSync"), 3);
    const auto next = bed.server()
                          .requests(QStringLiteral("Sync"))
                          .value(1)
                          .document.all(QStringLiteral("Collections/Collection"));
    QVERIFY(next.size() > 2);
    for (const WbxmlNode &collection : next)
        QCOMPARE(collection.text(QStringLiteral("SyncKey")), QStringLiteral("0"));
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void CollectionStatusTest::aRestartForgetsWhatWasToBeRepeated()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    const QString inbox = bed.mailbox().inboxId();
    bed.server().overrideNext(QStringLiteral("Sync"), Override::collectionStatus(16, inbox));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::collectionStatus(3, inbox));

    QCOMPARE(bed.sync(), 0);

    // The one to be repeated goes alone, but what begins anew goes with all others.
    const auto syncs = bed.server().requests(QStringLiteral("Sync"));
    QVERIFY(syncs.size() > 2);
    QCOMPARE(collectionsOf(syncs.at(1)), 1);
    QCOMPARE(collectionsOf(syncs.at(2)), collectionsOf(syncs.first()));
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void CollectionStatusTest::aReadMarkIsAnsweredWith_data()
{
    columns();
    row("a protocol error, and it goes out again", 4, 0, "protocol error for item", 1);
    row("a conversion error, and it goes out again", 6, 0, "server-client conversation error for item:", 1);
    row("a conflict, and it goes out again", 7, 0, "client-server conflict. Server wins for item:", 1);
    row("an item that is not found, and it goes out again", 8, 0, "object not found error for item:", 1);
    row("a full mailbox, and it goes out again", 9, -6, "sync command can't be completed for item:", 1);
    row("an incomplete request, and it goes out again", 13, 0,
        "Sync command request is not complete for item:", 1);
    row("a status without a rule, and it goes out again", 10, 0, "unhandled item status", 1);
}

void CollectionStatusTest::aReadMarkIsAnsweredWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("other")));
    QVERIFY(missesOneMessage(bed));
    QVERIFY(markRead(bed, "old"));
    endsAsTheRowSays(bed, "Sync", Override::itemStatus(code), Once, [&bed] { return bed.sync(); });
    QVERIFY(bed.serverState().contains(QStringLiteral("Inbox|old|unread")));

    // A server repeats its answer, refusals too, until the same key comes with something else.
    QVERIFY(markRead(bed, "other"));
    QVERIFY(nextSyncRepairs(bed));
    QVERIFY(bed.serverState().contains(QStringLiteral("Inbox|old|read")));
}

void CollectionStatusTest::aDeleteIsAnsweredWith_data()
{
    columns();
    row("a protocol error, and it goes out again", 4, 0, "protocol error for item", 1);
    row("a conversion error, and it counts as done", 6, 0, "server-client conversation error for item:", 0);
    row("a conflict, and it goes out again", 7, 0, "client-server conflict. Server wins for item:", 1);
    row("an item that is not found, and it counts as done", 8, 0, "object not found error for item:", 0);
    row("a full mailbox, and it goes out again", 9, -6, "sync command can't be completed for item:", 1);
    row("an incomplete request, and it goes out again", 13, 0,
        "Sync command request is not complete for item:", 1);
    row("a status without a rule, and it goes out again", 10, 0, "unhandled item status", 1);
}

void CollectionStatusTest::aDeleteIsAnsweredWith()
{
    QFETCH(int, code);
    QFETCH(int, end);
    QFETCH(QString, text);
    // How often the delete goes out again.
    QFETCH(int, requests);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("other")));
    QVERIFY(missesOneMessage(bed));
    QVERIFY(removeOnDevice(bed, "old"));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::itemStatus(code));
    {
        const LogCollector log;
        QCOMPARE(bed.sync(), end);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
    }
    bed.server().clearRequests();
    bed.server().clearScript();
    // A server repeats its answer, refusals too, until the same key comes with something else.
    QVERIFY(markRead(bed, "other"));
    QCOMPARE(bed.sync(), 0);
    int sent = 0;
    for (const Simulator::RecordedRequest &request : bed.server().requests(QStringLiteral("Sync")))
        sent += request.document.all(QStringLiteral("Collections/Collection/Commands/Delete")).size();
    QCOMPARE(sent, requests);
    QVERIFY(!bed.deviceMessage(QStringLiteral("old")).isValid());
    if (requests > 0)
        QCOMPARE(bed.deviceState(), bed.serverState());
}

void CollectionStatusTest::aReplyWithoutResponsesAcknowledgesAll()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    QVERIFY(markRead(bed, "old"));
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.serverState(), bed.deviceState());
    bed.server().clearRequests();
    QCOMPARE(bed.sync(), 0);
    for (const Simulator::RecordedRequest &request : bed.server().requests(QStringLiteral("Sync")))
        QVERIFY(!request.document.has(QStringLiteral("Collections/Collection/Commands")));
}

void CollectionStatusTest::oneOfTwoChangesIsAcknowledged()
{
    SyncTestBed bed;
    const QString inbox = bed.mailbox().inboxId();
    const QString first = bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("first")));
    const QString second = bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("second")));
    QCOMPARE(bed.sync(), 0);
    for (const char *subject : { "first", "second" })
        QVERIFY(markRead(bed, subject));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::edited([&](WbxmlNode &reply) {
        for (WbxmlNode &collection : reply.find(QStringLiteral("Collections"))->children()) {
            if (collection.text(QStringLiteral("CollectionId")) != inbox)
                continue;
            WbxmlNode change(QStringLiteral("AirSync:Change"));
            change.append(QStringLiteral("ServerId"), first);
            change.append(QStringLiteral("Status"), 1);
            collection.append(WbxmlNode(QStringLiteral("AirSync:Responses"), QVector<WbxmlNode> { change }));
        }
    }));
    QCOMPARE(bed.sync(), 0);
    bed.server().clearRequests();

    QCOMPARE(bed.sync(), 0);

    QStringList sent;
    for (const Simulator::RecordedRequest &request : bed.server().requests(QStringLiteral("Sync"))) {
        for (const WbxmlNode &change :
            request.document.all(QStringLiteral("Collections/Collection/Commands/Change")))
            sent.append(change.text(QStringLiteral("ServerId")));
    }
    QCOMPARE(sent, QStringList { second });
}

void CollectionStatusTest::aServerThatOnlySaysMoreIsLeft_data()
{
    QTest::addColumn<bool>("newKeys");
    QTest::addColumn<bool>("refusedChange");
    QTest::newRow("with the same keys each time") << false << false;
    QTest::newRow("with new keys each time") << true << false;
    QTest::newRow("while it refuses a change of the device") << false << true;
}

void CollectionStatusTest::aServerThatOnlySaysMoreIsLeft()
{
    QFETCH(bool, newKeys);
    QFETCH(bool, refusedChange);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().setEmptyReplies(false);
    if (refusedChange)
        QVERIFY(markRead(bed, "old"));
    int serial = 0;
    Override more = refusedChange ? Override::itemStatus(6) : Override();
    more.mEdit = [&](WbxmlNode &reply) {
        WbxmlNode *collections = reply.find(QStringLiteral("Collections"));
        if (!collections)
            return;
        for (WbxmlNode &collection : collections->children())
            announceMore(collection, newKeys ? ++serial : 0);
    };
    bed.server().overrideAll(QStringLiteral("Sync"), more);

    QCOMPARE(bed.sync(), -2);

    QVERIFY2(count(bed, "Sync") <= 8, qPrintable(QString::number(count(bed, "Sync"))));
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::anEmptyReplyToTheFirstSyncIsCounted()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.server().overrideAll(QStringLiteral("Sync"), Override::empty());
    QCOMPARE(bed.sync(), -2);
    // Each collection is asked for alone, once.
    const int collections = collectionsOf(bed.server().requests(QStringLiteral("Sync")).first());
    QVERIFY(collections > 1);
    QCOMPARE(count(bed, "Sync"), 6 + collections);
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::anEmptyReplyToTheFirstSyncIsAskedAgain()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::empty());
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), 1);
}

void CollectionStatusTest::aFolderThatIsNeverAnsweredIsLeftOut()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    const QString silent = bed.mailbox().addFolder(QStringLiteral("Silent"));
    const QString other = bed.mailbox().addFolder(QStringLiteral("Other"));
    bed.mailbox().deliver(other, SyncTestBed::message(QStringLiteral("there")));
    bed.server().overrideAll(QStringLiteral("Sync"), Override::edited([silent](WbxmlNode &reply) {
        WbxmlNode *collections = reply.find(QStringLiteral("Collections"));
        if (!collections)
            return;
        for (const WbxmlNode &collection : collections->children()) {
            if (collection.text(QStringLiteral("CollectionId")) == silent) {
                collections->children().clear();
                return;
            }
        }
    }));
    {
        const LogCollector log;
        QCOMPARE(bed.sync(), 0);
        QVERIFY2(log.contains(QtWarningMsg,
                     { QStringLiteral("no answer about collection, leaving it out:"), silent,
                         QStringLiteral("Silent") }),
            qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(log.count(QStringLiteral("leaving it out:")), 1);
    }
    QVERIFY(bed.deviceState().contains(QStringLiteral("Other|there|unread")));
    QVERIFY(bed.deviceState().contains(QStringLiteral("Inbox|new|unread")));
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::aCollectionWithoutAKeyDoesNotHoldUpTheOthers()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    const QString broken = bed.mailbox().addFolder(QStringLiteral("Broken"));
    bed.server().overrideAll(QStringLiteral("Sync"), Override::collectionStatus(5, broken));
    {
        const LogCollector log;
        QCOMPARE(bed.sync(), 5);
        QVERIFY(log.contains(QStringLiteral("no more attempts, failing request")));
    }
    // Once before the other collections, and five times after them.
    QCOMPARE(count(bed, "Sync"), 1 + 1 + 5);
    QVERIFY(bed.deviceState().contains(QStringLiteral("Inbox|new|unread")));
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::anEmptyReplyToALaterSyncMeansNoChange()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::empty());
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(count(bed, "Sync"), 1);
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::keysForACollectionNobodyAskedForAreCounted()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    int serial = 0;
    bed.server().overrideAll(QStringLiteral("Sync"), Override::edited([&serial](WbxmlNode &reply) {
        WbxmlNode *collections = reply.find(QStringLiteral("Collections"));
        if (!collections)
            return;
        for (WbxmlNode &collection : collections->children()) {
            collection.find(QStringLiteral("CollectionId"))->setText(QStringLiteral("nobody"));
            collection.find(QStringLiteral("SyncKey"))->setText(QStringLiteral("key-%1").arg(++serial));
        }
    }));
    QCOMPARE(bed.sync(), -2);
    QCOMPARE(count(bed, "Sync"), 6);
    QVERIFY(nextSyncRepairs(bed));
}

void CollectionStatusTest::oneCollectionThatIsTooManyIsRepeatedAsItWas()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    const QString inbox = QString::number(bed.deviceFolder(QStringLiteral("Inbox")).toULongLong());
    bed.server().overrideNext(QStringLiteral("Sync"), Override::topStatus(15));
    QCOMPARE(bed.syncFolders({ inbox }), 0);
    const auto syncs = bed.server().requests(QStringLiteral("Sync"));
    QVERIFY(syncs.size() >= 2);
    QCOMPARE(syncs.at(0).document.toXml(), syncs.at(1).document.toXml());
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void CollectionStatusTest::aCollectionThatGoesWhileItIsRepeatedDoesNotStopTheOthers()
{
    SyncTestBed bed;
    Simulator::Mailbox &mailbox = bed.mailbox();
    const QString doomed = mailbox.addFolder(QStringLiteral("Doomed"));
    QVERIFY(missesOneMessage(bed));
    const auto localId = [&bed](const char *folder) {
        return QString::number(bed.deviceFolder(QString::fromLatin1(folder)).toULongLong());
    };
    // The first one is to go alone, but before it does the server has deleted it.
    bed.server().overrideNext(QStringLiteral("Sync"), Override::topStatus(15));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::edited([&mailbox, doomed](WbxmlNode &reply) {
        mailbox.removeFolder(doomed);
        reply = WbxmlNode(QStringLiteral("AirSync:Sync"));
        reply.append(QStringLiteral("Status"), 12);
    }));

    QCOMPARE(bed.syncFolders({ localId("Doomed"), localId("Inbox") }), 0);

    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QCOMPARE(bed.deviceState(), bed.serverState());
}

FENNEL_REGISTER_TEST(CollectionStatusTest)
#include "collectionstatustest.moc"
