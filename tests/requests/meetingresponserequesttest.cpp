// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/meetingresponserequest.h"

#include "application/mapping/easdatabase.h"
#include "easitems/eascalendaritem.h"
#include "easitems/easemailitem.h"
#include "support/fakeconfigurations.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

#include <memory>

using namespace Wbxml;
using ExchangeActiveSync::ProtocolVersion;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;
/** An invitation, the event of a calendar, and two messages for organizers. */
constexpr quint64 Invitation = 21;
const QString Event = QStringLiteral("event-uid");
constexpr quint64 Reply = 31;
constexpr quint64 OtherReply = 32;
/** 2024-05-01T10:00:00Z */
constexpr qint64 Instance = 1714557600;

constexpr auto Accepted = EasItemsCommon::UserResponseAccepted;
constexpr auto Declined = EasItemsCommon::UserResponseDeclined;

const QString AboutMail = QStringLiteral("CollectionId=5,RequestId=5:1");
const QString AboutEvent = QStringLiteral("CollectionId=8,RequestId=8:1");

QString asked(const QString &requests)
{
    return "MeetingResponse(" + requests + ")";
}
QString request(int response, const QString &rest)
{
    return QStringLiteral("Request(UserResponse=%1,%2)").arg(QString::number(response), rest);
}

QByteArray results(const QList<int> &statuses)
{
    QVector<WbxmlNode> nodes;
    for (const int status : statuses)
        nodes.append(node(MeetingResponse::Result,
            { node(MeetingResponse::RequestId, "5:1"),
                node(MeetingResponse::Status, QString::number(status)) }));
    return document(node(MeetingResponse::MeetingResponse, nodes));
}

QByteArray wholeStatus(int status)
{
    return document(
        node(MeetingResponse::MeetingResponse, { node(MeetingResponse::Status, QString::number(status)) }));
}

QByteArray sendStatus(int status)
{
    return document(node(ComposeMail::SendMail, { node(ComposeMail::Status, QString::number(status)) }));
}

EasEmailItem outgoing(const QByteArray &mime)
{
    EasBodyContainer body;
    body.setMime(mime);
    EasEmailItem item;
    item.setBody(body);
    return item;
}

} // namespace

/** An answer to an invitation: what the server is told, what the organizer gets, what goes from the device.
 */
class MeetingResponseRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    std::unique_ptr<MeetingResponseRequest> mRequest;

    void httpAnswer(int status)
    {
        ScriptedAnswer answer;
        answer.status = status;
        mBed->server.answer(answer);
    }
    void emptyAnswer() { mBed->answer({}); }
    int run() { return RequestBed::run(*mRequest); }

    static void addRows()
    {
        EasEmailItem mail;
        mail.setServerId(QStringLiteral("5:1"));
        mail.setCollectionId(QStringLiteral("5"));
        mail.setLocalId(QString::number(Invitation));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { mail }));
        EasCalendarItem event;
        event.setServerId(QStringLiteral("8:1"));
        event.setCollectionId(QStringLiteral("8"));
        event.setLocalId(Event);
        QVERIFY(EasDatabase::instance()->addCalendarItems(Account, { event }));
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(
            QStringList { QStringLiteral("MeetingResponse"), QStringLiteral("SendMail") });
        mBed->account->email.reset(new FakeEmailConfiguration(Account));
        mBed->mail->serverUids.insert(Invitation, QStringLiteral("5:1"));
        mBed->mail->deletesEmails = true;
        mBed->mail->outgoing[QString::number(Reply)].whole = outgoing("Subject: Accepted\r\n\r\nYes\r\n");
        mBed->mail->outgoing[QString::number(OtherReply)].whole = outgoing("Subject: No\r\n\r\nNo\r\n");
        addRows();
        mRequest = std::make_unique<MeetingResponseRequest>(Account, RequestBed::Id, mBed->manager);
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup()
    {
        mRequest.reset();
        const int unexpected = mBed->server.unexpected();
        const int unused = mBed->server.unusedAnswers();
        mBed.reset();
        QCOMPARE(unexpected, 0);
        QCOMPARE(unused, 0);
    }

    void anInvitationIsAnsweredAndGone()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().size(), 2);
        QCOMPARE(mBed->sent().first(), asked(request(1, AboutMail)));
        QVERIFY(mBed->sent().last().startsWith("SendMail(ClientId=31-"));
        QVERIFY(mBed->sent().last().contains("SaveInSentItems"));
        QCOMPARE(mBed->mail->calendarParts, QStringList({ "31: 1 to message 21" }));
        QCOMPARE(mBed->mail->removedAsSent, QStringList({ "31" }));
        QCOMPARE(mBed->mail->deleted, QList<quint64>({ Invitation }));
        QVERIFY(log.contains(QtInfoMsg, { "MeetingResponse command finished: ", "true" }));
        QVERIFY(log.contains(QtInfoMsg, { "SendMail command finished: ", "true" }));
        QVERIFY(log.contains(QtInfoMsg, { "Nothing (more) to send" }));
    }

    void anEventIsAnswered()
    {
        mRequest->appendRequestEvent(Declined, Event, 0, Reply);
        mBed->answer(results({ 1 }));
        emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().first(), asked(request(3, AboutEvent)));
        QCOMPARE(mBed->mail->calendarParts, QStringList({ "31: 3 to event-uid" }));
        QVERIFY(mBed->mail->deleted.isEmpty());
    }

    void anOccurrenceIsNamed_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("isEvent");
        QTest::addColumn<QString>("expected");
        QTest::newRow("14.0") << 0x1400 << false << AboutMail;
        QTest::newRow("14.1") << 0x1401 << false << "InstanceId=2024-05-01T10:00:00.000Z," + AboutMail;
        // As the calendar says: an occurrence that was moved has another start than it is named by.
        QTest::newRow("14.1, event") << 0x1401 << true
                                     << "InstanceId=event-uid@2024-05-01T10:00:00Z," + AboutEvent;
    }

    void anOccurrenceIsNamed()
    {
        QFETCH(int, version);
        QFETCH(bool, isEvent);
        QFETCH(QString, expected);
        mBed->account->setProtocolVersion(ProtocolVersion(version));
        if (isEvent)
            mRequest->appendRequestEvent(Accepted, Event, Instance, Reply);
        else
            mRequest->appendRequest(Accepted, Invitation, Instance, Reply);
        mBed->answer(results({ 1 }));
        emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().first(), asked(request(1, expected)));
        QCOMPARE(mBed->mail->calendarParts.size(), 1);
        QVERIFY(mBed->mail->calendarParts.first().endsWith("2024-05-01T10:00:00Z"));
    }

    void aMessageOfASearchGoesByItsLongId()
    {
        const LogCollector log;
        mBed->mail->serverUids.insert(22, QStringLiteral("long"));
        mRequest->appendRequest(Accepted, 22, 0, 0);
        mBed->answer(results({ 1 }));
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent(), QStringList({ asked(request(1, "LongId=long")) }));
        QVERIFY(log.contains(
            QtInfoMsg, { "No server ID in cache for:", "22", ", UID should be longId:", "long" }));
    }

    void withoutAReplyNothingIsSentBeyondTheAnswer()
    {
        mRequest->appendRequest(Accepted, Invitation, 0, 0);
        mBed->answer(results({ 1 }));
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent(), QStringList({ asked(request(1, AboutMail)) }));
        QCOMPARE(mBed->mail->deleted, QList<quint64>({ Invitation }));
    }

    void exactlyOneOfMailAndSendResponseGoesOut_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("hasReply");
        QTest::addColumn<QString>("comment");
        QTest::addColumn<bool>("hasProposal");
        QTest::addColumn<QString>("response");
        QTest::addColumn<bool>("isMailed");
        for (const int version : { 0x1200, 0x1201, 0x1400, 0x1401 }) {
            QTest::addRow("%x with everything", version) << version << true << "Later" << true << "" << true;
            QTest::addRow("%x with nothing", version) << version << false << "" << false << "" << false;
        }
        const QString comment = QStringLiteral("Body(Type=1,Data=Later)");
        const QString times =
            QStringLiteral("ProposedStartTime=20240502T100000Z,ProposedEndTime=20240502T110000Z");
        QTest::newRow("16.0 with everything")
            << 0x1600 << true << "Later" << true << ",SendResponse(" + comment + ")" << false;
        QTest::newRow("16.0 with a proposal") << 0x1600 << false << "" << true << ",SendResponse" << false;
        QTest::newRow("16.0 with a reply") << 0x1600 << true << "" << false << ",SendResponse" << false;
        QTest::newRow("16.0 with nothing") << 0x1600 << false << "" << false << "" << false;
        QTest::newRow("16.1 with everything")
            << 0x1601 << true << "Later" << true << ",SendResponse(" + comment + "," + times + ")" << false;
        QTest::newRow("16.1 with a proposal")
            << 0x1601 << false << "" << true << ",SendResponse(" + times + ")" << false;
        QTest::newRow("16.1 with a comment")
            << 0x1601 << false << "Later" << false << ",SendResponse(" + comment + ")" << false;
        QTest::newRow("16.1 with a reply") << 0x1601 << true << "" << false << ",SendResponse" << false;
        QTest::newRow("16.1 with nothing") << 0x1601 << false << "" << false << "" << false;
    }

    void exactlyOneOfMailAndSendResponseGoesOut()
    {
        QFETCH(int, version);
        QFETCH(bool, hasReply);
        QFETCH(QString, comment);
        QFETCH(bool, hasProposal);
        QFETCH(QString, response);
        QFETCH(bool, isMailed);
        mBed->account->setProtocolVersion(ProtocolVersion(version));
        MeetingResponseCommand::Options options;
        options.newTimeComment = comment;
        if (hasProposal) {
            options.newStartTime = QStringLiteral("2024-05-02T10:00:00Z");
            options.newEndTime = QStringLiteral("2024-05-02T11:00:00Z");
        }
        mRequest->setOptions(options);
        mRequest->appendRequest(Accepted, Invitation, 0, hasReply ? Reply : 0);
        mBed->answer(results({ 1 }));
        if (isMailed)
            emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().first(), asked(request(1, AboutMail + response)));
        QCOMPARE(mBed->sent().size(), isMailed ? 2 : 1);
        QCOMPARE(mBed->mail->deleted, QList<quint64>({ Invitation }));
        // The message has done its service either way.
        QCOMPARE(mBed->mail->removedAsSent, hasReply ? QStringList({ "31" }) : QStringList());
    }

    void twoAnswersHaveTwoReplies()
    {
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mRequest->appendRequestEvent(Declined, Event, 0, OtherReply);
        mBed->answer(results({ 1, 1 }));
        emptyAnswer();
        emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().first(), asked(request(1, AboutMail) + "," + request(3, AboutEvent)));
        QVERIFY(mBed->sent().at(1).contains("ClientId=31-"));
        QVERIFY(mBed->sent().at(2).contains("ClientId=32-"));
    }

    void oneRefusedAnswerStopsTheRepliesOfAll()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mRequest->appendRequestEvent(Declined, Event, 0, OtherReply);
        mBed->answer(results({ 1, 2 }));
        QCOMPARE(run(), int(Request::RequestStatusInternalError));
        QCOMPARE(mBed->sent().size(), 1);
        QVERIFY(mBed->mail->deleted.isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { "Invalid request" }));
        QVERIFY(log.contains(QtCriticalMsg, { "Fatal error:", "2" }));
    }

    void anUnknownResultIsAFailure()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 7 }));
        QCOMPARE(run(), int(Request::RequestStatusInternalError));
        QVERIFY(log.contains(QtWarningMsg, { "unhandled MeetingResponse Result status", "7" }));
    }

    void aServerThatIsBusyIsAskedAgain_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("result 3") << results({ 3 });
        QTest::newRow("result 4") << results({ 4 });
        QTest::newRow("status 3") << wholeStatus(3);
        QTest::newRow("status 4") << wholeStatus(4);
        QTest::newRow("status 111") << wholeStatus(111);
    }

    void aServerThatIsBusyIsAskedAgain()
    {
        QFETCH(QByteArray, reply);
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(reply);
        mBed->answer(results({ 1 }));
        emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().size(), 3);
        QCOMPARE(mBed->sent().at(1), mBed->sent().at(0));
    }

    void aServerThatStaysBusyIsGivenUp()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        for (int i = 0; i < 6; ++i)
            mBed->answer(results({ 4 }));
        QCOMPARE(run(), 4);
        QVERIFY(log.contains(QtInfoMsg, { "Resending after a timeout" }));
        QVERIFY(log.contains(QtWarningMsg, { "failed to retry MeetingResponse command, giving up" }));
        QVERIFY(mBed->mail->deleted.isEmpty());
    }

    void aStatusOfTheWholeCommandIsTold_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("status");
        QTest::newRow("106") << wholeStatus(106) << 106;
        QTest::newRow("110") << wholeStatus(110) << 110;
        QTest::newRow("2") << wholeStatus(2) << int(Request::RequestStatusInternalError);
        QTest::newRow("150") << wholeStatus(150) << 150;
        QTest::newRow("nothing at all")
            << document(node(MeetingResponse::MeetingResponse)) << int(Request::RequestStatusInternalError);
        QTest::newRow("no body") << QByteArray() << int(Request::RequestStatusInternalError);
    }

    void aStatusOfTheWholeCommandIsTold()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, status);
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(reply);
        QCOMPARE(run(), status);
        QCOMPARE(mBed->sent().size(), 1);
        QVERIFY(mBed->mail->deleted.isEmpty());
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    void aFailedTransportEndsTheAnswer()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        httpAnswer(404);
        const int status = run();
        QVERIFY2(status > 10000, qPrintable(QString::number(status)));
        QVERIFY(log.contains(QtWarningMsg, { "MeetingResponse command failed" }));
    }

    void theRepliesStatusIsTold_data()
    {
        QTest::addColumn<int>("sent");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        QTest::newRow("101") << 101 << 101 << "Invalid body of the request. Sent empty body?";
        QTest::newRow("102") << 102 << 102 << "Invalid WBXML/XML. Something really wrong with a request";
        QTest::newRow("103") << 103 << 103 << "Invalid WBXML/XML. Something really wrong with a request";
        QTest::newRow("106") << 106 << 106 << "server error. We shouldn't retry later. Completing request";
        QTest::newRow("107") << 107 << 107 << "Invalid MIME. Check MIME of the request.";
        QTest::newRow("110") << 110 << 110 << "server error. We shouldn't retry later. Completing request";
        QTest::newRow("113") << 113 << -6 << "The mailbox has reached its size quota";
        QTest::newRow("115") << 115 << -6 << "The request would exceed the send quota.";
        QTest::newRow("120") << 120 << 120 << "error status";
    }

    void theRepliesStatusIsTold()
    {
        QFETCH(int, sent);
        QFETCH(int, status);
        QFETCH(QString, text);
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        mBed->answer(sendStatus(sent));
        QCOMPARE(run(), status);
        QVERIFY2(log.count(text.toUtf8().constData()) > 0, qPrintable(text));
        QVERIFY2(mBed->mail->deleted.isEmpty(), "the invitation stays while the organizer knows nothing");
        QVERIFY(mBed->mail->removedAsSent.isEmpty());
    }

    void aReplyIsSentAgainWhereThatHelps_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("108") << 108;
        QTest::newRow("109") << 109;
        QTest::newRow("111") << 111;
    }

    void aReplyIsSentAgainWhereThatHelps()
    {
        QFETCH(int, status);
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        mBed->answer(sendStatus(status));
        emptyAnswer();
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().size(), 3);
        QCOMPARE(mBed->sent().at(2), mBed->sent().at(1));
    }

    void aReplyThatCannotBeSentIsGivenUp()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        for (int i = 0; i < 6; ++i)
            mBed->answer(sendStatus(111));
        QCOMPARE(run(), 111);
        QVERIFY(log.contains(QtWarningMsg, { "failed to retry SendMail command, giving up" }));
    }

    void aFailedTransportOfTheReplyIsInternal_data()
    {
        QTest::addColumn<int>("http");
        QTest::addColumn<int>("status");
        QTest::newRow("404") << 404 << int(Request::RequestStatusInternalError);
        QTest::newRow("507") << 507 << int(Request::RequestStatusServerStorageFull);
    }

    void aFailedTransportOfTheReplyIsInternal()
    {
        QFETCH(int, http);
        QFETCH(int, status);
        const LogCollector log;
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        httpAnswer(http);
        QCOMPARE(run(), status);
        QVERIFY(log.contains(QtWarningMsg, { "SendMail command failed" }));
        QVERIFY(mBed->mail->deleted.isEmpty());
    }

    void withoutACalendarPartTheAnswerStandsAndTheInvitationStays()
    {
        const LogCollector log;
        mBed->mail->makesCalendarParts = false;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        QCOMPARE(run(), int(Request::RequestStatusInternalError));
        QCOMPARE(mBed->sent().size(), 1);
        QVERIFY(mBed->mail->deleted.isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { "Failed updating the meeting response calendar part" }));
    }

    void aReplyThatStaysInTheOutboxIsNoSuccess_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("14.1") << 0x1401;
        QTest::newRow("16.1") << 0x1601;
    }

    void aReplyThatStaysInTheOutboxIsNoSuccess()
    {
        QFETCH(int, version);
        mBed->account->setProtocolVersion(ProtocolVersion(version));
        mBed->mail->settles = false;
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        if (version < 0x1600)
            emptyAnswer();
        QCOMPARE(run(), int(Request::RequestStatusInternalError));
        QCOMPARE(mBed->mail->deleted, QList<quint64>({ Invitation }));
    }

    void aServerWithoutSendMailEndsAfterTheAnswer()
    {
        const LogCollector log;
        mBed->account->negotiated({ QStringLiteral("MeetingResponse") });
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mBed->answer(results({ 1 }));
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->sent().size(), 1);
        QVERIFY(mBed->mail->deleted.isEmpty());
        QVERIFY(log.contains(QtInfoMsg, { "SendMail command not supported for account:" }));
    }

    void anInvitationThatCannotBeRemovedIsLogged()
    {
        const LogCollector log;
        mBed->mail->deletesEmails = false;
        mRequest->appendRequest(Accepted, Invitation, 0, 0);
        mBed->answer(results({ 1 }));
        QCOMPARE(run(), 0);
        QVERIFY(log.contains(QtCriticalMsg, { "Emails removal failed, ids:", "21" }));
    }

    void whatTheServerDoesNotKnowIsNotAnswered_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("no server identifier") << "No server UID for message:";
        QTest::newRow("no such event") << "No calendar server-id for:";
        QTest::newRow("no mail storage") << "No email storage for account:";
        QTest::newRow("no calendar storage") << "No calendar storage for account:";
    }

    void whatTheServerDoesNotKnowIsNotAnswered()
    {
        QFETCH(QString, text);
        const LogCollector log;
        const QByteArray row = QTest::currentDataTag();
        if (row == "no mail storage")
            mBed->account->mails.clear();
        else if (row == "no calendar storage")
            mBed->account->events.clear();
        if (row == "no such event")
            mRequest->appendRequestEvent(Accepted, QStringLiteral("another"), 0, Reply);
        else
            mRequest->appendRequest(Accepted, row == "no server identifier" ? 99 : Invitation, 0, Reply);
        QCOMPARE(run(), int(Request::RequestStatusInternalError));
        QVERIFY(mBed->sent().isEmpty());
        QVERIFY2(log.count(text.toUtf8().constData()) > 0, qPrintable(text));
    }

    void withoutAnswersThereIsNothingToDo()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, 0, 0, Reply);
        mRequest->appendRequestEvent(Accepted, {}, 0, Reply);
        QCOMPARE(log.count("No ID for request message"), 2);
        mRequest->appendRequest(Accepted, Invitation, 0, Reply);
        mRequest->clearRequests();
        QCOMPARE(run(), 0);
        QVERIFY(log.contains(QtInfoMsg, { "No responses" }));
    }

    void nothingIsAddedWhileItRuns()
    {
        const LogCollector log;
        mRequest->appendRequest(Accepted, Invitation, 0, 0);
        connect(&mBed->server, &ScriptedServer::received, this,
            [this] { mRequest->appendRequest(Accepted, Invitation, 0, 0); });
        mBed->answer(results({ 1 }));
        QCOMPARE(run(), 0);
        QVERIFY(log.contains(QtWarningMsg, { "Wrong state:", "1" }));
    }
};

FENNEL_REGISTER_TEST(MeetingResponseRequestTest)
#include "meetingresponserequesttest.moc"
