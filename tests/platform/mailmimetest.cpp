// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

using namespace MailFixture;

/** Messages as text: received ones, composed ones, hostile ones. */
class MailMimeTest : public QObject
{
    Q_OBJECT

private:
    QMailAccountId mAccount;
    QMailFolderId mInbox;

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

private Q_SLOTS:
    void initTestCase()
    {
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
    }

    void headerValuesKeepWhatTheyWereGiven()
    {
        QMailMessageContentType type("Text/HTML; charset=UTF-8; name=\"a b\"");
        QCOMPARE(type.type(), QByteArray("Text"));
        QVERIFY(type.matches("text", "html"));
        QVERIFY(type.matches("TEXT"));
        QVERIFY(!type.matches("text", "plain"));
        QCOMPARE(type.name(), QByteArray("a b"));
        type.setType("");
        QVERIFY(type.content().isEmpty());
        QVERIFY(type.subType().isEmpty());
        QCOMPARE(type.charset(), QByteArray("UTF-8"));

        QMailMessageContentDisposition disposition(QMailMessageContentDisposition::Inline);
        QCOMPARE(disposition.size(), -1);
        QCOMPARE(QMailMessageContentDisposition().type(), QMailMessageContentDisposition::None);
        for (const QByteArray &name :
            { QByteArray("ref%3a1"), QByteArray("a#b;c=(d) e\\"), QByteArray("=?UTF-8?B?Z3LDvG4ucGRm?=") }) {
            disposition.setFilename(name);
            disposition.setSize(9);
            QMailMessagePart part;
            part.setContentDisposition(disposition);
            QCOMPARE(part.contentDisposition().filename(), name);
            QCOMPARE(part.contentDisposition().size(), 9);
        }
        QCOMPARE(QMailMessageContentType("a/b; name*=ISO-8859-1''gr%FCn").name(), QByteArray("gr\u00fcn"));
        QCOMPARE(QMailMessageContentType("a/b; name*0=\"one \"; name*1=two").name(), QByteArray("one two"));
    }

