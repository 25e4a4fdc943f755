// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagechanges.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailattachments.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>

#include <QtTest>

namespace {

bool has(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

} // namespace

class MailMessageChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheChangedFieldsAreApplied()
    {
        MailFixture mail;
        mail.addFolder("5");
        QMailMessage message = mail.message(mail.addMessage(mail.item("5:1", "5")));
        EasEmailItem change = mail.item("5:1", "5");
        change.setRead(false);
        change.setSubject("not to be taken");
        change.appendChangedField(Wbxml::Email::Read);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QVERIFY(!has(message, QMailMessage::Read));
        QVERIFY(!has(message, QMailMessage::ReadElsewhere));
        QCOMPARE(message.subject(), QStringLiteral("Message 5:1"));
    }

    void headersChange()
    {
        MailFixture mail;
        mail.addFolder("5");
        QMailMessage message = mail.message(mail.addMessage(mail.item("5:1", "5")));
        EasEmailItem change;
        change.setServerId("5:2");
        change.setSubject("New");
        change.setRecipientsTo("\"Doe, J\" <j@x.org>,,b@x.org");
        change.setRecipientsCc("c@x.org");
        change.setFromAddress("f@x.org");
        change.setReplyTo("r@x.org");
        change.setDateReceived("2026-01-02T03:04:05.000Z");
        for (const uint tag : { Wbxml::AirSync::ServerId.key(), Wbxml::Email::Subject.key(),
                 Wbxml::Email::To.key(), Wbxml::Email::Cc.key(), Wbxml::Email::From.key(),
                 Wbxml::Email::ReplyTo.key(), Wbxml::Email::DateReceived.key() })
            change.appendChangedField(tag);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QVERIFY(mail.context.store->updateMessage(&message));
        const QMailMessage stored = mail.message(message.id());
        QCOMPARE(stored.serverUid(), QStringLiteral("5:2"));
        QCOMPARE(stored.subject(), QStringLiteral("New"));
        QCOMPARE(stored.to().size(), 2);
        QCOMPARE(stored.to().at(1).address(), QStringLiteral("b@x.org"));
        QCOMPARE(stored.cc().at(0).address(), QStringLiteral("c@x.org"));
        QCOMPARE(stored.from().address(), QStringLiteral("f@x.org"));
        QCOMPARE(stored.replyTo().address(), QStringLiteral("r@x.org"));
        QCOMPARE(stored.receivedDate().toUTC(), QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
    }

    void importanceSetsAndClearsBothFlags_data()
    {
        QTest::addColumn<int>("importance");
        QTest::addColumn<quint64>("before");
        QTest::addColumn<quint64>("after");

        const quint64 low = QMailMessage::LowPriority;
        const quint64 high = QMailMessage::HighPriority;
        QTest::newRow("low") << 0 << high << low;
        QTest::newRow("normal clears high") << 1 << high << quint64(0);
        QTest::newRow("normal clears low") << 1 << low << quint64(0);
        QTest::newRow("high") << 2 << low << high;
        QTest::newRow("another value changes nothing") << 7 << low << low;
    }
    void importanceSetsAndClearsBothFlags()
    {
        QFETCH(int, importance);
        QFETCH(quint64, before);
        QFETCH(quint64, after);
        LogCollector log;
        MailFixture mail;
        QMailMessage message;
        message.setStatus(before, true);
        EasEmailItem change;
        change.setImportance(EasEmailItem::EmailImportance(importance));
        change.appendChangedField(Wbxml::Email::Importance);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(message.status() & (QMailMessage::LowPriority | QMailMessage::HighPriority), after);
        QCOMPARE(log.contains("unhandled importance value"), importance == 7);
    }

    void theLastVerbIsTheOnlyOne_data()
    {
        QTest::addColumn<int>("verb");
        QTest::addColumn<quint64>("after");
        const quint64 all = QMailMessage::Replied | QMailMessage::RepliedAll | QMailMessage::Forwarded;
        QTest::newRow("reply") << 1 << quint64(QMailMessage::Replied);
        QTest::newRow("reply to all") << 2 << quint64(QMailMessage::RepliedAll);
        QTest::newRow("forward") << 3 << quint64(QMailMessage::Forwarded);
        QTest::newRow("unknown") << 0 << all;
    }
    void theLastVerbIsTheOnlyOne()
    {
        QFETCH(int, verb);
        QFETCH(quint64, after);
        MailFixture mail;
        const quint64 all = QMailMessage::Replied | QMailMessage::RepliedAll | QMailMessage::Forwarded;
        QMailMessage message;
        message.setStatus(all, true);
        EasEmailItem change;
        change.setLastVerbExecuted(EasEmailItem::LastVerbExecutedValues(verb));
        change.appendChangedField(Wbxml::Email2::LastVerbExecuted);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(message.status() & all, after);
    }

    void aCollectionMovesTheMessage()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        QMailMessage message = mail.message(mail.addMessage(mail.item("5:1", "5")));
        EasEmailItem change;
        change.appendChangedField(Wbxml::AirSync::CollectionId);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(message.parentFolderId(), inbox);
        change.setLocalCollectionId(archive.toULongLong());
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(message.parentFolderId(), archive);
    }

