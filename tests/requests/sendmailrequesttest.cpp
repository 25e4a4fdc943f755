// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/sendmailrequest.h"

#include "application/mapping/easdatabase.h"
#include "protocol/composemailcommand.h"
#include "support/fakeconfigurations.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;
constexpr quint64 Message = 12;
const QString Id = QStringLiteral("12");
const QByteArray Mime = "Subject: whole\r\n\r\nHello\r\n";
const QByteArray SmartMime = "Subject: smart\r\n\r\nHello\r\n";

EasEmailItem item(const QByteArray &mime, bool isSmart)
{
    EasBodyContainer body;
    body.setMime(mime);
    body.setSmartMimeData(isSmart);
    EasEmailItem item;
    item.setBody(body);
    item.setCollectionId(QStringLiteral("5"));
    item.setReplyToId(QStringLiteral("5:7"));
    return item;
}

QByteArray statusReply(Token root, int status)
{
    return document(node(root, { node(ComposeMail::Status, QString::number(status)) }));
}

QString plain(bool isSaved = true)
{
    return QStringLiteral("SendMail(ClientId=%1,%2MIME=%3)")
        .arg(ComposeMailCommand::clientId(Message, Mime),
            isSaved ? QStringLiteral("SaveInSentItems,") : QString(), QString::fromLatin1(Mime));
}

QString smart(const QString &root, bool isSaved = true)
{
    return QStringLiteral("%1(ClientId=%2,%3Source(FolderId=5,ItemId=5:7),MIME=%4)")
        .arg(root, ComposeMailCommand::clientId(Message, SmartMime),
            isSaved ? QStringLiteral("SaveInSentItems,") : QString(), QString::fromLatin1(SmartMime));
}

} // namespace

