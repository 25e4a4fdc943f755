// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailattachments.h"

#include "application/base/fetchedoctets.h"
#include "storages/mail/mailbodywriter.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmailmessage.h>

#include <QtTest>

#include <limits>

namespace {

EasEmailItem itemWith(const QList<EasAttachmentContainer> &attachments)
{
    EasEmailItem item;
    item.setBody(MailFixture::body(EasBodyContainer::HTMLBodyType, "<p>See below</p>"));
    item.setAttachments(attachments);
    return item;
}

QMailMessage messageOf(const EasEmailItem &item)
{
    QMailMessage message;
    MailBodyWriter::setMessageBody(message, item.body(), true);
    MailAttachments::setAttachmentsToMailMessage(&message, item);
    return message;
}

/** An inline picture and two documents. */
EasEmailItem threeAttachments()
{
    EasAttachmentContainer picture = MailFixture::attachment("Bild.png", "5%3a1%3a0", 100, true);
    picture.setContentId("picture@example.org");
    return itemWith({ MailFixture::attachment("Grüße.pdf", "5%3a1%3a1", 200), picture,
        MailFixture::attachment("b.txt", "mail/Projects%2FGr%26APYA3w-e/5/2", 300) });
}

} // namespace

class MailAttachmentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attachmentsBecomeProxies()
    {
        QMailMessage message;
        const EasEmailItem item = threeAttachments();
        MailBodyWriter::setMessageBody(message, item.body(), true);
        QCOMPARE(MailAttachments::setAttachmentsToMailMessage(&message, item), 600);
        QVERIFY(message.status() & QMailMessage::HasAttachments);
        QCOMPARE(message.multipartType(), QMailMessage::MultipartMixed);
        QCOMPARE(message.partCount(), 3U);
        QCOMPARE(message.partAt(0U).multipartType(), QMailMessage::MultipartRelated);

        const QMailMessagePart picture = message.partAt(0U).partAt(1U);
        QCOMPARE(picture.contentDisposition().type(), QMailMessageContentDisposition::Inline);
        QVERIFY(picture.contentType().matches("image", "x-as-proxy-attachment"));
        QCOMPARE(picture.contentID(), QStringLiteral("picture@example.org"));

        const QMailMessagePart document = message.partAt(1U);
        QCOMPARE(document.contentDisposition().type(), QMailMessageContentDisposition::Attachment);
        QCOMPARE(document.contentDisposition().filename(), QByteArray("5%3a1%3a1"));
        QCOMPARE(document.contentDisposition().size(), 200);
        QVERIFY(document.contentType().matches("text", "x-as-proxy-attachment"));
        QCOMPARE(document.contentType().name(),
            "=?UTF-8?B?" + QStringLiteral("Grüße.pdf").toUtf8().toBase64() + "?=");
        QVERIFY(!document.hasBody());
    }

    void withoutAttachmentsNothingChanges()
    {
        const QMailMessage message = messageOf(itemWith({}));
        QCOMPARE(message.multipartType(), QMailMessage::MultipartNone);
        QVERIFY(!(message.status() & QMailMessage::HasAttachments));
    }

    void anUnknownMethodIsANormalAttachment()
    {
        LogCollector log;
        EasAttachmentContainer attachment = MailFixture::attachment("a.doc", "ref", 10);
        attachment.setMethod(EasAttachmentContainer::AttachOLEMethod);
        const QMailMessage message = messageOf(itemWith({ attachment }));
        QVERIFY(log.contains(QtCriticalMsg, { "Not handled attachment type." }));
        QVERIFY(log.contains(QtCriticalMsg, { "Considering it as a normal attachment" }));
        QVERIFY(message.partAt(1U).contentType().matches("text", "x-as-proxy-attachment"));
    }

    void whatIsWrittenIsReadBack()
    {
        const QList<EasAttachmentContainer> read =
            MailAttachments::attachments(messageOf(threeAttachments()));
        QCOMPARE(read.size(), 3);
        QCOMPARE(read.at(0).displayName(), QStringLiteral("Bild.png"));
        QVERIFY(read.at(0).isInline());
        QCOMPARE(read.at(1).displayName(), QStringLiteral("Grüße.pdf"));
        QCOMPARE(read.at(1).fileReference(), QStringLiteral("5%3a1%3a1"));
        QCOMPARE(read.at(1).estimatedDataSize(), 200);
        QCOMPARE(read.at(1).method(), EasAttachmentContainer::NormalAttachmentMethod);
        QCOMPARE(read.at(2).fileReference(), QStringLiteral("mail/Projects%2FGr%26APYA3w-e/5/2"));
    }

    void locationsTellWhatIsStillToBeFetched()
    {
        QMailMessage message = messageOf(threeAttachments());
        message.setId(QMailMessageId(7));
        const QStringList wanted { "7-1.2", "7-2", "7-3" };
        QCOMPARE(MailAttachments::locations(message, false), wanted);
        QVERIFY(MailAttachments::locations(message, true).isEmpty());
        QVERIFY(MailAttachments::fillPart(&message, "7-2", "application/pdf", QByteArray("%PDF"), QString()));
        QCOMPARE(MailAttachments::locations(message, false), QStringList({ "7-1.2", "7-3" }));
        QCOMPARE(MailAttachments::locations(message, true), QStringList { "7-2" });
    }

    void aFetchedPartHasItsNameAndTypeBack()
    {
        QMailMessage message = messageOf(threeAttachments());
        message.setId(QMailMessageId(7));
        const QByteArray data("\x00\xFF\r\n\n binary", 12);
        QVERIFY(MailAttachments::fillPart(&message, "7-2", "application/pdf", data, QString()));
        const QMailMessagePart part = message.partAt(1U);
        QVERIFY(part.contentType().matches("application", "pdf"));
        QCOMPARE(QMailMessageHeaderField::decodeWord(part.contentDisposition().filename()),
            QStringLiteral("Grüße.pdf"));
        QCOMPARE(part.contentDisposition().size(), data.size());
        QCOMPARE(part.body().data(QMailMessageBody::Decoded), data);
        QVERIFY(MailAttachments::isDownloaded(part));
        QVERIFY(MailAttachments::fileReference(part).isEmpty());
    }

    void anEmptyFileIsFetchedToo()
    {
        QMailMessage message = messageOf(threeAttachments());
        message.setId(QMailMessageId(7));
        QVERIFY(MailAttachments::fillPart(&message, "7-3", "text/plain", QByteArray(), "other.txt"));
        QCOMPARE(message.partAt(2U).contentDisposition().filename(), QByteArray("other.txt"));
        QVERIFY(MailAttachments::isDownloaded(message.partAt(2U)));
    }

    void namesAndReferencesSurviveThePart_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("letters above ASCII") << "üby.pdf";
        QTest::newRow("letters above ASCII and blanks") << "Grüße aus: Köln.pdf";
        QTest::newRow("a double quote") << "a\"b; size=9";
        QTest::newRow("percent") << "5%3a1%3a\"1%";
        QTest::newRow("specials") << "mail/A (b)=c,d;\\#e?.pdf";
        QTest::newRow("an encoded word of the server") << "=?UTF-8?B?eHl6?=";
    }
    void namesAndReferencesSurviveThePart()
    {
        QFETCH(QString, text);
        QMailMessage message = messageOf(itemWith({ MailFixture::attachment(text, text, 12) }));
        message.setId(QMailMessageId(7));
        const EasAttachmentContainer proxy = MailAttachments::attachments(message).value(0);
        QCOMPARE(proxy.displayName(), text);
        QCOMPARE(proxy.fileReference(), text);
        QCOMPARE(proxy.estimatedDataSize(), 12);
        QCOMPARE(MailAttachments::fileReference(message.partAt(1U)), text);

        QVERIFY(MailAttachments::fillPart(&message, "7-2", "application/pdf", QByteArray("%PDF-1.7"), text));
        const QMailMessagePart part = message.partAt(1U);
        QCOMPARE(part.contentDisposition().size(), 8);
        QCOMPARE(part.displayName(), text);
        QCOMPARE(MailAttachments::attachments(message).value(0).displayName(), text);
    }

    void aDoubtfulTypeIsPlainOctets()
    {
        QMailMessage message = messageOf(threeAttachments());
        message.setId(QMailMessageId(7));
        QVERIFY(MailAttachments::fillPart(&message, "2", "(null)/(null)", QByteArray("x"), QString()));
        QVERIFY(message.partAt(1U).contentType().matches("application", "octet-stream"));
        QVERIFY(MailAttachments::fillPart(
            &message, "3", "text/calendar; method=REQUEST", QByteArray("x"), QString()));
        QVERIFY(message.partAt(2U).contentType().matches("text", "calendar"));
    }

    void onlyWellFormedLocationsOfThisMessageAreKnown_data()
    {
        QTest::addColumn<QString>("location");
        QTest::addColumn<bool>("known");

        QTest::newRow("with the message") << "7-2" << true;
        QTest::newRow("without a message") << "2" << true;
        QTest::newRow("of no message") << "0-1.2" << true;
        QTest::newRow("of another message") << "8-2" << false;
        QTest::newRow("not there") << "7-4" << false;
        QTest::newRow("below a leaf") << "7-2.1" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("a zero index") << "7-0" << false;
        QTest::newRow("letters") << "7-a" << false;
        QTest::newRow("a path") << "../../etc/passwd" << false;
        QTest::newRow("too large") << "7-4294967297" << false;
        QTest::newRow("too deep") << QString("1.").repeated(2000) + "1" << false;
    }
    void onlyWellFormedLocationsOfThisMessageAreKnown()
    {
        QFETCH(QString, location);
        QFETCH(bool, known);
        QMailMessage message = messageOf(threeAttachments());
        message.setId(QMailMessageId(7));
        QCOMPARE(MailAttachments::partAt(message, location) != nullptr, known);
        LogCollector log;
        QCOMPARE(
            MailAttachments::fillPart(&message, location, "text/plain", QByteArray("x"), QString()), known);
        QCOMPARE(log.contains("can't find attachment part in the message"), !known);
    }

    void theBodyIsNoAttachment()
    {
        QMailMessage message = messageOf(threeAttachments());
        message.setId(QMailMessageId(7));
        QVERIFY(!MailAttachments::isAttachment(*MailAttachments::partAt(message, "1.1")));
        QVERIFY(MailAttachments::isAttachment(*MailAttachments::partAt(message, "1.2")));
        QVERIFY(MailAttachments::isAttachment(*MailAttachments::partAt(message, "2")));
    }

    void hostileNamesAreData()
    {
        LogCollector log;
        const QString name = QStringLiteral("../../etc/passwd\r\nX-Evil: 1") + QChar(0) + QChar(0x202E);
        const QString reference = QStringLiteral("ref\r\nX-Evil: 1");
        const QMailMessage message = messageOf(itemWith({ MailFixture::attachment(name, reference, 1) }));
        QCOMPARE(MailAttachments::attachments(message).at(0).displayName(), name);
        QVERIFY(MailAttachments::attachments(message).at(0).fileReference().isEmpty());
        QVERIFY(log.contains("file reference holds control characters"));
        QVERIFY(!message.toRfc2822().contains("\nX-Evil"));
    }

    void hostileSizesStayNumbers()
    {
        const int most = std::numeric_limits<int>::max();
        QMailMessage message;
        const EasEmailItem item = itemWith({ MailFixture::attachment("a", "1", most),
            MailFixture::attachment("b", "2", most), MailFixture::attachment("c", "3", -7) });
        MailBodyWriter::setMessageBody(message, item.body(), true);
        QCOMPARE(MailAttachments::setAttachmentsToMailMessage(&message, item), most);
        QCOMPARE(MailAttachments::updateAttachments(&message, item), most);
        const QList<EasAttachmentContainer> back = MailAttachments::attachments(message);
        QCOMPARE(back.size(), 3);
        QCOMPARE(back.at(1).estimatedDataSize(), most);
        QCOMPARE(back.at(2).estimatedDataSize(), 0);
    }

    void theSameAttachmentsKeepTheirContent()
    {
        QMailMessage message = messageOf(threeAttachments());
        QVERIFY(MailAttachments::fillPart(&message, "2", "application/pdf", QByteArray("%PDF"), QString()));
        EasEmailItem again = threeAttachments();
        QList<EasAttachmentContainer> attachments = again.attachments();
        attachments[2].setFileReference("new reference");
        again.setAttachments(attachments);
        QCOMPARE(MailAttachments::updateAttachments(&message, again), 600);
        QCOMPARE(message.partAt(1U).body().data(QMailMessageBody::Decoded), QByteArray("%PDF"));
        QCOMPARE(message.partAt(2U).contentDisposition().filename(), QByteArray("new reference"));
    }

    void otherAttachmentsReplaceThemWithoutNesting()
    {
        QMailMessage message = messageOf(threeAttachments());
        for (int round = 0; round < 3; ++round) {
            EasAttachmentContainer picture = MailFixture::attachment("p.png", "p", 1, true);
            const QString name = QStringLiteral("round%1.txt").arg(round);
            MailAttachments::updateAttachments(
                &message, itemWith({ picture, MailFixture::attachment(name, "r", 2) }));
            QCOMPARE(message.multipartType(), QMailMessage::MultipartMixed);
            QCOMPARE(message.partCount(), 2U);
            QCOMPARE(message.partAt(0U).multipartType(), QMailMessage::MultipartRelated);
            QCOMPARE(message.partAt(0U).partCount(), 2U);
            QCOMPARE(message.partAt(0U).partAt(0U).body().data(), QStringLiteral("<p>See below</p>"));
            QCOMPARE(MailAttachments::attachments(message).at(1).displayName(), name);
        }
    }

    void attachmentsThatGoLeaveTheBody()
    {
        QMailMessage message = messageOf(threeAttachments());
        QCOMPARE(MailAttachments::updateAttachments(&message, itemWith({})), 0);
        QCOMPARE(message.multipartType(), QMailMessage::MultipartNone);
        QCOMPARE(message.body().data(), QStringLiteral("<p>See below</p>"));
        QVERIFY(!(message.status() & QMailMessage::HasAttachments));
    }

    void aCalendarPartSurvivesNewAttachments()
    {
        QMailMessage message;
        MailBodyWriter::setMessageBody(message, itemWith({}).body(), true);
        MailBodyWriter::addCalendarPart(message, "BEGIN:VCALENDAR");
        MailAttachments::setAttachmentsToMailMessage(&message, threeAttachments());
        MailAttachments::updateAttachments(
            &message, itemWith({ MailFixture::attachment("other.txt", "r", 2) }));
        QCOMPARE(message.multipartType(), QMailMessage::MultipartMixed);
        const QMailMessagePart content = message.partAt(0U);
        QCOMPARE(content.multipartType(), QMailMessage::MultipartAlternative);
        QVERIFY(content.partAt(1U).contentType().matches("text", "calendar"));
        QCOMPARE(MailAttachments::attachments(message).size(), 1);
    }
};

FENNEL_REGISTER_TEST(MailAttachmentsTest)
#include "mailattachmentstest.moc"
