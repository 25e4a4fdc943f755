// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/base/accountstore.h"
#include "application/account/easaccount.h"
#include "application/networkmanager.h"
#include "application/requestmanager.h"
#include "integration/statusscene.h"
#include "support/bearer.h"
#include "support/testmain.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QNetworkSession>

using Simulator::ExchangeServer;
using Simulator::Override;
using namespace StatusScene;

/** @short Redirects, refused passwords, errors of HTTP, a network that comes and goes, and two accounts. */
class ConnectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Bearer::connectNetwork(); }

    void theServerMoves_data();
    void theServerMoves();
    void theServerMovesTwice();
    void aRedirectInACircleIsCancelled();
    void theServerAnswersWithHttp_data();
    void theServerAnswersWithHttp();
    void anUnavailableServerIsNoWipeOnceThereIsAPolicyKey();
    void aWrongPasswordBlocksTheAccountUntilThereIsANewOne();
    void aServerThatRefusesTheRightPasswordOnceBlocksNothing();
    void aPasswordThatTheSignOnServiceLacksIsAskedForAgain();
    void aQueueOfABlockedAccountDrains();
    void theNetworkIsLostAndComesBack();
    void theNetworkIsLostDuringASync();
    void twoAccountsAreSyncedSideBySide();
};

void ConnectionTest::theServerMoves_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("status");
    for (const int status : { 451, 449 }) {
        for (const char *command : { "OPTIONS", "FolderSync", "Sync" })
            QTest::addRow("with HTTP %d to %s", status, command) << QString::fromLatin1(command) << status;
    }
}

void ConnectionTest::theServerMoves()
{
    QFETCH(QString, command);
    QFETCH(int, status);
    SyncTestBed bed;
    ExchangeServer other;
    other.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    QVERIFY(other.start());
    for (ExchangeServer *server : { &bed.server(), &other })
        server->mailbox().deliver(
            server->mailbox().inboxId(), SyncTestBed::message(QStringLiteral("the same message")));
    bed.server().overrideAll(command, Override::redirect(other.url(), status));

    // The new place does not know the keys of the old one, and everything starts again.
    const int end = bed.sync();

    QVERIFY2(command == QLatin1String("OPTIONS") || end == 0, qPrintable(QString::number(end)));
    QCOMPARE(bed.sync(), 0);
    QVERIFY(!other.requests(QStringLiteral("Sync")).isEmpty());
    QCOMPARE(bed.deviceState(), QStringList { QStringLiteral("Inbox|the same message|unread") });
    // The new address is kept.
    QCOMPARE(bed.server().requests(command).size(), 1);
}

void ConnectionTest::theServerMovesTwice()
{
    SyncTestBed bed;
    ExchangeServer second;
    ExchangeServer third;
    for (ExchangeServer *server : { &second, &third }) {
        server->addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
        QVERIFY(server->start());
    }
    third.mailbox().deliver(third.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("there")));
    bed.server().overrideAll(QStringLiteral("FolderSync"), Override::redirect(second.url()));
    second.overrideAll(QStringLiteral("FolderSync"), Override::redirect(third.url(), 449));

    QCOMPARE(bed.sync(), 0);

    QCOMPARE(bed.server().requests(QStringLiteral("FolderSync")).size(), 1);
    QCOMPARE(second.requests(QStringLiteral("FolderSync")).size(), 1);
    QCOMPARE(bed.deviceState(), QStringList { QStringLiteral("Inbox|there|unread") });
    // The new address is kept.
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.server().requests(QStringLiteral("FolderSync")).size(), 1);
}

void ConnectionTest::aRedirectInACircleIsCancelled()
{
    SyncTestBed bed;
    bed.server().overrideAll(QStringLiteral("FolderSync"), Override::redirect(bed.server().url()));
    const qulonglong id = bed.startSync();
    QTRY_VERIFY_WITH_TIMEOUT(count(bed, "FolderSync") >= 5, 20000);
    RequestManager::instance()->onCancelRequest(bed.accountId(), id);
    QCOMPARE(bed.waitFor(id), -4);
    QCOMPARE(bed.finishedCount(id), 1);
    QVERIFY(nextSyncRepairs(bed));
}

