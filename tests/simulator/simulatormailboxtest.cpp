// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/controlchannel.h"
#include "simulator/email.h"
#include "simulator/mailboxdirectory.h"
#include "simulator/samplemailbox.h"
#include "simulatorclient.h"
#include "support/buildpaths.h"
#include "support/testmain.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulator;

/** @short Where mailboxes come from: code, directories, the sample, the control channel, the executable. */
class SimulatorMailboxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewMailboxHasTheStandardFolders()
    {
        const Mailbox mailbox;
        QCOMPARE(mailbox.folders().size(), 8);
        for (const int type : { 2, 3, 4, 5, 6, 7, 8, 9 })
            QVERIFY(!mailbox.folderOfType(type).id.isEmpty());
        QCOMPARE(mailbox.folderByPath(QStringLiteral("Inbox")).id, mailbox.inboxId());
        QVERIFY(mailbox.folderByPath(QString()).id.isEmpty());
    }

    void foldersMoveWithWhatIsBelowThemButNotIntoThemselves()
    {
        Mailbox mailbox;
        const QString a = mailbox.addFolder(QStringLiteral("a"));
        const QString b = mailbox.addFolder(QStringLiteral("b"), UserMailFolder, a);
        const QString c = mailbox.addFolder(QStringLiteral("c"));
        QVERIFY(!mailbox.moveFolder(a, b));
        QVERIFY(!mailbox.moveFolder(a, a));
        QVERIFY(mailbox.moveFolder(a, c));
        QCOMPARE(mailbox.folderByPath(QStringLiteral("c/a/b")).id, b);
        const QVector<MailFolder> folders = mailbox.folders();
        QCOMPARE(folders.at(folders.size() - 3).id, c);
        QCOMPARE(folders.last().id, b);
        QVERIFY(mailbox.addFolder(QStringLiteral("x"), UserMailFolder, QStringLiteral("77")).isEmpty());
        QVERIFY(mailbox.removeFolder(c));
        QVERIFY(mailbox.folder(b).id.isEmpty());
        QVERIFY(!mailbox.removeFolder(c));
    }

    void itemsKeepTheirMarksWhenTheyMove()
    {
        Mailbox mailbox;
        const QString id = mailbox.deliver(mailbox.inboxId(), sampleMessage(QStringLiteral("s")));
        QVERIFY(mailbox.setRead(id, true));
        const QString moved = mailbox.move(id, mailbox.folderOfType(DeletedItemsFolder).id);
        QVERIFY(!mailbox.item(id));
        QVERIFY(std::dynamic_pointer_cast<const Email>(mailbox.item(moved))->isRead());
        QVERIFY(mailbox.move(id, mailbox.inboxId()).isEmpty());
        QVERIFY(mailbox.move(moved, QStringLiteral("77")).isEmpty());
        QVERIFY(mailbox.item(moved));
        QVERIFY(!mailbox.setRead(id, false));
        QVERIFY(mailbox.deliver(QStringLiteral("77"), sampleMessage(QStringLiteral("s"))).isEmpty());
    }

    void aDirectoryOfMessagesIsAMailbox()
    {
        QTemporaryDir directory;
        const auto write = [&directory](const QString &path, const QByteArray &bytes) {
            const QString target = directory.filePath(path);
            QDir().mkpath(QFileInfo(target).path());
            QFile file(target);
            return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
        };
        QVERIFY(write(QStringLiteral("one.eml"), sampleMessage(QStringLiteral("one"))));
        QVERIFY(write(QStringLiteral("notes.txt"), "no message"));
        QVERIFY(write(QStringLiteral("Inbox/two.eml"), sampleMessage(QStringLiteral("two"))));
        QVERIFY(write(QStringLiteral("Straße/Nord/three.eml"), sampleMessage(QStringLiteral("three"))));
        Mailbox mailbox;
        QCOMPARE(MailboxDirectory::load(directory.path(), mailbox), 3);
        QCOMPARE(mailbox.itemCount(mailbox.inboxId()), 2);
        QCOMPARE(mailbox.itemCount(mailbox.folderByPath(QStringLiteral("Straße/Nord")).id), 1);
        QCOMPARE(MailboxDirectory::load(directory.filePath(QStringLiteral("missing")), mailbox), -1);
    }

    void theSampleHasWhatRealMailboxesHave()
    {
        Mailbox mailbox;
        const int count = SampleMailbox::fill(mailbox);
        QCOMPARE(count, 12);
        QVERIFY(!mailbox.folderByPath(QStringLiteral("Projekte/Übersicht")).id.isEmpty());
        QVector<ItemAttachment> attachments;
        int meetings = 0;
        int withHtml = 0;
        QStringList subjects;
        const QVector<MailFolder> folders = mailbox.folders();
        for (const MailFolder &folder : folders) {
            if (folder.type == CalendarFolder || folder.type == ContactsFolder)
                continue;
            const QVector<ItemEntry> items = mailbox.items(folder.id);
            for (const ItemEntry &entry : items) {
                const auto email = std::dynamic_pointer_cast<const Email>(entry.item);
                const EmailContent &content = email->content();
                attachments += content.attachments();
                meetings += content.meetingRequest().isEmpty() ? 0 : 1;
                withHtml += content.bodies().html.isEmpty() ? 0 : 1;
                subjects.append(content.headers().subject);
                QVERIFY2(!content.bodies().plain.isEmpty(), qPrintable(content.headers().subject));
                QVERIFY(content.received() > QDateTime::currentDateTimeUtc().addDays(-4));
            }
        }
        QCOMPARE(meetings, 1);
        QVERIFY(withHtml >= 4);
        QVERIFY(subjects.contains(QStringLiteral("会議の資料")));
        QVERIFY(subjects.contains(QStringLiteral("Schöne Grüße – Übersicht für März €")));
        const auto has = [&attachments](const auto &predicate) {
            return std::any_of(attachments.begin(), attachments.end(), predicate);
        };
        QVERIFY(has([](const ItemAttachment &one) { return one.bytes.size() >= 300 * 1024; }));
        QVERIFY(has([](const ItemAttachment &one) { return one.isInline; }));
        QVERIFY(has([](const ItemAttachment &one) { return one.isMessage; }));
        QVERIFY(has(
            [](const ItemAttachment &one) { return one.name == QStringLiteral("Übersicht für März.txt"); }));
    }

    void theControlChannelActsOnTheMailbox()
    {
        ExchangeServer server;
        ControlChannel control(server, nullptr);
        QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("a message.eml")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(sampleMessage(QStringLiteral("Subject")));
        file.close();

        const QString answer = control.run(QStringLiteral("deliver \"%1\"").arg(file.fileName()));
        QVERIFY(answer.startsWith(QLatin1String("ok ")));
        const QString id = answer.mid(3);
        QCOMPARE(control.run(QStringLiteral("read Inbox ") + id), QStringLiteral("ok"));
        QVERIFY(control.run(QStringLiteral("list")).contains(QLatin1String("\tread\t")));
        QVERIFY(control.run(QStringLiteral("list")).endsWith(QLatin1String("ok 1")));
        QCOMPARE(control.run(QStringLiteral("unread Inbox ") + id), QStringLiteral("ok"));
        QVERIFY(
            control.run(QStringLiteral("add-folder \"My Folder\" Inbox")).startsWith(QLatin1String("ok ")));
        QVERIFY(control.run(QStringLiteral("folders")).contains(QLatin1String("\tMy Folder\n")));
        const QString moved = control.run(QStringLiteral("move Inbox %1 \"Inbox/My Folder\"").arg(id));
        QVERIFY(moved.startsWith(QLatin1String("ok ")));
        QCOMPARE(
            control.run(QStringLiteral("rename-folder \"Inbox/My Folder\" Other")), QStringLiteral("ok"));
        QCOMPARE(
            control.run(QStringLiteral("delete Inbox/Other ") + moved.mid(3).section(QLatin1Char(':'), 1)),
            QStringLiteral("ok"));
        QCOMPARE(control.run(QStringLiteral("remove-folder Inbox/Other")), QStringLiteral("ok"));
        QVERIFY(control.run(QStringLiteral("delete Inbox 99")).startsWith(QLatin1String("error")));
        QVERIFY(control.run(QStringLiteral("deliver /missing.eml")).startsWith(QLatin1String("error")));
        QVERIFY(control.run(QStringLiteral("delete")).startsWith(QLatin1String("error usage")));
        QVERIFY(control.run(QStringLiteral("nonsense")).startsWith(QLatin1String("error")));
        QSignalSpy quit(&control, &ControlChannel::quitRequested);
        QCOMPARE(control.run(QStringLiteral("quit")), QStringLiteral("ok"));
        QTRY_COMPARE(quit.size(), 1);
    }

    void theControlChannelActsForAnotherUserToo()
    {
        ExchangeServer server;
        server.addUser(QStringLiteral("alice"), QStringLiteral("secret"));
        Mailbox &bob = server.addUser(QStringLiteral("bob"), QStringLiteral("secret"));
        ControlChannel control(server, nullptr);
        QVERIFY(control.run(QStringLiteral("as bob add-folder Plans")).startsWith(QLatin1String("ok ")));
        QVERIFY(!bob.folderByPath(QStringLiteral("Plans")).id.isEmpty());
        QVERIFY(!control.run(QStringLiteral("folders")).contains(QLatin1String("Plans")));
        QCOMPARE(control.run(QStringLiteral("as bob wipe account")), QStringLiteral("ok"));
        QCOMPARE(server.policies(QStringLiteral("bob")).wipeFor(QStringLiteral("d"), 0x1601), Wipe::Account);
        QCOMPARE(server.policies().wipeFor(QStringLiteral("d"), 0x1601), Wipe::None);
        QVERIFY(
            control.run(QStringLiteral("as nobody list")).startsWith(QLatin1String("error no such user")));
        QVERIFY(control.run(QStringLiteral("as bob")).startsWith(QLatin1String("error usage")));
    }

    void theExecutableSaysWhereItListensAndObeysItsInput()
    {
        const QString program = BuildPaths::binary(QStringLiteral("bin/fennel-exchange-simulator"));
        if (!QFileInfo::exists(program))
            QSKIP("the executable is not built: build the target fennel-exchange-simulator");
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("FENNEL_SIMULATOR_PASSWORD"), QStringLiteral("geheim"));
        process.setProcessEnvironment(environment);
        process.start(
            program, { QStringLiteral("--sample"), QStringLiteral("--versions"), QStringLiteral("14.1") });
        QVERIFY(process.waitForReadyRead());
        const QString first = QString::fromUtf8(process.readLine()).trimmed();
        static const QRegularExpression address(
            QStringLiteral("^listening on (http://127\\.0\\.0\\.1:\\d+/\\S+)$"));
        const QRegularExpressionMatch match = address.match(first);
        QVERIFY2(match.hasMatch(), qPrintable(first));

        QNetworkAccessManager manager;
        QNetworkRequest request { QUrl(match.captured(1)) };
        request.setRawHeader("Authorization", "Basic " + QByteArray("user:geheim").toBase64());
        const PlainReply reply = SimulatorClient::finished(manager.sendCustomRequest(request, "OPTIONS"));
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.header("MS-ASProtocolVersions"), QByteArray("14.1"));

        process.write("list Drafts\nquit\n");
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        const QByteArray output = process.readAllStandardOutput();
        QVERIFY(output.contains("OPTIONS"));
        QVERIFY(output.contains("About the plans\nok 1\nok\n"));
        QVERIFY(!output.contains(QByteArray("user:geheim").toBase64()));
    }
};

FENNEL_REGISTER_TEST(SimulatorMailboxTest)
#include "simulatormailboxtest.moc"
