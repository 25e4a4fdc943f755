// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/meetinganswertestbase.h"
#include "support/logcollector.h"
#include "support/testmain.h"

using namespace MeetingAnswers;
using ExchangeActiveSync::ProtocolVersion;

/** An answer to an invitation: what the server is told, and what it says of it. */
class MeetingResponseRequestTest : public MeetingAnswerTestBase
{
    Q_OBJECT

private Q_SLOTS:
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
