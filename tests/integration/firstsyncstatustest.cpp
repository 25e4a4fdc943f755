// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/testmain.h"

using Simulator::Override;
using namespace StatusScene;

/** @short What each status of a whole Sync without keys leads to, and that the next sync repairs it. */
class FirstSyncStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFirstSyncIsAnsweredOnceWith_data();
    void aFirstSyncIsAnsweredOnceWith() { answer(Once); }
    void aFirstSyncIsAnsweredForEverWith_data();
    void aFirstSyncIsAnsweredForEverWith() { answer(ForEver); }

private:
    static void answer(int times);
};

// A sync that succeeds takes one Sync for the keys and one for the items.

void FirstSyncStatusTest::answer(int times)
{
    QFETCH(int, code);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    endsAsTheRowSays(bed, "Sync", Override::topStatus(code), times, [&bed] { return bed.sync(); });
    QVERIFY(nextSyncRepairs(bed));
}

void FirstSyncStatusTest::aFirstSyncIsAnsweredOnceWith_data()
{
    columns();
    row("an invalid key, and it is repeated at once", 3, 0,
        "Initial Sync command failed due to zero sync key, retrying!", 3);
    row("a protocol error, and it is repeated", 4, 0,
        "Protocol error. Something really wrong with the initial sync request", 3);
    row("a server error, and it is repeated", 5, 0,
        "Initial Sync command failed due to server error, retrying!", 3);
    row("changed folders, and they are fetched", 12, 0,
        "Initial Sync command reported remote folders changed, starting folder sync!", 3);
    row("too many collections, and the first goes alone", 15, 0,
        "Initial Sync command failed due to invalid sync status, retrying!", 5);
    row("a wish to retry, and it is repeated", 16, 0, "Initial Sync command reported retry status, retrying!",
        3);
    row("a lost state, and it is repeated", 132, 0, ", trying to send request again", 3);
    row("a corrupt state, and it is repeated", 134, 0, ", trying to send request again", 3);
    row("an invalid store, and it is repeated", 149, 0, ", trying to send request again", 3);
    row("a status without a rule, and it ends", 7, 7, "unhandled Sync status", 1);
    commonSyncRows(3);
}

void FirstSyncStatusTest::aFirstSyncIsAnsweredForEverWith_data()
{
    columns();
    row("an invalid key", 3, 3, "no more attempts, failing request", 6);
    row("a protocol error", 4, 4, "No more retries, failing request.", 6);
    row("a server error", 5, 5, "no more attempts, failing request", 11);
    row("changed folders", 12, 12, "no more attempts, failing request", 6);
    row("too many collections", 15, 15, "no more attempts, failing request", 6);
    row("a wish to retry", 16, 16, "no more attempts, failing request", 6);
    row("a lost state", 132, 132, "no more attempts, failing request", 6);
    row("a server error that does not pass", 111, 111, "no more attempts, failing request", 6);
    row("a device that is not known", 108, 108, "no more attempts, failing request", 6);
}

FENNEL_REGISTER_TEST(FirstSyncStatusTest)
#include "firstsyncstatustest.moc"
