// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/fetchscene.h"
#include "support/testmain.h"

using Simulator::Override;
using namespace StatusScene;
using namespace FetchScene;

namespace {

constexpr char NoRetry[] = "server error. We shouldn't retry later. Completing request";
constexpr char RetryLater[] = "we should try to send command again later. Timeout (in mseconds):";

} // namespace

/** @short What each status of a fetch leads to, of a file, of a later range of it and of whole messages. */
class FetchStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileIsAnsweredOnceWith_data() { statusRows(); }
    void aFileIsAnsweredOnceWith();
    void aSecondRangeIsAnsweredOnceWith_data() { statusRows(); }
    void aSecondRangeIsAnsweredOnceWith();
    void messagesAreAnsweredOnceWith_data() { statusRows(); }
    void messagesAreAnsweredOnceWith();
    void aServerThatNeverHasTimeEndsIt_data() { kinds(); }
    void aServerThatNeverHasTimeEndsIt();
    void aReplyThatIsNoneEndsIt_data() { kinds(); }
    void aReplyThatIsNoneEndsIt();
    void aSuccessWithoutAFileIsAFailure();
    void aFileThatIsRefusedEndsItWithThatStatus();
    void aFileThatTheServerHasNoMoreIsNotStored();
    void aMessageThatIsRefusedEndsItWithThatStatus();
    void aRefusedMessageDoesNotHoldUpTheOthers();
    void aBodyThatIsCutShortIsAFailureAndNotStored_data() { kinds(); }
    void aBodyThatIsCutShortIsAFailureAndNotStored();
    void anAnswerAboutAnotherMessageIsNone_data();
    void anAnswerAboutAnotherMessageIsNone();

private:
    static void kinds();
    static void statusRows();
};

void FetchStatusTest::kinds()
{
    QTest::addColumn<bool>("whole");
    QTest::newRow("of a file") << false;
    QTest::newRow("of a message") << true;
}

void FetchStatusTest::statusRows()
{
    columns();
    row("identifiers that are not valid, and it ends", 106, 106, NoRetry, 1);
    row("a server error, and it ends", 110, 110, NoRetry, 1);
    row("a server error that passes, and it is repeated", 111, 0, RetryLater, 2);
    row("a wish for a policy key, and it is repeated with one", 141, 0,
        "server requires policy key to be submitted for", 2);
    row("a policy, of which there is none, and it is repeated", 142, 0,
        "Provision Policy is in place for account", 2);
    row("a status without a rule, and it ends", 14, 14, "unhandled status", 1);
}

void FetchStatusTest::aFileIsAnsweredOnceWith()
{
    QFETCH(int, code);
    QFETCH(int, end);
    SyncTestBed bed;
    const QByteArray file = bytesOf(1000);
    const qulonglong message = receives(bed, { file });
    QVERIFY(message != 0);
    endsAsTheRowSays(bed, "ItemOperations", Override::topStatus(code), Once,
        [&] { return bed.downloadPart(message, fileLocation(0)); });
    QCOMPARE(hasFile(message, 0), end == 0);

    // What failed can be asked for again.
    if (end != 0)
        QCOMPARE(bed.downloadPart(message, fileLocation(0)), 0);
    QCOMPARE(fileOnDevice(message, 0), file);
}

void FetchStatusTest::aSecondRangeIsAnsweredOnceWith()
{
    QFETCH(int, code);
    QFETCH(int, end);
    QFETCH(QString, text);
    QFETCH(int, requests);
    SyncTestBed bed;
    const QByteArray file = bytesOf(RangeSize + 1000);
    const qulonglong message = receives(bed, { file });
    QVERIFY(message != 0);
    bed.server().overrideNext(fetchCommand(), Override());
    bed.server().overrideNext(fetchCommand(), Override::topStatus(code));
    {
        const LogCollector log;
        QCOMPARE(bed.downloadPart(message, fileLocation(0)), end);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
    }
    // The first range is asked for once, whatever becomes of the second.
    QCOMPARE(count(bed, "ItemOperations"), requests + 1);
    QCOMPARE(ranges(bed).count(QStringLiteral("0-65535")), 1);
    // A part of a file is never stored.
    QCOMPARE(hasFile(message, 0), end == 0);

    if (end != 0)
        QCOMPARE(bed.downloadPart(message, fileLocation(0)), 0);
    QCOMPARE(fileOnDevice(message, 0), file);
}

