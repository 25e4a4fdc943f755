// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/messageresponse.h"
#include "client/commandscene.h"
#include "client/mailscene.h"
#include "support/testmain.h"

#include <qmailaccount.h>
#include <qmailstore.h>

/** What replies and forwards begin with. */
class MessageResponseTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    QMailFolderId mInbox;

    /** A message that the server has, unless it has no identifier there. */
    MessageResponse to(const QByteArray &text, const QString &serverUid = QStringLiteral("1:2")) const
    {
        QMailMessage message = QMailMessage::fromRfc2822(text);
        message.setParentAccountId(QMailAccountId(mScene->accountId()));
        message.setParentFolderId(mInbox);
        message.setServerUid(serverUid);
        message.setStatus(QMailMessage::ContentAvailable, true);
        if (!QMailStore::instance()->addMessage(&message))
            qFatal("no message");
        return { QMailMessage(message.id()), QMailAddress(QStringLiteral("me@example.com")) };
    }
    static QString listed(const QList<QMailAddress> &addresses)
    {
        return QMailAddress::toStringList(addresses).join(QLatin1Char('|'));
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        QTRY_VERIFY(QMailAccount(QMailAccountId(mScene->accountId())).id().isValid());
        mInbox = MailScene(mScene->accountId()).addFolder(QStringLiteral("Inbox"));
    }
    void cleanup() { mScene.reset(); }

    void whoGetsAReply_data()
    {
        QTest::addColumn<QByteArray>("headers");
        QTest::addColumn<bool>("toAll");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("cc");
        const QByteArray many = "From: Bob <bob@b.org>\r\nTo: Me <ME@example.com>, carol@c.org\r\n"
                                "Cc: dora@d.org, bob@b.org, me@example.com\r\n";
        QTest::newRow("the sender") << many << false << "Bob <bob@b.org>"
                                    << "";
        QTest::newRow("all but oneself, each once") << many << true << "Bob <bob@b.org>|carol@c.org"
                                                    << "dora@d.org";
        QTest::newRow("whom the sender names")
            << QByteArray("From: b@b.org\r\nReply-To: list@l.org\r\n") << false << "list@l.org"
            << "";
        QTest::newRow("the sender, where what is named is no address")
            << QByteArray("From: b@b.org\r\nReply-To: nonsense\r\n") << false << "b@b.org"
            << "";
        QTest::newRow("to one's own message, its recipients")
            << QByteArray("From: me@example.com\r\nTo: bob@b.org\r\n") << false << "bob@b.org"
            << "";
        QTest::newRow("nobody") << QByteArray("Subject: x\r\n") << false << ""
                                << "";
        QTest::newRow("the members of a group")
            << QByteArray("From: b@b.org\r\nTo: We: c@c.org, d@d.org;\r\n") << true
            << "b@b.org|c@c.org|d@d.org"
            << "";
    }

    void whoGetsAReply()
    {
        QFETCH(QByteArray, headers);
        QFETCH(bool, toAll);
        const OutgoingMessage reply = to(headers + "\r\ntext").reply(toAll);
        QTEST(listed(reply.to), "to");
        QTEST(listed(reply.cc), "cc");
        QCOMPARE(reply.response, toAll ? QMailMessage::ReplyToAll : QMailMessage::Reply);
    }

    void subjects_data()
    {
        QTest::addColumn<QByteArray>("subject");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("forward");
        QTest::newRow("plain") << QByteArray("Lunch") << "Re: Lunch"
                               << "Fwd: Lunch";
        QTest::newRow("a reply") << QByteArray("RE: Lunch") << "RE: Lunch"
                                 << "Fwd: RE: Lunch";
        QTest::newRow("a counted reply") << QByteArray("Re[2]: Lunch") << "Re[2]: Lunch"
                                         << "Fwd: Re[2]: Lunch";
        QTest::newRow("a forward") << QByteArray("FW: Lunch") << "Re: FW: Lunch"
                                   << "FW: Lunch";
        QTest::newRow("a word that begins so") << QByteArray("Rest") << "Re: Rest"
                                               << "Fwd: Rest";
        QTest::newRow("none") << QByteArray() << "Re: "
                              << "Fwd: ";
        QTest::newRow("a line break in an encoded word")
            << QByteArray("=?UTF-8?Q?a=0D=0ABcc:_x@y.org?=") << "Re: a  Bcc: x@y.org"
            << "Fwd: a  Bcc: x@y.org";
    }

    void subjects()
    {
        QFETCH(QByteArray, subject);
        const MessageResponse response = to("From: b@b.org\r\nSubject: " + subject + "\r\n\r\ntext");
        QTEST(response.reply(false).subject, "reply");
        QTEST(response.forward().subject, "forward");
    }

    void theServerQuotesWhatItHas()
    {
        MessageResponse response = to("From: b@b.org\r\nSubject: x\r\n\r\none\r\ntwo");
        QVERIFY(response.isOnServer());
        QVERIFY(response.reply(false).isSourceAdded && response.forward().isSourceAdded);
        QCOMPARE(response.quotation() + response.forwardedText(), QString());
        response.setWhole(true);
        QVERIFY(!response.reply(false).isSourceAdded && !response.forward().isSourceAdded);
        QVERIFY2(response.quotation().endsWith(QLatin1String("b@b.org:\n> one\n> two\n")),
            qPrintable(response.quotation()));
    }

    void whatTheServerDoesNotHaveIsQuotedHere()
    {
        const MessageResponse response =
            to("From: b@b.org\r\nTo: me@example.com\r\nSubject: x\r\n\r\n> one\r\ntwo", QString());
        QVERIFY(!response.isOnServer() && !response.lacksContent(true));
        QVERIFY(!response.reply(false).isSourceAdded);
        QVERIFY2(response.quotation().endsWith(QLatin1String("b@b.org:\n>> one\n> two\n")),
            qPrintable(response.quotation()));
        const QString text = response.forwardedText();
        for (const char *line :
            { "From: b@b.org\n", "Subject: x\n", "To: me@example.com\n", "\n\n> one\ntwo" })
            QVERIFY2(text.contains(QLatin1String(line)), qPrintable(text));
    }

    void theFilesOfAWholeForwardGoAlong()
    {
        const MailScene mail(mScene->accountId());
        const QMailMessageId id = mail.addMessage(mInbox, QStringLiteral("Files"));
        MessageResponse response { QMailMessage(id), QMailAddress() };
        QVERIFY(!response.lacksContent(true));
        response.setWhole(true);
        QVERIFY(response.lacksContent(true));
        // As a download puts it there: its line ends are its own.
        QMailMessage filled(id);
        QMailMessagePart &part = filled.partAt(2);
        part.setBody(QMailMessageBody::fromData(QByteArray("now\nhere\r"), part.contentType(),
            QMailMessageBody::NoEncoding, QMailMessageBody::AlreadyEncoded));
        filled.setStatus(QMailMessage::ContentAvailable, true);
        QVERIFY(QMailStore::instance()->updateMessage(&filled));
        MessageResponse complete { QMailMessage(id), QMailAddress() };
        complete.setWhole(true);
        QVERIFY(!complete.lacksContent(true));
        const OutgoingMessage forward = complete.forward();
        QCOMPARE(forward.parts.size(), 2);
        const QMailMessagePart &sent = forward.parts.at(1);
        QCOMPARE(sent.transferEncoding(), QMailMessageBody::Base64);
        QCOMPARE(sent.body().data(QMailMessageBody::Decoded), QByteArray("now\nhere\r"));
        QCOMPARE(sent.displayName(), QStringLiteral("there.txt"));
    }
};

FENNEL_REGISTER_TEST(MessageResponseTest)
#include "messageresponsetest.moc"
