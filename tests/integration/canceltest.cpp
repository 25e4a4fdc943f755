// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "integration/statusscene.h"
#include "support/testmain.h"

#include <functional>

using Simulator::Override;
using namespace StatusScene;

namespace {

/** A server that answers the command in no useful way until the end of the test. */
struct Obstacle
{
    QString command;
    Override answer;
    /** Requests of the command that pass before. */
    int passing = 0;
};

QByteArray withAttachments()
{
    QByteArray message = "From: Bob <bob@example.com>\r\nTo: Alice <alice@example.com>\r\nSubject: files\r\n"
                         "Date: Tue, 2 Jan 2024 03:04:05 +0000\r\nMIME-Version: 1.0\r\n"
                         "Content-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n"
                         "Content-Type: text/plain\r\n\r\nbody\r\n";
    for (const char *name : { "a.bin", "b.bin" })
        message += QByteArray("--x\r\nContent-Type: application/octet-stream; name=") + name
            + "\r\nContent-Disposition: attachment; filename=" + name
            + "\r\nContent-Transfer-Encoding: base64\r\n\r\n" + QByteArray(90000, 'b').toBase64() + "\r\n";
    return message + "--x--\r\n";
}

} // namespace

Q_DECLARE_METATYPE(Obstacle)

/** @short A request that is cancelled has one end, with its own status, in whatever state it was. */
class CancelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFirstSyncIsCancelledWhile_data();
    void aFirstSyncIsCancelledWhile();
    void aLaterSyncIsCancelledWhile_data();
    void aLaterSyncIsCancelledWhile();
    void aMoveIsCancelled();
    void aResyncIsCancelled();
    void aSyncIsCancelledBeforeItsNextAttempt_data();
    void aSyncIsCancelledBeforeItsNextAttempt();
    void aSyncThatNegotiatesIsCancelledAlthoughVersionsWereCached();
    void aQueuedSyncIsCancelled();
    void aDownloadIsCancelledWhile_data();
    void aDownloadIsCancelledWhile();
    void aHungRequestIsNoticedByTheNext();

private:
    static void cancel(SyncTestBed &bed, qulonglong id);
    static void waitForRequest(SyncTestBed &bed, const QString &command, int count);
    static void cancelAt(SyncTestBed &bed, const Obstacle &obstacle);
};

void CancelTest::cancel(SyncTestBed &bed, qulonglong id)
{
    RequestManager::instance()->onCancelRequest(bed.accountId(), id);
    QCOMPARE(bed.waitFor(id), -4);
    // What was on its way then must not end it again.
    QCoreApplication::processEvents();
    QCOMPARE(bed.finishedCount(id), 1);
}

void CancelTest::waitForRequest(SyncTestBed &bed, const QString &command, int count)
{
    QTRY_VERIFY_WITH_TIMEOUT(bed.server().requests(command).size() >= count, 20000);
}

void CancelTest::cancelAt(SyncTestBed &bed, const Obstacle &obstacle)
{
    if (obstacle.passing > 0)
        bed.server().overrideNext(obstacle.command, Override(), obstacle.passing);
    bed.server().overrideAll(obstacle.command, obstacle.answer);
    const qulonglong id = bed.startSync();
    waitForRequest(bed, obstacle.command, obstacle.passing + 1);
    cancel(bed, id);
    QVERIFY(nextSyncRepairs(bed));
    QCOMPARE(bed.finishedCount(id), 1);
}

void CancelTest::aFirstSyncIsCancelledWhile_data()
{
    QTest::addColumn<Obstacle>("obstacle");
    QTest::newRow("it asks for the versions") << Obstacle { QStringLiteral("OPTIONS"), Override::hang() };
    QTest::newRow("the first folders are on their way")
        << Obstacle { QStringLiteral("FolderSync"), Override::hang() };
    QTest::newRow("the later folders are on their way")
        << Obstacle { QStringLiteral("FolderSync"), Override::hang(), 1 };
    QTest::newRow("the first keys are on their way") << Obstacle { QStringLiteral("Sync"), Override::hang() };
    QTest::newRow("the first mail is on its way") << Obstacle { QStringLiteral("Sync"), Override::hang(), 1 };
    QTest::newRow("a reply has no end") << Obstacle { QStringLiteral("Sync"), Override().endless(), 1 };
    QTest::newRow("a reply comes byte by byte") << Obstacle { QStringLiteral("Sync"), Override().drip(), 1 };
}

void CancelTest::aFirstSyncIsCancelledWhile()
{
    QFETCH(Obstacle, obstacle);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    cancelAt(bed, obstacle);
}

void CancelTest::aLaterSyncIsCancelledWhile_data()
{
    QTest::addColumn<Obstacle>("obstacle");
    QTest::newRow("the folders are on their way")
        << Obstacle { QStringLiteral("FolderSync"), Override::hang() };
    QTest::newRow("the mail is on its way") << Obstacle { QStringLiteral("Sync"), Override::hang() };
    QTest::newRow("the server asks for a policy key for ever")
        << Obstacle { QStringLiteral("Sync"), Override::topStatus(141), 0 };
}

