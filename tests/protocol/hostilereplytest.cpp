// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/baseprotocolcommand.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr EasAccountId Account = 7;

/** Keeps the body that it was given. */
class ReadingCommand : public BaseProtocolCommand
{
public:
    ReadingCommand()
        : BaseProtocolCommand(Account, RequestManager::instance())
    {
    }

    bool hasRead = false;
    QByteArray read;

protected:
    QString commandName() const override { return QStringLiteral("Sync"); }
    bool parseReply(QNetworkReply *, const QByteArray &body) override
    {
        hasRead = true;
        read = body;
        setStatus(1);
        return true;
    }
    void logBody(const QByteArray &) const override {}
};

} // namespace

/** Replies that no server should send, byte by byte: what HTTP itself can be made to do to the engine. */
class HostileReplyTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ScriptedServer> mServer;

    void answerAlways(const QByteArray &raw, const QByteArray &endless = QByteArray())
    {
        // The network layer sends a request again by itself when the line breaks.
        constexpr int Attempts = 4;
        ScriptedAnswer answer;
        answer.raw = raw;
        answer.endless = endless;
        for (int i = 0; i < Attempts; ++i)
            mServer->answer(answer);
    }

    /** Starts, and stops once the server has begun to answer. */
    void stopWhenAsked(ReadingCommand &command)
    {
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        QTRY_COMPARE_WITH_TIMEOUT(mServer->requests().size(), 1, 30000);
        command.stop();
        QCOMPARE(finished.count(), 1);
        QVERIFY(!finished.first().first().toBool());
        QCOMPARE(command.status(), 10005);
    }

private Q_SLOTS:
    void init()
    {
        ScriptedManager *const manager = ScriptedManager::install();
        FakeAccount *const account = manager->addAccount(Account);
        account->negotiated({ QStringLiteral("Sync") });
        mServer = std::make_unique<ScriptedServer>();
        account->connection->port = mServer->port();
    }

    void cleanup()
    {
        mServer.reset();
        ScriptedManager::uninstall();
    }

    void aBrokenHeadIsATransportFailure_data()
    {
        QTest::addColumn<QByteArray>("raw");
        QTest::newRow("another protocol") << QByteArray("SSH-2.0-OpenSSH\r\n\r\n");
        QTest::newRow("no status") << QByteArray("HTTP/1.1 \r\nContent-Length: 0\r\n\r\n");
        QTest::newRow("a status of zero") << QByteArray("HTTP/1.1 000 None\r\nContent-Length: 0\r\n\r\n");
        QTest::newRow("a status beyond all") << QByteArray("HTTP/1.1 999 All\r\nContent-Length: 0\r\n\r\n");
        QTest::newRow("a negative status") << QByteArray("HTTP/1.1 -200 OK\r\nContent-Length: 0\r\n\r\n");
    }

    void aBrokenHeadIsATransportFailure()
    {
        QFETCH(QByteArray, raw);
        answerAlways(raw);
        ReadingCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
        QVERIFY(!finished.first().first().toBool());
        QVERIFY(command.status() > 10000);
        QVERIFY(!command.hasRead);
    }

    // Nothing tells these from a slow server; they are given up when the engine or the user has enough.

    void aReplyThatStaysUnfinishedCanBeStopped_data()
    {
        QTest::addColumn<QByteArray>("raw");
        const QByteArray ok("HTTP/1.1 200 OK\r\n");
        const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
        QTest::newRow("half a status line") << ok.left(5);
        QTest::newRow("half a header") << ok + "Content-Len";
        QTest::newRow("a length below zero") << ok + "Content-Length: -5\r\n\r\nabc";
        QTest::newRow("a length that is too large") << ok + "Content-Length: 9223372036854775807\r\n\r\nabc";
        QTest::newRow("a length beyond all numbers")
            << ok + "Content-Length: 99999999999999999999\r\n\r\nabc";
        QTest::newRow("a chunk below zero") << chunked + "-5\r\nabc\r\n0\r\n\r\n";
        QTest::newRow("a chunk that is too large") << chunked + "7fffffffffffffff\r\nabc";
    }

    void aReplyThatStaysUnfinishedCanBeStopped()
    {
        QFETCH(QByteArray, raw);
        answerAlways(raw);
        ReadingCommand command;
        stopWhenAsked(command);
        // What is left on the line does not disturb the next exchange of the account.
        ScriptedServer other;
        ScriptedAnswer answer;
        answer.body = "reply";
        other.answer(answer);
        RequestManager::instance()->account(Account)->connectionConfiguration()->setPortNumber(other.port());
        ReadingCommand next;
        next.start();
        QTRY_VERIFY_WITH_TIMEOUT(next.hasRead, 30000);
        QCOMPARE(next.read, QByteArray("reply"));
        QVERIFY(!command.hasRead);
    }

    void aReplyWithoutAnEndCanBeStopped_data()
    {
        QTest::addColumn<QByteArray>("raw");
        QTest::addColumn<QByteArray>("endless");
        const QByteArray ok("HTTP/1.1 200 OK\r\n");
        QTest::newRow("a status line") << ok.left(12) << QByteArray(1024, 'x');
        QTest::newRow("headers") << ok << QByteArray("X: y\r\n").repeated(100);
        QTest::newRow("chunks") << ok + "Transfer-Encoding: chunked\r\n\r\n"
                                << QByteArray("4\r\nabcd\r\n").repeated(100);
    }

    void aReplyWithoutAnEndCanBeStopped()
    {
        QFETCH(QByteArray, raw);
        QFETCH(QByteArray, endless);
        answerAlways(raw, endless);
        ReadingCommand command;
        stopWhenAsked(command);
        QVERIFY(!command.hasRead);
    }

    void aSmallReplyThatUnpacksToALargeOneIsGivenUp()
    {
        // A packed megabyte is a thousand bytes.
        const QByteArray packed = qCompress(QByteArray(300 * 1024 * 1024, 'x'), 9).mid(4);
        QVERIFY(packed.size() < 1024 * 1024);
        answerAlways("HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\nContent-Length: "
            + QByteArray::number(packed.size()) + "\r\n\r\n" + packed);
        LogCollector log;
        ReadingCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 60000);
        QVERIFY(!finished.first().first().toBool());
        QCOMPARE(command.status(), -2);
        QVERIFY(!command.hasRead);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Reply is too large") }));
    }

    void aPackedReplyIsReadUnpacked()
    {
        const QByteArray packed = qCompress(QByteArray("reply")).mid(4);
        answerAlways("HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\nContent-Length: "
            + QByteArray::number(packed.size()) + "\r\n\r\n" + packed);
        ReadingCommand command;
        command.start();
        QTRY_VERIFY_WITH_TIMEOUT(command.hasRead, 30000);
        QCOMPARE(command.read, QByteArray("reply"));
    }
};

FENNEL_REGISTER_TEST(HostileReplyTest)
#include "hostilereplytest.moc"
