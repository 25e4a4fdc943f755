// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/meetinganswertestbase.h"
#include "support/logcollector.h"
#include "support/testmain.h"

using namespace MeetingAnswers;
using ExchangeActiveSync::ProtocolVersion;

/** The messages with which organizers hear of answers: which of them goes out, and what remains on the
 * device. */
class MeetingResponseRepliesTest : public MeetingAnswerTestBase
{
    Q_OBJECT

private Q_SLOTS:
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
};

FENNEL_REGISTER_TEST(MeetingResponseRepliesTest)
#include "meetingresponserepliestest.moc"
