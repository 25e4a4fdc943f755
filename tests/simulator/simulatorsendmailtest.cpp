// SPDX-License-Identifier: LGPL-2.1-or-later
#include "samplemessages.h"
#include "simulatorclient.h"
#include "support/testmain.h"

#include "simulator/email.h"
#include "simulator/mimereader.h"
#include "simulator/protocolversion.h"

#include <QtTest>

using namespace Simulator;

namespace {

const QByteArray Plain =
    "From: alice@example.com\r\nTo: Bob <bob@example.com>\r\nSubject: hello\r\n\r\nHello\r\n";

QByteArray mailTo(const QByteArray &headers)
{
    return "From: alice@example.com\r\n" + headers + "Subject: hello\r\n\r\nHello\r\n";
}

} // namespace

/** Messages that clients hand over: delivery, the copy in Sent Items, refusals, and what the server adds. */
class SimulatorSendMailTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mAlice;

    void begin(const QString &version = QStringLiteral("14.1"))
    {
        mServer = std::make_unique<ExchangeServer>();
        for (const char *name : { "alice", "bob", "carol" })
            mServer->addUser(QString::fromLatin1(name), QStringLiteral("secret"));
        QVERIFY(mServer->start());
        mAlice = std::make_unique<SimulatorClient>(*mServer, version);
        mAlice->setCredentials(QStringLiteral("alice"), QStringLiteral("secret"));
    }

    PlainReply send(const QByteArray &mime, const QString &clientId = QStringLiteral("1"),
        const QString &command = QStringLiteral("SendMail"), const QString &options = QString())
    {
        const bool isDocument = versionFromText(mAlice->version()) >= Version140;
        if (!isDocument) {
            mAlice->setQuery(QLatin1Char('&') + options);
            mAlice->setHeader("Content-Type", "message/rfc822");
            return mAlice->postBytes(command, mime);
        }
        WbxmlNode root =
            WbxmlNode::fromXml(QStringLiteral("<%1 xmlns=\"ComposeMail\"><ClientId>%2</ClientId>%3</%1>")
                                   .arg(command, clientId, options));
        root.append(WbxmlNode::opaque(QStringLiteral("ComposeMail:Mime"), mime));
        return mAlice->post(command, root);
    }

    QByteArrayList messages(const char *user, FolderType folder = InboxFolder)
    {
        Mailbox &mailbox = mServer->mailbox(QString::fromLatin1(user));
        QByteArrayList found;
        const QVector<ItemEntry> entries = mailbox.items(mailbox.folderOfType(folder).id);
        for (const ItemEntry &entry : entries)
            found.append(std::static_pointer_cast<const Email>(entry.item)->content().message());
        return found;
    }

    static QString status(const PlainReply &reply) { return reply.document.text(QStringLiteral("Status")); }

    QString source(const QByteArray &message)
    {
        Mailbox &mailbox = mServer->mailbox(QStringLiteral("alice"));
        return mailbox.deliver(mailbox.inboxId(), message);
    }

    static void versions()
    {
        QTest::addColumn<QString>("version");
        for (const int version : protocolVersions())
            QTest::newRow(qPrintable(versionText(version))) << versionText(version);
    }

