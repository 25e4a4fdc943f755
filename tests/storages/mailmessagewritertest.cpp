// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagewriter.h"
#include "common/exchangeactivesync.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

#include <limits>

namespace {

bool has(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

bool hasCalendarPart(const QMailMessage &message)
{
    for (uint i = 0; i < message.partCount(); ++i) {
        if (message.partAt(i).contentType().matches("text", "calendar"))
            return true;
    }
    return false;
}

EasMeetingRequestContainer meeting(const QByteArray &globalObjId)
{
    EasMeetingRequestContainer request;
    request.setGlobalObjId(globalObjId);
    return request;
}

} // namespace

class MailMessageWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anItemBecomesAMessage()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5", EasFolderItem::DefaultInboxFolder);
        EasEmailItem item = mail.item("5:1", "5");
        item.setRecipientsTo("\"Doe, John\" <j@x.org>, b@x.org");
        item.setRecipientsCc("c@x.org");
        item.setReplyTo("<r@x.org>");
        item.setMessageClass("IPM.Note");
        item.setRead(false);
        item.setAttachments({ MailFixture::attachment("a.pdf", "ref", 1000) });

        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        QVERIFY(message);
        QVERIFY(!message->id().isValid());
        QCOMPARE(message->parentAccountId(), mail.mailAccountId());
        QCOMPARE(message->parentFolderId(), inbox);
        QCOMPARE(message->from().name(), QStringLiteral("Doe, John"));
        QCOMPARE(message->subject(), item.subject());
        const QDateTime received(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC);
        QCOMPARE(message->date().toUTC(), received);
        QCOMPARE(message->receivedDate().toUTC(), received);
        QCOMPARE(message->to().size(), 2);
        QCOMPARE(message->to().at(0).address(), QStringLiteral("j@x.org"));
        QCOMPARE(message->cc().size(), 1);
        QCOMPARE(message->replyTo().address(), QStringLiteral("r@x.org"));
        QCOMPARE(message->messageType(), QMailMessage::Email);
        QCOMPARE(message->serverUid(), QStringLiteral("5:1"));
        QCOMPARE(message->customField(ExchangeActiveSync::MESSAGE_CLASS_FIELD), QStringLiteral("IPM.Note"));
        QVERIFY(message->customField(ExchangeActiveSync::MESSAGE_GLOBAL_OBJ_ID).isEmpty());
        QCOMPARE(int(message->size()), item.body().estimatedDataSize() + 1000);
        QVERIFY(!has(*message, QMailMessage::Read));
        QVERIFY(!has(*message, QMailMessage::ReadElsewhere));
        QVERIFY(has(*message, QMailMessage::HasAttachments));
    }

    void aKnownItemComesBackAsItIsStored()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        const QMailMessageId id = mail.addMessage(item);
        item.setLocalId(QString::number(id.toULongLong()));
        item.setSubject("Another subject");
        item.setRead(false);
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        QCOMPARE(message->id(), id);
        QCOMPARE(message->subject(), QStringLiteral("Message 5:1"));
        QVERIFY(has(*message, QMailMessage::Read));
    }

    void withoutRecipientsTheReplyAddressesStandIn()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setRecipientsTo(QString());
        item.setReplyTo("\"A\" <a@x.org>; \"B; C\" <b@x.org>");
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        QCOMPARE(message->to().size(), 2);
        QCOMPARE(message->to().at(0).address(), QStringLiteral("a@x.org"));
        QCOMPARE(message->to().at(1).address(), QStringLiteral("b@x.org"));
    }

    void aSearchResultIsNamedByItsLongId()
    {
        EasEmailItem item;
        item.setLongId("long");
        QCOMPARE(MailMessageWriter::serverUid(item), QStringLiteral("long"));
        item.setServerId("5:1");
        QCOMPARE(MailMessageWriter::serverUid(item), QStringLiteral("5:1"));
    }

    void aDateMayComeInTheCompactForm()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setDateReceived("20240501T080000Z");
        QCOMPARE(MailMessageWriter(mail.context).mailMessageFromEmailItem(item)->receivedDate().toUTC(),
            QDateTime(QDate(2024, 5, 1), QTime(8, 0), Qt::UTC));
    }

    void aBadDateIsNoDate()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setDateReceived("yesterday");
        QVERIFY(!MailMessageWriter(mail.context).mailMessageFromEmailItem(item)->date().isValid());
    }

    void verbAndImportanceSetFlags_data()
    {
        QTest::addColumn<int>("verb");
        QTest::addColumn<int>("importance");
        QTest::addColumn<quint64>("flags");

        QTest::newRow("nothing") << -1 << 1 << quint64(0);
        QTest::newRow("replied") << 1 << 1 << quint64(QMailMessage::Replied);
        QTest::newRow("replied to all") << 2 << 1 << quint64(QMailMessage::RepliedAll);
        QTest::newRow("forwarded") << 3 << 1 << quint64(QMailMessage::Forwarded);
        QTest::newRow("an unknown verb") << 9 << 1 << quint64(0);
        QTest::newRow("low") << -1 << 0 << quint64(QMailMessage::LowPriority);
        QTest::newRow("high") << -1 << 2 << quint64(QMailMessage::HighPriority);
    }
    void verbAndImportanceSetFlags()
    {
        QFETCH(int, verb);
        QFETCH(int, importance);
        QFETCH(quint64, flags);
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setLastVerbExecuted(EasEmailItem::LastVerbExecutedValues(verb));
        item.setImportance(EasEmailItem::EmailImportance(importance));
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        const quint64 all = QMailMessage::Replied | QMailMessage::RepliedAll | QMailMessage::Forwarded
            | QMailMessage::LowPriority | QMailMessage::HighPriority;
        QCOMPARE(message->status() & all, flags);
    }

    void theFolderMarksItsMessages()
    {
        MailFixture mail;
        const quint64 flags[] = { QMailFolder::Drafts, QMailFolder::Trash, QMailFolder::Junk };
        const quint64 marks[] = { QMailMessage::Draft, QMailMessage::Trash, QMailMessage::Junk };
        for (int i = 0; i < 3; ++i) {
            EasEmailItem item = mail.item(QStringLiteral("5:%1").arg(i), "5");
            item.setLocalCollectionId(
                mail.addStoreFolder(QString::number(i), QMailFolderId(), flags[i]).toULongLong());
            const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
            QCOMPARE(message->status() & (marks[0] | marks[1] | marks[2]), marks[i]);
        }
    }

    void meetingsGetACalendarPart_data()
    {
        QTest::addColumn<QString>("messageClass");
        QTest::addColumn<QByteArray>("globalObjId");
        QTest::addColumn<bool>("invitation");
        QTest::addColumn<bool>("cancellation");
        QTest::addColumn<bool>("calendarPart");

        const QByteArray globalObjId("BAAAAIIA4AB0xbcQGoLgCAAAAAA=");
        QTest::newRow("a note") << "IPM.Note" << QByteArray() << false << false << false;
        QTest::newRow("an invitation")
            << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST << globalObjId << true << false << true;
        QTest::newRow("the class alone makes no invitation")
            << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST << QByteArray() << false << false << false;
        QTest::newRow("a cancellation is no invitation, and has the part")
            << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_CANCELLED << globalObjId << false << true
            << true;
        QTest::newRow("accepted") << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_ACCEPT << globalObjId
                                  << false << false << true;
        QTest::newRow("tentative") << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_TENTATIVE
                                   << globalObjId << false << false << true;
        QTest::newRow("declined") << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_DECLINE << globalObjId
                                  << false << false << true;
    }
    void meetingsGetACalendarPart()
    {
        QFETCH(QString, messageClass);
        QFETCH(QByteArray, globalObjId);
        QFETCH(bool, invitation);
        QFETCH(bool, cancellation);
        QFETCH(bool, calendarPart);
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setMessageClass(messageClass);
        item.setMeetingRequest(meeting(globalObjId));
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        QVERIFY(message);
        QCOMPARE(has(*message, QMailMessage::CalendarInvitation), invitation);
        QCOMPARE(has(*message, QMailMessage::CalendarCancellation), cancellation);
        QCOMPARE(hasCalendarPart(*message), calendarPart);
        if (!calendarPart)
            return;
        QCOMPARE(mail.calendar->organizer, message->from().toString());
        QCOMPARE(mail.calendar->summary, message->from().toString());
        QCOMPARE(mail.calendar->description, QStringLiteral("Text of 5:1"));
        QCOMPARE(message->customField(ExchangeActiveSync::MESSAGE_GLOBAL_OBJ_ID),
            QString::fromLatin1(globalObjId));
    }

    void theIdentifierOfTheEventMakesAnInvitationToo()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setMessageClass(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST);
        EasMeetingRequestContainer request;
        request.setCalendarMessageId("of 16.0");
        item.setMeetingRequest(request);
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        QVERIFY(message);
        QVERIFY(has(*message, QMailMessage::CalendarInvitation));
        QVERIFY(hasCalendarPart(*message));
    }

    void theOrganizerOfTheMeetingCountsNotTheSender()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setMessageClass(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST);
        EasMeetingRequestContainer request = meeting("id");
        request.setOrganizer("olga@example.com");
        item.setMeetingRequest(request);
        QVERIFY(MailMessageWriter(mail.context).mailMessageFromEmailItem(item));
        QCOMPARE(mail.calendar->organizer, QStringLiteral("olga@example.com"));
    }

    void aCalendarWithoutAnswerLosesNoMessage()
    {
        MailFixture mail;
        mail.addFolder("5");
        mail.account.events = QSharedPointer<CalendarStorage>(new FakeCalendarStorage({}));
        EasEmailItem item = mail.item("5:1", "5");
        item.setMessageClass(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST);
        item.setMeetingRequest(meeting("id"));
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        QVERIFY(message);
        QVERIFY(has(*message, QMailMessage::CalendarInvitation));
        QCOMPARE(message->multipartType(), QMailMessage::MultipartNone);
    }

    void withoutACalendarStorageThereIsNoMessage()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        mail.account.events.clear();
        EasEmailItem item = mail.item("5:1", "5");
        item.setMessageClass(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_CANCELLED);
        QVERIFY(!MailMessageWriter(mail.context).mailMessageFromEmailItem(item));
        QVERIFY(log.contains(QtCriticalMsg, { "No calendar storage object" }));
    }

    void hostileSizesAddUp()
    {
        const int most = std::numeric_limits<int>::max();
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        EasBodyContainer body = item.body();
        body.setEstimatedDataSize(most);
        item.setBody(body);
        item.setAttachments({ MailFixture::attachment("a", "1", most) });
        QCOMPARE(MailMessageWriter(mail.context).mailMessageFromEmailItem(item)->size(), 2U * uint(most));
    }

    void aSubjectBeginsNoHeader()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setSubject(QStringLiteral("Hello\r\nBcc: victim@example.org\r\n\r\nbody"));
        item.setFromAddress(QStringLiteral("Eve\r\nX-Evil: 1 <eve@example.org>"));
        item.setRecipientsTo(QStringLiteral("a@x.org\r\nX-Evil: 2"));
        const QByteArray text = MailMessageWriter(mail.context).mailMessageFromEmailItem(item)->toRfc2822();
        QVERIFY(!text.contains("\nBcc"));
        QVERIFY(!text.contains("\nX-Evil"));
    }
};

FENNEL_REGISTER_TEST(MailMessageWriterTest)
#include "mailmessagewritertest.moc"
