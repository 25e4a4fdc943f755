// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/testmain.h"

using Simulator::Override;
using Simulator::WbxmlNode;
using namespace StatusScene;

namespace {

/** A folder, two messages on both sides, and both of them moved there on the device. */
bool movesTwoMessages(SyncTestBed &bed)
{
    const QString inbox = bed.mailbox().inboxId();
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    for (const char *subject : { "one", "two" })
        bed.mailbox().deliver(inbox, SyncTestBed::message(QString::fromLatin1(subject)));
    if (bed.sync() != 0)
        return false;
    for (const char *subject : { "one", "two" })
        moveOnDevice(bed, subject, QStringLiteral("Archive"));
    bed.server().clearRequests();
    return true;
}

} // namespace

/** @short What each status of a MoveItems and of its items leads to. */
class MoveStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMoveIsAnsweredOnceWith_data();
    void aMoveIsAnsweredOnceWith();
    void aMoveIsAnsweredForEverWith_data();
    void aMoveIsAnsweredForEverWith();
    void aMessageIsAnsweredOnceWith_data();
    void aMessageIsAnsweredOnceWith();
    void aMessageIsAnsweredForEverWith_data();
    void aMessageIsAnsweredForEverWith();
    void aMessageThatMovesTwiceIsMovedOnce();
    void oneOfTwoMessagesIsLocked();
    void aMoveThatIsRepeatedDoesNotLoop();
    void aMovedMessageSurvivesTheDeleteInItsOldFolder();
    void aMoveWaitsWhileACollectionIsRepeated();
    void aMessageThatIsGoneOnTheServerIsNotMovedForEver();
    void aFolderThatGoesDuringAMoveDoesNotStopTheSync();
    void aMoveThatNamesNoMessageIsLeftToTheNextSync();

private:
    static void answer(const Override &override, int times, SyncTestBed &bed);
};

void MoveStatusTest::answer(const Override &override, int times, SyncTestBed &bed)
{
    endsAsTheRowSays(bed, "MoveItems", override, times, [&bed] { return bed.sync(); });
    QVERIFY(nextSyncRepairs(bed));
    QVERIFY(bed.deviceState().contains(QStringLiteral("Archive|two|unread")));
    QCOMPARE(bed.deviceState().size(), 2);
}

void MoveStatusTest::aMoveIsAnsweredOnceWith_data()
{
    columns();
    row("more than one destination, and the sync goes on", 5, 0,
        "More than one DstFldId element is included for element.", 1);
    row("lost items, and the sync goes on", 153, 0,
        "Items lost after moving to destination folder. Server error.", 1);
    row("a failed move, and it is repeated", 154, 0, ", trying to send request again", 2);
    row("an invalid destination, and the sync goes on", 156, 0,
        "Invalid destination folder. starting sync command", 1);
    row("a status without a rule, and it ends", 7, 7, "unhandled MoveItems command status", 1);
    row("a server error, and it ends", 110, 110, "server error. We shouldn't retry later. Completing request",
        1);
    row("a server error that passes, and it is repeated", 111, 0,
        "we should try to send command again later. Timeout (in mseconds):", 2);
    row("a wish for a policy key, and the sync goes on with one", 141, 0,
        "server requires policy key to be submitted for", 1);
    row("a policy, of which there is none, and the sync goes on", 142, 0,
        "Provision Policy is in place for account", 1);
}

void MoveStatusTest::aMoveIsAnsweredOnceWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    answer(Override::topStatus(code), Once, bed);
}

void MoveStatusTest::aMoveIsAnsweredForEverWith_data()
{
    columns();
    row("a failed move", 154, 154, "no more attempts, failing request", 6);
    row("lost items", 153, 0, "Items lost after moving to destination folder. Server error.", 1);
    row("a server error that does not pass", 111, 111, "no more attempts, failing request", 6);
}

void MoveStatusTest::aMoveIsAnsweredForEverWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    answer(Override::topStatus(code), ForEver, bed);
}

void MoveStatusTest::aMessageIsAnsweredOnceWith_data()
{
    columns();
    row("a source that is not valid, and the folders are fetched", 1, 0,
        "invalid source message or folder id for message:", 1);
    row("a destination that is not valid, and the folders are fetched", 2, 0,
        "invalid destination id for message:", 1);
    row("a move that is not possible, and it waits", 5, 0,
        "item can't be moved. Multiple destination folder elements?", 1);
    row("a lock, and it is repeated", 7, 0, "source or destination folder is locked for message:", 2);
    row("a status without a rule, and it waits", 6, 0, "received response status", 1);
}

void MoveStatusTest::aMessageIsAnsweredOnceWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    answer(Override::itemStatus(code), Once, bed);
}

void MoveStatusTest::aMessageIsAnsweredForEverWith_data()
{
    columns();
    row("a source that is not valid", 1, 0, "invalid source message or folder id for message:", 1);
    row("a destination that is not valid", 2, 0, "invalid destination id for message:", 1);
    row("a lock", 7, 0, "failed to retry MoveItems command", 6);
}

void MoveStatusTest::aMessageIsAnsweredForEverWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    answer(Override::itemStatus(code), ForEver, bed);
}

