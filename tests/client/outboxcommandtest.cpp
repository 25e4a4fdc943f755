// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/exitstatus.h"
#include "client/writingscene.h"
#include "support/clientprocess.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkReply>

#include <csignal>

/** Mail that could not be sent: what is said of it, where it stands, and how it is tried again. */
class OutboxCommandTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<WritingScene> mScene;

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<WritingScene>();
        QVERIFY(mScene->isReady());
        QTRY_VERIFY(mScene->hasMailAccount());
        QVERIFY(mScene->addFolders());
    }
    void cleanup() { mScene.reset(); }

    void failuresAreExplained_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<bool>("mayHaveGone");
        QTest::newRow("-2") << -2 << QByteArray("did not understand the server's answer") << true;
        QTest::newRow("another program cancelled it")
            << -4 << QByteArray("Cancelled: another program") << true;
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
        mScene->failWith(status);
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "mail", "send", "--to", "bob@b.org", "--text", "x" }),
            status == -4 ? int(ExitCancelled) : int(ExitFailure));
        QCOMPARE(mScene->waiting().size(), 1);
        const QString number = WritingScene::text(mScene->waiting().first());
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
        mScene->daemon().setSender([this](qulonglong id) {
            return Outbox(mScene->accountId()).moveToDrafts(QMailMessageId(id)) ? 115 : -2;
        });
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitFailure));
        const QMailMessageIdList kept = WritingScene::in(mScene->drafts());
        QCOMPARE(kept.size(), 1);
        QVERIFY(mScene->waiting().isEmpty());
        QVERIFY2(client.errors().contains("mail send " + WritingScene::text(kept.first()).toUtf8()),
            client.errors());
        QCOMPARE(client.json().object().value(QStringLiteral("drafts")).toArray(),
            QJsonArray { WritingScene::text(kept.first()) });
    }

    void anOriginalThatTheServerLostIsNoFailure()
    {
        mScene->failWith(150);
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitSuccess));
        QVERIFY2(client.errors().contains("sent as a whole"), client.errors());
    }

    void anInterruptLeavesTheMessageInTheOutbox()
    {
        mScene->daemon().setStatus(StubDaemon::Open);
        ClientProcess client;
        client.start({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        QVERIFY(Waiting::until(
            [this] { return mScene->lastCall().startsWith(QLatin1String("sendMail")); }, 60000));
        client.signal(SIGINT);
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
        QCOMPARE(mScene->waiting().size(), 1);
        QVERIFY2(client.errors().contains("in the Outbox"), client.errors());
        QVERIFY2(client.errors().contains("look into Sent Items"), client.errors());
    }

    void aDaemonThatDiesMayHaveSentTheMessage()
    {
        mScene->daemon().setStatus(StubDaemon::Open);
        ClientProcess client;
        client.start({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        QVERIFY(Waiting::until(
            [this] { return mScene->lastCall().startsWith(QLatin1String("sendMail")); }, 60000));
        mScene->endDaemon();
        QCOMPARE(client.waitForEnd(), int(ExitUnavailable));
        QCOMPARE(mScene->waiting().size(), 1);
        QVERIFY2(client.errors().contains("look into Sent Items"), client.errors());
    }

    void aBlockedAccountHasSentNothing()
    {
        QVERIFY(AccountFactory().setValue(mScene->accountId(), AccountFactory::mailService(),
            QStringLiteral("CredentialsNeedUpdate"), true));
        mScene->failWith(-4);
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("password was refused"), client.errors());
        QVERIFY2(!client.errors().contains("look into Sent Items"), client.errors());
    }

    void withoutADaemonTheMessageWaits()
    {
        mScene->endDaemon();
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "send", "--to", "bob@b.org", "--text", "x" }), int(ExitUnavailable));
        QCOMPARE(mScene->waiting().size(), 1);
        QVERIFY(!client.errors().contains("look into Sent Items"));
    }

    void eachWaitingMessageIsTriedAgain()
    {
        mScene->failWith(-9);
        for (const char *name : { "one", "bad", "three" })
            CommandScene::run({ "mail", "send", "--to", QStringLiteral("%1@b.org").arg(QLatin1String(name)),
                "--text", "x" });
        const QMailMessageIdList before = mScene->waiting();
        QCOMPARE(before.size(), 3);
        mScene->daemon().setSender([](qulonglong number) {
            const QMailMessageId id(number);
            const bool isBad =
                QMailMessageMetaData(id).recipients().value(0).address() == QLatin1String("bad@b.org");
            return isBad ? 116 : QMailStore::instance()->removeMessage(id) ? 0 : -2;
        });
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "mail", "outbox", "--retry" }), int(ExitFailure));
        QCOMPARE(mScene->waiting(), QMailMessageIdList { before.at(1) });
        QVERIFY2(client.errors().contains("message " + WritingScene::text(before.at(1)).toUtf8() + ": "),
            client.errors());
        const QJsonObject result = client.json().object();
        QCOMPARE(result.value(QStringLiteral("sent")).toArray(),
            (QJsonArray { WritingScene::text(before.at(0)), WritingScene::text(before.at(2)) }));
    }

    void nothingWaitsIsSaid()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "outbox" }), int(ExitSuccess));
        QCOMPARE(client.output(), QByteArray("nothing waits to be sent\n"));
        QCOMPARE(client.run({ "mail", "outbox", "--retry" }), int(ExitSuccess));
        QVERIFY(mScene->daemon().calls().isEmpty());
    }

    void theStatusTellsOfWhatWaits()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "status" }), int(ExitSuccess));
        QVERIFY(!client.output().contains("Outbox"));
        mScene->failWith(-9);
        CommandScene::run({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        QCOMPARE(client.run({ "status" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("1 message(s) in the Outbox"), client.output());
        const QJsonArray accounts =
            client.json({ "status" }).object().value(QStringLiteral("accounts")).toArray();
        QCOMPARE(accounts.at(0).toObject().value(QStringLiteral("outbox")).toInt(), 1);
        QCOMPARE(accounts.at(0).toObject().value(QStringLiteral("mailWaiting")).toInt(), 0);
    }

    void aWaitingMessageIsTakenBack()
    {
        mScene->failWith(-9);
        CommandScene::run({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        const QMailMessageId id = mScene->waiting().value(0);
        QCOMPARE(CommandScene::run({ "mail", "outbox", "--to-drafts" }), int(ExitUsage));
        QCOMPARE(CommandScene::run({ "mail", "outbox", "--retry", "--to-drafts", WritingScene::text(id) }),
            int(ExitUsage));
        QCOMPARE(
            CommandScene::run({ "mail", "outbox", "--to-drafts", WritingScene::text(id) }), int(ExitSuccess));
        QVERIFY(mScene->waiting().isEmpty());
        QCOMPARE(WritingScene::in(mScene->drafts()), QMailMessageIdList { id });
        QCOMPARE(
            CommandScene::run({ "mail", "outbox", "--retry", WritingScene::text(id) }), int(ExitNotFound));
        QCOMPARE(Outbox::lastTry(QMailMessageMetaData(id)).error, QString());
    }

    void aTryAgainSendsTheSameBytes()
    {
        mScene->failWith(10000 + int(QNetworkReply::RemoteHostClosedError));
        CommandScene::run({ "mail", "send", "--to", "bob@b.org", "--text", "x" });
        const QMailMessageId id = mScene->waiting().value(0);
        const QByteArray first = QMailMessage(id).toRfc2822();
        CommandScene::run({ "mail", "outbox", "--retry" });
        CommandScene::run({ "mail", "send", WritingScene::text(id) });
        QCOMPARE(QMailMessage(id).toRfc2822(), first);
        QCOMPARE(mScene->daemon().calls().count(mScene->sendCall(id)), 3);
    }
};

FENNEL_REGISTER_TEST(OutboxCommandTest)
#include "outboxcommandtest.moc"
