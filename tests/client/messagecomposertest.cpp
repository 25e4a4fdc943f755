// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/messagecomposer.h"
#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/commandscene.h"
#include "client/commandtable.h"
#include "client/mailbox.h"
#include "client/mailscene.h"
#include "support/testmain.h"

#include <QMimeDatabase>
#include <qmailaccount.h>
#include <qmailstore.h>

/** Messages that are to go out, as another process then finds them in the store. */
class MessageComposerTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<CommandContext> mContext;

    static const Command &anyCommand()
    {
        static const Command command { "mail send", "", "", nullptr };
        return command;
    }

    MessageComposer composer() const { return { *mContext, mScene->accountId() }; }

    QString file(const QString &name, const QByteArray &octets) const
    {
        QFile file(mScene->path(name));
        return file.open(QIODevice::WriteOnly) && file.write(octets) == octets.size() ? file.fileName()
                                                                                      : QString();
    }

    static OutgoingMessage toBob()
    {
        OutgoingMessage outgoing;
        outgoing.to = { QMailAddress(QStringLiteral("Bob <bob@example.com>")) };
        outgoing.subject = QStringLiteral("Lunch");
        outgoing.text = QStringLiteral("At noon?\n");
        return outgoing;
    }

    static bool has(const QMailMessageMetaData &message, quint64 flags)
    {
        return (message.status() & flags) == flags;
    }

    /** The message as it would be received. */
    static QMailMessage sent(const QMailMessageId &id)
    {
        return QMailMessage::fromRfc2822(QMailMessage(id).toRfc2822());
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        QTRY_VERIFY(QMailAccount(QMailAccountId(mScene->accountId())).id().isValid());
        mContext = std::make_unique<CommandContext>(anyCommand(), QStringList(), CommandContext::Options());
    }
    void cleanup()
    {
        mContext.reset();
        mScene.reset();
    }

    void aMessageStandsInTheOutbox()
    {
        const MailScene mail(mScene->accountId());
        const QMailFolderId outbox = mail.addFolder(QStringLiteral("Outbox"));
        QVERIFY(mail.setStandardFolder(QMailFolder::OutboxFolder, outbox));
        const QMailMessage message(composer().store(toBob(), QMailFolder::OutboxFolder));
        QVERIFY(message.id().isValid());
        QCOMPARE(message.parentFolderId(), outbox);
        QVERIFY(has(message, QMailMessage::Outgoing | QMailMessage::Outbox | QMailMessage::ContentAvailable));
        QVERIFY(!has(message, QMailMessage::Draft) && !has(message, QMailMessage::HasAttachments));
        QCOMPARE(message.from().address(), mContext->accounts().emailAddress(mScene->accountId()));
        QCOMPARE(message.content(), QMailMessage::PlainTextContent);
        QCOMPARE(message.body().data(), QStringLiteral("At noon?\n"));
        QVERIFY(!message.headerFieldText(QStringLiteral("Message-ID")).isEmpty());
        QVERIFY(message.serverUid().isEmpty());
    }

    void whereTheServerHasNoOutboxItStandsWithTheDevicesOwnMail()
    {
        const QMailMessageMetaData message(composer().store(toBob(), QMailFolder::OutboxFolder));
        QVERIFY(message.id().isValid());
        QCOMPARE(message.parentFolderId(), QMailFolderId(quint64(1)));
        QVERIFY(has(message, QMailMessage::Outbox));
    }

    void aDraftIsNoMessageToBeSent()
    {
        const QMailMessageMetaData message(composer().store(toBob(), QMailFolder::DraftsFolder));
        QVERIFY(has(message, QMailMessage::Draft));
        QVERIFY(!has(message, QMailMessage::Outbox));
    }

    void whatTheServerIsToldOfDoesNotGrow()
    {
        composer().store(toBob(), QMailFolder::OutboxFolder);
        QCOMPARE(MailBox(mScene->accountId()).waiting(), 0);
    }

    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QString();
        QTest::newRow("plain") << QStringLiteral("At noon?\n");
        QTest::newRow("umlauts") << QStringLiteral("Grüße aus Köln\n");
        QTest::newRow("a line of 5000 letters") << QString(5000, QLatin1Char('x'));
        QTest::newRow("a line that begins like a header of a mail file") << QStringLiteral("a\nFrom here\n");
        QTest::newRow("dots and blanks") << QStringLiteral("a\n.\n..b\nc  \n  d\t\n");
    }

    void texts()
    {
        QFETCH(QString, text);
        OutgoingMessage outgoing = toBob();
        outgoing.text = text;
        const QMailMessageId id = composer().store(outgoing, QMailFolder::OutboxFolder);
        QCOMPARE(QMailMessage(id).body().data(), text);
        QCOMPARE(sent(id).body().data(), text);
        const QList<QByteArray> lines = QMailMessage(id).toRfc2822().split('\n');
        for (const QByteArray &line : lines)
            QVERIFY2(line.size() <= 998 && !line.startsWith("From "), line);
    }

    void filesGoAlong_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("octets");
        QTest::addColumn<QByteArray>("type");
        QByteArray all;
        for (int i = 0; i < 1024; ++i)
            all.append(char(i));
        QTest::newRow("a text") << QStringLiteral("note.txt") << QByteArray("one\ntwo\r\nthree")
                                << QByteArray("text/plain");
        QTest::newRow("all octets") << QStringLiteral("x.bin") << all
                                    << QByteArray("application/octet-stream");
        QTest::newRow("umlauts and an emoji") << QStringLiteral("Übung für Jürgen \U0001F600.pdf")
                                              << QByteArray("%PDF-1.4") << QByteArray("application/pdf");
        QTest::newRow("quotes and a backslash")
            << QStringLiteral("a\"b;c\\d.txt") << QByteArray("x") << QByteArray("text/plain");
        QTest::newRow("200 letters") << QString(200, QChar(0xe4)).left(120) + QStringLiteral(".txt")
                                     << QByteArray("x") << QByteArray("text/plain");
        QTest::newRow("a line end") << QStringLiteral("a\nX-Injected: yes") << QByteArray("x")
                                    << QByteArray("text/plain");
        QTest::newRow("a message, which may not be encoded as one") << QStringLiteral(
            "old.eml") << QByteArray("Subject: x\r\n\r\ny") << QByteArray("application/octet-stream");
        QTest::newRow("nothing") << QStringLiteral("empty.txt") << QByteArray() << QByteArray("text/plain");
    }

    void filesGoAlong()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, octets);
        QFETCH(QByteArray, type);
        OutgoingMessage outgoing = toBob();
        outgoing.files = QStringList { file(name, octets) };
        const QMailMessageId id = composer().store(outgoing, QMailFolder::OutboxFolder);
        QVERIFY(has(QMailMessageMetaData(id), QMailMessage::HasAttachments));
        for (const QMailMessage &message : { QMailMessage(id), sent(id) }) {
            QCOMPARE(message.partCount(), 2u);
            QCOMPARE(message.partAt(0).body().data(), outgoing.text);
            const QMailMessagePart &part = message.partAt(1);
            QCOMPARE(part.displayName(), name);
            QCOMPARE(QMailMessageHeaderField::decodeWord(part.contentDisposition().filename()), name);
            QCOMPARE(part.contentDisposition().type(), QMailMessageContentDisposition::Attachment);
            QCOMPARE(part.body().data(QMailMessageBody::Decoded), octets);
            const QMailMessageContentType partType = part.contentType();
            if (!octets.isEmpty())
                QCOMPARE(partType.type() + '/' + partType.subType(), type);
        }
        QVERIFY(!QMailMessage(id).toRfc2822().contains("\nX-Injected"));
    }

    void withoutTheFileNothingIsStored_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("it does not exist") << QStringLiteral("nowhere");
        QTest::newRow("it is a folder") << QString();
        QTest::newRow("it is no regular file") << QStringLiteral("/dev/null");
    }

    void withoutTheFileNothingIsStored()
    {
        QFETCH(QString, path);
        const int before = QMailStore::instance()->countMessages();
        OutgoingMessage outgoing = toBob();
        outgoing.files = QStringList { file(QStringLiteral("there.txt"), "x"),
            QDir::isAbsolutePath(path) ? path : mScene->path(path) };
        QVERIFY(!composer().store(outgoing, QMailFolder::OutboxFolder).isValid());
        QCOMPARE(QMailStore::instance()->countMessages(), before);
    }

    void aReplyRefersToItsSource()
    {
        const MailScene mail(mScene->accountId());
        const QMailMessageId source =
            mail.addMessage(mail.addFolder(QStringLiteral("Inbox")), QStringLiteral("Old"));
        OutgoingMessage outgoing = toBob();
        outgoing.source = source;
        outgoing.response = QMailMessage::Reply;
        outgoing.isSourceAdded = true;
        const QMailMessage message(composer().store(outgoing, QMailFolder::OutboxFolder));
        QCOMPARE(message.responseType(), QMailMessage::Reply);
        QCOMPARE(message.inResponseTo(), source);
        QCOMPARE(message.partCount(), 2u);
        QCOMPARE(message.partAt(1).referenceType(), QMailMessagePart::MessageReference);
        QCOMPARE(message.partAt(1).messageReference(), source);
        QVERIFY(message.partAt(1).contentType().matches("message", "rfc822"));
        QVERIFY(!has(message, QMailMessage::HasAttachments));
    }

    void aThreadIsKeptWhereItIsKnown()
    {
        const MailScene mail(mScene->accountId());
        QMailMessage source = QMailMessage::fromRfc2822("Message-ID: <2@x.org>\r\nReferences: <1@x.org>\r\n"
                                                        "Subject: Old\r\n\r\ntext");
        source.setParentAccountId(QMailAccountId(mScene->accountId()));
        source.setParentFolderId(mail.addFolder(QStringLiteral("Inbox")));
        QVERIFY(QMailStore::instance()->addMessage(&source));
        OutgoingMessage outgoing = toBob();
        outgoing.source = source.id();
        outgoing.response = QMailMessage::Reply;
        const QMailMessage message = sent(composer().store(outgoing, QMailFolder::OutboxFolder));
        QCOMPARE(message.headerFieldText(QStringLiteral("In-Reply-To")), QStringLiteral("<2@x.org>"));
        QCOMPARE(
            message.headerFieldText(QStringLiteral("References")), QStringLiteral("<1@x.org> <2@x.org>"));
    }
};

FENNEL_REGISTER_TEST(MessageComposerTest)
#include "messagecomposertest.moc"