/** Which command a message goes by, and what each answer makes of it. */
class SendMailRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    QSharedPointer<FakeEmailConfiguration> mEmail;

    StubMailStorage::Outgoing &outgoing() { return mBed->mail->outgoing[Id]; }

    void httpAnswer(int status)
    {
        ScriptedAnswer answer;
        answer.status = status;
        mBed->server.answer(answer);
    }

    int run()
    {
        SendMailRequest request(Account, RequestBed::Id, Message, mBed->manager);
        return RequestBed::run(request);
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList {
            QStringLiteral("SendMail"), QStringLiteral("SmartReply"), QStringLiteral("SmartForward") });
        mEmail.reset(new FakeEmailConfiguration(Account));
        mBed->account->email = mEmail;
        outgoing().whole = item(Mime, false);
        outgoing().smart = item(SmartMime, true);
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { QCOMPARE(RequestBed::end(mBed), QString()); }

    void aMessageThatWasSentLeavesTheOutbox_data()
    {
        QTest::addColumn<bool>("isSaved");
        QTest::newRow("the server keeps a copy") << true;
        QTest::newRow("the device keeps it") << false;
    }

    void aMessageThatWasSentLeavesTheOutbox()
    {
        QFETCH(bool, isSaved);
        mEmail->savesSent = isSaved;
        mBed->answer(QByteArray());
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent(), QStringList { plain(isSaved) });
        QCOMPARE(mBed->mail->removedAsSent, isSaved ? QStringList { Id } : QStringList());
        QCOMPARE(mBed->mail->keptAsSent, isSaved ? QStringList() : QStringList { Id });
    }

    void whatWasSentBeforeIsSent_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("a success that is told") << 1;
        QTest::newRow("sent before") << 118;
    }

    void whatWasSentBeforeIsSent()
    {
        QFETCH(int, status);
        mBed->answer(statusReply(ComposeMail::SendMail, status));
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->mail->removedAsSent, QStringList { Id });
    }

    void anAnswerGoesByTheSmartCommand_data()
    {
        QTest::addColumn<bool>("isReply");
        QTest::addColumn<bool>("isSaved");
        QTest::newRow("reply") << true << true;
        QTest::newRow("forward") << false << true;
        QTest::newRow("reply without a copy") << true << false;
        QTest::newRow("forward without a copy") << false << false;
    }

    void anAnswerGoesByTheSmartCommand()
    {
        QFETCH(bool, isReply);
        QFETCH(bool, isSaved);
        mEmail->savesSent = isSaved;
        outgoing().isReply = isReply;
        outgoing().isForward = !isReply;
        mBed->answer(QByteArray());
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent(),
            QStringList {
                smart(isReply ? QStringLiteral("SmartReply") : QStringLiteral("SmartForward"), isSaved) });
        QCOMPARE(isSaved ? mBed->mail->removedAsSent : mBed->mail->keptAsSent, QStringList { Id });
    }

    /** It is to stay on the server, even if the account says not to save. */
    void anAnswerWithoutASourceGoesAsAWhole()
    {
        mEmail->savesSent = false;
        outgoing().isReply = true;
        outgoing().smart = item(Mime, false);
        mBed->answer(QByteArray());
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent(), QStringList { plain(true) });
        QCOMPARE(mBed->mail->removedAsSent, QStringList { Id });
    }

    void aServerWithoutTheSmartCommandGetsTheWhole()
    {
        mBed->account->setSupportedCommands({ QStringLiteral("SendMail") });
        outgoing().isForward = true;
        mBed->answer(QByteArray());
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent(), QStringList { plain(true) });
    }

    void aServerWithoutSendMailGetsNothing()
    {
        mBed->account->setSupportedCommands({ QStringLiteral("Sync") });
        QCOMPARE(run(), -8);
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    void eachStatusHasItsEnd_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("end");
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("text");
        const auto row = [](int status, int end, QtMsgType level, const char *text) {
            QTest::newRow(qPrintable(QString::number(status)))
                << status << end << int(level) << QString::fromLatin1(text);
        };
        const char body[] = "invalid WBXML/XML. Something really wrong with a request";
        const char server[] = "server error. We shouldn't retry later. Completing request";
        row(101, 101, QtCriticalMsg, "invalid body of the request. Sent empty body?");
        row(102, 102, QtCriticalMsg, body);
        row(103, 103, QtCriticalMsg, body);
        row(106, 106, QtCriticalMsg, server);
        row(110, 110, QtCriticalMsg, server);
        row(107, 107, QtCriticalMsg, "invalid MIME. Check MIME of the request.");
        row(113, -6, QtWarningMsg, "The mailbox has reached its size quota");
        row(115, 115, QtWarningMsg, "The request would exceed the send quota.");
        row(119, 119, QtCriticalMsg, "error status 119 completing request 42");
        row(120, 120, QtCriticalMsg, "error status 120 completing request 42");
        row(166, 166, QtCriticalMsg, "error status 166 completing request 42");
    }

    void eachStatusHasItsEnd()
    {
        QFETCH(int, status);
        QFETCH(int, end);
        QFETCH(int, level);
        QFETCH(QString, text);
        LogCollector log;
        mBed->answer(statusReply(ComposeMail::SendMail, status));
        QCOMPARE(run(), end);
        QVERIFY2(log.contains(QtMsgType(level), { text }), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
        QCOMPARE(mBed->mail->drafts, status == 115 ? QStringList { Id } : QStringList());
    }

    void aFullMailboxIsToldByHttpAsWell()
    {
        LogCollector log;
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        httpAnswer(507);
        QCOMPARE(run(), -6);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("The mailbox has reached its size quota") }));
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    void aPassingErrorIsRepeated_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("text");
        const QString device =
            QStringLiteral("invalid Device ID or Type. Trying to update Device information");
        QTest::newRow("108") << 108 << int(QtCriticalMsg) << device;
        QTest::newRow("109") << 109 << int(QtCriticalMsg) << device;
        QTest::newRow("111") << 111 << int(QtInfoMsg)
                             << QStringLiteral(
                                    "we should try to send command again later. Timeout (in mseconds): 5000");
    }

    void aPassingErrorIsRepeated()
    {
        QFETCH(int, status);
        QFETCH(int, level);
        QFETCH(QString, text);
        LogCollector log;
        mBed->answer(statusReply(ComposeMail::SendMail, status));
        mBed->answer(QByteArray());
        QCOMPARE(run(), 0);
        QVERIFY(log.contains(QtMsgType(level), { text }));
        QVERIFY(log.contains(QStringLiteral("trying to send command again. Attempt:  1")));
        QCOMPARE(mBed->sent(), QStringList({ plain(), plain() }));
    }

    void theSixthRepetitionFailsTheRequest()
    {
        LogCollector log;
        for (int i = 0; i < 6; ++i)
            mBed->answer(statusReply(ComposeMail::SendMail, 111));
        QCOMPARE(run(), 111);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("no mroe attempts, failing request") }));
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    void aSourceThatIsNotFoundHasTheWholeSentAfterwards()
    {
        LogCollector log;
        outgoing().isReply = true;
        mBed->answer(statusReply(ComposeMail::SmartReply, 150));
        mBed->answer(QByteArray());
        QCOMPARE(run(), 150);
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("Smart Forward/Reply command failed due to invalid ItemId element") }));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Trying a simple SendMail command instead") }));
        QTRY_COMPARE(mBed->mail->removedAsSent, QStringList { Id });
        QCOMPARE(mBed->sent(), QStringList({ smart(QStringLiteral("SmartReply")), plain(true) }));
    }

    void whatCannotBeSentAsAWholeEitherStays()
    {
        LogCollector log;
        outgoing().isForward = true;
        mBed->answer(statusReply(ComposeMail::SmartForward, 150));
        mBed->answer(statusReply(ComposeMail::SendMail, 120));
        QCOMPARE(run(), 150);
        QTRY_VERIFY(log.contains(QStringLiteral("went to the server as a whole, status 120")));
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    void aMessageThatIsSentButStaysIsNoSuccess()
    {
        LogCollector log;
        mBed->mail->settles = false;
        mBed->answer(QByteArray());
        QCOMPARE(run(), -2);
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("12"),
                QStringLiteral("was sent, but it could not be taken out of the Outbox") }));
    }

    void whatCouldNotBeTakenOutThenIsNotSentAgain()
    {
        mBed->mail->sent.append(Id);
        QCOMPARE(run(), 0);
        QVERIFY(mBed->sent().isEmpty());
        QCOMPARE(mBed->mail->removedAsSent, QStringList { Id });
    }

    void whatSendingNeedsIsThere_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("mail store") << QStringLiteral("MailStorage is null");
        QTest::newRow("settings") << QStringLiteral("EmailConfig is null");
    }

    void whatSendingNeedsIsThere()
    {
        QFETCH(QString, text);
        LogCollector log;
        if (text.startsWith(QLatin1String("Mail")))
            mBed->account->mails.clear();
        else
            mBed->account->email.clear();
        QCOMPARE(run(), -2);
        QVERIFY(log.contains(QtCriticalMsg, { text }));
    }

    void aMessageThatIsNotThereIsNotSent()
    {
        mBed->mail->outgoing.clear();
        QCOMPARE(run(), -2);
    }

    void aCancelStopsTheSending()
    {
        mBed->answerNever();
        SendMailRequest request(Account, RequestBed::Id, Message, mBed->manager);
        connect(&mBed->server, &ScriptedServer::received, &request, [&request] { request.cancel(); });
        QCOMPARE(RequestBed::run(request), -4);
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    /** Without the daemon's service on the bus. */
    void sentItemsThatCannotBeSynchronizedChangeNothing()
    {
        LogCollector log;
        EasFolderItem sentItems;
        sentItems.setServerId(QStringLiteral("4"));
        sentItems.setLocalId(QStringLiteral("44"));
        sentItems.setType(EasFolderItem::DefaultSentItemsFolder);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { sentItems }));
        mBed->answer(QByteArray());
        QCOMPARE(run(), 0);
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Server ID:  \"4\""), QStringLiteral(", syncKey: "),
                QStringLiteral(", localId: \"44\"") }));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Sent Items are not synchronized now:") }));
        QCOMPARE(mBed->mail->removedAsSent, QStringList { Id });
    }
};

FENNEL_REGISTER_TEST(SendMailRequestTest)
#include "sendmailrequesttest.moc"
