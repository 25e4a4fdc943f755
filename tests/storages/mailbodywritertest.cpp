// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailbodywriter.h"
#include "easitems/containers/easbodycontainer.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmailmessage.h>

#include <QtTest>

namespace {

bool has(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

const QByteArray mimeText("From: Bob <bob@example.org>\r\nTo: alice@example.org\r\nSubject: Signed\r\n"
                          "Date: Tue, 3 Mar 2026 04:05:06 +0000\r\nMIME-Version: 1.0\r\n"
                          "Content-Type: text/plain; charset=UTF-8\r\n\r\nHello from MIME\r\n");

const QByteArray mimeWithAttachment(
    "From: bob@example.org\r\nTo: alice@example.org\r\nSubject: Mixed\r\nMIME-Version: 1.0\r\n"
    "Content-Type: multipart/mixed; boundary=\"xyz\"\r\n\r\n"
    "--xyz\r\nContent-Type: text/plain\r\n\r\nHello\r\n"
    "--xyz\r\nContent-Type: application/pdf; name=\"a.pdf\"\r\n"
    "Content-Disposition: attachment; filename=\"a.pdf\"\r\n\r\nPDF\r\n--xyz--\r\n");

} // namespace

class MailBodyWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachBodyTypeHasItsForm_data()
    {
        QTest::addColumn<int>("bodyType");
        QTest::addColumn<QByteArray>("subType");
        QTest::addColumn<int>("content");

