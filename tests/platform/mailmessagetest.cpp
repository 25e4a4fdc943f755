// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

using namespace MailFixture;
typedef QMailMessagePart::Location Location;

/** Content of messages: bodies, parts, the traps of both, and what the store makes of them. */
class MailMessageTest : public QObject
{
    Q_OBJECT

private:
    QMailAccountId mAccount;
    QMailFolderId mInbox;

    /** Content that is not on the device. */
    static QMailMessagePart proxy(const QByteArray &name, const QByteArray &type, const char *disposition)
    {
        QMailMessageContentType contentType(type);
        contentType.setName(name);
        QMailMessageContentDisposition contentDisposition { QByteArray(disposition) };
        contentDisposition.setFilename("ref%3a1#" + name);
        contentDisposition.setSize(123);
        return QMailMessagePart::fromData(
            QByteArray(), contentDisposition, contentType, QMailMessageBody::NoEncoding);
    }

    QMailMessage stored(QMailMessage message)
    {
        message.setParentAccountId(mAccount);
        message.setParentFolderId(mInbox);
        if (!QMailStore::instance()->addMessage(&message))
            return QMailMessage();
        return QMailMessage(message.id());
    }

    static QString structure(const QMailMessagePartContainer &container)
    {
        const QString type = QString::fromLatin1(container.contentType().content());
        if (container.partCount() == 0)
            return type;
        QStringList parts;
        for (uint i = 0; i < container.partCount(); ++i)
            parts.append(structure(container.partAt(i)));
        return type + QLatin1Char('(') + parts.join(QLatin1Char(' ')) + QLatin1Char(')');
    }

    static QStringList texts(const QList<Location> &locations)
    {
        QStringList list;
        for (const Location &location : locations)
            list.append(location.toString(false));
        return list;
    }

private Q_SLOTS:
    void initTestCase()
    {
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
    }

    void theContentTypeIsOnlyWhatWasSet()
    {
        QMailMessage message;
        message.setBody(textBody(QStringLiteral("<b>"), "text/html; charset=UTF-8"));
        QCOMPARE(message.content(), QMailMessage::UnknownContent);
        QCOMPARE(message.size(), 0u);
        QVERIFY(!message.contentAvailable());
        QCOMPARE(message.contentType().charset(), QByteArray("utf-8"));
    }

    void bodiesEncodeAndDecode()
    {
        const QMailMessageContentType text("text/plain; charset=UTF-8");
        const QMailMessageBody lines =
            QMailMessageBody::fromData(QStringLiteral("a\n\u00e4\n"), text, QMailMessageBody::EightBit);
        QCOMPARE(lines.data(QMailMessageBody::Encoded), QByteArray("a\r\n\u00e4\r\n"));
        QCOMPARE(lines.data(), QStringLiteral("a\n\u00e4\n"));
        const QMailMessageBody base64 = QMailMessageBody::fromData(
            QByteArray("abc"), text, QMailMessageBody::Base64, QMailMessageBody::RequiresEncoding);
        QCOMPARE(base64.length(), 4);
        QCOMPARE(base64.data(QMailMessageBody::Decoded), QByteArray("abc"));
        const QByteArray octets("\x00\xff\r\n\n=\x80", 7);
        for (const auto encoding : { QMailMessageBody::NoEncoding, QMailMessageBody::Base64,
                 QMailMessageBody::QuotedPrintable, QMailMessageBody::Binary }) {
            const QMailMessageBody body =
                QMailMessageBody::fromData(octets, QMailMessageContentType("application/octet-stream"),
                    encoding, QMailMessageBody::RequiresEncoding);
            QCOMPARE(body.data(QMailMessageBody::Decoded), octets);
        }
        const QMailMessageBody quoted = QMailMessageBody::fromData(
            QStringLiteral("\u00e4 = b\nc"), text, QMailMessageBody::QuotedPrintable);
        QCOMPARE(quoted.data(), QStringLiteral("\u00e4 = b\nc"));
        QVERIFY(!quoted.data(QMailMessageBody::Encoded).contains(char(0xc3)));
        const QMailMessageBody raw = QMailMessageBody::fromData(
            QByteArray("a\nb"), text, QMailMessageBody::NoEncoding, QMailMessageBody::RequiresEncoding);
        QCOMPARE(raw.data(QMailMessageBody::Encoded), QByteArray("a\nb"));
    }

    void aBodyMakesThePreviewStale()
    {
        QMailMessage message;
        message.setPreview(QStringLiteral("given"));
        message.setBody(textBody(QStringLiteral("the text ").repeated(60)));
        QCOMPARE(message.preview(), QStringLiteral("the text ").repeated(60).left(280));
        message.setPreview(QStringLiteral("given again"));
        QCOMPARE(message.preview(), QStringLiteral("given again"));
        QCOMPARE(stored(message).preview(), QStringLiteral("given again"));

        message.setBody(
            textBody(QStringLiteral("<style>p{}</style><p>one&nbsp;&amp; <b>two</b>&#33;"), "text/html"));
        QCOMPARE(message.preview(), QStringLiteral("one & two !"));

        QMailMessage empty;
        empty.setPreview(QStringLiteral("given"));
        empty.setBody(textBody(QString()));
        QCOMPARE(stored(empty).preview(), QStringLiteral("given"));

        QMailMessage withParts;
        withParts.setPreview(QStringLiteral("given"));
        withParts.setMultipartType(QMailMessage::MultipartMixed);
        QMailMessagePart part;
        part.setBody(textBody(QStringLiteral("text")));
        withParts.appendPart(part);
        QCOMPARE(withParts.preview(), QStringLiteral("given"));
    }