    void aMoveOfTheUsersIsNotTakenBack()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailFolderId third = mail.addFolder("7");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        QMailMessage message = mail.message(id);
        EasEmailItem change;
        change.appendChangedField(Wbxml::AirSync::CollectionId);
        change.setLocalCollectionId(inbox.toULongLong());
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(message.parentFolderId(), archive);
        change.setLocalCollectionId(third.toULongLong());
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(message.parentFolderId(), third);
    }

    void aBodyBringsSizeAndPreview()
    {
        MailFixture mail;
        mail.addFolder("5");
        QMailMessage message = mail.message(mail.addMessage(mail.item("5:1", "5")));
        EasEmailItem change;
        EasBodyContainer body = MailFixture::body(EasBodyContainer::HTMLBodyType, "<p>New text</p>");
        body.setPreview("The server's words");
        change.setBody(body);
        for (const uint tag : { Wbxml::AirSyncBase::Type.key(), Wbxml::AirSyncBase::EstimatedDataSize.key(),
                 Wbxml::AirSyncBase::Truncated.key(), Wbxml::AirSyncBase::Data.key(),
                 Wbxml::AirSyncBase::Preview.key() })
            change.appendChangedField(tag);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QVERIFY(mail.context.store->updateMessage(&message));
        const QMailMessage stored = mail.message(message.id());
        QCOMPARE(stored.body().data(), QStringLiteral("<p>New text</p>"));
        QCOMPARE(stored.preview(), QStringLiteral("The server's words"));
        QCOMPARE(int(stored.size()), body.estimatedDataSize());
    }

    void aTruncatedBodyShowsItselfAsPreview()
    {
        MailFixture mail;
        QMailMessage message;
        EasEmailItem change;
        EasBodyContainer body = MailFixture::body(EasBodyContainer::PlainTextBodyType, "The beginn");
        body.setTruncated(true);
        change.setBody(body);
        change.appendChangedField(Wbxml::AirSyncBase::Data);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QVERIFY(!message.hasBody());
        QCOMPARE(message.preview(), QStringLiteral("The beginn"));
    }

    void attachmentsChangeUnlessTheBodyIsMime()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setAttachments({ MailFixture::attachment("a.pdf", "a", 10) });
        QMailMessage message = mail.message(mail.addMessage(item));

        EasEmailItem change = item;
        change.setAttachments({ MailFixture::attachment("b.pdf", "b", 20) });
        change.appendChangedField(Wbxml::AirSyncBase::Attachments);
        EasBodyContainer mime = change.body();
        mime.setType(EasBodyContainer::MIMEBodyType);
        change.setBody(mime);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(MailAttachments::attachments(message).at(0).displayName(), QStringLiteral("a.pdf"));

        change.setBody(item.body());
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(MailAttachments::attachments(message).size(), 1);
        QCOMPARE(MailAttachments::attachments(message).at(0).displayName(), QStringLiteral("b.pdf"));
        QCOMPARE(int(message.size()), item.body().estimatedDataSize() + 20);
    }

    void aChangeOfAttachmentsWithoutABodyKeepsTheSizeOfTheBody()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setAttachments({ MailFixture::attachment("a.pdf", "a", 10) });
        QMailMessage message = mail.message(mail.addMessage(item));
        const int bodySize = item.body().estimatedDataSize();
        QCOMPARE(int(message.size()), bodySize + 10);

        EasEmailItem change;
        change.setAttachments({ MailFixture::attachment("b.pdf", "b", 25) });
        for (const uint tag :
            { Wbxml::AirSyncBase::EstimatedDataSize.key(), Wbxml::AirSyncBase::Method.key() })
            change.appendChangedField(tag);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QCOMPARE(int(message.size()), bodySize + 25);
    }

    void anEmptyListOfAttachmentsRemovesThem()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setAttachments({ MailFixture::attachment("a.pdf", "a", 10) });
        QMailMessage message = mail.message(mail.addMessage(item));
        EasEmailItem change;
        change.appendChangedField(Wbxml::AirSyncBase::Attachments);
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QVERIFY(MailAttachments::attachments(message).isEmpty());
        QCOMPARE(int(message.size()), item.body().estimatedDataSize());
        QCOMPARE(message.body().data(), item.body().data());
    }

    void ignoredFieldsAreSilentAndOthersAreNot()
    {
        MailFixture mail;
        QMailMessage message;
        EasEmailItem change;
        for (const uint tag :
            { Wbxml::Email::Categories.key(), Wbxml::Email::Category.key(), Wbxml::Email::Flag.key(),
                Wbxml::AirSyncBase::Truncated.key(), Wbxml::Email2::LastVerbExecutionTime.key() })
            change.appendChangedField(tag);
        {
            LogCollector log;
            MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
            QVERIFY(!log.contains("unhandled field id"));
        }
        change.appendChangedField(Wbxml::Email::ThreadTopic);
        LogCollector log;
        MailMessageChanges(mail.context).setChangesToEmailMessage(message, change);
        QVERIFY(log.contains(QtWarningMsg, { "unhandled field id", "565" }));
    }
};

FENNEL_REGISTER_TEST(MailMessageChangesTest)
#include "mailmessagechangestest.moc"