        QTest::newRow("unspecified") << -1 << QByteArray() << int(QMailMessage::UnknownContent);
        QTest::newRow("plain") << 1 << QByteArray("plain") << int(QMailMessage::PlainTextContent);
        QTest::newRow("HTML") << 2 << QByteArray("html") << int(QMailMessage::HtmlContent);
        QTest::newRow("RTF") << 3 << QByteArray("plain") << int(QMailMessage::RichTextContent);
        QTest::newRow("unknown") << 9 << QByteArray("plain") << int(QMailMessage::UnknownContent);
    }
    void eachBodyTypeHasItsForm()
    {
        QFETCH(int, bodyType);
        QFETCH(QByteArray, subType);
        QFETCH(int, content);
        LogCollector log;
        QMailMessage message;
        const QString text = QStringLiteral("Grüße & <b>bold</b>");
        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::BodyType(bodyType), text), true);
        QCOMPARE(message.contentType().subType().toLower(), subType);
        QCOMPARE(int(message.content()), content);
        if (bodyType > 0)
            QCOMPARE(message.body().data(), text);
        QVERIFY(has(message, QMailMessage::ContentAvailable));
        QVERIFY(has(message, QMailMessage::PartialContentAvailable));
        QVERIFY(log.contains("handling non-MIME email body"));
        QCOMPARE(log.contains("unhandled body type"), bodyType == 9);
    }

    void aTruncatedBodyIsNotStored()
    {
        QMailMessage message;
        EasBodyContainer body = MailFixture::body(EasBodyContainer::PlainTextBodyType, "The beginn");
        body.setTruncated(true);
        body.setPreview("A preview");
        MailBodyWriter::setMessageBody(message, body, true);
        QVERIFY(!message.hasBody());
        QVERIFY(!has(message, QMailMessage::ContentAvailable));
        QVERIFY(has(message, QMailMessage::PartialContentAvailable));
        QCOMPARE(message.preview(), QStringLiteral("A preview"));
    }

    void aTruncatedBodyWithoutDataHasNothingAvailable()
    {
        QMailMessage message;
        EasBodyContainer body;
        body.setTruncated(true);
        MailBodyWriter::setMessageBody(message, body, true);
        QVERIFY(!has(message, QMailMessage::ContentAvailable));
        QVERIFY(!has(message, QMailMessage::PartialContentAvailable));
        QVERIFY(message.preview().isEmpty());
    }

    void aTruncatedBodyWithoutPreviewIsItsOwn()
    {
        QMailMessage message;
        EasBodyContainer body = MailFixture::body(EasBodyContainer::PlainTextBodyType, "The beginn");
        body.setTruncated(true);
        MailBodyWriter::setMessageBody(message, body, true);
        QCOMPARE(message.preview(), QStringLiteral("The beginn"));
    }

    void aTruncatedBodyLeavesTheOneThatIsThere()
    {
        QMailMessage message;
        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::PlainTextBodyType, "All of it"), true);
        EasBodyContainer truncated = MailFixture::body(EasBodyContainer::PlainTextBodyType, "All");
        truncated.setTruncated(true);
        MailBodyWriter::setMessageBody(message, truncated, false);
        QCOMPARE(message.body().data(), QStringLiteral("All of it"));
        QVERIFY(!has(message, QMailMessage::ContentAvailable));
    }

    void aGivenPreviewStandsBesideABody()
    {
        QMailMessage message;
        EasBodyContainer body = MailFixture::body(EasBodyContainer::HTMLBodyType, "<p>The whole text</p>");
        body.setPreview("The server's words");
        MailBodyWriter::setMessageBody(message, body, true);
        QCOMPARE(message.preview(), QStringLiteral("The server's words"));
        QCOMPARE(message.preview(), QStringLiteral("The server's words"));
    }

    void aMimeBodyKeepsWhatBindsTheMessage()
    {
        LogCollector log;
        QMailMessage message;
        message.setId(QMailMessageId(7));
        message.setParentAccountId(QMailAccountId(3));
        message.setParentFolderId(QMailFolderId(5));
        message.setPreviousParentFolderId(QMailFolderId(6));
        message.setInResponseTo(QMailMessageId(2));
        message.setRestoreFolderId(QMailFolderId(8));
        message.setServerUid("5:12");
        message.setReceivedDate(QMailTimeStamp(QDateTime(QDate(2026, 3, 4), QTime(1, 2), Qt::UTC)));
        message.setStatus(QMailMessage::Read, true);
        message.setSubject("before");

        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::MIMEBodyType, QString::fromUtf8(mimeText)), false);
        QVERIFY(log.contains("handling MIME body"));
        QCOMPARE(message.id(), QMailMessageId(7));
        QCOMPARE(message.parentAccountId(), QMailAccountId(3));
        QCOMPARE(message.parentFolderId(), QMailFolderId(5));
        QCOMPARE(message.previousParentFolderId(), QMailFolderId(6));
        QCOMPARE(message.inResponseTo(), QMailMessageId(2));
        QCOMPARE(message.restoreFolderId(), QMailFolderId(8));
        QCOMPARE(message.serverUid(), QStringLiteral("5:12"));
        QVERIFY(message.receivedDate().isValid());
        QVERIFY(has(message, QMailMessage::Read));
        QVERIFY(has(message, QMailMessage::ContentAvailable));
        QCOMPARE(message.subject(), QStringLiteral("Signed"));
        QCOMPARE(message.from().address(), QStringLiteral("bob@example.org"));
        QCOMPARE(message.body().data().trimmed(), QStringLiteral("Hello from MIME"));
    }

    void aMimeBodyTellsWhetherThereAreAttachments()
    {
        QMailMessage message;
        MailBodyWriter::setMessageBody(message,
            MailFixture::body(EasBodyContainer::MIMEBodyType, QString::fromUtf8(mimeWithAttachment)), false);
        QVERIFY(has(message, QMailMessage::HasAttachments));
        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::MIMEBodyType, QString::fromUtf8(mimeText)), false);
        QVERIFY(!has(message, QMailMessage::HasAttachments));
    }

    void aCalendarPartStandsBesideTheContent()
    {
        QMailMessage message;
        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::HTMLBodyType, "<p>Come</p>"), true);
        MailBodyWriter::addCalendarPart(message, "BEGIN:VCALENDAR");
        QCOMPARE(message.multipartType(), QMailMessage::MultipartAlternative);
        QCOMPARE(message.partCount(), 2U);
        QVERIFY(message.partAt(0U).contentType().matches("text", "html"));
        QCOMPARE(message.partAt(0U).body().data(), QStringLiteral("<p>Come</p>"));
        QVERIFY(message.partAt(1U).contentType().matches("text", "calendar"));
        QCOMPARE(message.partAt(1U).contentType().parameter("method"), QByteArray("REQUEST"));
        QCOMPARE(message.partAt(1U).body().data(QMailMessageBody::Decoded).trimmed(),
            QByteArray("BEGIN:VCALENDAR"));
    }

    void aNewBodyLeavesTheCalendarPart()
    {
        QMailMessage message;
        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::PlainTextBodyType, "Come"), true);
        MailBodyWriter::addCalendarPart(message, "BEGIN:VCALENDAR");
        MailBodyWriter::setMessageBody(
            message, MailFixture::body(EasBodyContainer::PlainTextBodyType, "Come, all of you"), false);
        QCOMPARE(message.partCount(), 2U);
        QCOMPARE(message.partAt(0U).body().data(), QStringLiteral("Come, all of you"));
        QVERIFY(message.partAt(1U).contentType().matches("text", "calendar"));
    }

    void multipartContentMovesAsAWhole()
    {
        QMailMessage message = QMailMessage::fromRfc2822(mimeWithAttachment);
        MailBodyWriter::addCalendarPart(message, "BEGIN:VCALENDAR");
        QCOMPARE(message.multipartType(), QMailMessage::MultipartAlternative);
        QCOMPARE(message.partCount(), 2U);
        QCOMPARE(message.partAt(0U).multipartType(), QMailMessage::MultipartMixed);
        QCOMPARE(message.partAt(0U).partCount(), 2U);
    }
};

FENNEL_REGISTER_TEST(MailBodyWriterTest)
#include "mailbodywritertest.moc"
