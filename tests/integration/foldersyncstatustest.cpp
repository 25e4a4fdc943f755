// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"

using Simulator::Override;
using namespace StatusScene;

namespace {

/** Another value of a variable while it lives. */
class EnvironmentVariable
{
public:
    EnvironmentVariable(const char *name, const QByteArray &value)
        : mName(name)
        , mBefore(qgetenv(name))
    {
        qputenv(mName, value);
    }
    ~EnvironmentVariable() { qputenv(mName, mBefore); }
    Q_DISABLE_COPY(EnvironmentVariable)

private:
    const char *mName;
    const QByteArray mBefore;
};

} // namespace

/** @short What each status of a FolderSync leads to, within a sync and as a request of its own. */
class FolderSyncStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSyncIsAnsweredOnceWith_data();
    void aSyncIsAnsweredOnceWith() { answer(Once, false); }
    void aSyncIsAnsweredForEverWith_data();
    void aSyncIsAnsweredForEverWith() { answer(ForEver, false); }
    void aRequestForFoldersIsAnsweredOnceWith_data();
    void aRequestForFoldersIsAnsweredOnceWith() { answer(Once, true); }
    void aRequestForFoldersIsAnsweredForEverWith_data();
    void aRequestForFoldersIsAnsweredForEverWith() { answer(ForEver, true); }
    void aFirstSyncIsAnsweredForEverWith_data();
    void aFirstSyncIsAnsweredForEverWith();
    void aDeviceThatIsNotKnownComesUnderANewIdentifier_data();
    void aDeviceThatIsNotKnownComesUnderANewIdentifier();
    void theVeryFirstFolderSyncSendsTheInitialKey();
    void aRequestForFoldersWithALostKeyBringsAFullSync();
    void aRequestForFoldersThatTookLongDoesNotCancelItself();
    void anEmptyReplyToTheFirstFolderSyncIsCounted_data();
    void anEmptyReplyToTheFirstFolderSyncIsCounted();
    void anEmptyReplyToALaterFolderSyncKeepsTheKey_data();
    void anEmptyReplyToALaterFolderSyncKeepsTheKey();
    void aFolderThatIsToldTwiceIsOne();

private:
    static void requestKinds();
    static void commonRows(const char *unhandled);
    static void answer(int times, bool foldersOnly);
};

void FolderSyncStatusTest::requestKinds()
{
    QTest::addColumn<bool>("foldersOnly");
    QTest::newRow("in a sync") << false;
    QTest::newRow("in a request for the folders") << true;
}

void FolderSyncStatusTest::commonRows(const char *unhandled)
{
    const char *noRetry = "server error. We shouldn't retry later. Completing request";
    row("a server error, and it is repeated", 6, 0, "timer interval:", 2);
    row("an unknown error, and it is repeated", 11, 0, "timer interval:", 2);
    row("a problem of its back-end, and it ends", 12, 12, "Unusual back-end issue on the server.", 1);
    row("a status without a rule, and it ends", 8, 8, unhandled, 1);
    row("identifiers that are not valid, and it ends", 106, 106, noRetry, 1);
    row("a common server error, and it ends", 110, 110, noRetry, 1);
    row("a device identifier that is not valid, and it is made anew", 108, 0,
        "invalid Device ID or Type. Trying to update Device information", 2);
    row("a device type that is not valid, and it is made anew", 109, 0,
        "invalid Device ID or Type. Trying to update Device information", 2);
    row("a server error that passes, and it is repeated", 111, 0,
        "we should try to send command again later. Timeout (in mseconds):", 2);
    row("a device that cannot be provisioned, and it ends", 139, 139,
        "Device is not fully Provisionable for account", 1);
    row("a wish to wipe, which nobody ordered, and it is repeated", 140, 0,
        "remote wipe is requested for account", 2);
    row("a wish for a policy key, and it is repeated with one", 141, 0,
        "server requires policy key to be submitted for", 2);
    row("a policy, of which there is none, and it is repeated", 142, 0,
        "Provision Policy is in place for account", 2);
    row("a new policy, of which there is none, and it is repeated", 143, 0,
        "Policy refresh requested for account", 2);
    row("a policy key that is not valid, and it is repeated", 144, 0, "Invalid policy key for account", 2);
    row("managed devices that are not allowed, and it is repeated", 145, 0,
        "Exterally managed devices are not allowed for account", 2);
}

