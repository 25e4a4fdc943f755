// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/exitstatus.h"
#include "simulator/email.h"
#include "simulator/exchangeserver.h"
#include "support/bearer.h"
#include "support/clientprocess.h"
#include "support/daemonprocess.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

using Simulator::Override;

/**
 * Mail that two users of one server write to each other on the command line. Every step is a process of its
 * own, so that what one stores another one reads back.
 */
class MailWritingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void aMessageArrivesWithItsFile();
    void aReplyIsQuotedByTheServer();
    void aReplyToAllReachesAll();
    void aForwardTakesTheFilesAlong_data();
    void aForwardTakesTheFilesAlong();
    void aMessageThatIsTooLargeIsKeptAsADraft();
    void whatWaitsIsSentAfterAFailure();
    void aLostAnswerSendsNothingTwice_data();
    void aLostAnswerSendsNothingTwice();

private:
    bool addAccount(const QString &user);
    /** Runs a command of one of the users; true if it succeeds. */
    bool run(const QString &user, const QStringList &arguments, const QByteArray &input = {});
    QJsonObject answer() const { return mClient.json().object(); }
    QString write(const QString &name, const QByteArray &octets) const;
    /** The number of the message of a subject on the device, after a sync; empty without one. */
    QString received(const QString &user, const QString &subject);
    QString textOf(const QString &user, const QString &message);
    QStringList outbox(const QString &user);
    /** The messages of a subject in a folder of the server. */
    QVector<std::shared_ptr<const Simulator::Email>> onServer(
        const QString &user, Simulator::FolderType folder, const QString &subject);
    bool savedIs(const QString &user, const QString &message, const QString &name, const QByteArray &octets);

    std::unique_ptr<Simulator::ExchangeServer> mServer;
    ClientProcess mClient;
    std::unique_ptr<DaemonProcess> mDaemon;
    std::unique_ptr<QTemporaryDir> mFolder;
    const QString mAlice = QStringLiteral("alice@example.com");
    const QString mBob = QStringLiteral("bob@example.com");
};

// A check that failed prints what the last command said.
#define VERIFY_DONE(step) QVERIFY2(step, mClient.output() + mClient.errors() + mDaemon->log().right(4000))

void MailWritingTest::initTestCase()
{
    QVERIFY(PrivateBus::ensure());
    QVERIFY(Bearer::connectNetwork());
}

void MailWritingTest::init()
{
    mFolder = std::make_unique<QTemporaryDir>();
    mServer = std::make_unique<Simulator::ExchangeServer>();
    for (const char *user : { "alice", "bob" })
        mServer->addUser(QString::fromLatin1(user), QStringLiteral("s3cret"));
    QVERIFY(mServer->start());
    mDaemon = std::make_unique<DaemonProcess>();
    VERIFY_DONE(addAccount(mAlice) && addAccount(mBob));
    QVERIFY(mDaemon->start());
    VERIFY_DONE(mClient.run({ QStringLiteral("sync") }) == ExitSuccess);
}

void MailWritingTest::cleanup()
{
    mClient.run({ QStringLiteral("quit") });
    mDaemon.reset();
    for (const QString &user : { mAlice, mBob })
        QCOMPARE(
            mClient.run({ QStringLiteral("account"), QStringLiteral("remove"), user }), int(ExitSuccess));
    mServer.reset();
}

bool MailWritingTest::addAccount(const QString &user)
{
    return mClient.run({ QStringLiteral("account"), QStringLiteral("add"), user, QStringLiteral("--server"),
                           QStringLiteral("http://127.0.0.1:%1").arg(mServer->port()),
                           QStringLiteral("--user"), user.section(QLatin1Char('@'), 0, 0),
                           QStringLiteral("--password-fd"), QStringLiteral("0") },
               "s3cret\n")
        == ExitSuccess;
}

bool MailWritingTest::run(const QString &user, const QStringList &arguments, const QByteArray &input)
{
    return mClient.run(
               QStringList { QStringLiteral("--json"), QStringLiteral("--account"), user } + arguments, input)
        == ExitSuccess;
}

