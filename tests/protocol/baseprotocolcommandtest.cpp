// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/baseprotocolcommand.h"

#include "application/base/deviceinformation.h"
#include "application/networkmanager.h"
#include "protocol/base/protocolutils.h"
#include "protocol/serverlocation.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QLoggingCategory>
#include <QNetworkRequest>
#include <QSignalSpy>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>
#include <QUrlQuery>
#include <QtTest>

#include <functional>

namespace {

constexpr EasAccountId Account = 7;

/** A command that sends and reads what a test says. */
class ProbeCommand : public BaseProtocolCommand
{
public:
    explicit ProbeCommand(EasAccountId accountId = Account)
        : BaseProtocolCommand(accountId, RequestManager::instance())
    {
    }

    using BaseProtocolCommand::begin;
    using BaseProtocolCommand::configureNetworkRequest;
    using BaseProtocolCommand::connectReply;
    using BaseProtocolCommand::end;
    using BaseProtocolCommand::getSslCredentials;
    using BaseProtocolCommand::handleSslErrors;
    using BaseProtocolCommand::post;
    using BaseProtocolCommand::sendCustomRequest;

    QString name = QStringLiteral("Sync");
    QByteArray sent = "body";
    bool encodes = true;
    bool parses = true;
    int serverStatus = 1;
    QByteArray read;
    QByteArray extraHeader;
    QList<QPair<qint64, qint64>> progress;

protected:
    QString commandName() const override { return name; }
    ExchangeTexts texts() const override
    {
        return { "Sending probe command via POST:", "Received probe command reply:",
            "Probe command response is error!" };
    }
    bool encodeBody(EasAccount &, QByteArray *body) override
    {
        *body = sent;
        return encodes;
    }
    bool prepareRequest(QNetworkRequest &request) override
    {
        if (!extraHeader.isEmpty())
            request.setRawHeader(ProtocolUtils::HeaderAsAcceptMultiPart, extraHeader);
        return true;
    }
    bool parseReply(QNetworkReply *, const QByteArray &body) override
    {
        read = body;
        setStatus(serverStatus);
        return parses;
    }
    void logBody(const QByteArray &) const override {}
    void handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal) override
    {
        progress.append({ bytesReceived, bytesTotal });
        BaseProtocolCommand::handleDownloadProgress(bytesReceived, bytesTotal);
    }
    void configureCommandSpecificQueryValues(QUrlQuery &query) override
    {
        if (!extraItem.isEmpty())
            query.addQueryItem(ProtocolUtils::QueryAttachmentName, extraItem);
    }

public:
    QString extraItem;
};

/** Tells when a redirect arrives. */
class MovingConnection : public FakeConnection
{
public:
    explicit MovingConnection(const FakeConnection &before)
        : FakeConnection(before.accountId())
    {
        port = before.port;
    }

    void setServerAddress(const QString &text) override
    {
        FakeConnection::setServerAddress(text);
        whenMoved();
    }

    std::function<void()> whenMoved;
};

/** A reply that is over, but has not said so: it can be aborted no more. */
class DeafReply : public QNetworkReply
{
    Q_OBJECT

public:
    DeafReply() { setFinished(true); }
    void abort() override {}
    void sayThatItIsOver() { Q_EMIT finished(); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
};

class DeafNetwork : public NetworkManager
{
    Q_OBJECT

public:
    using NetworkManager::NetworkManager;

    QNetworkReply *post(EasAccountId, const QNetworkRequest &, const QByteArray &) override
    {
        reply = new DeafReply;
        reply->setParent(this);
        return reply;
    }

    QPointer<DeafReply> reply;
};

ScriptedAnswer redirectTo(const QByteArray &location, int status = 451)
{
    ScriptedAnswer answer;
    answer.status = status;
    answer.headers = { { ProtocolUtils::HeaderXMSLocation, location } };
    return answer;
}

ScriptedAnswer bodyAnswer(const QByteArray &body)
{
    ScriptedAnswer answer;
    answer.body = body;
    return answer;
}

ScriptedAnswer statusAnswer(int status)
{
    ScriptedAnswer answer;
    answer.status = status;
    return answer;
}

} // namespace

/** One exchange: what goes out, what each reply becomes, redirects, stopping. */
class BaseProtocolCommandTest : public QObject
{
    Q_OBJECT

private:
    ScriptedManager *mManager = nullptr;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<ScriptedServer> mServer;