void ConnectionTest::theServerAnswersWithHttp_data()
{
    columns();
    row("403, access denied", 403, 10201, "handleError: Network error:", 1);
    row("449 without a new place, a demand that is met in vain", 449, 10299, "by http status 449", 7);
    row("451 without a new place", 451, 10299, "handleError: Network error:", 1);
    row("500, an error of its own", 500, 10401, "handleError: Network error:", 1);
    row("503, not available, and asked once whether a wipe is meant", 503, 10403, "by http status 403", 2);
}

void ConnectionTest::theServerAnswersWithHttp()
{
    QFETCH(int, code);
    QFETCH(int, end);
    QFETCH(QString, text);
    QFETCH(int, requests);
    for (const char *command : { "FolderSync", "Sync" }) {
        SyncTestBed bed;
        QVERIFY(missesOneMessage(bed));
        bed.server().overrideAll(QString::fromLatin1(command), Override::httpStatus(code));
        {
            const LogCollector log;
            QCOMPARE(bed.sync(), end);
            QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        }
        QCOMPARE(count(bed, command), requests);
        QVERIFY(nextSyncRepairs(bed));
    }
}

void ConnectionTest::anUnavailableServerIsNoWipeOnceThereIsAPolicyKey()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::topStatus(141));
    QCOMPARE(bed.sync(), 0);
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::httpStatus(503));
    bed.server().changePolicies(
        [](Simulator::ServerPolicies &policies) { policies.orderWipe(Simulator::Wipe::Device); });
    QCOMPARE(bed.sync(), 10403);
    bed.server().overrideNext(QStringLiteral("FolderSync"), Override::httpStatus(403));
    QCOMPARE(bed.sync(), 10201);
    QVERIFY2(!RequestManager::instance()->account(bed.accountId())->isRemoteWipeRequested(),
        "the server has an order, but neither of these answers is one");
    QVERIFY(bed.server().policies().wipeVerdicts.isEmpty());
}

void ConnectionTest::aWrongPasswordBlocksTheAccountUntilThereIsANewOne()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("n3w"));
    // It has been accepted before, so that the first refusal may be the server's error.
    QCOMPARE(bed.sync(), 10204);
    QVERIFY(!RequestManager::instance()->account(bed.accountId())->isCredentialsNeedUpdate());
    bed.server().clearRequests();
    QCOMPARE(bed.sync(), 10204);
    int answers = 0;
    for (const Simulator::RecordedRequest &request : bed.server().requests()) {
        if (!request.header("Authorization").isEmpty())
            ++answers;
    }
    QVERIFY2(answers <= 3, qPrintable(QString::number(answers)));

    // Blocked, nothing more is sent.
    bed.server().clearRequests();
    QCOMPARE(bed.sync(), -4);
    QCOMPARE(bed.server().requests().size(), 0);

    QVERIFY(bed.changePassword(QStringLiteral("n3w")));
    EasAccount *account = RequestManager::instance()->account(bed.accountId());
    QTRY_VERIFY_WITH_TIMEOUT(
        !account->isCredentialsNeedUpdate() && account->password() == QLatin1String("n3w"), 20000);
    QVERIFY(nextSyncRepairs(bed));
}

void ConnectionTest::aServerThatRefusesTheRightPasswordOnceBlocksNothing()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("another"));
    QCOMPARE(bed.sync(), 10204);
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("s3cret"));
    QVERIFY(nextSyncRepairs(bed));
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("another"));
    QCOMPARE(bed.sync(), 10204);
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("s3cret"));
    QCOMPARE(bed.sync(), 0);
}

void ConnectionTest::aPasswordThatTheSignOnServiceLacksIsAskedForAgain()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    const QString key = QStringLiteral("CredentialsId");
    const quint32 identity = bed.accounts().value(bed.accountId(), QString(), key).toUInt();
    constexpr quint32 Unknown = 4711;
    bed.withoutEngine([&] { QVERIFY(bed.accounts().setValue(bed.accountId(), QString(), key, Unknown)); });
    for (int round = 0; round < 3; ++round)
        QCOMPARE(bed.sync(), 10204);
    QVERIFY(!RequestManager::instance()->account(bed.accountId())->isCredentialsNeedUpdate());

    QVERIFY(bed.accounts().setValue(bed.accountId(), QString(), key, identity));
    const Accounts::Account *const record =
        AccountStore::manager()->account(static_cast<Accounts::AccountId>(bed.accountId()));
    QTRY_COMPARE_WITH_TIMEOUT(record->value(key).toUInt(), identity, 20000);
    QVERIFY(nextSyncRepairs(bed));
}