void FetchStatusTest::messagesAreAnsweredOnceWith()
{
    QFETCH(int, code);
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    QVERIFY(message != 0);
    const QStringList before = bed.deviceState();
    endsAsTheRowSays(bed, "ItemOperations", Override::topStatus(code), Once,
        [&] { return bed.downloadMessages({ message }, false); });
    QCOMPARE(bed.deviceState(), before);
    QVERIFY(nextSyncRepairs(bed));
    QCOMPARE(bed.downloadMessages({ message }, false), 0);
}

void FetchStatusTest::aServerThatNeverHasTimeEndsIt()
{
    QFETCH(bool, whole);
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    bed.server().overrideAll(fetchCommand(), Override::topStatus(111));
    const LogCollector log;
    QCOMPARE(
        whole ? bed.downloadMessages({ message }, true) : bed.downloadPart(message, fileLocation(0)), 111);
    QVERIFY(log.contains(QStringLiteral("no more attempts, failing request")));
    QCOMPARE(count(bed, "ItemOperations"), 6);
    QVERIFY(!hasFile(message, 0));
}

void FetchStatusTest::aReplyThatIsNoneEndsIt()
{
    QFETCH(bool, whole);
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    const QByteArray wbxml = "application/vnd.ms-sync.wbxml";
    bed.server().overrideNext(fetchCommand(), Override::bytes("\x03\x01\x6a\x00\xff\xff", wbxml));
    QCOMPARE(
        whole ? bed.downloadMessages({ message }, true) : bed.downloadPart(message, fileLocation(0)), -2);
    QCOMPARE(count(bed, "ItemOperations"), 1);
    QVERIFY(!hasFile(message, 0));
}

void FetchStatusTest::aSuccessWithoutAFileIsAFailure()
{
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    bed.server().overrideNext(fetchCommand(), Override::topStatus(1));
    const LogCollector log;
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), -2);
    QVERIFY(log.contains(QStringLiteral("The part of data was not received")));
    QVERIFY(!hasFile(message, 0));
}

void FetchStatusTest::aFileThatIsRefusedEndsItWithThatStatus()
{
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    bed.server().overrideNext(fetchCommand(), Override::document(singleForm(message, QByteArray(), 1, 15)));
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), 15);
    QVERIFY(!hasFile(message, 0));
}

void FetchStatusTest::aFileThatTheServerHasNoMoreIsNotStored()
{
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    bed.server().overrideNext(fetchCommand(), Override::itemStatus(15));
    const LogCollector log;
    // A reply in parts without the part of the file does not say more than that.
    QCOMPARE(bed.downloadPart(message, fileLocation(0)), -2);
    QVERIFY(log.contains(QStringLiteral("The parts should be in pairs:")));
    QVERIFY(!hasFile(message, 0));
}

void FetchStatusTest::aMessageThatIsRefusedEndsItWithThatStatus()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("plain")));
    const qulonglong message = receives(bed, { bytesOf(1000) });
    const qulonglong plain = bed.deviceMessage(QStringLiteral("plain")).toULongLong();
    const QStringList before = bed.deviceState();
    bed.server().overrideNext(fetchCommand(), Override::itemStatus(6));

    QCOMPARE(bed.downloadMessages({ message, plain }, true), 6);

    // The files of what was refused are not asked for either.
    QCOMPARE(count(bed, "ItemOperations"), 1);
    QCOMPARE(bed.deviceState(), before);
    QVERIFY(!hasFile(message, 0));
}

