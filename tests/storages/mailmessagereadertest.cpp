// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagereader.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>

#include <QtTest>

namespace {

QString text(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

} // namespace

class MailMessageReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMessageComesBackAsItem()
    {
        MailFixture mail;
        const QMailFolderId folder = mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setRecipientsTo("\"Doe, J\" <j@x.org>, b@x.org");
        item.setRecipientsCc("c@x.org");
        item.setReplyTo("r@x.org");
        item.setImportance(EasEmailItem::HighImportance);
        item.setLastVerbExecuted(EasEmailItem::ForwardVerb);
        item.setAttachments({ MailFixture::attachment("Grüße.pdf", "ref", 10) });
        const QMailMessageId id = mail.addMessage(item);

        const EasEmailItem read =
            MailMessageReader(mail.context).mailItemFromEmailMessageId(id, { { text(folder), "5" } }, true);
        QCOMPARE(read.serverId(), QStringLiteral("5:1"));
        QCOMPARE(read.localId(), QString::number(id.toULongLong()));
        QCOMPARE(read.collectionId(), QStringLiteral("5"));
        QCOMPARE(read.localCollectionId(), folder.toULongLong());
        QCOMPARE(read.recipientsTo(), QStringLiteral("\"Doe, J\" <j@x.org>,b@x.org"));
        QCOMPARE(read.recipientsCc(), QStringLiteral("c@x.org"));
        QCOMPARE(read.fromAddress(), QStringLiteral("\"Doe, John\" <john@example.org>"));
        QCOMPARE(read.replyTo(), QStringLiteral("r@x.org"));
        QCOMPARE(read.subject(), item.subject());
        QVERIFY(read.read());
        QCOMPARE(read.importance(), EasEmailItem::HighImportance);
        QCOMPARE(read.lastVerbExecuted(), EasEmailItem::ForwardVerb);
        QCOMPARE(read.attachments().size(), 1);
        QCOMPARE(read.attachments().at(0).displayName(), QStringLiteral("Grüße.pdf"));
        QCOMPARE(read.body().type(), EasBodyContainer::PlainTextBodyType);
        QVERIFY(!read.body().truncated());
        QCOMPARE(read.changedFields(), QList<uint> { Wbxml::Email::Read });
        QVERIFY(read.sourceFolderId().isEmpty());
    }

    void thePreviewComesFromVersion14On_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("preview");
        QTest::newRow("12.1") << int(ExchangeActiveSync::ProtocolVersion121) << false;
        QTest::newRow("14.0") << int(ExchangeActiveSync::ProtocolVersion140) << true;
        QTest::newRow("16.1") << int(ExchangeActiveSync::ProtocolVersion161) << true;
    }
    void thePreviewComesFromVersion14On()
    {
        QFETCH(int, version);
        QFETCH(bool, preview);
        MailFixture mail;
        mail.account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        const EasEmailItem read = MailMessageReader(mail.context).mailItemFromEmailMessageId(id, {}, false);
        QCOMPARE(!read.body().preview().isEmpty(), preview);
        QVERIFY(read.changedFields().isEmpty());
    }

    void anAnswerNamesTheMessageThatItAnswers()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId question = mail.addMessage(mail.item("5:1", "5"));
        QMailMessage answer = mail.message(mail.addMessage(mail.item("5:2", "5")));
        answer.setInResponseTo(question);
        QVERIFY(mail.context.store->updateMessage(&answer));
        QCOMPARE(
            MailMessageReader(mail.context).mailItemFromEmailMessageId(answer.id(), {}, false).replyToId(),
            QStringLiteral("5:1"));
    }

    void aMoveNamesBothFolders()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        const MailMessageReader reader(mail.context);
        const EasEmailItem read =
            reader.mailItemFromEmailMessageId(id, { { text(inbox), "5" }, { text(archive), "6" } }, false);
        QCOMPARE(read.sourceFolderId(), QStringLiteral("5"));
        QCOMPARE(read.destinationFolderId(), QStringLiteral("6"));

        LogCollector log;
        reader.mailItemFromEmailMessageId(id, { { text(archive), "6" } }, false);
        QVERIFY(log.contains("unknown previous folder id"));
    }

    void aMissingMessageGivesAnEmptyItem()
    {
        LogCollector log;
        MailFixture mail;
        const MailMessageReader reader(mail.context);
        QVERIFY(reader.mailItemFromEmailMessageId(QMailMessageId(), {}, false).localId().isEmpty());
        QVERIFY(reader.mailItemFromEmailMessageId(QMailMessageId(424242), {}, false).localId().isEmpty());
        QCOMPARE(log.count("local email id is invalid"), 2);
    }

    void contentTellsTheBodyType_data()
    {
        QTest::addColumn<int>("content");
        QTest::addColumn<int>("bodyType");
        QTest::addColumn<bool>("logged");
        QTest::newRow("plain") << 2 << 1 << false;
        QTest::newRow("rich text") << 3 << 3 << false;
        QTest::newRow("HTML") << 4 << 2 << false;
        QTest::newRow("multipart") << 8 << -1 << false;
        QTest::newRow("unknown") << 0 << -1 << false;
        QTest::newRow("an image") << 5 << -1 << true;
        QTest::newRow("iCalendar") << 14 << -1 << true;
    }
    void contentTellsTheBodyType()
    {
        QFETCH(int, content);
        QFETCH(int, bodyType);
        QFETCH(bool, logged);
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        QMailMessage message = mail.message(mail.addMessage(mail.item("5:1", "5")));
        message.setContent(QMailMessageMetaData::ContentType(content));
        QVERIFY(mail.context.store->updateMessage(&message));
        const EasEmailItem read =
            MailMessageReader(mail.context).mailItemFromEmailMessageId(message.id(), {}, false);
        QCOMPARE(int(read.body().type()), bodyType);
        QCOMPARE(log.contains("unhandled message content type"), logged);
    }
};

FENNEL_REGISTER_TEST(MailMessageReaderTest)
#include "mailmessagereadertest.moc"
