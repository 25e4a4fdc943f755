// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/waitingidentities.h"
#include "common/easrequeststatus.h"
#include "support/faultshim.h"
#include "support/signonservice.h"
#include "support/soak.h"
#include "support/testmain.h"
#include "wipescene.h"

#include <QDir>
#include <QtTest>

Q_DECLARE_METATYPE(Simulator::Wipe)

/**
 * A wipe goes to its end, whatever interrupts it, and takes everything of its account and nothing of another.
 * A soak takes every durable step and every statement; otherwise they are walked through with a stride.
 */
class RemoteWipeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { mScene.reset(new WipeScene); }
    void cleanupTestCase() { mScene.reset(); }

    void nothingOfTheAccountIsLeft();
    void theServersOrderIsAcknowledgedOnce_data();
    void theServersOrderIsAcknowledgedOnce();
    void aDeathAtAnyDurableStep();
    void aDeathAtAnyDurableStepAcknowledgesNothingTwice();
    void aFullDisk_data();
    void aFullDisk();
    void aSignOnServiceThatIsSilent();
    void anIdentityThatTheServiceRefuses();
    void anOrderBehindABadCertificateIsNotHeard();
    void anOrderBehindABadCertificateThatTheUserAcceptsIsNotObeyed();

private:
    static FaultShim shim();
    /** Prepares the device, gives the order and lets a daemon run; what is wrong after another one. */
    QString wipe(const QProcessEnvironment &environment);
    /** The same where the server gives the order, and what it was told. */
    QString wipeForServer(const QProcessEnvironment &environment);
    using Wipe = QString (RemoteWipeTest::*)(const QProcessEnvironment &environment);
    /** Lets such a wipe die before each of these steps, or before so many of them; empty if each went to its
     * end.
     */
    QString wrongAfterDeaths(const QStringList &steps, int samples, Wipe wipe);
    QString told(const QString &wrong) const
    {
        if (!wrong.isEmpty())
            qWarning("%s", mScene->log().constData());
        return wrong;
    }

    QScopedPointer<WipeScene> mScene;
};

FaultShim RemoteWipeTest::shim()
{
    FaultShim shim(QDir::homePath(), DaemonProcess::program());
    shim.setFiles({ "fennel_eas.db*", "mailstore.db*", "contacts.db*", "accounts.db*", "db", "db-wal",
        "db-shm", "avatar-*", "figures.txt", "identities-to-remove*" });
    return shim;
}

QString RemoteWipeTest::wipe(const QProcessEnvironment &environment)
{
    if (!mScene->begin() || !mScene->orderInRecord())
        return QStringLiteral("the device cannot be prepared");
    mScene->run(environment);
    return told(mScene->finish());
}

QString RemoteWipeTest::wipeForServer(const QProcessEnvironment &environment)
{
    const QString user = WipeScene::wipedUser();
    Simulator::ExchangeServer &server = mScene->server();
    server.changePolicies([](Simulator::ServerPolicies &policies) { policies = {}; }, user);
    if (!mScene->begin())
        return QStringLiteral("the device cannot be prepared");
    server.changePolicies(
        [](Simulator::ServerPolicies &policies) { policies.orderWipe(Simulator::Wipe::Device); }, user);
    server.clearRequests();
    mScene->runOrdered(environment);
    // Of an order that was not written down a new daemon knows nothing, and the server has to give it again.
    if (mScene->isAccountThere() && !mScene->isOrderRecorded())
        mScene->synchronize(mScene->accountId());
    QString wrong = mScene->finish();
    int acknowledgements = 0;
    const auto provisions = server.requests(QStringLiteral("Provision"));
    for (const Simulator::RecordedRequest &provision : provisions)
        acknowledgements += provision.document.toXml().contains(QLatin1String("RemoteWipe")) ? 1 : 0;
    if (acknowledgements > 1)
        wrong += QStringLiteral("acknowledged %1 times\n").arg(acknowledgements);
    const QStringList verdicts = server.policies(user).wipeVerdicts.values();
    if (verdicts.size() > acknowledgements
        || (!verdicts.isEmpty() && verdicts != QStringList { QStringLiteral("1") }))
        wrong += QStringLiteral("the server was told %1\n").arg(verdicts.join(QLatin1Char(' ')));
    return told(wrong);
}