void MoveStatusTest::aMessageThatMovesTwiceIsMovedOnce()
{
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    moveOnDevice(bed, "one", QStringLiteral("Drafts"));
    const QStringList wanted = bed.deviceState();

    QCOMPARE(bed.sync(), 0);

    const auto requests = bed.server().requests(QStringLiteral("MoveItems"));
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().document.all(QStringLiteral("Move")).size(), 2);
    QCOMPARE(bed.deviceState(), wanted);
    QCOMPARE(bed.serverState(), wanted);
}

void MoveStatusTest::oneOfTwoMessagesIsLocked()
{
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    const QString locked = bed.mailbox().items(bed.mailbox().inboxId()).first().serverId;
    bed.server().overrideNext(QStringLiteral("MoveItems"), Override::itemStatus(7, locked));

    QCOMPARE(bed.sync(), 0);

    const auto requests = bed.server().requests(QStringLiteral("MoveItems"));
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.first().document.all(QStringLiteral("Move")).size(), 2);
    QCOMPARE(requests.last().document.all(QStringLiteral("Move")).size(), 1);
    QCOMPARE(requests.last().document.text(QStringLiteral("Move/SrcMsgId")), locked);
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), 2);
}

void MoveStatusTest::aMoveThatIsRepeatedDoesNotLoop()
{
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    bed.server().overrideNext(QStringLiteral("MoveItems"), Override::topStatus(154));
    bed.server().overrideNext(QStringLiteral("MoveItems"), Override::topStatus(5));
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(count(bed, "MoveItems"), 2);
    QVERIFY(nextSyncRepairs(bed));
}

void MoveStatusTest::aMovedMessageSurvivesTheDeleteInItsOldFolder()
{
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    const QStringList wanted = bed.deviceState();
    QMailMessageIdList moved;
    for (const char *subject : { "one", "two" })
        moved.append(bed.deviceMessage(QString::fromLatin1(subject)));

    QCOMPARE(bed.sync(), 0);

    QCOMPARE(bed.deviceState(), wanted);
    QCOMPARE(bed.serverState(), wanted);
    QCOMPARE(bed.deviceMessage(QStringLiteral("one")), moved.first());
    QCOMPARE(bed.deviceMessage(QStringLiteral("two")), moved.last());
}

void MoveStatusTest::aMoveWaitsWhileACollectionIsRepeated()
{
    SyncTestBed bed;
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    QVERIFY(missesOneMessage(bed));
    Override retry = Override::collectionStatus(16, bed.mailbox().inboxId());
    retry.mEdit = [&bed](WbxmlNode &) {
        // While the Sync is on its way the user moves a message.
        QMetaObject::invokeMethod(
            &bed, [&bed] { moveOnDevice(bed, "old", QStringLiteral("Archive")); },
            Qt::BlockingQueuedConnection);
    };
    bed.server().overrideNext(QStringLiteral("Sync"), retry);

    QCOMPARE(bed.sync(), 0);

    // The repeated Sync went before the move.
    QCOMPARE(count(bed, "MoveItems"), 0);
    QVERIFY(nextSyncRepairs(bed));
    QVERIFY(bed.serverState().contains(QStringLiteral("Archive|old|unread")));
}

void MoveStatusTest::aMessageThatIsGoneOnTheServerIsNotMovedForEver()
{
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    bed.mailbox().remove(bed.mailbox().items(bed.mailbox().inboxId()).first().serverId);
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(count(bed, "MoveItems"), 1);
    QVERIFY(nextSyncRepairs(bed));
    QCOMPARE(bed.deviceState().size(), 1);
}

void MoveStatusTest::aFolderThatGoesDuringAMoveDoesNotStopTheSync()
{
    SyncTestBed bed;
    Simulator::Mailbox &mailbox = bed.mailbox();
    const QString doomed = mailbox.addFolder(QStringLiteral("Doomed"));
    mailbox.addFolder(QStringLiteral("Archive"));
    mailbox.deliver(doomed, SyncTestBed::message(QStringLiteral("moved")));
    QCOMPARE(bed.sync(), 0);
    moveOnDevice(bed, "moved", QStringLiteral("Archive"));
    mailbox.deliver(mailbox.inboxId(), SyncTestBed::message(QStringLiteral("new")));
    Override gone = Override::itemStatus(1);
    gone.mEdit = [&mailbox, doomed](WbxmlNode &) {
        mailbox.removeFolder(doomed);
    };
    bed.server().overrideNext(QStringLiteral("MoveItems"), gone);

    QCOMPARE(bed.sync(), 0);

    // The folder that was to be repeated is no more, and all others had their turn.
    QVERIFY(bed.deviceState().contains(QStringLiteral("Inbox|new|unread")));
    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
}

void MoveStatusTest::aMoveThatNamesNoMessageIsLeftToTheNextSync()
{
    SyncTestBed bed;
    QVERIFY(movesTwoMessages(bed));
    bed.server().overrideNext(QStringLiteral("MoveItems"), Override::edited([](WbxmlNode &reply) {
        for (WbxmlNode &response : reply.children())
            response.removeAll(QStringLiteral("DstMsgId"));
    }));
    {
        const LogCollector log;
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(log.count(QStringLiteral("the server has not named the moved message")), 2);
    }
    QVERIFY(nextSyncRepairs(bed));
    QCOMPARE(bed.deviceState(),
        QStringList({ QStringLiteral("Archive|one|unread"), QStringLiteral("Archive|two|unread") }));
}

FENNEL_REGISTER_TEST(MoveStatusTest)
#include "movestatustest.moc"
