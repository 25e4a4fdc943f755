// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/soak.h"
#include "support/testmain.h"

using Simulator::Override;
using namespace StatusScene;

/** @short A reply that is cut anywhere loses nothing and doubles nothing. */
class CutReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theReplyIsCutEverywhere_data();
    void theReplyIsCutEverywhere();
    void theLineDrops_data();
    void theLineDrops();

private:
    static void changeBothSides(SyncTestBed &bed, int round);
};

void CutReplyTest::theReplyIsCutEverywhere_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("cuts");
    QTest::newRow("of the folders") << QStringLiteral("FolderSync") << Soak::samples(12, 100);
    QTest::newRow("of the mail") << QStringLiteral("Sync") << Soak::samples(40, 300);
    QTest::newRow("of a move") << QStringLiteral("MoveItems") << Soak::samples(12, 100);
}

/** Something new, read, removed and moved on one side or the other, and a new folder. */
void CutReplyTest::changeBothSides(SyncTestBed &bed, int round)
{
    const QString inbox = bed.mailbox().inboxId();
    for (const char *subject : { "marked", "moved", "removed" })
        bed.mailbox().deliver(
            inbox, SyncTestBed::message(QStringLiteral("%1 %2").arg(QLatin1String(subject)).arg(round)));
    QCOMPARE(bed.sync(), 0);
    const auto named = [round](const char *subject) {
        return QStringLiteral("%1 %2").arg(QLatin1String(subject)).arg(round).toLatin1();
    };
    QVERIFY(markRead(bed, named("marked").constData()));
    moveOnDevice(bed, named("moved").constData(), QStringLiteral("Archive"));
    QVERIFY(removeOnDevice(bed, named("removed").constData()));
    bed.mailbox().addFolder(QStringLiteral("Folder %1").arg(round));
    bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("arrived %1").arg(round)));
}

void CutReplyTest::theReplyIsCutEverywhere()
{
    QFETCH(QString, command);
    QFETCH(int, cuts);
    SyncTestBed bed;
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    QCOMPARE(bed.sync(), 0);
    changeBothSides(bed, 0);
    bed.server().clearRequests();
    QCOMPARE(bed.sync(), 0);
    const int length = bed.server().requests(command).first().replyBody.size();
    QVERIFY(length > 0);

    for (int cut = 1; cut <= cuts; ++cut) {
        const int position = length * cut / (cuts + 1);
        changeBothSides(bed, cut);
        bed.server().overrideNext(command, Override().truncateAt(position));
        bed.sync();
        QVERIFY2(nextSyncRepairs(bed), qPrintable(QStringLiteral("cut at %1").arg(position)));
        // One message a round was removed, three stay.
        QCOMPARE(bed.deviceState().size(), 3 * (cut + 1));
    }
    QCOMPARE(bed.server().failures(), QStringList());
}

void CutReplyTest::theLineDrops_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("fault");
    for (const char *command : { "OPTIONS", "FolderSync", "Sync", "MoveItems", "Provision" }) {
        QTest::addRow("%s: before the body", command) << QString::fromLatin1(command) << 0;
        QTest::addRow("%s: before the first byte", command) << QString::fromLatin1(command) << 1;
        QTest::addRow("%s: the body is no document", command) << QString::fromLatin1(command) << 2;
        // OPTIONS is answered by headers alone.
        if (qstrcmp(command, "OPTIONS") == 0)
            continue;
        QTest::addRow("%s: the length is too small", command) << QString::fromLatin1(command) << 3;
        QTest::addRow("%s: the length is too large", command) << QString::fromLatin1(command) << 4;
    }
}

void CutReplyTest::theLineDrops()
{
    QFETCH(QString, command);
    QFETCH(int, fault);
    const Override faults[] = { Override::drop(), Override::dropSilently(),
        Override::bytes(QByteArray("\x03\x01\x6a\x00\x45\xff\xff", 7), "application/vnd.ms-sync.wbxml"),
        Override().falseLength(10), Override().falseLength(1000000) };
    SyncTestBed bed;
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    QCOMPARE(bed.sync(), 0);
    changeBothSides(bed, 1);
    if (command == QLatin1String("Provision"))
        bed.server().changePolicies(
            [](Simulator::ServerPolicies &all) { all.setPolicies({ Simulator::Policy::allowing() }); });
    bed.restartEngine();
    bed.server().overrideNext(command, faults[fault], fault == 1 ? 4 : 1);
    const int end = bed.sync();
    // A body that is whole may be taken for what it is before the line drops.
    const bool mayPass = fault == 4 || command == QLatin1String("OPTIONS");
    QVERIFY2(end != 0 || mayPass, qPrintable(QString::number(end)));
    QVERIFY(nextSyncRepairs(bed));
    QCOMPARE(bed.deviceState().size(), 3);
}

FENNEL_REGISTER_TEST(CutReplyTest)
#include "cutreplytest.moc"