    /** Starts and waits for the end; whether it succeeded. */
    static bool run(ProbeCommand &command)
    {
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        if (finished.isEmpty() && !finished.wait())
            qWarning("the command did not finish");
        return finished.value(0).value(0).toBool();
    }
    ReceivedRequest lastRequest() const { return mServer->requests().last(); }
    QByteArray serverUrl() const { return "http://127.0.0.1:" + QByteArray::number(mServer->port()) + "/"; }

private Q_SLOTS:
    void init()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*.debug=true"));
        mManager = ScriptedManager::install();
        mAccount = mManager->addAccount(Account);
        mAccount->negotiated({ QStringLiteral("Sync") });
        mServer = std::make_unique<ScriptedServer>();
        mAccount->connection->port = mServer->port();
    }

    void cleanup()
    {
        mServer.reset();
        ScriptedManager::uninstall();
        QLoggingCategory::setFilterRules(QString());
    }

    void theUrlHoldsCommandUserAndDeviceInThisOrder()
    {
        mServer->answer(bodyAnswer("reply"));
        mAccount->user = QStringLiteral("a+b&c=d %41");
        ProbeCommand command;
        command.extraItem = QStringLiteral("x");
        QVERIFY(run(command));
        const QByteArray target = lastRequest().target;
        const QUrl url(QString::fromLatin1(target));
        QCOMPARE(url.path(), QStringLiteral("/Microsoft-Server-ActiveSync"));
        QCOMPARE(lastRequest().verb, QByteArray("POST"));
        QStringList names;
        for (const auto &item : QUrlQuery(url.query(QUrl::FullyEncoded)).queryItems())
            names.append(item.first);
        const QStringList wanted { QStringLiteral("Cmd"), QStringLiteral("User"), QStringLiteral("DeviceId"),
            QStringLiteral("DeviceType"), QStringLiteral("AttachmentName") };
        QCOMPARE(names, wanted);
        QVERIFY(target.contains("User=a%2Bb%26c%3Dd%20%2541&"));
        QVERIFY(target.contains("Cmd=Sync&"));
    }

    void theHeadersAreThoseOfTheProtocol()
    {
        mServer->answer(bodyAnswer("reply"));
        mAccount->policy = QStringLiteral("4711");
        mAccount->refreshAuthenticationCache();
        ProbeCommand command;
        command.extraHeader = "T";
        QVERIFY(run(command));
        const ReceivedRequest request = lastRequest();
        QCOMPARE(request.header("Connection"), QByteArray("Keep-Alive"));
        QCOMPARE(request.header("User-Agent"), DeviceInformation::userAgent().toUtf8());
        QCOMPARE(request.header("Content-Type"), QByteArray("application/vnd.ms-sync.wbxml"));
        QCOMPARE(request.header("MS-ASProtocolVersion"), QByteArray("14.1"));
        QCOMPARE(request.header("Host"), QByteArray("127.0.0.1"));
        QCOMPARE(request.header("Authorization"), "Basic " + QByteArray("alice:s3cret").toBase64());
        QCOMPARE(request.header("X-MS-PolicyKey"), QByteArray("4711"));
        QCOMPARE(request.header("MS-ASAcceptMultiPart"), QByteArray("T"));
        QCOMPARE(request.body, QByteArray("body"));
    }

    void anEmptyPolicyKeySendsNoHeaderAndZeroSendsZero()
    {
        mServer->answer(bodyAnswer("reply"));
        mServer->answer(bodyAnswer("reply"));
        ProbeCommand command;
        QVERIFY(run(command));
        QVERIFY(!lastRequest().hasHeader("X-MS-PolicyKey"));
        mAccount->policy = ProtocolUtils::DefaultPolicyKey;
        QVERIFY(run(command));
        QCOMPARE(lastRequest().header("X-MS-PolicyKey"), QByteArray("0"));
    }

    void onceAWipeWasOrderedOnlyProvisionIsSent()
    {
        mServer->answer(bodyAnswer("reply"));
        mAccount->wipeOrdered = true;
        LogCollector log;
        ProbeCommand sync;
        QVERIFY(!run(sync));
        QVERIFY(mServer->requests().isEmpty());
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("A wipe of account"), QStringLiteral("was ordered, not sent:"),
                QStringLiteral("Sync") }));
        ProbeCommand provision;
        provision.name = QStringLiteral("Provision");
        QVERIFY(run(provision));
        QCOMPARE(mServer->requests().size(), 1);
    }

    void withoutACookieThereIsNoAuthorization()
    {
        mServer->answer(bodyAnswer("reply"));
        ProbeCommand command;
        QVERIFY(run(command));
        QVERIFY(!lastRequest().hasHeader("Authorization"));
    }

    void aPolicyKeyWithALineBreakIsNoWayIntoTheHeaders()
    {
        mAccount->policy = QStringLiteral("1\r\nX-Evil: 1");
        ProbeCommand command;
        QVERIFY(!run(command));
        QVERIFY(mServer->requests().isEmpty());
    }

    void aReadReplyEndsWithTheServersStatus()
    {
        mServer->answer(bodyAnswer("reply"));
        ProbeCommand command;
        command.serverStatus = 6;
        LogCollector log;
        QVERIFY(run(command));
        QCOMPARE(command.status(), 6);
        QCOMPARE(command.read, QByteArray("reply"));
        QVERIFY(log.contains(QStringLiteral("Sending probe command via POST:")));
        QVERIFY(log.contains(QStringLiteral("Received probe command reply:")));
        QVERIFY(log.contains(QStringLiteral("=========================")));
        QVERIFY(log.contains(QStringLiteral("-------------------------------------")));
        QVERIFY(log.contains(QStringLiteral("Network error: ")));
        QVERIFY(log.contains(QStringLiteral("Headers: ")));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("Length: "), QStringLiteral("5") }));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("accountId:"), QStringLiteral("7") }));
        QVERIFY(log.contains(QStringLiteral("AS Command URL: ")));
    }

    void aReplyThatCannotBeReadIsAnInternalError()
    {
        mServer->answer(bodyAnswer("reply"));
        ProbeCommand command;
        command.parses = false;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), -2);
    }

    void aBodyThatCannotBeBuiltIsNotSent()
    {
        ProbeCommand command;
        command.encodes = false;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), -2);
        QVERIFY(mServer->requests().isEmpty());
    }

    void anHttpFailureIsTenThousandPlusTheNetworkError_data()
    {
        QTest::addColumn<int>("http");
        QTest::addColumn<int>("status");
        QTest::newRow("401 is a refused password") << 401 << 10204;
        QTest::newRow("403 is denied content") << 403 << 10201;
        QTest::newRow("404 is content that is not there") << 404 << 10203;
        QTest::newRow("449 without a location is unknown content") << 449 << 10299;
        QTest::newRow("451 without a location is unknown content") << 451 << 10299;
        QTest::newRow("500 is an internal server error") << 500 << 10401;
        QTest::newRow("503 is an unavailable service") << 503 << 10403;
    }

    void anHttpFailureIsTenThousandPlusTheNetworkError()
    {
        QFETCH(int, http);
        QFETCH(int, status);
        mServer->answer(statusAnswer(http));
        ProbeCommand command;
        LogCollector log;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), status);
        QVERIFY(log.contains(QStringLiteral("handleError: Network error:")));
        QCOMPARE(mServer->requests().size(), 1);
    }

    void anHttpStatusThatIsNoErrorIsNoAnswerEither_data()
    {
        QTest::addColumn<int>("http");
        for (const int http : { 101, 300, 301, 302, 303, 304, 307, 308 })
            QTest::addRow("%d", http) << http;
    }

    void anHttpStatusThatIsNoErrorIsNoAnswerEither()
    {
        QFETCH(int, http);
        ScriptedAnswer elsewhere = statusAnswer(http);
        elsewhere.headers = { { "Location", serverUrl() } };
        mServer->answer(elsewhere);
        ProbeCommand command;
        LogCollector log;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10299);
        QVERIFY(command.read.isNull());
        QVERIFY(log.contains(QStringLiteral("handleError: Network error:")));
        QCOMPARE(mServer->requests().size(), 1);
    }

    void aDroppedLineIsATransportFailure()
    {
        ScriptedAnswer drop;
        drop.drop = true;
        // The network layer sends a request again by itself when a fresh connection drops.
        mServer->answer(drop);
        mServer->answer(drop);
        mServer->answer(drop);
        mServer->answer(drop);
        ProbeCommand command;
        QVERIFY(!run(command));
        QVERIFY(command.status() > ProtocolUtils::TransportStatusBase);
    }

    void whileTheDeviceIsOfflineACommandEndsWithoutAReply()
    {
        auto *const offline = new SessionlessNetwork(mManager);
        offline->online = false;
        mManager->network = offline;
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        LogCollector log;
        command.start();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Sending failed, there is no reply") }));
        QCOMPARE(mServer->requests().size(), 0);
    }

    void aRedirectToAnotherHostKeepsThePort_data()
    {
        QTest::addColumn<int>("http");
        QTest::newRow("451 with a location") << 451;
        QTest::newRow("449 with a location") << 449;
    }

    void aRedirectToAnotherHostKeepsThePort()
    {
        QFETCH(int, http);
        mServer->answer(redirectTo("http://127.0.0.2/elsewhere", http));
        mServer->answer(bodyAnswer("reply"));
        ProbeCommand command;
        LogCollector log;
        QVERIFY(run(command));
        QCOMPARE(command.status(), 1);
        QCOMPARE(mAccount->connection->address, QStringLiteral("127.0.0.2"));
        QCOMPARE(mAccount->connection->port, int(mServer->port()));
        QCOMPARE(lastRequest().header("Host"), QByteArray("127.0.0.2"));
        QVERIFY(lastRequest().target.startsWith("/Microsoft-Server-ActiveSync?"));
        QVERIFY(log.contains(QStringLiteral("We should redirect our requests to a different URL")));
        QVERIFY(log.contains(QStringLiteral("we have a correct header")));
        QVERIFY(log.contains(QStringLiteral("new account serverAddress:")));
    }

    void aRedirectToNowhereIsAnError_data()
    {
        QTest::addColumn<QByteArray>("location");
        QTest::newRow("an empty location") << QByteArray("");
        QTest::newRow("a location longer than any address") << "http://127.0.0.2/" + QByteArray(5000, 'x');
    }

    void aRedirectToNowhereIsAnError()
    {
        QFETCH(QByteArray, location);
        mServer->answer(redirectTo(location));
        ProbeCommand command;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10299);
        QCOMPARE(mAccount->connection->address, QStringLiteral("127.0.0.1"));
        QCOMPARE(mServer->requests().size(), 1);
    }

    void aRedirectThatIsNotTakenIsAnError_data()
    {
        QTest::addColumn<bool>("secure");
        QTest::addColumn<QByteArray>("location");
        QTest::newRow("files of the device") << false << QByteArray("file://127.0.0.2/etc");
        QTest::newRow("a scheme that is no web") << false << QByteArray("ftp://127.0.0.2/");
        QTest::newRow("a misspelt scheme") << false << QByteArray("htps://127.0.0.2/");
        QTest::newRow("a path alone") << false << QByteArray("/elsewhere");
        QTest::newRow("a host without a scheme, read as a path") << false << QByteArray("127.0.0.2");
        QTest::newRow("a port beyond all") << false << QByteArray("http://127.0.0.2:65536/");
        QTest::newRow("from encrypted to open") << true << QByteArray("http://127.0.0.2/");
    }

    void aRedirectThatIsNotTakenIsAnError()
    {
        QFETCH(bool, secure);
        QFETCH(QByteArray, location);
        mAccount->connection->secure = secure;
        QVERIFY(!ServerLocation(location).apply(*mAccount->connection));
        QCOMPARE(mAccount->connection->address, QStringLiteral("127.0.0.1"));
        QCOMPARE(mAccount->connection->port, int(mServer->port()));
        QCOMPARE(mAccount->connection->secure, secure);
        if (secure)
            return;
        mServer->answer(redirectTo(location));
        ProbeCommand command;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10299);
        QCOMPARE(mServer->requests().size(), 1);
    }

    void aRedirectMayTurnEncryptionOn()
    {
        mAccount->connection->secure = false;
        QVERIFY(ServerLocation("https://127.0.0.2:8443/").apply(*mAccount->connection));
        QVERIFY(mAccount->connection->secure);
        QCOMPARE(mAccount->connection->address, QStringLiteral("127.0.0.2"));
        QCOMPARE(mAccount->connection->port, 8443);
    }

    void aRedirectTakesPortAndScheme()
    {
        ScriptedServer other;
        mAccount->connection->secure = false;
        mServer->answer(redirectTo("http://127.0.0.1:" + QByteArray::number(other.port()) + "/"));
        other.answer(bodyAnswer("there"));
        ProbeCommand command;
        QVERIFY(run(command));
        QCOMPARE(command.read, QByteArray("there"));
        QCOMPARE(mAccount->connection->port, int(other.port()));
    }

    void twoRedirectsInARowEachStartFromTheNewAddress()
    {
        ScriptedServer second;
        ScriptedServer third;
        mServer->answer(redirectTo("http://127.0.0.2:" + QByteArray::number(second.port())));
        second.answer(redirectTo("http://127.0.0.3:" + QByteArray::number(third.port())));
        third.answer(bodyAnswer("reply"));
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        QVERIFY(run(command));
        QCOMPARE(finished.count(), 1);
        QCOMPARE(second.requests().size(), 1);
        QCOMPARE(second.requests().last().header("Host"), QByteArray("127.0.0.2"));
        QCOMPARE(third.requests().last().header("Host"), QByteArray("127.0.0.3"));
    }

    void anEndlessRedirectCanBeStopped()
    {
        for (int i = 0; i < 50; ++i)
            mServer->answer(redirectTo("http://127.0.0.1/"));
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        QTRY_VERIFY(mServer->requests().size() > 3);
        command.stop();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(command.status(), 10005);
    }

    void stoppingBetweenRedirectAndRetrySendsNothingMore()
    {
        mServer->answer(redirectTo("http://127.0.0.2/"));
        mServer->answer(bodyAnswer("reply"));
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        // Started before the retry's, this one fires before it.
        QTimer stop;
        stop.setSingleShot(true);
        connect(&stop, &QTimer::timeout, &command, &BaseProtocolCommand::stop);
        const auto connection = QSharedPointer<MovingConnection>::create(*mAccount->connection);
        connection->whenMoved = [&stop] {
            stop.start(0);
        };
        mAccount->connection = connection;
        command.start();
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QCOMPARE(command.status(), 10005);
        // What was to be sent in the next turn would be sent before another command has its answer.
        ProbeCommand other;
        QVERIFY(run(other));
        QCOMPARE(mServer->requests().size(), 2);
        QCOMPARE(finished.count(), 1);
    }

    void stoppingBeforeThereIsAReplyCountsAsCancelled()
    {
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        QVERIFY(command.begin());
        command.stop();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QCOMPARE(command.status(), 10005);
        QVERIFY(command.begin());
    }

    void aSecondStopFindsTheReplyGone()
    {
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        ProbeCommand command;
        command.start();
        QTRY_COMPARE(mServer->requests().size(), 1);
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.stop();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(command.status(), 10005);
        LogCollector log;
        QVERIFY(!command.connectReply());
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No reply") }));
        command.stop();
        QCOMPARE(command.status(), 10005);
    }

    void aDeletedCommandHearsNothingMore()
    {
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        auto command = std::make_unique<ProbeCommand>();
        command->start();
        QTRY_COMPARE(mServer->requests().size(), 1);
        const QPointer<QNetworkReply> reply = mManager->networkManager()->findChild<QNetworkReply *>();
        QVERIFY(reply);
        command.reset();
        Q_EMIT reply->downloadProgress(1, 1);
        Q_EMIT reply->finished();
        QTRY_VERIFY(reply.isNull());
    }

    void anAccountThatGoesTakesItsExchangeWithIt()
    {
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        QTRY_COMPARE(mServer->requests().size(), 1);
        mManager->storage->remove(Account);
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QVERIFY(command.status() > ProtocolUtils::TransportStatusBase);
        // The account is gone, so nothing may be sent.
        command.start();
        QCOMPARE(finished.count(), 2);
        QCOMPARE(mServer->requests().size(), 1);
    }

    void anAccountThatGoesDuringARedirectEndsIt()
    {
        mServer->answer(redirectTo("http://127.0.0.2/"));
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        const auto connection = QSharedPointer<MovingConnection>::create(*mAccount->connection);
        QTimer vanish;
        vanish.setSingleShot(true);
        connect(&vanish, &QTimer::timeout, this, [this] { mManager->storage->remove(Account); });
        connection->whenMoved = [&vanish] {
            vanish.start(0);
        };
        mAccount->connection = connection;
        command.start();
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QCOMPARE(mServer->requests().size(), 1);
    }

    void aReplyThatIsOverButSilentIsStoppedToo()
    {
        DeafNetwork network(nullptr);
        mManager->network = &network;
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        QVERIFY(network.reply);
        command.stop();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QCOMPARE(command.status(), 10005);
        network.reply->sayThatItIsOver();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(command.status(), 10005);
        mManager->network = nullptr;
    }

    void aRunningCommandDoesNotBeginAgain()
    {
        ProbeCommand command;
        QSignalSpy started(&command, &BaseProtocolCommand::started);
        QVERIFY(command.begin());
        {
            LogCollector log;
            QVERIFY(!command.begin());
            QCOMPARE(log.lines().size(), 0);
        }
        QCOMPARE(started.count(), 1);
        LogCollector log;
        command.start();
        QVERIFY(log.contains(QStringLiteral("Cannot begin")));
    }

    void endSpeaksOnce()
    {
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.end(true);
        QCOMPARE(finished.count(), 0);
        QVERIFY(command.begin());
        command.end(true);
        command.end(false);
        QCOMPARE(finished.count(), 1);
    }

    void anActiveCommandPostsNoSecondTime()
    {
        ScriptedAnswer hang;
        hang.hang = true;
        mServer->answer(hang);
        ProbeCommand command;
        command.start();
        LogCollector log;
        QVERIFY(!command.post(QNetworkRequest(), QByteArray()));
        QVERIFY(!command.sendCustomRequest(QNetworkRequest(), "OPTIONS", QByteArray()));
        QCOMPARE(log.count(QStringLiteral("Already active")), 2);
        command.stop();
    }

    void progressIsKeptAndHandedOn()
    {
        mServer->answer(bodyAnswer(QByteArray(1000, 'x')));
        ProbeCommand command;
        QCOMPARE(command.bytesReceived(), -1);
        QCOMPARE(command.bytesTotal(), -1);
        QVERIFY(run(command));
        QCOMPARE(command.bytesReceived(), 1000);
        QCOMPARE(command.bytesTotal(), 1000);
        QVERIFY(!command.progress.isEmpty());
    }

    void aRequestNeedsAnAccountAConnectionAndAName_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::addColumn<QString>("text");
        QTest::newRow("no account") << QStringLiteral("account") << QStringLiteral("No account");
        QTest::newRow("no connection")
            << QStringLiteral("connection") << QStringLiteral("No connection config");
        QTest::newRow("no name") << QStringLiteral("name") << QStringLiteral("command is empty");
    }

    void aRequestNeedsAnAccountAConnectionAndAName()
    {
        QFETCH(QString, missing);
        QFETCH(QString, text);
        ProbeCommand command(missing == QLatin1String("account") ? 99 : Account);
        if (missing == QLatin1String("connection"))
            mAccount->connection.clear();
        if (missing == QLatin1String("name"))
            command.name.clear();
        LogCollector log;
        QVERIFY(!run(command));
        QVERIFY(log.contains(QtCriticalMsg, { text }));
        QVERIFY(log.contains(QStringLiteral("failed to setup network request")));
        QVERIFY(mServer->requests().isEmpty());
    }

    void settingsThatLeadNowhereEndTheExchange_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("port");
        const QString here = QStringLiteral("127.0.0.1");
        QTest::newRow("no address") << QString() << 443;
        QTest::newRow("blanks in the address") << QStringLiteral("mail server") << 443;
        QTest::newRow("a path in the address") << QStringLiteral("127.0.0.1/mail") << 443;
        QTest::newRow("a user in the address") << QStringLiteral("bob@127.0.0.1") << 443;
        QTest::newRow("a line break in the address") << QStringLiteral("127.0.0.1\r\nX-Evil: 1") << 443;
        QTest::newRow("half an address") << QStringLiteral("[::1") << 443;
        QTest::newRow("an address of 4 KB") << QString(4096, QLatin1Char('a')) << 443;
        QTest::newRow("port 0") << here << 0;
        QTest::newRow("a port below zero") << here << -5;
        QTest::newRow("a port beyond all") << here << 70000;
    }

    void settingsThatLeadNowhereEndTheExchange()
    {
        QFETCH(QString, address);
        QFETCH(int, port);
        mAccount->connection->address = address;
        mAccount->connection->port = port;
        ProbeCommand command;
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        QVERIFY(!run(command));
        QCOMPARE(finished.count(), 1);
        QVERIFY(command.status() == 0 || command.status() > ProtocolUtils::TransportStatusBase);
    }

    void clientCertificateThatCannotBeRead_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("text");
        QTemporaryDir folder;
        QTest::newRow("empty path") << QString() << QStringLiteral("Empty certificate path!");
        QTest::newRow("no such file")
            << folder.path() + QStringLiteral("/none.p12") << QStringLiteral("Certificate file not found");
        QTest::newRow("a folder") << QDir::tempPath() << QStringLiteral("Can't open certificate file");
    }

    void clientCertificateThatCannotBeRead()
    {
        QFETCH(QString, path);
        QFETCH(QString, text);
        ProbeCommand command;
        QSslCertificate certificate;
        QSslKey key;
        LogCollector log;
        QVERIFY(!command.getSslCredentials(path, QString(), &certificate, &key));
        QVERIFY(log.contains(QtCriticalMsg, { text }));
    }

    void aCommandWithoutItsClientCertificateIsNotSent()
    {
        mAccount->connection->certificatePath = QStringLiteral("/nowhere/certificate.p12");
        ProbeCommand command;
        LogCollector log;
        QVERIFY(!run(command));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Problem loading certificate/key") }));
        QCOMPARE(command.status(), 0);
        QVERIFY(mServer->requests().isEmpty());
    }

    void refusedCertificatesStayRefusedUnlessTheAccountAcceptsAll()
    {
        ProbeCommand command;
        LogCollector log;
        command.handleSslErrors({ QSslError(QSslError::SelfSignedCertificate) });
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("SSL errors:") }));
        mAccount->connection->acceptAll = true;
        command.handleSslErrors({ QSslError(QSslError::SelfSignedCertificate) });
        QVERIFY(log.contains(QStringLiteral("Reply is null")));
        QNetworkRequest request;
        QVERIFY(command.configureNetworkRequest(request, QStringLiteral("Sync")));
        QCOMPARE(request.sslConfiguration().peerVerifyMode(), QSslSocket::VerifyNone);
    }

    void noCookieAndNoPasswordReachesTheLog()
    {
        ScriptedAnswer answer = bodyAnswer("reply");
        answer.headers = { { "Set-Cookie", "session=verysecret" } };
        mServer->answer(answer);
        mAccount->refreshAuthenticationCache();
        LogCollector log;
        ProbeCommand command;
        QVERIFY(run(command));
        QVERIFY(log.lines().size() > 5);
        QVERIFY(!log.contains(QStringLiteral("verysecret")));
        QVERIFY(!log.contains(QStringLiteral("s3cret")));
        QVERIFY(!log.contains(QString::fromLatin1(mAccount->authenticationBasicCookie())));
    }

    void credentialsThatTheServerRepeatsStayOutOfTheLog_data()
    {
        QTest::addColumn<int>("http");
        QTest::newRow("in an answer") << 200;
        QTest::newRow("in an error") << 500;
    }

    void credentialsThatTheServerRepeatsStayOutOfTheLog()
    {
        QFETCH(int, http);
        mAccount->refreshAuthenticationCache();
        const QByteArray cookie = mAccount->authenticationBasicCookie();
        ScriptedAnswer answer = bodyAnswer("You sent Basic " + cookie + ", that is alice:s3cret");
        answer.status = http;
        answer.headers = { { "X-Echo", "Basic " + cookie } };
        mServer->answer(answer);
        LogCollector log;
        ProbeCommand command;
        QCOMPARE(run(command), http == 200);
        QVERIFY(
            log.contains(QtDebugMsg, { QStringLiteral("Headers: "), QStringLiteral("X-Echo: Basic ...") }));
        QCOMPARE(log.contains(QtDebugMsg, { QStringLiteral("Body: "), QStringLiteral("You sent Basic ...") }),
            http != 200);
        QVERIFY(!log.contains(QString::fromLatin1(cookie)));
        QVERIFY(!log.contains(QStringLiteral("s3cret")));
    }
};

FENNEL_REGISTER_TEST(BaseProtocolCommandTest)
#include "baseprotocolcommandtest.moc"