void FolderSyncStatusTest::answer(int times, bool foldersOnly)
{
    QFETCH(int, code);
    QFETCH(int, end);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.mailbox().addFolder(QStringLiteral("Appeared"));
    endsAsTheRowSays(bed, "FolderSync", Override::topStatus(code), times,
        [&] { return foldersOnly ? bed.foldersSync() : bed.sync(); });
    if (end == 0)
        QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QVERIFY(nextSyncRepairs(bed));
}

void FolderSyncStatusTest::aSyncIsAnsweredOnceWith_data()
{
    columns();
    commonRows("unhandled status");
    row("a wrong key, and the account starts again", 9, 0, "Wrong sync key, resyncing account", 3);
    row("a wrong request, and it ends", 10, -2,
        "incorrect FolderSync request. Something wrong with the encoder", 1);
    row("an exceeded quota, and it ends", 115, -10,
        "The message is too large or the mailbox is over-quota:", 1);
    row("an attachment that is too large, and it ends", 122, -10,
        "The message is too large or the mailbox is over-quota:", 1);
}

void FolderSyncStatusTest::aSyncIsAnsweredForEverWith_data()
{
    columns();
    row("a server error, and the account starts again next time", 6, 6, "no more attempts, failing request",
        6);
    row("an unknown error, and the account starts again next time", 11, 11,
        "no more attempts, failing request", 6);
    row("a wrong key", 9, 9, "no more attempts, failing request", 7);
    row("a server error that does not pass", 111, 111, "no more attempts, failing request", 6);
    row("a device that is not known", 108, 108, "no more attempts, failing request", 6);
}

void FolderSyncStatusTest::aRequestForFoldersIsAnsweredOnceWith_data()
{
    columns();
    commonRows("Unhandled status: ");
    row("a wrong request, and it ends", 10, 10,
        "incorrect FolderSync request. Something wrong with the encoder", 1);
}

void FolderSyncStatusTest::aRequestForFoldersIsAnsweredForEverWith_data()
{
    columns();
    row("a server error, and the account starts again next time", 6, 6, "timer interval:", 6);
    row("an unknown error, and the account starts again next time", 11, 11, "timer interval:", 6);
    row("a wrong key", 9, 9, "wrong sync key, resyncing account", 7);
    row("a server error that does not pass", 111, 111, "timer interval:", 6);
    row("a device that is not known", 109, 109, "timer interval:", 6);
}

void FolderSyncStatusTest::aFirstSyncIsAnsweredForEverWith_data()
{
    columns();
    row("a server error", 6, 6, "no more attempts, failing request", 6);
    row("a wrong key", 9, 9, "no more attempts, failing request", 6);
}

void FolderSyncStatusTest::aFirstSyncIsAnsweredForEverWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    endsAsTheRowSays(bed, "FolderSync", Override::topStatus(code), ForEver, [&bed] { return bed.sync(); });
    QVERIFY(nextSyncRepairs(bed));
}

void FolderSyncStatusTest::aDeviceThatIsNotKnownComesUnderANewIdentifier_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("the identifier is not valid") << 108;
    QTest::newRow("the type is not valid") << 109;
}

