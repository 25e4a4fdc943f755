// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/baseprotocolcommand.h"
#include "simulator/tlscertificate.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/testmain.h"

#include <QProcess>
#include <QSignalSpy>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr EasAccountId Account = 7;
const QString passphrase = QStringLiteral("s3cret-passphrase");

/** Answers over TLS with a certificate that no one has signed, and keeps what a client shows of itself. */
class TlsServer : public QTcpServer
{
    Q_OBJECT

public:
    explicit TlsServer(const Simulator::TlsCertificate &own)
        : mCertificate(own.certificate)
        , mKey(own.key, QSsl::Rsa)
    {
        if (mKey.isNull())
            mKey = QSslKey(own.key, QSsl::Ec);
        if (!listen(QHostAddress::LocalHost))
            qFatal("the TLS server cannot listen");
    }

    QByteArray received;
    QList<QSslCertificate> shown;

protected:
    void incomingConnection(qintptr handle) override
    {
        auto *const socket = new QSslSocket(this);
        socket->setSocketDescriptor(handle);
        socket->setLocalCertificate(mCertificate);
        socket->setPrivateKey(mKey);
        socket->setPeerVerifyMode(QSslSocket::QueryPeer);
        connect(socket, QOverload<const QList<QSslError> &>::of(&QSslSocket::sslErrors), socket,
            [socket](const QList<QSslError> &errors) { socket->ignoreSslErrors(errors); });
        connect(socket, &QSslSocket::readyRead, this, [this, socket] { answer(socket); });
        connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        socket->startServerEncryption();
    }

private:
    void answer(QSslSocket *socket)
    {
        received += socket->readAll();
        if (!received.endsWith("\r\n\r\nbody"))
            return;
        shown.append(socket->peerCertificate());
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nreply");
    }

    QSslCertificate mCertificate;
    QSslKey mKey;
};

class ReadingCommand : public BaseProtocolCommand
{
public:
    ReadingCommand()
        : BaseProtocolCommand(Account, RequestManager::instance())
    {
    }

    QByteArray read;

protected:
    QString commandName() const override { return QStringLiteral("Sync"); }
    bool encodeBody(EasAccount &, QByteArray *body) override
    {
        *body = "body";
        return true;
    }
    bool parseReply(QNetworkReply *, const QByteArray &body) override
    {
        read = body;
        setStatus(1);
        return true;
    }
    void logBody(const QByteArray &) const override {}
};

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace

/** Whom a command trusts, and how it shows who it is. */
class TlsCommandTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    Simulator::TlsCertificate mOwn;
    FakeAccount *mAccount = nullptr;
    std::unique_ptr<TlsServer> mServer;

    QString certificatePath() const { return mFolder.filePath(QStringLiteral("alice.p12")); }

    /** The client's certificate as the user gets it from an administrator. */
    void writePkcs12() const
    {
        const QString certificate = mFolder.filePath(QStringLiteral("alice.pem"));
        const QString key = mFolder.filePath(QStringLiteral("alice.key"));
        writeFile(certificate, mOwn.certificate);
        writeFile(key, mOwn.key);
        QProcess openssl;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PASSPHRASE"), passphrase);
        openssl.setProcessEnvironment(environment);
        openssl.start(QStringLiteral("openssl"),
            { QStringLiteral("pkcs12"), QStringLiteral("-export"), QStringLiteral("-in"), certificate,
                QStringLiteral("-inkey"), key, QStringLiteral("-out"), certificatePath(),
                QStringLiteral("-passout"), QStringLiteral("env:PASSPHRASE") });
        QVERIFY2(openssl.waitForFinished(60000) && openssl.exitCode() == 0,
            openssl.readAllStandardError().constData());
    }

    static bool run(ReadingCommand &command)
    {
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        if (finished.isEmpty() && !finished.wait(60000))
            qWarning("the command did not finish");
        return finished.value(0).value(0).toBool();
    }

private Q_SLOTS:
    void initTestCase()
    {
        mOwn = Simulator::TlsCertificate::generate();
        writePkcs12();
    }

    void init()
    {
        ScriptedManager *const manager = ScriptedManager::install();
        mAccount = manager->addAccount(Account);
        mAccount->negotiated({ QStringLiteral("Sync") });
        mAccount->refreshAuthenticationCache();
        mAccount->certificateSecret = passphrase;
        mServer = std::make_unique<TlsServer>(mOwn);
        mAccount->connection->secure = true;
        mAccount->connection->port = mServer->serverPort();
    }

    void cleanup()
    {
        mServer.reset();
        ScriptedManager::uninstall();
    }

    void anUnknownCertificateIsRefusedBeforeAnythingIsSaid()
    {
        LogCollector log;
        ReadingCommand command;
        QVERIFY(!run(command));
        QCOMPARE(command.status(), 10006);
        QVERIFY(mServer->received.isEmpty());
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("Received SSL errors:") }));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("SSL errors:") }));
    }

    void anAccountThatAcceptsAllAcceptsIt()
    {
        mAccount->connection->acceptAll = true;
        ReadingCommand command;
        QVERIFY(run(command));
        QCOMPARE(command.read, QByteArray("reply"));
        QVERIFY(mServer->received.contains("Authorization: Basic "));
        QCOMPARE(mServer->shown, QList<QSslCertificate> { QSslCertificate() });
    }

    void aClientCertificateIsShownToTheServer()
    {
        mAccount->connection->acceptAll = true;
        mAccount->connection->certificatePath = certificatePath();
        LogCollector log;
        ReadingCommand command;
        QVERIFY(run(command));
        QCOMPARE(mServer->shown, QList<QSslCertificate> { QSslCertificate(mOwn.certificate) });
        QVERIFY(!log.contains(passphrase));
    }

    void aWrongPassphraseSendsNothing()
    {
        mAccount->connection->acceptAll = true;
        mAccount->connection->certificatePath = certificatePath();
        mAccount->certificateSecret = QStringLiteral("another");
        LogCollector log;
        ReadingCommand command;
        QVERIFY(!run(command));
        QVERIFY(mServer->received.isEmpty());
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Problem loading certificate/key") }));
    }

    void aFileThatIsNoCertificateSendsNothing()
    {
        mAccount->connection->certificatePath = mFolder.filePath(QStringLiteral("alice.pem"));
        LogCollector log;
        ReadingCommand command;
        QVERIFY(!run(command));
        QVERIFY(mServer->received.isEmpty());
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Problem loading certificate/key") }));
    }
};

FENNEL_REGISTER_TEST(TlsCommandTest)
#include "tlscommandtest.moc"
