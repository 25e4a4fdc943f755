// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailoutgoingmime.h"

#include "common/exchangeactivesync.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/outgoingmail.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

int occurrences(const QByteArray &mime, const QByteArray &text)
{
    return mime.toLower().count(text.toLower());
}

/** Each line ends in CR LF, and neither of the two stands alone. */
bool hasNetworkLines(const QByteArray &mime)
{
    const int pairs = mime.count("\r\n");
    return pairs > 0 && mime.count('\r') == pairs && mime.count('\n') == pairs;
}

QByteArray header(const QByteArray &mime)
{
    return mime.left(mime.indexOf("\r\n\r\n") + 2);
}

} // namespace

/** A stored message as the bytes that go to the server. */
class MailOutgoingMimeTest : public QObject
{
    Q_OBJECT

private:
    static QMailMessage stored(MailFixture &mail, const QMailMessage &message)
    {
        return mail.message(
            OutgoingMail::store(message, mail.mailAccountId(), mail.addStoreFolder("Outbox")));
    }

private Q_SLOTS:
    void aBccHeaderStandsInFrontOnce()
    {
        MailFixture mail;
        QMailMessage message = OutgoingMail::plain("hidden", "bob@example.com");
        message.setBcc({ QMailAddress("carol@example.com") });
        const QByteArray mime = MailOutgoingMime(stored(mail, message)).whole();
        QVERIFY2(mime.startsWith("Bcc: carol@example.com\r\n"), mime.left(200));
        QCOMPARE(occurrences(mime, "bcc:"), 1);
        QVERIFY(hasNetworkLines(mime));
    }

    void aFoldedBccHeaderStaysWhole()
    {
        MailFixture mail;
        QMailMessage message = OutgoingMail::plain("hidden", "bob@example.com");
        QList<QMailAddress> hidden;
        QStringList addresses;
        for (int i = 0; i < 12; ++i) {
            addresses.append(QStringLiteral("somebody.with.a.long.name.%1@example.com").arg(i));
            hidden.append(QMailAddress(addresses.last()));
        }
        message.setBcc(hidden);
        const QByteArray mime = MailOutgoingMime(stored(mail, message)).whole();
        QVERIFY(mime.startsWith("Bcc: "));
        const QByteArray rest = mime.mid(mime.indexOf("\r\n") + 2);
        QVERIFY2(rest.startsWith(' ') || rest.startsWith('\t'), rest.left(200));
        for (const QString &address : qAsConst(addresses))
            QCOMPARE(occurrences(header(mime), address.toLatin1()), 1);
        QVERIFY(hasNetworkLines(mime));
        QMailMessage sent = QMailMessage::fromRfc2822(mime);
        QCOMPARE(QMailAddress::toStringList(sent.bcc()), addresses);
        QCOMPARE(sent.subject(), QStringLiteral("hidden"));
    }

    void withoutBccThereIsNoSuchHeader()
    {
        MailFixture mail;
        const QByteArray mime =
            MailOutgoingMime(stored(mail, OutgoingMail::plain("open", "bob@example.com"))).whole();
        QCOMPARE(occurrences(mime, "bcc"), 0);
        QVERIFY(MailOutgoingMime::bccHeader(QMailMessage()).isEmpty());
    }

