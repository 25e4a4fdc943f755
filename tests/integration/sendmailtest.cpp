// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/sendscene.h"
#include "simulator/mimereader.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QCryptographicHash>
#include <QtTest>

using namespace SendScene;
using Simulator::MimeReader;
using Simulator::Override;

namespace {

const QString Everybody =
    QStringLiteral("Bob Müller <bob@example.com>, \"Doe, Jane 🐟\" <jane@elsewhere.org>");

QString hash(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QByteArray noise(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = char(state >> 24);
    }
    return bytes;
}

/** Something of everything that can go wrong on the way. */
QMailMessage richMessage()
{
    QMailMessage message = OutgoingMail::plain(QStringLiteral("Grüße 🐟 aus Zürich"), Everybody,
        QStringLiteral("Ärger mit Öl\n.\nFrom here on 🐟\n") + QString(2000, QLatin1Char('x')));
    message.setFrom(QMailAddress(QStringLiteral("Älice 🐟 <alice@example.com>")));
    message.setBcc({ QMailAddress(QStringLiteral("carol@example.com")) });
    OutgoingMail::attach(&message, QStringLiteral("Übersicht 🐟.bin"), noise(5 * 1024 * 1024));
    OutgoingMail::attach(&message, QStringLiteral("picture.png"), noise(3000), "image/png");
    return message;
}

} // namespace

/** Messages on their way from the device to the people they are meant for. */
class SendMailTest : public QObject
{
    Q_OBJECT

private:
    static void versions()
    {
        QTest::addColumn<QString>("version");
        for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
            QTest::newRow(version) << QString::fromLatin1(version);
    }

private Q_SLOTS:
    void aMessageArrivesByteByByte_data() { versions(); }
    void aMessageArrivesByteByByte()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(richMessage());
        const QByteArray mime = bed.mimeOf(id);
        QVERIFY(mime.startsWith("Bcc: carol@example.com\r\n"));
        QCOMPARE(bed.sendMail(id), 0);
        const QByteArray shown = mime.mid(mime.indexOf("\r\n") + 2);
        QCOMPARE(bed.received("bob"), QByteArrayList { shown });
        QCOMPARE(bed.received("carol"), QByteArrayList { shown });
        QCOMPARE(bed.server().outbound().size(), 1);
        QCOMPARE(bed.server().outbound().at(0).message, shown);
        QCOMPARE(shown.count('\n'), shown.count("\r\n"));
        QCOMPARE(shown.count('\r'), shown.count("\r\n"));