    void locationsAreOneBased()
    {
        QVERIFY(Location(QStringLiteral("7-1.2")).isValid(true));
        QVERIFY(!Location(QStringLiteral("1.2")).isValid(true));
        QVERIFY(Location(QStringLiteral("1.2")).isValid(false));
        QVERIFY(!Location(QString()).isValid(false));
        QVERIFY(!Location().isValid(true));
        QCOMPARE(Location(QStringLiteral("7-1.2")).containingMessageId(), QMailMessageId(7));
        QCOMPARE(Location(QStringLiteral("1.2")).toString(true), QStringLiteral("0-1.2"));
        QVERIFY(!Location(QStringLiteral("x.0")).isValid(false));
    }

    void inlineThenAttachmentsGivesTheKnownStructure()
    {
        QMailMessage message;
        message.setBody(textBody(QStringLiteral("<b>html</b>"), "text/html; charset=UTF-8"));
        const QMailMessagePart image = proxy("i.png", "image/png", "inline");
        const QMailMessagePart one = proxy("one.pdf", "application/pdf", "attachment");
        const QMailMessagePart two = proxy("two.txt", "text/plain", "attachment");
        message.setInlineImages({ &image });
        message.setAttachments({ &one, &two });
        const QString expected = QStringLiteral(
            "multipart/mixed(multipart/related(text/html image/png) application/pdf text/plain)");
        QCOMPARE(structure(message), expected);
        QCOMPARE(texts(message.findAttachmentLocations()),
            (QStringList { QStringLiteral("2"), QStringLiteral("3") }));
        QCOMPARE(texts(message.findInlineImageLocations()), QStringList { QStringLiteral("1.2") });
        QCOMPARE(texts(message.findInlinePartLocations()), QStringList { QStringLiteral("1.2") });

        QMailMessage loaded = stored(message);
        QCOMPARE(structure(loaded), expected);
        const Location place(QStringLiteral("999-2")); // Another message's number does not matter.
        QVERIFY(loaded.contains(place));
        QVERIFY(!loaded.contains(Location(QStringLiteral("4"))));
        QVERIFY(!loaded.contains(Location(QStringLiteral("1.2.1"))));
        const QMailMessagePart &part = qAsConst(loaded).partAt(place);
        QVERIFY(!part.hasBody());
        QVERIFY(!part.contentAvailable());
        QVERIFY(!part.partialContentAvailable());
        QCOMPARE(part.displayName(), QStringLiteral("one.pdf"));
        QCOMPARE(part.contentDisposition().filename(), QByteArray("ref%3a1#one.pdf"));
        QCOMPARE(part.contentDisposition().size(), 123);
        QCOMPARE(part.location().containingMessageId(), loaded.id());
        QCOMPARE(loaded.findHtmlContainer()->body().data(), QStringLiteral("<b>html</b>"));
        QVERIFY(loaded.hasHtmlBody());
        QVERIFY(!loaded.hasPlainTextBody()); // The text that is there is an attachment.

        // setAttachments() repeats freely.
        loaded.setAttachments({ &one });
        loaded.setAttachments({ &two });
        QCOMPARE(structure(loaded),
            QStringLiteral("multipart/mixed(multipart/related(text/html image/png) text/plain)"));

        // Rebuilding from the body gives the clean structure again.
        const QMailMessageBody body = loaded.findHtmlContainer()->body();
        loaded.clearParts();
        loaded.setMultipartType(QMailMessage::MultipartNone);
        loaded.setBody(body);
        loaded.setInlineImages({ &image });
        loaded.setAttachments({ &one, &two });
        QCOMPARE(structure(loaded), expected);
        QVERIFY(QMailStore::instance()->updateMessage(&loaded));
        QCOMPARE(structure(QMailMessage(loaded.id())), expected);
    }

    void inlineImagesOnAMixedNestIt()
    {
        QMailMessage message;
        message.setBody(textBody(QStringLiteral("t")));
        const QMailMessagePart image = proxy("i.png", "image/png", "inline");
        const QMailMessagePart one = proxy("one.pdf", "application/pdf", "attachment");
        message.setAttachments({ &one });
        message.setInlineImages({ &image });
        QCOMPARE(structure(message),
            QStringLiteral("multipart/related(multipart/mixed(text/plain application/pdf) image/png)"));
    }

    void withoutABodyTheFirstPartIsEmpty()
    {
        QMailMessage message;
        const QMailMessagePart one = proxy("one.pdf", "application/pdf", "attachment");
        message.setAttachments({ &one });
        const QMailMessage loaded = stored(message);
        QCOMPARE(structure(loaded), QStringLiteral("multipart/mixed(text/plain application/pdf)"));
        QVERIFY(!loaded.partAt(0).hasBody());
    }