    void eachLineEndsInCarriageReturnAndLineFeed_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("line feeds") << QStringLiteral("one\ntwo\n\nthree");
        QTest::newRow("carriage returns") << QStringLiteral("one\rtwo");
        QTest::newRow("both") << QStringLiteral("one\r\ntwo\r\n");
        QTest::newRow("mixed") << QStringLiteral("one\n\rtwo\r\r\n");
    }

    void eachLineEndsInCarriageReturnAndLineFeed()
    {
        QFETCH(QString, text);
        MailFixture mail;
        QMailMessage message = OutgoingMail::plain("lines", "bob@example.com");
        const QMailMessageContentType type("text/plain; charset=UTF-8");
        message.setBody(QMailMessageBody::fromData(text, type, QMailMessageBody::EightBit));
        QVERIFY(hasNetworkLines(MailOutgoingMime(stored(mail, message)).whole()));
    }

    void eightBitTextsAndLongLinesStay()
    {
        MailFixture mail;
        const QString text = QStringLiteral("Grüße 🐟 ") + QString(3000, QLatin1Char('x'));
        QMailMessage message = OutgoingMail::plain("long", "bob@example.com");
        const QMailMessageContentType type("text/plain; charset=UTF-8");
        message.setBody(QMailMessageBody::fromData(text, type, QMailMessageBody::EightBit));
        const QByteArray mime = MailOutgoingMime(stored(mail, message)).whole();
        QVERIFY(mime.contains(text.toUtf8()));
        QVERIFY(hasNetworkLines(mime));
    }

    void theSameMessageGivesTheSameBytes()
    {
        MailFixture mail;
        QMailMessage message = OutgoingMail::plain("same", "bob@example.com");
        OutgoingMail::attach(&message, "a.bin", QByteArray(5000, '\x01'));
        const QMailMessage kept = stored(mail, message);
        QCOMPARE(MailOutgoingMime(kept).whole(), MailOutgoingMime(mail.message(kept.id())).whole());
    }

    void theSourceIsLeftToTheServer()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId source = mail.addMessage(mail.item("5:1", "5"));
        QMailMessage message = OutgoingMail::plain("Re: Message", "bob@example.com", "My answer");
        OutgoingMail::answer(&message, source, QMailMessage::Reply);
        const QMailMessage kept = stored(mail, message);
        const MailOutgoingMime::Smart smart = MailOutgoingMime(kept).smart();
        QVERIFY(smart.isSmart);
        QVERIFY(smart.mime.contains("My answer"));
        QVERIFY(!smart.mime.contains("Text of 5:1"));
        QVERIFY(!smart.mime.contains("message/rfc822"));
        const QByteArray whole = MailOutgoingMime(kept).whole();
        QVERIFY(whole.contains("My answer"));
        QVERIFY(whole.contains("Text of 5:1"));
        // The stored message is as it was.
        QCOMPARE(mail.message(kept.id()).partCount(), 2U);
    }

    void anAttachmentBesideTheSourceStays()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId source = mail.addMessage(mail.item("5:1", "5"));
        QMailMessage message = OutgoingMail::plain("Fw: Message", "bob@example.com", "See below");
        OutgoingMail::attach(&message, "notes.txt", "some notes");
        OutgoingMail::answer(&message, source, QMailMessage::Forward);
        const MailOutgoingMime::Smart smart = MailOutgoingMime(stored(mail, message)).smart();
        QVERIFY(smart.isSmart);
        QVERIFY(smart.mime.contains("notes.txt"));
        QVERIFY(smart.mime.contains(QByteArray("some notes").toBase64()));
    }

    void anAnswerToNothingIsPlain()
    {
        LogCollector log;
        MailFixture mail;
        const QMailMessage kept = stored(mail, OutgoingMail::plain("Re: gone", "bob@example.com"));
        const MailOutgoingMime::Smart smart = MailOutgoingMime(kept).smart();
        QVERIFY(!smart.isSmart);
        QCOMPARE(smart.mime, MailOutgoingMime(kept).whole());
        QVERIFY(log.contains(QStringLiteral("invalid response message id")));
    }

    void withoutItsPartAnAnswerIsPlainUnlessToAMeeting_data()
    {
        QTest::addColumn<QString>("messageClass");
        QTest::addColumn<bool>("isInvitation");
        QTest::addColumn<bool>("isSmart");
        QTest::newRow("a message") << QString() << false << false;
        QTest::newRow("a request") << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST << true << true;
        QTest::newRow("a request without the mark")
            << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST << false << false;
        QTest::newRow("a cancellation")
            << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_CANCELLED << false << true;
        QTest::newRow("an answer of somebody")
            << ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_ACCEPT << true << false;
    }

    void withoutItsPartAnAnswerIsPlainUnlessToAMeeting()
    {
        QFETCH(QString, messageClass);
        QFETCH(bool, isInvitation);
        QFETCH(bool, isSmart);
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        QMailMessage source = mail.message(mail.addMessage(mail.item("5:1", "5")));
        source.setStatus(QMailMessage::CalendarInvitation, isInvitation);
        source.setCustomField(ExchangeActiveSync::MESSAGE_CLASS_FIELD, messageClass);
        QVERIFY(mail.context.store->updateMessage(&source));
        QMailMessage message = OutgoingMail::plain("Re: Message", "bob@example.com");
        OutgoingMail::answer(&message, source.id(), QMailMessage::Reply, false);
        QCOMPARE(MailOutgoingMime(stored(mail, message)).smart().isSmart, isSmart);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("Tried to get a smart mime, but response message part is not found."
                             "Force smart mime is"),
                isSmart ? QStringLiteral("true") : QStringLiteral("false") }));
    }

    /** What a user pastes must not become a header of its own. */
    void textsStayInTheirHeaders_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("a line break") << QStringLiteral("x\r\nX-Evil: 1");
        QTest::newRow("a line feed") << QStringLiteral("x\nX-Evil: 1");
        QTest::newRow("a carriage return") << QStringLiteral("x\rX-Evil: 1");
        QTest::newRow("an empty line") << QStringLiteral("x\r\n\r\nX-Evil: 1");
        QTest::newRow("nothing") << (QStringLiteral("x") + QChar(0) + QStringLiteral("\nX-Evil: 1"));
        QTest::newRow("a line separator") << QStringLiteral("x\u2028X-Evil: 1");
        QTest::newRow("right to left") << QStringLiteral("x\u202egnp.exe\nX-Evil: 1");
        QTest::newRow("4 KB") << QString(4096, QChar(0xe4)) + QStringLiteral("\nX-Evil: 1");
    }

    void textsStayInTheirHeaders()
    {
        QFETCH(QString, text);
        MailFixture mail;
        QMailMessage message = OutgoingMail::plain(text, "bob@example.com");
        message.setFrom(QMailAddress(text, "alice@example.com"));
        message.setTo({ QMailAddress(text, "bob@example.com") });
        message.setCc({ QMailAddress(text, "carol@example.com") });
        message.setBcc({ QMailAddress(text, "dave@example.com") });
        const QByteArray mime = MailOutgoingMime(stored(mail, message)).whole();
        const QByteArray head = header(mime);
        QVERIFY(hasNetworkLines(mime));
        QVERIFY(!head.contains('\0'));
        for (const QByteArray &line : head.split('\n'))
            QVERIFY2(!line.startsWith("X-Evil"), line);
        QVERIFY(mime.mid(head.size()).contains("Hello"));
        QVERIFY(!mime.mid(head.size()).contains("X-Evil"));
        for (const char *name : { "bcc:", "from:", "to:", "cc:", "subject:" })
            QCOMPARE(occurrences("\r\n" + head, "\r\n" + QByteArray(name)), 1);
    }
};

FENNEL_REGISTER_TEST(MailOutgoingMimeTest)
#include "mailoutgoingmimetest.moc"
