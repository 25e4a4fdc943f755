// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "integration/fetchscene.h"
#include "support/testmain.h"

#include <QSignalSpy>

using Simulator::Override;
using Simulator::WbxmlNode;
using namespace StatusScene;
using namespace FetchScene;

/** @short Files and bodies arrive as the server has them, in as many rounds as they need. */
class FetchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileTakesAsManyRangesAsItNeeds_data();
    void aFileTakesAsManyRangesAsItNeeds();
    void aReplyInTheSingleFormIsTaken_data();
    void aReplyInTheSingleFormIsTaken();
    void aBodyIsFetchedWithItsMessage();
    void aPlaceThatIsNoneSendsNothing_data();
    void aPlaceThatIsNoneSendsNothing();
    void aFileThatIsHereIsNotFetchedAgain();
    void messagesWithoutTheirFilesEndAfterTheMessages();
    void filesOfAllMessagesArrive();
    void smallFilesOfAMessageAreWrittenTogether();
    void aMessageWithoutFilesHasNothingElse();
};

void FetchTest::aFileTakesAsManyRangesAsItNeeds_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QStringList>("wanted");
    QTest::newRow("no byte") << 0 << QStringList { QString() };
    QTest::newRow("one byte") << 1 << QStringList { QStringLiteral("0-65535") };
    QTest::newRow("one range to the byte") << RangeSize << QStringList { QStringLiteral("0-65535") };
    QTest::newRow("one byte more") << RangeSize
            + 1 << QStringList { QStringLiteral("0-65535"), QStringLiteral("65536-65536") };
    QTest::newRow("three ranges") << 2 * RangeSize + 100
                                  << QStringList { QStringLiteral("0-65535"), QStringLiteral("65536-131071"),
                                         QStringLiteral("131072-131171") };
}

void FetchTest::aFileTakesAsManyRangesAsItNeeds()
{
    QFETCH(int, size);
    QFETCH(QStringList, wanted);
    SyncTestBed bed;
    const QByteArray file = bytesOf(size);
    const qulonglong message = receives(bed, { file });
    QSignalSpy progress(RequestManager::instance(), &RequestManager::requestProgress);

    QCOMPARE(bed.downloadPart(message, fileLocation(0)), 0);

    QCOMPARE(ranges(bed), wanted);
    QCOMPARE(fileOnDevice(message, 0), file);
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), -2); // nothing is left to fetch
    if (size == 0)
        return;
    QCOMPARE(progress.size(), wanted.size());
    for (int i = 0; i < progress.size(); ++i) {
        QCOMPARE(progress.at(i).at(2).toLongLong(), qlonglong(size));
        QCOMPARE(progress.at(i).at(3).toLongLong(), qlonglong(qMin((i + 1) * RangeSize, size)));
    }
}

void FetchTest::aReplyInTheSingleFormIsTaken_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("with the status of success") << 1;
    QTest::newRow("with no status") << 0;
}

void FetchTest::aReplyInTheSingleFormIsTaken()
{
    QFETCH(int, status);
    SyncTestBed bed;
    const QByteArray file = bytesOf(1000);
    const qulonglong message = receives(bed, { file });
    bed.server().overrideNext(fetchCommand(), Override::document(singleForm(message, file, status)));

    QCOMPARE(bed.downloadPart(message, fileLocation(0)), 0);

    QCOMPARE(count(bed, "ItemOperations"), 1);
    QCOMPARE(fileOnDevice(message, 0), file);
    QCOMPARE(devicePart(message, fileLocation(0)).contentType().content(), QByteArray("application/zip"));
}

void FetchTest::aBodyIsFetchedWithItsMessage()
{
    SyncTestBed bed;
    const QByteArray file = bytesOf(1000);
    const qulonglong message = receives(bed, { file });
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), 0);
    bed.server().clearRequests();
    const QString dataPath = QStringLiteral("Response/Fetch/Properties/AirSyncBase:Body/AirSyncBase:Data");
    bed.server().overrideNext(fetchCommand(), Override::edited([&dataPath](WbxmlNode &reply) {
        reply.find(dataPath)->setText(QStringLiteral("whole body"));
    }));

    QCOMPARE(bed.downloadPart(message, bodyLocation()), 0);

    const auto requests = bed.server().requests(fetchCommand());
    QCOMPARE(requests.size(), 1);
    const WbxmlNode fetch = requests.first().document.at(QStringLiteral("Fetch"));
    QVERIFY(fetch.has(QStringLiteral("AirSync:ServerId")));
    QVERIFY(!fetch.has(QStringLiteral("AirSyncBase:FileReference")));
    QVERIFY(!fetch.has(QStringLiteral("Options/Range")));
    QCOMPARE(devicePart(message, bodyLocation()).body().data(QMailMessageBody::Decoded).trimmed(),
        QByteArray("whole body"));
    // What else the message holds stays.
    QCOMPARE(fileOnDevice(message, 0), file);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FetchTest::aPlaceThatIsNoneSendsNothing_data()
{
    QTest::addColumn<QString>("location");
    QTest::newRow("behind the last") << QStringLiteral("9");
    QTest::newRow("below a file") << QStringLiteral("2.1");
    QTest::newRow("before the first") << QStringLiteral("0");
    QTest::newRow("no number") << QStringLiteral("second");
    QTest::newRow("empty") << QString();
}

