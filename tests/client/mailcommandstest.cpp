// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/mailbox.h"
#include "client/mailscene.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/testmain.h"

#include <QJsonArray>
#include <QJsonObject>
#include <qmailstore.h>

/** Mail as the command line shows and changes it, and what the store then has for the engine. */
class MailCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    std::unique_ptr<MailScene> mMail;
    QMailFolderId mInbox;
    QMailFolderId mProjects;
    QMailMessageId mFirst;
    QMailMessageId mSecond;

    static QString text(const QMailMessageId &id) { return QString::number(id.toULongLong()); }
    static bool isRead(const QMailMessageId &id)
    {
        return bool(QMailMessageMetaData(id).status() & QMailMessage::Read);
    }
    /** The subjects of a list in their order. */
    static QStringList subjects(const QStringList &options)
    {
        ClientProcess client;
        if (client.run(QStringList { "--json", "mail", "list" } + options) != ExitSuccess)
            return { QStringLiteral("failed: ") + QString::fromUtf8(client.errors()) };
        QStringList found;
        const QJsonArray rows = client.json().array();
        for (const QJsonValue &row : rows)
            found.append(row.toObject().value(QStringLiteral("subject")).toString());
        return found;
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
        mProjects = mMail->addFolder(QStringLiteral("Projects"), mInbox);
        mFirst = mMail->addMessage(mInbox, QStringLiteral("First"));
        mSecond = mMail->addMessage(mProjects, QStringLiteral("Second"),
            QStringLiteral("Carol <carol@example.org>"), QDateTime(QDate(2024, 5, 3), QTime(10, 0), Qt::UTC));
    }
    void cleanup()
    {
        mMail.reset();
        mDaemon.reset();
        mScene.reset();
    }

    void messagesAreMarked()
    {
        QVERIFY(!isRead(mFirst));
        QCOMPARE(CommandScene::run({ "mark", "read", text(mFirst), text(mSecond) }), int(ExitSuccess));
        QVERIFY(isRead(mFirst) && isRead(mSecond));
        QCOMPARE(CommandScene::run({ "mark", "unread", text(mSecond) }), int(ExitSuccess));
        QVERIFY(isRead(mFirst) && !isRead(mSecond));
    }

    void allMessagesOfAFolderAreMarked()
    {
        const QMailMessageId third = mMail->addMessage(mInbox, QStringLiteral("Third"));
        QCOMPARE(CommandScene::run({ "mark", "read", "--folder", "Inbox" }), int(ExitSuccess));
        QVERIFY(isRead(mFirst) && isRead(third) && !isRead(mSecond));
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "mark", "unread", "--folder", "inbox/projects" }), int(ExitSuccess));
        QCOMPARE(client.json().object().value(QStringLiteral("messages")).toArray(), QJsonArray());
        QCOMPARE(CommandScene::run({ "mark", "read" }), int(ExitUsage));
        QCOMPARE(CommandScene::run({ "mark", "read", text(mFirst), "--folder", "Inbox" }), int(ExitUsage));
        QCOMPARE(CommandScene::run({ "mark", "read", "--folder", "nowhere" }), int(ExitNotFound));
    }

    void aMessageIsMoved()
    {
        QCOMPARE(CommandScene::run({ "move", text(mFirst), "inbox/projects" }), int(ExitSuccess));
        const QMailMessageMetaData message(mFirst);
        QCOMPARE(message.parentFolderId(), mProjects);
        // By this the engine knows that the server is to be told.
        QCOMPARE(message.previousParentFolderId(), mInbox);
    }

    void aDeletedMessageLeavesARecordForTheServer()
    {
        QCOMPARE(CommandScene::run({ "delete", text(mFirst) }), int(ExitSuccess));
        QVERIFY(!QMailMessageMetaData(mFirst).id().isValid());
        QCOMPARE(mMail->removalRecords(), QStringList(QStringLiteral("uid-First")));
    }

    void aDeletedMessageThatTheServerNeverHadLeavesNoRecord()
    {
        QMailMessage draft = QMailMessage::fromRfc2822("Subject: Draft\r\n\r\ntext");
        draft.setParentAccountId(QMailAccountId(mScene->accountId()));
        draft.setParentFolderId(mInbox);
        QVERIFY(QMailStore::instance()->addMessage(&draft));
        QCOMPARE(CommandScene::run({ "delete", text(draft.id()), text(mFirst) }), int(ExitSuccess));
        QVERIFY(!QMailMessageMetaData(draft.id()).id().isValid());
        QCOMPARE(mMail->removalRecords(), QStringList(QStringLiteral("uid-First")));
    }

    void ofSeveralMessagesNoneIsChangedIfOneDoesNotExist()
    {
        QCOMPARE(CommandScene::run({ "mark", "read", text(mFirst), "99999" }), int(ExitNotFound));
        QCOMPARE(CommandScene::run({ "delete", text(mFirst), "99999" }), int(ExitNotFound));
        QCOMPARE(CommandScene::run({ "move", text(mFirst), "99999", "Inbox" }), int(ExitNotFound));
        QVERIFY(!isRead(mFirst));
        QVERIFY(mMail->removalRecords().isEmpty());
    }

    void aListIsNarrowed_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("all, newest first") << QStringList() << QStringList { "Second", "First" };
        QTest::newRow("one folder") << QStringList { "Inbox" } << QStringList { "First" };
        QTest::newRow("unread") << QStringList { "--unread" } << QStringList { "Second" };
        QTest::newRow("by sender") << QStringList { "--from", "CAROL" } << QStringList { "Second" };
        QTest::newRow("by subject") << QStringList { "--subject", "irs" } << QStringList { "First" };
        QTest::newRow("since a day") << QStringList { "--since", "2024-05-02" } << QStringList { "Second" };
        QTest::newRow("the newest one") << QStringList { "--limit", "1" } << QStringList { "Second" };
        QTest::newRow("none") << QStringList { "--from", "dora" } << QStringList();
    }

    void aListIsNarrowed()
    {
        QFETCH(QStringList, options);
        QFETCH(QStringList, expected);
        QCOMPARE(CommandScene::run({ "mark", "read", text(mFirst) }), int(ExitSuccess));
        QCOMPARE(subjects(options), expected);
    }

    void whatAListLeavesOutIsSaid()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "list", "--limit", "1" }), int(ExitSuccess));
        QVERIFY2(client.errors().contains("1 of 2 messages"), client.errors());
        QCOMPARE(client.run({ "mail", "list", "--limit", "2" }), int(ExitSuccess));
        QCOMPARE(client.errors(), QByteArray());
    }

    void aMessageIsShownWithItsParts()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "show", text(mFirst) }), int(ExitSuccess));
        for (const char *expected :
            { "First", "Bob <bob@example.com>", "Hello there", "here.txt", "there.txt" })
            QVERIFY2(client.output().contains(expected), expected);
        QCOMPARE(client.run({ "--json", "mail", "show", text(mFirst) }), int(ExitSuccess));
        const QJsonObject message = client.json().object();
        QCOMPARE(message.value(QStringLiteral("text")).toString(), QStringLiteral("Hello there"));
        QCOMPARE(message.value(QStringLiteral("parts")).toArray().size(), 2);
        const QDateTime date =
            QDateTime::fromString(message.value(QStringLiteral("date")).toString(), Qt::ISODate);
        QCOMPARE(date, QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC));
    }

    void wholeMessagesAreDownloaded()
    {
        ClientProcess client;
        QCOMPARE(
            client.run({ "mail", "get", text(mFirst), text(mSecond), "--attachments" }), int(ExitSuccess));
        QCOMPARE(mDaemon->calls(),
            QStringList(QStringLiteral("downloadMessages %1 2 1").arg(mScene->accountId())));
    }

    void aMessageIsExported()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "export", text(mFirst) }), int(ExitSuccess));
        QVERIFY(
            client.output().contains("Subject: First\r\n") || client.output().contains("Subject: First\n"));
        QVERIFY(client.output().contains("Hello there"));
    }

    void aPartOnTheDeviceIsSavedWithoutTheServer()
    {
        const QString path = mScene->path(QStringLiteral("out.txt"));
        QCOMPARE(CommandScene::run({ "attachment", "save", text(mFirst), "2", path }), int(ExitSuccess));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("on the device"));
        QVERIFY(mDaemon->calls().isEmpty());
        // What is there already stays, unless told otherwise.
        QCOMPARE(CommandScene::run({ "attachment", "save", text(mFirst), "2", path }), int(ExitFailure));
        QCOMPARE(CommandScene::run({ "attachment", "save", text(mFirst), "2", path, "--force" }),
            int(ExitSuccess));
    }

    void aPartIsPrinted()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "attachment", "save", text(mFirst), "2", "-" }), int(ExitSuccess));
        QCOMPARE(client.output(), QByteArray("on the device"));
        QVERIFY(!QFile::exists(QStringLiteral("-")));
    }

    void aPartThatDoesNotComeIsNoEmptyFile()
    {
        const QString path = mScene->path(QStringLiteral("out.txt"));
        ClientProcess client;
        QCOMPARE(client.run({ "attachment", "save", text(mFirst), "3", path }), int(ExitFailure));
        QCOMPARE(mDaemon->calls(),
            QStringList(
                QStringLiteral("downloadMessagePart %1 %2 3").arg(mScene->accountId()).arg(text(mFirst))));
        QVERIFY(!QFile::exists(path));
    }

    void allPartsAreSavedAtOnce()
    {
        QVERIFY(MailScene::fillSecondPart(mFirst, "it came"));
        ClientProcess client;
        const QString folder = mScene->path(QString());
        QCOMPARE(
            client.run({ "--json", "attachment", "save", text(mFirst), "--all", folder }), int(ExitSuccess));
        QCOMPARE(client.json().object().value(QStringLiteral("files")).toArray().size(), 2);
        QVERIFY(QFile::exists(mScene->path(QStringLiteral("here.txt"))));
        QVERIFY(QFile::exists(mScene->path(QStringLiteral("there.txt"))));
    }

    void foldersAreCreatedRenamedAndDeletedOnTheServer()
    {
        ClientProcess client;
        const QString account = QString::number(mScene->accountId());
        QCOMPARE(client.run({ "folder", "create", "New", "--parent", "Inbox" }), int(ExitSuccess));
        QCOMPARE(client.run({ "folder", "rename", "Inbox/Projects", "Old", "--to-root" }), int(ExitSuccess));
        QCOMPARE(client.run({ "folder", "delete", "Inbox/Projects" }), int(ExitSuccess));
        const QString inbox = QString::number(mInbox.toULongLong());
        const QString projects = QString::number(mProjects.toULongLong());
        QCOMPARE(mDaemon->calls(),
            QStringList({ QStringLiteral("createFolder %1 New %2 0").arg(account, inbox),
                QStringLiteral("updateFolder %1 %2 0 Old").arg(account, projects),
                QStringLiteral("deleteFolder %1 %2").arg(account, projects) }));
        QCOMPARE(client.run({ "folder", "create", "projects", "--parent", "Inbox" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("already"), client.errors());
    }

    void aFolderWithContentIsDeletedAfterAQuestion()
    {
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "folder", "delete", "Inbox" });
        QVERIFY2(client.waitForOutput("[y/N]"), client.output());
        QVERIFY2(client.output().contains("1 folder(s) below and 2 item(s)"), client.output());
        client.type("n\n");
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
        QVERIFY(mDaemon->calls().isEmpty());
        QCOMPARE(client.run({ "folder", "delete", "Inbox", "--yes" }), int(ExitSuccess));
        QCOMPARE(mDaemon->calls().size(), 1);
    }

    void aFolderWithASlashIsNoChildOfAnother()
    {
        mMail->addFolder(QStringLiteral("A/B"));
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "folders" }), int(ExitSuccess));
        const QJsonArray rows = client.json().array();
        QCOMPARE(rows.size(), 3);
        for (const QJsonValue &row : rows) {
            const QJsonObject folder = row.toObject();
            const int depth =
                folder.value(QStringLiteral("name")).toString() == QLatin1String("Projects") ? 1 : 0;
            QCOMPARE(folder.value(QStringLiteral("depth")).toInt(), depth);
        }
    }

    void wrongUsageIsRefused_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("exit");
        QTest::newRow("a limit is a number") << "mail|list|--limit|abc" << int(ExitUsage);
        QTest::newRow("a limit is at least one") << "mail|list|--limit|0" << int(ExitUsage);
        QTest::newRow("a limit is not negative") << "mail|list|--limit|-1" << int(ExitUsage);
        QTest::newRow("since is a day") << "mail|list|--since|soon" << int(ExitUsage);
        QTest::newRow("an unknown folder") << "mail|list|Nowhere" << int(ExitNotFound);
        QTest::newRow("an unknown message") << "mail|show|99999" << int(ExitNotFound);
        QTest::newRow("a message is a number") << "mail|show|First" << int(ExitNotFound);
        QTest::newRow("no message") << "mail|get" << int(ExitUsage);
        QTest::newRow("an unknown message to export") << "mail|export|99999" << int(ExitNotFound);
        QTest::newRow("an unknown folder to move to") << "move|1|Nowhere" << int(ExitNotFound);
        QTest::newRow("nowhere to move to") << "move|1" << int(ExitUsage);
        QTest::newRow("no part") << "attachment|save|1" << int(ExitNotFound);
    }

    void wrongUsageIsRefused()
    {
        QFETCH(QString, line);
        QFETCH(int, exit);
        QCOMPARE(CommandScene::run(line.split(QLatin1Char('|'))), exit);
    }

    void aPartThatDoesNotExistIsNotFound()
    {
        QCOMPARE(CommandScene::run({ "attachment", "save", text(mFirst), "9" }), int(ExitNotFound));
        QCOMPARE(CommandScene::run({ "attachment", "save", text(mFirst), "x" }), int(ExitNotFound));
        QCOMPARE(CommandScene::run({ "attachment", "save", text(mFirst) }), int(ExitUsage));
        QCOMPARE(
            CommandScene::run({ "attachment", "save", text(mFirst), "--all", "/nowhere" }), int(ExitUsage));
    }
};

FENNEL_REGISTER_TEST(MailCommandsTest)
#include "mailcommandstest.moc"