QString MailWritingTest::write(const QString &name, const QByteArray &octets) const
{
    QFile file(mFolder->filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(octets) == octets.size() ? file.fileName()
                                                                                  : QString();
}

QString MailWritingTest::received(const QString &user, const QString &subject)
{
    if (!run(user, { "sync" }) || !run(user, { "mail", "list", "Inbox", "--subject", subject }))
        return {};
    const QJsonArray rows = mClient.json().array();
    return rows.size() == 1 ? rows.at(0).toObject().value(QStringLiteral("id")).toString() : QString();
}

QString MailWritingTest::textOf(const QString &user, const QString &message)
{
    if (!run(user, { "mail", "get", message }) || !run(user, { "mail", "show", message }))
        return {};
    return answer().value(QStringLiteral("text")).toString();
}

QStringList MailWritingTest::outbox(const QString &user)
{
    QStringList numbers;
    if (!run(user, { "mail", "outbox" }))
        return { QStringLiteral("failed") };
    const QJsonArray rows = mClient.json().array();
    for (const QJsonValue &row : rows)
        numbers.append(row.toObject().value(QStringLiteral("id")).toString());
    return numbers;
}

QVector<std::shared_ptr<const Simulator::Email>> MailWritingTest::onServer(
    const QString &user, Simulator::FolderType folder, const QString &subject)
{
    Simulator::Mailbox &mailbox = mServer->mailbox(user.section(QLatin1Char('@'), 0, 0));
    QVector<std::shared_ptr<const Simulator::Email>> found;
    const QVector<Simulator::ItemEntry> entries = mailbox.items(mailbox.folderOfType(folder).id);
    for (const Simulator::ItemEntry &entry : entries) {
        const auto email = std::dynamic_pointer_cast<const Simulator::Email>(entry.item);
        if (email && email->content().headers().subject == subject)
            found.append(email);
    }
    return found;
}

bool MailWritingTest::savedIs(
    const QString &user, const QString &message, const QString &name, const QByteArray &octets)
{
    if (!run(user, { "attachment", "save", message, "--all", mFolder->path(), "--force" }))
        return false;
    QFile file(mFolder->filePath(name));
    return file.open(QIODevice::ReadOnly) && file.readAll() == octets;
}

void MailWritingTest::aMessageArrivesWithItsFile()
{
    QByteArray octets;
    for (int i = 0; i < 300000; ++i)
        octets.append(char(i * 7 + i / 256));
    const auto name = QStringLiteral("Übersicht für Bob.bin");
    VERIFY_DONE(run(mAlice,
        { "mail", "send", "--to", "Bob Börner <bob@example.com>", "--subject", "Grüße \U0001F600", "--attach",
            write(name, octets) },
        "Schöne Grüße\n"));
    QCOMPARE(answer().value(QStringLiteral("sent")).toArray().size(), 1);
    QCOMPARE(outbox(mAlice), QStringList());
    QCOMPARE(onServer(mAlice, Simulator::SentItemsFolder, QStringLiteral("Grüße \U0001F600")).size(), 1);
    const QString id = received(mBob, QStringLiteral("Grüße"));
    VERIFY_DONE(!id.isEmpty());
    QCOMPARE(textOf(mBob, id).trimmed(), QStringLiteral("Schöne Grüße"));
    QVERIFY(QFile::remove(mFolder->filePath(name)));
    VERIFY_DONE(savedIs(mBob, id, name, octets));
}

void MailWritingTest::aReplyIsQuotedByTheServer()
{
    VERIFY_DONE(run(mAlice, { "mail", "send", "--to", mBob, "--subject", "Lunch", "--text", "At noon?" }));
    const QString id = received(mBob, QStringLiteral("Lunch"));
    VERIFY_DONE(run(mBob, { "mail", "reply", id, "--text", "Fine with me" }));
    QCOMPARE(mServer->requests(QStringLiteral("SmartReply")).size(), 1);
    const QString text = textOf(mAlice, received(mAlice, QStringLiteral("Re: Lunch")));
    QVERIFY2(text.indexOf(QLatin1String("Fine with me")) >= 0, qPrintable(text));
    QVERIFY2(text.indexOf(QLatin1String("At noon?")) > text.indexOf(QLatin1String("Fine with me")),
        qPrintable(text));
    QCOMPARE(outbox(mBob), QStringList());
}

void MailWritingTest::aReplyToAllReachesAll()
{
    VERIFY_DONE(run(mAlice,
        { "mail", "send", "--to", "bob@example.com, carol@example.com", "--cc", mAlice, "--subject", "All",
            "--text", "x" }));
    const QString id = received(mBob, QStringLiteral("All"));
    VERIFY_DONE(run(mBob, { "mail", "reply", id, "--reply-all", "--whole", "--text", "y" }));
    const auto replies = onServer(mAlice, Simulator::InboxFolder, QStringLiteral("Re: All"));
    QCOMPARE(replies.size(), 1);
    const QByteArray message = replies.first()->content().message();
    QVERIFY2(message.contains("carol@example.com") && message.contains("> x"), message);
    QCOMPARE(onServer(mBob, Simulator::InboxFolder, QStringLiteral("Re: All")).size(), 0);
}

void MailWritingTest::aForwardTakesTheFilesAlong_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("command");
    QTest::newRow("by the server") << QStringList() << QStringLiteral("SmartForward");
    QTest::newRow("from the device") << QStringList(QStringLiteral("--whole")) << QStringLiteral("SendMail");
}

