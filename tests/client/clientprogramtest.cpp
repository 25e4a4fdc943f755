// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/commandtable.h"
#include "client/exitstatus.h"
#include "client/mailscene.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/syncscheduler.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QJsonArray>
#include <QJsonObject>
#include <qmailaccount.h>

#include <csignal>

/** The program as users and scripts meet it: its documents, its exit statuses, interrupts and terminals. */
class ClientProgramTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    QString mMessage;
    QString mEvent;
    QString mContact;

    QString account() const { return QString::number(mScene->accountId()); }
    /** The words of a line, "@message" and such replaced by what is there. */
    QStringList words(QString line) const
    {
        line.replace(QStringLiteral("@message"), mMessage)
            .replace(QStringLiteral("@event"), mEvent)
            .replace(QStringLiteral("@contact"), mContact)
            .replace(QStringLiteral("@account"), account())
            .replace(QStringLiteral("@folder"), mScene->path(QString()));
        return line.split(QLatin1Char('|'));
    }
    /** Waits until the daemon has been called. */
    bool waitForCall(const QString &call) const
    {
        return Waiting::until([&] { return mDaemon->calls().contains(call); }, 60000);
    }
    /** A request that is under way, on a terminal of its own. */
    bool startSync(ClientProcess &client)
    {
        mDaemon->setStatus(StubDaemon::Open);
        client.start({ "sync" });
        return waitForCall(QStringLiteral("sync ") + account());
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
        QTRY_VERIFY(QMailAccount(QMailAccountId(mScene->accountId())).id().isValid());
        const MailScene mail(mScene->accountId());
        mMessage = QString::number(
            mail.addMessage(mail.addFolder(QStringLiteral("Inbox")), QStringLiteral("First")).toULongLong());
        QVERIFY(mScene->addCalendar(QStringLiteral("Calendar")));
        QVERIFY(mScene->addContactFolder(QStringLiteral("Contacts")));
        QCOMPARE(CommandScene::run("event|add|Talk|--start|2024-05-02 10:00"), int(ExitSuccess));
        mEvent = mScene->event(QStringLiteral("Talk"));
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "contact", "add", "--name", "Anna" }), int(ExitSuccess));
        mContact = client.json().object().value(QStringLiteral("id")).toString();
        QVERIFY(!mContact.isEmpty());
    }
    void cleanup()
    {
        mDaemon.reset();
        mScene.reset();
    }

    void everyCommandPrintsOneDocument()
    {
        const SyncScheduler scheduler;
        ClientProcess client;
        // In an order in which each finds what it works on.
        for (const char *line :
            { "help", "help|mail", "--version", "account|list", "account|show", "account|disable",
                "account|enable", "account|edit|--name|Other", "sync", "sync|--service|mail",
                "sync|--folders-only", "sync|--folder|Inbox", "sync|--folder|Calendar|--kind|calendar",
                "folders", "folders|--kind|calendar", "folders|--kind|contacts", "folder|create|New",
                "folder|rename|Inbox|Old", "folder|delete|Inbox", "mail|list", "mail|show|@message",
                "mail|get|@message", "mail|export|@message", "mail|export|@message|@folder/x.eml",
                "mail|send|--to|a@example.com|--text|x", "mail|reply|@message|--text|x",
                "mail|forward|@message|--to|a@example.com|--text|x", "mail|outbox",
                "attachment|save|@message|2|-", "attachment|save|@message|2|@folder", "mark|read|@message",
                "mark|unread|@message", "move|@message|Inbox", "delete|@message", "event|list",
                "event|month|2024-05", "event|show|@event", "event|add|X|--start|2024-05-03",
                "event|edit|@event|--location|Here", "event|export", "event|export|@folder/x.ics",
                "event|delete|@event", "contact|list", "contact|show|@contact", "contact|add|--name|Bob",
                "contact|edit|@contact|--note|x", "contact|export", "contact|export|@folder/x.vcf",
                "contact|delete|@contact", "push|on", "push|status", "push|off|@account", "policy|show",
                "log|info", "quit", "mail|list|--help" }) {
            const int exit = client.run(QStringList { "--json" } + words(QString::fromLatin1(line)));
            QVERIFY2(exit == ExitSuccess, QByteArray(line) + ": " + client.errors());
            QVERIFY2(!client.json().isNull(), QByteArray(line) + ": " + client.output());
            QVERIFY2(!client.json().object().contains(QStringLiteral("error")), line);
        }
    }

    void everyCommandTellsHowItIsCalled()
    {
        ClientProcess client;
        for (const Command &command : CommandTable::commands()) {
            const QStringList words = QString::fromLatin1(command.name).split(QLatin1Char(' '));
            const int exit = client.run(words + QStringList(QStringLiteral("--help")));
            QVERIFY2(exit == ExitSuccess, command.name);
            QVERIFY2(client.errors().isEmpty(), command.name + QByteArray(": ") + client.errors());
            QVERIFY2(client.output().startsWith(QByteArray("usage: fennel-easctl ") + command.name),
                client.output());
        }
        QVERIFY(mDaemon->calls().isEmpty());
    }

    void anErrorStandsInTheDocument()
    {
        const QList<QPair<const char *, int>> lines { { "snyc", ExitUsage }, { "mail", ExitUsage },
            { "--nonsense|sync", ExitUsage }, { "sync|extra", ExitUsage },
            { "mail|list|--limit|abc", ExitUsage }, { "mail|send", ExitUsage },
            { "mail|send|--to|nobody|--text|x", ExitUsage }, { "mail|reply|99999", ExitNotFound },
            { "mail|outbox|99999", ExitNotFound }, { "sync|--service|mail|--folders-only", ExitUsage },
            { "account|add|alice|--password-fd|0", ExitUsage },
            { "account|add|a@example.com|--protocol-version|2.5", ExitUsage },
            { "account|add|a@example.com|--past-time|9", ExitUsage },
            { "account|add|a@example.com|--past-time|abc", ExitUsage },
            { "account|add|a@example.com|--password-fd|abc", ExitUsage },
            { "account|add|a@example.com|--password-fd|0|--password-command|true", ExitUsage },
            { "account|add|a@example.com|--server|ftp://x", ExitUsage }, { "mail|show|99999", ExitNotFound },
            { "--account|nobody|sync", ExitNotFound }, { "event|show|deadbeef", ExitNotFound },
            { "contact|show|99999", ExitNotFound }, { "folder|delete|Nowhere", ExitNotFound } };
        ClientProcess client;
        for (const auto &line : lines) {
            const int exit = client.run(QStringList { "--json" } + words(QString::fromLatin1(line.first)));
            QVERIFY2(exit == line.second, QByteArray(line.first) + ": " + client.errors());
            const QJsonObject document = client.json().object();
            QVERIFY2(document.value(QStringLiteral("exitStatus")).toInt() == exit, line.first);
            QVERIFY2(!document.value(QStringLiteral("error")).toString().isEmpty(), line.first);
            QVERIFY2(!client.errors().isEmpty(), line.first);
        }
    }

    void withoutABusTheAccountStoreIsUnavailable()
    {
        ClientProcess client;
        client.setVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
        for (const char *line : { "account|list", "account|show", "mail|list", "event|list", "contact|list",
                 "sync", "push|on", "push|status", "watch" })
            QVERIFY2(client.run(words(QString::fromLatin1(line))) == ExitUnavailable, line);
    }

    void aFailedRequestTellsItsStatus()
    {
        mDaemon->setStatus(-6);
        ClientProcess client;
        for (const char *line :
            { "sync", "mail|get|@message", "folder|create|New", "attachment|save|@message|3" }) {
            QCOMPARE(
                client.run(QStringList { "--json" } + words(QString::fromLatin1(line))), int(ExitFailure));
            const QJsonObject document = client.json().object();
            const QJsonObject request = document.contains(QStringLiteral("accounts"))
                ? document.value(QStringLiteral("accounts")).toArray().first().toObject()
                : document;
            QCOMPARE(request.value(QStringLiteral("status")).toInt(), -6);
            QCOMPARE(document.value(QStringLiteral("exitStatus")).toInt(), int(ExitFailure));
        }
    }

    void globalOptionsMayStandBehindTheCommand()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "account", "show", "--json", "--account=" + account() }), int(ExitSuccess));
        QCOMPARE(client.json().object().value(QStringLiteral("id")).toString(), account());
        // A value that looks like an option is one.
        QCOMPARE(client.run({ "contact", "edit", mContact, "--note", "--json" }), int(ExitSuccess));
        QVERIFY2(client.output().startsWith("contact "), client.output());
    }

    void aTypoIsNamed()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "snyc" }), int(ExitUsage));
        QCOMPARE(client.errors(),
            QByteArray("fennel-easctl: there is no command \"snyc\"; did you mean \"sync\"?\n"));
        QCOMPARE(client.run({ "foo" }), int(ExitUsage));
        QVERIFY2(client.errors().contains("\"foo\"; see"), client.errors());
        QCOMPARE(client.run({ "mail", "burn" }), int(ExitUsage));
        QVERIFY2(
            client.errors().contains("mail burn") && client.errors().contains("list, show"), client.errors());
    }

    void aCommandHasHelpOfItsOwn()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mail", "show", "--help" }), int(ExitSuccess));
        QCOMPARE(client.output(), QByteArray("usage: fennel-easctl mail show MESSAGE\n"));
        QCOMPARE(client.run({ "help", "mark" }), int(ExitSuccess));
        QCOMPARE(client.output().count('\n'), 4);
    }

    void aShellIsOfferedTheAccounts()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "--complete", "push", "on", "" }), int(ExitSuccess));
        QCOMPARE(client.output(), account().toUtf8() + "\nalice\n");
        client.setVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
        QCOMPARE(client.run({ "--complete", "push", "on", "" }), int(ExitSuccess));
        QCOMPARE(client.output(), QByteArray());
    }

    void aFullDeviceIsAnError()
    {
        ClientProcess client;
        client.setOutputFile(QStringLiteral("/dev/full"));
        for (const char *line : { "mail|list", "--json|mail|list", "contact|export", "event|export",
                 "mail|export|@message", "attachment|save|@message|2|-", "help" }) {
            QVERIFY2(client.run(words(QString::fromLatin1(line))) == ExitFailure, line);
            QVERIFY2(client.errors().contains("cannot write to standard output"), client.errors());
        }
    }

    void aDisabledAccountIsSaidSo()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "account", "disable" }), int(ExitSuccess));
        QCOMPARE(client.run({ "sync" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("is disabled"), client.errors());
        QVERIFY(mDaemon->calls().isEmpty());
    }

    void allAccountsAreSynchronised()
    {
        AccountFactory others;
        const EasAccountId second = others.create();
        const EasAccountId off = others.create();
        QVERIFY(second != 0 && others.setEnabled(off, false));
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "sync" }), int(ExitSuccess));
        QStringList calls = mDaemon->calls();
        calls.sort();
        QStringList expected { QStringLiteral("sync ") + account(), QStringLiteral("sync %1").arg(second) };
        expected.sort();
        QCOMPARE(calls, expected);
        QCOMPARE(client.json().object().value(QStringLiteral("accounts")).toArray().size(), 2);
        QCOMPARE(client.run({ "mail", "list" }), int(ExitUsage));
        QVERIFY2(client.errors().contains("several accounts"), client.errors());
    }

    void theStatusTellsOfAccountsAndStartsNothing()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "mark", "read", mMessage }), int(ExitSuccess));
        QCOMPARE(client.run({ "--json", "status" }), int(ExitSuccess));
        QJsonObject status = client.json().object();
        QVERIFY(status.value(QStringLiteral("daemonRuns")).toBool());
        const QJsonObject only = status.value(QStringLiteral("accounts")).toArray().first().toObject();
        QCOMPARE(only.value(QStringLiteral("state")).toString(), QStringLiteral("ready"));
        QCOMPARE(only.value(QStringLiteral("mail")).toInt(), 1);
        QCOMPARE(only.value(QStringLiteral("unread")).toInt(), 0);
        QCOMPARE(only.value(QStringLiteral("mailWaiting")).toInt(), 1);
        mDaemon.reset();
        QCOMPARE(client.run({ "account", "disable" }), int(ExitSuccess));
        QCOMPARE(client.run({ "--json", "status" }), int(ExitSuccess));
        status = client.json().object();
        QVERIFY(!status.value(QStringLiteral("daemonRuns")).toBool());
        QCOMPARE(status.value(QStringLiteral("accounts"))
                     .toArray()
                     .first()
                     .toObject()
                     .value(QStringLiteral("state"))
                     .toString(),
            QStringLiteral("disabled"));
    }

    void whatASyncBringsIsCounted()
    {
        mDaemon->setStatus(StubDaemon::Open);
        ClientProcess client;
        client.start({ "sync" });
        QVERIFY(waitForCall(QStringLiteral("sync ") + account()));
        const MailScene mail(mScene->accountId());
        const QMailFolderId folder = mail.addFolder(QStringLiteral("More"));
        mail.addMessage(folder, QStringLiteral("Second"));
        mail.addMessage(folder, QStringLiteral("Third"));
        mDaemon->end(mScene->accountId(), 1, 0);
        QCOMPARE(client.waitForEnd(), int(ExitSuccess));
        QVERIFY2(client.output().contains("mail 2 new"), client.output());
    }

    void anInterruptCancelsTheRequest_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("Ctrl-C on a terminal") << 0;
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("termination") << SIGTERM;
    }

    void anInterruptCancelsTheRequest()
    {
        QFETCH(int, signal);
        ClientProcess client(signal == 0 ? ClientProcess::OnTerminal : ClientProcess::WithoutTerminal);
        QVERIFY(startSync(client));
        if (signal == 0)
            client.type("\003");
        else
            client.signal(signal);
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
        QVERIFY(mDaemon->calls().contains(QStringLiteral("cancelRequest %1 1").arg(account())));
        QVERIFY(!(client.output() + client.errors()).contains("password"));
    }

    void aSecondInterruptEndsTheClient()
    {
        ClientProcess client(ClientProcess::OnTerminal);
        mDaemon->setStatus(StubDaemon::Silent);
        client.start({ "sync" });
        QVERIFY(waitForCall(QStringLiteral("sync ") + account()));
        client.type("\003");
        QVERIFY2(client.waitForOutput("interrupt again"), client.output());
        client.type("\003");
        QCOMPARE(client.waitForEnd(), -1);
        QVERIFY(client.echoes());
    }

    void anInterruptAtThePromptLeavesTheTerminalAsItWas()
    {
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "password" });
        QVERIFY2(client.waitForOutput("Password for"), client.output());
        QVERIFY(Waiting::until([&] { return !client.echoes(); }, 60000));
        client.type("secr\003");
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
        QVERIFY(client.echoes());
        QVERIFY2(!client.output().contains("secr"), client.output());
    }

    void aPasswordFromATerminalIsNotShown()
    {
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "password", "--password-fd", "0" });
        QVERIFY(Waiting::until([&] { return !client.echoes(); }, 60000));
        client.type("an0ther\n");
        QCOMPARE(client.waitForEnd(), int(ExitSuccess));
        QVERIFY(client.echoes());
        QVERIFY2(!client.output().contains("an0ther"), client.output());
    }

    void aPasswordComesFromACommand()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "password", "--password-command", "echo an0ther" }), int(ExitSuccess));
        QVERIFY2(!(client.output() + client.errors()).contains("an0ther"), client.errors());
        QCOMPARE(client.run({ "password", "--password-command", "exit 7" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("status 7"), client.errors());
    }

    void aSyncThatFailedDoesNotSayThatNothingIsNew()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "sync" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("is in step") && client.output().contains(": nothing new here"),
            client.output());
        mDaemon->setStatus(-2);
        QVERIFY(client.run({ "sync" }) != int(ExitSuccess));
        QVERIFY2(client.output().contains("is not in step"), client.output());
        QVERIFY2(!client.output().contains("nothing new"), client.output());
    }

    void anEmptyPasswordIsRefused()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "password", "--password-fd", "0" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("empty"), client.errors());
    }

    void aBlockedAccountIsNoCancelledRequest()
    {
        mDaemon->setStatus(-4);
        ClientProcess client;
        QCOMPARE(client.run({ "sync" }), int(ExitCancelled));
        QVERIFY2(!client.errors().contains("password"), client.errors());
        AccountFactory records;
        QVERIFY(records.setValue(mScene->accountId(), AccountFactory::mailService(),
            QStringLiteral("CredentialsNeedUpdate"), true));
        QCOMPARE(client.run({ "sync" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("fennel-easctl password"), client.errors());
    }

    void aDaemonThatDoesNotRunIsNotStartedToEnd()
    {
        mDaemon.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "quit" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("does not run"), client.output());
    }

    void aDaemonThatDiesEndsTheClient()
    {
        ClientProcess client;
        QVERIFY(startSync(client));
        mDaemon.reset();
        QCOMPARE(client.waitForEnd(), int(ExitUnavailable));
    }

    void aRequestIsCancelledByItsNumber()
    {
        ClientProcess client;
        QVERIFY(startSync(client));
        ClientProcess other;
        QCOMPARE(other.run({ "--json", "cancel", "1" }), int(ExitSuccess));
        QCOMPARE(other.json().object().value(QStringLiteral("request")).toString(), QStringLiteral("1"));
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
    }

    void aTableFitsTheTerminal()
    {
        const MailScene mail(mScene->accountId());
        mail.addMessage(mail.addFolder(QStringLiteral("Wide")), QString(200, QChar(0x5B57)));
        ClientProcess client(ClientProcess::OnTerminal);
        QCOMPARE(client.run({ "mail", "list", "Wide" }), int(ExitSuccess));
        const QStringList lines = QString::fromUtf8(client.output()).split(QStringLiteral("\r\n"));
        QVERIFY(lines.size() > 1);
        QVERIFY2(lines.at(1).contains(QChar(0x2026)), client.output());
    }

    void anAccountIsAddedOnceAndRemoved()
    {
        ClientProcess client;
        const QString file = mScene->path(QStringLiteral("password"));
        QFile password(file);
        QVERIFY(password.open(QIODevice::WriteOnly) && password.write("s3cret\n") == 7);
        password.close();
        const QStringList add { "--json", "account", "add", "new@example.com", "--password-fd", "0",
            "--protocol-version", "14.1" };
        client.setInputFile(file);
        QCOMPARE(client.run(add), int(ExitSuccess));
        const QString id = client.json().object().value(QStringLiteral("id")).toString();
        QCOMPARE(client.json().object().value(QStringLiteral("protocolVersion")).toString(),
            QStringLiteral("14.1"));
        QCOMPARE(client.run(add), int(ExitFailure));
        QVERIFY2(client.errors().contains("already"), client.errors());
        // An account goes by what stands before the @ as well.
        QCOMPARE(client.run({ "--json", "account", "show", "new" }), int(ExitSuccess));
        QCOMPARE(client.json().object().value(QStringLiteral("id")).toString(), id);
        QCOMPARE(client.run({ "account", "edit", "new", "--server", "http://mail.example.net:81", "--without",
                     "calendar" }),
            int(ExitSuccess));
        QCOMPARE(client.run({ "--json", "account", "show", id }), int(ExitSuccess));
        const QJsonObject changed = client.json().object();
        QCOMPARE(changed.value(QStringLiteral("server")).toString(), QStringLiteral("mail.example.net"));
        QCOMPARE(changed.value(QStringLiteral("port")).toInt(), 81);
        QCOMPARE(changed.value(QStringLiteral("services")).toArray(),
            QJsonArray({ QStringLiteral("mail"), QStringLiteral("contacts") }));
        QCOMPARE(changed.value(QStringLiteral("protocolVersion")).toString(), QStringLiteral("14.1"));
        QCOMPARE(client.run({ "account", "remove", id }), int(ExitSuccess));
        QCOMPARE(client.run({ "account", "show", id }), int(ExitNotFound));
    }
};

FENNEL_REGISTER_TEST(ClientProgramTest)
#include "clientprogramtest.moc"
