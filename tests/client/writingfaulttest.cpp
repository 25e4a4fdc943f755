// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/exitstatus.h"
#include "client/writingscene.h"
#include "support/clientprocess.h"
#include "support/faultshim.h"
#include "support/soak.h"
#include "support/testmain.h"

#include <QDir>

/**
 * A command that writes mail dies at any step, or a statement of the mail store fails: no message is lost,
 * none is cut, and each stands where it was or where it was to go.
 */
class WritingFaultTest : public QObject
{
    Q_OBJECT

private:
    enum Work { NewMessage, Draft, DraftOfTheServer, TakenBack };

    static constexpr auto Subject = "Subject";

    std::unique_ptr<WritingScene> mScene;

    static QByteArray octets()
    {
        QByteArray octets;
        for (int i = 0; i < 100000; ++i)
            octets.append(char(i * 13 + i / 256));
        return octets;
    }
    static FaultShim shim()
    {
        FaultShim shim(QDir::homePath(), QStringLiteral("fennel-easctl"));
        shim.setFiles({ QStringLiteral("mailstore.db*") });
        shim.setDatabase(QStringLiteral("mailstore.db"));
        return shim;
    }

    QMailMessageIdList all() const
    {
        return QMailStore::instance()->queryMessages(
            QMailMessageKey::parentAccountId(QMailAccountId(mScene->accountId())));
    }
    void removeAll() const
    {
        QMailStore::instance()->removeMessages(QMailMessageKey::id(all()), QMailStore::NoRemovalRecord);
        QMailStore::instance()->purgeMessageRemovalRecords(QMailAccountId(mScene->accountId()));
    }
    QStringList toNewMessage() const
    {
        QFile file(mScene->path(QStringLiteral("file.bin")));
        if (!file.open(QIODevice::WriteOnly) || file.write(octets()) < 0)
            qFatal("no file");
        return { "mail", "send", "--to", "bob@b.org", "--subject", Subject, "--text", "x", "--attach",
            file.fileName() };
    }
    QMailMessageId writeDraft() const
    {
        ClientProcess client;
        client.run(toNewMessage() + QStringList(QStringLiteral("--draft")));
        return all().value(0);
    }
    /** What is there before the work; the command that does it. */
    QStringList prepare(Work work) const
    {
        removeAll();
        if (work == NewMessage)
            return toNewMessage();
        QMailMessageMetaData message(writeDraft());
        if (work == TakenBack) {
            QStringList send { "mail", "send", WritingScene::text(message.id()) };
            ClientProcess().run(send);
            return { "mail", "outbox", "--to-drafts", WritingScene::text(message.id()) };
        }
        if (work == DraftOfTheServer) {
            message.setServerUid(QStringLiteral("uid"));
            QMailStore::instance()->updateMessage(&message);
        }
        return { "mail", "send", WritingScene::text(message.id()) };
    }

    /** What is wrong with one of the messages; empty if nothing is. */
    QString faultOf(const QMailMessageId &id) const
    {
        const QMailMessage message(id);
        const Outbox::State state = Outbox::state(message);
        // An account that cannot be read names no folders.
        const bool isWithTheDevicesOwn = message.parentFolderId() == QMailFolderId(quint64(1));
        const QMailFolderId expected = state == Outbox::State::Waiting ? mScene->outbox() : mScene->drafts();
        if (state == Outbox::State::Other || (!isWithTheDevicesOwn && message.parentFolderId() != expected))
            return QStringLiteral("a message is not marked as its folder has it");
        if (message.partCount() != 2 || message.partAt(1).body().data(QMailMessageBody::Decoded) != octets())
            return QStringLiteral("a message is not whole");
        return {};
    }
    QString fault(Work work) const
    {
        const QMailMessageIdList messages = all();
        for (const QMailMessageId &id : messages) {
            const QString wrong = faultOf(id);
            if (!wrong.isEmpty())
                return wrong;
        }
        const QMailMessageIdList waiting = mScene->waiting();
        const int drafts = messages.size() - waiting.size();
        switch (work) {
        case NewMessage:
            return drafts == 0 && waiting.size() <= 1 ? QString() : QStringLiteral("too many messages");
        case Draft:
        case TakenBack:
            return messages.size() == 1 ? QString() : QStringLiteral("not one message");
        case DraftOfTheServer:
            break;
        }
        if (waiting.size() > 1 || drafts > 1 || messages.isEmpty())
            return QStringLiteral("not one message");
        const bool isServerTold = mScene->mail().removalRecords() == QStringList(QStringLiteral("uid"));
        return (drafts == 0) == isServerTold ? QString()
                                             : QStringLiteral("the server is told something else");
    }
    /** Runs the command with a fault; what is wrong then. */
    QString run(Work work, const FaultShim &shim) const
    {
        const QStringList command = prepare(work);
        ClientProcess client;
        client.setEnvironment(shim.environment());
        client.run(command);
        return fault(work);
    }

    static void works()
    {
        QTest::addColumn<int>("work");
        QTest::newRow("a new message") << int(NewMessage);
        QTest::newRow("a draft is sent") << int(Draft);
        QTest::newRow("a draft of the server is sent") << int(DraftOfTheServer);
        QTest::newRow("a message is taken back") << int(TakenBack);
    }
    static int strideOf(int count) { return qMax(1, count / Soak::samples(10, count)); }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<WritingScene>();
        QVERIFY(mScene->isReady());
        QTRY_VERIFY(mScene->hasMailAccount());
        QVERIFY(mScene->addFolders());
        mScene->failWith(-9);
    }
    void cleanup() { mScene.reset(); }

    void aDeathAtAnyStepLosesNothing_data() { works(); }
    void aDeathAtAnyStepLosesNothing()
    {
        QFETCH(int, work);
        const FaultShim plain = shim();
        QCOMPARE(run(Work(work), plain), QString());
        const int steps = plain.steps().size();
        QVERIFY2(steps > 5, qPrintable(plain.steps().join(QLatin1Char('\n'))));
        for (int number = 1; number <= steps; number += strideOf(steps)) {
            FaultShim fault = shim();
            fault.killAtStep(number);
            const QString wrong = run(Work(work), fault);
            QVERIFY2(wrong.isEmpty(),
                qPrintable(QStringLiteral("killed before step %1 of %2, %3: ")
                               .arg(number)
                               .arg(steps)
                               .arg(fault.steps().value(number - 1))
                    + wrong));
        }
    }

    void aFailureOfAnyStatementLosesNothing_data() { works(); }
    void aFailureOfAnyStatementLosesNothing()
    {
        QFETCH(int, work);
        const FaultShim plain = shim();
        QCOMPARE(run(Work(work), plain), QString());
        const int statements = plain.statements().size();
        QVERIFY(statements > 10);
        for (int number = 1; number <= statements; number += strideOf(statements)) {
            FaultShim fault = shim();
            fault.failStatement(number, FaultShim::StatementError::Full);
            const QString wrong = run(Work(work), fault);
            QVERIFY2(wrong.isEmpty(),
                qPrintable(QStringLiteral("statement %1 of %2 failed, %3: ")
                               .arg(number)
                               .arg(statements)
                               .arg(fault.statements().value(number - 1))
                    + wrong));
        }
    }
};

FENNEL_REGISTER_TEST(WritingFaultTest)
#include "writingfaulttest.moc"
