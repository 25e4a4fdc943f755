// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/mailscene.h"
#include "client/outbox.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkReply>
#include <qmailaccount.h>
#include <qmailstore.h>

#include <csignal>

/** Mail that is written on the command line: what the daemon is told, and where the message is afterwards. */
class SendCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    std::unique_ptr<MailScene> mMail;
    QMailFolderId mInbox;
    QMailFolderId mOutbox;
    QMailFolderId mDrafts;

    static QString text(const QMailMessageId &id) { return QString::number(id.toULongLong()); }

    QMailMessageIdList waiting() const { return Outbox(mScene->accountId()).messages(); }
    static QMailMessageIdList in(const QMailFolderId &folder)
    {
        return QMailStore::instance()->queryMessages(QMailMessageKey::parentFolderId(folder));
    }
    int messages() const { return QMailStore::instance()->countMessages(); }
    QString lastCall() const { return mDaemon->calls().value(mDaemon->calls().size() - 1); }
    QString sendCall(const QMailMessageId &id) const
    {
        return QStringLiteral("sendMail %1 %2").arg(mScene->accountId()).arg(id.toULongLong());
    }
    /** One that needs the store no more. */
    static QMailMessage withContent(qulonglong id)
    {
        QMailMessage message { QMailMessageId(id) };
        message.toRfc2822();
        return message;
    }
    /** The daemon ends the sending of each message with this, and leaves the message where it is. */
    void failWith(int status)
    {
        mDaemon->setSender([status](qulonglong) { return status; });
    }
    static QMailMessageId write(const QStringList &options)
    {
        ClientProcess client;
        const int exit = client.run(
            QStringList { "--json", "mail", "send", "--to", "bob@b.org", "--draft", "--text", "Hello" }
            + options);
        return exit == ExitSuccess
            ? QMailMessageId(client.json().object().value(QStringLiteral("id")).toString().toULongLong())
            : QMailMessageId();
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
        mMail = std::make_unique<MailScene>(mScene->accountId());
        QTRY_VERIFY(QMailAccount(QMailAccountId(mScene->accountId())).id().isValid());
        mInbox = mMail->addFolder(QStringLiteral("Inbox"));
        mOutbox = mMail->addFolder(QStringLiteral("Outbox"));
        mDrafts = mMail->addFolder(QStringLiteral("Drafts"));
        QVERIFY(mMail->setStandardFolder(QMailFolder::OutboxFolder, mOutbox));
        QVERIFY(mMail->setStandardFolder(QMailFolder::DraftsFolder, mDrafts));
    }
    void cleanup()
    {
        mMail.reset();
        mDaemon.reset();
        mScene.reset();
    }

    void aMessageIsSent()
    {
        QMailMessage seen;
        mDaemon->setSender([&seen](qulonglong id) {
            seen = withContent(id);
            return QMailStore::instance()->removeMessage(seen.id()) ? 0 : -2;
        });
        ClientProcess client;
        QFile file(mScene->path(QStringLiteral("plan.txt")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("the plan") > 0);
        file.close();
        QCOMPARE(client.run({ "--json", "mail", "send", "--to", "Bob <bob@b.org>", "--cc", "c@c.org", "--bcc",
                                "d@d.org", "--subject", "Lunch", "--attach", file.fileName() },
                     "At\r\nnoon?"),
            int(ExitSuccess));
        QCOMPARE(lastCall(), sendCall(seen.id()));
        QCOMPARE(seen.parentFolderId(), mOutbox);
        QCOMPARE(seen.subject(), QStringLiteral("Lunch"));
        QCOMPARE(seen.to().value(0).toString(), QStringLiteral("Bob <bob@b.org>"));
        QCOMPARE(seen.cc().value(0).address(), QStringLiteral("c@c.org"));
        QCOMPARE(seen.bcc().value(0).address(), QStringLiteral("d@d.org"));
        QCOMPARE(seen.partAt(0).body().data(), QStringLiteral("At\nnoon?"));
        QCOMPARE(seen.partAt(1).displayName(), QStringLiteral("plan.txt"));
        const QJsonObject result = client.json().object();
        QCOMPARE(result.value(QStringLiteral("sent")).toArray(), QJsonArray { text(seen.id()) });
        QCOMPARE(result.value(QStringLiteral("outbox")).toArray(), QJsonArray());
        QVERIFY(in(mOutbox).isEmpty());
    }

    void whatCannotBeSentIsNotStored_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("exit");
        const QStringList toBob { "--to", "bob@b.org" };
        QTest::newRow("no recipient") << QStringList() << QByteArray("x") << int(ExitUsage);
        QTest::newRow("an address that is none")
            << QStringList { "--to", "bob" } << QByteArray("x") << int(ExitUsage);
        QTest::newRow("a line break in an address")
            << QStringList { "--to", "Bob\nBcc: x@y.org <bob@b.org>" } << QByteArray("x") << int(ExitUsage);
        QTest::newRow("a line break in the subject")
            << toBob + QStringList { "--subject", "a\r\nBcc: x@y.org" } << QByteArray("x") << int(ExitUsage);
        QTest::newRow("a file that is not there")
            << toBob + QStringList { "--attach", "/nowhere/x" } << QByteArray("x") << int(ExitNotFound);
        QTest::newRow("a body that is not there")
            << toBob + QStringList { "--body", "/nowhere/x" } << QByteArray("x") << int(ExitFailure);
        QTest::newRow("two texts") << toBob + QStringList { "--body", "-", "--text", "x" } << QByteArray("x")
                                   << int(ExitUsage);
        QTest::newRow("a text with NUL") << toBob << QByteArray("a\0b", 3) << int(ExitFailure);
        QTest::newRow("a text that is none") << toBob << QByteArray("\xff\xfe") << int(ExitFailure);
        QTest::newRow("a draft that is not there")
            << QStringList { "99999" } << QByteArray() << int(ExitNotFound);
    }

    void whatCannotBeSentIsNotStored()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, input);
        QFETCH(int, exit);
        const int before = messages();
        ClientProcess client;
        QCOMPARE(client.run(QStringList { "mail", "send" } + options, input), exit);
        QVERIFY(!client.errors().isEmpty());
        QCOMPARE(messages(), before);
        QVERIFY(mDaemon->calls().isEmpty());
    }

    void aTextIsWrittenInAnEditor()
    {
        QString written;
        mDaemon->setSender([&written](qulonglong id) {
            written = QMailMessage(QMailMessageId(id)).body().data();
            return 0;
        });
        ClientProcess client(ClientProcess::OnTerminal);
        client.setVariable(QStringLiteral("EDITOR"), QStringLiteral("sh -c 'echo typed > \"$0\"'"));
        QCOMPARE(client.run({ "mail", "send", "--to", "bob@b.org" }), int(ExitSuccess));
        QCOMPARE(written, QStringLiteral("typed\n"));
    }

    void anEmptyTextOfAnEditorIsNoMessage()
    {
        const int before = messages();
        ClientProcess client(ClientProcess::OnTerminal);
        client.setVariable(QStringLiteral("EDITOR"), QStringLiteral("true"));
        QCOMPARE(client.run({ "mail", "send", "--to", "bob@b.org" }), int(ExitCancelled));
        QCOMPARE(messages(), before);
    }

    void whatAFailingEditorLeftIsKept()
    {
        ClientProcess client(ClientProcess::OnTerminal);
        client.setVariable(QStringLiteral("EDITOR"), QStringLiteral("sh -c 'echo typed > \"$0\"; exit 3'"));
        client.setVariable(QStringLiteral("TMPDIR"), mScene->path(QString()));
        QCOMPARE(client.run({ "mail", "send", "--to", "bob@b.org" }), int(ExitFailure));
        const QStringList kept =
            QDir(mScene->path(QString())).entryList({ QStringLiteral("fennel-mail-*") }, QDir::Files);
        QCOMPARE(kept.size(), 1);
        QVERIFY2(client.output().contains(kept.first().toUtf8()), client.output());
    }

    void failuresAreExplained_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<bool>("mayHaveGone");
        QTest::newRow("-2") << -2 << QByteArray("did not understand the server's answer") << true;
        QTest::newRow("-6") << -6 << QByteArray("mailbox on the server is full") << false;
        QTest::newRow("-8") << -8 << QByteArray("lets no mail be sent") << false;
        QTest::newRow("-9") << -9 << QByteArray("no network") << false;
        QTest::newRow("116") << 116 << QByteArray("does not know one of the recipients") << false;
        QTest::newRow("the connection broke")
            << 10000 + int(QNetworkReply::RemoteHostClosedError) << QByteArray("connection broke") << true;
        QTest::newRow("nothing answers")
            << 10000 + int(QNetworkReply::ConnectionRefusedError) << QByteArray("Nothing answers") << false;
    }

    void failuresAreExplained()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, words);
        QFETCH(bool, mayHaveGone);
        failWith(status);
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitFailure));
        QCOMPARE(waiting().size(), 1);
        const QString number = text(waiting().first());
        QVERIFY2(client.errors().contains(words), client.errors());
        QVERIFY2(client.errors().contains("mail outbox --retry " + number.toUtf8()), client.errors());
        QCOMPARE(client.errors().contains("look into Sent Items"), mayHaveGone);
        const QJsonObject result = client.json().object();
        QCOMPARE(result.value(QStringLiteral("outbox")).toArray(), QJsonArray { number });
        QCOMPARE(result.value(QStringLiteral("status")).toInt(), status);
        // Another process tells it later.
        QCOMPARE(client.run({ "--json", "mail", "outbox" }), int(ExitSuccess));
        const QJsonObject row = client.json().array().at(0).toObject();
        QCOMPARE(row.value(QStringLiteral("id")).toString(), number);
        QVERIFY(row.value(QStringLiteral("failure")).toString().contains(QString::fromLatin1(words)));
        QVERIFY(!row.value(QStringLiteral("tried")).toString().isEmpty());
    }

    void whatTheEnginePutIntoDraftsIsSaidToBeThere()
    {
        mDaemon->setSender([this](qulonglong id) {
            return Outbox(mScene->accountId()).moveToDrafts(QMailMessageId(id)) ? 115 : -2;
        });
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitFailure));
        const QMailMessageIdList kept = in(mDrafts);
        QCOMPARE(kept.size(), 1);
        QVERIFY(waiting().isEmpty());
        QVERIFY2(client.errors().contains("mail send " + text(kept.first()).toUtf8()), client.errors());
        QCOMPARE(client.json().object().value(QStringLiteral("drafts")).toArray(),
            QJsonArray { text(kept.first()) });
    }

    void anOriginalThatTheServerLostIsNoFailure()
    {
        failWith(150);
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitSuccess));
        QVERIFY2(client.errors().contains("sent as a whole"), client.errors());
    }

    void anInterruptLeavesTheMessageInTheOutbox()
    {
        mDaemon->setStatus(StubDaemon::Open);
        ClientProcess client;
        client.start({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        QVERIFY(Waiting::until([this] { return lastCall().startsWith(QLatin1String("sendMail")); }, 60000));
        client.signal(SIGINT);
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
        QCOMPARE(waiting().size(), 1);
        QVERIFY2(client.errors().contains("in the Outbox"), client.errors());
        QVERIFY2(client.errors().contains("look into Sent Items"), client.errors());
    }

    void withoutADaemonTheMessageWaits()
    {
        mDaemon.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitUnavailable));
        QCOMPARE(waiting().size(), 1);
        QVERIFY(!client.errors().contains("look into Sent Items"));
    }

    void eachWaitingMessageIsTriedAgain()
    {
        failWith(-9);
        for (const char *name : { "one", "bad", "three" })
            CommandScene::run({ "mail", "send", "--to", QStringLiteral("%1@b.org").arg(QLatin1String(name)),
                "--text", "x" });
        const QMailMessageIdList before = waiting();
        QCOMPARE(before.size(), 3);
        mDaemon->setSender([](qulonglong number) {
            const QMailMessageId id(number);
            const bool isBad =
                QMailMessageMetaData(id).recipients().value(0).address() == QLatin1String("bad@b.org");
            return isBad ? 116 : QMailStore::instance()->removeMessage(id) ? 0 : -2;
        });
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "mail", "outbox", "--retry" }), int(ExitFailure));
        QCOMPARE(waiting(), QMailMessageIdList { before.at(1) });
        QVERIFY2(client.errors().contains("message " + text(before.at(1)).toUtf8() + ": "), client.errors());
        const QJsonObject result = client.json().object();
        QCOMPARE(result.value(QStringLiteral("sent")).toArray(),
            (QJsonArray { text(before.at(0)), text(before.at(2)) }));
    }

    void nothingWaitsIsSaid()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "outbox" }), int(ExitSuccess));
        QVERIFY(client.output().contains("nothing waits"));
        QCOMPARE(client.run({ "mail", "outbox", "--retry" }), int(ExitSuccess));
        QVERIFY(mDaemon->calls().isEmpty());
    }

    void aWaitingMessageIsTakenBack()
    {
        failWith(-9);
        CommandScene::run({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        const QMailMessageId id = waiting().value(0);
        QCOMPARE(CommandScene::run({ "mail", "outbox", "--to-drafts" }), int(ExitUsage));
        QCOMPARE(CommandScene::run({ "mail", "outbox", "--retry", "--to-drafts", text(id) }), int(ExitUsage));
        QCOMPARE(CommandScene::run({ "mail", "outbox", "--to-drafts", text(id) }), int(ExitSuccess));
        QVERIFY(waiting().isEmpty());
        QCOMPARE(in(mDrafts), QMailMessageIdList { id });
        QCOMPARE(CommandScene::run({ "mail", "outbox", "--retry", text(id) }), int(ExitNotFound));
        QCOMPARE(Outbox::lastTry(QMailMessageMetaData(id)).error, QString());
    }

    void aTryAgainSendsTheSameBytes()
    {
        failWith(10000 + int(QNetworkReply::RemoteHostClosedError));
        CommandScene::run({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        const QMailMessageId id = waiting().value(0);
        const QByteArray first = QMailMessage(id).toRfc2822();
        CommandScene::run({ "mail", "outbox", "--retry" });
        CommandScene::run({ "mail", "send", text(id) });
        QCOMPARE(QMailMessage(id).toRfc2822(), first);
        QCOMPARE(mDaemon->calls().count(sendCall(id)), 3);
    }

    void aDraftIsKeptAndSent()
    {
        const QMailMessageId draft = write({});
        QVERIFY(draft.isValid());
        QCOMPARE(in(mDrafts), QMailMessageIdList { draft });
        QVERIFY(mDaemon->calls().isEmpty());
        QCOMPARE(CommandScene::run({ "mail", "send", text(draft), "--subject", "x" }), int(ExitUsage));
        failWith(-9);
        QCOMPARE(CommandScene::run({ "mail", "send", text(draft) }), int(ExitFailure));
        QCOMPARE(waiting(), QMailMessageIdList { draft });
        QCOMPARE(QMailMessageMetaData(draft).parentFolderId(), mOutbox);
        QCOMPARE(QMailMessage(draft).body().data(), QStringLiteral("Hello"));
    }

    void aReceivedMessageIsNoDraft()
    {
        const QMailMessageId id = mMail->addMessage(mInbox, QStringLiteral("First"));
        QCOMPARE(CommandScene::run({ "mail", "send", text(id) }), int(ExitUsage));
        QCOMPARE(QMailMessageMetaData(id).parentFolderId(), mInbox);
    }

    void aDraftWithoutRecipientsIsNotSent()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "mail", "send", "--draft", "--text", "x" }), int(ExitSuccess));
        const QString number = client.json().object().value(QStringLiteral("id")).toString();
        QCOMPARE(client.run({ "mail", "send", number }), int(ExitUsage));
        QVERIFY(waiting().isEmpty());
    }

    void aDraftOfTheServerGoesOutAsAMessageOfItsOwn()
    {
        const QMailMessageId draft = mMail->addMessage(mDrafts, QStringLiteral("Elsewhere"));
        QVERIFY(mMail->fillSecondPart(draft, "now here"));
        QVERIFY(QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::id(draft), QMailMessage::ContentAvailable | QMailMessage::Draft, true));
        failWith(-9);
        QCOMPARE(CommandScene::run({ "mail", "send", text(draft) }), int(ExitFailure));
        QVERIFY(in(mDrafts).isEmpty());
        // So that the next sync takes it from the server's Drafts.
        QCOMPARE(mMail->removalRecords(), QStringList(QStringLiteral("uid-Elsewhere")));
        QCOMPARE(waiting().size(), 1);
        const QMailMessage copy(waiting().first());
        QCOMPARE(copy.subject(), QStringLiteral("Elsewhere"));
        QVERIFY(copy.serverUid().isEmpty());
        QCOMPARE(copy.partAt(2).body().data(QMailMessageBody::Decoded), QByteArray("now here"));
    }

    void aReplyLeavesTheQuotingToTheServer()
    {
        const QMailMessageId source = mMail->addMessage(mInbox, QStringLiteral("First"));
        QMailMessage seen;
        mDaemon->setSender([&seen](qulonglong id) {
            seen = withContent(id);
            return 0;
        });
        QCOMPARE(CommandScene::run({ "mail", "reply", text(source), "--text", "Yes" }), int(ExitSuccess));
        QCOMPARE(seen.subject(), QStringLiteral("Re: First"));
        QCOMPARE(seen.to().value(0).address(), QStringLiteral("bob@example.com"));
        QCOMPARE(seen.inResponseTo(), source);
        QCOMPARE(seen.responseType(), QMailMessage::Reply);
        QCOMPARE(seen.partAt(0).body().data(), QStringLiteral("Yes"));
        QCOMPARE(seen.partAt(1).messageReference(), source);
    }

    void aWholeForwardFetchesWhatIsMissing()
    {
        const QMailMessageId source = mMail->addMessage(mInbox, QStringLiteral("First"));
        QMailMessage seen;
        mDaemon->setSender([&seen](qulonglong id) {
            seen = withContent(id);
            return 0;
        });
        // The stub downloads nothing.
        QCOMPARE(CommandScene::run({ "mail", "forward", text(source), "--whole", "--to", "c@c.org", "--text",
                     "See below" }),
            int(ExitFailure));
        QVERIFY(mDaemon->calls().value(0).startsWith(QLatin1String("downloadMessages")));
        QVERIFY(waiting().isEmpty() && !seen.id().isValid());
        QVERIFY(mMail->fillSecondPart(source, "now here"));
        QVERIFY(QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::id(source), QMailMessage::ContentAvailable, true));
        QCOMPARE(CommandScene::run({ "mail", "forward", text(source), "--whole", "--to", "c@c.org", "--text",
                     "See below" }),
            int(ExitSuccess));
        QCOMPARE(seen.subject(), QStringLiteral("Fwd: First"));
        QCOMPARE(seen.partCount(), 3u);
        const QString body = seen.partAt(0).body().data();
        QVERIFY2(body.startsWith(QLatin1String("See below\n\n-------- Forwarded"))
                && body.endsWith(QLatin1String("\n\nHello there")),
            qPrintable(body));
        QCOMPARE(seen.partAt(2).body().data(QMailMessageBody::Decoded), QByteArray("now here"));
    }
};

FENNEL_REGISTER_TEST(SendCommandsTest)
#include "sendcommandstest.moc"