QString RemoteWipeTest::wrongAfterDeaths(const QStringList &steps, int samples, Wipe wipe)
{
    const int stride = qMax(1, steps.size() / Soak::samples(samples, steps.size()));
    qInfo("%d durable steps, tried in strides of %d", steps.size(), stride);
    for (int number = 1; number <= steps.size(); number += stride) {
        FaultShim fault = shim();
        fault.killAtStep(number);
        const QString wrong = (this->*wipe)(fault.environment());
        if (!wrong.isEmpty())
            return QStringLiteral("killed before step %1 of %2, %3\n%4")
                .arg(number)
                .arg(steps.size())
                .arg(fault.steps().value(number - 1), wrong);
    }
    return QString();
}

void RemoteWipeTest::nothingOfTheAccountIsLeft()
{
    QCOMPARE(wipe(QProcessEnvironment::systemEnvironment()), QString());
    qInfo("looked at, with the number of rows, files or keys before the wipe:\n%s",
        qPrintable(mScene->lookedAt()));
}

void RemoteWipeTest::theServersOrderIsAcknowledgedOnce_data()
{
    QTest::addColumn<Simulator::Wipe>("order");
    QTest::newRow("the device") << Simulator::Wipe::Device;
    QTest::newRow("the account alone") << Simulator::Wipe::Account;
}

void RemoteWipeTest::theServersOrderIsAcknowledgedOnce()
{
    QFETCH(Simulator::Wipe, order);
    const QString user = WipeScene::wipedUser();
    QVERIFY(mScene->begin());
    mScene->server().changePolicies(
        [order](Simulator::ServerPolicies &policies) { policies.orderWipe(order); }, user);
    mScene->server().clearRequests();
    QCOMPARE(mScene->synchronize(mScene->accountId()), int(EasRequestStatus::RequestStatusWipeAcknowledged));
    QCOMPARE(told(mScene->finish()), QString());
    QCOMPARE(mScene->server().requests(QStringLiteral("Provision")).size(), 2);
    const QMap<QString, QString> verdicts = mScene->server().policies(user).wipeVerdicts;
    QCOMPARE(verdicts.values(), QStringList { "1" });
}

void RemoteWipeTest::aDeathAtAnyDurableStep()
{
    const FaultShim plain = shim();
    QCOMPARE(wipe(plain.environment()), QString());
    QVERIFY(plain.steps().size() > 30);
    QCOMPARE(wrongAfterDeaths(plain.steps(), 14, &RemoteWipeTest::wipe), QString());
}

void RemoteWipeTest::aDeathAtAnyDurableStepAcknowledgesNothingTwice()
{
    const FaultShim plain = shim();
    QCOMPARE(wipeForServer(plain.environment()), QString());
    QCOMPARE(mScene->server().policies(WipeScene::wipedUser()).wipeVerdicts.values(),
        QStringList { QStringLiteral("1") });
    QVERIFY(plain.steps().size() > 30);
    QCOMPARE(wrongAfterDeaths(plain.steps(), 6, &RemoteWipeTest::wipeForServer), QString());
}

void RemoteWipeTest::aFullDisk_data()
{
    QTest::addColumn<QString>("database");
    for (const char *const database : { "fennel_eas.db", "mailstore.db", "contacts.db", "db", "accounts.db" })
        QTest::newRow(database) << QString::fromLatin1(database);
}

void RemoteWipeTest::aFullDisk()
{
    QFETCH(QString, database);
    FaultShim plain = shim();
    plain.setDatabase(database);
    QCOMPARE(wipe(plain.environment()), QString());
    const int statements = plain.statements().size();
    QVERIFY(statements > 3);
    const int stride = qMax(1, statements / Soak::samples(3, statements));
    qInfo("%d statements, tried in strides of %d", statements, stride);
    for (int number = 1; number <= statements; number += stride) {
        FaultShim fault = shim();
        fault.setDatabase(database);
        fault.failStatement(number, FaultShim::StatementError::Full);
        const QString wrong = wipe(fault.environment());
        QVERIFY2(wrong.isEmpty(),
            qPrintable(QStringLiteral("failed statement %1 of %2, %3\n")
                           .arg(number)
                           .arg(statements)
                           .arg(fault.statements().value(number - 1))
                + wrong));
    }
}

