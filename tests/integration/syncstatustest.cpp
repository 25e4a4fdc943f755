// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/testmain.h"

using Simulator::Override;
using namespace StatusScene;

/** @short What each status of a whole Sync with keys leads to, and that the next sync repairs it. */
class SyncStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLaterSyncIsAnsweredOnceWith_data();
    void aLaterSyncIsAnsweredOnceWith();
    void aLaterSyncIsAnsweredForEverWith_data();
    void aLaterSyncIsAnsweredForEverWith();
    void changedFoldersBringTheHierarchyFirst();
    void eachPhaseHasAllAttempts();

private:
    static void answer(int times);
};

void SyncStatusTest::answer(int times)
{
    QFETCH(int, code);
    QFETCH(int, end);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    endsAsTheRowSays(bed, "Sync", Override::topStatus(code), times, [&bed] { return bed.sync(); });
    if (end == 0)
        QCOMPARE(bed.deviceState(), bed.serverState());
    QVERIFY(nextSyncRepairs(bed));
}

void SyncStatusTest::aLaterSyncIsAnsweredOnceWith_data()
{
    columns();
    row("an invalid key, and the collections start again", 3, 0, "Trying to Resync collections", 3);
    row("a protocol error, and it is repeated", 4, 0,
        "Protocol error. Something really wrong with the sync request", 2);
    row("a server error, and it is repeated", 5, 0, "Sync request command retry. Attempt: ", 2);
    row("changed folders, and they are fetched", 12, 0, "Sync command reported remote folders changed", 2);
    row("too many collections, and the first goes alone", 15, 0, "Too many collections in SyncRequest", 3);
    row("a wish to retry, and it is repeated", 16, 0, "trying to send command again. Attempt: ", 2);
    row("a lost state, and it is repeated", 132, 0, ", trying to send request again", 2);
    row("a corrupt state, and it is repeated", 134, 0, ", trying to send request again", 2);
    row("an invalid store, and it is repeated", 149, 0, ", trying to send request again", 2);
    row("a status without a rule, and it ends", 7, 7, "unhandled status", 1);
    commonSyncRows(2);
}

void SyncStatusTest::aLaterSyncIsAnsweredOnceWith()
{
    answer(Once);
}

void SyncStatusTest::aLaterSyncIsAnsweredForEverWith_data()
{
    columns();
    row("an invalid key", 3, 3, "no more attempts, failing request", 6);
    row("a protocol error", 4, 4, "No more retries, failing request.", 6);
    row("a server error", 5, 5, "no more attempts, failing request", 11);
    row("changed folders", 12, 12, "no more attempts, failing request", 6);
    row("too many collections", 15, 15, "no more attempts, failing request", 6);
    row("a wish to retry", 16, 16, "no more attempts, failing request", 6);
    row("a corrupt state", 134, 134, "no more attempts, failing request", 6);
    row("an invalid store", 149, 149, "no more attempts, failing request", 6);
    row("a server error that does not pass", 111, 111, "no more attempts, failing request", 6);
    row("a device that is not known", 109, 109, "no more attempts, failing request", 6);
}

void SyncStatusTest::aLaterSyncIsAnsweredForEverWith()
{
    answer(ForEver);
}

void SyncStatusTest::changedFoldersBringTheHierarchyFirst()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().setReportStaleHierarchy(true);
    Simulator::Mailbox &mailbox = bed.mailbox();
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::edited([&](Simulator::WbxmlNode &) {
        const QString folder = mailbox.addFolder(QStringLiteral("Appeared in between"));
        mailbox.deliver(folder, SyncTestBed::message(QStringLiteral("there")));
    }));

    QCOMPARE(bed.sync(), 0);

    QCOMPARE(count(bed, "FolderSync"), 2);
    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void SyncStatusTest::eachPhaseHasAllAttempts()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    for (int attempt = 0; attempt < 3; ++attempt)
        bed.server().overrideNext(QStringLiteral("FolderSync"), Override::topStatus(6));
    for (int attempt = 0; attempt < 4; ++attempt)
        bed.server().overrideNext(QStringLiteral("Sync"), Override::topStatus(16));
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(count(bed, "FolderSync"), 4);
    QCOMPARE(count(bed, "Sync"), 5);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

FENNEL_REGISTER_TEST(SyncStatusTest)
#include "syncstatustest.moc"
