// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "interopbed.h"
#include "requests/provisionrequest.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

/** @short A real server without policies is asked for them, and whether it orders a wipe. */
class ProvisionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aServerWithoutPoliciesSaysSo_data();
    void aServerWithoutPoliciesSaysSo();

private:
    RealServer mServer;
};

void ProvisionTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
}

void ProvisionTest::aServerWithoutPoliciesSaysSo_data()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1" })
        QTest::newRow(version) << QString::fromLatin1(version);
}

void ProvisionTest::aServerWithoutPoliciesSaysSo()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, QStringLiteral("alice"), { version });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.foldersSync(), 0);
    RequestManager *const manager = RequestManager::instance();
    EasAccount *const account = manager->account(bed.accountId());
    // It answers the command, although it does not announce it.
    QVERIFY(!account->commandIsSupported(QStringLiteral("Provision")));
    account->setSupportedCommands(account->supportedCommands() + QStringList { QStringLiteral("Provision") });
    account->setPolicyKey(QStringLiteral("7"));
    mServer.forgetRequests();

    QSignalSpy ends(manager, &RequestManager::provisionRequestFinished);
    manager->processNewProvisionRequest(
        new ProvisionRequest(bed.accountId(), 1001, ProvisionRequest::InitialRemoteWipe));
    QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 1, 60000);
    QCOMPARE(ends.takeFirst().at(2).toInt(), 0);
    QVERIFY(!account->isRemoteWipeRequested());

    manager->onProvisionPolicyRequest(bed.accountId(), 1002);
    QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 1, 60000);
    QCOMPARE(ends.constFirst().at(2).toInt(), 0);
    QCOMPARE(ends.constFirst().at(4).toInt(), int(ProvisionRequest::PolicyStatusNone));
    QCOMPARE(account->policyKey(), QString());
    const QStringList requests = mServer.requests(QStringLiteral("Provision"));
    QCOMPARE(requests.size(), 2);
    QVERIFY2(
        requests.last().contains(QStringLiteral("MS-EAS-Provisioning-WBXML")), qPrintable(requests.last()));
    QCOMPARE(bed.foldersSync(), 0);
}

FENNEL_REGISTER_TEST(ProvisionTest)
#include "provisiontest.moc"