    void theTextBodyIsReplacedWhereItIs()
    {
        QMailMessage message = QMailMessage::fromRfc2822(
            "Content-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n"
            "Content-Type: multipart/alternative; boundary=y\r\n\r\n"
            "--y\r\n\r\nplain\r\n--y\r\nContent-Type: text/html\r\n\r\n<b>\r\n--y--\r\n"
            "--x\r\nContent-Type: image/png\r\nContent-Disposition: attachment\r\n\r\nx\r\n--x--\r\n");
        QVERIFY(message.hasPlainTextBody());
        QVERIFY(message.hasHtmlBody());
        QVERIFY(message.status() & QMailMessage::HasAttachments);
        message.setPlainTextBody(textBody(QStringLiteral("<i>new</i>"), "text/html; charset=UTF-8"));
        QCOMPARE(structure(message), QStringLiteral("multipart/mixed(text/html image/png)"));
        QVERIFY(message.hasHtmlBody());
        QVERIFY(!message.hasPlainTextBody());

        QMailMessage noText;
        noText.setMultipartType(QMailMessage::MultipartMixed);
        noText.appendPart(proxy("a", "image/png", "attachment"));
        noText.setPlainTextBody(textBody(QStringLiteral("t")));
        QCOMPARE(structure(noText), QStringLiteral("multipart/mixed(text/plain image/png)"));
    }

    void aMultipartTypeDropsTheBody()
    {
        QMailMessage message;
        message.setBody(textBody(QStringLiteral("b"), "text/html; charset=UTF-8"));
        message.setMultipartType(QMailMessage::MultipartAlternative);
        QVERIFY(!message.hasBody());
        QCOMPARE(message.contentType().content(), QByteArray("multipart/alternative"));
        QCOMPARE(message.contentType().charset(), QByteArray("utf-8"));
    }

    void copiesAreIndependent()
    {
        QMailMessage message;
        const QMailMessagePart one = proxy("one", "application/pdf", "attachment");
        message.setAttachments({ &one });
        const QMailMessage loaded = stored(message);
        QMailMessage copy = loaded;
        copy.removePartAt(1);
        copy.partAt(0).setContentID(QStringLiteral("changed"));
        QCOMPARE(copy.partCount(), 1u);
        QCOMPARE(loaded.partCount(), 2u);
        QVERIFY(loaded.partAt(0).contentID().isEmpty());
        QCOMPARE(QMailMessage(loaded.id()).partCount(), 2u);
        QVERIFY(copy.contentModified());
        QVERIFY(!loaded.contentModified());
    }

    void partsKnowTheirNames()
    {
        QMailMessagePart part = proxy("=?UTF-8?B?R3LDvMOfZQ==?=", "image/png", "attachment");
        QCOMPARE(part.displayName(), QStringLiteral("Gr\u00fc\u00dfe"));
        QCOMPARE(part.contentType().name(), QByteArray("=?UTF-8?B?R3LDvMOfZQ==?="));
        part.setContentID(QStringLiteral("<id@x>"));
        QCOMPARE(part.contentID(), QStringLiteral("id@x"));
        QCOMPARE(part.headerFieldText(QStringLiteral("Content-ID")), QStringLiteral("<id@x>"));
        QCOMPARE(part.identifier(), QStringLiteral("id@x"));
        QMailMessage message;
        message.setMultipartType(QMailMessage::MultipartMixed);
        message.appendPart(QMailMessagePart::fromData(QByteArray("x"), QMailMessageContentDisposition(),
            QMailMessageContentType("a/b"), QMailMessageBody::NoEncoding));
        message.appendPart(qAsConst(message).partAt(0));
        QCOMPARE(message.partAt(1).displayName(), QStringLiteral("1 a/b"));
        QCOMPARE(message.partAt(1).identifier(), QStringLiteral("1"));
        QCOMPARE(message.partAt(1).location().toString(false), QStringLiteral("2"));
        message.removePartAt(0);
        QCOMPARE(message.partAt(0).location().toString(false), QStringLiteral("1"));
    }

    void binaryPartsSurviveTheStore()
    {
        const QByteArray octets("\x00\xff\n\r\n--x", 8);
        QMailMessage message;
        message.setMultipartType(QMailMessage::MultipartMixed);
        message.appendPart(QMailMessagePart::fromData(octets, QMailMessageContentDisposition(),
            QMailMessageContentType("application/octet-stream"), QMailMessageBody::NoEncoding,
            QMailMessageBody::AlreadyEncoded));
        QCOMPARE(stored(message).partAt(0).body().data(QMailMessageBody::Decoded), octets);
        const QMailMessage travelled = QMailMessage::fromRfc2822(message.toRfc2822());
        QCOMPARE(travelled.partAt(0).body().data(QMailMessageBody::Decoded), octets);
    }
};

FENNEL_REGISTER_TEST(MailMessageTest)
#include "mailmessagetest.moc"