void ConnectionTest::aQueueOfABlockedAccountDrains()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("n3w"));
    QList<qulonglong> ids;
    for (int i = 0; i < 4; ++i)
        ids.append(bed.startSync());
    QCOMPARE(bed.waitFor(ids.takeFirst()), 10204);
    QCOMPARE(bed.waitFor(ids.takeFirst()), 10204);
    for (const qulonglong id : qAsConst(ids))
        QCOMPARE(bed.waitFor(id), -4);
}

void ConnectionTest::theNetworkIsLostAndComesBack()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    NetworkManager *network = RequestManager::instance()->networkManager();
    QVERIFY(Bearer::loseNetwork());
    // The device and its session tell the loss one after the other.
    QTRY_VERIFY_WITH_TIMEOUT(!network->isOnline()
            && network->networkSession(bed.accountId())->state() != QNetworkSession::Connected,
        20000);
    QCOMPARE(bed.sync(), -9);
    QCOMPARE(bed.server().requests().size(), 0);

    QVERIFY(Bearer::connectNetwork());
    QTRY_VERIFY_WITH_TIMEOUT(network->isOnline(), 20000);
    QVERIFY(nextSyncRepairs(bed));
}

void ConnectionTest::theNetworkIsLostDuringASync()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::hang());
    const qulonglong id = bed.startSync();
    QTRY_COMPARE_WITH_TIMEOUT(count(bed, "Sync"), 1, 20000);
    QVERIFY(Bearer::loseNetwork());

    // 10000 and the network layer's number for a lost session.
    QCOMPARE(bed.waitFor(id), 10008);

    QCOMPARE(bed.finishedCount(id), 1);
    QVERIFY(Bearer::connectNetwork());
    QTRY_VERIFY_WITH_TIMEOUT(RequestManager::instance()->networkManager()->isOnline(), 20000);
    QVERIFY(nextSyncRepairs(bed));
}

void ConnectionTest::twoAccountsAreSyncedSideBySide()
{
    SyncTestBed bed;
    QVERIFY(missesOneMessage(bed));
    ExchangeServer other;
    other.addUser(QStringLiteral("carol"), QStringLiteral("c4rol"));
    QVERIFY(other.start());
    other.mailbox().deliver(other.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("for carol")));
    AccountOptions options;
    options.userName = QStringLiteral("carol");
    options.password = QStringLiteral("c4rol");
    options.emailAddress = QStringLiteral("carol@example.com");
    options.port = other.port();
    const EasAccountId carol = bed.accounts().create(options);
    QVERIFY(carol != 0);
    RequestManager *manager = RequestManager::instance();
    QTRY_VERIFY_WITH_TIMEOUT(manager->account(carol), 20000);

    // The first account's reply is held back until the other's sync has ended.
    const auto gate = std::make_shared<Simulator::Gate>();
    bed.server().overrideNext(QStringLiteral("Sync"), Override().holdUntil(gate));
    const qulonglong id = bed.startSync();
    QTRY_COMPARE_WITH_TIMEOUT(count(bed, "Sync"), 1, 20000);
    constexpr qulonglong CarolsSync = 1000;
    manager->onFullSyncRequest(carol, CarolsSync);
    QCOMPARE(bed.waitFor(CarolsSync), 0);
    QCOMPARE(bed.finishedCount(id), 0);
    gate->open();
    QCOMPARE(bed.waitFor(id), 0);

    QCOMPARE(bed.deviceState(), bed.serverState());
    const QMailMessageIdList messages = QMailStore::instance()->queryMessages(
        QMailMessageKey::parentAccountId(QMailAccountId(quint64(carol))));
    QCOMPARE(messages.size(), 1);
    QCOMPARE(QMailMessageMetaData(messages.first()).subject(), QStringLiteral("for carol"));
    QVERIFY(bed.accounts().remove(carol));
    QTRY_VERIFY_WITH_TIMEOUT(!manager->account(carol), 20000);
}

FENNEL_REGISTER_TEST(ConnectionTest)
#include "connectiontest.moc"
