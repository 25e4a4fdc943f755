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
#include <qmailmessagekey.h>
#include <qmailstore.h>

/** Searches of mail by command, and what they leave in the other commands. */
class SearchCommandTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    std::unique_ptr<MailScene> mMail;
    QMailFolderId mInbox;
    QList<qulonglong> mResults;

    /** A message as the engine keeps what it has found. */
    QMailMessageId addResult(const QString &subject) const
    {
        QMailMessage message(mMail->addMessage(QMailFolderId(quint64(1)), subject));
        message.setStatus(QMailMessage::Temporary, true);
        message.setRestoreFolderId(mInbox);
        return QMailStore::instance()->updateMessage(&message) ? message.id() : QMailMessageId();
    }
    QString call(
        const QString &folder, const QString &from, const QString &to, const QString &text, int limit) const
    {
        return QStringLiteral("searchMessages %1|%2|%3|%4|%5|%6")
            .arg(QString::number(mScene->accountId()), folder, from, to, text, QString::number(limit));
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
        mMail->addMessage(mInbox, QStringLiteral("Own"));
        mResults.clear();
        for (const char *subject : { "One", "Two", "Three" })
            mResults.append(addResult(QLatin1String(subject)).toULongLong());
        mDaemon->setMatches(mResults, 7);
    }
    void cleanup()
    {
        QMailStore::instance()->removeMessages(
            QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Includes),
            QMailStore::NoRemovalRecord);
        mMail.reset();
        mDaemon.reset();
        mScene.reset();
    }

    void whatIsFoundIsListedWithItsFolder()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "search", "the", "plan" }), int(ExitSuccess));
        QCOMPARE(mDaemon->calls(), QStringList { call({}, {}, {}, QStringLiteral("the plan"), 49) });
        const QByteArrayList lines = client.output().split('\n');
        QVERIFY2(lines.value(0).startsWith("ID"), client.output());
        QVERIFY2(lines.value(1).contains("One") && lines.value(1).contains("Inbox"), client.output());
        QVERIFY2(lines.value(3).contains("Three"), client.output());
        QVERIFY2(client.errors().contains("7 more on the server"), client.errors());
    }

    void programsGetTheSame()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "search", "plan", "--limit", "2" }), int(ExitSuccess));
        QCOMPARE(mDaemon->calls(), QStringList { call({}, {}, {}, QStringLiteral("plan"), 1) });
        const QJsonArray rows = client.json().array();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(
            rows.at(0).toObject().value(QStringLiteral("id")).toString(), QString::number(mResults.at(0)));
        QCOMPARE(rows.at(0).toObject().value(QStringLiteral("folder")).toString(), QStringLiteral("Inbox"));
        QVERIFY2(client.errors().contains("8 more on the server"), client.errors());
    }

    void foldersAndDaysGoToTheDaemon()
    {
        const auto utc = [](const QDate &day, int milliseconds) {
            return QDateTime(day, QTime(0, 0)).addMSecs(milliseconds).toUTC().toString(Qt::ISODateWithMs);
        };
        ClientProcess client;
        QCOMPARE(client.run({ "search", "--folder", "inbox", "--from", "2026-05-01", "--to", "2026-05-02",
                     "--limit", "1" }),
            int(ExitSuccess));
        QCOMPARE(mDaemon->calls(),
            QStringList { call(QString::number(mInbox.toULongLong()), utc(QDate(2026, 5, 1), -1),
                utc(QDate(2026, 5, 3), 0), {}, 1) });
    }

    void aFindIsAnotherCall()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "search", "plan", "--find", "--folder", "Inbox" }), int(ExitSuccess));
        QCOMPARE(mDaemon->calls(),
            QStringList {
                QStringLiteral("find %1|%2|plan|0|49").arg(mScene->accountId()).arg(mInbox.toULongLong()) });
    }

    void whatMakesNoSenseIsRefused_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::newRow("nothing") << QStringList { "search" } << int(ExitUsage);
        QTest::newRow("a folder alone") << QStringList { "search", "--folder", "Inbox" } << int(ExitUsage);
        QTest::newRow("no limit") << QStringList { "search", "plan", "--limit", "0" } << int(ExitUsage);
        QTest::newRow("no day") << QStringList { "search", "--from", "sometime" } << int(ExitUsage);
        QTest::newRow("a find by days")
            << QStringList { "search", "plan", "--find", "--from", "today" } << int(ExitUsage);
        QTest::newRow("an unknown folder")
            << QStringList { "search", "plan", "--folder", "nowhere" } << int(ExitNotFound);
    }

    void whatMakesNoSenseIsRefused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QCOMPARE(CommandScene::run(arguments), status);
        QCOMPARE(mDaemon->calls(), QStringList());
    }

    void aServerWithoutSearchIsNamed()
    {
        mDaemon->setStatus(-8);
        ClientProcess client;
        QCOMPARE(client.run({ "search", "plan" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("The server does not offer this kind of search."), client.errors());
        QCOMPARE(client.output(), QByteArray());
    }

    void theOtherCommandsDoNotCountThem()
    {
        MailBox box(mScene->accountId());
        QVERIFY(box.open());
        QCOMPARE(box.allMessages().size(), 1);
        QCOMPARE(box.messages({}).size(), 1);
        QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::id(QMailMessageId(mResults.at(0))), QMailMessage::Read, true);
        QCOMPARE(box.waiting(), 0);
        QCOMPARE(CommandScene::run({ "delete", QString::number(mResults.at(0)) }), int(ExitSuccess));
        QCOMPARE(mMail->removalRecords(), QStringList());
        QCOMPARE(box.waiting(), 0);
    }
};

FENNEL_REGISTER_TEST(SearchCommandTest)
#include "searchcommandtest.moc"