        const MimeReader reader(shown);
        QCOMPARE(reader.headers().subject, QStringLiteral("Grüße 🐟 aus Zürich"));
        QCOMPARE(reader.headers().from, QStringLiteral("\"Älice 🐟\" <alice@example.com>"));
        QCOMPARE(reader.headers().to,
            QStringLiteral("\"Bob Müller\" <bob@example.com>, \"Doe, Jane 🐟\" <jane@elsewhere.org>"));
        QVERIFY(reader.plainText().startsWith(QStringLiteral("Ärger mit Öl\n.\nFrom here on 🐟\nxxx")));
        const QVector<Simulator::MimeAttachment> files = reader.attachments();
        QCOMPARE(files.size(), 2);
        QCOMPARE(files.at(0).item.name, QStringLiteral("Übersicht 🐟.bin"));
        QCOMPARE(hash(files.at(0).item.bytes), hash(noise(5 * 1024 * 1024)));
        QCOMPARE(files.at(1).item.bytes, noise(3000));
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void theCopyIsThereOnce_data() { versions(); }
    void theCopyIsThereOnce()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sendMail(bed.write(OutgoingMail::plain("hello", "bob@example.com"))), 0);
        QVERIFY(bed.inFolder(QMailFolder::OutboxFolder).isEmpty());
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(bed.sync(), 0);
            QCOMPARE(bed.deviceState(), QStringList { QStringLiteral("Sent Items|hello|read") });
            QCOMPARE(bed.serverState(), bed.deviceState());
        }
    }

    void withoutACopyOnTheServerTheMessageIsKeptHere()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        QVERIFY(bed.setSavesSent(false));
        QCOMPARE(bed.sendMail(bed.write(OutgoingMail::plain("hello", "bob@example.com"))), 0);
        QCOMPARE(bed.received("bob").size(), 1);
        QCOMPARE(bed.deviceState(), QStringList { QStringLiteral("Sent Items|hello|read") });
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(bed.deviceState(), QStringList { QStringLiteral("Sent Items|hello|read") });
        QVERIFY(bed.serverState().isEmpty());
    }

    void theServerAddsWhatIsAnswered_data() { versions(); }
    void theServerAddsWhatIsAnswered()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const QMailMessageId source = bed.receive("source", { noise(3000) });
        QVERIFY(source.isValid());
        for (const auto type : { QMailMessage::Reply, QMailMessage::ReplyToAll, QMailMessage::Forward }) {
            QMailMessage message = OutgoingMail::plain("answer", "bob@example.com", "My words");
            OutgoingMail::answer(&message, source, type);
            QCOMPARE(bed.sendMail(bed.write(message)), 0);
        }
        QCOMPARE(bed.server().requests("SmartReply").size(), 2);
        QCOMPARE(bed.server().requests("SmartForward").size(), 1);
        QVERIFY(bed.server().requests("SendMail").isEmpty());
        const QByteArrayList received = bed.received("bob");
        QCOMPARE(received.size(), 3);
        for (const QByteArray &message : received) {
            const QString text = MimeReader(message).plainText();
            QVERIFY(text.startsWith(QStringLiteral("My words")));
            QCOMPARE(text.count(QStringLiteral("Text of the source")), 1);
        }
        QVERIFY(MimeReader(received.at(0)).attachments().isEmpty());
        const QVector<Simulator::MimeAttachment> files = MimeReader(received.at(2)).attachments();
        QCOMPARE(files.size(), 1);
        QCOMPARE(files.at(0).item.bytes, noise(3000));
        QVERIFY(bed.inFolder(QMailFolder::OutboxFolder).isEmpty());
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void picturesWithinTheTextArrive()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        QMailMessage message = OutgoingMail::plain("picture", "bob@example.com");
        message.setBody(QMailMessageBody::fromData(QStringLiteral("<p>Grüße <img src=\"cid:logo@x\"></p>"),
            QMailMessageContentType("text/html; charset=UTF-8"), QMailMessageBody::QuotedPrintable));
        QMailMessageContentType type("image/png");
        type.setName("logo.png");
        QMailMessagePart picture = QMailMessagePart::fromData(noise(3000),
            QMailMessageContentDisposition(QMailMessageContentDisposition::Inline), type,
            QMailMessageBody::Base64);
        picture.setContentID(QStringLiteral("logo@x"));
        message.setInlineImages({ &picture });
        const quint64 id = bed.write(message);
        const QByteArray mime = bed.mimeOf(id);
        QCOMPARE(bed.sendMail(id), 0);
        QCOMPARE(bed.received("bob"), QByteArrayList { mime });
        const MimeReader reader(mime);
        QCOMPARE(reader.htmlText().trimmed(), QStringLiteral("<p>Grüße <img src=\"cid:logo@x\"></p>"));
        QCOMPARE(reader.attachments().size(), 1);
        QVERIFY(reader.attachments().at(0).item.isInline);
        QCOMPARE(reader.attachments().at(0).item.contentId, QStringLiteral("logo@x"));
        QCOMPARE(reader.attachments().at(0).item.bytes, noise(3000));
    }

    void anAnswerNamesNoOccurrence()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        QMailMessage message = OutgoingMail::plain("answer", "bob@example.com");
        OutgoingMail::answer(&message, bed.receive("source"), QMailMessage::Reply);
        QCOMPARE(bed.sendMail(bed.write(message)), 0);
        const Simulator::WbxmlNode sent = bed.server().requests("SmartReply").at(0).document;
        QCOMPARE(sent.text("Source/FolderId"), bed.mailbox().inboxId());
        QVERIFY(bed.mailbox().item(sent.text("Source/ItemId")));
        QVERIFY(!sent.has("Source/InstanceId"));
        QVERIFY(!sent.has("Source/LongId"));
        QVERIFY(!sent.has("ReplaceMime"));
    }

    void aServerThatAddsNothingGetsTheWhole()
    {
        SendBed bed(QStringLiteral("14.1"), { "Sync", "FolderSync", "SendMail" });
        QVERIFY(bed.isReady());
        QMailMessage message = OutgoingMail::plain("answer", "bob@example.com", "My words");
        OutgoingMail::answer(&message, bed.receive("source"), QMailMessage::Forward);
        QCOMPARE(bed.sendMail(bed.write(message)), 0);
        QCOMPARE(bed.received("bob").size(), 1);
        QVERIFY(bed.received("bob").at(0).contains("Text of the source"));
    }

    void aSourceThatHasGoneDoesNotHoldTheAnswerBack()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        QMailMessage message = OutgoingMail::plain("answer", "bob@example.com", "My words");
        OutgoingMail::answer(&message, bed.receive("source"), QMailMessage::Reply);
        const auto entries = bed.mailbox().items(bed.mailbox().inboxId());
        QVERIFY(bed.mailbox().remove(entries.at(0).serverId));
        QCOMPARE(bed.sendMail(bed.write(message)), 150);
        QTRY_VERIFY(bed.inFolder(QMailFolder::OutboxFolder).isEmpty());
        QCOMPARE(bed.received("bob").size(), 1);
        QVERIFY(bed.received("bob").at(0).contains("My words"));
        QVERIFY(bed.received("bob").at(0).contains("Text of the source"));
    }

    void aMessageThatIsRefusedDoesNotBlockTheNext()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        const quint64 bad = bed.write(OutgoingMail::plain("bad", ""));
        const quint64 good = bed.write(OutgoingMail::plain("good", "bob@example.com"));
        const qulonglong first = bed.startSendMail(bad);
        const qulonglong second = bed.startSendMail(good);
        QCOMPARE(bed.waitFor(first), 119);
        QCOMPARE(bed.waitFor(second), 0);
        QCOMPARE(bed.inFolder(QMailFolder::OutboxFolder), QStringList { "bad" });
        QCOMPARE(bed.received("bob").size(), 1);
    }

    void aMessageThatIsTooLargeBecomesADraft()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        bed.server().setLargestMessage(1000);
        const quint64 id = bed.write(OutgoingMail::plain("large", "bob@example.com", QString(5000, 'x')));
        const QByteArray mime = bed.mimeOf(id);
        QCOMPARE(bed.sendMail(id), 115);
        QVERIFY(bed.inFolder(QMailFolder::OutboxFolder).isEmpty());
        QCOMPARE(bed.inFolder(QMailFolder::DraftsFolder), QStringList { "large" });
        QCOMPARE(bed.mimeOf(id), mime);
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(bed.inFolder(QMailFolder::DraftsFolder), QStringList { "large" });
    }

    void aFullMailboxIsTold_data() { versions(); }
    void aFullMailboxIsTold()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        bed.server().setMailboxQuota(100);
        QCOMPARE(bed.sendMail(bed.write(OutgoingMail::plain("large", "bob@example.com"))), -6);
        QCOMPARE(bed.inFolder(QMailFolder::OutboxFolder), QStringList { "large" });
        QCOMPARE(bed.server().requests("SendMail").size(), 1);
    }

    void aLostAnswerSendsNothingTwice_data() { versions(); }
    void aLostAnswerSendsNothingTwice()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(OutgoingMail::plain("hello", "bob@example.com"));
        bed.server().overrideNext("SendMail", Override::drop());
        const int end = bed.sendMail(id);
        QVERIFY2(end > 10000, qPrintable(QString::number(end)));
        QCOMPARE(bed.received("bob").size(), 1);
        QCOMPARE(bed.inFolder(QMailFolder::OutboxFolder), QStringList { "hello" });
        if (version < QLatin1String("14"))
            return;
        QCOMPARE(bed.sendMail(id), 0);
        QCOMPARE(bed.received("bob").size(), 1);
        QVERIFY(bed.inFolder(QMailFolder::OutboxFolder).isEmpty());
    }
};

FENNEL_REGISTER_TEST(SendMailTest)
#include "sendmailtest.moc"
