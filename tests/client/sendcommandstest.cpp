// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/exitstatus.h"
#include "client/writingscene.h"
#include "support/clientprocess.h"
#include "support/testmain.h"

#include <QJsonArray>
#include <QJsonObject>

/** Mail that is written on the command line: what the daemon is told, and where the message is afterwards. */
class SendCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<WritingScene> mScene;
    static int messages() { return QMailStore::instance()->countMessages(); }
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
        mScene = std::make_unique<WritingScene>();
        QVERIFY(mScene->isReady());
        QTRY_VERIFY(mScene->hasMailAccount());
        QVERIFY(mScene->addFolders());
    }
    void cleanup() { mScene.reset(); }

    void aMessageIsSent()
    {
        QMailMessage seen;
        mScene->daemon().setSender([&seen](qulonglong id) {
            seen = WritingScene::withContent(id);
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
        QCOMPARE(mScene->lastCall(), mScene->sendCall(seen.id()));
        QCOMPARE(seen.parentFolderId(), mScene->outbox());
        QCOMPARE(seen.subject(), QStringLiteral("Lunch"));
        QCOMPARE(seen.to().value(0).toString(), QStringLiteral("Bob <bob@b.org>"));
        QCOMPARE(seen.cc().value(0).address(), QStringLiteral("c@c.org"));
        QCOMPARE(seen.bcc().value(0).address(), QStringLiteral("d@d.org"));
        QCOMPARE(seen.partAt(0).body().data(), QStringLiteral("At\nnoon?"));
        QCOMPARE(seen.partAt(1).displayName(), QStringLiteral("plan.txt"));
        const QJsonObject result = client.json().object();
        QCOMPARE(
            result.value(QStringLiteral("sent")).toArray(), QJsonArray { WritingScene::text(seen.id()) });
        QCOMPARE(result.value(QStringLiteral("outbox")).toArray(), QJsonArray());
        QVERIFY(WritingScene::in(mScene->outbox()).isEmpty());
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
        QVERIFY(mScene->daemon().calls().isEmpty());
    }

    void aTextIsWrittenInAnEditor()
    {
        QString written;
        mScene->daemon().setSender([&written](qulonglong id) {
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

    void aDraftIsKeptAndSent()
    {
        const QMailMessageId draft = write({});
        QVERIFY(draft.isValid());
        QCOMPARE(WritingScene::in(mScene->drafts()), QMailMessageIdList { draft });
        QVERIFY(mScene->daemon().calls().isEmpty());
        QCOMPARE(CommandScene::run({ "mail", "send", WritingScene::text(draft), "--subject", "x" }),
            int(ExitUsage));
        mScene->failWith(-9);
        QCOMPARE(CommandScene::run({ "mail", "send", WritingScene::text(draft) }), int(ExitFailure));
        QCOMPARE(mScene->waiting(), QMailMessageIdList { draft });
        QCOMPARE(QMailMessageMetaData(draft).parentFolderId(), mScene->outbox());
        QCOMPARE(QMailMessage(draft).body().data(), QStringLiteral("Hello"));
    }

    void aReceivedMessageIsNoDraft()
    {
        const QMailMessageId id = mScene->mail().addMessage(mScene->inbox(), QStringLiteral("First"));
        QCOMPARE(CommandScene::run({ "mail", "send", WritingScene::text(id) }), int(ExitUsage));
        QCOMPARE(QMailMessageMetaData(id).parentFolderId(), mScene->inbox());
    }

    void aDraftWithoutRecipientsIsNotSent()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "mail", "send", "--draft", "--text", "x" }), int(ExitSuccess));
        const QString number = client.json().object().value(QStringLiteral("id")).toString();
        QCOMPARE(client.run({ "mail", "send", number }), int(ExitUsage));
        QVERIFY(mScene->waiting().isEmpty());
    }

    void aDraftOfTheServerGoesOutAsAMessageOfItsOwn()
    {
        const QMailMessageId draft = mScene->mail().addMessage(mScene->drafts(), QStringLiteral("Elsewhere"));
        QVERIFY(mScene->mail().fillSecondPart(draft, "now here"));
        QVERIFY(QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::id(draft), QMailMessage::ContentAvailable | QMailMessage::Draft, true));
        mScene->failWith(-9);
        QCOMPARE(CommandScene::run({ "mail", "send", WritingScene::text(draft) }), int(ExitFailure));
        QVERIFY(WritingScene::in(mScene->drafts()).isEmpty());
        // So that the next sync takes it from the server's Drafts.
        QCOMPARE(mScene->mail().removalRecords(), QStringList(QStringLiteral("uid-Elsewhere")));
        QCOMPARE(mScene->waiting().size(), 1);
        const QMailMessage copy(mScene->waiting().first());
        QCOMPARE(copy.subject(), QStringLiteral("Elsewhere"));
        QVERIFY(copy.serverUid().isEmpty());
        QCOMPARE(copy.partAt(2).body().data(QMailMessageBody::Decoded), QByteArray("now here"));
    }

    void aReplyLeavesTheQuotingToTheServer()
    {
        const QMailMessageId source = mScene->mail().addMessage(mScene->inbox(), QStringLiteral("First"));
        QMailMessage seen;
        mScene->daemon().setSender([&seen](qulonglong id) {
            seen = WritingScene::withContent(id);
            return 0;
        });
        QCOMPARE(CommandScene::run({ "mail", "reply", WritingScene::text(source), "--text", "Yes" }),
            int(ExitSuccess));
        QCOMPARE(seen.subject(), QStringLiteral("Re: First"));
        QCOMPARE(seen.to().value(0).address(), QStringLiteral("bob@example.com"));
        QCOMPARE(seen.inResponseTo(), source);
        QCOMPARE(seen.responseType(), QMailMessage::Reply);
        QCOMPARE(seen.partAt(0).body().data(), QStringLiteral("Yes"));
        QCOMPARE(seen.partAt(1).messageReference(), source);
    }

    void theOriginalOfADraftIsNoAttachment()
    {
        const QMailMessageId source = mScene->mail().addMessage(mScene->inbox(), QStringLiteral("First"));
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "mail", "reply", WritingScene::text(source), "--text", "x", "--draft" }),
            int(ExitSuccess));
        const QString draft = client.json().object().value(QStringLiteral("id")).toString();
        const QJsonObject shown = client.json({ "mail", "show", draft }).object();
        QCOMPARE(shown.value(QStringLiteral("parts")).toArray(), QJsonArray());
        QCOMPARE(shown.value(QStringLiteral("original")).toString(), WritingScene::text(source));
        QCOMPARE(shown.value(QStringLiteral("text")).toString(), QStringLiteral("x"));
    }

    void aWholeForwardOfWhatCannotBeFetchedDoesNotGo()
    {
        const QMailMessageId source = mScene->mail().addMessage(mScene->inbox(), QStringLiteral("First"));
        QCOMPARE(CommandScene::run({ "mail", "forward", WritingScene::text(source), "--whole", "--to",
                     "c@c.org", "--text", "See below" }),
            int(ExitFailure));
        QCOMPARE(mScene->daemon().calls().size(), 1);
        QVERIFY(mScene->daemon().calls().first().startsWith(QLatin1String("downloadMessages")));
        QVERIFY(mScene->waiting().isEmpty());
    }

    void aWholeForwardFetchesWhatIsMissing()
    {
        const QMailMessageId source = mScene->mail().addMessage(mScene->inbox(), QStringLiteral("First"));
        QMailMessage seen;
        mScene->daemon().setSender([&seen](qulonglong id) {
            seen = WritingScene::withContent(id);
            return 0;
        });
        QList<qulonglong> fetched;
        mScene->daemon().setDownloader([&](const QList<qulonglong> &ids) {
            if (mScene->mail().fillSecondPart(source, "now here")
                && QMailStore::instance()->updateMessagesMetaData(
                    QMailMessageKey::id(source), QMailMessage::ContentAvailable, true))
                fetched = ids;
        });
        QCOMPARE(CommandScene::run({ "mail", "forward", WritingScene::text(source), "--whole", "--to",
                     "c@c.org", "--text", "See below" }),
            int(ExitSuccess));
        QCOMPARE(fetched, QList<qulonglong> { source.toULongLong() });
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