private Q_SLOTS:
    void cleanup()
    {
        const QStringList failures = mServer->failures();
        mAlice.reset();
        mServer.reset();
        QCOMPARE(failures, QStringList());
    }

    void aMessageComesIntoTheInboxAsItWasSent_data() { versions(); }
    void aMessageComesIntoTheInboxAsItWasSent()
    {
        QFETCH(QString, version);
        begin(version);
        const PlainReply reply = send(Plain);
        QCOMPARE(reply.status, 200);
        QVERIFY(reply.body.isEmpty());
        QCOMPARE(messages("bob"), QByteArrayList { Plain });
        QVERIFY(messages("alice", SentItemsFolder).isEmpty());
    }

    void aCopyIsKeptIfItIsWanted_data() { versions(); }
    void aCopyIsKeptIfItIsWanted()
    {
        QFETCH(QString, version);
        begin(version);
        const QByteArray message = mailTo("To: bob@example.com\r\nBcc: carol@example.com\r\n");
        send(message, QStringLiteral("1"), QStringLiteral("SendMail"),
            versionFromText(version) >= Version140 ? QStringLiteral("<SaveInSentItems/>")
                                                   : QStringLiteral("SaveInSent=T"));
        QCOMPARE(messages("alice", SentItemsFolder), QByteArrayList { message });
    }

    void hiddenRecipientsAreServedAndNotShown()
    {
        begin();
        send(mailTo(
            "To: bob@example.com\r\nBCC: carol@example.com,\r\n dave@elsewhere.org\r\nCc: bob@x.org\r\n"));
        const QByteArray shown = mailTo("To: bob@example.com\r\nCc: bob@x.org\r\n");
        QCOMPARE(messages("bob"), QByteArrayList { shown });
        QCOMPARE(messages("carol"), QByteArrayList { shown });
        QCOMPARE(mServer->outbound().size(), 1);
        QCOMPARE(mServer->outbound().at(0).recipient, QStringLiteral("dave@elsewhere.org"));
        QCOMPARE(mServer->outbound().at(0).message, shown);
    }

    void theSameMessageIsNotSentTwice()
    {
        begin();
        send(Plain, QStringLiteral("12-abc"));
        QCOMPARE(status(send(Plain, QStringLiteral("12-abc"))), QStringLiteral("118"));
        QCOMPARE(messages("bob").size(), 1);
        QCOMPARE(send(Plain, QStringLiteral("12-abd")).status, 200);
        QCOMPARE(messages("bob").size(), 2);
    }

    void whatCannotBeSentIsRefused_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const QByteArray &message, int status, int httpStatus) {
            QTest::newRow(qPrintable(QString::fromLatin1(name) + QStringLiteral(", 14.1")))
                << QStringLiteral("14.1") << message << status;
            QTest::newRow(qPrintable(QString::fromLatin1(name) + QStringLiteral(", 12.1")))
                << QStringLiteral("12.1") << message << httpStatus;
        };
        row("no message", "Hello", 107, 400);
        row("no recipient", mailTo(""), 119, 500);
        row("too large", mailTo("To: bob@example.com\r\n") + QByteArray(2000, 'x'), 115, 507);
        row("no room", mailTo("To: bob@example.com\r\n") + QByteArray(900, 'x'), 113, 507);
    }

    void whatCannotBeSentIsRefused()
    {
        QFETCH(QString, version);
        QFETCH(QByteArray, message);
        QFETCH(int, status);
        begin(version);
        mServer->setLargestMessage(1500);
        mServer->setMailboxQuota(1000);
        source(Plain);
        const PlainReply reply = send(message);
        if (version == QLatin1String("14.1"))
            QCOMPARE(this->status(reply), QString::number(status));
        else
            QCOMPARE(reply.status, status);
        QVERIFY(messages("bob").isEmpty());
        QVERIFY(messages("alice", SentItemsFolder).isEmpty());
    }

    void theServerAddsWhatIsAnswered_data() { versions(); }
    void theServerAddsWhatIsAnswered()
    {
        QFETCH(QString, version);
        begin(version);
        const QString id = source(SampleMessages::nested());
        const QString inbox = mServer->mailbox(QStringLiteral("alice")).inboxId();
        const QString options = versionFromText(version) >= Version140
            ? QStringLiteral("<Source><FolderId>%1</FolderId><ItemId>%2</ItemId></Source>").arg(inbox, id)
            : QStringLiteral("CollectionId=%1&ItemId=%2").arg(inbox, id);
        QCOMPARE(send(Plain, QStringLiteral("1"), QStringLiteral("SmartReply"), options).status, 200);
        QCOMPARE(send(Plain, QStringLiteral("2"), QStringLiteral("SmartForward"), options).status, 200);
        const QByteArrayList received = messages("bob");
        QCOMPARE(received.size(), 2);
        const MimeReader source(SampleMessages::nested());
        for (const QByteArray &message : received) {
            const MimeReader reader(message);
            QVERIFY(reader.plainText().startsWith(QStringLiteral("Hello")));
            QVERIFY(reader.plainText().contains(QStringLiteral("-----Original Message-----")));
            QVERIFY(reader.plainText().contains(source.plainText().trimmed()));
        }
        QVERIFY(MimeReader(received.at(0)).attachments().isEmpty());
        const QVector<MimeAttachment> files = MimeReader(received.at(1)).attachments();
        QCOMPARE(files.size(), source.attachments().size());
        for (int i = 0; i < files.size(); ++i) {
            QCOMPARE(files.at(i).item.bytes, source.attachments().at(i).item.bytes);
            QCOMPARE(files.at(i).item.name, source.attachments().at(i).item.name);
        }
    }

    void aClientMayReplaceTheText()
    {
        begin();
        const QString options =
            QStringLiteral("<ReplaceMime/><Source><FolderId>2</FolderId><ItemId>%1</ItemId></Source>")
                .arg(source(SampleMessages::nested()));
        QCOMPARE(send(Plain, QStringLiteral("1"), QStringLiteral("SmartReply"), options).status, 200);
        QCOMPARE(messages("bob"), QByteArrayList { Plain });
    }

    void aSourceThatIsNotThereIsTold()
    {
        begin();
        const QString options =
            QStringLiteral("<Source><FolderId>1</FolderId><ItemId>1:99</ItemId></Source>");
        const PlainReply reply = send(Plain, QStringLiteral("1"), QStringLiteral("SmartForward"), options);
        QCOMPARE(reply.document.name(), QStringLiteral("ComposeMail:SmartForward"));
        QCOMPARE(status(reply), QStringLiteral("150"));
        QVERIFY(messages("bob").isEmpty());
    }
};

FENNEL_REGISTER_TEST(SimulatorSendMailTest)
#include "simulatorsendmailtest.moc"