void MailWritingTest::aForwardTakesTheFilesAlong()
{
    QFETCH(QStringList, options);
    QFETCH(QString, command);
    const QByteArray octets("one\ntwo\r\nthree \xc3\xa4\n");
    VERIFY_DONE(run(mAlice,
        { "mail", "send", "--to", mBob, "--subject", "Plans", "--text", "See the file", "--attach",
            write(QStringLiteral("plan.txt"), octets) }));
    const QString id = received(mBob, QStringLiteral("Plans"));
    VERIFY_DONE(run(mBob, QStringList { "mail", "forward", id, "--to", mAlice, "--text", "fyi" } + options));
    QCOMPARE(mServer->requests(command).last().user, QStringLiteral("bob"));
    const QString forwarded = received(mAlice, QStringLiteral("Fwd: Plans"));
    VERIFY_DONE(!forwarded.isEmpty());
    QVERIFY(QFile::remove(mFolder->filePath(QStringLiteral("plan.txt"))));
    VERIFY_DONE(savedIs(mAlice, forwarded, QStringLiteral("plan.txt"), octets));
    const QString text = textOf(mAlice, forwarded);
    QVERIFY2(text.contains(QLatin1String("fyi")) && text.contains(QLatin1String("See the file")),
        qPrintable(text));
}

void MailWritingTest::aMessageThatIsTooLargeIsKeptAsADraft()
{
    mServer->setLargestMessage(1000);
    QVERIFY(!run(mAlice,
        { "mail", "send", "--to", mBob, "--subject", "Large", "--text", QString(5000, QLatin1Char('x')) }));
    QCOMPARE(answer().value(QStringLiteral("status")).toInt(), 115);
    const QJsonArray drafts = answer().value(QStringLiteral("drafts")).toArray();
    QCOMPARE(drafts.size(), 1);
    QCOMPARE(outbox(mAlice), QStringList());
    VERIFY_DONE(run(mAlice, { "mail", "list", "Drafts" }));
    QCOMPARE(mClient.json().array().size(), 1);
    mServer->setLargestMessage(0);
    VERIFY_DONE(run(mAlice, { "mail", "send", drafts.first().toString() }));
    QCOMPARE(onServer(mBob, Simulator::InboxFolder, QStringLiteral("Large")).size(), 1);
    VERIFY_DONE(run(mAlice, { "mail", "list", "Drafts" }));
    QCOMPARE(mClient.json().array().size(), 0);
}

void MailWritingTest::whatWaitsIsSentAfterAFailure()
{
    mServer->overrideNext(QStringLiteral("SendMail"),
        Override::xml(QStringLiteral("<SendMail xmlns=\"ComposeMail\"><Status>120</Status></SendMail>")));
    QVERIFY(!run(mAlice, { "mail", "send", "--to", mBob, "--subject", "Once", "--text", "x" }));
    const QStringList waiting = outbox(mAlice);
    QCOMPARE(waiting.size(), 1);
    QVERIFY(onServer(mBob, Simulator::InboxFolder, QStringLiteral("Once")).isEmpty());
    // A sync neither sends it nor takes it away.
    VERIFY_DONE(run(mAlice, { "sync" }));
    QCOMPARE(outbox(mAlice), waiting);
    VERIFY_DONE(run(mAlice, { "mail", "outbox", "--retry" }));
    QCOMPARE(outbox(mAlice), QStringList());
    QCOMPARE(onServer(mBob, Simulator::InboxFolder, QStringLiteral("Once")).size(), 1);
}

void MailWritingTest::aLostAnswerSendsNothingTwice_data()
{
    QTest::addColumn<QStringList>("again");
    QTest::newRow("from the Outbox") << QStringList { "mail", "outbox", "--retry" };
    QTest::newRow("by its number") << QStringList { "mail", "send", "@" };
}

void MailWritingTest::aLostAnswerSendsNothingTwice()
{
    QFETCH(QStringList, again);
    // The server carries the command out, and the line drops before its answer.
    mServer->overrideNext(QStringLiteral("SendMail"), Override::drop());
    QVERIFY(!run(mAlice, { "mail", "send", "--to", mBob, "--subject", "Once", "--text", "x" }));
    QVERIFY2(mClient.errors().contains("look into Sent Items"), mClient.errors());
    const QStringList waiting = outbox(mAlice);
    QCOMPARE(waiting.size(), 1);
    again.replaceInStrings(QStringLiteral("@"), waiting.first());
    VERIFY_DONE(run(mAlice, again));
    QCOMPARE(outbox(mAlice), QStringList());
    QCOMPARE(onServer(mBob, Simulator::InboxFolder, QStringLiteral("Once")).size(), 1);
    QCOMPARE(onServer(mAlice, Simulator::SentItemsFolder, QStringLiteral("Once")).size(), 1);
}

FENNEL_REGISTER_TEST(MailWritingTest)
#include "mailwritingtest.moc"