void FetchStatusTest::aRefusedMessageDoesNotHoldUpTheOthers()
{
    SyncTestBed bed;
    const QString archive = bed.mailbox().addFolder(QStringLiteral("Archive"));
    bed.mailbox().deliver(archive, messageWith({ bytesOf(300, 3) }, "archived"));
    const QString refused =
        bed.mailbox().deliver(bed.mailbox().inboxId(), messageWith({ bytesOf(400, 4) }, "refused"));
    const QByteArray file = bytesOf(1000);
    const qulonglong message = receives(bed, { file });
    const auto onDevice = [&bed](const char *subject) {
        return bed.deviceMessage(QString::fromLatin1(subject)).toULongLong();
    };
    bed.server().overrideNext(fetchCommand(), Override::itemStatus(6, refused));

    QCOMPARE(bed.downloadMessages({ onDevice("refused"), message, onDevice("archived") }, true), 6);

    QVERIFY(!hasFile(onDevice("refused"), 0));
    QCOMPARE(fileOnDevice(message, 0), file);
    QCOMPARE(fileOnDevice(onDevice("archived"), 0), bytesOf(300, 3));
}

void FetchStatusTest::aBodyThatIsCutShortIsAFailureAndNotStored()
{
    QFETCH(bool, whole);
    SyncTestBed bed;
    const qulonglong message = receives(bed, { bytesOf(1000) });
    // The body has not come yet.
    QMailMessage stored { QMailMessageId(message) };
    stored.setStatus(QMailMessage::ContentAvailable, false);
    QVERIFY(QMailStore::instance()->updateMessage(&stored));
    const QByteArray body = devicePart(message, bodyLocation()).body().data(QMailMessageBody::Decoded);
    bed.server().overrideNext(fetchCommand(), Override::edited([](Simulator::WbxmlNode &reply) {
        Simulator::WbxmlNode *const data =
            reply.find(QStringLiteral("Response/Fetch/Properties/AirSyncBase:Body"));
        data->find(QStringLiteral("Data"))->setText(QStringLiteral("the begin"));
        data->append(QStringLiteral("Truncated"), 1);
    }));
    const LogCollector log;
    QCOMPARE(
        whole ? bed.downloadMessages({ message }, false) : bed.downloadPart(message, bodyLocation()), -2);
    QVERIFY(log.contains(QStringLiteral("the server has sent only a part of the body of message")));
    QCOMPARE(devicePart(message, bodyLocation()).body().data(QMailMessageBody::Decoded), body);
}

void FetchStatusTest::anAnswerAboutAnotherMessageIsNone_data()
{
    QTest::addColumn<bool>("whole");
    QTest::newRow("for a whole message") << true;
    QTest::newRow("for a body") << false;
}

void FetchStatusTest::anAnswerAboutAnotherMessageIsNone()
{
    QFETCH(bool, whole);
    SyncTestBed bed;
    const QString other =
        bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("other")));
    const qulonglong message = receives(bed, { bytesOf(1000) });
    const QByteArray body = devicePart(message, bodyLocation()).body().data(QMailMessageBody::Decoded);
    bed.server().overrideNext(fetchCommand(), Override::edited([&other](Simulator::WbxmlNode &reply) {
        Simulator::WbxmlNode *const fetch = reply.find(QStringLiteral("Response/Fetch"));
        fetch->find(QStringLiteral("AirSync:ServerId"))->setText(other);
        fetch->find(QStringLiteral("Properties/AirSyncBase:Body/Data"))->setText(QStringLiteral("not yours"));
    }));

    QCOMPARE(whole ? bed.downloadMessages({ message }, true) : bed.downloadPart(message, bodyLocation()), -2);

    QCOMPARE(count(bed, "ItemOperations"), 1);
    QCOMPARE(devicePart(message, bodyLocation()).body().data(QMailMessageBody::Decoded), body);
    QVERIFY(!hasFile(message, 0));
}

FENNEL_REGISTER_TEST(FetchStatusTest)
#include "fetchstatustest.moc"