void RemoteWipeTest::aSignOnServiceThatIsSilent()
{
    QVERIFY(mScene->begin());
    QVERIFY(mScene->orderInRecord());
    QProcessEnvironment impatient = QProcessEnvironment::systemEnvironment();
    impatient.insert(QStringLiteral("FENNEL_TEST_IMPATIENT_SIGN_ON"), QStringLiteral("1"));
    {
        const SilentSignOnService silent;
        QVERIFY(silent.isSilent());
        mScene->run(impatient);
        QVERIFY2(!mScene->isAccountThere(), "everything else goes");
        QCOMPARE(WaitingIdentities().all()->size(), 2);
    }
    QCOMPARE(told(mScene->finish()), QString());
}

void RemoteWipeTest::anIdentityThatTheServiceRefuses()
{
    constexpr quint32 refused = 4711;
    QVERIFY(mScene->begin());
    QVERIFY(mScene->accounts().setValue(
        mScene->accountId(), QString(), QStringLiteral("SslCertCredentialsId"), refused));
    QVERIFY(mScene->orderInRecord());
    mScene->run(QProcessEnvironment::systemEnvironment());
    QVERIFY(!mScene->isAccountThere());
    // The daemon may have been killed before it had forgotten the other one, which is gone.
    QVERIFY(WaitingIdentities().all()->contains(refused));
    QVERIFY(mScene->log().contains("Received an Identity deletion error: type="));
}

void RemoteWipeTest::anOrderBehindABadCertificateIsNotHeard()
{
    Simulator::ExchangeServer server;
    server.addUser(QStringLiteral("carol"), QStringLiteral("s3cret"));
    server.changePolicies(
        [](Simulator::ServerPolicies &policies) { policies.orderWipe(Simulator::Wipe::Device); });
    QVERIFY(server.start(Simulator::ExchangeServer::Https));
    AccountOptions options;
    options.userName = QStringLiteral("carol");
    options.port = server.port();
    options.secure = true;
    const EasAccountId id = mScene->accounts().create(options);
    QVERIFY(id != 0);
    const int status = mScene->synchronize(id);
    QVERIFY2(status != 0 && status != DaemonProcess::Died
            && status != EasRequestStatus::RequestStatusWipeAcknowledged,
        qPrintable(QString::number(status)));
    QVERIFY(server.requests().isEmpty());
    QVERIFY(!mScene->accounts().value(id, QString(), QStringLiteral("remote_wipe_requested")).toBool());
    QVERIFY(mScene->accounts().remove(id));
}

void RemoteWipeTest::anOrderBehindABadCertificateThatTheUserAcceptsIsNotObeyed()
{
    Simulator::ExchangeServer server;
    server.addUser(QStringLiteral("carol"), QStringLiteral("s3cret"));
    server.changePolicies(
        [](Simulator::ServerPolicies &policies) { policies.orderWipe(Simulator::Wipe::Device); });
    QVERIFY(server.start(Simulator::ExchangeServer::Https));
    AccountOptions options;
    options.userName = QStringLiteral("carol");
    options.port = server.port();
    options.secure = true;
    options.acceptAllCertificates = true;
    const EasAccountId id = mScene->accounts().create(options);
    QVERIFY(id != 0);
    QCOMPARE(mScene->synchronize(id), 140);
    QVERIFY(mScene->log().contains("is not obeyed, the server's certificate failed:"));
    QVERIFY(!mScene->accounts().value(id, QString(), QStringLiteral("remote_wipe_requested")).toBool());
    const auto requests = server.requests();
    QVERIFY(requests.size() < 30);
    for (const Simulator::RecordedRequest &request : requests)
        QVERIFY2(!request.document.toXml().contains(QLatin1String("RemoteWipe")), qPrintable(request.dump()));
    QVERIFY(mScene->accounts().remove(id));
}

FENNEL_REGISTER_TEST(RemoteWipeTest)
#include "remotewipetest.moc"
