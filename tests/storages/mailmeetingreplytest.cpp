// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmeetingreply.h"

#include "common/exchangeactivesync.h"
#include "storages/mail/mailstorageimpl.h"
#include "support/calendarparts.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

const QString InvitationData = QStringLiteral("BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n");
const QDateTime NoOccurrence;

} // namespace

/** The calendar part of the message that answers an invitation. */
class MailMeetingReplyTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<MailFixture> mMail;

    quint64 addInvitation()
    {
        EasEmailItem item = mMail->item("5:1", "5");
        item.setMessageClass(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST);
        EasMeetingRequestContainer request;
        request.setGlobalObjId("id");
        item.setMeetingRequest(request);
        return mMail->addMessage(item).toULongLong();
    }

    quint64 addReply(const QByteArray &mime)
    {
        QMailMessage message = QMailMessage::fromRfc2822(mime);
        message.setParentAccountId(mMail->mailAccountId());
        message.setParentFolderId(mMail->addStoreFolder("Outbox"));
        if (!mMail->context.store->addMessage(&message))
            qFatal("no reply");
        return message.id().toULongLong();
    }
    quint64 addPlainReply()
    {
        return addReply("From: a@example.org\r\nTo: o@example.org\r\nSubject: Accepted: Plans\r\n"
                        "Content-Type: text/plain; charset=UTF-8\r\n\r\nI will come.\r\n");
    }

    MailMeetingReply reply(quint64 id, const QDateTime &occurrence = {}) const
    {
        return { mMail->context, id, EasItemsCommon::UserResponseAccepted, occurrence };
    }
    QMailMessage stored(quint64 id) const { return mMail->message(QMailMessageId(id)); }

private Q_SLOTS:
    void init()
    {
        mMail = std::make_unique<MailFixture>();
        mMail->addFolder("5");
    }
    void cleanup() { mMail.reset(); }

    void aReplyGetsTheCalendarDataBesideItsText()
    {
        const LogCollector log;
        const quint64 invitation = addInvitation();
        const quint64 id = addPlainReply();
        QVERIFY(reply(id).answerMessage(invitation));
        const QMailMessage message = stored(id);
        QCOMPARE(message.multipartType(), QMailMessage::MultipartAlternative);
        QCOMPARE(message.partCount(), 2U);
        QCOMPARE(message.partAt(0).body().data(), QStringLiteral("I will come.\n"));
        QCOMPARE(message.partAt(1).contentType().toString(),
            QByteArray("Content-Type: text/calendar; method=REPLY; charset=utf-8"));
        QCOMPARE(calendarTexts(message), QStringList({ "1 to request " + InvitationData.trimmed() }));
        QVERIFY(log.contains(QtInfoMsg,
            { "Updating meeting response:", QString::number(id), ", invitation:", QString::number(invitation),
                ", user reponse:" }));
    }

    void aCalendarPartIsReplaced()
    {
        const quint64 id = addReply(
            "From: a@example.org\r\nSubject: Accepted\r\nMIME-Version: 1.0\r\n"
            "Content-Type: multipart/alternative; boundary=x\r\n\r\n--x\r\nContent-Type: text/plain\r\n\r\n"
            "I will come.\r\n--x\r\nContent-Type: text/calendar; method=REQUEST\r\n\r\nold\r\n--x--\r\n");
        const quint64 invitation = addInvitation();
        QVERIFY(reply(id).answerMessage(invitation));
        QVERIFY2(reply(id).answerMessage(invitation), "an answer can be given again");
        const QMailMessage message = stored(id);
        QCOMPARE(message.partCount(), 2U);
        QCOMPARE(calendarTexts(message), QStringList({ "1 to request " + InvitationData.trimmed() }));
        QCOMPARE(message.partAt(1).contentType().parameter("method").isEmpty(), false);
        QVERIFY(message.partAt(1).contentType().toString().contains("REPLY"));
    }

    void anEventIsAnsweredFromTheCalendar()
    {
        mMail->calendar->events.insert("event", "stored data");
        const quint64 id = addPlainReply();
        QVERIFY(reply(id).answerEvent("event"));
        QCOMPARE(calendarTexts(stored(id)), QStringList({ "1 to event stored data" }));
    }

    void anOccurrenceIsHandedOn()
    {
        mMail->calendar->events.insert("event", "stored data");
        const quint64 id = addPlainReply();
        QVERIFY(reply(id, QDateTime(QDate(2030, 1, 17), QTime(8, 0), Qt::UTC)).answerEvent("event"));
        QCOMPARE(calendarTexts(stored(id)), QStringList({ "1 to event stored data 2030-01-17T08:00:00Z" }));
    }

    void withoutCalendarDataThereIsNoReply_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("a plain message") << "No body in calendar invitation part";
        QTest::newRow("an empty part") << "No iCal data in invitation";
        QTest::newRow("no such event") << "No iCal data in invitation";
        QTest::newRow("no such message") << "No body in calendar invitation part";
    }

    void withoutCalendarDataThereIsNoReply()
    {
        QFETCH(QString, text);
        const LogCollector log;
        const quint64 id = addPlainReply();
        const QByteArray row = QTest::currentDataTag();
        if (row == "no such event") {
            QVERIFY(!reply(id).answerEvent("event"));
        } else {
            const quint64 invitation = row == "no such message" ? 987654
                : row == "an empty part" ? addReply("Content-Type: text/calendar\r\n\r\n\r\n")
                                         : mMail->addMessage(mMail->item("5:2", "5")).toULongLong();
            QVERIFY(!reply(id).answerMessage(invitation));
        }
        QVERIFY2(log.contains(QtWarningMsg, { text }), qPrintable(log.texts(QtWarningMsg).join("; ")));
        QVERIFY(calendarTexts(stored(id)).isEmpty());
    }

    void aRefusedInvitationLeavesTheReplyAsItIs()
    {
        mMail->calendar->refusesToAnswer = true;
        const quint64 invitation = addInvitation();
        const quint64 id = addPlainReply();
        QVERIFY(!reply(id).answerMessage(invitation));
        QVERIFY(calendarTexts(stored(id)).isEmpty());
    }

    void aReplyThatIsNotThereIsNotMade()
    {
        const LogCollector log;
        QVERIFY(!reply(987654).answerMessage(addInvitation()));
        QVERIFY(log.contains(QtWarningMsg, { "invalid local mesage id", "987654" }));
    }

    void withoutACalendarThereIsNoReply()
    {
        const LogCollector log;
        const quint64 invitation = addInvitation();
        mMail->account.events.clear();
        QVERIFY(!reply(addPlainReply()).answerMessage(invitation));
        QVERIFY(!reply(addPlainReply()).answerEvent("event"));
        QCOMPARE(log.count("No calendar storage object"), 2);
    }

    void theStorageAnswersBothForms()
    {
        MailStorageImpl storage(&mMail->account);
        const quint64 invitation = addInvitation();
        mMail->calendar->events.insert("event", "stored data");
        const quint64 first = addPlainReply();
        const quint64 second = addPlainReply();
        QVERIFY(storage.updateCalendarResponsePart(
            first, invitation, EasItemsCommon::UserResponseTentativelyAccepted));
        QVERIFY(storage.updateCalendarResponsePart(
            second, QStringLiteral("event"), EasItemsCommon::UserResponseDeclined));
        QVERIFY(calendarTexts(stored(first)).value(0).startsWith("2 to request"));
        QVERIFY(calendarTexts(stored(second)).value(0).startsWith("3 to event"));
    }
};

FENNEL_REGISTER_TEST(MailMeetingReplyTest)
#include "mailmeetingreplytest.moc"