    /** What the store makes of them on the device; the objects outside of a part keep them. */
    void someFileNamesDoNotSurviveAPart_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("kept");
        QTest::addColumn<int>("size");
        QTest::newRow("letters above ASCII") << QByteArray("\u00fcby.pdf") << QByteArray() << -1;
        QTest::newRow("letters above ASCII in quotes")
            << QByteArray("1:\u00fc") << QByteArray("=?ISO-8859-1?Q?1:=C3=BC?=") << 9;
        QTest::newRow("a double quote") << QByteArray("a\"b") << QByteArray("a\"b; size=9") << -1;
    }
    void someFileNamesDoNotSurviveAPart()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, kept);
        QFETCH(int, size);
        QMailMessageContentDisposition disposition(QMailMessageContentDisposition::Attachment);
        disposition.setFilename(name);
        disposition.setSize(9);
        QCOMPARE(disposition.filename(), name);
        const QMailMessagePart part = QMailMessagePart::fromData(QByteArray("x"), disposition,
            QMailMessageContentType("application/pdf"), QMailMessageBody::NoEncoding);
        QCOMPARE(part.contentDisposition().type(), QMailMessageContentDisposition::Attachment);
        QCOMPARE(part.contentDisposition().filename(), kept);
        QCOMPARE(part.contentDisposition().size(), size);
    }

    void anEncodedFileNameIsDecodedWhereItIsShown()
    {
        QMailMessageContentDisposition disposition(QMailMessageContentDisposition::Attachment);
        disposition.setFilename("=?UTF-8?B?Z3LDvG4ucGRm?=");
        const QMailMessagePart part = QMailMessagePart::fromData(QByteArray("x"), disposition,
            QMailMessageContentType("application/pdf"), QMailMessageBody::NoEncoding);
        QCOMPARE(part.identifier(), QStringLiteral("gr\u00fcn.pdf"));
        QCOMPARE(part.displayName(), QStringLiteral("gr\u00fcn.pdf"));
    }

    void encodedWordsRoundTrip()
    {
        for (const QString &text :
            { QStringLiteral("plain"), QStringLiteral("Gr\u00fc\u00dfe aus K\u00f6ln am Rhein"),
                QString(QStringLiteral("\u65e5\u672c\U0001F600 ")).repeated(60),
                QStringLiteral("a\r\nBcc: x@y"), QStringLiteral("=?looks like?="),
                QStringLiteral(" two  blanks ") }) {
            const QByteArray encoded = QMailMessageHeaderField::encodeWord(text);
            for (const char c : encoded)
                QVERIFY(c >= ' ' && c < 127);
            QCOMPARE(QMailMessageHeaderField::decodeWord(encoded), text);
        }
    }

    void aParsedMessageSaysWhatItsHeadersSay()
    {
        const QMailMessage message = QMailMessage::fromRfc2822(
            "From: =?UTF-8?B?R3LDvMOfZQ==?= <g@g.g>\r\nTo: a@a,\r\n \"B, C\" <b@b>\r\nCc: c@c\r\n"
            "Subject: =?ISO-8859-1?Q?gr=FCn?=\r\n und folded\r\nDate: Tue, 2 Jan 2024 05:04:05 +0200\r\n"
            "Content-Type: text/plain; charset=iso-8859-1\r\n"
            "Content-Transfer-Encoding: quoted-printable\r\n\r\nGr=FC=\r\n=DFe\r\n");
        QVERIFY(!message.id().isValid());
        QCOMPARE(message.messageType(), QMailMessage::Email);
        QCOMPARE(message.subject(), QStringLiteral("gr\u00fcn und folded"));
        QCOMPARE(message.from().name(), QStringLiteral("Gr\u00fc\u00dfe"));
        QCOMPARE(message.to().at(1).name(), QStringLiteral("B, C"));
        QCOMPARE(message.recipients().size(), 3);
        QCOMPARE(message.date().toUTC(), QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC));
        QVERIFY(!message.receivedDate().isValid());
        QCOMPARE(message.body().data(), QStringLiteral("Gr\u00fc\u00dfe\n"));
        QCOMPARE(message.status(), quint64(0));
        QCOMPARE(message.content(), QMailMessage::UnknownContent);
        QCOMPARE(message.size(), 0u);
        QVERIFY(message.contentScheme().isEmpty());
    }

    void receivedBytesAreKept_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a text") << QByteArray("Subject:  odd   blanks\r\nTo: a@a\r\n\r\ntext \t\r\n");
        QTest::newRow("line feeds alone") << QByteArray("Subject: x\n\nline\n");
        QTest::newRow("a multipart with all around it") << QByteArray(
            "Content-Type: multipart/mixed;\r\n\tboundary=\"a b\"\r\n\r\npreamble\r\n--a b\r\n\r\none"
            "\r\n--a b  \r\n\r\n\r\n--a b--\r\nepilogue");
        QTest::newRow("octets") << QByteArray("X: \xff\xfe\r\n\r\n\x00\x01\xff", 12);
        QTest::newRow("no header") << QByteArray("just text without a header");
        QTest::newRow("a multipart that was cut") << QByteArray(
            "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\nContent-Type: image/png\r\n\r\nabc");
    }

    void receivedBytesAreKept()
    {
        QFETCH(QByteArray, bytes);
        const QMailMessage loaded = stored(QMailMessage::fromRfc2822(bytes));
        QVERIFY(loaded.id().isValid());
        QCOMPARE(loaded.toRfc2822(QMailMessage::IdentityFormat), bytes);
        QMailMessage again(loaded.id());
        again.setStatus(QMailMessage::Read, true);
        QVERIFY(QMailStore::instance()->updateMessage(&again));
        QCOMPARE(QMailMessage(loaded.id()).toRfc2822(QMailMessage::IdentityFormat), bytes);
    }

    void hostileStructuresEnd()
    {
        QByteArray deep;
        for (int i = 0; i < 5000; ++i)
            deep += "Content-Type: multipart/mixed; boundary=b" + QByteArray::number(i) + "\r\n\r\n--b"
                + QByteArray::number(i) + "\r\n";
        QVERIFY(stored(QMailMessage::fromRfc2822(deep)).id().isValid());
        const QMailMessage wide = QMailMessage::fromRfc2822(
            "Content-Type: multipart/mixed; boundary=b\r\n\r\n" + QByteArray("--b\r\n\r\n").repeated(100000));
        QVERIFY(wide.partCount() <= 2000);
        QVERIFY(QMailMessage::fromRfc2822(QByteArray()).subject().isEmpty());
        QVERIFY(
            !QMailMessage::fromRfc2822("Content-Type: multipart/mixed; boundary=\"\"\r\n\r\nx").partCount());
    }

    void formatsDiffer()
    {
        QMailMessage message;
        message.setSubject(QStringLiteral("s\r\nBcc: evil@x"));
        message.setFrom(QMailAddress(QStringLiteral("Gr\u00fc\u00dfe, A"), QStringLiteral("g@g")));
        message.setTo({ QMailAddress(QStringLiteral("a@a")) });
        message.setBcc({ QMailAddress(QStringLiteral("secret@b")) });
        message.setBody(textBody(QStringLiteral("line\n")));
        const QByteArray sent = message.toRfc2822(QMailMessage::TransmissionFormat);
        QVERIFY(!sent.toLower().contains("\r\nbcc:"));
        QVERIFY(sent.contains("\r\nDate: "));
        QVERIFY(sent.contains("MIME-Version: 1.0\r\n\r\nline\r\n"));
        QVERIFY(!QByteArray(sent).replace("\r\n", "").contains('\n'));
        const QByteArray header = message.toRfc2822(QMailMessage::HeaderOnlyFormat);
        QVERIFY(header.contains("\r\nBcc: secret@b\r\n"));
        QVERIFY(header.contains("MIME-Version"));
        QVERIFY(!header.contains("line"));
        const QByteArray identity = message.toRfc2822(QMailMessage::IdentityFormat);
        QVERIFY(identity.contains("Bcc: secret@b\r\n"));
        QVERIFY(!identity.contains("MIME-Version"));
        QVERIFY(!identity.contains("\r\nDate: "));
        QVERIFY(!message.toRfc2822(QMailMessage::StorageFormat).contains("MIME-Version"));

        const QMailMessage parsed = QMailMessage::fromRfc2822(message.toRfc2822());
        QCOMPARE(parsed.from().name(), QStringLiteral("Gr\u00fc\u00dfe, A"));
        QCOMPARE(parsed.subject(), message.subject());
        QVERIFY(parsed.bcc().isEmpty());
    }

    void multipartsTravel()
    {
        QMailMessage message;
        message.setBody(textBody(QStringLiteral("text")));
        const QMailMessagePart file = QMailMessagePart::fromData(QByteArray("\x01\x02", 2),
            QMailMessageContentDisposition("attachment; filename=\"=?UTF-8?B?Z3LDvG4uYmlu?=\""),
            QMailMessageContentType("application/octet-stream"), QMailMessageBody::Base64);
        message.setAttachments({ &file });
        const QByteArray sent = message.toRfc2822();
        QVERIFY(sent.contains("multi-part message"));
        for (const char c : sent)
            QVERIFY(uchar(c) < 0x80);
        const QMailMessage parsed = QMailMessage::fromRfc2822(sent);
        QCOMPARE(structure(parsed), QStringLiteral("multipart/mixed(text/plain application/octet-stream)"));
        QCOMPARE(parsed.partAt(1).displayName(), QStringLiteral("gr\u00fcn.bin"));
        QCOMPARE(parsed.partAt(1).body().data(QMailMessageBody::Decoded), QByteArray("\x01\x02", 2));
        QCOMPARE(parsed.findPlainTextContainer()->body().data(), QStringLiteral("text"));
        QVERIFY(!message.toRfc2822(QMailMessage::StorageFormat).contains("AQI="));
    }

    void noLineOfAHeaderIsTooLong_data()
    {
        QTest::addColumn<QString>("word");
        QTest::newRow("letters") << QString(4000, QLatin1Char('x'));
        QTest::newRow("umlauts") << QString(4000, QChar(0xe4));
        QTest::newRow("quotes") << QStringLiteral("x\"").repeated(2000);
    }

    void noLineOfAHeaderIsTooLong()
    {
        QFETCH(QString, word);
        QMailMessage message;
        message.setSubject(word);
        message.setTo(QMailAddress(word, QStringLiteral("a@b.org")));
        QMailMessageContentType type("application/octet-stream");
        type.setName("=?UTF-8?B?" + word.toUtf8().toBase64() + "?=");
        message.appendPart(QMailMessagePart::fromData(QByteArray("x"),
            QMailMessageContentDisposition(QMailMessageContentDisposition::Attachment), type,
            QMailMessageBody::Base64));
        message.setMultipartType(QMailMessage::MultipartMixed);
        const QByteArray sent = message.toRfc2822();
        for (const QByteArray &line : sent.split('\n'))
            QVERIFY2(line.size() <= 999, line.left(80)); // with its carriage return
        const QMailMessage parsed = QMailMessage::fromRfc2822(sent);
        QCOMPARE(parsed.subject(), word);
        QCOMPARE(parsed.to().value(0).name(), word);
        QCOMPARE(parsed.to().value(0).address(), QStringLiteral("a@b.org"));
        QCOMPARE(parsed.partAt(0).displayName(), word);
    }

    void aReferenceSaysThatItsTargetHasEightBits()
    {
        const QMailMessage target =
            stored(QMailMessage::fromRfc2822("Subject: t\r\nContent-Type: text/plain; charset=UTF-8\r\n"
                                             "Content-Transfer-Encoding: 8bit\r\n\r\nGr\xc3\xbc\xc3\x9f"
                                             "e"));
        QMailMessage message;
        message.setMultipartType(QMailMessage::MultipartMixed);
        message.appendPart(
            QMailMessagePart::fromMessageReference(target.id(), QMailMessageContentDisposition("attachment"),
                QMailMessageContentType("message/rfc822"), QMailMessageBody::NoEncoding));
        const QMailMessage parsed = QMailMessage::fromRfc2822(stored(message).toRfc2822());
        QCOMPARE(parsed.partAt(0).transferEncoding(), QMailMessageBody::EightBit);
        QVERIFY(parsed.partAt(0)
                    .body()
                    .data(QMailMessageBody::Decoded)
                    .endsWith("\xc3\xbc\xc3\x9f"
                              "e"));
    }

    void longAddressListsFoldAfterAComma()
    {
        QList<QMailAddress> many;
        for (int i = 0; i < 20; ++i)
            many.append(QMailAddress(QStringLiteral("person%1@example.com").arg(i)));
        QMailMessage message;
        message.setTo(many);
        const QByteArray text = message.toRfc2822();
        QVERIFY(text.contains(",\r\n person"));
        for (const QByteArray &line : text.split('\n'))
            QVERIFY(line.size() < 100);
        QCOMPARE(QMailMessage::fromRfc2822(text).to().size(), 20);
    }

    void referencesRenderTheirTarget()
    {
        const QMailMessage target = stored(QMailMessage::fromRfc2822("Subject: the target\r\n\r\nx"));
        QMailMessage message;
        message.setMultipartType(QMailMessage::MultipartMixed);
        for (const QMailMessageId &id : { target.id(), QMailMessageId(1u << 30) })
            message.appendPart(
                QMailMessagePart::fromMessageReference(id, QMailMessageContentDisposition("attachment"),
                    QMailMessageContentType("message/rfc822"), QMailMessageBody::NoEncoding));
        const QMailMessage loaded = stored(message);
        QCOMPARE(loaded.partAt(0).referenceType(), QMailMessagePart::MessageReference);
        QCOMPARE(loaded.partAt(0).messageReference(), target.id());
        QCOMPARE(loaded.partAt(0).displayName(), QStringLiteral("the target"));
        const QMailMessage parsed = QMailMessage::fromRfc2822(loaded.toRfc2822());
        QCOMPARE(parsed.partAt(0).displayName(), QStringLiteral("the target"));
        QVERIFY(!parsed.partAt(1).hasBody());
    }
};

FENNEL_REGISTER_TEST(MailMimeTest)
#include "mailmimetest.moc"