void FetchTest::aPlaceThatIsNoneSendsNothing()
{
    QFETCH(QString, location);
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    const LogCollector log;
    QCOMPARE(bed.downloadPart(message, location), -2);
    QVERIFY(log.contains(QStringLiteral("Undefined type of part")));
    QCOMPARE(count(bed, "ItemOperations"), 0);
}

void FetchTest::aFileThatIsHereIsNotFetchedAgain()
{
    SyncTestBed bed;
    const QByteArray file = bytesOf(1000);
    const qulonglong message = receives(bed, { file });
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), 0);
    bed.server().clearRequests();
    const LogCollector log;
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), -2);
    QVERIFY(log.contains(QStringLiteral("file reference is empty for message")));
    QCOMPARE(count(bed, "ItemOperations"), 0);
    QCOMPARE(fileOnDevice(message, 0), file);
}

void FetchTest::messagesWithoutTheirFilesEndAfterTheMessages()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("plain")));
    const qulonglong message = receives(bed, { bytesOf(1000) });
    const qulonglong plain = bed.deviceMessage(QStringLiteral("plain")).toULongLong();
    const LogCollector log;
    QCOMPARE(bed.downloadMessages({ message, plain }, false), 0);
    QVERIFY(log.contains(QStringLiteral("Nothing more to download, completing FetchMessagesRequest")));
    const auto requests = bed.server().requests(fetchCommand());
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().document.all(QStringLiteral("Fetch")).size(), 2);
    QVERIFY(!hasFile(message, 0));
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FetchTest::filesOfAllMessagesArrive()
{
    SyncTestBed bed;
    const QList<QByteArray> files { bytesOf(70000, 1), bytesOf(500, 2) };
    const QByteArray other = bytesOf(300, 3);
    bed.mailbox().deliver(bed.mailbox().inboxId(), messageWith({ other }, "other"));
    const qulonglong message = receives(bed, files);
    const qulonglong otherMessage = bed.deviceMessage(QStringLiteral("other")).toULongLong();

    QCOMPARE(bed.downloadMessages({ message, otherMessage }, true), 0);

    QCOMPARE(fileOnDevice(message, 0), files.at(0));
    QCOMPARE(fileOnDevice(message, 1), files.at(1));
    QCOMPARE(fileOnDevice(otherMessage, 0), other);
    // The messages, two ranges of the first file and one of each of the others.
    QCOMPARE(count(bed, "ItemOperations"), 5);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FetchTest::smallFilesOfAMessageAreWrittenTogether()
{
    SyncTestBed bed;
    const QList<QByteArray> files { bytesOf(700, 1), bytesOf(500, 2), bytesOf(300, 3) };
    const qulonglong message = receives(bed, files);
    int writes = 0;
    QObject listener;
    QObject::connect(QMailStore::instance(), &QMailStore::messageContentsModified, &listener,
        [&writes, message](const QMailMessageIdList &ids) {
            for (const QMailMessageId &id : ids)
                writes += id.toULongLong() == message ? 1 : 0;
        });
    QCOMPARE(bed.downloadMessages({ message }, true), 0);
    for (int i = 0; i < files.size(); ++i)
        QCOMPARE(fileOnDevice(message, i), files.at(i));
    // What the message says of its files, the body, and all files at once.
    QCOMPARE(writes, 3);
}

void FetchTest::aMessageWithoutFilesHasNothingElse()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("plain")));
    QCOMPARE(bed.sync(), 0);
    const LogCollector log;
    QCOMPARE(bed.downloadMessages({ bed.deviceMessage(QStringLiteral("plain")).toULongLong() }, true), 0);
    QVERIFY(log.contains(QStringLiteral("Nothing else to download. Completing the FetchMessagesRequest")));
    QCOMPARE(count(bed, "ItemOperations"), 1);
}

FENNEL_REGISTER_TEST(FetchTest)
#include "fetchtest.moc"