void CancelTest::aLaterSyncIsCancelledWhile()
{
    QFETCH(Obstacle, obstacle);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    cancelAt(bed, obstacle);
}

void CancelTest::aMoveIsCancelled()
{
    SyncTestBed bed;
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    QVERIFY(missesOneMessage(bed));
    moveOnDevice(bed, "old", QStringLiteral("Archive"));
    cancelAt(bed, Obstacle { QStringLiteral("MoveItems"), Override::hang() });
    QVERIFY(bed.serverState().contains(QStringLiteral("Archive|old|unread")));
}

void CancelTest::aResyncIsCancelled()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::topStatus(3));
    bed.server().overrideAll(QStringLiteral("Sync"), Override::hang());
    const qulonglong id = bed.startSync();
    waitForRequest(bed, QStringLiteral("Sync"), 2);
    cancel(bed, id);
    QVERIFY(nextSyncRepairs(bed));
}

void CancelTest::aSyncIsCancelledBeforeItsNextAttempt_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("of the folders") << QStringLiteral("FolderSync");
    QTest::newRow("of the mail") << QStringLiteral("Sync");
}

void CancelTest::aSyncIsCancelledBeforeItsNextAttempt()
{
    QFETCH(QString, command);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.clock().setPace(TestClock::Unhurried);
    bed.server().overrideNext(command, Override::topStatus(111));
    {
        const LogCollector log;
        const qulonglong id = bed.startSync();
        QTRY_VERIFY_WITH_TIMEOUT(log.contains(QStringLiteral("timer interval:")), 20000);
        cancel(bed, id);
    }
    QCOMPARE(count(bed, command.toLatin1().constData()), 1);
    QVERIFY(nextSyncRepairs(bed));
}

void CancelTest::aSyncThatNegotiatesIsCancelledAlthoughVersionsWereCached()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    // A version is not kept over a restart, the list of versions is.
    bed.restartEngine();
    cancelAt(bed, Obstacle { QStringLiteral("OPTIONS"), Override::hang() });
}

void CancelTest::aQueuedSyncIsCancelled()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::hang());
    const qulonglong running = bed.startSync();
    const qulonglong queued = bed.startSync();
    waitForRequest(bed, QStringLiteral("Sync"), 1);
    cancel(bed, queued);
    QCOMPARE(bed.finishedCount(running), 0);
    cancel(bed, running);
    QVERIFY(nextSyncRepairs(bed));
}

void CancelTest::aDownloadIsCancelledWhile_data()
{
    QTest::addColumn<bool>("whole");
    QTest::addColumn<Obstacle>("obstacle");
    const QString fetch = QStringLiteral("ItemOperations");
    QTest::newRow("a first range is on its way") << false << Obstacle { fetch, Override::hang() };
    QTest::newRow("a second range is on its way") << false << Obstacle { fetch, Override::hang(), 1 };
    QTest::newRow("a message is on its way") << true << Obstacle { fetch, Override::hang() };
    QTest::newRow("a first attachment is on its way") << true << Obstacle { fetch, Override::hang(), 1 };
    QTest::newRow("a second attachment is on its way") << true << Obstacle { fetch, Override::hang(), 3 };
    QTest::newRow("a range has no end") << false << Obstacle { fetch, Override().endless() };
}

void CancelTest::aDownloadIsCancelledWhile()
{
    QFETCH(bool, whole);
    QFETCH(Obstacle, obstacle);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), withAttachments());
    QCOMPARE(bed.sync(), 0);
    const qulonglong message = bed.deviceMessage(QStringLiteral("files")).toULongLong();
    if (obstacle.passing > 0)
        bed.server().overrideNext(obstacle.command, Override(), obstacle.passing);
    bed.server().overrideAll(obstacle.command, obstacle.answer);

    const qulonglong id = whole ? bed.startDownloadMessages({ message }, true)
                                : bed.startDownloadPart(message, QStringLiteral("3"));
    waitForRequest(bed, obstacle.command, obstacle.passing + 1);
    cancel(bed, id);

    // Nothing of it was stored.
    QVERIFY(!QMailMessage(QMailMessageId(message)).partAt(2).contentAvailable());
    bed.server().clearScript();
    QCOMPARE(bed.downloadPart(message, QStringLiteral("3")), 0);
    QVERIFY(QMailMessage(QMailMessageId(message)).partAt(2).contentAvailable());
}

void CancelTest::aHungRequestIsNoticedByTheNext()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::hang());
    const qulonglong hung = bed.startSync();
    waitForRequest(bed, QStringLiteral("Sync"), 1);

    bed.clock().advance(200000);
    const qulonglong patient = bed.startSync();
    QCOMPARE(bed.finishedCount(hung), 0);
    bed.clock().advance(100001);
    const LogCollector log;
    const qulonglong next = bed.startSync();

    QCOMPARE(bed.waitFor(hung), -4);
    QVERIFY(log.contains(QStringLiteral("is still active. Trying to force request cancellation")));
    QCOMPARE(bed.waitFor(patient), 0);
    QCOMPARE(bed.waitFor(next), 0);
    QCOMPARE(bed.finishedCount(hung), 1);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

FENNEL_REGISTER_TEST(CancelTest)
#include "canceltest.moc"