void FolderSyncStatusTest::aDeviceThatIsNotKnownComesUnderANewIdentifier()
{
    QFETCH(int, status);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    // The platform tells another number by now; the identifier is computed once until a server refuses it.
    const EnvironmentVariable uid("PLATFORM_DEVICE_UID", "35" + QByteArray::number(status));
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::topStatus(status));
    QCOMPARE(bed.sync(), 0);
    const auto deviceIds = [&bed] {
        QStringList ids;
        for (const auto &request : bed.server().requests())
            ids.append(request.deviceId);
        ids.removeDuplicates();
        ids.removeAll(QString()); // OPTIONS
        return ids;
    };
    const QStringList before = deviceIds();
    QCOMPARE(before.size(), 2);
    for (const QString &id : before)
        QVERIFY2(!id.isEmpty() && id.size() <= 32, qPrintable(id));
    // It stays the new one from there on.
    bed.server().clearRequests();
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(deviceIds(), QStringList(before.last()));
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FolderSyncStatusTest::theVeryFirstFolderSyncSendsTheInitialKey()
{
    SyncTestBed bed;
    QCOMPARE(bed.sync(), 0);
    const auto requests = bed.server().requests(QStringLiteral("FolderSync"));
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.first().document.text(QStringLiteral("SyncKey")), QStringLiteral("0"));
    QVERIFY(requests.last().document.text(QStringLiteral("SyncKey")) != QLatin1String("0"));
}

void FolderSyncStatusTest::aRequestForFoldersWithALostKeyBringsAFullSync()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::topStatus(9));
    const qulonglong id = bed.startFoldersSync();
    QCOMPARE(bed.waitFor(id), 0);
    // The sync that follows has the same identifier, and an end of its own.
    QTRY_COMPARE_WITH_TIMEOUT(bed.finishedCount(id), 2, 20000);
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), 2);
}

void FolderSyncStatusTest::aRequestForFoldersThatTookLongDoesNotCancelItself()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::topStatus(9));
    const LogCollector log;
    const qulonglong id = bed.startFoldersSync();
    bed.clock().advance(300002);
    QCOMPARE(bed.waitFor(id), 0);
    QTRY_COMPARE_WITH_TIMEOUT(bed.finishedCount(id), 2, 20000);
    QVERIFY(!log.contains(QStringLiteral("is still active. Trying to force request cancellation")));
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FolderSyncStatusTest::anEmptyReplyToTheFirstFolderSyncIsCounted_data()
{
    requestKinds();
}

void FolderSyncStatusTest::anEmptyReplyToTheFirstFolderSyncIsCounted()
{
    QFETCH(bool, foldersOnly);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.server().overrideAll(QStringLiteral("FolderSync"), Override::empty());
    QCOMPARE(foldersOnly ? bed.foldersSync() : bed.sync(), -2);
    QCOMPARE(count(bed, "FolderSync"), 6);
    QVERIFY(nextSyncRepairs(bed));
}

void FolderSyncStatusTest::anEmptyReplyToALaterFolderSyncKeepsTheKey_data()
{
    requestKinds();
}

void FolderSyncStatusTest::anEmptyReplyToALaterFolderSyncKeepsTheKey()
{
    QFETCH(bool, foldersOnly);
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::empty());
    QCOMPARE(foldersOnly ? bed.foldersSync() : bed.sync(), 0);
    QCOMPARE(bed.foldersSync(), 0);
    const auto requests = bed.server().requests(QStringLiteral("FolderSync"));
    QCOMPARE(requests.size(), 2);
    const QString key = requests.first().document.text(QStringLiteral("SyncKey"));
    QVERIFY(!key.isEmpty() && key != QLatin1String("0"));
    QCOMPARE(requests.last().document.text(QStringLiteral("SyncKey")), key);
    QVERIFY(nextSyncRepairs(bed));
}

void FolderSyncStatusTest::aFolderThatIsToldTwiceIsOne()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.mailbox().addFolder(QStringLiteral("Appeared"));
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::edited([](Simulator::WbxmlNode &reply) {
        Simulator::WbxmlNode &changes = *reply.find(QStringLiteral("Changes"));
        Simulator::WbxmlNode again = changes.at(QStringLiteral("Add"));
        changes.append(again);
        again.removeAll(QStringLiteral("ServerId"));
        changes.append(again);
    }));
    const LogCollector log;
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(log.count(QStringLiteral("added folder without a name of its own, leaving it out:")), 2);
    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QVERIFY(nextSyncRepairs(bed));
}

FENNEL_REGISTER_TEST(FolderSyncStatusTest)
#include "foldersyncstatustest.moc"
